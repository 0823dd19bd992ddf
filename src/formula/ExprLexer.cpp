#include "formula/ExprLexer.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "formula/ExprDates.h"

namespace owb {

namespace {

using Op = ExprOperator;
using Token = ExprToken;

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}
bool isNameStart(char c) {
    return c >= 'A' && c <= 'Z';
}
bool isNamePart(char c) {
    return isNameStart(c) || isDigit(c) || c == '_';
}
bool isBlank(char c) {
    return c == ' ' || c == '\t';
}
bool isHex(char c) {
    return isDigit(c) || (c >= 'A' && c <= 'F');
}
bool isOctal(char c) {
    return c >= '0' && c <= '7';
}

constexpr std::pair<std::string_view, Op> kWords[] = {
    {"MOD", Op::Mod}, {"NOT", Op::Not}, {"AND", Op::And}, {"OR", Op::Or},
    {"XOR", Op::Xor}, {"EQV", Op::Eqv}, {"IMP", Op::Imp}, {"IS", Op::Is},
};

// Of the comparisons the longer ones first; their two characters may stand either way round.
constexpr std::pair<std::string_view, Op> kSigns[] = {
    {"+", Op::Add},           {"-", Op::Subtract},      {"*", Op::Multiply},
    {"/", Op::Divide},        {"<=", Op::LessEqual},    {"=<", Op::LessEqual},
    {">=", Op::GreaterEqual}, {"=>", Op::GreaterEqual}, {"<>", Op::NotEqual},
    {"><", Op::NotEqual},     {"=", Op::Equal},         {"<", Op::Less},
    {">", Op::Greater},       {"\\", Op::WholeDivide},  {"^", Op::Power},
    {"&", Op::Join},
};

// What may stand behind the expression: line ends and a comment.
bool onlyRemark(std::string_view text) {
    for (size_t at = 0; at < text.size(); ++at) {
        if (text[at] == '\'') {
            at = text.find_first_of("\r\n", at);
            if (at == std::string_view::npos) return true;
        } else if (!isBlank(text[at]) && text[at] != '\r' && text[at] != '\n' && text[at] != ':') {
            return false;
        }
    }
    return true;
}

}  // namespace

void ExprTokens::add(ExprToken token) {
    shape += static_cast<char>(token.kind + 1);
    switch (token.kind) {
        case Token::Name:
            // Anything may stand in brackets, so that its length parts it from what follows.
            if (token.bracketed) shape += std::to_string(token.text.size()) + "[";
            shape += token.text;
            break;
        case Token::Operator:
            shape += static_cast<char>('A' + static_cast<int>(token.op));
            break;
        case Token::Broken:
            shape += std::to_string(token.error);
            break;
        default:
            break;
    }
    tokens.push_back(token);
}

void ExprTokens::addLiteral(ExprValue value) {
    literals.push_back(std::move(value));
    add({Token::Literal});
}

bool ExprTokens::afterOperand() const {
    return !tokens.empty() &&
           (tokens.back().kind == Token::Literal || tokens.back().kind == Token::Name ||
            tokens.back().kind == Token::Close);
}

void ExprTokens::read(std::string_view text) {
    tokens.clear();
    literals.clear();
    shape.clear();
    for (size_t at = 0; at < text.size();) {
        if (!tokens.empty() && tokens.back().kind == Token::Broken) return;
        const char c = text[at];
        if (isBlank(c)) {
            ++at;
        } else if (isNameStart(c)) {
            size_t end = at + 1;
            while (end < text.size() && isNamePart(text[end])) ++end;
            const std::string_view name = text.substr(at, end - at);
            at = end;
            const auto* word = name.size() > 3
                                   ? std::end(kWords)
                                   : std::find_if(std::begin(kWords), std::end(kWords),
                                                  [&](const auto& w) { return w.first == name; });
            const bool member = !tokens.empty() && tokens.back().kind == Token::Dot;
            if (word == std::end(kWords) || member)
                add({Token::Name, name});
            else
                add({Token::Operator, "", word->second});
        } else if (isDigit(c) || (c == '.' && at + 1 < text.size() && isDigit(text[at + 1]))) {
            at = readNumber(text, at);
        } else if (c == '"') {
            at = readText(text, at);
        } else if (c == '#') {
            at = readDate(text, at);
        } else if (c == '[') {
            const size_t end = text.find(']', at);
            if (end == std::string_view::npos) return broken(ExprError::InvalidCharacter);
            add({Token::Name, text.substr(at + 1, end - at - 1), {}, {}, true});
            at = end + 1;
        } else if (c == '(' || c == ')' || c == ',' || c == '.') {
            add({c == '('   ? Token::Open
                 : c == ')' ? Token::Close
                 : c == ',' ? Token::Comma
                            : Token::Dot});
            ++at;
        } else if (c == '\r' || c == '\n' || c == ':' || c == '\'') {
            add({Token::End});
            if (!onlyRemark(text.substr(at))) tokens.back() = {Token::Broken};
            shape += tokens.back().kind == Token::Broken ? "!" : "";
            return;
        } else if (c == '_' && at + 1 < text.size() &&
                   (text[at + 1] == '\r' || text[at + 1] == '\n')) {
            at += text.compare(at + 1, 2, "\r\n") == 0 ? 3 : 2;  // the line goes on
        } else {
            at = readOperator(text, at);
        }
    }
    if (tokens.empty() || tokens.back().kind != Token::Broken) add({Token::End});
}

