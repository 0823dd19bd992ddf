#include "db/client_error.h"

#include <array>
#include <string>

namespace owb {

namespace {

struct Entry {
    int number;
    const char* text;
};

// In the order of ClientError.
constexpr std::array kEntries = {
    Entry{3001,
          "Arguments are of the wrong type, are out of acceptable range, or are in conflict with "
          "one another."},
    Entry{3021,
          "Either BOF or EOF is True, or the current record has been deleted. Requested operation "
          "requires a current record."},
    Entry{3251,
          "Current Recordset does not support updating. This may be a limitation of the provider, "
          "or of the selected locktype."},
    Entry{3265,
          "Item cannot be found in the collection corresponding to the requested name or ordinal."},
    Entry{3704, "Operation is not allowed when the object is closed."},
    Entry{3705, "Operation is not allowed when the object is open."},
    Entry{3706, "Provider cannot be found. It may not be properly installed."},
    Entry{-2147217864,
          "Row cannot be located for updating. Some values may have been changed since it was last "
          "read."},
    Entry{-2147467259, "Insufficient base table information for updating or refreshing."},
    Entry{-2147467259, "Insufficient key column information for updating or refreshing."},
};

}  // namespace

DbError clientError(ClientError which, std::string_view detail) {
    const Entry& entry = kEntries[static_cast<size_t>(which)];
    std::string text = entry.text;
    if (!detail.empty()) text.append(" (").append(detail).append(")");
    return DbError(entry.number, 16, 1, 0, text);
}

}  // namespace owb
