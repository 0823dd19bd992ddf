// The syntax tree of expressions and queries, as the parser leaves it: names unresolved, no types
// but written ones.
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
using ExprPtr = std::unique_ptr<Expr>;
using QueryPtr = std::unique_ptr<Query>;

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

}  // namespace owb::tsql
