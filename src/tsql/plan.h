// A statement made ready: SQLite's SQL, where its parameters come from, what it gives.
#pragma once

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "base/result_set.h"
#include "tsql/binder.h"
#include "tsql/lowerer.h"
#include "tsql/token.h"

namespace owb::tsql {

struct Plan {
    std::string sql;
    std::vector<PlanParameter> parameters;
    ApplyPlans applies;
    Columns columns;             // what comes back
    std::vector<int> variables;  // assigned by the columns, when not empty

    // --- statements that write ---
    StatementKind writes = StatementKind::Query;  // Insert, Update or Delete
    CatalogTablePtr target;
    Name into;                          // SELECT ... INTO
    std::vector<std::string> triggers;  // fired afterwards
    // With triggers: the rows first ("rid", "c0"..), then the change from the table of rows.
    std::string collectSql;
    std::string assignments;                   // of an Update: "a" = s.c0, ...
    std::vector<std::string> assignedColumns;  // of an Update, folded
    bool stepwise = false;  // runs as with triggers: OUTPUT reads the rows, or a variable is set
    bool givesIdentity = false;
    bool explicitIdentity = false;
    std::string insertColumns, insertRows;  // of an Insert: the parts of `sql`

    // The change of the target's rows by those collected in `rows`, a table or a query.
    std::string applySql(const std::string& rows) const;
    // The same as an UPDATE of another table, whose column `rowid` names the row.
    std::string updateSql(const std::string& table, const std::string& rowid,
                          const std::string& rows) const;

    struct TableFill {
        std::string function;
        std::vector<PlanParameter> arguments;
        std::string sqlName;
    };
    std::vector<TableFill> fills;  // before the statement runs

    bool readsFile = false;  // some table of the file, so that a read of it begins
    std::vector<Dependency> dependencies;
    uint64_t checkedVersion = 0;
    std::vector<SqliteStatement> idle;  // prepared, not running
};

// The plans of a batch's statements and expressions, by their place in the tree.
class Plans {
  public:
    std::unique_ptr<Plan>& operator[](const void* key) {
        if (key != lastKey_) {
            last_ = &plans_[key];
            lastKey_ = key;
        }
        return *last_;
    }
    void clear() {
        plans_.clear();
        lastKey_ = nullptr;
    }

  private:
    std::unordered_map<const void*, std::unique_ptr<Plan>> plans_;
    const void* lastKey_ = nullptr;  // a batch of one statement asks for the same each time
    std::unique_ptr<Plan>* last_ = nullptr;
};

// A batch or module body, parsed, with the plans of its statements.
struct CompiledBatch {
    std::string text;
    std::string heldText;  // the text whose literals it holds now, of all that share its shape
    std::vector<Token> tokens;
    Batch ast;
    std::vector<VariableInfo> variables;
    Plans plans;
    const ModuleDefinition* definition = nullptr;
    bool cacheable = true;
    bool checked = false;  // its statements were bound once ahead of running
    int running = 0;

    int findVariable(const std::string& name) const;  // -1 when not declared
};

// Parses a batch and collects its variables. Throws DbError.
std::shared_ptr<CompiledBatch> compileBatch(std::string text);

// Makes plans. One planner serves one statement.
class Planner {
  public:
    explicit Planner(BindContext& context) : context_(context) {}

    std::unique_ptr<Plan> query(const Query& query);
    std::unique_ptr<Plan> value(const Expr& e, const SqlType* target);
    std::unique_ptr<Plan> condition(const Expr& e);
    std::unique_ptr<Plan> insert(const Statement& s, bool explicitIdentityAllowed);
    std::unique_ptr<Plan> update(const Statement& s);
    std::unique_ptr<Plan> remove(const Statement& s);
    std::unique_ptr<Plan> output(const Query& query);

  private:
    BoundPtr setVariable(Binder& binder, const std::string& name, BoundPtr value, int line);
    BoundPtr setVariable(Binder& binder, const Assignment& a);
    BoundPtr columnDefault(Binder& binder, const CatalogColumn& column);
    bool readsTables(const BoundExpr& e) const;
    void assigningQuery(BoundQuery& q, Plan& plan);
    void finish(Binder& binder, Plan& plan);

    BindContext& context_;
};

}  // namespace owb::tsql
