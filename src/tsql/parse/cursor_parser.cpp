// Cursors, GOTO with its labels, WAITFOR.
#include "base/db_error.h"
#include "base/utf8.h"
#include "tsql/parse/parser.h"

namespace owb::tsql {

// DECLARE name [INSENSITIVE] [SCROLL] CURSOR options FOR query, and SET @name = CURSOR ...
StatementPtr Parser::parseCursor(std::string name, bool local) {
    auto s = make<CursorStatement>(StatementKind::DeclareCursor);
    s->name = std::move(name);
    s->local = local;
    bool forward = false;
    const auto option = [&] {
        if (takeWord("LOCAL")) {
            s->local = true;
        } else if (takeWord("FORWARD_ONLY") || takeWord("FAST_FORWARD")) {
            forward = true;
        } else if (takeWord("SCROLL") || takeWord("STATIC") || takeWord("KEYSET") ||
                   takeWord("DYNAMIC") || takeWord("INSENSITIVE")) {
            s->scroll = true;
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
    if (forward) s->scroll = false;
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

std::string Parser::parseCursorName() {
    if (isWord("GLOBAL") && isPlainName(1)) take();
    return peek().kind == TokenKind::Variable ? std::string(take().text) : expectName();
}

StatementPtr Parser::parseCursorUse() {
    auto s = make<CursorStatement>(isWord("OPEN")    ? StatementKind::OpenCursor
                                   : isWord("CLOSE") ? StatementKind::CloseCursor
                                   : isWord("FETCH") ? StatementKind::FetchCursor
                                                     : StatementKind::DeallocateCursor);
    take();
    if (s->kind == StatementKind::FetchCursor) {
        s->way = "NEXT";
        static constexpr const char* kWays[] = {"NEXT", "PRIOR",    "FIRST",
                                                "LAST", "ABSOLUTE", "RELATIVE"};
        for (const char* way : kWays) {
            if (!isWord(way) || isWord("INTO", 1)) continue;
            s->way = upperCase(take().text);
            if (s->way == "ABSOLUTE" || s->way == "RELATIVE") s->distance = parseUnary();
            break;
        }
        takeWord("FROM");
    }
    s->name = parseCursorName();
    if (s->kind == StatementKind::FetchCursor && takeWord("INTO")) {
        do {
            if (peek().kind != TokenKind::Variable) syntaxError();
            s->into.emplace_back(take().text);
        } while (takeOperator(","));
    }
    return s;
}

StatementPtr Parser::parseLabel() {
    auto s = make<LabelStatement>(StatementKind::Label);
    s->label = lowerCase(expectName());
    expectOperator(":");
    return s;
}

StatementPtr Parser::parseGoto() {
    auto s = make<LabelStatement>(StatementKind::Goto);
    take();
    s->label = lowerCase(expectName());
    return s;
}

StatementPtr Parser::parseWaitFor() {
    auto s = make<WaitStatement>(StatementKind::WaitFor);
    take();
    s->untilTime = isWord("TIME");
    if (!s->untilTime && !isWord("DELAY")) syntaxError();
    take();
    s->time = parsePrimary();
    return s;
}

}  // namespace owb::tsql
