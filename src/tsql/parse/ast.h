// The syntax tree of a batch, as the parser leaves it: names unresolved, no types but written ones.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/sql_type.h"
#include "base/value.h"
#include "tsql/parse/pooled.h"

namespace owb::tsql {

struct Expr;
struct Query;
struct Statement;
using ExprPtr = std::unique_ptr<Expr>;
using QueryPtr = std::unique_ptr<Query>;
using StatementPtr = std::unique_ptr<Statement>;

// A name of up to four parts, the last being the object's own: "dbo.T" is {"dbo", "T"}.
struct Name {
    std::vector<std::string> parts;
    const std::string& last() const { return parts.back(); }
    std::string qualifier() const {
        return parts.size() < 2 ? std::string() : parts[parts.size() - 2];
    }
    std::string text() const;
    bool empty() const { return parts.empty(); }
};

// A literal of the batch. Its place in the batch's literal table lets one plan serve every batch
// of the same shape. A literal whose value decided something in the plan is fixed, one whose type
// (digits, places) did is fixed in its type.
struct LiteralSlot {
    Value value;
    SqlType type;
    int digits = 0;  // of a whole number
    bool fixed = false;
    bool typeFixed = false;
};

enum class ExprKind : uint8_t {
    Literal,
    Null,
    Column,    // name
    Star,      // only inside COUNT(*)
    Variable,  // name "@x"
    SystemVariable,
    Unary,    // op, args[0]
    Binary,   // op, args[0], args[1]: + - * / % & | ^
    Compare,  // op, args[0], args[1]
    And,
    Or,
    Not,
    IsNull,      // negated: IS NOT NULL
    Between,     // args[0] between args[1] and args[2]
    InList,      // args[0] in args[1..]
    InQuery,     // args[0] in query
    Exists,      // query
    Quantified,  // args[0] op ANY|ALL (query)
    Like,        // args[0] like args[1] [escape args[2]]
    Case,        // simple: hasOperand, args[0] the operand; then when, then, ..., [else]
    Function,    // name(args), distinct, over
    Cast,        // CAST / CONVERT / TRY_: args[0], type, [args[1] style]
    Subquery,    // query
    Default,     // the word DEFAULT as a value or argument
};

struct OrderItem {
    ExprPtr expr;
    bool descending = false;
};

struct WindowSpec {
    std::vector<ExprPtr> partitionBy;
    std::vector<OrderItem> orderBy;
    std::string frame;  // "ROWS BETWEEN ...", in upper case; "" when not written
};

struct Expr : Pooled<Expr> {
    ExprKind kind;
    int line = 0;
    std::string op;  // operator as written: "+", "<=", "<>", "ANY", "ALL"
    Name name;
    std::vector<ExprPtr> args;
    QueryPtr query;
    std::unique_ptr<WindowSpec> over;
    std::vector<OrderItem> within;  // WITHIN GROUP (ORDER BY ...)
    SqlType type;                   // Cast
    int literal = -1;
    bool negated = false;
    bool hasOperand = false;  // Case
    bool hasElse = false;     // Case
    bool distinct = false;    // aggregate
    bool tryCast = false;     // NULL instead of a conversion error
    bool any = false;         // Quantified: ANY, otherwise ALL
    std::string compareOp;    // Quantified

