// The grammar of expressions and queries, which hold each other.
#pragma once

#include <optional>

#include "tsql/parse/token_reader.h"

namespace owb::tsql {

class QueryParser : public TokenReader {
  public:
    QueryParser(std::string_view text, const std::vector<Token>& tokens);

    // One expression alone, such as the stored text of a DEFAULT or CHECK; its literals.
    ExprPtr parseSingleExpression(std::vector<LiteralSlot>& literals);

  protected:
    // --- queries (query_parser.cpp) ---
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
    std::optional<JoinKind> takeJoin();
    TableRefPtr parseNestedJoins(TableRefPtr right);
    TableRefPtr parseTablePrimary();
    void parseTableAlias(TableRef& table);
    void skipTableHints();
    ExprPtr parseTop(bool* percent, bool* withTies);

    int parseOptionClause();
    bool atStatementStart() const;

    // --- expressions (expression_parser.cpp) ---
    ExprPtr parseExpression();
    ExprPtr parseAnd();
    ExprPtr parseNot();
    ExprPtr parsePredicate();
    ExprPtr parsePredicateTail(ExprPtr left);
    ExprPtr parseIn(ExprPtr left, int line, bool negated);
    std::string takeComparison();
    ExprPtr parseComparison(ExprPtr left, int line);
    ExprPtr parseAdditive();
    ExprPtr parseMultiplicative();
    ExprPtr parseUnary();
    ExprPtr parsePrimary();
    ExprPtr parseKeyword();
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
        explicit Depth(QueryParser& p);
        ~Depth() { --p_.depth_; }

      private:
        QueryParser& p_;
    };

    std::vector<int> literalAt_;  // per token: its place in the literal table, -1 for others
    std::vector<LiteralSlot> literals_;
    int depth_ = 0;
};

}  // namespace owb::tsql
