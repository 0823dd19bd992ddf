// The built-in functions: for each its argument count, the types it takes and gives, and the form
// in which SQLite computes it.
#include <algorithm>
#include <unordered_map>

#include "base/utf8.h"
#include "tsql/binder.h"
#include "tsql/types.h"

namespace owb::tsql {

namespace {

using Args = std::vector<BoundPtr>;

const SqlType kBit = SqlType::of(SqlKind::Bit);
const SqlType kInt = SqlType::of(SqlKind::Int);
const SqlType kBigInt = SqlType::of(SqlKind::BigInt);
const SqlType kFloat = SqlType::of(SqlKind::Float);
const SqlType kDateTime = SqlType::of(SqlKind::DateTime);
const SqlType kVarChar = SqlType::text(SqlKind::VarChar, 8000);
const SqlType kSysName = SqlType::text(SqlKind::NVarChar, 128);

struct Call {
    Binder& binder;
    const Expr& expr;
    const std::string& name;
    Args args;

    BoundPtr take(size_t i) { return std::move(args[i]); }
    BoundPtr take(size_t i, const SqlType& type) {
        return binder.convert(std::move(args[i]), type);
    }
    // As text, keeping the text type that it has.
    BoundPtr text(size_t i) {
        if (args[i]->type.isText()) return take(i);
        return take(i, kVarChar);
    }
    BoundPtr op(std::string pattern, SqlType type, Args a) {
        return binder.op(std::move(pattern), type, std::move(a));
    }
};

template <class... A>
Args list(A... a) {
    Args v;
    (v.push_back(std::move(a)), ...);
    return v;
}

SqlType widened(SqlType type, int32_t length) {
    type.kind = type.isUnicode() ? SqlKind::NVarChar : SqlKind::VarChar;
    if (type.length != SqlType::kMax) type.length = length;
    return type;
}

using Maker = BoundPtr (*)(Call&);

// --- NULL handling and choice ---

BoundPtr makeIsNull(Call& c) {
    BoundPtr a = c.take(0), b = c.take(1);
    if (a->kind == BoundKind::Null && a->type.kind == SqlKind::Null)
        a = c.binder.convert(std::move(a), b->type.kind == SqlKind::Null ? kInt : b->type);
    const bool nullable = b->nullable;
    // An untyped literal's length must not cut the replacement.
    SqlType type = a->type;
    if (type.isText() && a->kind == BoundKind::Literal) type.length = 8000;
    b = c.binder.convert(std::move(b), type);
    type = a->type;
    BoundPtr r = c.op("ifnull($0,$1)", type, list(std::move(a), std::move(b)));
    r->nullable = nullable;
    return r;
}

BoundPtr makeCoalesce(Call& c) {
    std::vector<BoundPtr*> all;
    bool nullable = true;
    for (BoundPtr& a : c.args) {
        all.push_back(&a);
        nullable &= a->nullable;
    }
    const SqlType type = c.binder.unify(all);
    BoundPtr r = c.op(c.args.size() == 1 ? "$0" : "coalesce($*)", type, std::move(c.args));
    r->nullable = nullable;
    return r;
}

BoundPtr makeNullIf(Call& c) {
    const SqlType type = c.args[0]->type.kind == SqlKind::Null ? kInt : c.args[0]->type;
    BoundPtr a = c.take(0, type);
    BoundPtr same = c.binder.compare("=", c.binder.bindValue(*c.expr.args[0]), c.take(1));
    return c.op("(CASE WHEN $0 THEN NULL ELSE $1 END)", type, list(std::move(same), std::move(a)));
}

BoundPtr makeIif(Call& c) {
    BoundPtr condition = c.binder.bindCondition(*c.expr.args[0]);
    BoundPtr a = c.binder.bindValue(*c.expr.args[1]), b = c.binder.bindValue(*c.expr.args[2]);
    const SqlType type = c.binder.unify({&a, &b});
    return c.op("(CASE WHEN $0 THEN $1 ELSE $2 END)", type,
                list(std::move(condition), std::move(a), std::move(b)));
}

// --- text ---

BoundPtr makeUpper(Call& c) {
    BoundPtr a = c.text(0);
    const SqlType t = a->type;
    return c.op(c.name == "UPPER" ? "t_upper($0)" : "t_lower($0)", t, list(std::move(a)));
}

BoundPtr makeTrim(Call& c) {
    BoundPtr a = c.text(0);
    const SqlType t = widened(a->type, a->type.length);
    const std::string f = c.name == "LTRIM" ? "ltrim" : c.name == "RTRIM" ? "rtrim" : "trim";
    return c.op(f + "($0,' ')", t, list(std::move(a)));
}

BoundPtr makeLen(Call& c) {
    if (c.name == "DATALENGTH") {
        const SqlType type = c.args[0]->type;
        BoundPtr a = c.take(0);
        if (!type.isText()) throw makeDbError(15281, {"DATALENGTH of a value that is no text"});
        return c.op(type.isUnicode() ? "(2 * length($0))" : "length($0)", kInt, list(std::move(a)));
    }
    return c.op("length(rtrim($0,' '))", kInt, list(c.text(0)));
}

BoundPtr makeLeftRight(Call& c) {
    BoundPtr a = c.text(0);
    const SqlType t = widened(a->type, a->type.length);
    const std::string f = c.name == "LEFT" ? "t_left" : "t_right";
    return c.op(f + "($0,$1)", t, list(std::move(a), c.take(1, kInt)));
}

BoundPtr makeSubstring(Call& c) {
    BoundPtr a = c.text(0);
    const SqlType t = widened(a->type, a->type.length);
    return c.op("t_substring($0,$1,$2)", t, list(std::move(a), c.take(1, kInt), c.take(2, kInt)));
}

BoundPtr makeCharIndex(Call& c) {
    if (c.args.size() == 3)
        return c.op("t_charindex($0,$1,$2)", kInt, list(c.text(0), c.text(1), c.take(2, kInt)));
    return c.op("t_charindex($0,$1,1)", kInt, list(c.text(0), c.text(1)));
}

BoundPtr makePatIndex(Call& c) {
    return c.op("t_patindex($0,$1)", kInt, list(c.text(0), c.text(1)));
}

BoundPtr makeReplace(Call& c) {
    BoundPtr a = c.text(0);
    const SqlType t = widened(a->type, 8000);
    return c.op("t_replace($0,$1,$2)", t, list(std::move(a), c.text(1), c.text(2)));
}

BoundPtr makeStuff(Call& c) {
    BoundPtr a = c.text(0);
    const SqlType t = widened(a->type, 8000);
    return c.op("t_stuff($0,$1,$2,$3)", t,
                list(std::move(a), c.take(1, kInt), c.take(2, kInt), c.text(3)));
}

BoundPtr makeStr(Call& c) {
    Args a;
    a.push_back(c.take(0, kFloat));
    a.push_back(c.args.size() > 1 ? c.take(1, kInt) : c.binder.constant(Value(10), kInt));
    a.push_back(c.args.size() > 2 ? c.take(2, kInt) : c.binder.constant(Value(0), kInt));
    return c.op("t_str($0,$1,$2)", SqlType::text(SqlKind::VarChar, 40), std::move(a));
}

BoundPtr makeReplicate(Call& c) {
    BoundPtr a = c.text(0);
    const SqlType t = widened(a->type, 8000);
    return c.op("t_replicate($0,$1)", t, list(std::move(a), c.take(1, kInt)));
}

BoundPtr makeSpace(Call& c) {
    return c.op("t_replicate(' ',$0)", kVarChar, list(c.take(0, kInt)));
}

BoundPtr makeReverse(Call& c) {
    BoundPtr a = c.text(0);
    const SqlType t = a->type;
    return c.op("t_reverse($0)", t, list(std::move(a)));
}

BoundPtr makeAscii(Call& c) {
    return c.op(c.name == "ASCII" ? "t_ascii($0)" : "t_unicode($0)", kInt, list(c.text(0)));
}

BoundPtr makeChar(Call& c) {
    const bool wide = c.name == "NCHAR";
    return c.op(wide ? "t_nchar($0)" : "t_char($0)",
                SqlType::text(wide ? SqlKind::NVarChar : SqlKind::VarChar, 1),
                list(c.take(0, kInt)));
}

BoundPtr makeConcat(Call& c) {
    std::string pattern;
    SqlType type = kVarChar;
    for (size_t i = 0; i < c.args.size(); ++i) {
        if (c.args[i]->type.isUnicode()) type = SqlType::text(SqlKind::NVarChar, 4000);
        c.args[i] = c.text(i);
        pattern += (i ? " || ifnull($" : "ifnull($") + std::to_string(i) + ";,'')";
    }
    return c.op("(" + pattern + ")", type, std::move(c.args));
}

BoundPtr makeQuoteName(Call& c) {
    return c.op("('[' || replace($0,']',']]') || ']')", SqlType::text(SqlKind::NVarChar, 258),
                list(c.text(0)));
}

BoundPtr makeIsNumeric(Call& c) {
    if (c.args[0]->type.isNumber()) return c.op("($0 IS NOT NULL)", kInt, list(c.take(0)));
    return c.op(c.name == "ISDATE" ? "t_isdate($0)" : "t_isnumeric($0)", kInt, list(c.text(0)));
}

// --- numbers ---

// Text and NULL count as float in the number functions, bit and the small kinds as int.
BoundPtr numberArgument(Call& c, size_t i) {
    const SqlType& t = c.args[i]->type;
    if (!t.isNumber()) return c.take(i, kFloat);
    if (t.kind == SqlKind::Bit || t.kind == SqlKind::TinyInt || t.kind == SqlKind::SmallInt)
        return c.take(i, kInt);
    return c.take(i);
}

std::string code(const SqlType& t) {
    return std::to_string(packType(t));
}

BoundPtr makeAbs(Call& c) {
    BoundPtr a = numberArgument(c, 0);
    const SqlType t = a->type;
    if (t.kind == SqlKind::Numeric && t.precision > kNarrowPrecision)
        return c.op("t_abs($0)", t, list(std::move(a)));
    if (t.isInteger())
        return c.op("t_int(abs($0)," + std::to_string(static_cast<int>(t.kind)) + ")", t,
                    list(std::move(a)));
    return c.op("abs($0)", t, list(std::move(a)));
}

BoundPtr makeFloor(Call& c) {
    BoundPtr a = numberArgument(c, 0);
    const SqlType t = a->type;
    const SqlType result = t.kind == SqlKind::Numeric ? SqlType::numeric(t.precision, 0) : t;
    if (t.isInteger()) return a;
    const std::string f = c.name == "FLOOR" ? "t_floor" : "t_ceiling";
    return c.op(f + "($0," + code(t) + ")", result, list(std::move(a)));
}

BoundPtr makeRound(Call& c) {
    BoundPtr a = numberArgument(c, 0);
    const SqlType t = a->type;
    BoundPtr cut = c.args.size() > 2 ? c.take(2, kInt) : c.binder.constant(Value(0), kInt);
    return c.op("t_round($0,$1,$2," + code(t) + ")", t,
                list(std::move(a), c.take(1, kInt), std::move(cut)));
}

BoundPtr makeSign(Call& c) {
    BoundPtr a = numberArgument(c, 0);
    const SqlType t = a->type;
    if (t.kind == SqlKind::Numeric)
        return c.op("t_sign($0," + code(t) + ")", t, list(std::move(a)));
    return c.op(t.kind == SqlKind::Float ? "CAST(sign($0) AS REAL)" : "sign($0)", t,
                list(std::move(a)));
}

BoundPtr makePower(Call& c) {
    BoundPtr a = numberArgument(c, 0);
    const SqlType t = a->type;
    a = c.binder.convert(std::move(a), kFloat);
    BoundPtr r = c.op("t_math('POWER',$0,$1)", kFloat, list(std::move(a), c.take(1, kFloat)));
    return c.binder.convert(std::move(r), t);
}

BoundPtr makeMath(Call& c) {
    const std::string quoted = "t_math('" + c.name + "'";
    if (c.args.empty()) return c.op(quoted + ")", kFloat, {});
    if (c.args.size() == 2)
        return c.op(quoted + ",$0,$1)", kFloat, list(c.take(0, kFloat), c.take(1, kFloat)));
    return c.op(quoted + ",$0)", kFloat, list(c.take(0, kFloat)));
}

// --- dates ---

// The unit that a date-part word names, as the functions' first argument; "" when unknown.
std::string datePart(const std::string& word) {
    static const std::unordered_map<std::string, std::string> parts = {
        {"YEAR", "year"},       {"YY", "year"},
        {"YYYY", "year"},       {"QUARTER", "quarter"},
        {"QQ", "quarter"},      {"Q", "quarter"},
        {"MONTH", "month"},     {"MM", "month"},
        {"M", "month"},         {"DAYOFYEAR", "dayofyear"},
        {"DY", "dayofyear"},    {"Y", "dayofyear"},
        {"DAY", "day"},         {"DD", "day"},
        {"D", "day"},           {"WEEK", "week"},
        {"WK", "week"},         {"WW", "week"},
        {"WEEKDAY", "weekday"}, {"DW", "weekday"},
        {"W", "weekday"},       {"HOUR", "hour"},
        {"HH", "hour"},         {"MINUTE", "minute"},
        {"MI", "minute"},       {"N", "minute"},
        {"SECOND", "second"},   {"SS", "second"},
        {"S", "second"},        {"MILLISECOND", "millisecond"},
        {"MS", "millisecond"},  {"ISO_WEEK", "isoweek"},
        {"ISOWK", "isoweek"},   {"ISOWW", "isoweek"}};
    const auto found = parts.find(upperCase(word));
    return found == parts.end() ? "" : found->second;
}

std::string partOf(Call& c) {
    const std::string& word = c.expr.args[0]->name.last();
    const std::string part = datePart(word);
    if (part.empty())
        throw DbError(155, 15, 1, c.expr.line,
                      "'" + word + "' is not a recognized " + lowerCase(c.name) + " option.");
    return part;
}

BoundPtr dateArgument(Binder& b, const Expr& e) {
    BoundPtr d = b.bindValue(e);
    if (d->type.kind == SqlKind::Date) return d;
    return b.convert(std::move(d), kDateTime);
}

BoundPtr makeDateAdd(Call& c) {
    const std::string part = partOf(c);
    BoundPtr n = c.binder.convert(c.binder.bindValue(*c.expr.args[1]), kInt);
    BoundPtr d = dateArgument(c.binder, *c.expr.args[2]);
    const SqlType t = d->type;
    return c.op("t_dateadd('" + part + "',$0,$1)", t, list(std::move(n), std::move(d)));
}

BoundPtr makeDateDiff(Call& c) {
    const std::string part = partOf(c);
    BoundPtr a = dateArgument(c.binder, *c.expr.args[1]);
    BoundPtr b = dateArgument(c.binder, *c.expr.args[2]);
    return c.op("t_datediff('" + part + "',$0,$1)", kInt, list(std::move(a), std::move(b)));
}

BoundPtr makeDatePart(Call& c) {
    const std::string part = partOf(c);
    BoundPtr d = dateArgument(c.binder, *c.expr.args[1]);
    const bool name = c.name == "DATENAME";
    return c.op((name ? "t_datename('" : "t_datepart('") + part + "',$0)",
                name ? SqlType::text(SqlKind::NVarChar, 30) : kInt, list(std::move(d)));
}

BoundPtr makeDay(Call& c) {
    BoundPtr d = c.args[0]->type.kind == SqlKind::Date ? c.take(0) : c.take(0, kDateTime);
    const std::string part = c.name == "DAY" ? "day" : c.name == "MONTH" ? "month" : "year";
    return c.op("t_datepart('" + part + "',$0)", kInt, list(std::move(d)));
}

BoundPtr makeNow(Call& c) {
    return c.op("t_now()", kDateTime, {});
}

BoundPtr makeEoMonth(Call& c) {
    BoundPtr n = c.args.size() > 1 ? c.take(1, kInt) : c.binder.constant(Value(0), kInt);
    return c.op("t_eomonth($0,$1)", SqlType::of(SqlKind::Date),
                list(c.take(0, kDateTime), std::move(n)));
}

BoundPtr makeDateFromParts(Call& c) {
    return c.op("t_dateparts($0,$1,$2)", SqlType::of(SqlKind::Date),
                list(c.take(0, kInt), c.take(1, kInt), c.take(2, kInt)));
}

// --- the session and the catalog ---

BoundPtr makeSession(Call& c) {
    SqlType type = kSysName;
    if (c.name == "DB_ID") type = SqlType::of(SqlKind::SmallInt);
    if (c.name == "SCOPE_IDENTITY") type = SqlType::numeric(38, 0);
    if (c.name == "ERROR_NUMBER" || c.name == "ERROR_SEVERITY" || c.name == "ERROR_STATE" ||
        c.name == "ERROR_LINE" || c.name == "XACT_STATE")
        type = kInt;
    if (c.name == "ERROR_MESSAGE") type = SqlType::text(SqlKind::NVarChar, 4000);
    return c.op("t_system('" + c.name + "')", type, {});
}

BoundPtr makeObjectId(Call& c) {
    if (c.args.size() == 2) return c.op("t_objectid($0,$1)", kInt, list(c.text(0), c.text(1)));
    return c.op("t_objectid($0,NULL)", kInt, list(c.text(0)));
}

BoundPtr makeColLength(Call& c) {
    return c.op("t_collength($0,$1)", SqlType::of(SqlKind::SmallInt), list(c.text(0), c.text(1)));
}

BoundPtr makeIdentCurrent(Call& c) {
    return c.op("t_identcurrent($0)", SqlType::numeric(38, 0), list(c.text(0)));
}

BoundPtr makeNewId(Call& c) {
    return c.op("t_newid()", SqlType::text(SqlKind::VarChar, 36), {});
}

struct Builtin {
    size_t minimum, maximum;
    Maker make;
    bool lazy = false;  // binds its arguments itself
};

const std::unordered_map<std::string, Builtin>& builtins() {
    static const std::unordered_map<std::string, Builtin> table = {
        {"ISNULL", {2, 2, makeIsNull}},
        {"COALESCE", {1, 30, makeCoalesce}},
        {"NULLIF", {2, 2, makeNullIf}},
        {"IIF", {3, 3, makeIif, true}},
        {"UPPER", {1, 1, makeUpper}},
        {"LOWER", {1, 1, makeUpper}},
        {"LTRIM", {1, 1, makeTrim}},
        {"RTRIM", {1, 1, makeTrim}},
        {"TRIM", {1, 1, makeTrim}},
        {"LEN", {1, 1, makeLen}},
        {"DATALENGTH", {1, 1, makeLen}},
        {"LEFT", {2, 2, makeLeftRight}},
        {"RIGHT", {2, 2, makeLeftRight}},
        {"SUBSTRING", {3, 3, makeSubstring}},
        {"CHARINDEX", {2, 3, makeCharIndex}},
        {"PATINDEX", {2, 2, makePatIndex}},
        {"REPLACE", {3, 3, makeReplace}},
        {"STUFF", {4, 4, makeStuff}},
        {"STR", {1, 3, makeStr}},
        {"REPLICATE", {2, 2, makeReplicate}},
        {"SPACE", {1, 1, makeSpace}},
        {"REVERSE", {1, 1, makeReverse}},
        {"ASCII", {1, 1, makeAscii}},
        {"UNICODE", {1, 1, makeAscii}},
        {"CHAR", {1, 1, makeChar}},
        {"NCHAR", {1, 1, makeChar}},
        {"CONCAT", {2, 254, makeConcat}},
        {"QUOTENAME", {1, 1, makeQuoteName}},
        {"ISNUMERIC", {1, 1, makeIsNumeric}},
        {"ISDATE", {1, 1, makeIsNumeric}},
        {"ABS", {1, 1, makeAbs}},
        {"FLOOR", {1, 1, makeFloor}},
        {"CEILING", {1, 1, makeFloor}},
        {"ROUND", {2, 3, makeRound}},
        {"SIGN", {1, 1, makeSign}},
        {"POWER", {2, 2, makePower}},
        {"SQRT", {1, 1, makeMath}},
        {"SQUARE", {1, 1, makeMath}},
        {"EXP", {1, 1, makeMath}},
        {"LOG", {1, 2, makeMath}},
        {"LOG10", {1, 1, makeMath}},
        {"SIN", {1, 1, makeMath}},
        {"COS", {1, 1, makeMath}},
        {"TAN", {1, 1, makeMath}},
        {"ASIN", {1, 1, makeMath}},
        {"ACOS", {1, 1, makeMath}},
        {"ATAN", {1, 1, makeMath}},
        {"ATN2", {2, 2, makeMath}},
        {"PI", {0, 0, makeMath}},
        {"RADIANS", {1, 1, makeMath}},
        {"DEGREES", {1, 1, makeMath}},
        {"DATEADD", {3, 3, makeDateAdd, true}},
        {"DATEDIFF", {3, 3, makeDateDiff, true}},
        {"DATEPART", {2, 2, makeDatePart, true}},
        {"DATENAME", {2, 2, makeDatePart, true}},
        {"DAY", {1, 1, makeDay}},
        {"MONTH", {1, 1, makeDay}},
        {"YEAR", {1, 1, makeDay}},
        {"GETDATE", {0, 0, makeNow}},
        {"SYSDATETIME", {0, 0, makeNow}},
        {"CURRENT_TIMESTAMP", {0, 0, makeNow}},
        {"EOMONTH", {1, 2, makeEoMonth}},
        {"DATEFROMPARTS", {3, 3, makeDateFromParts}},
        {"HOST_NAME", {0, 0, makeSession}},
        {"DB_NAME", {0, 0, makeSession}},
        {"DB_ID", {0, 0, makeSession}},
        {"APP_NAME", {0, 0, makeSession}},
        {"USER_NAME", {0, 0, makeSession}},
        {"SUSER_SNAME", {0, 0, makeSession}},
        {"SUSER_NAME", {0, 0, makeSession}},
        {"SYSTEM_USER", {0, 0, makeSession}},
        {"CURRENT_USER", {0, 0, makeSession}},
        {"SCOPE_IDENTITY", {0, 0, makeSession}},
        {"ERROR_NUMBER", {0, 0, makeSession}},
        {"ERROR_MESSAGE", {0, 0, makeSession}},
        {"ERROR_SEVERITY", {0, 0, makeSession}},
        {"ERROR_STATE", {0, 0, makeSession}},
        {"ERROR_LINE", {0, 0, makeSession}},
        {"ERROR_PROCEDURE", {0, 0, makeSession}},
        {"XACT_STATE", {0, 0, makeSession}},
        {"OBJECT_ID", {1, 2, makeObjectId}},
        {"COL_LENGTH", {2, 2, makeColLength}},
        {"IDENT_CURRENT", {1, 1, makeIdentCurrent}},
        {"NEWID", {0, 0, makeNewId}},
    };
    return table;
}

}  // namespace

bool isAggregateName(const std::string& n) {
    return n == "COUNT" || n == "SUM" || n == "MIN" || n == "MAX" || n == "AVG" ||
           n == "COUNT_BIG" || n == "STRING_AGG" || n == "STDEV" || n == "VAR";
}

BoundPtr bindBuiltin(Binder& binder, const Expr& call, const std::string& name) {
    const auto found = builtins().find(name);
    if (found == builtins().end()) return nullptr;
    const Builtin& b = found->second;
    const size_t n = call.args.size();
    if (n < b.minimum || n > b.maximum) {
        if (b.minimum == b.maximum)
            throw makeDbError(174, {lowerCase(name), std::to_string(b.minimum)}, call.line);
        throw makeDbError(189,
                          {lowerCase(name), std::to_string(b.minimum), std::to_string(b.maximum)},
                          call.line);
    }
    Call c{binder, call, name, {}};
    if (!b.lazy)
        for (const ExprPtr& a : call.args) c.args.push_back(binder.bindValue(*a));
    return b.make(c);
}

// --- functions that are no plain built-ins ---

BoundPtr Binder::bindFunction(const Expr& e) {
    const std::string name = upperCase(e.name.last());
    const bool qualified = e.name.parts.size() > 1;
    if (!qualified) {
        if (name == "UPDATE" && e.args.size() == 1 && e.args[0]->kind == ExprKind::Column) {
            BoundPtr p =
                op("t_system(" + sqliteText("UPDATED:" + foldName(e.args[0]->name.last())) + ")",
                   kBit, {});
            p->predicate = true;
            return p;
        }
        if (e.over) return bindWindow(e, name);
        if (isWindowName(name)) throw makeDbError(10753, {name}, e.line);
        if (isAggregateName(name)) return bindAggregate(e, name);
        // A branch that may never run must not fail beforehand.
        const bool choice =
            name == "ISNULL" || name == "COALESCE" || name == "IIF" || name == "NULLIF";
        if (choice) ++conditional_;
        BoundPtr b;
        try {
            b = bindBuiltin(*this, e, name);
        } catch (...) {
            if (choice) --conditional_;
            throw;
        }
        if (choice) --conditional_;
        if (b) return b;
    }
    return bindUserFunction(e);
}

BoundPtr Binder::bindAggregate(const Expr& e, const std::string& name) {
    if (aggregateDepth_ > 0) throw makeDbError(130, {}, e.line);
    const std::string distinct = e.distinct ? "DISTINCT " : "";
    BoundPtr r;
    if ((name == "COUNT" || name == "COUNT_BIG") && e.args.size() == 1 &&
        e.args[0]->kind == ExprKind::Star) {
        r = op("count(*)", name == "COUNT" ? kInt : kBigInt, {});
    } else {
        if (e.args.size() != (name == "STRING_AGG" ? 2u : 1u))
            throw makeDbError(174, {lowerCase(name), "1"}, e.line);
        ++aggregateDepth_;
        BoundPtr a;
        try {
            a = bindValue(*e.args[0]);
        } catch (...) {
            --aggregateDepth_;
            throw;
        }
        --aggregateDepth_;
        const SqlType t = a->type.kind == SqlKind::Null ? kInt : a->type;
        a = convert(std::move(a), t);
        const bool wide = t.kind == SqlKind::Numeric && t.precision > kNarrowPrecision;
        const std::string collate = t.isText() ? " COLLATE TSQL" : "";
        if (name == "COUNT" || name == "COUNT_BIG") {
            r = op("count(" + distinct + "$0" + collate + ")", name == "COUNT" ? kInt : kBigInt,
                   list(std::move(a)));
        } else if (name == "MIN" || name == "MAX") {
            if (t.kind == SqlKind::Bit) throw makeDbError(8117, {"bit", lowerCase(name)}, e.line);
            const std::string f = wide ? (name == "MIN" ? "t_nmin" : "t_nmax") : lowerCase(name);
            r = op(f + "($0" + collate + ")", t, list(std::move(a)));
        } else if (name == "STRING_AGG") {
            BoundPtr separator = convert(bindValue(*e.args[1]), kVarChar);
            a = convert(std::move(a), SqlType::text(SqlKind::NVarChar, SqlType::kMax));
            r = op("group_concat($0,$1)", SqlType::text(SqlKind::NVarChar, SqlType::kMax),
                   list(std::move(a), std::move(separator)));
        } else {
            if (!t.isNumber() || t.kind == SqlKind::Bit)
                throw makeDbError(8117, {t.name(), lowerCase(name)}, e.line);
            if (name == "STDEV" || name == "VAR")
                throw makeDbError(15281, {"The aggregate " + name}, e.line);
            const std::string sum = (wide ? "t_nsum(" : "sum(") + distinct + "$0)";
            const std::string count = "count(" + distinct + "$0)";
            if (name == "SUM") {
                if (t.kind == SqlKind::Numeric)
                    r = op(sum, SqlType::numeric(38, t.scale), list(std::move(a)));
                else if (t.kind == SqlKind::Float || t.kind == SqlKind::BigInt)
                    r = op(sum, t, list(std::move(a)));
                else
                    r = op(
                        "t_int(" + sum + "," + std::to_string(static_cast<int>(SqlKind::Int)) + ")",
                        kInt, list(std::move(a)));
            } else if (t.kind == SqlKind::Numeric) {
                const int scale = std::max<int>(t.scale, 6);
                r = op("t_num('/'," + sum + "," + std::to_string(t.scale) + "," + count + ",0," +
                           std::to_string(scale) + ")",
                       SqlType::numeric(38, scale), list(std::move(a)));
            } else if (t.kind == SqlKind::Float) {
                r = op("avg(" + distinct + "$0)", t, list(std::move(a)));
            } else {
                r = op("t_idiv(" + sum + ",nullif(" + count + ",0))",
                       t.kind == SqlKind::BigInt ? t : kInt, list(std::move(a)));
            }
        }
    }
    r->aggregate = true;
    if (name.starts_with("COUNT")) r->nullable = false;
    return r;
}

BoundPtr Binder::bindUserFunction(const Expr& e) {
    CatalogModulePtr module = context_.catalog.findModule(e.name.last());
    if (!module || module->kind != ModuleKind::ScalarFunction || e.name.parts.size() < 2) {
        if (e.name.parts.size() < 2) throw makeDbError(195, {e.name.last()}, e.line);
        throw makeDbError(4121, {e.name.parts[0], e.name.text()}, e.line);
    }
    dependencies_.push_back({module->name, true, module->signature});
    const ModuleDefinition& definition = context_.definition(*module);
    if (e.args.size() > definition.parameters.size())
        throw makeDbError(8144, {e.name.text()}, e.line);
    if (e.args.size() < definition.parameters.size())
        throw DbError(313, 16, 3, e.line,
                      "An insufficient number of arguments were supplied for the procedure or "
                      "function " +
                          e.name.text() + ".");
    std::string pattern = "t_udf(" + std::to_string(context_.functionId(module->name));
    Args args;
    for (size_t i = 0; i < e.args.size(); ++i) {
        const Parameter& p = definition.parameters[i];
        BoundPtr value;
        if (e.args[i]->kind == ExprKind::Default) {
            if (!p.defaultValue) throw makeDbError(201, {e.name.last(), p.name}, e.line);
            const auto* literals = &context_.moduleLiterals(*module);
            if (p.defaultValue->kind == ExprKind::Literal)
                value = constant((*literals)[p.defaultValue->literal].value,
                                 (*literals)[p.defaultValue->literal].type);
            else
                value = null(p.type);
        } else {
            value = bindValue(*e.args[i]);
        }
        pattern += ",$" + std::to_string(i) + ";";
        args.push_back(convert(std::move(value), p.type));
    }
    BoundPtr r = op(pattern + ")", definition.returns, std::move(args));
    r->userFunction = true;
    return r;
}

}  // namespace owb::tsql
