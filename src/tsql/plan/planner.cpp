#include "tsql/plan/planner.h"

#include <algorithm>

#include "base/utf8.h"
#include "tsql/parse/query_parser.h"
#include "tsql/types/types.h"

namespace owb::tsql {

namespace {

bool containsLive(const BoundExpr& e) {
    if (e.kind == BoundKind::LiveVariable) return true;
    return std::any_of(e.args.begin(), e.args.end(),
                       [](const BoundPtr& a) { return containsLive(*a); });
}

// Cuts the largest parts without live variables out of an expression: they become columns of the
// inner query, and what is left is computed row by row over it.
void extractSteady(BoundPtr& e, std::vector<BoundPtr>& inner) {
    if (e->isConstant()) return;
    if (!containsLive(*e)) {
        auto ref = std::make_unique<BoundExpr>();
        ref->pattern = "s.c" + std::to_string(inner.size());
        ref->type = e->type;
        ref->nullable = e->nullable;
        inner.push_back(std::move(e));
        e = std::move(ref);
        return;
    }
    for (BoundPtr& a : e->args) extractSteady(a, inner);
}

}  // namespace

std::string Plan::applySql(const std::string& rows) const {
    if (writes == StatementKind::Update) return updateSql(target->sqlName, "rowid", rows);
    return "DELETE FROM " + target->sqlName + " WHERE rowid IN (SELECT rid FROM " + rows + ")";
}

std::string Plan::updateSql(const std::string& table, const std::string& rowid,
                            const std::string& rows) const {
    return "UPDATE " + table + " AS u SET " + assignments + " FROM " + rows + " AS s WHERE u." +
           rowid + " = s.rid";
}

// Whether computing the expression may read a table: by a subquery, or inside a function.
bool Planner::readsTables(const BoundExpr& e) const {
    if (e.query || e.userFunction) return true;
    return std::any_of(e.args.begin(), e.args.end(),
                       [&](const BoundPtr& a) { return readsTables(*a); });
}

void Planner::finish(Binder& binder, Plan& plan) {
    plan.dependencies = binder.dependencies();
    for (const Dependency& d : plan.dependencies)
        plan.readsFile |= !d.module && d.name[0] != '#' && d.name[0] != '@';
    for (TableCall& call : binder.tableCalls) {
        Plan::TableFill fill;
        fill.function = call.function;
        fill.sqlName = call.sqlName;
        Lowerer lowerer(fill.arguments);
        for (const BoundPtr& a : call.arguments) {
            if (a->kind == BoundKind::Null)
                fill.arguments.push_back({});
            else
                lowerer.expression(*a);
        }
        plan.fills.push_back(std::move(fill));
    }
}

std::unique_ptr<Plan> Planner::ofValue(Binder& binder, BoundPtr v) {
    auto plan = std::make_unique<Plan>();
    plan->columns.push_back({"", v->type, true});
    plan->sql = "SELECT " + Lowerer(plan->parameters, &plan->applies).expression(*v);
    finish(binder, *plan);
    return plan;
}

std::unique_ptr<Plan> Planner::value(const Expr& e, const SqlType* target) {
    Binder binder(context_);
    BoundPtr v = binder.bindValue(e);
    if (target) v = binder.convert(std::move(v), *target);
    return ofValue(binder, std::move(v));
}

std::unique_ptr<Plan> Planner::sum(const SetStatement& s, const SqlType& type) {
    Binder binder(context_);
    Expr own(ExprKind::Variable, s.line);
    own.name.parts.push_back(s.variable);
    BoundPtr before = binder.bindValue(own);
    BoundPtr v = binder.arithmetic(s.op[0], std::move(before), binder.bindValue(*s.value), s.line);
    return ofValue(binder, binder.convert(std::move(v), type));
}

std::unique_ptr<Plan> Planner::condition(const Expr& e) {
    auto plan = std::make_unique<Plan>();
    Binder binder(context_);
    BoundPtr v = binder.bindCondition(e);
    plan->columns.push_back({"", SqlType::of(SqlKind::Int), true});
    plan->sql = "SELECT " + Lowerer(plan->parameters, &plan->applies).expression(*v);
    finish(binder, *plan);
    return plan;
}

std::unique_ptr<Plan> Planner::query(const Query& query) {
    auto plan = std::make_unique<Plan>();
    Binder binder(context_);
    for (const QueryBody* body = query.body.get(); body->left; body = body->left.get())
        for (const QueryBody* part : {body->left.get(), body->right.get()})
            for (const SelectItem& item : part->items)
                if (!item.variable.empty()) throw makeDbError(10734, {}, item.line);
    binder.statement = true;
    auto q = binder.bindQuery(query);
    finish(binder, *plan);
    for (const BoundColumn& c : q->columns) {
        SqlType t = c.type.kind == SqlKind::Null ? SqlType::of(SqlKind::Int) : c.type;
        plan->columns.push_back({c.name, t, c.nullable});
    }
    bool live = false;
    for (const BoundItem& item : q->items) {
        if (item.variable >= 0) plan->variables.push_back(item.variable);
        live |= containsLive(*item.expr);
    }
    const QueryBody* first = query.body.get();
    while (first->left) first = first->left.get();
    if (!first->into.empty()) {
        plan->into = first->into;
        for (size_t i = 0; i < q->columns.size(); ++i)
            if (q->columns[i].name.empty())
                throw DbError(1038, 15, 5, first->line,
                              "An object or column name is missing or empty. For SELECT INTO "
                              "statements, verify each column has a name.");
        // The new columns take their width from the literals: the plan serves only these.
        if (context_.literals)
            for (LiteralSlot& slot : *context_.literals)
                if (slot.type.isText()) slot.fixed = true;
        plan->sql = Lowerer(plan->parameters, &plan->applies).query(*q, false);
        return plan;
    }
    if (live)
        assigningQuery(*q, *plan);
    else
        plan->sql = Lowerer(plan->parameters, &plan->applies).query(*q, false);
    return plan;
}

// SELECT @x = @x + column ...: every row must see what the row before assigned, in the order of
// ORDER BY. The steady parts are computed and ordered first, then walked row by row.
void Planner::assigningQuery(BoundQuery& q, Plan& plan) {
    std::vector<BoundPtr> inner;
    std::vector<BoundItem> outer;
    for (BoundItem& item : q.items) {
        extractSteady(item.expr, inner);
        // The items behind it read what it assigned.
        if (q.items.size() > 1 && item.variable >= 0) {
            const std::string type = std::to_string(packType(item.expr->type));
            auto set = std::make_unique<BoundExpr>();
            set->pattern =
                "t_setvar(" + std::to_string(item.variable) + "," + type + "," + type + ",$0)";
            set->type = item.expr->type;
            set->args.push_back(std::move(item.expr));
            item.expr = std::move(set);
        }
        outer.push_back(std::move(item));
    }
    q.items.clear();
    q.columns.clear();
    if (inner.empty()) {
        auto one = std::make_unique<BoundExpr>();
        one->pattern = "1";
        one->type = SqlType::of(SqlKind::Int);
        inner.push_back(std::move(one));
    }
    for (size_t i = 0; i < inner.size(); ++i) {
        q.columns.push_back({"", inner[i]->type, true, "c" + std::to_string(i)});
        q.items.push_back({std::move(inner[i]), "", -1});
    }
    Lowerer lowerer(plan.parameters, &plan.applies);
    plan.sql = "WITH s AS MATERIALIZED (" + lowerer.query(q, true) + ") SELECT ";
    for (size_t i = 0; i < outer.size(); ++i)
        plan.sql += (i ? ", " : "") + lowerer.expression(*outer[i].expr);
    plan.sql += " FROM s";
}

// --- writing ---

BoundPtr Planner::columnDefault(Binder& binder, const CatalogColumn& column) {
    if (column.defaultSource.empty()) return binder.null(column.type);
    const std::vector<Token> tokens = tokenize(column.defaultSource);
    QueryParser parser(column.defaultSource, tokens);
    std::vector<LiteralSlot> literals;
    ExprPtr e = parser.parseSingleExpression(literals);
    // The literals of the default are constants here.
    BindContext context = context_;
    context.literals = &literals;
    context.variables = nullptr;
    Binder inner(context);
    BoundPtr value = inner.bindValue(*e);
    std::function<void(BoundExpr&)> freeze = [&](BoundExpr& x) {
        if (x.kind == BoundKind::Literal && x.index >= 0) {
            x.constant = literals[x.index].value;
            x.index = -1;
        }
        for (BoundPtr& a : x.args) freeze(*a);
    };
    freeze(*value);
    return value;
}

std::unique_ptr<Plan> Planner::insert(const InsertStatement& s, bool explicitIdentityAllowed) {
    auto plan = std::make_unique<Plan>();
    Binder binder(context_);
    if (s.query) binder.pushWith(s.query->with);
    const Binder::InsertTarget target = binder.bindInsertTarget(s.target, s.line);
    const CatalogTablePtr table = target.table;
    plan->target = table;
    plan->writes = StatementKind::Insert;
    plan->stepwise = s.output != nullptr;
    const int identity = table->identityColumn();

    std::vector<int> columns;
    for (const std::string& name : s.columns) {
        int at = -1;
        for (const auto& [column, index] : target.columns)
            if (sameName(column, name)) at = index;
        if (at == -1) throw makeDbError(207, {name}, s.line);
        if (at < 0) throw makeDbError(4406, {s.target.last()}, s.line);
        if (std::find(columns.begin(), columns.end(), at) != columns.end())
            throw DbError(264, 16, 1, s.line,
                          "The column name '" + name +
                              "' is specified more than once in the SET clause or column list of "
                              "an INSERT.");
        columns.push_back(at);
    }
    if (s.columns.empty() && !s.defaultValues)
        for (const auto& [column, index] : target.columns) {
            if (index < 0) throw makeDbError(4406, {s.target.last()}, s.line);
            if (index != identity) columns.push_back(index);
        }
    plan->explicitIdentity =
        std::find(columns.begin(), columns.end(), identity) != columns.end() && identity >= 0;
    if (plan->explicitIdentity && !explicitIdentityAllowed)
        throw makeDbError(544, {table->name}, s.line);
    plan->givesIdentity = identity >= 0 && !plan->explicitIdentity;
    if (plan->givesIdentity && explicitIdentityAllowed && !s.columns.empty())
        throw makeDbError(545, {table->name}, s.line);
    // A value too many, without a list of columns, is meant for the identity column.
    const auto widthError = [&](size_t given) {
        return identity >= 0 && given == columns.size() + 1
                   ? makeDbError(8101, {table->name}, s.line)
                   : makeDbError(213, {}, s.line);
    };

    std::vector<int> omitted;
    for (size_t i = 0; i < table->columns.size(); ++i)
        if (std::find(columns.begin(), columns.end(), static_cast<int>(i)) == columns.end())
            omitted.push_back(static_cast<int>(i));

    Lowerer lowerer(plan->parameters, &plan->applies);
    std::string names, omittedValues;
    std::vector<int> given;
    for (int c : columns) names += (names.empty() ? "" : ",") + sqliteName(table->columns[c].name);
    const auto omittedText = [&] {
        std::string text;
        for (int c : omitted) {
            const CatalogColumn& column = table->columns[c];
            if (c == identity && plan->givesIdentity) {
                text += ",t_identity()";
            } else if (!column.defaultSource.empty()) {
                text += "," + lowerer.expression(
                                  *binder.assign(columnDefault(binder, column), *table, column));
            } else {
                text += ",NULL";
            }
        }
        return text;
    };
    std::string allNames = names;
    for (int c : omitted)
        allNames += (allNames.empty() ? "" : ",") + sqliteName(table->columns[c].name);

    std::string& rows = plan->insertRows;
    if (s.defaultValues) {
        rows += "VALUES(" + omittedText().substr(1) + ")";
    } else if (s.query->body->kind == QueryBody::Values && s.query->orderBy.empty()) {
        rows += "VALUES";
        bool firstRow = true;
        for (const auto& row : s.query->body->rows) {
            if (row.size() != columns.size()) {
                if (s.columns.empty()) throw widthError(row.size());
                throw makeDbError(row.size() < columns.size() ? 109 : 110, {}, s.line);
            }
            rows += firstRow ? "(" : ",(";
            firstRow = false;
            for (size_t i = 0; i < row.size(); ++i) {
                const CatalogColumn& column = table->columns[columns[i]];
                BoundPtr v = row[i]->kind == ExprKind::Default ? columnDefault(binder, column)
                                                               : binder.bindValue(*row[i]);
                rows += (i ? "," : "") +
                        lowerer.expression(*binder.assign(std::move(v), *table, column));
            }
            rows += omittedText() + ")";
        }
    } else {
        auto q = binder.bindQuery(*s.query);
        if (q->columns.size() != columns.size()) {
            if (s.columns.empty()) throw widthError(q->columns.size());
            throw makeDbError(q->columns.size() < columns.size() ? 120 : 121, {}, s.line);
        }
        BoundSource source;
        source.alias = "s";
        source.columns = q->columns;
        std::string select;
        for (size_t i = 0; i < columns.size(); ++i) {
            auto ref = std::make_unique<BoundExpr>();
            ref->kind = BoundKind::Column;
            ref->source = &source;
            ref->column = static_cast<int>(i);
            ref->type = q->columns[i].type;
            select += (i ? "," : "") + lowerer.expression(*binder.assign(
                                           std::move(ref), *table, table->columns[columns[i]]));
        }
        select += omittedText();
        rows += "SELECT " + select + " FROM (" + lowerer.query(*q, true);
        rows += ") AS s WHERE true";
    }
    if (s.top)
        rows = "SELECT * FROM (" + rows + ") LIMIT " +
               lowerer.expression(*binder.rowLimit(*s.top, 127));
    plan->insertColumns = "(" + allNames + ")";
    plan->sql = "INSERT INTO " + table->sqlName + plan->insertColumns + " " + rows;
    for (const std::string& name : table->triggers)
        if (context_.catalog.findModule(name)->onInsert) plan->triggers.push_back(name);
    finish(binder, *plan);
    return plan;
}

// t_setvar hands its value on and leaves it in the variable.
BoundPtr Planner::setVariable(Binder& binder, const std::string& name, BoundPtr value, int line) {
    const int index = binder.assignsVariable(name, line);
    const SqlType from = value->type;
    std::vector<BoundPtr> args;
    args.push_back(std::move(value));
    return binder.op("t_setvar(" + std::to_string(index) + "," + std::to_string(packType(from)) +
                         "," + std::to_string(packType((*context_.variables)[index].type)) + ",$0)",
                     from, std::move(args));
}

BoundPtr Planner::setVariable(Binder& binder, const Assignment& a) {
    BoundPtr value = binder.bindValue(*a.value);
    if (!a.op.empty()) {
        Expr own(ExprKind::Variable, a.line);
        own.name.parts.push_back(a.variable);
        value = binder.arithmetic(a.op[0], binder.bindValue(own), std::move(value), a.line);
    }
    if (value->type.kind == SqlKind::Null)
        value = binder.convert(std::move(value), SqlType::of(SqlKind::Int));
    return setVariable(binder, a.variable, std::move(value), a.line);
}

// The rows of a statement, as its OUTPUT clause wants them.
std::unique_ptr<Plan> Planner::output(const Query& query) {
    auto plan = std::make_unique<Plan>();
    Binder binder(context_);
    auto q = binder.bindQuery(query);
    finish(binder, *plan);
    for (const BoundColumn& c : q->columns) {
        const bool untyped = c.type.kind == SqlKind::Null;
        plan->columns.push_back({c.name, untyped ? SqlType::of(SqlKind::Int) : c.type, c.nullable});
    }
    const std::string row = q->sources[0]->alias + ".rowid";
    if (q->sources.size() == 2)
        q->where = binder.op("(" + row + " = " + q->sources[1]->alias + ".rowid)",
                             SqlType::of(SqlKind::Bit), {});
    plan->sql = Lowerer(plan->parameters, &plan->applies).query(*q, false) + " ORDER BY " + row;
    return plan;
}

std::unique_ptr<Plan> Planner::update(const ChangeStatement& s) {
    auto plan = std::make_unique<Plan>();
    plan->writes = StatementKind::Update;
    Binder binder(context_);
    Binder::Target target = binder.bindTarget(s);
    const CatalogTable& table = *target.table;
    plan->target = target.table;

    std::vector<std::pair<std::string, BoundPtr>> sets;
    bool snapshot = !target.implicit || s.top;
    plan->stepwise = s.output != nullptr;
    for (const Assignment& a : s.assignments)
        if (!a.variable.empty()) binder.assignsVariable(a.variable, a.line);
    for (const Assignment& a : s.assignments) {
        if (a.column.empty()) {
            sets.emplace_back("", setVariable(binder, a));
            plan->stepwise = true;
            continue;
        }
        if (a.written.parts.size() > 1 && !binder.isNamed(*target.source, a.written))
            throw makeDbError(4104, {a.written.text()}, a.line);
        const int at = target.findColumn(a.column);
        if (at < 0) throw makeDbError(207, {a.column}, a.line);
        const CatalogColumn& column = table.columns[at];
        for (const auto& [name, value] : sets)
            if (name == sqliteName(column.name))
                throw DbError(264, 16, 1, a.line,
                              "The column name '" + column.name +
                                  "' is specified more than once in the SET clause or column list "
                                  "of an INSERT.");
        if (column.identity) throw makeDbError(8102, {column.name}, a.line);
        BoundPtr v;
        if (a.value->kind == ExprKind::Default) {
            v = columnDefault(binder, column);
        } else {
            v = binder.bindValue(*a.value);
        }
        if (!a.op.empty()) {
            auto old = std::make_unique<BoundExpr>();
            old->kind = BoundKind::Column;
            old->source = target.source;
            old->column = target.source->table ? at : -1;
            for (size_t i = 0; old->column < 0; ++i)
                if (sameName(target.source->columns[i].name, a.column))
                    old->column = static_cast<int>(i);
            old->type = column.type;
            v = binder.arithmetic(a.op[0], std::move(old), std::move(v), a.line);
        }
        v = binder.assign(std::move(v), table, column);
        if (!a.variable.empty()) v = setVariable(binder, a.variable, std::move(v), a.line);
        // What reads the table while it is changed must see it as it was.
        snapshot |= readsTables(*v);
        plan->assignedColumns.push_back(foldName(column.name));
        // Keys may collide on the way; see Executor::replaceRows.
        for (const CatalogKey& k : table.keys)
            for (const std::string& c : k.columns) snapshot |= sameName(c, column.name);
        sets.emplace_back(sqliteName(column.name), std::move(v));
    }
    // SQLite finds the rows before it changes any when the condition has a subquery, but not
    // when it calls a function.
    if (target.scope->where) snapshot |= target.scope->where->userFunction;
    for (const std::string& name : table.triggers)
        if (context_.catalog.findModule(name)->onUpdate) plan->triggers.push_back(name);

    Lowerer lowerer(plan->parameters, &plan->applies);
    if (!snapshot && plan->triggers.empty() && !plan->stepwise) {
        plan->sql = "UPDATE " + table.sqlName + " AS " + target.source->alias + " SET ";
        for (size_t i = 0; i < sets.size(); ++i)
            plan->sql +=
                (i ? ", " : "") + sets[i].first + " = " + lowerer.expression(*sets[i].second);
        if (target.scope->where) plan->sql += " WHERE " + lowerer.filter(*target.scope->where);
    } else {
        std::string inner = "SELECT " + target.rowid + " AS rid";
        std::string apply;
        for (size_t i = 0; i < sets.size(); ++i) {
            inner += ", " + lowerer.expression(*sets[i].second) + " AS c" + std::to_string(i);
            if (!sets[i].first.empty())
                apply += (apply.empty() ? "" : ", ") + sets[i].first + " = s.c" + std::to_string(i);
        }
        inner += " FROM " + lowerer.fromClause(*target.scope);
        std::string where;
        if (target.scope->where) where = lowerer.filter(*target.scope->where);
        // A row that an outer join made up is no row of the target.
        if (!target.implicit)
            where = (where.empty() ? "" : where + " AND ") + target.rowid + " IS NOT NULL";
        if (!where.empty()) inner += " WHERE " + where;
        if (s.top) inner += " LIMIT " + lowerer.expression(*binder.rowLimit(*s.top, 127));
        plan->collectSql = inner;
        plan->assignments = apply;
        plan->sql = plan->applySql("(" + inner + ")");
    }
    finish(binder, *plan);
    binder.closeTarget();
    return plan;
}

std::unique_ptr<Plan> Planner::remove(const ChangeStatement& s) {
    auto plan = std::make_unique<Plan>();
    plan->writes = StatementKind::Delete;
    Binder binder(context_);
    Binder::Target target = binder.bindTarget(s);
    const CatalogTable& table = *target.table;
    plan->target = target.table;
    for (const std::string& name : table.triggers)
        if (context_.catalog.findModule(name)->onDelete) plan->triggers.push_back(name);

    Lowerer lowerer(plan->parameters, &plan->applies);
    plan->stepwise = s.output != nullptr;
    const bool plain = target.implicit && !s.top && plan->triggers.empty() && !plan->stepwise &&
                       !(target.scope->where && target.scope->where->userFunction);
    if (plain) {
        plan->sql = "DELETE FROM " + table.sqlName + " AS " + target.source->alias;
        if (target.scope->where) plan->sql += " WHERE " + lowerer.filter(*target.scope->where);
    } else {
        std::string inner =
            "SELECT " + target.rowid + " AS rid FROM " + lowerer.fromClause(*target.scope);
        if (target.scope->where) inner += " WHERE " + lowerer.filter(*target.scope->where);
        if (s.top) inner += " LIMIT " + lowerer.expression(*binder.rowLimit(*s.top, 127));
        plan->collectSql = inner;
        plan->sql = plan->applySql("(" + inner + ")");
    }
    finish(binder, *plan);
    binder.closeTarget();
    return plan;
}

}  // namespace owb::tsql
