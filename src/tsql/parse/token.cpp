#include "tsql/parse/token.h"

#include <algorithm>
#include <array>

#include "base/db_error.h"
#include "base/utf8.h"

namespace owb::tsql {

namespace {

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

// What each byte may be part of.
enum : uint8_t { kNameStart = 1, kNamePart = 2, kBlankStart = 4 };

constexpr auto kClasses = [] {
    std::array<uint8_t, 256> classes{};
    for (int c = 0; c < 256; ++c) {
        const bool start =
            (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == '#' || c >= 0x80;
        if (start) classes[c] |= kNameStart;
        if (start || (c >= '0' && c <= '9') || c == '$' || c == '@') classes[c] |= kNamePart;
    }
    // Blanks, comments, the no-break space and the byte order mark begin with one of these.
    for (const char c : std::string_view(" \t\r\n\f\v-/\xC2\xEF"))
        classes[static_cast<unsigned char>(c)] |= kBlankStart;
    return classes;
}();

bool isA(char c, uint8_t what) {
    return (kClasses[static_cast<unsigned char>(c)] & what) != 0;
}

bool isNameStart(char c) {
    return isA(c, kNameStart);
}

bool isNamePart(char c) {
    return isA(c, kNamePart);
}

// Sorted, upper case.
constexpr auto kReserved =
    std::to_array<std::string_view>({"ADD",          "ALL",        "ALTER",       "AND",
                                     "ANY",          "AS",         "ASC",         "AUTHORIZATION",
                                     "BACKUP",       "BEGIN",      "BETWEEN",     "BREAK",
                                     "BROWSE",       "BULK",       "BY",          "CASCADE",
                                     "CASE",         "CHECK",      "CHECKPOINT",  "CLOSE",
                                     "CLUSTERED",    "COALESCE",   "COLLATE",     "COLUMN",
                                     "COMMIT",       "COMPUTE",    "CONSTRAINT",  "CONTAINS",
                                     "CONTINUE",     "CONVERT",    "CREATE",      "CROSS",
                                     "CURRENT",      "CURSOR",     "DATABASE",    "DBCC",
                                     "DEALLOCATE",   "DECLARE",    "DEFAULT",     "DELETE",
                                     "DENY",         "DESC",       "DISTINCT",    "DISTRIBUTED",
                                     "DROP",         "DUMP",       "ELSE",        "END",
                                     "ESCAPE",       "EXCEPT",     "EXEC",        "EXECUTE",
                                     "EXISTS",       "EXIT",       "EXTERNAL",    "FETCH",
                                     "FILE",         "FILLFACTOR", "FOR",         "FOREIGN",
                                     "FREETEXT",     "FROM",       "FULL",        "FUNCTION",
                                     "GOTO",         "GRANT",      "GROUP",       "HAVING",
                                     "HOLDLOCK",     "IDENTITY",   "IDENTITYCOL", "IDENTITY_INSERT",
                                     "IF",           "IN",         "INDEX",       "INNER",
                                     "INSERT",       "INTERSECT",  "INTO",        "IS",
                                     "JOIN",         "KEY",        "KILL",        "LEFT",
                                     "LIKE",         "MERGE",      "NATIONAL",    "NOCHECK",
                                     "NONCLUSTERED", "NOT",        "NULL",        "NULLIF",
                                     "OF",           "OFF",        "OFFSETS",     "ON",
                                     "OPEN",         "OPENQUERY",  "OPENROWSET",  "OPTION",
                                     "OR",           "ORDER",      "OUTER",       "OVER",
                                     "PERCENT",      "PIVOT",      "PLAN",        "PRECISION",
                                     "PRIMARY",      "PRINT",      "PROC",        "PROCEDURE",
                                     "PUBLIC",       "RAISERROR",  "READ",        "READTEXT",
                                     "RECONFIGURE",  "REFERENCES", "REPLICATION", "RESTORE",
                                     "RESTRICT",     "RETURN",     "REVERT",      "REVOKE",
                                     "RIGHT",        "ROLLBACK",   "ROWCOUNT",    "ROWGUIDCOL",
                                     "RULE",         "SAVE",       "SCHEMA",      "SELECT",
                                     "SET",          "SETUSER",    "SHUTDOWN",    "SOME",
                                     "STATISTICS",   "TABLE",      "TABLESAMPLE", "TEXTSIZE",
                                     "THEN",         "TO",         "TOP",         "TRAN",
                                     "TRANSACTION",  "TRIGGER",    "TRUNCATE",    "UNION",
                                     "UNIQUE",       "UNPIVOT",    "UPDATE",      "UPDATETEXT",
                                     "USE",          "USER",       "VALUES",      "VARYING",
                                     "VIEW",         "WAITFOR",    "WHEN",        "WHERE",
                                     "WHILE",        "WITH",       "WRITETEXT"});

class Reader {
  public:
    explicit Reader(std::string_view text) : text_(text) {}

    std::vector<Token> all() {
        std::vector<Token> tokens;
        tokens.reserve(text_.size() / 5 + 4);
        while (true) {
            skipBlanks();
            tokens.push_back(next());
            if (tokens.back().kind == TokenKind::End) return tokens;
        }
    }

  private:
    char at(size_t i) const { return i < text_.size() ? text_[i] : '\0'; }

    void newLine() {
        ++line_;
        lineStart_ = pos_ + 1;
    }

    void skipBlanks() {
        while (pos_ < text_.size()) {
            const char c = text_[pos_];
            if (!isA(c, kBlankStart)) return;
            if (c == '\n') newLine();
            if (c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\f' || c == '\v') {
                ++pos_;
            } else if (c == '\xC2' && at(pos_ + 1) == '\xA0') {  // no-break space
                pos_ += 2;
            } else if (c == '\xEF' && at(pos_ + 1) == '\xBB' && at(pos_ + 2) == '\xBF') {
                pos_ += 3;  // byte order mark
            } else if (c == '-' && at(pos_ + 1) == '-') {
                while (pos_ < text_.size() && text_[pos_] != '\n') ++pos_;
            } else if (c == '/' && at(pos_ + 1) == '*') {
                skipComment();
            } else {
                return;
            }
        }
    }

    void skipComment() {
        int depth = 0;
        while (pos_ < text_.size()) {
            if (text_[pos_] == '\n') newLine();
            if (text_[pos_] == '/' && at(pos_ + 1) == '*') {
                ++depth;
                pos_ += 2;
            } else if (text_[pos_] == '*' && at(pos_ + 1) == '/') {
                pos_ += 2;
                if (--depth == 0) return;
            } else {
                ++pos_;
            }
        }
        throw makeDbError(113, {}, line_);
    }

    Token start(TokenKind kind) const {
        Token t;
        t.kind = kind;
        t.line = static_cast<uint32_t>(line_);
        t.column = static_cast<uint16_t>(std::min<size_t>(pos_ - lineStart_ + 1, 65535));
        t.begin = static_cast<uint32_t>(pos_);
        return t;
    }

    Token finish(Token t) const {
        t.end = static_cast<uint32_t>(pos_);
        t.text = text_.substr(t.begin, t.end - t.begin);
        return t;
    }

    Token next() {
        const char c = at(pos_);
        if (pos_ >= text_.size()) return finish(start(TokenKind::End));
        if (c == '\'') return quoted(start(TokenKind::String), '\'');
        if ((c == 'N' || c == 'n') && at(pos_ + 1) == '\'') {
            Token t = start(TokenKind::NString);
            ++pos_;
            return quoted(t, '\'');
        }
        if (c == '[') return quoted(start(TokenKind::QuotedName), ']');
        if (c == '"') return quoted(start(TokenKind::QuotedName), '"');
        if (c == '@') {
            Token t = start(TokenKind::Variable);
            ++pos_;
            while (isNamePart(at(pos_))) ++pos_;
            return finish(t);
        }
        if (isNameStart(c)) {
            Token t = start(TokenKind::Name);
            while (pos_ < text_.size() && isNamePart(text_[pos_])) ++pos_;
            return finish(t);
        }
        if (isDigit(c) || (c == '.' && isDigit(at(pos_ + 1)))) return number();
        if (c == '$' && isDigit(at(pos_ + 1))) return money();
        return operatorToken();
    }

    Token money() {
        Token t = start(TokenKind::Decimal);
        do ++pos_;
        while (isDigit(at(pos_)));
        if (at(pos_) == '.') do
                ++pos_;
            while (isDigit(at(pos_)));
        return finish(t);
    }

    Token number() {
        Token t = start(TokenKind::Integer);
        if (at(pos_) == '0' && (at(pos_ + 1) == 'x' || at(pos_ + 1) == 'X')) {
            t.kind = TokenKind::Binary;
            pos_ += 2;
            while (isxdigit(static_cast<unsigned char>(at(pos_)))) ++pos_;
            return finish(t);
        }
        while (isDigit(at(pos_))) ++pos_;
        if (at(pos_) == '.') {
            t.kind = TokenKind::Decimal;
            ++pos_;
            while (isDigit(at(pos_))) ++pos_;
        }
        // An exponent needs its digits: in "0ELSE" the E begins the next word.
        if (at(pos_) == 'e' || at(pos_) == 'E') {
            const bool sign = at(pos_ + 1) == '+' || at(pos_ + 1) == '-';
            if (isDigit(at(pos_ + 1 + sign))) {
                t.kind = TokenKind::Float;
                pos_ += 1 + sign;
                while (isDigit(at(pos_))) ++pos_;
            }
        }
        return finish(t);
    }

    Token quoted(Token t, char close) {
        ++pos_;
        const size_t from = pos_;
        while (true) {
            if (pos_ >= text_.size())
                throw makeDbError(105, {text_.substr(from, 120)}, static_cast<int>(t.line));
            if (text_[pos_] == '\n') newLine();
            if (text_[pos_] == close) {
                if (at(pos_ + 1) != close) break;
                ++pos_;
            }
            ++pos_;
        }
        t.text = text_.substr(from, pos_ - from);
        ++pos_;
        t.end = static_cast<uint32_t>(pos_);
        if (!validUtf8(t.text)) throw makeDbError(102, {"?"}, static_cast<int>(t.line));
        return t;
    }

    Token operatorToken() {
        Token t = start(TokenKind::Operator);
        const char c = text_[pos_];
        const char n = at(pos_ + 1);
        size_t length = 1;
        if ((c == '<' && (n == '=' || n == '>')) || (c == '>' && n == '=') ||
            (c == '!' && (n == '=' || n == '<' || n == '>')) ||
            (n == '=' && std::string_view("+-*/%&|^").find(c) != std::string_view::npos) ||
            (c == ':' && n == ':'))
            length = 2;
        else if (std::string_view("+-*/%=<>(),.;&|^~:").find(c) == std::string_view::npos)
            throw syntaxErrorAt(t, std::string_view(&text_[pos_], 1));
        pos_ += length;
        return finish(t);
    }

    static DbError syntaxErrorAt(const Token& t, std::string_view near) {
        const bool printable = near[0] > ' ' && near[0] < 127;
        DbError e = makeDbError(102, {printable ? near : "?"}, static_cast<int>(t.line));
        e.column = t.column;
        return e;
    }

    std::string_view text_;
    size_t pos_ = 0;
    int line_ = 1;
    size_t lineStart_ = 0;
};

}  // namespace

std::vector<Token> tokenize(std::string_view batch) {
    return Reader(batch).all();
}

std::string unquoted(const Token& token) {
    char close = 0;
    if (token.kind == TokenKind::String || token.kind == TokenKind::NString) close = '\'';
    if (token.kind == TokenKind::QuotedName) close = token.text.data()[-1] == '"' ? '"' : ']';
    if (!close || token.text.find(close) == std::string_view::npos) return std::string(token.text);
    std::string out;
    out.reserve(token.text.size());
    for (size_t i = 0; i < token.text.size(); ++i) {
        out += token.text[i];
        if (close && token.text[i] == close) ++i;  // its double
    }
    return out;
}

bool isReservedWord(std::string_view word) {
    if (word.size() > 15) return false;
    // Where the words of each letter begin in the sorted list.
    static const auto starts = [] {
        std::array<size_t, 27> at{};
        for (size_t letter = 0; letter < at.size(); ++letter)
            while (at[letter] < kReserved.size() &&
                   kReserved[at[letter]][0] < static_cast<char>('A' + letter))
                ++at[letter];
        return at;
    }();
    const size_t letter = static_cast<size_t>((word[0] & 0x5F) - 'A');
    if (letter >= 26) return false;
    for (size_t i = starts[letter]; i < starts[letter + 1]; ++i)
        if (word.size() == kReserved[i].size() && (word.back() & 0x5F) == kReserved[i].back() &&
            equalsIgnoreCaseAscii(word, kReserved[i]))
            return true;
    return false;
}

}  // namespace owb::tsql