size_t ExprTokens::readNumber(std::string_view text, size_t at) {
    const size_t from = at;
    bool whole = true;
    while (at < text.size() && isDigit(text[at])) ++at;
    if (at < text.size() && text[at] == '.') {
        whole = false;
        ++at;
        while (at < text.size() && isDigit(text[at])) ++at;
    }
    if (at < text.size() && text[at] == 'E') {
        size_t digits = at + 1;
        if (digits < text.size() && (text[digits] == '+' || text[digits] == '-')) ++digits;
        if (digits >= text.size() || !isDigit(text[digits])) {
            broken(ExprError::InvalidNumber);
            return text.size();
        }
        whole = false;
        at = digits;
        while (at < text.size() && isDigit(text[at])) ++at;
    }
    const char* begin = text.data() + from;
    const char* end = text.data() + at;
    int32_t small = 0;
    if (whole && std::from_chars(begin, end, small).ec == std::errc()) {
        addLiteral(ExprValue::whole(small));
        return at;
    }
    double number = 0;
    const auto [last, error] = std::from_chars(begin, end, number);
    if (error == std::errc::result_out_of_range) {
        const std::string_view digits = text.substr(from, at - from);
        const size_t exponent = digits.find("E-");
        if (exponent == std::string_view::npos) {
            broken(ExprError::Overflow);
            return text.size();
        }
        number = 0;
    }
    addLiteral(ExprValue::number(number));
    return at;
}

size_t ExprTokens::readText(std::string_view text, size_t at) {
    std::string value;
    for (++at;; ++at) {
        const size_t end = text.find_first_of("\"\r\n", at);
        if (end == std::string_view::npos || text[end] != '"') {
            broken(ExprError::UnterminatedString);
            return text.size();
        }
        value += text.substr(at, end - at);
        at = end + 1;
        if (at >= text.size() || text[at] != '"') break;
        value += '"';
    }
    addLiteral(ExprValue::text(std::move(value)));
    return at;
}

size_t ExprTokens::readDate(std::string_view text, size_t at) {
    const size_t end = text.find_first_of("#\r\n", at + 1);
    double days = 0;
    if (end == std::string_view::npos || text[end] != '#' ||
        !readExprDate(text.substr(at + 1, end - at - 1), days)) {
        broken(ExprError::Syntax);
        return text.size();
    }
    addLiteral(ExprValue::date(days));
    return end + 1;
}

// "&HFF", "&O17"; an "&" behind makes the number a Long.
size_t ExprTokens::readRadix(std::string_view text, size_t at, size_t digits, int base) {
    at += digits;
    const size_t from = at;
    while (at < text.size() && (base == 16 ? isHex(text[at]) : isOctal(text[at]))) ++at;
    uint32_t bits = 0;
    if (std::from_chars(text.data() + from, text.data() + at, bits, base).ec != std::errc()) {
        broken(ExprError::InvalidNumber);
        return text.size();
    }
    const bool longInt = at < text.size() && text[at] == '&';
    addLiteral(longInt || bits > UINT16_MAX ? ExprValue::longInt(static_cast<int32_t>(bits))
                                            : ExprValue::integer(static_cast<int16_t>(bits)));
    return longInt ? at + 1 : at;
}

size_t ExprTokens::readOperator(std::string_view text, size_t at) {
    const std::string_view rest = text.substr(at);
    if (rest[0] == '&' && rest.size() > 1) {
        const char digit = rest.size() > 2 ? rest[2] : ' ';
        if (rest[1] == 'H' && isHex(digit)) return readRadix(text, at, 2, 16);
        if (rest[1] == 'O' && isOctal(digit)) return readRadix(text, at, 2, 8);
        if (isOctal(rest[1]) && !afterOperand()) return readRadix(text, at, 1, 8);
    }
    for (const auto& [sign, op] : kSigns)
        if (rest[0] == sign[0] && rest.substr(0, sign.size()) == sign) {
            add({Token::Operator, "", op});
            return at + sign.size();
        }
    broken(ExprError::InvalidCharacter);
    return text.size();
}

}  // namespace owb
