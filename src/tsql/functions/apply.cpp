// APPLY: the table t_apply(plan, argument...) gives the rows that one row on its left makes. The
// plan and the session that runs it are behind FunctionHost.
#include "tsql/functions/functions.h"

namespace owb::tsql {

namespace {

class Applied : public ComputedRows {
  public:
    size_t count() const override { return rows.size(); }
    void give(SqliteResult result, size_t row, size_t column) const override {
        if (column < rows[row].size()) result.giveCopy(rows[row][column].get());
    }
    AppliedRows rows;
};

}  // namespace

void addApply(Sqlite& sqlite, FunctionHost& host) {
    ComputedTable table;
    for (int i = 0; i < kMostApplied; ++i) table.columns.push_back("c" + std::to_string(i));
    table.arguments = 1 + kMostApplied;
    table.read = [&host](SqliteArguments a) {
        auto applied = std::make_unique<Applied>();
        auto* plan = static_cast<ApplyPlan*>(a[0].pointer(kApplyPlan));
        host.applyRows(*plan, a.from(1), applied->rows);
        return applied;
    };
    sqlite.addTable("t_apply", std::move(table));
}

}  // namespace owb::tsql
