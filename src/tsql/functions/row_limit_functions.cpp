// Limits on how many rows there may be: TOP, OFFSET, FETCH and the depth of a recursion.
#include <cmath>

#include "tsql/functions/functions.h"

namespace owb::tsql {

namespace {

// t_limit(count, error): the count, unless it makes no sense.
void limitFunction(SqliteResult context, SqliteArguments a) {
    if (a[0].isNull()) throw makeDbError(1060);
    const int error = a[1].int32();
    const double count = a[0].real();
    if (count < 0 || (error == 10744 && count == 0) || (error == 1031 && count > 100))
        throw makeDbError(error);
    context.giveCopy(a[0]);
}

// t_share(rows, percent): how many rows that is, a begun one counting whole.
void shareFunction(SqliteResult context, SqliteArguments a) {
    const double rows = static_cast<double>(a[0].integer());
    context.giveInteger(static_cast<int64_t>(std::ceil(rows * a[1].real() / 100)));
}

// t_depth(depth of the row before, most; 0 for no end).
void depthFunction(SqliteResult context, SqliteArguments a) {
    const int64_t depth = a[0].integer() + 1;
    const int64_t most = a[1].integer();
    if (most > 0 && depth > most) throw makeDbError(530, {std::to_string(most)});
    context.giveInteger(depth);
}

// t_distance(n, function): the offset of LAG and LEAD, the parts of NTILE.
void distanceFunction(SqliteResult context, SqliteArguments a) {
    const std::string_view name = a[1].text();
    const int64_t n = a[0].integer();
    if (name == "NTILE" && (a[0].isNull() || n <= 0))
        throw DbError(4116, 16, 1, 0,
                      "The function 'ntile' takes only a positive int or bigint "
                      "expression as its input.");
    if (n < 0)
        throw DbError(8730, 16, 2, 0,
                      "Offset parameter for Lag and Lead functions cannot be a "
                      "negative value.");
    context.giveCopy(a[0]);
}

}  // namespace

void addRowLimitFunctions(Sqlite& sqlite) {
    sqlite.addFunction("t_limit", 2, limitFunction);
    sqlite.addFunction("t_share", 2, shareFunction);
    sqlite.addFunction("t_depth", 2, depthFunction);
    sqlite.addFunction("t_distance", 2, distanceFunction);
}

}  // namespace owb::tsql
