// The rows of an APPLY for one row on its left.
#include "tsql/run/executor.h"
#include "tsql/types/types.h"

namespace owb::tsql {

void Executor::applyRows(ApplyPlan& apply, int count, sqlite3_value** arguments,
                         AppliedRows& rows) {
    SqliteStatement statement;
    if (!apply.function.empty()) {
        CatalogModulePtr module = catalog_.findModule(apply.function);
        if (!module) throw makeDbError(208, {apply.function});
        const auto& parameters = catalog_.parsed(*module).definition->parameters;
        std::vector<Value> values;
        for (int i = 0; i < count; ++i)
            values.push_back(argumentValue(arguments[i], parameters[static_cast<size_t>(i)].type));
        const std::string table =
            "temp." + sqliteName("applied~" + foldName(apply.function) + "~" +
                                 std::to_string(module->signature) + "~" + std::to_string(depth_));
        runTableFunction(*module, std::move(values), table, true);
        statement = sqlite_->prepare("SELECT * FROM " + table);
        readApplied(statement.get(), rows);
        return;
    }
    if (apply.idle.empty()) {
        statement = sqlite_->prepare(apply.sql);
    } else {
        statement = std::move(apply.idle.back());
        apply.idle.pop_back();
    }
    Plan given;
    given.parameters = apply.parameters;
    bindParameters(statement.get(), *frame_, given);
    for (size_t i = 0; i < apply.parameters.size(); ++i)
        if (apply.parameters[i].kind == PlanParameter::Outer)
            sqlite3_bind_value(statement.get(), static_cast<int>(i) + 1,
                               arguments[apply.parameters[i].index]);
    readApplied(statement.get(), rows);
    sqlite3_reset(statement.get());
    apply.idle.push_back(std::move(statement));
}

void Executor::readApplied(sqlite3_stmt* statement, AppliedRows& rows) {
    const int width = sqlite3_column_count(statement);
    while (sqlite_->step(statement)) {
        rows.emplace_back();
        for (int i = 0; i < width; ++i)
            rows.back().emplace_back(sqlite3_value_dup(sqlite3_column_value(statement, i)));
    }
}

}  // namespace owb::tsql
