// The syntax tree of statements: one struct for each kind, or for kinds that say the same things.
#pragma once

#include "tsql/parse/ast.h"

namespace owb::tsql {

struct ColumnDefinition {
    std::string name;
    SqlType type;
    std::optional<bool> nullable;
    bool identity = false;
    int64_t seed = 1, increment = 1;
    std::string defaultSource;  // text of the DEFAULT expression
    std::string defaultName;
    int line = 0;
};

struct ConstraintDefinition {
    enum Kind : uint8_t { PrimaryKey, Unique, Check, Default, ForeignKey } kind = PrimaryKey;
    std::string name;
    std::vector<std::string> columns;
    std::string source;  // of CHECK and DEFAULT
    int line = 0;
};

struct Statement;
using StatementPtr = std::unique_ptr<Statement>;

enum class StatementKind : uint8_t {
    Query,
    Insert,
    Update,
    Delete,
    Truncate,
    Declare,
    Set,
    SetOption,
    If,
    While,
    Break,
    Continue,
    Block,
    Return,
    Execute,
    ExecuteText,
    CreateTable,
    AlterTable,
    CreateIndex,
    Drop,
    CreateModule,
    BeginTransaction,
    Commit,
    Rollback,
    SaveTransaction,
    Print,
    RaiseError,
    Throw,
    TryCatch,
    DeclareCursor,
    OpenCursor,
    FetchCursor,
    CloseCursor,
    DeallocateCursor,
    Label,
    Goto,
    WaitFor,
};

struct VariableDeclaration {
    std::string name;  // "@x"
    SqlType type;
    ExprPtr initial;
    bool isTable = false;
    std::vector<ColumnDefinition> tableColumns;
    std::vector<ConstraintDefinition> tableConstraints;
};

struct Assignment {
    std::string column;    // "" when only a variable is set
    Name written;          // the column as written, with what stands before it
    std::string variable;  // "@x" of "SET @x = col = ..."
    std::string op;        // "" or the operator of "+="
    ExprPtr value;         // null or Default
    int line = 0;
};

struct Argument {
    std::string name;  // "@p" when passed by name
    ExprPtr value;
    bool output = false;
};

struct AlterAction {
    enum Kind : uint8_t { AddColumn, AddConstraint, DropColumn, DropConstraint, AlterColumn } kind;
    ColumnDefinition column;
    ConstraintDefinition constraint;
    std::string name;
};

// The kind tells which of the structs below it is; see as().
struct Statement {
    Statement(StatementKind k, int line) : kind(k), line(line) {}
    virtual ~Statement() = default;
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;

