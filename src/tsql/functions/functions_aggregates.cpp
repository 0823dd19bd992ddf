// Aggregates that SQLite lacks: texts joined in an order, and measures of spread.
#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "base/utf8.h"
#include "tsql/functions/functions.h"

namespace owb::tsql {

namespace {

// --- STDEV and VAR: mean and squared distance from it, carried along ---

struct Spread {
    int64_t count;
    double mean, squares;
};

void spreadStep(sqlite3_context* context, int, sqlite3_value** a) {
    if (sqlite3_value_type(a[0]) == SQLITE_NULL) return;
    auto* s = static_cast<Spread*>(sqlite3_aggregate_context(context, sizeof(Spread)));
    if (!s) return;
    const double v = sqlite3_value_double(a[0]);
    const double distance = v - s->mean;
    s->mean += distance / static_cast<double>(++s->count);
    s->squares += distance * (v - s->mean);
}

template <bool kRoot, bool kPopulation>
void spreadFinal(sqlite3_context* context) {
    const auto* s = static_cast<Spread*>(sqlite3_aggregate_context(context, 0));
    const int64_t divisor = s ? s->count - (kPopulation ? 0 : 1) : 0;
    if (divisor <= 0) return sqlite3_result_null(context);
    const double variance = s->squares / static_cast<double>(divisor);
    sqlite3_result_double(context, kRoot ? std::sqrt(variance) : variance);
}

// --- STRING_AGG ---

struct Joined {
    struct ValueDeleter {
        void operator()(sqlite3_value* v) const { sqlite3_value_free(v); }
    };
    struct Row {
        std::string text;
        std::vector<std::unique_ptr<sqlite3_value, ValueDeleter>> keys;
    };
    std::string separator;
    int64_t limit = -1;
    std::vector<bool> descending;
    std::vector<Row> rows;
};

int compareKeys(sqlite3_value* a, sqlite3_value* b) {
    const int ta = sqlite3_value_type(a), tb = sqlite3_value_type(b);
    if (ta == SQLITE_NULL || tb == SQLITE_NULL) return (ta != SQLITE_NULL) - (tb != SQLITE_NULL);
    if (ta == SQLITE_TEXT) return compareText(argumentText(a), argumentText(b));
    if (ta == SQLITE_FLOAT || tb == SQLITE_FLOAT) {
        const double x = sqlite3_value_double(a), y = sqlite3_value_double(b);
        return (x > y) - (x < y);
    }
    const int128 x = wideNumber(a), y = wideNumber(b);
    return (x > y) - (x < y);
}

// t_stringagg(limit, text, separator, key, descending, ...)
void joinStep(sqlite3_context* context, int n, sqlite3_value** a) {
    if (sqlite3_value_type(a[1]) == SQLITE_NULL) return;
    auto** state = static_cast<Joined**>(sqlite3_aggregate_context(context, sizeof(Joined*)));
    if (!state) return;
    if (!*state) {
        *state = new Joined;
        (*state)->separator = argumentText(a[2]);
        (*state)->limit = sqlite3_value_int64(a[0]);
        for (int i = 4; i < n; i += 2) (*state)->descending.push_back(sqlite3_value_int(a[i]) != 0);
    }
    Joined::Row row{std::string(argumentText(a[1])), {}};
    for (int i = 3; i + 1 < n; i += 2) row.keys.emplace_back(sqlite3_value_dup(a[i]));
    (*state)->rows.push_back(std::move(row));
}

void joinFinal(sqlite3_context* context) {
    auto** state = static_cast<Joined**>(sqlite3_aggregate_context(context, 0));
    if (!state || !*state) return sqlite3_result_null(context);
    const std::unique_ptr<Joined> joined(*state);
    *state = nullptr;
    std::stable_sort(joined->rows.begin(), joined->rows.end(),
                     [&](const Joined::Row& x, const Joined::Row& y) {
                         for (size_t i = 0; i < x.keys.size(); ++i) {
                             const int order = compareKeys(x.keys[i].get(), y.keys[i].get());
                             if (order != 0) return joined->descending[i] ? order > 0 : order < 0;
                         }
                         return false;
                     });
    std::string out;
    for (size_t i = 0; i < joined->rows.size(); ++i)
        out += (i ? joined->separator : "") + joined->rows[i].text;
    if (joined->limit > 0 && static_cast<int64_t>(utf8Length(out)) > joined->limit) {
        static_cast<Sqlite*>(sqlite3_user_data(context))->raise(makeDbError(9829));
        return sqlite3_result_error(context, "too long", -1);
    }
    resultText(context, out);
}

}  // namespace

void registerAggregates(Sqlite& sqlite) {
    const auto spread = [&](const char* name, void (*final)(sqlite3_context*)) {
        sqlite3_create_function_v2(sqlite.handle(), name, 1, SQLITE_UTF8, nullptr, nullptr,
                                   spreadStep, final, nullptr);
    };
    spread("t_agg_stdev", spreadFinal<true, false>);
    spread("t_agg_stdevp", spreadFinal<true, true>);
    spread("t_agg_var", spreadFinal<false, false>);
    spread("t_agg_varp", spreadFinal<false, true>);
    sqlite3_create_function_v2(sqlite.handle(), "t_stringagg", -1, SQLITE_UTF8, &sqlite, nullptr,
                               joinStep, joinFinal, nullptr);
}

}  // namespace owb::tsql
