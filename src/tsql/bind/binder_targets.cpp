// What INSERT, UPDATE and DELETE write to: a table, or the table behind a view or common table.
#include <algorithm>

#include "base/utf8.h"
#include "tsql/bind/binder.h"
#include "tsql/bind/binder_scope.h"

namespace owb::tsql {

namespace {

// The column of a table that a column of a view or derived table stands for; null for a computed
// one.
const BoundSource* baseOf(const BoundSource& source, int column, int& baseColumn) {
    if (source.table) {
        baseColumn = column;
        return &source;
    }
    const BoundQuery& q = *source.query;
    if (q.kind != QueryBody::Select || column >= static_cast<int>(q.items.size())) return nullptr;
    const BoundExpr& e = *q.items[column].expr;
    return e.kind == BoundKind::Column ? baseOf(*e.source, e.column, baseColumn) : nullptr;
}

bool holds(const BoundSource& source, const BoundSource* base) {
    if (&source == base) return true;
    return source.query && std::any_of(source.query->sources.begin(), source.query->sources.end(),
                                       [&](const auto& s) { return holds(*s, base); });
}

// The row's number in the base table, handed out through every query around it.
std::string exposeRowid(BoundSource& source, const BoundSource* base) {
    if (&source == base) return source.alias + ".rowid";
    for (const auto& inner : source.query->sources) {
        if (!holds(*inner, base)) continue;
        BoundItem item;
        item.expr = std::make_unique<BoundExpr>();
        item.expr->pattern = exposeRowid(*inner, base);
        item.expr->type = SqlType::of(SqlKind::BigInt);
        source.query->items.push_back(std::move(item));
        break;
    }
    return source.alias + ".c" + std::to_string(source.query->items.size() - 1);
}

void requireWritable(const BoundSource& source, const std::string& name, int line) {
    if (source.table) {
        if (source.table->system) throw makeDbError(4406, {name}, line);
        return;
    }
    if (source.checkOption)
        throw makeDbError(15281, {"Writing through a view WITH CHECK OPTION"}, line);
    const BoundQuery& q = *source.query;
    if (q.kind != QueryBody::Select)
        throw DbError(4426, 16, 1, line,
                      "View '" + name +
                          "' is not updatable because the definition contains a UNION operator.");
    if (q.grouped || q.distinct)
        throw DbError(4403, 16, 1, line,
                      "Cannot update the view or function '" + name +
                          "' because it contains aggregates, or a DISTINCT or GROUP BY clause, or "
                          "PIVOT or UNPIVOT operator.");
}

int columnOf(const BoundSource& source, const std::string& name) {
    for (size_t i = 0; i < source.columns.size(); ++i)
        if (sameName(source.columns[i].name, name)) return static_cast<int>(i);
    return -1;
}

}  // namespace

int Binder::Target::findColumn(const std::string& name) const {
    const int at = columnOf(*source, name);
    if (at < 0) return -1;
    int column = -1;
    if (!baseOf(*source, at, column)) throw makeDbError(4406, {source->exposedName});
    return column;
}

Binder::Target Binder::bindTarget(const ChangeStatement& s) {
    Target target;
    target.scope = std::make_unique<BoundQuery>();
    pushWith(s.with);
    scopes_.push_back(std::make_unique<Scope>());
    BoundQuery& q = *target.scope;
    for (const TableRefPtr& ref : s.from) q.from.push_back(bindFrom(*ref, q));
    target.implicit = s.from.empty();
    if (!s.from.empty() && s.target.parts.size() == 1) {
        for (BoundSource* source : scopes_.back()->sources)
            if (sameName(source->exposedName, s.target.last())) target.source = source;
    }
    if (!target.source && !s.from.empty() && context_.catalog.isHere(s.target)) {
        for (BoundSource* source : scopes_.back()->sources)
            if (!source->tableName.empty() && sameName(source->tableName, s.target.last())) {
                if (target.source) throw makeDbError(8154, {s.target.last()}, s.line);
                target.source = source;
            }
    }
    if (!target.source) {
        TableRef ref;
        ref.name = s.target;
        ref.line = s.line;
        auto source = bindNamedTable(ref);
        target.source = source.get();
        q.from.push_back(addSource(q, std::move(source), s.line));
    }
    requireWritable(*target.source, s.target.last(), s.line);
    resolveTarget(s, target);
    if (s.condition) q.where = bindCondition(*s.condition);
    return target;
}

// An UPDATE writes the table that its columns belong to; a DELETE needs that there is one only.
void Binder::resolveTarget(const ChangeStatement& s, Target& target) {
    if (target.source->table) {
        target.table = target.source->table;
        target.rowid = target.source->alias + ".rowid";
        return;
    }
    target.implicit = false;
    const std::string& name = s.target.last();
    const BoundSource* base = nullptr;
    if (s.kind == StatementKind::Update) {
        for (const Assignment& a : s.assignments) {
            const int at = a.column.empty() ? 0 : columnOf(*target.source, a.column);
            if (at < 0) throw makeDbError(207, {a.column}, a.line);
            int column = -1;
            const BoundSource* its = baseOf(*target.source, at, column);
            if (!its) throw makeDbError(4406, {name}, a.line);
            if (base && its != base) throw makeDbError(4405, {name}, s.line);
            base = its;
        }
    } else {
        base = target.source;
        while (base->query) {
            if (base->query->sources.size() != 1) throw makeDbError(4405, {name}, s.line);
            base = base->query->sources[0].get();
            requireWritable(*base, name, s.line);
        }
    }
    target.table = base->table;
    if (target.table->system) throw makeDbError(4406, {name}, s.line);
    target.rowid = exposeRowid(*target.source, base);
}

Binder::InsertTarget Binder::bindInsertTarget(const Name& name, int line) {
    TableRef ref;
    ref.name = name;
    ref.line = line;
    const auto source = bindNamedTable(ref);
    requireWritable(*source, name.last(), line);
    InsertTarget target;
    const BoundSource* base = nullptr;
    for (size_t i = 0; i < source->columns.size(); ++i) {
        int column = -1;
        const BoundSource* its = baseOf(*source, static_cast<int>(i), column);
        if (!its) {
            column = -2;  // computed: an error if it is written
        } else {
            if (base && its != base) throw makeDbError(4405, {name.last()}, line);
            base = its;
        }
        target.columns.emplace_back(source->columns[i].name, column);
    }
    if (!base) throw makeDbError(4406, {name.last()}, line);
    requireWritable(*base, name.last(), line);
    target.table = base->table;
    return target;
}

int Binder::assignsVariable(const std::string& name, int line) {
    Expr v(ExprKind::Variable, line);
    v.name.parts.push_back(name);
    assignedVariables_.push_back(bindVariable(v)->index);
    return assignedVariables_.back();
}

}  // namespace owb::tsql
