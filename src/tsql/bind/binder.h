// Binds syntax trees: resolves the names of tables, columns, variables and functions, and says what
// a query gives. Throws DbError with the server's numbers.
//
//  1. A column is looked for in the innermost query first, then in those around it (scopes_).
//  2. Every object that a name leads to is noted, with its signature, in dependencies().
//  3. A literal stays a slot of the batch, whose value may be another in the next run. Where its
//     value or type decides something here, the slot is marked as fixed.
//  4. The body of a view or inline function is bound anew at each use. It sees nothing of the
//     statement around it, and its literals are constants.
//  5. How much a statement may grow by that is bounded (spend).
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "tsql/bind/typed_expressions.h"

namespace owb::tsql {

// What a plan depends on: it is good while these objects have these signatures.
struct Dependency {
    std::string name;
    bool module = false;
    uint64_t signature = 0;
};

// A call of a multi-statement table function in FROM: its arguments are constants of the
// statement, its rows come into a temporary table first.
struct TableCall {
    std::string function;
    std::vector<BoundPtr> arguments;
    std::string sqlName;  // of the table
};

class Binder : public TypedExpressions {
  public:
    explicit Binder(BindContext& context);
    ~Binder();

    std::unique_ptr<BoundQuery> bindQuery(const Query& query);
    // A query inside another one: its order counts only with TOP or OFFSET.
    std::unique_ptr<BoundQuery> bindSubquery(const Query& query);
    BoundPtr bindValue(const Expr& e);
    BoundPtr bindCondition(const Expr& e);

    // --- for statements that write ---
    struct Target {
        std::unique_ptr<BoundQuery> scope;  // FROM with the target in it
        BoundSource* source = nullptr;
        bool implicit = true;   // no FROM and no view: the table stands alone
        CatalogTablePtr table;  // that is written, maybe through a view or common table
        std::string rowid;      // of its row, in SQL
        int findColumn(const std::string& name) const;  // of the table; throws 4406
    };
    // A view's columns as columns of the one table behind it.
    struct InsertTarget {
        CatalogTablePtr table;
        std::vector<std::pair<std::string, int>> columns;
    };
    InsertTarget bindInsertTarget(const Name& name, int line);
    // From here on the variable is read again for every row. Its index.
    int assignsVariable(const std::string& name, int line);
    // Whether the name of a column, or a star, leads to that table. A table that has another name
    // here is known by that one alone.
    bool isNamed(const BoundSource& source, const Name& column) const;
    // A count of rows; one that makes no sense is that error.
    BoundPtr rowLimit(const Expr& e, int error);
    // Resolves the target of an UPDATE or DELETE together with its FROM and opens that scope.
    Target bindTarget(const ChangeStatement& s);
    void pushWith(const std::vector<CommonTable>& with);

    const std::vector<Dependency>& dependencies() const { return dependencies_; }
    // Multi-statement table functions that must fill their tables before the statement runs.
    std::vector<TableCall> tableCalls;
    void dependOn(const CatalogTable& table);

    // --- used by the built-in functions (function_call.h) ---
    BoundPtr bind(const Expr& e);
    // The literal's value when the expression is a literal; the plan is then bound to it.
    const Value* fixedLiteral(const Expr& e);
    BindContext& context() { return context_; }
    // The next SELECT is a statement of its own: it may assign variables and make a table.
    bool statement = false;
    // Records "*" expansions of a view's select lists (set at CREATE VIEW), in order.
    std::vector<std::vector<std::string>>* recordStars = nullptr;

  private:
    struct Scope;
    friend struct ScopeGuard;

    // queries (binder_queries.cpp)
    std::unique_ptr<BoundQuery> bindBody(const QueryBody& body,
                                         const std::vector<OrderItem>* orderBy, const Query* query);
    std::unique_ptr<BoundQuery> bindSelect(const QueryBody& body,
                                           const std::vector<OrderItem>* orderBy,
                                           const Query* query);
    std::unique_ptr<BoundQuery> bindSetOperation(const QueryBody& body);
    std::unique_ptr<BoundQuery> bindValues(const QueryBody& body);
    void convertOutputs(BoundQuery& query, const std::vector<SqlType>& types);
    void bindItems(const QueryBody& body, BoundQuery& q);
    void requirePlain(const QueryBody& body) const;
    void expandStar(const SelectItem& item, BoundQuery& q);
    void bindOrder(const std::vector<OrderItem>& orderBy, const QueryBody& body, BoundQuery& q);
    void pushOrder(BoundOrder order, const OrderItem& item, BoundQuery& q) const;
    void checkGrouped(const BoundExpr& e, const BoundQuery& q, int errorNumber) const;
    void setColumns(BoundQuery& q);
    void bindLimit(const QueryBody& body, const Query* query, BoundQuery& q);

    // targets (binder_targets.cpp)
    void resolveTarget(const ChangeStatement& s, Target& target);

