// Statements that change data or steer the batch.
#include <algorithm>

#include "base/db_error.h"
#include "base/utf8.h"
#include "tsql/parse/parser.h"

namespace owb::tsql {

namespace {

constexpr const char* kStatementWords[] = {
    "SELECT", "INSERT", "UPDATE",   "DELETE",   "WITH",      "DECLARE", "SET",      "IF",
    "WHILE",  "BEGIN",  "RETURN",   "EXEC",     "EXECUTE",   "CREATE",  "ALTER",    "DROP",
    "PRINT",  "COMMIT", "ROLLBACK", "TRUNCATE", "RAISERROR", "BREAK",   "CONTINUE", "USE",
    "END",    "ELSE",   "THROW",    "GOTO",     "MERGE",     "WAITFOR", "SAVE"};

}  // namespace

bool Parser::atStatementStart() const {
    if (isPlainName() && isOperator(":", 1)) return true;  // a label
    if (peek().kind != TokenKind::Name) return false;
    for (const char* word : kStatementWords)
        if (isWord(word)) return true;
    return false;
}

StatementPtr Parser::newStatement(StatementKind kind) {
    auto s = std::make_unique<Statement>(kind, static_cast<int>(peek().line));
    s->id = batch_.statementCount++;
    return s;
}

StatementPtr Parser::parseStatement() {
    if (++depth_ > 200) {
        depth_ = 0;
        throw makeDbError(8623, {}, static_cast<int>(peek().line));
    }
    StatementPtr s = parseStatementHere();
    --depth_;
    while (takeOperator(";")) {
    }
    return s;
}

StatementPtr Parser::parseStatementHere() {
    if (isWord("WITH")) {
        // Behind another statement it would be read as a part of that.
        static constexpr const char* kBefore[] = {"BEGIN", "AS", "ELSE", "TRY", "CATCH"};
        if (pos_ > 0 && tokens_[pos_ - 1].text != ";" &&
            std::none_of(std::begin(kBefore), std::end(kBefore), [&](const char* word) {
                return equalsIgnoreCaseAscii(tokens_[pos_ - 1].text, word);
            }))
            throw makeDbError(319, {}, static_cast<int>(peek().line));
        std::vector<CommonTable> with = parseWith();
        if (isWord("INSERT")) return parseInsert(std::move(with));
        if (isWord("UPDATE")) return parseUpdate(std::move(with));
        if (isWord("DELETE")) return parseDelete(std::move(with));
        StatementPtr s = newStatement(StatementKind::Query);
        s->query = parseQuery(std::move(with));
        return s;
    }
    if (isWord("SELECT") || isOperator("(")) {
        StatementPtr s = newStatement(StatementKind::Query);
        s->query = parseQuery();
        return s;
    }
    if (isWord("INSERT")) return parseInsert({});
    if (isWord("UPDATE")) return parseUpdate({});
    if (isWord("DELETE")) return parseDelete({});
    if (isWord("TRUNCATE")) {
        StatementPtr s = newStatement(StatementKind::Truncate);
        take();
        expectWord("TABLE");
        s->target = parseName();
        return s;
    }
    if (isWord("DECLARE")) return parseDeclare();
    if (isWord("SET")) return parseSet();
    if (isWord("IF")) return parseIf();
    if (isWord("WHILE")) {
        StatementPtr s = newStatement(StatementKind::While);
        take();
        s->condition = parseExpression();
        ++loops_;
        s->body = parseBody();
        --loops_;
        return s;
    }
    if (isWord("BREAK") || isWord("CONTINUE")) {
        if (loops_ == 0)
            throw makeDbError(isWord("BREAK") ? 135 : 136, {}, static_cast<int>(peek().line));
        StatementPtr s =
            newStatement(isWord("BREAK") ? StatementKind::Break : StatementKind::Continue);
        take();
        return s;
    }
    if (isWord("BEGIN")) return parseBegin();
    if (isWord("RETURN")) {
        StatementPtr s = newStatement(StatementKind::Return);
        take();
        if (!isOperator(";") && peek().kind != TokenKind::End && !atStatementStart())
            s->value = parseExpression();
        return s;
    }
    if (isWord("EXEC") || isWord("EXECUTE")) return parseExecute();
    if (isWord("CREATE")) return parseCreate();
    if (isWord("ALTER")) return parseAlter();
    if (isWord("DROP")) return parseDrop();
    if (isWord("PRINT")) {
        StatementPtr s = newStatement(StatementKind::Print);
        take();
        s->value = parseExpression();
        return s;
    }
    if (isWord("RAISERROR")) return parseRaiseError();
    if (isWord("THROW")) {
        StatementPtr s = newStatement(StatementKind::Throw);
        take();
        if (!isOperator(";") && peek().kind != TokenKind::End && !atStatementStart()) {
            do {
                Argument a;
                a.value = parseAdditive();
                s->arguments.push_back(std::move(a));
            } while (takeOperator(","));
            if (s->arguments.size() != 3) syntaxError();
        }
        return s;
    }
    if (isWord("COMMIT") || isWord("ROLLBACK")) {
        StatementPtr s =
            newStatement(isWord("COMMIT") ? StatementKind::Commit : StatementKind::Rollback);
        take();
        if (takeWord("TRANSACTION") || takeWord("TRAN"))
            parseTransactionName(*s);
        else
            takeWord("WORK");
        return s;
    }
    if (isWord("SAVE")) {
        StatementPtr s = newStatement(StatementKind::SaveTransaction);
        take();
        if (!takeWord("TRANSACTION")) expectWord("TRAN");
        parseTransactionName(*s);
        if (!s->value && s->target.empty()) syntaxError();
        return s;
    }
    if (isWord("OPEN") || isWord("CLOSE") || isWord("FETCH") || isWord("DEALLOCATE"))
        return parseCursorUse();
    for (const char* word : {"MERGE", "DBCC", "GRANT", "DENY", "REVOKE", "BACKUP", "RESTORE"})
        if (isWord(word)) throw makeDbError(15281, {word}, static_cast<int>(peek().line));
    if (isWord("GOTO")) return parseGoto();
    if (isWord("WAITFOR")) return parseWaitFor();
    if (isPlainName() && isOperator(":", 1)) return parseLabel();
    // A procedure call may leave EXEC out when it begins the batch.
    if (isPlainName() && batch_.statementCount == 0) {
        StatementPtr s = newStatement(StatementKind::Execute);
        return parseExecuteCall(std::move(s));
    }
    syntaxError();
}

void Parser::parseTransactionName(Statement& s) {
    if (peek().kind == TokenKind::Variable)
        s.value = parsePrimary();
    else if (isPlainName() && !atStatementStart())
        s.target.parts.push_back(expectName());
}

std::vector<StatementPtr> Parser::parseBody() {
    while (takeOperator(";")) {
    }
    std::vector<StatementPtr> body;
    body.push_back(parseStatement());
    return body;
}

// The table that a statement writes: a name, or a table variable.
Name Parser::parseTarget() {
    Name target;
    if (peek().kind == TokenKind::Variable)
        target.parts.push_back(std::string(take().text));
    else
        target = parseName();
    skipTableHints();
    return target;
}

StatementPtr Parser::parseInsert(std::vector<CommonTable> with) {
    StatementPtr s = newStatement(StatementKind::Insert);
    expectWord("INSERT");
    s->top = parseTop(nullptr, nullptr);
    takeWord("INTO");
    s->target = parseTarget();
    if (isOperator("(") && !isWord("SELECT", 1) && !isWord("WITH", 1) && !isOperator("(", 1))
        s->columns = parseColumnList();
    parseOutput(*s, {"inserted"});
    if (takeWord("DEFAULT")) {
        expectWord("VALUES");
        s->defaultValues = true;
        return s;
    }
    if (isWord("EXEC") || isWord("EXECUTE")) {
        s->body.push_back(parseExecute());
        return s;
    }
    s->query = parseQuery(std::move(with));
    return s;
}

StatementPtr Parser::parseUpdate(std::vector<CommonTable> with) {
    StatementPtr s = newStatement(StatementKind::Update);
    expectWord("UPDATE");
    s->top = parseTop(nullptr, nullptr);
    s->target = parseTarget();
    expectWord("SET");
    do {
        Assignment a;
        a.line = static_cast<int>(peek().line);
        if (peek().kind == TokenKind::Variable) {
            a.variable = take().text;
            a.op = expectAssignment();
            if (a.op.empty() && isPlainName() && isOperator("=", 1)) {
                a.column = expectName();
                take();
            }
            a.value = parseAdditive();
        } else {
            a.written = parseName();
            a.column = a.written.last();
            a.op = expectAssignment();
            a.value = parseAdditive();
        }
        s->assignments.push_back(std::move(a));
    } while (takeOperator(","));
    parseOutput(*s, {"inserted", "deleted"});
    if (takeWord("FROM")) s->from = parseFromList();
    if (takeWord("WHERE")) s->condition = parseExpression();
    const int maxRecursion = parseOptionClause();
    if (!with.empty()) {
        s->query = std::make_unique<Query>();
        s->query->with = std::move(with);
        s->query->maxRecursion = maxRecursion;
    }
    return s;
}

StatementPtr Parser::parseDelete(std::vector<CommonTable> with) {
    StatementPtr s = newStatement(StatementKind::Delete);
    expectWord("DELETE");
    s->top = parseTop(nullptr, nullptr);
    takeWord("FROM");
    s->target = parseTarget();
    parseOutput(*s, {"deleted"});
    if (takeWord("FROM")) s->from = parseFromList();
    if (takeWord("WHERE")) s->condition = parseExpression();
    const int maxRecursion = parseOptionClause();
    if (!with.empty()) {
        s->query = std::make_unique<Query>();
        s->query->with = std::move(with);
        s->query->maxRecursion = maxRecursion;
    }
    return s;
}

// OUTPUT reads the statement's own rows: a query over the tables `rows`.
void Parser::parseOutput(Statement& s, std::initializer_list<const char*> rows) {
    if (!isWord("OUTPUT")) return;
    take();
    s.output = std::make_unique<Query>();
    s.output->body = std::make_unique<QueryBody>();
    QueryBody& body = *s.output->body;
    body.line = static_cast<int>(peek().line);
    do body.items.push_back(parseSelectItem());
    while (takeOperator(","));
    for (const char* name : rows) {
        auto table = std::make_unique<TableRef>();
        table->line = body.line;
        table->name.parts.emplace_back(name);
        body.from.push_back(std::move(table));
    }
    if (!takeWord("INTO")) return;
    s.outputInto = parseTarget();
    if (isOperator("(") && !isWord("SELECT", 1)) s.outputColumns = parseColumnList();
}

StatementPtr Parser::parseDeclare() {
    if (isPlainName(1)) {
        take();
        return parseCursor(expectName(), false);
    }
    StatementPtr s = newStatement(StatementKind::Declare);
    take();
    do {
        if (peek().kind != TokenKind::Variable) syntaxError();
        VariableDeclaration v;
        v.name = take().text;
        takeWord("AS");
        if (takeWord("CURSOR")) continue;  // comes about by SET
        if (takeWord("TABLE")) {
            v.isTable = true;
            parseTableElements(v.tableColumns, v.tableConstraints);
        } else {
            v.type = parseType(1);
            if (takeOperator("=")) v.initial = parseExpression();
        }
        s->variables.push_back(std::move(v));
    } while (takeOperator(","));
    return s;
}

StatementPtr Parser::parseSet() {
    if (peek(1).kind == TokenKind::Variable) {
        StatementPtr s = newStatement(StatementKind::Set);
        take();
        s->variable = take().text;
        s->op = expectAssignment();
        if (isWord("CURSOR")) return parseCursor(s->variable, true);
        s->value = parseExpression();
        return s;
    }
    StatementPtr s = newStatement(StatementKind::SetOption);
    take();
    if (peek().kind != TokenKind::Name) syntaxError();
    s->option = upperCase(take().text);
    if (s->option == "IDENTITY_INSERT") s->target = parseName();
    while (!isWord("ON") && !isWord("OFF") && peek().kind == TokenKind::Name && !atStatementStart())
        s->option += " " + upperCase(take().text);
    if (s->option == "DATEFIRST" || s->option == "LOCK_TIMEOUT" || s->option == "ROWCOUNT") {
        s->value = parseUnary();
        return s;
    }
    if (s->option.starts_with("DATEFORMAT") || s->option.starts_with("LANGUAGE")) {
        // A bare word, or a text or variable behind the option's name.
        if (s->option.find(' ') == std::string::npos) s->value = parsePrimary();
        return s;
    }
    if (s->option.starts_with("TRANSACTION ISOLATION")) return s;
    if (takeWord("ON"))
        s->on = true;
    else if (!takeWord("OFF"))
        syntaxError();
    return s;
}

StatementPtr Parser::parseIf() {
    StatementPtr s = newStatement(StatementKind::If);
    take();
    s->condition = parseExpression();
    s->body = parseBody();
    while (isOperator(";")) take();
    if (takeWord("ELSE")) s->otherwise = parseBody();
    return s;
}

std::vector<StatementPtr> Parser::parseUntilEnd(const char* closing) {
    std::vector<StatementPtr> statements;
    while (true) {
        while (takeOperator(";")) {
        }
        if (isWord("END") && (!closing || isWord(closing, 1))) {
            take();
            if (closing) take();
            return statements;
        }
        if (peek().kind == TokenKind::End) syntaxError();
        statements.push_back(parseStatement());
    }
}

StatementPtr Parser::parseBegin() {
    const bool transaction = isWord("TRANSACTION", 1) || isWord("TRAN", 1);
    const bool tryBlock = isWord("TRY", 1);
    StatementPtr s = newStatement(transaction ? StatementKind::BeginTransaction
                                  : tryBlock  ? StatementKind::TryCatch
                                              : StatementKind::Block);
    take();
    if (transaction) {
        take();
        parseTransactionName(*s);
        return s;
    }
    if (!tryBlock) {
        s->body = parseUntilEnd(nullptr);
        if (s->body.empty()) syntaxError();
        return s;
    }
    take();
    s->body = parseUntilEnd("TRY");
    while (takeOperator(";")) {
    }
    expectWord("BEGIN");
    expectWord("CATCH");
    s->otherwise = parseUntilEnd("CATCH");
    return s;
}

StatementPtr Parser::parseExecute() {
    StatementPtr s = newStatement(StatementKind::Execute);
    take();
    if (isOperator("(")) {
        s->kind = StatementKind::ExecuteText;
        take();
        s->value = parseExpression();
        expectOperator(")");
        return s;
    }
    if (peek().kind == TokenKind::Variable && isOperator("=", 1)) {
        s->variable = take().text;
        take();
    }
    return parseExecuteCall(std::move(s));
}

StatementPtr Parser::parseExecuteCall(StatementPtr s) {
    s->target = parseName();
    const auto argumentAhead = [&] {
        return peek().isLiteral() || peek().kind == TokenKind::Variable || isOperator("-") ||
               isOperator("+") || isWord("NULL") || isWord("DEFAULT") ||
               (isPlainName() && !atStatementStart());
    };
    if (!argumentAhead()) return s;
    do {
        Argument a;
        if (peek().kind == TokenKind::Variable && isOperator("=", 1)) {
            a.name = take().text;
            take();
        }
        if (!argumentAhead()) syntaxError();
        if (isPlainName()) {  // a bare word is a text
            auto text = std::make_unique<Expr>(ExprKind::Literal, static_cast<int>(peek().line));
            LiteralSlot slot;
            slot.value = Value(unquoted(take()));
            slot.type = SqlType::text(SqlKind::VarChar, 8000);
            text->literal = static_cast<int>(batch_.literals.size());
            text->type = slot.type;
            slot.fixed = true;
            batch_.literals.push_back(std::move(slot));
            a.value = std::move(text);
        } else {
            a.value = parseUnary();
        }
        if (takeWord("OUTPUT") || takeWord("OUT")) a.output = true;
        s->arguments.push_back(std::move(a));
    } while (takeOperator(","));
    return s;
}

StatementPtr Parser::parseRaiseError() {
    StatementPtr s = newStatement(StatementKind::RaiseError);
    take();
    const bool parenthesised = takeOperator("(");
    do {
        Argument a;
        a.value = parseAdditive();
        s->arguments.push_back(std::move(a));
    } while (takeOperator(","));
    if (parenthesised) expectOperator(")");
    if (takeWord("WITH")) {
        do {
            if (isWord("LOG")) s->on = true;
            if (isWord("SETERROR")) s->local = true;
            take();
        } while (takeOperator(","));
    }
    return s;
}

}  // namespace owb::tsql
