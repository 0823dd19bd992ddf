#include "tsql/plan/insert_planner.h"

#include <algorithm>

namespace owb::tsql {

std::unique_ptr<Plan> InsertPlanner::make(bool explicitIdentityAllowed) {
    const InsertStatement& s = statement_;
    if (s.query) binder_.pushWith(s.query->with);
    target_ = binder_.bindInsertTarget(s.target, s.line);
    const CatalogTable& table = *target_.table;
    plan_->target = target_.table;
    plan_->writes = StatementKind::Insert;
    plan_->stepwise = s.output != nullptr;
    findColumns();
    judgeIdentity(explicitIdentityAllowed);

    std::string& rows = plan_->insertRows;
    if (s.defaultValues)
        rows = "VALUES(" + omittedValues().substr(1) + ")";
    else if (s.query->body->kind == QueryBody::Values && s.query->orderBy.empty())
        rows = valueRows();
    else
        rows = queryRows();
    if (s.top)
        rows = "SELECT * FROM (" + rows + ") LIMIT " +
               lowerer_.expression(*binder_.rowLimit(*s.top, 127));
    std::string names;
    for (const std::vector<int>* columns : {&columns_, &omitted_})
        for (int c : *columns)
            names += (names.empty() ? "" : ",") + sqliteName(table.columns[c].name);
    plan_->insertColumns = "(" + names + ")";
    plan_->sql = "INSERT INTO " + table.sqlName + plan_->insertColumns + " " + rows;
    for (const std::string& name : table.triggers)
        if (context_.catalog.findModule(name)->onInsert) plan_->triggers.push_back(name);
    return finished();
}

int InsertPlanner::findColumn(const std::string& name) const {
    int at = -1;
    for (const auto& [column, index] : target_.columns)
        if (sameName(column, name)) at = index;
    if (at == -1) throw makeDbError(207, {name}, statement_.line);
    if (at < 0) throw makeDbError(4406, {statement_.target.last()}, statement_.line);
    if (std::find(columns_.begin(), columns_.end(), at) != columns_.end())
        throw DbError(264, 16, 1, statement_.line,
                      "The column name '" + name +
                          "' is specified more than once in the SET clause or column list of an "
                          "INSERT.");
    return at;
}

// Those of the statement's list; without one all but the identity column.
void InsertPlanner::findColumns() {
    const InsertStatement& s = statement_;
    const CatalogTable& table = *target_.table;
    for (const std::string& name : s.columns) columns_.push_back(findColumn(name));
    if (s.columns.empty() && !s.defaultValues)
        for (const auto& [column, index] : target_.columns) {
            if (index < 0) throw makeDbError(4406, {s.target.last()}, s.line);
            if (index != table.identityColumn()) columns_.push_back(index);
        }
    for (int i = 0; i < static_cast<int>(table.columns.size()); ++i)
        if (std::find(columns_.begin(), columns_.end(), i) == columns_.end()) omitted_.push_back(i);
}

void InsertPlanner::judgeIdentity(bool explicitIdentityAllowed) {
    const CatalogTable& table = *target_.table;
    const int identity = table.identityColumn();
    plan_->explicitIdentity =
        identity >= 0 && std::find(columns_.begin(), columns_.end(), identity) != columns_.end();
    plan_->givesIdentity = identity >= 0 && !plan_->explicitIdentity;
    if (plan_->explicitIdentity && !explicitIdentityAllowed)
        throw makeDbError(544, {table.name}, statement_.line);
    if (plan_->givesIdentity && explicitIdentityAllowed && !statement_.columns.empty())
        throw makeDbError(545, {table.name}, statement_.line);
}

// Too few or too many values for a statement without a list of columns. One too many is meant for
// the identity column.
DbError InsertPlanner::widthError(size_t given) const {
    const CatalogTable& table = *target_.table;
    return table.identityColumn() >= 0 && given == columns_.size() + 1
               ? makeDbError(8101, {table.name}, statement_.line)
               : makeDbError(213, {}, statement_.line);
}

std::string InsertPlanner::assigned(BoundPtr value, int column) {
    const CatalogTable& table = *target_.table;
    return lowerer_.expression(*binder_.assign(std::move(value), table, table.columns[column]));
}

// ",value" for each column that the statement leaves out.
std::string InsertPlanner::omittedValues() {
    const CatalogTable& table = *target_.table;
    std::string text;
    for (int c : omitted_) {
        const CatalogColumn& column = table.columns[c];
        if (column.identity && plan_->givesIdentity)
            text += ",t_identity()";
        else if (column.defaultSource.empty())
            text += ",NULL";
        else
            text += "," + assigned(columnDefault(column), c);
    }
    return text;
}

std::string InsertPlanner::valueRows() {
    const InsertStatement& s = statement_;
    std::string rows = "VALUES";
    bool firstRow = true;
    for (const auto& row : s.query->body->rows) {
        if (row.size() != columns_.size()) {
            if (s.columns.empty()) throw widthError(row.size());
            throw makeDbError(row.size() < columns_.size() ? 109 : 110, {}, s.line);
        }
        rows += firstRow ? "(" : ",(";
        firstRow = false;
        for (size_t i = 0; i < row.size(); ++i) {
            BoundPtr v = row[i]->kind == ExprKind::Default
                             ? columnDefault(target_.table->columns[columns_[i]])
                             : binder_.bindValue(*row[i]);
            rows += (i ? "," : "") + assigned(std::move(v), columns_[i]);
        }
        rows += omittedValues() + ")";
    }
    return rows;
}

std::string InsertPlanner::queryRows() {
    const InsertStatement& s = statement_;
    auto q = binder_.bindQuery(*s.query);
    if (q->columns.size() != columns_.size()) {
        if (s.columns.empty()) throw widthError(q->columns.size());
        throw makeDbError(q->columns.size() < columns_.size() ? 120 : 121, {}, s.line);
    }
    BoundSource source;
    source.alias = "s";
    source.columns = q->columns;
    std::string select;
    for (size_t i = 0; i < columns_.size(); ++i) {
        auto ref = std::make_unique<BoundExpr>();
        ref->kind = BoundKind::Column;
        ref->source = &source;
        ref->column = static_cast<int>(i);
        ref->type = q->columns[i].type;
        select += (i ? "," : "") + assigned(std::move(ref), columns_[i]);
    }
    select += omittedValues();
    return "SELECT " + select + " FROM (" + lowerer_.query(*q, true) + ") AS s WHERE true";
}

}  // namespace owb::tsql
