// SELECT, its clauses and the tables in FROM.
#include "tsql/parse/query_parser.h"
#include "base/db_error.h"
#include "base/utf8.h"

#include "tsql/parse/literal.h"

namespace owb::tsql {

QueryParser::QueryParser(std::string_view text, const std::vector<Token>& tokens)
    : TokenReader(text, tokens), literalAt_(tokens.size(), -1) {
    for (size_t i = 0; i < tokens.size(); ++i) {
        if (!tokens[i].isLiteral()) continue;
        literalAt_[i] = static_cast<int>(literals_.size());
        literals_.push_back(literalOf(tokens[i]));
        literals_.back().fixed = true;  // until an expression takes it
    }
}

namespace {

constexpr const char* kStatementWords[] = {
    "SELECT", "INSERT", "UPDATE",   "DELETE",   "WITH",      "DECLARE", "SET",      "IF",
    "WHILE",  "BEGIN",  "RETURN",   "EXEC",     "EXECUTE",   "CREATE",  "ALTER",    "DROP",
    "PRINT",  "COMMIT", "ROLLBACK", "TRUNCATE", "RAISERROR", "BREAK",   "CONTINUE", "USE",
    "END",    "ELSE",   "THROW",    "GOTO",     "MERGE",     "WAITFOR", "SAVE"};

}  // namespace

bool QueryParser::atStatementStart() const {
    if (isPlainName() && isOperator(":", 1)) return true;  // a label
    if (peek().kind != TokenKind::Name) return false;
    for (const char* word : kStatementWords)
        if (isWord(word)) return true;
    return false;
}

namespace {

constexpr int kMostSets = 500;  // of UNION and its like in a row, which is what SQLite takes

}  // namespace

std::vector<CommonTable> QueryParser::parseWith() {
    std::vector<CommonTable> tables;
    if (!takeWord("WITH")) return tables;
    do {
        CommonTable table;
        table.name = expectName();
        if (isOperator("(")) table.columns = parseColumnList();
        expectWord("AS");
        expectOperator("(");
        table.query = parseQuery();
        expectOperator(")");
        tables.push_back(std::move(table));
    } while (takeOperator(","));
    return tables;
}

QueryPtr QueryParser::parseQuery(std::vector<CommonTable> with) {
    Depth depth(*this);
    auto query = std::make_unique<Query>();
    query->with = with.empty() ? parseWith() : std::move(with);
    query->body = parseQueryBody();
    if (isWord("ORDER")) query->orderBy = parseOrderBy();
    if (!query->orderBy.empty() && takeWord("OFFSET")) {
        query->offset = parseAdditive();
        if (!takeWord("ROWS")) expectWord("ROW");
        if (takeWord("FETCH")) {
            if (!takeWord("NEXT")) expectWord("FIRST");
            query->fetch = parseAdditive();
            if (!takeWord("ROWS")) expectWord("ROW");
            expectWord("ONLY");
        }
    }
    query->maxRecursion = parseOptionClause();
    return query;
}

// Hints for the server's optimizer say nothing here; MAXRECURSION does: -1 without it.
int QueryParser::parseOptionClause() {
    int recursion = -1;
    if (!isWord("OPTION") || !isOperator("(", 1)) return recursion;
    take();
    take();
    int open = 1;
    while (open > 0 && peek().kind != TokenKind::End) {
        if (isOperator("(")) ++open;
        if (isOperator(")")) --open;
        if (isWord("MAXRECURSION") && peek(1).kind == TokenKind::Integer) {
            take();
            recursion = static_cast<int>(expectInteger());
        } else {
            take();
        }
    }
    return recursion;
}

// Whether what follows an opened parenthesis is a query, itself perhaps in more of them: each of
// these closes before another one does or before a word that joins queries. So "((SELECT 1) + 1)"
// holds none, nor does "((SELECT 1 AS a) AS x JOIN t ON x.a = t.a)".
bool QueryParser::atSelect() const {
    size_t open = 0;
    while (isOperator("(", open)) ++open;
    if (!isWord("SELECT", open)) return false;
    size_t leading = open;  // of the parentheses before SELECT, those that have not closed yet
    for (size_t at = open; leading > 0 && peek(at).kind != TokenKind::End; ++at) {
        if (isOperator("(", at)) ++open;
        if (!isOperator(")", at) || --open >= leading) continue;
        leading = open;
        if (!isOperator(")", at + 1) && !isWord("UNION", at + 1) && !isWord("EXCEPT", at + 1) &&
            !isWord("INTERSECT", at + 1) && !isWord("ORDER", at + 1))
            return false;
    }
    return true;
}

std::unique_ptr<QueryBody> QueryParser::parseQueryBody() {
    auto left = parseIntersect();
    for (int links = 0; isWord("UNION") || isWord("EXCEPT"); countLink(links, kMostSets)) {
        auto both = std::make_unique<QueryBody>();
        both->line = static_cast<int>(peek().line);
        if (takeWord("UNION"))
            both->kind = takeWord("ALL") ? QueryBody::UnionAll : QueryBody::Union;
        else {
            take();
            both->kind = QueryBody::Except;
        }
        both->left = std::move(left);
        both->right = parseIntersect();
        left = std::move(both);
    }
    return left;
}

std::unique_ptr<QueryBody> QueryParser::parseIntersect() {
    auto left = parseQueryPrimary();
    for (int links = 0; isWord("INTERSECT"); countLink(links, kMostSets)) {
        auto both = std::make_unique<QueryBody>();
        both->line = static_cast<int>(take().line);
        both->kind = QueryBody::Intersect;
        both->left = std::move(left);
        both->right = parseQueryPrimary();
        left = std::move(both);
    }
    return left;
}

std::unique_ptr<QueryBody> QueryParser::parseQueryPrimary() {
    if (takeOperator("(")) {
        Depth depth(*this);
        auto body = parseQueryBody();
        expectOperator(")");
        return body;
    }
    if (isWord("VALUES")) {
        auto body = std::make_unique<QueryBody>();
        body->kind = QueryBody::Values;
        body->line = static_cast<int>(take().line);
        do {
            expectOperator("(");
            std::vector<ExprPtr> row;
            do row.push_back(parseExpression());
            while (takeOperator(","));
            expectOperator(")");
            body->rows.push_back(std::move(row));
        } while (takeOperator(","));
        return body;
    }
    return parseSelect();
}

ExprPtr QueryParser::parseTop(bool* percent, bool* withTies) {
    if (!takeWord("TOP")) return nullptr;
    ExprPtr top;
    if (takeOperator("(")) {
        top = parseExpression();
        expectOperator(")");
    } else {
        if (peek().kind != TokenKind::Integer && peek().kind != TokenKind::Decimal) syntaxError();
        top = parseLiteral();
    }
    if (takeWord("PERCENT")) {
        if (!percent) syntaxError();
        *percent = true;
    }
    if (isWord("WITH") && isWord("TIES", 1)) {
        if (!withTies) syntaxError();
        take();
        take();
        *withTies = true;
    }
    return top;
}

std::unique_ptr<QueryBody> QueryParser::parseSelect() {
    auto body = std::make_unique<QueryBody>();
    body->line = static_cast<int>(peek().line);
    expectWord("SELECT");
    if (takeWord("DISTINCT"))
        body->distinct = true;
    else
        takeWord("ALL");
    body->top = parseTop(&body->topPercent, &body->withTies);
    do body->items.push_back(parseSelectItem());
    while (takeOperator(","));
    if (takeWord("INTO")) body->into = parseName();
    if (takeWord("FROM")) body->from = parseFromList();
    if (takeWord("WHERE")) body->where = parseExpression();
    if (isWord("GROUP") && isWord("BY", 1)) {
        take();
        take();
        do {
            const bool sets = isWord("GROUPING") && isWord("SETS", 1);
            if (sets || ((isWord("ROLLUP") || isWord("CUBE")) && isOperator("(", 1)))
                throw makeDbError(15281, {"GROUP BY " + upperCase(peek().text)},
                                  static_cast<int>(peek().line));
            body->groupBy.push_back(parseExpression());
        } while (takeOperator(","));
        if (isWord("WITH") && (isWord("ROLLUP", 1) || isWord("CUBE", 1)))
            throw makeDbError(15281, {"GROUP BY " + upperCase(peek(1).text)},
                              static_cast<int>(peek().line));
    }
    if (takeWord("HAVING")) body->having = parseExpression();
    return body;
}

SelectItem QueryParser::parseSelectItem() {
    SelectItem item;
    item.line = static_cast<int>(peek().line);
    if (takeOperator("*")) {
        item.star = true;
        return item;
    }
    // "t.*" and "dbo.t.*"
    size_t ahead = 0;
    while (isPlainName(ahead) && isOperator(".", ahead + 1)) {
        ahead += 2;
        if (!isOperator("*", ahead)) continue;
        item.starOf = parseName();
        take();
        take();
        item.star = true;
        return item;
    }
    if (peek().kind == TokenKind::Variable && isOperator("=", 1)) {
        item.variable = take().text;
        take();
        item.expr = parseExpression();
        return item;
    }
    if (peek().kind == TokenKind::Variable && isCompound(peek(1))) {
        ExprPtr variable = parsePrimary();
        item.variable = variable->name.last();
        const std::string op = expectAssignment();
        item.expr = binary(ExprKind::Binary, op, std::move(variable), parseExpression());
        return item;
    }
    // "alias = expression"
    if ((isPlainName() || peek().kind == TokenKind::String) && isOperator("=", 1)) {
        item.alias = unquoted(take());
        take();
        item.expr = parseExpression();
        return item;
    }
    item.expr = parseExpression();
    if (takeWord("AS")) {
        if (peek().kind == TokenKind::String || peek().kind == TokenKind::NString)
            item.alias = unquoted(take());
        else
            item.alias = expectName();
    } else if (isPlainName() && !atStatementStart()) {
        item.alias = unquoted(take());
    } else if (peek().kind == TokenKind::String) {
        item.alias = unquoted(take());
    }
    return item;
}

std::vector<OrderItem> QueryParser::parseOrderBy() {
    std::vector<OrderItem> items;
    expectWord("ORDER");
    expectWord("BY");
    do {
        OrderItem item;
        item.expr = parseExpression();
        if (takeWord("DESC"))
            item.descending = true;
        else
            takeWord("ASC");
        items.push_back(std::move(item));
    } while (takeOperator(","));
    return items;
}

std::vector<TableRefPtr> QueryParser::parseFromList() {
    std::vector<TableRefPtr> tables;
    do tables.push_back(parseJoined());
    while (takeOperator(","));
    return tables;
}

// The words of a join, none when no join follows.
std::optional<JoinKind> QueryParser::takeJoin() {
    if (takeWord("JOIN")) return JoinKind::Inner;
    if (takeWord("INNER")) {
        expectWord("JOIN");
        return JoinKind::Inner;
    }
    if (takeWord("CROSS")) {
        if (takeWord("APPLY")) return JoinKind::CrossApply;
        expectWord("JOIN");
        return JoinKind::Cross;
    }
    if (isWord("OUTER") && isWord("APPLY", 1)) {
        take();
        take();
        return JoinKind::OuterApply;
    }
    if ((isWord("LEFT") || isWord("RIGHT") || isWord("FULL")) &&
        (isWord("JOIN", 1) || isWord("OUTER", 1))) {
        const JoinKind kind = isWord("LEFT")    ? JoinKind::Left
                              : isWord("RIGHT") ? JoinKind::Right
                                                : JoinKind::Full;
        take();
        takeWord("OUTER");
        expectWord("JOIN");
        return kind;
    }
    if (isWord("PIVOT") || isWord("UNPIVOT"))
        throw makeDbError(15281, {upperCase(peek().text)}, line());
    return std::nullopt;
}

// "a JOIN b JOIN c ON .. ON .." nests on the right: the joins that come before the condition of the
// one around them.
TableRefPtr QueryParser::parseNestedJoins(TableRefPtr right) {
    while (!isWord("ON")) {
        auto nested = std::make_unique<TableRef>();
        nested->kind = TableRef::Join;
        nested->line = line();
        if (takeWord("LEFT"))
            nested->join = JoinKind::Left;
        else if (takeWord("RIGHT"))
            nested->join = JoinKind::Right;
        else if (takeWord("FULL"))
            nested->join = JoinKind::Full;
        else
            takeWord("INNER");
        takeWord("OUTER");
        expectWord("JOIN");
        nested->left = std::move(right);
        nested->right = parseTablePrimary();
        expectWord("ON");
        nested->on = parseExpression();
        right = std::move(nested);
    }
    return right;
}

TableRefPtr QueryParser::parseJoined() {
    TableRefPtr left = parseTablePrimary();
    for (int tables = 1;; ++tables) {
        if (tables > 256) throw makeDbError(106, {"256"}, left->line);
        const std::optional<JoinKind> kind = takeJoin();
        if (!kind) return left;
        auto join = std::make_unique<TableRef>();
        join->kind = TableRef::Join;
        join->line = line();
        join->join = *kind;
        join->left = std::move(left);
        join->right = parseTablePrimary();
        if (*kind != JoinKind::Cross && *kind != JoinKind::CrossApply &&
            *kind != JoinKind::OuterApply) {
            join->right = parseNestedJoins(std::move(join->right));
            expectWord("ON");
            join->on = parseExpression();
        }
        left = std::move(join);
    }
}

TableRefPtr QueryParser::parseTablePrimary() {
    auto table = std::make_unique<TableRef>();
    table->line = static_cast<int>(peek().line);
    if (takeOperator("(")) {
        Depth depth(*this);
        if (isWord("WITH") || isWord("VALUES") || atSelect()) {
            table->kind = TableRef::Derived;
            table->query = parseQuery();
            expectOperator(")");
            parseTableAlias(*table);
            if (table->alias.empty()) syntaxError();
            return table;
        }
        TableRefPtr inner = parseJoined();
        expectOperator(")");
        return inner;
    }
    if (peek().kind == TokenKind::Variable) {
        table->kind = TableRef::Variable;
        table->name.parts.push_back(std::string(take().text));
        parseTableAlias(*table);
        return table;
    }
    table->name = parseName();
    if (isOperator("(") && !isWord("NOLOCK", 1)) {
        table->kind = TableRef::Function;
        take();
        if (!isOperator(")")) {
            do table->args.push_back(parseExpression());
            while (takeOperator(","));
        }
        expectOperator(")");
    }
    skipTableHints();
    parseTableAlias(*table);
    skipTableHints();
    return table;
}

void QueryParser::parseTableAlias(TableRef& table) {
    if (takeWord("AS")) {
        table.alias = expectName();
    } else if (isPlainName() && !atStatementStart()) {
        table.alias = unquoted(take());
    }
    if (!table.alias.empty() && table.kind != TableRef::Table && isOperator("(") && isPlainName(1))
        table.columnAliases = parseColumnList();
}

// WITH (NOLOCK) and the like say nothing to a database that never reads uncommitted rows.
void QueryParser::skipTableHints() {
    const bool with = isWord("WITH") && isOperator("(", 1);
    if (!with && !(isOperator("(") && isWord("NOLOCK", 1))) return;
    if (with) take();
    take();
    while (!isOperator(")") && peek().kind != TokenKind::End) take();
    expectOperator(")");
}

}  // namespace owb::tsql
