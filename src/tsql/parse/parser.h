// Turns the tokens of one batch into its syntax tree. Throws DbError with line and column.
#pragma once

#include <algorithm>
#include <string_view>
#include <vector>

#include "base/utf8.h"
#include "tsql/parse/ast.h"
#include "tsql/parse/token.h"

namespace owb::tsql {

class Parser {
  public:
    Parser(std::string_view text, const std::vector<Token>& tokens);

    Batch parseBatch();
    // One expression alone, such as the stored text of a DEFAULT or CHECK.
    ExprPtr parseSingleExpression(Batch& batch);

  private:
    // --- tokens ---
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
    void parseCollation();
    std::string textBetween(const Token& first, const Token& behind) const;
    int64_t expectInteger();
    SqlType parseType(int defaultLength);

    // --- statements (parser_statements.cpp) ---
    StatementPtr parseStatement();
    StatementPtr parseStatementHere();
    std::vector<StatementPtr> parseBody();  // one statement, or a block's content
    StatementPtr newStatement(StatementKind kind);
    Name parseTarget();
    StatementPtr parseInsert(std::vector<CommonTable> with);
    StatementPtr parseUpdate(std::vector<CommonTable> with);
    StatementPtr parseDelete(std::vector<CommonTable> with);
    StatementPtr parseDeclare();
    StatementPtr parseSet();
    StatementPtr parseIf();
    StatementPtr parseBegin();
    StatementPtr parseExecute();
    StatementPtr parseExecuteCall(StatementPtr statement);
    void parseOutput(Statement& s, std::initializer_list<const char*> rows);
    StatementPtr parseRaiseError();
    void parseTransactionName(Statement& s);
    std::vector<StatementPtr> parseUntilEnd(const char* closing);
    bool atStatementStart() const;
    int parseOptionClause();

    // --- cursors and jumps (parser_cursors.cpp) ---
    StatementPtr parseCursor(std::string name, bool local);
    void parseCursorName(Statement& s);
    StatementPtr parseCursorUse();
    StatementPtr parseLabel();
    StatementPtr parseGoto();
    StatementPtr parseWaitFor();

    // --- definitions (parser_definitions.cpp) ---
    StatementPtr parseCreate();
    StatementPtr parseCreateTable();
    StatementPtr parseCreateIndex(bool unique);
    StatementPtr parseModule(size_t firstToken, bool alter, bool orAlter);
    StatementPtr parseAlter();
    StatementPtr parseAlterTable();
    StatementPtr parseDrop();
    void parseTableElements(std::vector<ColumnDefinition>& columns,
                            std::vector<ConstraintDefinition>& constraints);
    ColumnDefinition parseColumn(std::vector<ConstraintDefinition>& constraints);
    bool parseColumnConstraint(ColumnDefinition& column,
                               std::vector<ConstraintDefinition>& constraints);
    ConstraintDefinition parseTableConstraint();
    std::vector<std::string> parseColumnList();
    std::string parseSourceExpression();
    std::vector<Parameter> parseParameters(bool parenthesised);

    // --- queries (parser_queries.cpp) ---
    bool atSelect() const;
    std::vector<CommonTable> parseWith();
    QueryPtr parseQuery(std::vector<CommonTable> with = {});
    std::unique_ptr<QueryBody> parseQueryBody();
    std::unique_ptr<QueryBody> parseIntersect();
    std::unique_ptr<QueryBody> parseQueryPrimary();
    std::unique_ptr<QueryBody> parseSelect();
    SelectItem parseSelectItem();
    std::vector<OrderItem> parseOrderBy();
    std::vector<TableRefPtr> parseFromList();
    TableRefPtr parseJoined();
    TableRefPtr parseTablePrimary();
    void parseTableAlias(TableRef& table);
    void skipTableHints();
    ExprPtr parseTop(bool* percent, bool* withTies);

    // --- expressions (parser_expressions.cpp) ---
    ExprPtr parseExpression();
    ExprPtr parseAnd();
    ExprPtr parseNot();
    ExprPtr parsePredicate();
    ExprPtr parsePredicateTail(ExprPtr left);
    ExprPtr parseAdditive();
    ExprPtr parseMultiplicative();
    ExprPtr parseUnary();
    ExprPtr parsePrimary();
    ExprPtr parseCase();
    ExprPtr parseCast(bool convert, bool tryCast);
    ExprPtr parseFunction(Name name);
    std::unique_ptr<WindowSpec> parseWindow();
    ExprPtr parseLiteral();
    ExprPtr binary(ExprKind kind, std::string op, ExprPtr left, ExprPtr right);
    void countLink(int& links, int most = 1000) const;

    // Keeps nesting within what the stack bears.
    class Depth {
      public:
        explicit Depth(Parser& p);
        ~Depth() { --p_.depth_; }

      private:
        Parser& p_;
    };

    std::string_view text_;
    const std::vector<Token>& tokens_;
    std::vector<int> literalAt_;  // per token: its place in the literal table, -1 for others
    size_t pos_ = 0;
    int depth_ = 0;
    int loops_ = 0;  // WHILE around the statement
    Batch batch_;
};

// The value and type of a literal token; a leading minus is not part of it.
LiteralSlot literalOf(const Token& token);

}  // namespace owb::tsql
