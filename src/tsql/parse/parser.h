// Turns the tokens of one batch into its syntax tree. Throws DbError with line and column.
#pragma once

#include "tsql/parse/ast_statements.h"
#include "tsql/parse/query_parser.h"

namespace owb::tsql {

class Parser : public QueryParser {
  public:
    using QueryParser::QueryParser;

    Batch parseBatch();

  private:
    // --- statements (statement_parser.cpp) ---
    StatementPtr parseStatement();
    StatementPtr parseStatementHere();
    StatementPtr parseBehindWith();
    bool atValue() const;
    std::vector<StatementPtr> parseBody();  // one statement, or a block's content
    template <class S>
    std::unique_ptr<S> make(StatementKind kind) {
        ++statementCount_;
        return std::make_unique<S>(kind, line());
    }
    std::vector<StatementPtr> parseStatements();  // up to the end of the text
    Name parseTarget();
    StatementPtr parseInsert(std::vector<CommonTable> with);
    StatementPtr parseUpdate(std::vector<CommonTable> with);
    StatementPtr parseDelete(std::vector<CommonTable> with);
    StatementPtr parseInsertAlone();
    StatementPtr parseUpdateAlone();
    StatementPtr parseDeleteAlone();
    StatementPtr parseTruncate();
    StatementPtr parseDeclare();
    StatementPtr parseSet();
    StatementPtr parseIf();
    StatementPtr parseWhile();
    StatementPtr parseLoopEnd();
    StatementPtr parseReturn();
    StatementPtr parsePrint();
    StatementPtr parseThrow();
    StatementPtr parseTransactionEnd();
    StatementPtr parseSave();
    StatementPtr parseBegin();
    StatementPtr parseExecute();
    StatementPtr parseExecuteCall(std::unique_ptr<ExecuteStatement> statement);
    void parseOutput(WriteStatement& s, std::initializer_list<const char*> rows);
    StatementPtr parseRaiseError();
    void parseTransactionName(TransactionStatement& s);
    void parseMessageArguments(MessageStatement& s);
    std::vector<StatementPtr> parseUntilEnd(const char* closing);

    // --- cursors and jumps (cursor_parser.cpp) ---
    StatementPtr parseCursor(std::string name, bool local);
    std::string parseCursorName();
    StatementPtr parseCursorUse();
    StatementPtr parseLabel();
    StatementPtr parseGoto();
    StatementPtr parseWaitFor();

    // --- definitions (definition_parser.cpp) ---
    StatementPtr parseCreate();
    StatementPtr parseCreateTable();
    StatementPtr parseCreateIndex(bool unique);
    StatementPtr parseModule(size_t firstToken, bool alter, bool orAlter);
    void skipModuleOptions();
    void parseView(ModuleDefinition& m);
    void parseProcedure(ModuleDefinition& m);
    void parseFunctionModule(ModuleDefinition& m);
    void parseTrigger(ModuleDefinition& m);
    std::string moduleSource(size_t firstToken, bool alter, bool orAlter) const;
    StatementPtr parseAlter();
    StatementPtr parseAlterTable();
    StatementPtr parseDrop();
    void parseTableElements(std::vector<ColumnDefinition>& columns,
                            std::vector<ConstraintDefinition>& constraints);
    ColumnDefinition parseColumn(std::vector<ConstraintDefinition>& constraints);
    bool parseColumnConstraint(ColumnDefinition& column,
                               std::vector<ConstraintDefinition>& constraints);
    ConstraintDefinition parseTableConstraint();
    std::string parseSourceExpression();
    std::vector<Parameter> parseParameters(bool parenthesised);

    int loops_ = 0;           // WHILE around the statement
    int statementCount_ = 0;  // begun so far
};

}  // namespace owb::tsql
