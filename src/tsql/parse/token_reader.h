// The tokens of a batch, one after the other, with what all parts of the grammar share: words,
// operators, names and types.
#pragma once

#include <algorithm>
#include <string_view>
#include <vector>

#include "base/utf8.h"
#include "tsql/parse/ast.h"
#include "tsql/parse/token.h"

namespace owb::tsql {

class TokenReader {
  public:
    TokenReader(std::string_view text, const std::vector<Token>& tokens)
        : text_(text), tokens_(tokens) {}

  protected:
    const Token& peek(size_t ahead = 0) const {
        return tokens_[std::min(pos_ + ahead, tokens_.size() - 1)];
    }
    const Token& take();
    // Asked some dozen times for each token, mostly in vain: in line, the first letter first.
    bool isWord(std::string_view word, size_t ahead = 0) const {
        const Token& t = peek(ahead);
        return t.kind == TokenKind::Name && t.text.size() == word.size() &&
               ((t.text[0] ^ word[0]) & 0x5F) == 0 && equalsIgnoreCaseAscii(t.text, word);
    }
    bool isOperator(std::string_view op, size_t ahead = 0) const {
        const Token& t = peek(ahead);
        return t.kind == TokenKind::Operator && t.text[0] == op[0] && t.text == op;
    }
    bool takeWord(std::string_view word) { return isWord(word) && (++pos_, true); }
    static bool isCompound(const Token& t) {
        return t.kind == TokenKind::Operator && t.text.size() == 2 && t.text[1] == '=' &&
               std::string_view("+-*/%&|^").find(t.text[0]) != std::string_view::npos;
    }
    // The operator of "+=" and its kin, or "" behind a plain "=".
    std::string expectAssignment();
    bool takeOperator(std::string_view op) { return isOperator(op) && (++pos_, true); }
    void expectWord(std::string_view word);
    void expectOperator(std::string_view op);
    [[noreturn]] void syntaxError() const;
    bool isPlainName(size_t ahead = 0) const;  // a name that is no reserved word
    std::string expectName();
    Name parseName();
    std::vector<std::string> parseColumnList();
    void parseCollation();
    std::string textBetween(const Token& first, const Token& behind) const;
    int64_t expectInteger();
    SqlType parseType(int defaultLength);
    int line() const { return static_cast<int>(peek().line); }

    std::string_view text_;
    const std::vector<Token>& tokens_;
    size_t pos_ = 0;
};

}  // namespace owb::tsql
