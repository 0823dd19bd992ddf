// Conversions: as SQLite's own operators where these do, otherwise by a function.
#include <algorithm>

#include "tsql/bind/typed_expressions.h"
#include "tsql/types/types.h"

namespace owb::tsql {

namespace {

// The length of a text with literals in it is that of this run alone.
bool hasTextLiteral(const BoundExpr& e) {
    if (e.kind == BoundKind::Literal && e.index >= 0 && e.type.isText()) return true;
    return std::any_of(e.args.begin(), e.args.end(),
                       [](const BoundPtr& a) { return hasTextLiteral(*a); });
}

std::string ofWhole(const SqlType& from, const SqlType& to, bool checked) {
    if (to.kind == SqlKind::Bit) return "($0 <> 0)";
    if (to.isInteger() && to.kind > from.kind) return "$0";
    if (to.kind == SqlKind::Numeric && to.precision <= kNarrowPrecision &&
        digitsOf(from) <= to.precision - to.scale)
        return to.scale == 0 ? "$0" : "($0 * " + powerText(to.scale) + ")";
    if (to.kind == SqlKind::Float) return "CAST($0 AS REAL)";
    if (to.kind == SqlKind::DateTime && !checked) return "$0";
    if (to.isText() && !to.isFixedText() &&
        (to.length == SqlType::kMax || to.length > digitsOf(from)))
        return "CAST($0 AS TEXT)";
    return "";
}

std::string ofNumeric(const SqlType& from, const SqlType& to) {
    if (!isWide(from) && !isWide(to) && to.scale >= from.scale &&
        to.precision - to.scale >= from.precision - from.scale)
        return to.scale == from.scale ? "$0" : "($0 * " + powerText(to.scale - from.scale) + ")";
    return isWide(from) && isWide(to) && to.scale == from.scale && to.precision >= from.precision
               ? "$0"
               : "";
}

}  // namespace

BoundPtr TypedExpressions::convert(BoundPtr e, const SqlType& to) {
    requireConversion(e->type, to, false);
    return cast(std::move(e), to, -1, false, false);
}

// The conversion without a style in SQLite's own words; "" where these do not do it.
std::string TypedExpressions::directPattern(const BoundExpr& e, const SqlType& to,
                                            bool checked) const {
    const SqlType& from = e.type;
    std::string pattern;
    if (from.isInteger()) pattern = ofWhole(from, to, checked);
    if (from.kind == SqlKind::Numeric && to.kind == SqlKind::Numeric) pattern = ofNumeric(from, to);
    if (!pattern.empty()) return pattern;
    if (from.isDecimal() && to.kind == SqlKind::Float && !isWide(from))
        return "(CAST($0 AS REAL) / " + powerText(from.scale) + ".0)";
    if (from.isText() && to.isText() && !to.isFixedText()) {
        const bool fits =
            to.length == SqlType::kMax ||
            (from.length != SqlType::kMax && from.length <= to.length && !hasTextLiteral(e));
        return fits ? "$0" : "substr($0,1," + std::to_string(to.length) + ")";
    }
    return from.kind == SqlKind::Date && to.kind == SqlKind::DateTime && !checked ? "$0" : "";
}

BoundPtr TypedExpressions::cast(BoundPtr e, const SqlType& to, int style, bool tryCast,
                                bool checked) {
    const SqlType from = e->type;
    if (e->predicate) throw makeDbError(102, {"="});
    if (from == to && style < 0) return e;
    if (e->kind == BoundKind::Null) {
        e->type = to;
        return e;
    }
    // A literal or variable converts once, when it is handed over. In a branch that may never
    // run, a text's conversion must wait until the branch does.
    const bool waits = conditional_ > 0 && from.isText() && !to.isText();
    if ((e->kind == BoundKind::Literal || e->kind == BoundKind::Variable) &&
        e->type == e->sourceType && style < 0 && !tryCast && !waits && !to.isFixedText()) {
        e->type = to;
        return e;
    }
    std::string pattern;
    if (style < 0 && !tryCast) pattern = directPattern(*e, to, checked);
    if (pattern.empty())
        pattern = std::string(tryCast ? "t_trycv" : "t_cv") + "($0," +
                  std::to_string(packType(from)) + "," + std::to_string(packType(to)) + "," +
                  std::to_string(style) + ")";
    const bool nullable = e->nullable;
    BoundPtr r = op(std::move(pattern), to, list(std::move(e)));
    r->nullable = nullable;
    return r;
}

BoundPtr TypedExpressions::assign(BoundPtr e, const CatalogTable& table,
                                  const CatalogColumn& column) {
    const SqlType from = e->type;
    const SqlType& to = column.type;
    // A number that is too long for its text is a star or an overflow, not cut.
    const bool mayNotFit =
        !from.isNumber() && to.isText() && to.length != SqlType::kMax &&
        from.kind != SqlKind::Null &&
        (from.isText() ? from.length == SqlType::kMax || from.length > to.length ||
                             to.isFixedText() || hasTextLiteral(*e)
                       : true);
    if (!mayNotFit) {
        // The only numeric literals whose places do not shape the plan.
        if (e->kind == BoundKind::Literal && e->index >= 0 && e->type == e->sourceType &&
            to.isNumber())
            (*context_.literals)[e->index].typeFixed = false;
        return convert(std::move(e), to);
    }
    SqlType wide = to;
    wide.kind = to.isUnicode() ? SqlKind::NVarChar : SqlKind::VarChar;
    wide.length = from.isText() ? SqlType::kMax : 8000;
    const bool nullable = e->nullable;
    e = convert(std::move(e), wide);
    BoundPtr r = op(
        "t_fit($0," + std::to_string(to.length) + "," + (to.isFixedText() ? "1" : "0") + ",$1,$2)",
        to,
        list(std::move(e), verbatim(sqliteText(context_.catalog.fullName(table)), to),
             verbatim(sqliteText(column.name), to)));
    r->nullable = nullable;
    return r;
}

}  // namespace owb::tsql
