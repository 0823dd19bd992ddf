#include "tsql/parse/literal.h"

#include <algorithm>

#include "base/db_error.h"
#include "base/number_text.h"
#include "base/utf8.h"
#include "tsql/types/types.h"

namespace owb::tsql {

namespace {

LiteralSlot wholeLiteral(const Token& token) {
    LiteralSlot slot;
    std::string_view digits = token.text;
    while (digits.size() > 1 && digits[0] == '0') digits.remove_prefix(1);
    Decimal d;
    try {
        Decimal::parse(digits, d);
    } catch (const DecimalOverflow&) {
        throw makeDbError(1007, {token.text}, static_cast<int>(token.line));
    }
    if (d.unscaled() <= INT32_MAX) {
        slot.value = Value(static_cast<int64_t>(d.unscaled()));
        slot.type = SqlType::of(SqlKind::Int);
        slot.digits = d.digits();
    } else {
        slot.value = Value(d);
        slot.type = SqlType::numeric(d.digits(), 0);
    }
    return slot;
}

LiteralSlot decimalLiteral(const Token& token) {
    LiteralSlot slot;
    if (token.text[0] == '$') {
        slot.type = SqlType::of(SqlKind::Money);
        slot.value = convertValue(Value(std::string(token.text)), SqlType{}, slot.type);
        return slot;
    }
    Decimal d;
    bool ok = false;
    try {
        ok = Decimal::parse(token.text, d);
    } catch (const DecimalOverflow&) {
    }
    if (!ok) throw makeDbError(102, {token.text}, static_cast<int>(token.line));
    slot.value = Value(d);
    slot.type = SqlType::numeric(std::max({d.digits(), d.scale(), 1}), d.scale());
    return slot;
}

LiteralSlot textLiteral(const Token& token) {
    LiteralSlot slot;
    std::string text = unquoted(token);
    const auto length = static_cast<int32_t>(utf8Length(text));
    slot.value = Value(std::move(text));
    slot.type =
        SqlType::text(token.kind == TokenKind::NString ? SqlKind::NVarChar : SqlKind::VarChar,
                      length == 0     ? 1
                      : length > 8000 ? SqlType::kMax
                                      : length);
    return slot;
}

}  // namespace

LiteralSlot literalOf(const Token& token) {
    switch (token.kind) {
        case TokenKind::Integer:
            return wholeLiteral(token);
        case TokenKind::Decimal:
            return decimalLiteral(token);
        case TokenKind::NString:
        case TokenKind::String:
            return textLiteral(token);
        default:
            break;
    }
    LiteralSlot slot;
    if (token.kind == TokenKind::Float) {
        slot.value = Value(textToNumber(token.text));
        slot.type = SqlType::of(SqlKind::Float);
    }
    return slot;
}

}  // namespace owb::tsql
