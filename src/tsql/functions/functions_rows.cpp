// Limits on how many rows there may be: TOP, OFFSET, FETCH and the depth of a recursion.
#include <cmath>

#include "tsql/functions/functions.h"

namespace owb::tsql {

namespace {

// t_limit(count, error): the count, unless it makes no sense.
void limitFunction(sqlite3_context* context, int, sqlite3_value** a) {
    if (sqlite3_value_type(a[0]) == SQLITE_NULL) throw makeDbError(1060);
    const int error = sqlite3_value_int(a[1]);
    const double count = sqlite3_value_double(a[0]);
    if (count < 0 || (error == 10744 && count == 0) || (error == 1031 && count > 100))
        throw makeDbError(error);
    sqlite3_result_value(context, a[0]);
}

// t_share(rows, percent): how many rows that is, a begun one counting whole.
void shareFunction(sqlite3_context* context, int, sqlite3_value** a) {
    const double rows = static_cast<double>(sqlite3_value_int64(a[0]));
    sqlite3_result_int64(context,
                         static_cast<int64_t>(std::ceil(rows * sqlite3_value_double(a[1]) / 100)));
}

// t_depth(depth of the row before, most; 0 for no end).
void depthFunction(sqlite3_context* context, int, sqlite3_value** a) {
    const int64_t depth = sqlite3_value_int64(a[0]) + 1;
    const int64_t most = sqlite3_value_int64(a[1]);
    if (most > 0 && depth > most) throw makeDbError(530, {std::to_string(most)});
    sqlite3_result_int64(context, depth);
}

// t_distance(n, function): the offset of LAG and LEAD, the parts of NTILE.
void distanceFunction(sqlite3_context* context, int, sqlite3_value** a) {
    const std::string_view name = argumentText(a[1]);
    const int64_t n = sqlite3_value_int64(a[0]);
    if (name == "NTILE" && (sqlite3_value_type(a[0]) == SQLITE_NULL || n <= 0))
        throw DbError(4116, 16, 1, 0,
                      "The function 'ntile' takes only a positive int or bigint "
                      "expression as its input.");
    if (n < 0)
        throw DbError(8730, 16, 2, 0,
                      "Offset parameter for Lag and Lead functions cannot be a "
                      "negative value.");
    sqlite3_result_value(context, a[0]);
}

}  // namespace

void registerRowFunctions(Sqlite& sqlite) {
    registerFunction(sqlite, "t_limit", 2, limitFunction);
    registerFunction(sqlite, "t_share", 2, shareFunction);
    registerFunction(sqlite, "t_depth", 2, depthFunction);
    registerFunction(sqlite, "t_distance", 2, distanceFunction);
}

}  // namespace owb::tsql
