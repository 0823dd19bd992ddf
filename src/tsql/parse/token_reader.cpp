#include "tsql/parse/token_reader.h"

#include "base/db_error.h"
#include "base/utf8.h"

namespace owb::tsql {

namespace {

bool sameWord(std::string_view text, std::string_view upper) {
    return equalsIgnoreCaseAscii(text, upper);
}

struct TypeName {
    const char* name;
    SqlKind kind;
};

constexpr TypeName kTypes[] = {
    {"bit", SqlKind::Bit},
    {"tinyint", SqlKind::TinyInt},
    {"smallint", SqlKind::SmallInt},
    {"int", SqlKind::Int},
    {"integer", SqlKind::Int},
    {"bigint", SqlKind::BigInt},
    {"numeric", SqlKind::Numeric},
    {"decimal", SqlKind::Numeric},
    {"dec", SqlKind::Numeric},
    {"money", SqlKind::Money},
    {"smallmoney", SqlKind::SmallMoney},
    {"float", SqlKind::Float},
    {"real", SqlKind::Real},
    {"double", SqlKind::Float},
    {"char", SqlKind::Char},
    {"character", SqlKind::Char},
    {"varchar", SqlKind::VarChar},
    {"text", SqlKind::VarChar},
    {"nchar", SqlKind::NChar},
    {"nvarchar", SqlKind::NVarChar},
    {"ntext", SqlKind::NVarChar},
    {"sysname", SqlKind::NVarChar},
    {"datetime", SqlKind::DateTime},
    {"smalldatetime", SqlKind::SmallDateTime},
    {"datetime2", SqlKind::DateTime2},
    {"date", SqlKind::Date},
    {"time", SqlKind::Time},
};

const TypeName* findType(std::string_view word) {
    for (const TypeName& t : kTypes)
        if (sameWord(word, t.name)) return &t;
    return nullptr;
}

}  // namespace

std::string Name::text() const {
    std::string out;
    for (const std::string& part : parts) {
        if (!out.empty()) out += '.';
        out += part;
    }
    return out;
}

const Token& TokenReader::take() {
    const Token& t = tokens_[pos_];
    if (t.kind != TokenKind::End) ++pos_;
    return t;
}

void TokenReader::expectWord(std::string_view word) {
    if (!takeWord(word)) syntaxError();
}

void TokenReader::expectOperator(std::string_view op) {
    if (!takeOperator(op)) syntaxError();
}

void TokenReader::syntaxError() const {
    // At the end of the text the last word is named, as the server does.
    const bool atEnd = peek().kind == TokenKind::End;
    const Token& t = atEnd && pos_ > 0 ? tokens_[pos_ - 1] : peek();
    const bool keyword = t.kind == TokenKind::Name && isReservedWord(t.text);
    DbError e = makeDbError(keyword && !atEnd ? 156 : 102, {t.text.substr(0, 120)},
                            static_cast<int>(t.line));
    e.column = t.column;
    throw e;
}

bool TokenReader::isPlainName(size_t ahead) const {
    const Token& t = peek(ahead);
    return t.kind == TokenKind::QuotedName ||
           (t.kind == TokenKind::Name && !isReservedWord(t.text));
}

std::string TokenReader::expectName() {
    if (!isPlainName()) syntaxError();
    std::string name = unquoted(take());
    if (name.size() > 128 && utf8Length(name) > 128)
        throw makeDbError(103, {name.substr(0, 120)}, static_cast<int>(peek().line));
    return name;
}

Name TokenReader::parseName() {
    Name name;
    name.parts.reserve(2);
    name.parts.push_back(expectName());
    while (isOperator(".")) {
        if (isOperator("*", 1)) break;  // "t.*"
        take();
        if (takeOperator(".")) name.parts.emplace_back();  // "db..t"
        name.parts.push_back(expectName());
        if (name.parts.size() > 4) syntaxError();
    }
    return name;
}

std::vector<std::string> TokenReader::parseColumnList() {
    std::vector<std::string> columns;
    expectOperator("(");
    do {
        columns.push_back(parseName().last());
        if (!takeWord("ASC")) takeWord("DESC");
    } while (takeOperator(","));
    expectOperator(")");
    return columns;
}

// One collation serves all text; one that tells letters' case apart would answer differently.
void TokenReader::parseCollation() {
    const int line = static_cast<int>(peek().line);
    const std::string name = expectName();
    const std::string upper = upperCase(name);
    if (upper.find("_CS") != std::string::npos || upper.find("_BIN") != std::string::npos)
        throw makeDbError(15281, {"The collation " + name}, line);
}

std::string TokenReader::textBetween(const Token& first, const Token& behind) const {
    size_t end = behind.begin;
    while (end > first.begin && (text_[end - 1] == ' ' || text_[end - 1] == '\n' ||
                                 text_[end - 1] == '\r' || text_[end - 1] == '\t'))
        --end;
    return std::string(text_.substr(first.begin, end - first.begin));
}

std::string TokenReader::expectAssignment() {
    if (isCompound(peek())) return std::string(take().text.substr(0, 1));
    expectOperator("=");
    return "";
}

int64_t TokenReader::expectInteger() {
    if (peek().kind != TokenKind::Integer) syntaxError();
    const Token& t = take();
    int64_t value = 0;
    for (char c : t.text) {
        value = value * 10 + (c - '0');
        if (value > INT32_MAX) throw makeDbError(102, {t.text}, static_cast<int>(t.line));
    }
    return value;
}

SqlType TokenReader::parseType(int defaultLength) {
    const Token& t = peek();
    if (t.kind != TokenKind::Name && t.kind != TokenKind::QuotedName) syntaxError();
    const TypeName* found = findType(t.text);
    if (!found) {
        DbError e = makeDbError(2715, {"1", t.text}, static_cast<int>(t.line));
        e.column = t.column;
        throw e;
    }
    const std::string word = lowerCase(t.text);
    take();
    if (word == "double") takeWord("precision");
    if (word == "character" || word == "char") takeWord("varying");
    SqlType type = SqlType::of(found->kind);
    if (word == "sysname") return SqlType::text(SqlKind::NVarChar, 128);
    if (word == "text" || word == "ntext") return SqlType::text(found->kind, SqlType::kMax);
    if (type.kind == SqlKind::Numeric) type = SqlType::numeric(18, 0);
    if (type.isText()) type.length = defaultLength;
    if (!takeOperator("(")) return type;
    if (type.isText() && takeWord("MAX")) {
        type.length = SqlType::kMax;
    } else {
        const int64_t first = expectInteger();
        int64_t second = 0;
        if (takeOperator(",")) second = expectInteger();
        if (type.kind == SqlKind::Numeric) {
            if (first < 1 || first > 38)
                throw makeDbError(2750, {"1", std::to_string(first)}, static_cast<int>(t.line));
            if (second > first)
                throw makeDbError(102, {std::to_string(second)}, static_cast<int>(t.line));
            type = SqlType::numeric(static_cast<int>(first), static_cast<int>(second));
        } else if (type.isText()) {
            const int64_t limit = type.isUnicode() ? 4000 : 8000;
            if (first < 1 || first > limit)
                throw makeDbError(2717, {std::to_string(first), word, std::to_string(limit)},
                                  static_cast<int>(t.line));
            type.length = static_cast<int32_t>(first);
        } else if (type.isClock()) {
            if (first > 7)
                throw DbError(1002, 15, 1, static_cast<int>(t.line),
                              "Line " + std::to_string(t.line) + ": Specified scale " +
                                  std::to_string(first) + " is invalid.");
            type.scale = static_cast<uint8_t>(first);
        } else if (type.kind == SqlKind::Float && first <= 24) {
            type = SqlType::of(SqlKind::Real);  // float(24) and below
        }
    }
    expectOperator(")");
    return type;
}

}  // namespace owb::tsql