    explicit Expr(ExprKind k, int line) : kind(k), line(line) {}
};

struct SelectItem {
    ExprPtr expr;  // null for a star
    std::string alias;
    std::string variable;  // "@x" of an assigning item
    bool star = false;
    Name starOf;  // qualifier of "t.*"
    int line = 0;
};

enum class JoinKind : uint8_t { Cross, Inner, Left, Right, Full, CrossApply, OuterApply };

struct TableRef {
    enum Kind : uint8_t { Table, Derived, Function, Join, Variable } kind = Table;
    int line = 0;
    Name name;  // table, view or function; "@t" for a table variable
    std::string alias;
    std::vector<std::string> columnAliases;
    QueryPtr query;             // Derived
    std::vector<ExprPtr> args;  // Function
    JoinKind join = JoinKind::Inner;
    std::unique_ptr<TableRef> left, right;
    ExprPtr on;
};
using TableRefPtr = std::unique_ptr<TableRef>;

// One SELECT, a VALUES list, or two queries joined by a set operator.
struct QueryBody {
    enum Kind : uint8_t { Select, Values, Union, UnionAll, Except, Intersect } kind = Select;
    int line = 0;
    bool distinct = false;
    ExprPtr top;
    bool topPercent = false;
    bool withTies = false;
    std::vector<SelectItem> items;
    Name into;
    std::vector<TableRefPtr> from;  // comma separated
    ExprPtr where;
    std::vector<ExprPtr> groupBy;
    ExprPtr having;
    std::vector<std::vector<ExprPtr>> rows;  // Values
    std::unique_ptr<QueryBody> left, right;  // set operators
};

struct CommonTable {
    std::string name;
    std::vector<std::string> columns;
    QueryPtr query;
};

struct Query {
    std::vector<CommonTable> with;
    std::unique_ptr<QueryBody> body;
    std::vector<OrderItem> orderBy;
    ExprPtr offset, fetch;
    int maxRecursion = -1;  // of OPTION (MAXRECURSION n), -1 when not written
};

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

struct Statement {
    StatementKind kind;
    int line = 0;
    int id = 0;  // unique within its batch: where its plans are kept

    QueryPtr query;                    // Query; source of an Insert
    Name target;                       // table of Insert, Update, Delete, DDL; procedure
    std::vector<std::string> columns;  // Insert, CreateIndex
    bool defaultValues = false;        // Insert
    QueryPtr output;                   // OUTPUT of Insert, Update, Delete: over their rows
    Name outputInto;
    std::vector<std::string> outputColumns;
    std::vector<Assignment> assignments;  // Update
    std::vector<TableRefPtr> from;        // Update, Delete
    ExprPtr condition;                    // If, While; WHERE of Update and Delete
    ExprPtr top;
    std::vector<StatementPtr> body;                 // Block, If (then), While, TryCatch (try)
    std::vector<StatementPtr> otherwise;            // If (else), TryCatch (catch)
    std::vector<VariableDeclaration> variables;     // Declare
    std::string variable;                           // Set; return code of Execute
    std::string op;                                 // Set: "" or the operator of "+="
    ExprPtr value;                                  // Set, Return, Print, ExecuteText
    std::vector<Argument> arguments;                // Execute, RaiseError, Throw
    std::vector<ColumnDefinition> tableColumns;     // CreateTable
    std::vector<ConstraintDefinition> constraints;  // CreateTable
    std::vector<AlterAction> actions;               // AlterTable
    std::unique_ptr<ModuleDefinition> module;       // CreateModule
    bool alter = false;                             // ALTER PROCEDURE and the like
    bool orAlter = false;
    std::string moduleSource;  // CreateModule: the text as written, ALTER as CREATE
    std::string dropKind;      // Drop: "TABLE", "VIEW", ...
    std::vector<Name> names;   // Drop
    bool ifExists = false;     // Drop
    bool unique = false;       // CreateIndex
    std::string indexName;     // CreateIndex, Drop INDEX
    std::string option;        // SetOption: "NOCOUNT"; FetchCursor: "NEXT"; Label, Goto
    // SetOption; DeclareCursor: it scrolls; WaitFor: TIME; RaiseError: LOG
    bool on = false;
    bool local = false;  // DeclareCursor; RaiseError: SETERROR

    Statement(StatementKind k, int line) : kind(k), line(line) {}
};

struct Batch {
    std::vector<StatementPtr> statements;
    std::vector<LiteralSlot> literals;
    int statementCount = 0;
};

}  // namespace owb::tsql
