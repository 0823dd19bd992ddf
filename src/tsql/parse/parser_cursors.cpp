// Cursors, GOTO with its labels, WAITFOR.
#include "base/db_error.h"
#include "base/utf8.h"
#include "tsql/parse/parser.h"

namespace owb::tsql {

// DECLARE name [INSENSITIVE] [SCROLL] CURSOR options FOR query, and SET @name = CURSOR ...
StatementPtr Parser::parseCursor(std::string name, bool local) {
    StatementPtr s = newStatement(StatementKind::DeclareCursor);
    s->target.parts.push_back(std::move(name));
    s->local = local;
    bool forward = false;
    const auto option = [&] {
        if (takeWord("LOCAL")) {
            s->local = true;
        } else if (takeWord("FORWARD_ONLY") || takeWord("FAST_FORWARD")) {
            forward = true;
        } else if (takeWord("SCROLL") || takeWord("STATIC") || takeWord("KEYSET") ||
                   takeWord("DYNAMIC") || takeWord("INSENSITIVE")) {
            s->on = true;
        } else {
            return takeWord("GLOBAL") || takeWord("READ_ONLY") || takeWord("SCROLL_LOCKS") ||
                   takeWord("OPTIMISTIC") || takeWord("TYPE_WARNING");
        }
        return true;
    };
    while (option()) {
    }
    expectWord("CURSOR");
    while (option()) {
    }
    if (forward) s->on = false;
    expectWord("FOR");
    s->query = parseQuery();
    for (const QueryBody* body = s->query->body.get(); body; body = body->left.get()) {
        if (!body->into.empty())
            throw makeDbError(154, {"The INTO clause", "a cursor declaration"}, s->line);
        for (const SelectItem& item : body->items)
            if (!item.variable.empty())
                throw makeDbError(154, {"Variable assignment", "a cursor declaration"}, s->line);
    }
    if (takeWord("FOR")) {
        if (takeWord("READ")) {
            expectWord("ONLY");
        } else {
            expectWord("UPDATE");
            if (takeWord("OF")) {
                do expectName();
                while (takeOperator(","));
            }
        }
    }
    return s;
}

void Parser::parseCursorName(Statement& s) {
    if (isWord("GLOBAL") && isPlainName(1)) take();
    if (peek().kind == TokenKind::Variable)
        s.target.parts.emplace_back(take().text);
    else
        s.target.parts.push_back(expectName());
}

StatementPtr Parser::parseCursorUse() {
    StatementPtr s = newStatement(isWord("OPEN")    ? StatementKind::OpenCursor
                                  : isWord("CLOSE") ? StatementKind::CloseCursor
                                  : isWord("FETCH") ? StatementKind::FetchCursor
                                                    : StatementKind::DeallocateCursor);
    take();
    if (s->kind == StatementKind::FetchCursor) {
        s->option = "NEXT";
        static constexpr const char* kWays[] = {"NEXT", "PRIOR",    "FIRST",
                                                "LAST", "ABSOLUTE", "RELATIVE"};
        for (const char* way : kWays) {
            if (!isWord(way) || isWord("INTO", 1)) continue;
            s->option = upperCase(take().text);
            if (s->option == "ABSOLUTE" || s->option == "RELATIVE") s->value = parseUnary();
            break;
        }
        takeWord("FROM");
    }
    parseCursorName(*s);
    if (s->kind == StatementKind::FetchCursor && takeWord("INTO")) {
        do {
            if (peek().kind != TokenKind::Variable) syntaxError();
            s->columns.emplace_back(take().text);
        } while (takeOperator(","));
    }
    return s;
}

StatementPtr Parser::parseLabel() {
    StatementPtr s = newStatement(StatementKind::Label);
    s->option = lowerCase(expectName());
    expectOperator(":");
    return s;
}

StatementPtr Parser::parseGoto() {
    StatementPtr s = newStatement(StatementKind::Goto);
    take();
    s->option = lowerCase(expectName());
    return s;
}

StatementPtr Parser::parseWaitFor() {
    StatementPtr s = newStatement(StatementKind::WaitFor);
    take();
    s->on = isWord("TIME");
    if (!s->on && !isWord("DELAY")) syntaxError();
    take();
    s->value = parsePrimary();
    return s;
}

}  // namespace owb::tsql
