// Expressions and conditions.
#include "base/db_error.h"
#include "base/utf8.h"
#include "tsql/parse/query_parser.h"

namespace owb::tsql {

QueryParser::Depth::Depth(QueryParser& p) : p_(p) {
    if (++p_.depth_ > 400) {
        p_.depth_ = 0;
        throw makeDbError(8623, {}, static_cast<int>(p_.peek().line));
    }
}

// A chain of operators leans to the left, as deep as it is long.
void QueryParser::countLink(int& links, int most) const {
    if (++links > most) throw makeDbError(8623, {}, static_cast<int>(peek().line));
}

ExprPtr QueryParser::binary(ExprKind kind, std::string op, ExprPtr left, ExprPtr right) {
    auto e = std::make_unique<Expr>(kind, left->line);
    e->op = std::move(op);
    e->args.push_back(std::move(left));
    e->args.push_back(std::move(right));
    return e;
}

ExprPtr QueryParser::parseSingleExpression(std::vector<LiteralSlot>& literals) {
    ExprPtr e = parseExpression();
    if (peek().kind != TokenKind::End) syntaxError();
    literals = std::move(literals_);
    return e;
}

ExprPtr QueryParser::parseExpression() {
    Depth depth(*this);
    ExprPtr left = parseAnd();
    for (int links = 0; takeWord("OR"); countLink(links))
        left = binary(ExprKind::Or, "OR", std::move(left), parseAnd());
    return left;
}

ExprPtr QueryParser::parseAnd() {
    ExprPtr left = parseNot();
    for (int links = 0; takeWord("AND"); countLink(links))
        left = binary(ExprKind::And, "AND", std::move(left), parseNot());
    return left;
}

ExprPtr QueryParser::parseNot() {
    if (isWord("NOT")) {
        Depth depth(*this);
        auto e = std::make_unique<Expr>(ExprKind::Not, static_cast<int>(take().line));
        e->args.push_back(parseNot());
        return e;
    }
    return parsePredicate();
}

ExprPtr QueryParser::parsePredicate() {
    if (isWord("EXISTS") && isOperator("(", 1)) {
        auto e = std::make_unique<Expr>(ExprKind::Exists, static_cast<int>(take().line));
        expectOperator("(");
        e->query = parseQuery();
        expectOperator(")");
        return e;
    }
    if (isWord("UPDATE") && isOperator("(", 1)) {  // UPDATE(column), in a trigger
        Name name;
        name.parts.push_back(upperCase(take().text));
        return parseFunction(std::move(name));
    }
    return parsePredicateTail(parseAdditive());
}

ExprPtr QueryParser::parsePredicateTail(ExprPtr left) {
    const int line = static_cast<int>(peek().line);
    if (takeWord("IS")) {
        auto e = std::make_unique<Expr>(ExprKind::IsNull, line);
        e->negated = takeWord("NOT");
        expectWord("NULL");
        e->args.push_back(std::move(left));
        return e;
    }
    const bool negated =
        isWord("NOT") && (isWord("BETWEEN", 1) || isWord("IN", 1) || isWord("LIKE", 1));
    if (negated) take();
    if (takeWord("BETWEEN")) {
        auto e = std::make_unique<Expr>(ExprKind::Between, line);
        e->negated = negated;
        e->args.push_back(std::move(left));
        e->args.push_back(parseAdditive());
        expectWord("AND");
        e->args.push_back(parseAdditive());
        return e;
    }
    if (takeWord("IN")) return parseIn(std::move(left), line, negated);
    if (takeWord("LIKE")) {
        auto e = std::make_unique<Expr>(ExprKind::Like, line);
        e->negated = negated;
        e->args.push_back(std::move(left));
        e->args.push_back(parseAdditive());
        if (takeWord("ESCAPE")) e->args.push_back(parseAdditive());
        return e;
    }
    return parseComparison(std::move(left), line);
}

ExprPtr QueryParser::parseIn(ExprPtr left, int line, bool negated) {
    expectOperator("(");
    const bool query = isWord("WITH") || atSelect();
    auto e = std::make_unique<Expr>(query ? ExprKind::InQuery : ExprKind::InList, line);
    e->negated = negated;
    e->args.push_back(std::move(left));
    if (query) {
        e->query = parseQuery();
    } else {
        do e->args.push_back(parseExpression());
        while (takeOperator(","));
    }
    expectOperator(")");
    return e;
}

// The sign of a comparison, "" when there is none. It may stand apart: "< =".
std::string QueryParser::takeComparison() {
    std::string op;
    if (isOperator("=") || isOperator("<>") || isOperator("<=") || isOperator(">=") ||
        isOperator("!=") || isOperator("!<") || isOperator("!>")) {
        op = take().text;
    } else if (isOperator("<") || isOperator(">")) {
        op = take().text;
        if (op == "<" && isOperator(">"))
            op += take().text;
        else if (isOperator("="))
            op += take().text;
    }
    if (op == "!=") op = "<>";
    if (op == "!<") op = ">=";
    if (op == "!>") op = "<=";
    return op;
}

ExprPtr QueryParser::parseComparison(ExprPtr left, int line) {
    const std::string op = takeComparison();
    if (op.empty()) return left;
    if (!isWord("ANY") && !isWord("ALL") && !isWord("SOME")) {
        ExprPtr e = binary(ExprKind::Compare, op, std::move(left), parseAdditive());
        e->line = line;
        return e;
    }
    auto e = std::make_unique<Expr>(ExprKind::Quantified, line);
    e->any = !isWord("ALL");
    take();
    e->compareOp = op;
    e->args.push_back(std::move(left));
    expectOperator("(");
    e->query = parseQuery();
    expectOperator(")");
    return e;
}

ExprPtr QueryParser::parseAdditive() {
    Depth depth(*this);
    ExprPtr left = parseMultiplicative();
    int links = 0;
    while (isOperator("+") || isOperator("-") || isOperator("&") || isOperator("|") ||
           isOperator("^")) {
        std::string op(take().text);
        left = binary(ExprKind::Binary, op, std::move(left), parseMultiplicative());
        countLink(links);
    }
    return left;
}

ExprPtr QueryParser::parseMultiplicative() {
    ExprPtr left = parseUnary();
    int links = 0;
    while (isOperator("*") || isOperator("/") || isOperator("%")) {
        std::string op(take().text);
        left = binary(ExprKind::Binary, op, std::move(left), parseUnary());
        countLink(links);
    }
    return left;
}

ExprPtr QueryParser::parseUnary() {
    if (isOperator("-") || isOperator("+") || isOperator("~")) {
        Depth depth(*this);
        const Token& t = take();
        ExprPtr operand = parseUnary();
        if (t.text == "+") return operand;
        auto e = std::make_unique<Expr>(ExprKind::Unary, static_cast<int>(t.line));
        e->op = t.text;
        e->args.push_back(std::move(operand));
        return e;
    }
    ExprPtr e = parsePrimary();
    while (takeWord("COLLATE")) parseCollation();
    return e;
}

ExprPtr QueryParser::parseLiteral() {
    const int slot = literalAt_[pos_];
    const Token& t = take();
    auto e = std::make_unique<Expr>(ExprKind::Literal, static_cast<int>(t.line));
    e->literal = slot;
    e->type = literals_[slot].type;
    literals_[slot].fixed = false;
    return e;
}

// What a reserved word begins; null when it is no such word.
ExprPtr QueryParser::parseKeyword() {
    const int line = this->line();
    if (takeWord("NULL")) return std::make_unique<Expr>(ExprKind::Null, line);
    if (isWord("CASE")) return parseCase();
    if (takeWord("USER")) {
        auto e = std::make_unique<Expr>(ExprKind::Function, line);
        e->name.parts.emplace_back("USER_NAME");
        return e;
    }
    if (isOperator("(", 1)) {
        if (isWord("CAST") || isWord("TRY_CAST")) {
            const bool tryCast = isWord("TRY_CAST");
            take();
            return parseCast(false, tryCast);
        }
        if (isWord("CONVERT") || isWord("TRY_CONVERT")) {
            const bool tryCast = isWord("TRY_CONVERT");
            take();
            return parseCast(true, tryCast);
        }
        if (isWord("COALESCE") || isWord("NULLIF") || isWord("LEFT") || isWord("RIGHT")) {
            Name name;
            name.parts.push_back(upperCase(take().text));
            return parseFunction(std::move(name));
        }
    }
    if (takeWord("DEFAULT")) return std::make_unique<Expr>(ExprKind::Default, line);
    return nullptr;
}

ExprPtr QueryParser::parsePrimary() {
    const Token& t = peek();
    const int line = static_cast<int>(t.line);
    if (t.isLiteral()) return parseLiteral();
    if (t.kind == TokenKind::Variable) {
        take();
        const bool system = t.text.size() > 2 && t.text[1] == '@';
        auto e =
            std::make_unique<Expr>(system ? ExprKind::SystemVariable : ExprKind::Variable, line);
        e->name.parts.push_back(std::string(t.text));
        return e;
    }
    if (isOperator("(")) {
        take();
        if (isWord("WITH") || atSelect()) {
            auto e = std::make_unique<Expr>(ExprKind::Subquery, line);
            e->query = parseQuery();
            expectOperator(")");
            return e;
        }
        ExprPtr e = parseExpression();
        expectOperator(")");
        return e;
    }
    if (isOperator("*")) {
        take();
        return std::make_unique<Expr>(ExprKind::Star, line);
    }
    if (t.kind == TokenKind::Name)
        if (ExprPtr e = parseKeyword()) return e;
    if (!isPlainName()) syntaxError();
    Name name = parseName();
    if (isOperator("(")) return parseFunction(std::move(name));
    auto e = std::make_unique<Expr>(ExprKind::Column, line);
    e->name = std::move(name);
    // CURRENT_TIMESTAMP and its kin are functions without parentheses.
    if (e->name.parts.size() == 1 && tokens_[pos_ - 1].kind == TokenKind::Name &&
        (equalsIgnoreCaseAscii(e->name.last(), "CURRENT_TIMESTAMP") ||
         equalsIgnoreCaseAscii(e->name.last(), "CURRENT_USER") ||
         equalsIgnoreCaseAscii(e->name.last(), "SYSTEM_USER")))
        e->kind = ExprKind::Function;
    return e;
}

ExprPtr QueryParser::parseCase() {
    auto e = std::make_unique<Expr>(ExprKind::Case, static_cast<int>(take().line));
    if (!isWord("WHEN")) {
        e->hasOperand = true;
        e->args.push_back(parseExpression());
    }
    if (!isWord("WHEN")) syntaxError();
    while (takeWord("WHEN")) {
        e->args.push_back(parseExpression());
        expectWord("THEN");
        e->args.push_back(parseExpression());
    }
    if (takeWord("ELSE")) {
        e->hasElse = true;
        e->args.push_back(parseExpression());
    }
    expectWord("END");
    return e;
}

ExprPtr QueryParser::parseCast(bool convert, bool tryCast) {
    auto e = std::make_unique<Expr>(ExprKind::Cast, static_cast<int>(peek().line));
    e->tryCast = tryCast;
    expectOperator("(");
    if (convert) {
        e->type = parseType(30);
        expectOperator(",");
        e->args.push_back(parseExpression());
        if (takeOperator(",")) e->args.push_back(parseExpression());
    } else {
        e->args.push_back(parseExpression());
        expectWord("AS");
        e->type = parseType(30);
    }
    expectOperator(")");
    return e;
}

ExprPtr QueryParser::parseFunction(Name name) {
    auto e = std::make_unique<Expr>(ExprKind::Function, static_cast<int>(peek().line));
    e->name = std::move(name);
    expectOperator("(");
    // The first argument of the date functions is a word, not a column.
    static constexpr const char* kDateParts[] = {"DATEADD", "DATEDIFF", "DATEPART", "DATENAME",
                                                 "DATEDIFF_BIG"};
    bool datePart = false;
    if (e->name.parts.size() == 1)
        for (const char* f : kDateParts) datePart |= equalsIgnoreCaseAscii(e->name.last(), f);
    if (datePart) {
        if (peek().kind != TokenKind::Name)
            throw makeDbError(1023, {"1", lowerCase(e->name.last())},
                              static_cast<int>(peek().line));
        auto part = std::make_unique<Expr>(ExprKind::Column, static_cast<int>(peek().line));
        part->name.parts.push_back(std::string(take().text));
        e->args.push_back(std::move(part));
        expectOperator(",");
    }
    if (takeWord("DISTINCT"))
        e->distinct = true;
    else
        takeWord("ALL");
    if (!isOperator(")")) {
        do e->args.push_back(parseExpression());
        while (takeOperator(","));
        if (equalsIgnoreCaseAscii(e->name.last(), "TRIM") && takeWord("FROM"))
            e->args.push_back(parseExpression());
    }
    expectOperator(")");
    if (isWord("WITHIN") && isWord("GROUP", 1)) {
        take();
        take();
        expectOperator("(");
        e->within = parseOrderBy();
        expectOperator(")");
    }
    if (isWord("OVER") && isOperator("(", 1)) e->over = parseWindow();
    return e;
}

std::unique_ptr<WindowSpec> QueryParser::parseWindow() {
    auto window = std::make_unique<WindowSpec>();
    expectWord("OVER");
    expectOperator("(");
    if (takeWord("PARTITION")) {
        expectWord("BY");
        do window->partitionBy.push_back(parseExpression());
        while (takeOperator(","));
    }
    if (isWord("ORDER")) window->orderBy = parseOrderBy();
    if (isWord("ROWS") || isWord("RANGE")) {
        const bool rows = isWord("ROWS");
        const auto edge = [&] {
            if (takeWord("CURRENT")) {
                expectWord("ROW");
                return std::string("CURRENT ROW");
            }
            std::string distance = "UNBOUNDED";
            if (!takeWord("UNBOUNDED")) {
                if (!rows || peek().kind != TokenKind::Integer) syntaxError();
                literals_[literalAt_[pos_]].fixed = true;
                distance = std::to_string(expectInteger());
            }
            if (takeWord("PRECEDING")) return distance + " PRECEDING";
            expectWord("FOLLOWING");
            return distance + " FOLLOWING";
        };
        if (window->orderBy.empty()) syntaxError();
        window->frame = upperCase(take().text) + " ";
        if (takeWord("BETWEEN")) {
            window->frame += "BETWEEN " + edge();
            expectWord("AND");
            window->frame += " AND ";
        }
        window->frame += edge();
    }
    expectOperator(")");
    return window;
}

}  // namespace owb::tsql
