// The rows of an APPLY for one row on its left.
#include "tsql/run/executor.h"
#include "tsql/types/types.h"

namespace owb::tsql {

void Executor::applyRows(ApplyPlan& apply, SqliteArguments arguments, AppliedRows& rows) {
    SqliteStatement statement;
    if (!apply.function.empty()) {
        CatalogModulePtr module = catalog_.findModule(apply.function);
        if (!module) throw makeDbError(208, {apply.function});
        const auto& parameters = catalog_.parsed(*module).definition->parameters;
        std::vector<Value> values;
        for (int i = 0; i < arguments.count(); ++i)
            values.push_back(arguments[i].as(parameters[static_cast<size_t>(i)].type));
        const std::string table =
            "temp." + sqliteName("applied~" + foldName(apply.function) + "~" +
                                 std::to_string(module->signature) + "~" + std::to_string(depth_));
        runTableFunction(*module, std::move(values), table, true);
        statement = sqlite_->prepare("SELECT * FROM " + table);
        readApplied(statement, rows);
        return;
    }
    if (apply.idle.empty()) {
        statement = sqlite_->prepare(apply.sql);
    } else {
        statement = std::move(apply.idle.back());
        apply.idle.pop_back();
    }
    bindParameters(statement, *frame_, apply.parameters, &arguments);
    readApplied(statement, rows);
    statement.rewind();
    apply.idle.push_back(std::move(statement));
}

void Executor::readApplied(SqliteStatement& statement, AppliedRows& rows) {
    const int width = statement.columnCount();
    while (sqlite_->step(statement)) {
        rows.emplace_back();
        for (int i = 0; i < width; ++i) rows.back().push_back(statement.kept(i));
    }
}

}  // namespace owb::tsql