    // tables (binder_tables.cpp)
    std::unique_ptr<BoundFrom> bindFrom(const TableRef& ref, BoundQuery& q);
    std::unique_ptr<BoundFrom> bindApplied(const TableRef& ref, BoundQuery& q);
    std::unique_ptr<BoundFrom> addSource(BoundQuery& q, std::unique_ptr<BoundSource> source,
                                         int line);
    std::unique_ptr<BoundSource> bindNamedTable(const TableRef& ref);
    std::unique_ptr<BoundQuery> bindRecursive(const CommonTable& common, int line);
    std::unique_ptr<BoundSource> bindView(CatalogModule& view, const std::string& exposed);
    std::unique_ptr<BoundQuery> bindModuleBody(CatalogModule& module,
                                               const std::map<std::string, BoundPtr>* arguments);
    std::unique_ptr<BoundSource> bindTableFunction(const TableRef& ref);
    std::map<std::string, BoundPtr> bindArguments(const TableRef& ref, CatalogModule& module);
    BoundPtr defaultArgument(CatalogModule& module, const Parameter& p);
    std::unique_ptr<BoundSource> calledForRows(const CatalogModule& module,
                                               const ModuleDefinition& definition,
                                               std::vector<BoundPtr> arguments,
                                               const std::string& exposed);
    std::unique_ptr<BoundSource> calledBefore(const CatalogModule& module,
                                              const ModuleDefinition& definition,
                                              std::vector<BoundPtr> arguments,
                                              const std::string& exposed);
    std::unique_ptr<BoundSource> derivedSource(std::unique_ptr<BoundQuery> query,
                                               const std::string& exposed,
                                               const std::vector<std::string>& names, int line);
    std::unique_ptr<BoundSource> tableSource(CatalogTablePtr table, const std::string& exposed);
    CatalogTablePtr systemView(const Name& name) const;
    std::string newAlias() { return "t" + std::to_string(nextAlias_++); }

    // expressions (binder.cpp)
    BoundPtr bindColumn(const Expr& e);
    BoundPtr bindVariable(const Expr& e);
    BoundPtr bindSystemVariable(const Expr& e);
    BoundPtr bindBinary(const Expr& e);
    BoundPtr bindLiteral(const Expr& e);
    BoundPtr bindUnary(const Expr& e);
    BoundPtr bindCast(const Expr& e);
    BoundPtr bindPredicate(const Expr& e);
    BoundPtr bindChain(const Expr& e);
    BoundPtr bindBetween(const Expr& e);
    BoundPtr bindLike(const Expr& e);
    BoundPtr bindCase(const Expr& e);
    BoundPtr castByStyle(BoundPtr value, const Expr& e);
    BoundPtr bindFunction(const Expr& e);
    BoundPtr bindAggregate(const Expr& e, const std::string& name);
    BoundPtr aggregated(const Expr& e);
    BoundPtr bindNumberAggregate(const std::string& name, const std::string& distinct, BoundPtr a);
    BoundPtr bindStringAggregate(const Expr& e, BoundPtr value);
    BoundPtr bindWindow(const Expr& e, const std::string& name);
    BoundPtr bindWindowCall(const Expr& e, const std::string& name);
    BoundPtr bindAggregateOver(const Expr& e, const std::string& name);
    std::string bindWindowSpec(const WindowSpec& spec, Args& args);
    BoundPtr bindUserFunction(const Expr& e);
    BoundPtr bindInList(const Expr& e);
    BoundPtr bindInQuery(const Expr& e);
    BoundPtr subqueryPredicate(BoundKind kind, std::unique_ptr<BoundQuery> query, bool negated);
    BoundPtr bindQuantified(const Expr& e);
    BoundPtr scalarQuery(const Query& query, int line);

    std::vector<Dependency> dependencies_;
    std::vector<std::unique_ptr<Scope>> scopes_;
    std::vector<const CommonTable*> with_;
    // The recursive common table being bound: its own name inside its body stands for its rows.
    struct Recursive {
        std::string name;
        std::string sqlName;
        std::vector<BoundColumn> columns;
    };
    std::vector<Recursive> recursive_;
    int maxRecursion_ = 100;
    int nextAlias_ = 0;
    int aggregateDepth_ = 0;
    int applyDepth_ = 0;
    int windowDepth_ = 0;
    bool windowsAllowed_ = false;  // in the select list and ORDER BY
    int viewDepth_ = 0;
    int queryDepth_ = 0;
    // Common tables, views and parameters are bound anew at each use: how much that makes of a
    // short text is bounded before it is made.
    void spend(int nodes);
    int spent_ = 0;
    const std::map<std::string, BoundPtr>* parameters_ = nullptr;        // of an inlined function
    const std::vector<std::vector<std::string>>* fixedStars_ = nullptr;  // of the view being bound
    size_t nextStar_ = 0;
    std::vector<int> assignedVariables_;  // of the SELECT being bound
};

// One built-in function: checks its arguments and gives its typed form. Null when the name is no
// built-in function.
BoundPtr bindBuiltin(Binder& binder, const Expr& call, const std::string& upperName);
bool isAggregateName(const std::string& upperName);
bool isWindowName(const std::string& upperName);

}  // namespace owb::tsql
