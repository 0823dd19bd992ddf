#include "leave/AwaitingRows.h"

#include "db/sql_text.h"
#include "session/queries.h"

namespace owb {

int64_t FnLngAwaitingRows(Session& session, const std::string& condition, bool blnLedger) {
    int64_t marked = 0;
    for (const char* table : {"LEV_ALLOTMENT", "LEV_MONTHDET", "ATT_DAYTODAY"}) {
        if (!blnLedger && std::string_view(table) == "LEV_ALLOTMENT") continue;
        marked += FnVarValueOrThrow(session,
                                    Sql() << "SELECT COUNT(EMPID) FROM " << table
                                          << " LEV WHERE EDITMODEYN = 1" << condition,
                                    0)
                      .toInt();
    }
    return marked;
}

}  // namespace owb
