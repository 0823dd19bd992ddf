// The built-in functions of text: the types they take and give, and the form in which SQLite
// computes them.
#include <algorithm>

#include "base/utf8.h"
#include "tsql/bind/function_call.h"

namespace owb::tsql {

namespace {

SqlType widened(SqlType type, int32_t length) {
    type.kind = type.isUnicode() ? SqlKind::NVarChar : SqlKind::VarChar;
    if (type.length != SqlType::kMax)
        type.length = std::min(length, type.isUnicode() ? 4000 : 8000);
    return type;
}

// Functions that take text alone; the other ones turn numbers and dates into it.
void requireText(const FunctionCall& c, size_t i) {
    const SqlType& t = c.args[i]->type;
    if (!t.isText() && t.kind != SqlKind::Null) c.refuse(i);
}

BoundPtr makeUpper(FunctionCall& c) {
    BoundPtr a = c.text(0);
    const SqlType t = a->type;
    return c.op(c.name == "UPPER" ? "t_upper($0)" : "t_lower($0)", t, list(std::move(a)));
}

BoundPtr makeTrim(FunctionCall& c) {
    if (c.name == "TRIM") requireText(c, 0);
    if (c.args.size() == 2) {  // TRIM(characters FROM text)
        requireText(c, 1);
        BoundPtr a = c.text(1);
        const SqlType t = widened(a->type, a->type.length);
        return c.op("trim($0,$1)", t, list(std::move(a), c.text(0)));
    }
    BoundPtr a = c.text(0);
    const SqlType t = widened(a->type, a->type.length);
    const std::string f = c.name == "LTRIM" ? "ltrim" : c.name == "RTRIM" ? "rtrim" : "trim";
    return c.op(f + "($0,' ')", t, list(std::move(a)));
}

// How many bytes a value of the type takes; 0 where that depends on the value.
int bytesOf(const SqlType& t) {
    switch (t.kind) {
        case SqlKind::Bit:
        case SqlKind::TinyInt:
            return 1;
        case SqlKind::SmallInt:
            return 2;
        case SqlKind::Null:
        case SqlKind::Int:
        case SqlKind::SmallMoney:
        case SqlKind::Real:
        case SqlKind::SmallDateTime:
            return 4;
        case SqlKind::Numeric:
            return t.precision <= 9 ? 5 : t.precision <= 19 ? 9 : t.precision <= 28 ? 13 : 17;
        case SqlKind::Date:
            return 3;
        case SqlKind::Time:
            return t.scale <= 2 ? 3 : t.scale <= 4 ? 4 : 5;
        case SqlKind::DateTime2:
            return t.scale <= 2 ? 6 : t.scale <= 4 ? 7 : 8;
        default:
            return t.isText() ? 0 : 8;
    }
}

BoundPtr makeLen(FunctionCall& c) {
    return c.op("length(rtrim($0,' '))", kInt, list(c.text(0)));
}

BoundPtr makeDataLength(FunctionCall& c) {
    const SqlType type = c.args[0]->type;
    if (const int bytes = bytesOf(type)) {
        BoundPtr a = c.take(0, type.kind == SqlKind::Null ? kInt : type);
        return c.op("(CASE WHEN $0 IS NOT NULL THEN " + std::to_string(bytes) + " END)", kInt,
                    list(std::move(a)));
    }
    return c.op(type.isUnicode() ? "(2 * length($0))" : "length($0)", kInt, list(c.take(0)));
}

BoundPtr makeLeftRight(FunctionCall& c) {
    BoundPtr a = c.text(0);
    const SqlType t = widened(a->type, a->type.length);
    const std::string f = c.name == "LEFT" ? "t_left" : "t_right";
    return c.op(f + "($0,$1)", t, list(std::move(a), c.take(1, kInt)));
}

BoundPtr makeSubstring(FunctionCall& c) {
    requireText(c, 0);
    BoundPtr a = c.text(0);
    const SqlType t = widened(a->type, a->type.length);
    return c.op("t_substring($0,$1,$2)", t, list(std::move(a), c.take(1, kInt), c.take(2, kInt)));
}

BoundPtr makeCharIndex(FunctionCall& c) {
    if (c.args.size() == 3)
        return c.op("t_charindex($0,$1,$2)", kInt, list(c.text(0), c.text(1), c.take(2, kInt)));
    return c.op("t_charindex($0,$1,1)", kInt, list(c.text(0), c.text(1)));
}

BoundPtr makePatIndex(FunctionCall& c) {
    return c.op("t_patindex($0,$1)", kInt, list(c.text(0), c.text(1)));
}

BoundPtr makeReplace(FunctionCall& c) {
    BoundPtr a = c.text(0);
    const SqlType t = widened(a->type, 8000);
    return c.op("t_replace($0,$1,$2)", t, list(std::move(a), c.text(1), c.text(2)));
}

BoundPtr makeStuff(FunctionCall& c) {
    BoundPtr a = c.text(0);
    const SqlType t = widened(a->type, 8000);
    return c.op("t_stuff($0,$1,$2,$3)", t,
                list(std::move(a), c.take(1, kInt), c.take(2, kInt), c.text(3)));
}

BoundPtr makeStr(FunctionCall& c) {
    Args a;
    a.push_back(c.take(0, kFloat));
    a.push_back(c.args.size() > 1 ? c.take(1, kInt) : c.binder.constant(Value(10), kInt));
    a.push_back(c.args.size() > 2 ? c.take(2, kInt) : c.binder.constant(Value(0), kInt));
    return c.op("t_str($0,$1,$2)", SqlType::text(SqlKind::VarChar, 40), std::move(a));
}

BoundPtr makeReplicate(FunctionCall& c) {
    BoundPtr a = c.text(0);
    const SqlType t = widened(a->type, 8000);
    return c.op("t_replicate($0,$1," + std::to_string(t.length) + ")", t,
                list(std::move(a), c.take(1, kInt)));
}

BoundPtr makeSpace(FunctionCall& c) {
    return c.op("t_replicate(' ',$0,8000)", kVarChar, list(c.take(0, kInt)));
}

BoundPtr makeReverse(FunctionCall& c) {
    BoundPtr a = c.text(0);
    const SqlType t = a->type;
    return c.op("t_reverse($0)", t, list(std::move(a)));
}

BoundPtr makeAscii(FunctionCall& c) {
    return c.op(c.name == "ASCII" ? "t_ascii($0)" : "t_unicode($0)", kInt, list(c.text(0)));
}

BoundPtr makeChar(FunctionCall& c) {
    const bool wide = c.name == "NCHAR";
    return c.op(wide ? "t_nchar($0)" : "t_char($0)",
                SqlType::text(wide ? SqlKind::NVarChar : SqlKind::VarChar, 1),
                list(c.take(0, kInt)));
}

BoundPtr makeConcat(FunctionCall& c) {
    std::string pattern;
    SqlType type = kVarChar;
    for (size_t i = 0; i < c.args.size(); ++i) {
        if (c.args[i]->type.isUnicode()) type = SqlType::text(SqlKind::NVarChar, 4000);
        c.args[i] = c.text(i);
        pattern += (i ? " || ifnull($" : "ifnull($") + std::to_string(i) + ";,'')";
    }
    return c.op("(" + pattern + ")", type, std::move(c.args));
}

BoundPtr makeConcatWithSeparator(FunctionCall& c) {
    std::string pattern = "t_concatws($0";
    SqlType type = kVarChar;
    for (size_t i = 0; i < c.args.size(); ++i) {
        if (c.args[i]->type.isUnicode()) type = kNVarChar;
        c.args[i] = c.text(i);
        if (i > 0) pattern += ",$" + std::to_string(i) + ";";
    }
    return c.op(pattern + ")", type, std::move(c.args));
}

BoundPtr makeTranslate(FunctionCall& c) {
    BoundPtr a = c.text(0);
    const SqlType t = widened(a->type, a->type.length);
    return c.op("t_translate($0,$1,$2)", t, list(std::move(a), c.text(1), c.text(2)));
}

BoundPtr makeQuoteName(FunctionCall& c) {
    BoundPtr quote = c.args.size() > 1 ? c.text(1) : c.binder.constant(Value("["), kVarChar);
    return c.op("t_quotename($0,$1)", SqlType::text(SqlKind::NVarChar, 258),
                list(c.text(0), std::move(quote)));
}

BoundPtr makeParseName(FunctionCall& c) {
    return c.op("t_parsename($0,$1)", SqlType::text(SqlKind::NVarChar, 128),
                list(c.text(0), c.take(1, kInt)));
}

BoundPtr makeSoundex(FunctionCall& c) {
    if (c.name == "DIFFERENCE")
        return c.op("t_difference($0,$1)", kInt, list(c.text(0), c.text(1)));
    return c.op("t_soundex($0)", SqlType::text(SqlKind::VarChar, 4), list(c.text(0)));
}

BoundPtr makeFormat(FunctionCall& c) {
    const SqlType type = c.args[0]->type.kind == SqlKind::Null ? kInt : c.args[0]->type;
    if (type.isText() || type.kind == SqlKind::Bit) c.refuse(0);
    if (c.args.size() == 3) {
        const Value* culture = c.binder.fixedLiteral(*c.expr.args[2]);
        if (!culture || !equalsIgnoreCaseAscii(culture->toText(), "en-us"))
            throw makeDbError(15281, {"FORMAT for a culture other than en-US"}, c.expr.line);
    }
    return c.op("t_format($0," + std::to_string(packType(type)) + ",$1)", kNVarChar,
                list(c.take(0, type), c.text(1)));
}

BoundPtr makeIsNumeric(FunctionCall& c) {
    const SqlType& type = c.args[0]->type;
    if (c.name == "ISDATE" && (type.isClock() || type.kind == SqlKind::Date)) c.refuse(0);
    if (c.name == "ISNUMERIC" && type.isNumber())
        return c.op("($0 IS NOT NULL)", kInt, list(c.take(0)));
    return c.op(c.name == "ISDATE" ? "t_isdate($0)" : "t_isnumeric($0)", kInt, list(c.text(0)));
}

}  // namespace

void addTextBuiltins(BuiltinFunctions& table) {
    table["UPPER"] = {1, 1, makeUpper};
    table["LOWER"] = {1, 1, makeUpper};
    table["LTRIM"] = {1, 1, makeTrim};
    table["RTRIM"] = {1, 1, makeTrim};
    table["TRIM"] = {1, 2, makeTrim};
    table["LEN"] = {1, 1, makeLen};
    table["DATALENGTH"] = {1, 1, makeDataLength};
    table["LEFT"] = {2, 2, makeLeftRight};
    table["RIGHT"] = {2, 2, makeLeftRight};
    table["SUBSTRING"] = {3, 3, makeSubstring};
    table["CHARINDEX"] = {2, 3, makeCharIndex};
    table["PATINDEX"] = {2, 2, makePatIndex};
    table["REPLACE"] = {3, 3, makeReplace};
    table["STUFF"] = {4, 4, makeStuff};
    table["STR"] = {1, 3, makeStr};
    table["REPLICATE"] = {2, 2, makeReplicate};
    table["SPACE"] = {1, 1, makeSpace};
    table["REVERSE"] = {1, 1, makeReverse};
    table["ASCII"] = {1, 1, makeAscii};
    table["UNICODE"] = {1, 1, makeAscii};
    table["CHAR"] = {1, 1, makeChar};
    table["NCHAR"] = {1, 1, makeChar};
    table["CONCAT"] = {2, 254, makeConcat};
    table["QUOTENAME"] = {1, 2, makeQuoteName};
    table["ISNUMERIC"] = {1, 1, makeIsNumeric};
    table["ISDATE"] = {1, 1, makeIsNumeric};
    table["CONCAT_WS"] = {3, 254, makeConcatWithSeparator};
    table["TRANSLATE"] = {3, 3, makeTranslate};
    table["PARSENAME"] = {2, 2, makeParseName};
    table["SOUNDEX"] = {1, 1, makeSoundex};
    table["DIFFERENCE"] = {2, 2, makeSoundex};
    table["FORMAT"] = {2, 3, makeFormat};
}

}  // namespace owb::tsql
