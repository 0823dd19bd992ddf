// Statements that change data or steer the batch.
#include <algorithm>

#include "base/db_error.h"
#include "base/utf8.h"
#include "tsql/parse/parser.h"

namespace owb::tsql {

Batch Parser::parseBatch() {
    Batch batch;
    batch.statements = parseStatements();
    batch.literals = std::move(literals_);
    return batch;
}

std::vector<StatementPtr> Parser::parseStatements() {
    std::vector<StatementPtr> statements;
    while (true) {
        while (takeOperator(";")) {
        }
        if (peek().kind == TokenKind::End) return statements;
        statements.push_back(parseStatement());
    }
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

// A statement that begins with WITH: the common tables stand before it.
StatementPtr Parser::parseBehindWith() {
    // Behind another statement it would be read as a part of that.
    static constexpr const char* kBefore[] = {"BEGIN", "AS", "ELSE", "TRY", "CATCH"};
    if (pos_ > 0 && tokens_[pos_ - 1].text != ";" &&
        std::none_of(std::begin(kBefore), std::end(kBefore), [&](const char* word) {
            return equalsIgnoreCaseAscii(tokens_[pos_ - 1].text, word);
        }))
        throw makeDbError(319, {}, line());
    std::vector<CommonTable> with = parseWith();
    if (isWord("INSERT")) return parseInsert(std::move(with));
    if (isWord("UPDATE")) return parseUpdate(std::move(with));
    if (isWord("DELETE")) return parseDelete(std::move(with));
    auto s = make<QueryStatement>(StatementKind::Query);
    s->query = parseQuery(std::move(with));
    return s;
}

StatementPtr Parser::parseStatementHere() {
    if (isWord("WITH")) return parseBehindWith();
    if (isWord("SELECT") || isOperator("(")) {
        auto s = make<QueryStatement>(StatementKind::Query);
        s->query = parseQuery();
        return s;
    }
    static constexpr struct {
        const char* word;
        StatementPtr (Parser::*parse)();
    } kStatements[] = {
        {"INSERT", &Parser::parseInsertAlone},
        {"UPDATE", &Parser::parseUpdateAlone},
        {"DELETE", &Parser::parseDeleteAlone},
        {"TRUNCATE", &Parser::parseTruncate},
        {"DECLARE", &Parser::parseDeclare},
        {"SET", &Parser::parseSet},
        {"IF", &Parser::parseIf},
        {"WHILE", &Parser::parseWhile},
        {"BREAK", &Parser::parseLoopEnd},
        {"CONTINUE", &Parser::parseLoopEnd},
        {"BEGIN", &Parser::parseBegin},
        {"RETURN", &Parser::parseReturn},
        {"EXEC", &Parser::parseExecute},
        {"EXECUTE", &Parser::parseExecute},
        {"CREATE", &Parser::parseCreate},
        {"ALTER", &Parser::parseAlter},
        {"DROP", &Parser::parseDrop},
        {"PRINT", &Parser::parsePrint},
        {"RAISERROR", &Parser::parseRaiseError},
        {"THROW", &Parser::parseThrow},
        {"COMMIT", &Parser::parseTransactionEnd},
        {"ROLLBACK", &Parser::parseTransactionEnd},
        {"SAVE", &Parser::parseSave},
        {"OPEN", &Parser::parseCursorUse},
        {"CLOSE", &Parser::parseCursorUse},
        {"FETCH", &Parser::parseCursorUse},
        {"DEALLOCATE", &Parser::parseCursorUse},
        {"GOTO", &Parser::parseGoto},
        {"WAITFOR", &Parser::parseWaitFor},
    };
    for (const auto& statement : kStatements)
        if (isWord(statement.word)) return (this->*statement.parse)();
    for (const char* word : {"MERGE", "DBCC", "GRANT", "DENY", "REVOKE", "BACKUP", "RESTORE"})
        if (isWord(word)) throw makeDbError(15281, {word}, line());
    if (isPlainName() && isOperator(":", 1)) return parseLabel();
    // A procedure call may leave EXEC out when it begins the batch.
    if (isPlainName() && statementCount_ == 0)
        return parseExecuteCall(make<ExecuteStatement>(StatementKind::Execute));
    syntaxError();
}

StatementPtr Parser::parseInsertAlone() {
    return parseInsert({});
}

StatementPtr Parser::parseUpdateAlone() {
    return parseUpdate({});
}

StatementPtr Parser::parseDeleteAlone() {
    return parseDelete({});
}

StatementPtr Parser::parseTruncate() {
    auto s = make<TruncateStatement>(StatementKind::Truncate);
    take();
    expectWord("TABLE");
    s->target = parseName();
    return s;
}

StatementPtr Parser::parseWhile() {
    auto s = make<CompoundStatement>(StatementKind::While);
    take();
    s->condition = parseExpression();
    ++loops_;
    s->body = parseBody();
    --loops_;
    return s;
}

StatementPtr Parser::parseLoopEnd() {
    const bool ends = isWord("BREAK");
    if (loops_ == 0) throw makeDbError(ends ? 135 : 136, {}, line());
    auto s = make<Statement>(ends ? StatementKind::Break : StatementKind::Continue);
    take();
    return s;
}

// Whether an expression follows that belongs to the statement.
bool Parser::atValue() const {
    return !isOperator(";") && peek().kind != TokenKind::End && !atStatementStart();
}

StatementPtr Parser::parseReturn() {
    auto s = make<ValueStatement>(StatementKind::Return);
    take();
    if (atValue()) s->value = parseExpression();
    return s;
}

StatementPtr Parser::parsePrint() {
    auto s = make<ValueStatement>(StatementKind::Print);
    take();
    s->value = parseExpression();
    return s;
}

StatementPtr Parser::parseThrow() {
    auto s = make<MessageStatement>(StatementKind::Throw);
    take();
    if (!atValue()) return s;
    parseMessageArguments(*s);
    if (s->arguments.size() != 3) syntaxError();
    return s;
}

StatementPtr Parser::parseTransactionEnd() {
    auto s = make<TransactionStatement>(isWord("COMMIT") ? StatementKind::Commit
                                                         : StatementKind::Rollback);
    take();
    if (takeWord("TRANSACTION") || takeWord("TRAN"))
        parseTransactionName(*s);
    else
        takeWord("WORK");
    return s;
}

StatementPtr Parser::parseSave() {
    auto s = make<TransactionStatement>(StatementKind::SaveTransaction);
    take();
    if (!takeWord("TRANSACTION")) expectWord("TRAN");
    parseTransactionName(*s);
    if (!s->nameValue && s->name.empty()) syntaxError();
    return s;
}

void Parser::parseTransactionName(TransactionStatement& s) {
    if (peek().kind == TokenKind::Variable)
        s.nameValue = parsePrimary();
    else if (isPlainName() && !atStatementStart())
        s.name = expectName();
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
    auto s = make<InsertStatement>(StatementKind::Insert);
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
        s->executed = parseExecute();
        return s;
    }
    s->query = parseQuery(std::move(with));
    return s;
}

StatementPtr Parser::parseUpdate(std::vector<CommonTable> with) {
    auto s = make<ChangeStatement>(StatementKind::Update);
    s->with = std::move(with);
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
    parseOptionClause();
    return s;
}

StatementPtr Parser::parseDelete(std::vector<CommonTable> with) {
    auto s = make<ChangeStatement>(StatementKind::Delete);
    s->with = std::move(with);
    expectWord("DELETE");
    s->top = parseTop(nullptr, nullptr);
    takeWord("FROM");
    s->target = parseTarget();
    parseOutput(*s, {"deleted"});
    if (takeWord("FROM")) s->from = parseFromList();
    if (takeWord("WHERE")) s->condition = parseExpression();
    parseOptionClause();
    return s;
}

// OUTPUT reads the statement's own rows: a query over the tables `rows`.
void Parser::parseOutput(WriteStatement& s, std::initializer_list<const char*> rows) {
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
    auto s = make<DeclareStatement>(StatementKind::Declare);
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
        auto s = make<SetStatement>(StatementKind::Set);
        take();
        s->variable = take().text;
        s->op = expectAssignment();
        if (isWord("CURSOR")) return parseCursor(s->variable, true);
        s->value = parseExpression();
        return s;
    }
    auto s = make<OptionStatement>(StatementKind::SetOption);
    take();
    if (peek().kind != TokenKind::Name) syntaxError();
    s->option = upperCase(take().text);
    if (s->option == "IDENTITY_INSERT") s->table = parseName();
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
    auto s = make<CompoundStatement>(StatementKind::If);
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
    if (isWord("TRANSACTION", 1) || isWord("TRAN", 1)) {
        auto s = make<TransactionStatement>(StatementKind::BeginTransaction);
        take();
        take();
        parseTransactionName(*s);
        return s;
    }
    const bool tryBlock = isWord("TRY", 1);
    auto s = make<CompoundStatement>(tryBlock ? StatementKind::TryCatch : StatementKind::Block);
    take();
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
    if (isOperator("(", 1)) {
        auto s = make<ValueStatement>(StatementKind::ExecuteText);
        take();
        take();
        s->value = parseExpression();
        expectOperator(")");
        return s;
    }
    auto s = make<ExecuteStatement>(StatementKind::Execute);
    take();
    if (peek().kind == TokenKind::Variable && isOperator("=", 1)) {
        s->variable = take().text;
        take();
    }
    return parseExecuteCall(std::move(s));
}

StatementPtr Parser::parseExecuteCall(std::unique_ptr<ExecuteStatement> s) {
    s->procedure = parseName();
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
            text->literal = static_cast<int>(literals_.size());
            text->type = slot.type;
            slot.fixed = true;
            literals_.push_back(std::move(slot));
            a.value = std::move(text);
        } else {
            a.value = parseUnary();
        }
        if (takeWord("OUTPUT") || takeWord("OUT")) a.output = true;
        s->arguments.push_back(std::move(a));
    } while (takeOperator(","));
    return s;
}

void Parser::parseMessageArguments(MessageStatement& s) {
    do {
        Argument a;
        a.value = parseAdditive();
        s.arguments.push_back(std::move(a));
    } while (takeOperator(","));
}

StatementPtr Parser::parseRaiseError() {
    auto s = make<MessageStatement>(StatementKind::RaiseError);
    take();
    const bool parenthesised = takeOperator("(");
    parseMessageArguments(*s);
    if (parenthesised) expectOperator(")");
    if (takeWord("WITH")) {
        do {
            if (isWord("LOG")) s->log = true;
            if (isWord("SETERROR")) s->setsError = true;
            take();
        } while (takeOperator(","));
    }
    return s;
}

}  // namespace owb::tsql
