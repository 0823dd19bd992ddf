// Aggregates that SQLite lacks: texts joined in an order, measures of spread, and the single value
// of a subquery.
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

void spreadStep(SqliteResult context, SqliteArguments a) {
    if (a[0].isNull()) return;
    auto* s = context.state<Spread>();
    if (!s) return;
    const double v = a[0].real();
    const double distance = v - s->mean;
    s->mean += distance / static_cast<double>(++s->count);
    s->squares += distance * (v - s->mean);
}

template <bool kRoot, bool kPopulation>
void spreadFinal(SqliteResult context) {
    const auto* s = context.stateSoFar<Spread>();
    const int64_t divisor = s ? s->count - (kPopulation ? 0 : 1) : 0;
    if (divisor <= 0) return context.giveNull();
    const double variance = s->squares / static_cast<double>(divisor);
    context.giveReal(kRoot ? std::sqrt(variance) : variance);
}

// --- t_one: the single value of a scalar subquery ---

struct OnlyValue {
    KeptValue* value;
};

void oneStep(SqliteResult context, SqliteArguments a) {
    auto* s = context.state<OnlyValue>();
    if (!s) return;
    if (s->value) throw makeDbError(512);
    s->value = new KeptValue(a[0]);
}

void oneFinal(SqliteResult context) {
    auto* s = context.stateSoFar<OnlyValue>();
    if (!s || !s->value) return;
    const std::unique_ptr<KeptValue> value(s->value);
    context.giveCopy(value->get());
}

// --- STRING_AGG ---

struct Joined {
    struct Row {
        std::string text;
        std::vector<KeptValue> keys;
    };
    std::string separator;
    int64_t limit = -1;
    std::vector<bool> descending;
    std::vector<Row> rows;
};

int compareKeys(SqliteValue a, SqliteValue b) {
    if (a.isNull() || b.isNull()) return !a.isNull() - !b.isNull();
    if (a.kind() == SqliteValue::Text) return compareText(a.text(), b.text());
    if (a.kind() == SqliteValue::Real || b.kind() == SqliteValue::Real) {
        const double x = a.real(), y = b.real();
        return (x > y) - (x < y);
    }
    const int128 x = a.wide(), y = b.wide();
    return (x > y) - (x < y);
}

// t_stringagg(limit, text, separator, key, descending, ...)
void joinStep(SqliteResult context, SqliteArguments a) {
    if (a[1].isNull()) return;
    auto** state = context.state<Joined*>();
    if (!state) return;
    if (!*state) {
        *state = new Joined;
        (*state)->separator = a[2].text();
        (*state)->limit = a[0].integer();
        for (int i = 4; i < a.count(); i += 2) (*state)->descending.push_back(a[i].int32() != 0);
    }
    Joined::Row row{std::string(a[1].text()), {}};
    for (int i = 3; i + 1 < a.count(); i += 2) row.keys.emplace_back(a[i]);
    (*state)->rows.push_back(std::move(row));
}

void joinFinal(SqliteResult context) {
    auto** state = context.stateSoFar<Joined*>();
    if (!state || !*state) return context.giveNull();
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
    if (joined->limit > 0 && static_cast<int64_t>(utf8Length(out)) > joined->limit)
        throw makeDbError(9829);
    context.giveText(out);
}

}  // namespace

void addAggregates(Sqlite& sqlite) {
    sqlite.addAggregate("t_agg_stdev", 1, {spreadStep, spreadFinal<true, false>});
    sqlite.addAggregate("t_agg_stdevp", 1, {spreadStep, spreadFinal<true, true>});
    sqlite.addAggregate("t_agg_var", 1, {spreadStep, spreadFinal<false, false>});
    sqlite.addAggregate("t_agg_varp", 1, {spreadStep, spreadFinal<false, true>});
    sqlite.addAggregate("t_one", 1, {oneStep, oneFinal});
    sqlite.addAggregate("t_stringagg", -1, {joinStep, joinFinal});
}

}  // namespace owb::tsql