    const StatementKind kind;
    const int line;
};

template <class T>
const T& as(const Statement& s) {
    return static_cast<const T&>(s);
}

struct CompoundStatement;
// The statement as one that holds others; null when it is none.
const CompoundStatement* compound(const Statement& s);

// --- control flow ---

struct CompoundStatement : Statement {  // Block, If, While, TryCatch
    using Statement::Statement;
    ExprPtr condition;                    // If, While
    std::vector<StatementPtr> body;       // also TRY
    std::vector<StatementPtr> otherwise;  // ELSE, CATCH
};

struct LabelStatement : Statement {  // Label, Goto
    using Statement::Statement;
    std::string label;
};

struct ValueStatement : Statement {  // Return, Print, ExecuteText
    using Statement::Statement;
    ExprPtr value;
};

struct WaitStatement : Statement {
    using Statement::Statement;
    ExprPtr time;
    bool untilTime = false;  // otherwise for so long
};

// --- variables and options ---

struct DeclareStatement : Statement {
    using Statement::Statement;
    std::vector<VariableDeclaration> variables;
};

struct SetStatement : Statement {
    using Statement::Statement;
    std::string variable;
    std::string op;  // "" or the operator of "+="
    ExprPtr value;
};

struct OptionStatement : Statement {  // SetOption
    using Statement::Statement;
    std::string option;  // "NOCOUNT", in upper case
    bool on = false;
    ExprPtr value;
    Name table;  // IDENTITY_INSERT
};

// --- data ---

struct QueryStatement : Statement {
    using Statement::Statement;
    QueryPtr query;
};

struct WriteStatement : Statement {
    using Statement::Statement;
    Name target;
    ExprPtr top;
    QueryPtr output;  // over the statement's own rows
    Name outputInto;
    std::vector<std::string> outputColumns;
};

struct InsertStatement : WriteStatement {
    using WriteStatement::WriteStatement;
    std::vector<std::string> columns;
    bool defaultValues = false;
    QueryPtr query;         // null for DEFAULT VALUES and
    StatementPtr executed;  // INSERT ... EXEC
};

struct ChangeStatement : WriteStatement {  // Update, Delete
    using WriteStatement::WriteStatement;
    std::vector<CommonTable> with;
    std::vector<Assignment> assignments;  // Update
    std::vector<TableRefPtr> from;
    ExprPtr condition;
};

struct TruncateStatement : Statement {
    using Statement::Statement;
    Name target;
};

struct CursorStatement : Statement {  // those on cursors
    using Statement::Statement;
    std::string name;
    QueryPtr query;                      // DeclareCursor
    bool local = false, scroll = false;  // DeclareCursor
    std::string way;                     // FetchCursor: "NEXT"
    ExprPtr distance;                    // FetchCursor ABSOLUTE, RELATIVE
    std::vector<std::string> into;       // FetchCursor: variables
};

struct TransactionStatement : Statement {  // those on transactions
    using Statement::Statement;
    std::string name;
    ExprPtr nameValue;  // a variable that holds the name
};

// --- calls and messages ---

struct ExecuteStatement : Statement {
    using Statement::Statement;
    Name procedure;
    std::string variable;  // takes the return code
    std::vector<Argument> arguments;
};

struct MessageStatement : Statement {  // RaiseError, Throw
    using Statement::Statement;
    std::vector<Argument> arguments;
    bool log = false, setsError = false;  // RAISERROR WITH
};

// --- definitions ---

struct CreateTableStatement : Statement {
    using Statement::Statement;
    Name table;
    std::vector<ColumnDefinition> columns;
    std::vector<ConstraintDefinition> constraints;
};

struct AlterTableStatement : Statement {
    using Statement::Statement;
    Name table;
    std::vector<AlterAction> actions;
};

struct CreateIndexStatement : Statement {
    using Statement::Statement;
    std::string name;
    Name table;
    std::vector<std::string> columns;
    bool unique = false;
};

struct DropStatement : Statement {
    using Statement::Statement;
    std::string what;  // "TABLE", "VIEW", ...
    std::vector<Name> names;
    bool ifExists = false;
    Name table;  // of an index, when written behind ON
};

enum class ModuleKind : uint8_t {
    View,
    ScalarFunction,
    InlineFunction,
    TableFunction,
    Procedure,
    Trigger
};

struct Parameter {
    std::string name;  // "@p"
    SqlType type;
    ExprPtr defaultValue;
    bool output = false;
};

// What a CREATE FUNCTION, PROCEDURE, VIEW or TRIGGER says.
struct ModuleDefinition {
    ModuleKind kind = ModuleKind::View;
    Name name;
    std::vector<Parameter> parameters;
    SqlType returns;              // scalar function
    std::string returnsVariable;  // "@t" of a multi-statement table function
    std::vector<ColumnDefinition> returnsColumns;
    std::vector<std::string> viewColumns;  // written column list of a view
    QueryPtr query;                        // view, inline function
    bool checkOption = false;              // view
    std::vector<StatementPtr> body;        // the others
    Name table;                            // trigger
    bool onInsert = false, onUpdate = false, onDelete = false;
};

struct ModuleStatement : Statement {  // CreateModule
    using Statement::Statement;
    ModuleDefinition module;
    bool alter = false, orAlter = false;
    std::string source;  // the text as written, ALTER as CREATE
};

struct Batch {
    std::vector<StatementPtr> statements;
    std::vector<LiteralSlot> literals;
};

}  // namespace owb::tsql
