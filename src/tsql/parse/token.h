// Tokens of T-SQL text, and the reader that cuts a batch into them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace owb::tsql {

enum class TokenKind : uint8_t {
    End,
    Name,        // bare word, keywords included
    QuotedName,  // [x] or "x"; never a keyword
    Variable,    // @x or @@x
    Integer,
    Decimal,  // has a point, or is money: $5
    Float,    // has an exponent
    String,
    NString,  // N'x'
    Binary,   // 0x...
    Operator,
};

struct Token {
    TokenKind kind = TokenKind::End;
    uint16_t column = 0;  // from 1
    uint32_t line = 0;    // from 1
    uint32_t begin = 0;   // place in the batch's text
    uint32_t end = 0;
    std::string_view text;  // as written; of a QuotedName and a string without their delimiters,
                            // doubled delimiters still doubled

    bool isLiteral() const { return kind >= TokenKind::Integer && kind <= TokenKind::NString; }
};

// Cuts the batch into tokens, an End token last. Comments and blanks are dropped. The tokens point
// into the text. Throws DbError (105, 113, 102).
std::vector<Token> tokenize(std::string_view batch);

// The text of a quoted name or string with doubled delimiters made single.
std::string unquoted(const Token& token);

// Whether the word is reserved: a reserved word never is an alias or a bare object name.
bool isReservedWord(std::string_view word);

}  // namespace owb::tsql
