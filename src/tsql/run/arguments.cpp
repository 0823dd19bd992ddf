#include "tsql/run/arguments.h"

#include "base/db_error.h"
#include "tsql/parse/names.h"

namespace owb::tsql {

std::vector<size_t> argumentPlaces(const ExecuteStatement& s, const std::string& procedure,
                                   const std::vector<std::string>& names) {
    if (s.arguments.size() > names.size())
        throw makeDbError(names.empty() ? 8146 : 8144, {procedure}, s.line);
    std::vector<size_t> places;
    bool named = false;
    for (const Argument& a : s.arguments) {
        size_t at = places.size();
        if (named && a.name.empty()) throw makeDbError(119, {std::to_string(at + 1)}, s.line);
        if (!a.name.empty()) {
            named = true;
            at = 0;
            while (at < names.size() && foldName(names[at]) != foldName(a.name)) ++at;
            if (at == names.size()) throw makeDbError(8145, {a.name, procedure}, s.line);
        }
        places.push_back(at);
    }
    return places;
}

}  // namespace owb::tsql
