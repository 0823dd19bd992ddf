// Plans, parameters and queries.
#include <algorithm>

#include "base/utf8.h"
#include "tsql/run/executor.h"
#include "tsql/types/types.h"

namespace owb::tsql {

BindContext Executor::bindContext(Frame& frame) {
    BindContext context{catalog_};
    context.literals = &frame.code->parsed->ast.literals;
    context.variables = &frame.code->parsed->variables;
    context.pseudoTables = frame.pseudoTables;
    context.functionId = [this](const std::string& name) {
        const std::string folded = foldName(name);
        for (size_t i = 0; i < functions_.size(); ++i)
            if (functions_[i].name == folded) return static_cast<int>(i);
        functions_.push_back({folded, nullptr, nullptr, 0});
        return static_cast<int>(functions_.size() - 1);
    };
    return context;
}

bool Executor::dependenciesHold(Plan& plan) {
    for (const Dependency& d : plan.dependencies) {
        if (d.module) {
            const CatalogModulePtr m = catalog_.findModule(d.name);
            if (!m || m->signature != d.signature) return false;
        } else {
            const CatalogTablePtr t = catalog_.findTable(d.name);
            if (!t || t->signature != d.signature) return false;
        }
    }
    plan.checkedVersion = catalog_.version();
    return true;
}

const Value& Executor::parameterValue(Frame& frame, const PlanParameter& p) {
    if (p.kind == PlanParameter::Literal) return frame.code->parsed->ast.literals[p.index].value;
    return p.kind == PlanParameter::Variable ? frame.variables[p.index] : p.constant;
}

// `outer`: the arguments of an APPLY, for a plan that is its right side.
void Executor::bindParameters(SqliteStatement& statement, Frame& frame,
                              const std::vector<PlanParameter>& parameters,
                              const SqliteArguments* outer) {
    const std::vector<LiteralSlot>& literals = frame.code->parsed->ast.literals;
    int at = 0;
    for (const PlanParameter& p : parameters) {
        ++at;
        if (p.kind == PlanParameter::Apply) {
            statement.bindPointer(at, p.apply, kApplyPlan);
            continue;
        }
        if (p.kind == PlanParameter::Outer) {
            statement.bind(at, (*outer)[p.index]);
            continue;
        }
        const Value& v = parameterValue(frame, p);
        // The type of this run's literal: only its kind is sure to be that of the plan's making.
        const SqlType& from = p.kind == PlanParameter::Literal ? literals[p.index].type : p.from;
        if (p.negated)
            statement.bind(at, convertValue(negated(v), from, p.to));
        else if (from == p.to || v.isNull() || (v.isText() && p.from == p.to))
            statement.bind(at, v);
        else
            statement.bind(at, convertValue(v, from, p.to));
    }
}

// Runs the table functions of a statement: each leaves its rows in the table that the statement
// reads.
void Executor::fillTables(Frame& frame, Plan& plan) {
    for (const Plan::TableFill& fill : plan.fills) {
        CatalogModulePtr module = catalog_.findModule(fill.function);
        if (!module) throw makeDbError(208, {fill.function});
        std::vector<Value> arguments;
        for (const PlanParameter& p : fill.arguments) {
            const Value& v = parameterValue(frame, p);
            arguments.push_back(convertValue(p.negated ? negated(v) : v, p.from, p.to));
        }
        runTableFunction(*module, std::move(arguments), fill.sqlName, false);
    }
}

void Executor::runTableFunction(CatalogModule& module, std::vector<Value> arguments,
                                const std::string& sqlName, bool inStatement) {
    Frame callee = moduleFrame(module);
    for (size_t i = 0; i < arguments.size(); ++i) callee.variables[i] = std::move(arguments[i]);
    const ModuleDefinition& definition = *callee.code->parsed->definition;
    CatalogTable table = describeTable(definition.returnsVariable, definition.returnsColumns, {});
    // The variable's table belongs to the call, the rows stay for the statement.
    table.sqlName = sqlName;
    if (inStatement) {  // SQLite drops no table while a statement runs
        if (sqlite_->number("SELECT 1 FROM sqlite_temp_master WHERE name = " +
                            sqliteText(table.bareName())))
            sqlite_->run("DELETE FROM " + sqlName);
        else
            sqlite_->run(tableDdl(table, sqlName));
    } else {
        sqlite_->run("DROP TABLE IF EXISTS " + sqlName);
        sqlite_->run(tableDdl(table, sqlName));
    }
    std::map<std::string, CatalogTablePtr> pseudo;
    table.temporary = true;
    pseudo[foldName(table.name)] = std::make_shared<CatalogTable>(table);
    callee.pseudoTables = &pseudo;
    ++tryDepth_;  // an error in there is the statement's
    try {
        runScope(callee);
    } catch (...) {
        --tryDepth_;
        throw;
    }
    --tryDepth_;
    callee.code->plans.clear();
}

SqliteStatement Executor::acquire(Frame& frame, Plan& plan) {
    if (!plan.fills.empty()) fillTables(frame, plan);
    SqliteStatement statement;
    if (!plan.idle.empty()) {
        statement = std::move(plan.idle.back());
        plan.idle.pop_back();
    } else {
        if (plan.parameters.size() > 32000) throw makeDbError(8623);
        statement = sqlite_->prepare(plan.sql);
    }
    bindParameters(statement, frame, plan.parameters);
    return statement;
}

Value Executor::evaluate(Frame& frame, const Expr& e, const SqlType* target) {
    if (e.kind == ExprKind::Literal) {
        const LiteralSlot& slot = frame.code->parsed->ast.literals[e.literal];
        if (target) requireConversion(slot.type, *target, false);
        return target ? convertValue(slot.value, slot.type, *target) : slot.value;
    }
    if (e.kind == ExprKind::Null) return {};
    if (e.kind == ExprKind::Variable) {
        const int at = frame.code->parsed->findVariable(e.name.last());
        if (at < 0) throw makeDbError(137, {e.name.last()}, e.line);
        const Value& v = frame.variables[at];
        if (target) requireConversion(frame.code->parsed->variables[at].type, *target, false);
        return target ? convertValue(v, frame.code->parsed->variables[at].type, *target) : v;
    }
    Plan& p = plan(frame, &e, [&](Planner& planner) { return planner.value(e, target); });
    BorrowedStatement statement(p, acquire(frame, p));
    sqlite_->step(*statement);
    return statement->value(0, p.columns[0].type);
}

bool Executor::condition(Frame& frame, const Expr& e) {
    Plan& p = plan(frame, &e, [&](Planner& planner) { return planner.condition(e); });
    BorrowedStatement statement(p, acquire(frame, p));
    sqlite_->step(*statement);
    return statement->integer(0) != 0;
}

void Executor::runQuery(Frame& frame, const Statement& s) {
    Plan& p = plan(frame, &s, [&](Planner& planner) { return planner.query(*s.query); });
    if (!p.into.empty()) return runInto(frame, p);
    BorrowedStatement statement(p, acquire(frame, p));
    if (!p.variables.empty()) {
        int64_t rows = 0;
        while (sqlite_->step(*statement)) {
            if (options_.rowCount > 0 && rows == options_.rowCount) break;
            ++rows;
            for (size_t i = 0; i < p.variables.size(); ++i)
                frame.variables[p.variables[i]] =
                    statement->value(static_cast<int>(i), p.columns[i].type);
        }
        rowCount_ = rows;
        return;
    }
    if (frame.inFunction)
        throw DbError(444, 16, 2, s.line,
                      "Select statements included within a function cannot return data to a "
                      "client.");
    ResultSet set;
    set.columns = p.columns;
    const auto width = static_cast<int>(p.columns.size());
    set.cells.reserve(p.columns.size());
    bool row = sqlite_->step(*statement);
    if (catalogUnchecked_ && depth_ == 0) {  // not inside a function that it calls
        catalogUnchecked_ = false;
        if (!catalog_.stillCurrent(p.readsFile)) throw StaleCatalog();
    }
    for (; row; row = sqlite_->step(*statement)) {
        if (options_.rowCount > 0 && static_cast<int64_t>(set.rows) == options_.rowCount) break;
        ++set.rows;
        for (int i = 0; i < width; ++i) set.cells.push_back(statement->value(i, p.columns[i].type));
    }
    rowCount_ = static_cast<int64_t>(set.rows);
    for (int i = 0; i < width; ++i) {
        const SqlType& type = p.columns[i].type;
        if (!type.isClock() && type.kind != SqlKind::Real) continue;
        for (size_t at = i; at < set.cells.size(); at += width)
            set.cells[at] = clientValue(set.cells[at], type);
    }
    if (result_) result_->sets.push_back(std::move(set));
}

void Executor::runInto(Frame& frame, Plan& p) {
    requireSoundTransaction();
    const bool temporary = p.into.last().starts_with("#");
    AtomicSteps steps(*sqlite_, temporary);
    if (!temporary) lookAround();
    CatalogTable table;
    catalog_.requirePlace(p.into, 0);
    table.name = p.into.last();
    if (catalog_.findTable(table.name) || catalog_.findModule(table.name))
        throw makeDbError(2714, {table.name});
    for (const Column& c : p.columns) {
        if (table.findColumn(c.name) >= 0) throw makeDbError(2705, {c.name, table.name});
        CatalogColumn column;
        column.name = c.name;
        column.type = c.type;
        column.nullable = c.nullable;
        table.columns.push_back(std::move(column));
    }
    const std::string name = table.name;
    createTable(std::move(table), 0);
    if (!p.fills.empty()) fillTables(frame, p);
    SqliteStatement insert =
        sqlite_->prepare("INSERT INTO " + catalog_.findTable(name)->sqlName + " " + p.sql);
    bindParameters(insert, frame, p.parameters);
    try {
        sqlite_->step(insert);
        rowCount_ = sqlite_->changes();
        insert = {};
        steps.commit();
    } catch (const DbError&) {
        insert = {};
        if (CatalogTablePtr made = catalog_.findTable(name); made && made->temporary)
            catalog_.forgetTemporary(*made);
        catalog_.changed(name);
        throw;
    }
    tellCount();
}

}  // namespace owb::tsql
