// CREATE, ALTER and DROP.
#include "base/db_error.h"
#include "base/utf8.h"
#include "tsql/parse/parser.h"

namespace owb::tsql {

// The text of an expression that is kept as text; parsed here only to find its end.
std::string Parser::parseSourceExpression() {
    const Token& first = peek();
    const size_t from = pos_;
    parseUnary();
    for (size_t i = from; i < pos_; ++i)
        if (literalAt_[i] >= 0) literals_[literalAt_[i]].fixed = true;
    return textBetween(first, peek());
}

StatementPtr Parser::parseCreate() {
    const size_t first = pos_;
    take();
    bool orAlter = false;
    if (isWord("OR") && isWord("ALTER", 1)) {
        take();
        take();
        orAlter = true;
    }
    if (isWord("TABLE")) return parseCreateTable();
    if (isWord("INDEX") || isWord("UNIQUE") || isWord("CLUSTERED") || isWord("NONCLUSTERED")) {
        const bool unique = takeWord("UNIQUE");
        if (!takeWord("CLUSTERED")) takeWord("NONCLUSTERED");
        return parseCreateIndex(unique);
    }
    return parseModule(first, false, orAlter);
}

StatementPtr Parser::parseCreateTable() {
    auto s = make<CreateTableStatement>(StatementKind::CreateTable);
    expectWord("TABLE");
    s->table = parseName();
    parseTableElements(s->columns, s->constraints);
    if (takeWord("ON")) parseName();
    return s;
}

void Parser::parseTableElements(std::vector<ColumnDefinition>& columns,
                                std::vector<ConstraintDefinition>& constraints) {
    expectOperator("(");
    do {
        if (isOperator(")") && !columns.empty()) break;  // a comma before the end is let through
        if (isWord("CONSTRAINT") || isWord("PRIMARY") || isWord("UNIQUE") || isWord("CHECK") ||
            isWord("FOREIGN"))
            constraints.push_back(parseTableConstraint());
        else
            columns.push_back(parseColumn(constraints));
    } while (takeOperator(","));
    expectOperator(")");
}

ColumnDefinition Parser::parseColumn(std::vector<ConstraintDefinition>& constraints) {
    ColumnDefinition column;
    column.line = static_cast<int>(peek().line);
    column.name = expectName();
    if (isWord("AS")) throw makeDbError(15281, {"A computed column"}, column.line);
    column.type = parseType(1);
    while (parseColumnConstraint(column, constraints)) {
    }
    return column;
}

bool Parser::parseColumnConstraint(ColumnDefinition& column,
                                   std::vector<ConstraintDefinition>& constraints) {
    std::string name;
    if (takeWord("CONSTRAINT")) name = expectName();
    if (takeWord("NULL")) {
        column.nullable = true;
    } else if (isWord("NOT") && isWord("NULL", 1)) {
        take();
        take();
        column.nullable = false;
    } else if (takeWord("COLLATE")) {
        parseCollation();
    } else if (takeWord("IDENTITY")) {
        column.identity = true;
        if (takeOperator("(")) {
            column.seed = expectInteger();
            expectOperator(",");
            column.increment = expectInteger();
            expectOperator(")");
        }
    } else if (takeWord("DEFAULT")) {
        column.defaultName = name;
        column.defaultSource = parseSourceExpression();
    } else if (isWord("REFERENCES") || isWord("FOREIGN")) {
        throw makeDbError(15281, {"A FOREIGN KEY constraint"}, static_cast<int>(peek().line));
    } else if (isWord("PRIMARY") || isWord("UNIQUE") || isWord("CHECK")) {
        ConstraintDefinition c;
        c.line = static_cast<int>(peek().line);
        c.name = name;
        if (takeWord("PRIMARY")) {
            expectWord("KEY");
            c.kind = ConstraintDefinition::PrimaryKey;
            c.columns = {column.name};
        } else if (takeWord("UNIQUE")) {
            c.kind = ConstraintDefinition::Unique;
            c.columns = {column.name};
        } else {
            take();
            c.kind = ConstraintDefinition::Check;
            c.source = parseSourceExpression();
        }
        if (!takeWord("CLUSTERED")) takeWord("NONCLUSTERED");
        constraints.push_back(std::move(c));
    } else {
        if (!name.empty()) syntaxError();
        return false;
    }
    return true;
}

ConstraintDefinition Parser::parseTableConstraint() {
    ConstraintDefinition c;
    c.line = static_cast<int>(peek().line);
    if (takeWord("CONSTRAINT")) c.name = expectName();
    if (takeWord("PRIMARY")) {
        expectWord("KEY");
        if (!takeWord("CLUSTERED")) takeWord("NONCLUSTERED");
        c.kind = ConstraintDefinition::PrimaryKey;
        c.columns = parseColumnList();
    } else if (takeWord("UNIQUE")) {
        if (!takeWord("CLUSTERED")) takeWord("NONCLUSTERED");
        c.kind = ConstraintDefinition::Unique;
        c.columns = parseColumnList();
    } else if (takeWord("CHECK")) {
        c.kind = ConstraintDefinition::Check;
        c.source = parseSourceExpression();
    } else if (takeWord("DEFAULT")) {
        c.kind = ConstraintDefinition::Default;
        c.source = parseSourceExpression();
        expectWord("FOR");
        c.columns = {expectName()};
    } else if (takeWord("FOREIGN")) {
        expectWord("KEY");
        c.kind = ConstraintDefinition::ForeignKey;
        c.columns = parseColumnList();
        expectWord("REFERENCES");
        c.source = parseName().text();
        if (isOperator("(")) parseColumnList();
    } else {
        syntaxError();
    }
    return c;
}

StatementPtr Parser::parseCreateIndex(bool unique) {
    auto s = make<CreateIndexStatement>(StatementKind::CreateIndex);
    s->unique = unique;
    expectWord("INDEX");
    s->name = expectName();
    expectWord("ON");
    s->table = parseName();
    s->columns = parseColumnList();
    if (takeWord("INCLUDE")) parseColumnList();
    return s;
}

std::vector<Parameter> Parser::parseParameters(bool parenthesised) {
    std::vector<Parameter> parameters;
    if (parenthesised && isOperator(")")) return parameters;
    while (peek().kind == TokenKind::Variable) {
        Parameter p;
        p.name = take().text;
        takeWord("AS");
        p.type = parseType(1);
        if (takeOperator("=")) p.defaultValue = parseUnary();
        if (takeWord("OUTPUT") || takeWord("OUT")) p.output = true;
        takeWord("READONLY");
        parameters.push_back(std::move(p));
        if (!takeOperator(",")) break;
    }
    return parameters;
}

// CREATE|ALTER VIEW|FUNCTION|PROCEDURE|TRIGGER. The definition reaches to the batch's end.
StatementPtr Parser::parseModule(size_t firstToken, bool alter, bool orAlter) {
    const bool first = statementCount_ == 0;
    auto s = make<ModuleStatement>(StatementKind::CreateModule);
    s->alter = alter;
    s->orAlter = orAlter;
    if (!first)
        throw makeDbError(111, {(alter ? "ALTER " : "CREATE ") + upperCase(peek().text)}, s->line);
    ModuleDefinition& m = s->module;
    if (takeWord("VIEW"))
        parseView(m);
    else if (takeWord("PROCEDURE") || takeWord("PROC"))
        parseProcedure(m);
    else if (takeWord("FUNCTION"))
        parseFunctionModule(m);
    else if (takeWord("TRIGGER"))
        parseTrigger(m);
    else
        syntaxError();
    if (m.query) {
        while (takeOperator(";")) {
        }
        if (peek().kind != TokenKind::End) syntaxError();
    } else {
        m.body = parseStatements();
        if (m.body.empty()) syntaxError();
    }
    s->source = moduleSource(firstToken, alter, orAlter);
    return s;
}

void Parser::skipModuleOptions() {
    if (!takeWord("WITH")) return;
    do take();
    while (takeOperator(","));
}

void Parser::parseView(ModuleDefinition& m) {
    m.kind = ModuleKind::View;
    m.name = parseName();
    if (isOperator("(")) m.viewColumns = parseColumnList();
    skipModuleOptions();
    expectWord("AS");
    m.query = parseQuery();
    if (!isWord("WITH") || !isWord("CHECK", 1)) return;
    take();
    take();
    expectWord("OPTION");
    m.checkOption = true;
}

void Parser::parseProcedure(ModuleDefinition& m) {
    m.kind = ModuleKind::Procedure;
    m.name = parseName();
    const bool parenthesised = takeOperator("(");
    m.parameters = parseParameters(parenthesised);
    if (parenthesised) expectOperator(")");
    skipModuleOptions();
    expectWord("AS");
}

void Parser::parseFunctionModule(ModuleDefinition& m) {
    m.kind = ModuleKind::ScalarFunction;
    m.name = parseName();
    expectOperator("(");
    m.parameters = parseParameters(true);
    expectOperator(")");
    expectWord("RETURNS");
    if (peek().kind == TokenKind::Variable) {
        m.kind = ModuleKind::TableFunction;
        m.returnsVariable = take().text;
        expectWord("TABLE");
        std::vector<ConstraintDefinition> constraints;
        parseTableElements(m.returnsColumns, constraints);
    } else if (takeWord("TABLE")) {
        m.kind = ModuleKind::InlineFunction;
    } else {
        m.returns = parseType(1);
    }
    skipModuleOptions();
    takeWord("AS");
    if (m.kind != ModuleKind::InlineFunction) {
        if (!isWord("BEGIN")) syntaxError();
        return;
    }
    const bool block = takeWord("BEGIN");
    expectWord("RETURN");
    const bool parenthesised = takeOperator("(");
    m.query = parseQuery();
    if (parenthesised) expectOperator(")");
    if (block) expectWord("END");
}

void Parser::parseTrigger(ModuleDefinition& m) {
    m.kind = ModuleKind::Trigger;
    m.name = parseName();
    expectWord("ON");
    m.table = parseName();
    skipModuleOptions();
    if (isWord("INSTEAD")) throw makeDbError(15281, {"An INSTEAD OF trigger"}, line());
    if (!takeWord("AFTER")) expectWord("FOR");
    do {
        if (takeWord("INSERT"))
            m.onInsert = true;
        else if (takeWord("UPDATE"))
            m.onUpdate = true;
        else if (takeWord("DELETE"))
            m.onDelete = true;
        else
            syntaxError();
    } while (takeOperator(","));
    expectWord("AS");
}

// The module's text as a CREATE, so that it can be made again from it.
std::string Parser::moduleSource(size_t firstToken, bool alter, bool orAlter) const {
    const auto from = [&](size_t at, size_t end = std::string_view::npos) {
        return std::string(text_.substr(at, end - at));
    };
    const Token& word = tokens_[firstToken];
    if (alter) return "CREATE" + from(word.end);
    if (!orAlter) return from(word.begin);
    const Token &orWord = tokens_[firstToken + 1], &alterWord = tokens_[firstToken + 2];
    const std::string between = from(orWord.end, alterWord.begin);
    return from(word.begin, orWord.begin) +
           (trim(between).empty() && between.find('\n') == std::string::npos ? "" : between) +
           from(alterWord.end);
}

StatementPtr Parser::parseAlter() {
    const size_t first = pos_;
    take();
    if (isWord("TABLE")) return parseAlterTable();
    return parseModule(first, true, false);
}

StatementPtr Parser::parseAlterTable() {
    auto s = make<AlterTableStatement>(StatementKind::AlterTable);
    expectWord("TABLE");
    s->table = parseName();
    if (takeWord("WITH")) {
        if (!takeWord("CHECK")) expectWord("NOCHECK");
    }
    if (takeWord("ADD")) {
        const bool parenthesised = takeOperator("(");
        do {
            AlterAction action;
            if (isWord("CONSTRAINT") || isWord("PRIMARY") || isWord("UNIQUE") || isWord("CHECK") ||
                isWord("FOREIGN") || isWord("DEFAULT")) {
                action.kind = AlterAction::AddConstraint;
                action.constraint = parseTableConstraint();
                s->actions.push_back(std::move(action));
            } else {
                takeWord("COLUMN");
                action.kind = AlterAction::AddColumn;
                std::vector<ConstraintDefinition> constraints;
                action.column = parseColumn(constraints);
                s->actions.push_back(std::move(action));
                for (ConstraintDefinition& c : constraints) {
                    AlterAction extra;
                    extra.kind = AlterAction::AddConstraint;
                    extra.constraint = std::move(c);
                    s->actions.push_back(std::move(extra));
                }
            }
        } while (takeOperator(","));
        if (parenthesised) expectOperator(")");
    } else if (takeWord("DROP")) {
        // Each word holds for the names behind it, up to the next one.
        auto kind = AlterAction::DropConstraint;
        do {
            if (takeWord("COLUMN"))
                kind = AlterAction::DropColumn;
            else if (takeWord("CONSTRAINT"))
                kind = AlterAction::DropConstraint;
            AlterAction action;
            action.kind = kind;
            action.name = expectName();
            s->actions.push_back(std::move(action));
        } while (takeOperator(","));
    } else if (takeWord("ALTER")) {
        expectWord("COLUMN");
        AlterAction action;
        action.kind = AlterAction::AlterColumn;
        std::vector<ConstraintDefinition> constraints;
        action.column = parseColumn(constraints);
        s->actions.push_back(std::move(action));
    } else {
        syntaxError();
    }
    return s;
}

StatementPtr Parser::parseDrop() {
    auto s = make<DropStatement>(StatementKind::Drop);
    take();
    if (peek().kind != TokenKind::Name) syntaxError();
    s->what = upperCase(take().text);
    if (s->what == "PROC") s->what = "PROCEDURE";
    static constexpr const char* kKinds[] = {"TABLE",     "VIEW",    "FUNCTION",
                                             "PROCEDURE", "TRIGGER", "INDEX"};
    bool known = false;
    for (const char* k : kKinds) known |= s->what == k;
    if (!known) {
        --pos_;
        syntaxError();
    }
    if (takeWord("IF")) {
        expectWord("EXISTS");
        s->ifExists = true;
    }
    do s->names.push_back(parseName());
    while (takeOperator(","));
    if (s->what == "INDEX" && takeWord("ON")) s->table = parseName();
    return s;
}

}  // namespace owb::tsql
