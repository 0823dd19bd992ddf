#include "tsql/plan/change_planner.h"

#include <algorithm>

#include "tsql/types/types.h"

namespace owb::tsql {

namespace {

// Whether computing the expression may read a table: by a subquery, or inside a function.
bool readsTables(const BoundExpr& e) {
    if (e.query || e.userFunction) return true;
    return std::any_of(e.args.begin(), e.args.end(),
                       [](const BoundPtr& a) { return readsTables(*a); });
}

}  // namespace

void ChangePlanner::bindTarget() {
    plan_->writes = statement_.kind;
    target_ = binder_.bindTarget(statement_);
    plan_->target = target_.table;
    plan_->stepwise = statement_.output != nullptr;
}

void ChangePlanner::addTriggers(bool CatalogModule::*event) {
    for (const std::string& name : target_.table->triggers)
        if ((*context_.catalog.findModule(name)).*event) plan_->triggers.push_back(name);
}

std::unique_ptr<Plan> ChangePlanner::update() {
    bindTarget();
    snapshot_ = !target_.implicit || statement_.top;
    for (const Assignment& a : statement_.assignments)
        if (!a.variable.empty()) binder_.assignsVariable(a.variable, a.line);
    for (const Assignment& a : statement_.assignments) addAssignment(a);
    // SQLite finds the rows before it changes any when the condition has a subquery, but not
    // when it calls a function.
    if (target_.scope->where) snapshot_ |= target_.scope->where->userFunction;
    addTriggers(&CatalogModule::onUpdate);
    if (!snapshot_ && plan_->triggers.empty() && !plan_->stepwise)
        updateAtOnce();
    else
        updateCollecting();
    return finished();
}

std::unique_ptr<Plan> ChangePlanner::remove() {
    bindTarget();
    addTriggers(&CatalogModule::onDelete);
    const BoundExpr* where = target_.scope->where.get();
    if (target_.implicit && !statement_.top && plan_->triggers.empty() && !plan_->stepwise &&
        !(where && where->userFunction)) {
        plan_->sql = "DELETE FROM " + target_.table->sqlName + " AS " + target_.source->alias;
        if (where) plan_->sql += " WHERE " + lowerer_.filter(*where);
    } else {
        collect("");
    }
    return finished();
}

// --- SET ---

int ChangePlanner::findColumn(const Assignment& a) const {
    if (a.written.parts.size() > 1 && !binder_.isNamed(*target_.source, a.written))
        throw makeDbError(4104, {a.written.text()}, a.line);
    const int at = target_.findColumn(a.column);
    if (at < 0) throw makeDbError(207, {a.column}, a.line);
    const CatalogColumn& column = target_.table->columns[at];
    for (const auto& [name, value] : sets_)
        if (name == sqliteName(column.name))
            throw DbError(264, 16, 1, a.line,
                          "The column name '" + column.name +
                              "' is specified more than once in the SET clause or column list of "
                              "an INSERT.");
    if (column.identity) throw makeDbError(8102, {column.name}, a.line);
    return at;
}

void ChangePlanner::addAssignment(const Assignment& a) {
    if (a.column.empty()) {
        sets_.emplace_back("", setVariable(a.variable, variableValue(a), a.line));
        plan_->stepwise = true;
        return;
    }
    const int at = findColumn(a);
    const CatalogColumn& column = target_.table->columns[at];
    BoundPtr v = binder_.assign(newValue(a, at), *target_.table, column);
    if (!a.variable.empty()) v = setVariable(a.variable, std::move(v), a.line);
    // What reads the table while it is changed must see it as it was.
    snapshot_ |= readsTables(*v);
    plan_->assignedColumns.push_back(foldName(column.name));
    for (const CatalogKey& k : target_.table->keys)
        for (const std::string& c : k.columns) snapshot_ |= sameName(c, column.name);
    sets_.emplace_back(sqliteName(column.name), std::move(v));
}

BoundPtr ChangePlanner::newValue(const Assignment& a, int column) {
    BoundPtr v = a.value->kind == ExprKind::Default ? columnDefault(target_.table->columns[column])
                                                    : binder_.bindValue(*a.value);
    if (a.op.empty()) return v;
    return binder_.arithmetic(a.op[0], oldValue(a, column), std::move(v), a.line);
}

BoundPtr ChangePlanner::oldValue(const Assignment& a, int column) const {
    auto old = std::make_unique<BoundExpr>();
    old->kind = BoundKind::Column;
    old->source = target_.source;
    old->column = target_.source->table ? column : -1;
    for (size_t i = 0; old->column < 0; ++i)
        if (sameName(target_.source->columns[i].name, a.column)) old->column = static_cast<int>(i);
    old->type = target_.table->columns[column].type;
    return old;
}

BoundPtr ChangePlanner::variableValue(const Assignment& a) {
    BoundPtr value = binder_.bindValue(*a.value);
    if (!a.op.empty()) {
        Expr own(ExprKind::Variable, a.line);
        own.name.parts.push_back(a.variable);
        value = binder_.arithmetic(a.op[0], binder_.bindValue(own), std::move(value), a.line);
    }
    if (value->type.kind == SqlKind::Null)
        value = binder_.convert(std::move(value), SqlType::of(SqlKind::Int));
    return value;
}

// t_setvar hands its value on and leaves it in the variable.
BoundPtr ChangePlanner::setVariable(const std::string& name, BoundPtr value, int line) {
    const int index = binder_.assignsVariable(name, line);
    const SqlType from = value->type;
    std::vector<BoundPtr> args;
    args.push_back(std::move(value));
    return binder_.op("t_setvar(" + std::to_string(index) + "," + std::to_string(packType(from)) +
                          "," + std::to_string(packType((*context_.variables)[index].type)) +
                          ",$0)",
                      from, std::move(args));
}

// --- the statements in SQL ---

void ChangePlanner::updateAtOnce() {
    std::string& sql = plan_->sql;
    sql = "UPDATE " + target_.table->sqlName + " AS " + target_.source->alias + " SET ";
    for (size_t i = 0; i < sets_.size(); ++i)
        sql += (i ? ", " : "") + sets_[i].first + " = " + lowerer_.expression(*sets_[i].second);
    if (target_.scope->where) sql += " WHERE " + lowerer_.filter(*target_.scope->where);
}

void ChangePlanner::updateCollecting() {
    std::string columns;
    std::string& assignments = plan_->assignments;
    for (size_t i = 0; i < sets_.size(); ++i) {
        const std::string name = "c" + std::to_string(i);
        columns += ", " + lowerer_.expression(*sets_[i].second) + " AS " + name;
        if (!sets_[i].first.empty())
            assignments += (assignments.empty() ? "" : ", ") + sets_[i].first + " = s." + name;
    }
    collect(columns);
}

// The rows that the statement touches ("rid") with these further columns, and the change by them.
void ChangePlanner::collect(const std::string& columns) {
    std::string& rows = plan_->collectSql;
    rows = "SELECT " + target_.rowid + " AS rid" + columns + " FROM " +
           lowerer_.fromClause(*target_.scope);
    std::string where;
    if (target_.scope->where) where = lowerer_.filter(*target_.scope->where);
    // A row that an outer join made up is no row of the target.
    if (!target_.implicit && plan_->writes == StatementKind::Update)
        where = (where.empty() ? "" : where + " AND ") + target_.rowid + " IS NOT NULL";
    if (!where.empty()) rows += " WHERE " + where;
    if (statement_.top)
        rows += " LIMIT " + lowerer_.expression(*binder_.rowLimit(*statement_.top, 127));
    plan_->sql = plan_->applySql("(" + rows + ")");
}

}  // namespace owb::tsql
