// The aggregate functions.
#include <algorithm>

#include "base/utf8.h"
#include "tsql/bind/function_call.h"

namespace owb::tsql {

bool isAggregateName(const std::string& n) {
    return n == "COUNT" || n == "SUM" || n == "MIN" || n == "MAX" || n == "AVG" ||
           n == "COUNT_BIG" || n == "STRING_AGG" || n == "STDEV" || n == "STDEVP" || n == "VAR" ||
           n == "VARP";
}

BoundPtr Binder::bindAggregate(const Expr& e, const std::string& name) {
    if (aggregateDepth_ > 0) throw makeDbError(130, {}, e.line);
    const bool counts = name == "COUNT" || name == "COUNT_BIG";
    const SqlType& number = name == "COUNT" ? kInt : kBigInt;
    const std::string distinct = e.distinct ? "DISTINCT " : "";
    BoundPtr r;
    if (counts && e.args.size() == 1 && e.args[0]->kind == ExprKind::Star) {
        r = op("count(*)", number, {});
    } else {
        if (e.args.size() != (name == "STRING_AGG" ? 2u : 1u))
            throw makeDbError(174, {lowerCase(name), "1"}, e.line);
        BoundPtr a = aggregated(*e.args[0]);
        const SqlType t = a->type;
        if (t.kind == SqlKind::Null && name != "STRING_AGG")
            throw makeDbError(8117, {"NULL", lowerCase(name)}, e.line);
        const std::string collate = t.isText() ? " COLLATE TSQL" : "";
        if (counts) {
            r = op("count(" + distinct + "$0" + collate + ")", number, list(std::move(a)));
        } else if (name == "MIN" || name == "MAX") {
            if (t.kind == SqlKind::Bit) throw makeDbError(8117, {"bit", lowerCase(name)}, e.line);
            const std::string f = !isWide(t)      ? lowerCase(name)
                                  : name == "MIN" ? "t_nmin"
                                                  : "t_nmax";
            r = op(f + "($0" + collate + ")", t, list(std::move(a)));
        } else if (name == "STRING_AGG") {
            r = bindStringAggregate(e, std::move(a));
        } else {
            if (!t.isNumber() || t.kind == SqlKind::Bit)
                throw makeDbError(8117, {t.name(), lowerCase(name)}, e.line);
            r = bindNumberAggregate(name, distinct, std::move(a));
        }
    }
    r->aggregate = true;
    if (counts) r->nullable = false;
    return r;
}

// The argument of an aggregate: there is no other one in it.
BoundPtr Binder::aggregated(const Expr& e) {
    struct Inside {
        int& depth;
        explicit Inside(int& d) : depth(d) { ++depth; }
        ~Inside() { --depth; }
    } inside(aggregateDepth_);
    return bindValue(e);
}

// SUM, AVG and the measures of spread.
BoundPtr Binder::bindNumberAggregate(const std::string& name, const std::string& distinct,
                                     BoundPtr a) {
    const SqlType t = a->type;
    if (name.starts_with("STDEV") || name.starts_with("VAR")) {
        a = convert(std::move(a), kFloat);
        return op("t_agg_" + lowerCase(name) + "(" + distinct + "$0)", kFloat, list(std::move(a)));
    }
    const bool sums = name == "SUM";
    const std::string sum = (isWide(t) ? "t_nsum(" : "sum(") + distinct + "$0)";
    const std::string count = "count(" + distinct + "$0)";
    if (t.isFloating())
        return op(sums ? sum : "avg(" + distinct + "$0)", kFloat, list(std::move(a)));
    if (t.kind == SqlKind::Numeric) {
        if (sums) return op(sum, SqlType::numeric(38, t.scale), list(std::move(a)));
        const int scale = std::max<int>(t.scale, 6);
        return op("t_num('/'," + sum + "," + std::to_string(t.scale) + "," + count + ",0," +
                      std::to_string(scale) + ")",
                  SqlType::numeric(38, scale), list(std::move(a)));
    }
    // Whole numbers and money, which is held as such.
    const SqlType total = t.isMoney()                 ? SqlType::of(SqlKind::Money)
                          : t.kind == SqlKind::BigInt ? kBigInt
                                                      : kInt;
    if (!sums) return op("t_idiv(" + sum + ",nullif(" + count + ",0))", total, list(std::move(a)));
    if (total.kind != SqlKind::Int) return op(sum, total, list(std::move(a)));
    return op("t_int(" + sum + "," + std::to_string(static_cast<int>(SqlKind::Int)) + ")", kInt,
              list(std::move(a)));
}

// STRING_AGG(text, separator) WITHIN GROUP (ORDER BY ...): NULLs are left out.
BoundPtr Binder::bindStringAggregate(const Expr& e, BoundPtr value) {
    SqlType type = value->type.isText() && !value->type.isUnicode() ? kVarChar : kNVarChar;
    if (value->type.length == SqlType::kMax) type.length = SqlType::kMax;
    Args args;
    args.push_back(convert(std::move(value), type));
    args.push_back(convert(bindValue(*e.args[1]), type));
    std::string pattern = "t_stringagg(" + std::to_string(type.length) + ",$0,$1";
    for (const OrderItem& item : e.within) {
        pattern += ",$" + std::to_string(args.size()) + (item.descending ? ";,1" : ";,0");
        args.push_back(bindValue(*item.expr));
    }
    return op(pattern + ")", type, std::move(args));
}

}  // namespace owb::tsql
