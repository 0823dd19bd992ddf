// The bound tree: names resolved against the catalog, every expression typed, every conversion
// explicit. What is left to lowering is to write it down as SQLite's SQL.
//
// A BoundQuery owns its sources; columns and FROM point to them, also from queries inside it.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "tsql/catalog/catalog.h"
#include "tsql/parse/ast.h"

namespace owb::tsql {

struct BoundExpr;
struct BoundQuery;
using BoundPtr = std::unique_ptr<BoundExpr>;

struct BoundColumn {
    std::string name;
    SqlType type;
    bool nullable = true;
    std::string sqlName;  // quoted, within its source
};

struct BoundSource {
    std::string alias;        // in the SQL that is made: "t3"
    std::string exposedName;  // what the text may qualify columns with
    std::string tableName;    // of a table or view, "" for a derived one
    CatalogTablePtr table;    // null for a derived one
    std::unique_ptr<BoundQuery> query;
    // The right side of an APPLY: what it may name of the left one; a function has no query.
    bool applied = false;
    std::vector<const BoundSource*> outer;
    std::vector<BoundPtr> applyArguments;
    bool checkOption = false;  // a view that checks what is written through it
    std::vector<BoundColumn> columns;
};

struct BoundFrom {
    BoundSource* source = nullptr;  // null for a join
    JoinKind join = JoinKind::Inner;
    std::unique_ptr<BoundFrom> left, right;
    BoundPtr on;
};

enum class BoundKind : uint8_t {
    Literal,       // slot of the batch, or a constant when index is -1
    Variable,      // index in the frame; bound as a parameter
    LiveVariable,  // read again for every row
    Null,
    Column,
    Op,           // `pattern` with $0..$9 for the operands; no name or text out of a batch in it
    Verbatim,     // `pattern` as it stands, in SQLite's words
    ScalarQuery,  // one value
    ExistsQuery,
    InQuery,  // args[0] in query
};

struct BoundExpr : Pooled<BoundExpr> {
    BoundKind kind = BoundKind::Op;
    SqlType type;
    bool nullable = true;
    bool aggregate = false;  // an aggregate call
    bool window = false;
    bool predicate = false;  // three-valued truth, no T-SQL value
    bool userFunction = false;
    bool negated = false;  // ExistsQuery, InQuery; Literal: its value with the other sign
    int index = -1;
    SqlType sourceType;  // of a literal or variable before conversion to `type`
    Value constant;
    BoundSource* source = nullptr;
    int column = -1;
    std::string name;  // of a column: its own; otherwise ""
    std::string pattern;
    std::vector<BoundPtr> args;
    std::unique_ptr<BoundQuery> query;

    bool isConstant() const {
        return kind == BoundKind::Literal || kind == BoundKind::Variable || kind == BoundKind::Null;
    }
};

struct BoundItem {
    BoundPtr expr;
    std::string name;   // "" when the text gives none
    int variable = -1;  // assigned variable
};

struct BoundOrder {
    BoundPtr expr;     // null when ordinal is set
    int ordinal = -1;  // output column, from 0
    bool descending = false;
};

struct BoundQuery {
    QueryBody::Kind kind = QueryBody::Select;
    bool distinct = false;
    bool withTies = false;
    bool percent = false;       // the limit is a share of the rows
    bool grouped = false;       // GROUP BY or aggregates
    bool singleRow = false;     // at most one row by construction
    std::string recursiveName;  // a recursive common table: left is its start, right its step
    BoundPtr limit, offset;
    std::vector<BoundItem> items;
    std::vector<std::unique_ptr<BoundSource>> sources;
    std::vector<std::unique_ptr<BoundFrom>> from;
    BoundPtr where, having;
    std::vector<BoundPtr> groupBy;
    std::vector<std::vector<BoundPtr>> rows;  // Values
    std::unique_ptr<BoundQuery> left, right;  // set operators
    std::vector<BoundOrder> order;

    std::vector<BoundColumn> columns;  // output: name, type, "c0".. as sqlName
};

BoundPtr cloneBound(const BoundExpr& e);
// Same expression with the same operands (literals by value).
bool sameBound(const BoundExpr& a, const BoundExpr& b, const std::vector<LiteralSlot>& literals);
bool containsAggregate(const BoundExpr& e);

}  // namespace owb::tsql
