#include "tsql/run/table_functions.h"

#include "tsql/run/parameters.h"
#include "tsql/run/table_description.h"

namespace owb::tsql {

void TableFunctions::fill(Frame& frame, const Plan& plan) {
    for (const Plan::TableFill& fill : plan.fills) {
        CatalogModulePtr module = session_.catalog.findModule(fill.function);
        if (!module) throw makeDbError(208, {fill.function});
        std::vector<Value> arguments;
        for (const PlanParameter& p : fill.arguments) arguments.push_back(parameterValue(frame, p));
        run(*module, std::move(arguments), fill.sqlName, false);
    }
}

void TableFunctions::apply(ApplyPlan& plan, SqliteArguments arguments, AppliedRows& rows) {
    SqliteStatement statement;
    if (!plan.function.empty()) {
        CatalogModulePtr module = session_.catalog.findModule(plan.function);
        if (!module) throw makeDbError(208, {plan.function});
        const auto& parameters = session_.catalog.parsed(*module).definition->parameters;
        std::vector<Value> values;
        for (int i = 0; i < arguments.count(); ++i)
            values.push_back(arguments[i].as(parameters[static_cast<size_t>(i)].type));
        const std::string table = "temp." + sqliteName("applied~" + foldName(plan.function) + "~" +
                                                       std::to_string(module->signature) + "~" +
                                                       std::to_string(session_.depth));
        run(*module, std::move(values), table, true);
        statement = session_.sqlite.prepare("SELECT * FROM " + table);
        return read(statement, rows);
    }
    if (plan.idle.empty()) {
        statement = session_.sqlite.prepare(plan.sql);
    } else {
        statement = std::move(plan.idle.back());
        plan.idle.pop_back();
    }
    bindParameters(statement, *session_.frame, plan.parameters, &arguments);
    read(statement, rows);
    statement.rewind();
    plan.idle.push_back(std::move(statement));
}

void TableFunctions::read(SqliteStatement& statement, AppliedRows& rows) {
    const int width = statement.columnCount();
    while (session_.sqlite.step(statement)) {
        rows.emplace_back();
        for (int i = 0; i < width; ++i) rows.back().push_back(statement.kept(i));
    }
}

void TableFunctions::makeEmpty(const CatalogTable& table, bool inStatement) {
    if (!inStatement) {
        session_.sqlite.run("DROP TABLE IF EXISTS " + table.sqlName);
    } else if (session_.sqlite.number("SELECT 1 FROM sqlite_temp_master WHERE name = " +
                                      sqliteText(table.bareName()))) {
        // SQLite drops no table while a statement runs.
        return session_.sqlite.run("DELETE FROM " + table.sqlName);
    }
    session_.sqlite.run(tables_.ddl(table, table.sqlName));
}

void TableFunctions::run(CatalogModule& module, std::vector<Value> arguments,
                         const std::string& sqlName, bool inStatement) {
    Frame callee = codes_.frameOf(module);
    for (size_t i = 0; i < arguments.size(); ++i) callee.variables[i] = std::move(arguments[i]);
    const ModuleDefinition& definition = *callee.code->parsed->definition;
    CatalogTable table = describeTable(definition.returnsVariable, definition.returnsColumns, {});
    // The variable's table belongs to the call, the rows stay for the statement.
    table.sqlName = sqlName;
    makeEmpty(table, inStatement);
    PseudoTables pseudo;
    table.temporary = true;
    pseudo[foldName(table.name)] = std::make_shared<CatalogTable>(table);
    callee.pseudoTables = &pseudo;
    {
        Restored caught(session_.tryDepth, session_.tryDepth + 1);  // an error is the statement's
        runner_.runScope(callee);
    }
    callee.code->plans.clear();
}

}  // namespace owb::tsql
