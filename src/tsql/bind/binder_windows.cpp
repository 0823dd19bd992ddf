// Window functions: a call with OVER becomes SQLite's own window call, ordered by T-SQL's
// collation.
#include <algorithm>

#include "base/utf8.h"
#include "tsql/bind/binder.h"

namespace owb::tsql {

namespace {

enum class Order { Forbidden, Needed, Optional };

struct WindowFunction {
    const char* name;
    SqlKind type;  // Null: that of the first argument
    size_t fewest, most;
    bool frame;  // may have one
};

constexpr WindowFunction kFunctions[] = {
    {"ROW_NUMBER", SqlKind::BigInt, 0, 0, false},  {"RANK", SqlKind::BigInt, 0, 0, false},
    {"DENSE_RANK", SqlKind::BigInt, 0, 0, false},  {"NTILE", SqlKind::BigInt, 1, 1, false},
    {"PERCENT_RANK", SqlKind::Float, 0, 0, false}, {"CUME_DIST", SqlKind::Float, 0, 0, false},
    {"LAG", SqlKind::Null, 1, 3, false},           {"LEAD", SqlKind::Null, 1, 3, false},
    {"FIRST_VALUE", SqlKind::Null, 1, 1, true},    {"LAST_VALUE", SqlKind::Null, 1, 1, true}};

// Where the window belongs in an aggregate's form: behind each SQLite aggregate in it.
std::string withWindow(const std::string& pattern, const std::string& window) {
    static constexpr const char* kCalls[] = {"sum(", "count(", "avg(",         "min(",
                                             "max(", "total(", "group_concat("};
    std::string out;
    for (size_t i = 0; i < pattern.size();) {
        bool call = false;
        for (const char* c : kCalls)
            call |= pattern.compare(i, std::string_view(c).size(), c) == 0 &&
                    (i == 0 || !std::isalpha(static_cast<unsigned char>(pattern[i - 1])) ||
                     pattern.compare(i - (i >= 3 ? 3 : 0), 3, "t_n") == 0);
        if (!call) {
            out += pattern[i++];
            continue;
        }
        const size_t close = pattern.find(')', i);
        out += pattern.substr(i, close + 1 - i) + window;
        i = close + 1;
    }
    return out;
}

}  // namespace

bool isWindowName(const std::string& upperName) {
    for (const WindowFunction& f : kFunctions)
        if (upperName == f.name) return true;
    return false;
}

BoundPtr Binder::bindWindow(const Expr& e, const std::string& name) {
    if (windowDepth_ > 0 || aggregateDepth_ > 0) throw makeDbError(4109, {}, e.line);
    if (!windowsAllowed_) throw makeDbError(4108, {}, e.line);
    if (e.distinct) throw makeDbError(10759, {}, e.line);
    struct Inside {
        int& depth;
        explicit Inside(int& d) : depth(d) { ++depth; }
        ~Inside() { --depth; }
    } inside(windowDepth_);
    const bool plain = isWindowName(name);
    BoundPtr call = plain ? bindWindowCall(e, name) : bindAggregateOver(e, name);
    Args args = std::move(call->args);
    const std::string window = bindWindowSpec(*e.over, args);
    BoundPtr r = op(plain ? call->pattern + window : withWindow(call->pattern, window), call->type,
                    std::move(args));
    r->window = true;
    r->nullable = call->nullable;
    return r;
}

// ROW_NUMBER, LAG and the others that exist with OVER alone.
BoundPtr Binder::bindWindowCall(const Expr& e, const std::string& name) {
    const WindowFunction& f = *std::find_if(std::begin(kFunctions), std::end(kFunctions),
                                            [&](const auto& k) { return name == k.name; });
    if (e.args.size() < f.fewest || e.args.size() > f.most)
        throw f.fewest == f.most
            ? makeDbError(174, {name, std::to_string(f.most)}, e.line)
            : makeDbError(189, {name, std::to_string(f.fewest), std::to_string(f.most)}, e.line);
    if (e.over->orderBy.empty()) throw makeDbError(4112, {name}, e.line);
    if (!f.frame && !e.over->frame.empty())
        throw DbError(10752, 15, 3, e.line,
                      "The function '" + name + "' may not have a window frame.");
    Args args;
    for (const ExprPtr& a : e.args) args.push_back(bindValue(*a));
    const bool value = f.type == SqlKind::Null;
    SqlType type = value ? args[0]->type : SqlType::of(f.type);
    if (type.kind == SqlKind::Null) type = SqlType::of(SqlKind::Int);
    std::string pattern = lowerCase(name) + "(";
    for (size_t i = 0; i < args.size(); ++i) {
        args[i] =
            convert(std::move(args[i]), value && i != 1 ? type : SqlType::of(SqlKind::BigInt));
        const std::string at = "$" + std::to_string(i);
        // How far, and in how many parts, must make sense.
        const bool distance = i == 1 || name == "NTILE";
        pattern += (i ? "," : "") + (distance ? "t_distance(" + at + ",'" + name + "')" : at);
    }
    BoundPtr call = op(pattern + ")", type, std::move(args));
    call->nullable = value;
    return call;
}

BoundPtr Binder::bindAggregateOver(const Expr& e, const std::string& name) {
    if (!isAggregateName(name)) throw makeDbError(15281, {name + " OVER"}, e.line);
    const int outer = aggregateDepth_;
    aggregateDepth_ = -1;  // its argument may be an aggregate of the groups
    BoundPtr call = bindAggregate(e, name);
    aggregateDepth_ = outer;
    call->aggregate = false;
    if (call->pattern.find("t_nmin") != std::string::npos ||
        call->pattern.find("t_nmax") != std::string::npos)
        throw makeDbError(15281, {name + " OVER on a numeric beyond 18 digits"}, e.line);
    return call;
}

// " OVER (...)" in SQLite's words, its operands behind those of the call.
std::string Binder::bindWindowSpec(const WindowSpec& spec, Args& args) {
    const auto add = [&](const Expr& x) {
        BoundPtr b = bindValue(x);
        std::string text = "$" + std::to_string(args.size()) + ";";
        if (b->type.isText()) text += " COLLATE TSQL";
        args.push_back(std::move(b));
        return text;
    };
    std::string window = " OVER (";
    for (size_t i = 0; i < spec.partitionBy.size(); ++i)
        window += (i ? "," : "PARTITION BY ") + add(*spec.partitionBy[i]);
    for (size_t i = 0; i < spec.orderBy.size(); ++i) {
        const Expr& x = *spec.orderBy[i].expr;
        if (x.kind == ExprKind::Literal)
            throw makeDbError((*context_.literals)[x.literal].type.isInteger() ? 5308 : 5309, {},
                              x.line);
        window += (i ? "," : " ORDER BY ") + add(x) + (spec.orderBy[i].descending ? " DESC" : "");
    }
    if (!spec.frame.empty()) window += " " + spec.frame;
    return window + ")";
}

}  // namespace owb::tsql
