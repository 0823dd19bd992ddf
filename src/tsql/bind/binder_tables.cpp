// What stands in FROM: tables, views, derived tables, table functions, joins.
#include <algorithm>
#include <array>

#include "base/utf8.h"
#include "tsql/bind/binder.h"
#include "tsql/bind/binder_scope.h"
#include "tsql/catalog/system_views.h"
#include "tsql/types/types.h"

namespace owb::tsql {

std::unique_ptr<BoundFrom> Binder::addSource(BoundQuery& q, std::unique_ptr<BoundSource> source,
                                             int line) {
    Scope& scope = *scopes_.back();
    for (const BoundSource* other : scope.sources)
        if (!source->exposedName.empty() && sameName(other->exposedName, source->exposedName))
            throw makeDbError(1013, {source->exposedName, other->exposedName}, line);
    scope.sources.push_back(source.get());
    auto from = std::make_unique<BoundFrom>();
    from->source = source.get();
    q.sources.push_back(std::move(source));
    return from;
}

std::unique_ptr<BoundFrom> Binder::bindFrom(const TableRef& ref, BoundQuery& q) {
    switch (ref.kind) {
        case TableRef::Table:
        case TableRef::Variable:
            return addSource(q, bindNamedTable(ref), ref.line);
        case TableRef::Function:
            return addSource(q, bindTableFunction(ref), ref.line);
        case TableRef::Derived: {
            // The body of a derived table does not see its neighbours in FROM.
            std::vector<BoundSource*> hidden;
            hidden.swap(scopes_.back()->sources);
            std::unique_ptr<BoundQuery> inner;
            try {
                inner = bindSubquery(*ref.query);
            } catch (...) {
                hidden.swap(scopes_.back()->sources);
                throw;
            }
            hidden.swap(scopes_.back()->sources);
            return addSource(
                q, derivedSource(std::move(inner), ref.alias, ref.columnAliases, ref.line),
                ref.line);
        }
        case TableRef::Join:
            break;
    }
    auto join = std::make_unique<BoundFrom>();
    join->join = ref.join;
    join->left = bindFrom(*ref.left, q);
    const bool apply = ref.join == JoinKind::CrossApply || ref.join == JoinKind::OuterApply;
    join->right = apply ? bindApplied(*ref.right, q) : bindFrom(*ref.right, q);
    if (ref.join != JoinKind::Inner && ref.join != JoinKind::Cross &&
        ref.join != JoinKind::CrossApply)
        scopes_.back()->outerJoined = true;
    if (ref.on) join->on = bindCondition(*ref.on);
    return join;
}

// The right side of an APPLY sees the tables on its left.
std::unique_ptr<BoundFrom> Binder::bindApplied(const TableRef& ref, BoundQuery& q) {
    if (ref.kind != TableRef::Derived && ref.kind != TableRef::Function) return bindFrom(ref, q);
    std::vector<const BoundSource*> outer;
    for (const auto& scope : scopes_)
        outer.insert(outer.end(), scope->sources.begin(), scope->sources.end());
    std::unique_ptr<BoundSource> source;
    if (ref.kind == TableRef::Derived) {
        source = derivedSource(bindSubquery(*ref.query), ref.alias, ref.columnAliases, ref.line);
    } else {
        ++applyDepth_;
        source = bindTableFunction(ref);
        --applyDepth_;
        if (source->table) return addSource(q, std::move(source), ref.line);
    }
    source->applied = true;
    for (size_t i = 0; i < source->columns.size(); ++i)
        source->columns[i].sqlName = "c" + std::to_string(i);
    source->outer = std::move(outer);
    return addSource(q, std::move(source), ref.line);
}

std::unique_ptr<BoundSource> Binder::tableSource(CatalogTablePtr table,
                                                 const std::string& exposed) {
    auto source = std::make_unique<BoundSource>();
    source->alias = newAlias();
    source->exposedName = exposed;
    source->tableName = table->name;
    for (const CatalogColumn& c : table->columns)
        source->columns.push_back({c.name, c.type, c.nullable, sqliteName(c.name)});
    source->table = std::move(table);
    return source;
}

std::unique_ptr<BoundSource> Binder::derivedSource(std::unique_ptr<BoundQuery> query,
                                                   const std::string& exposed,
                                                   const std::vector<std::string>& names,
                                                   int line) {
    auto source = std::make_unique<BoundSource>();
    source->alias = newAlias();
    source->exposedName = exposed;
    source->columns = query->columns;
    if (!names.empty()) {
        if (names.size() < source->columns.size()) throw makeDbError(8158, {exposed}, line);
        if (names.size() > source->columns.size()) throw makeDbError(8159, {exposed}, line);
        for (size_t i = 0; i < names.size(); ++i) source->columns[i].name = names[i];
    }
    if (exposed.empty()) {
        source->query = std::move(query);
        return source;
    }
    for (size_t i = 0; i < source->columns.size(); ++i) {
        const std::string& name = source->columns[i].name;
        if (name.empty()) throw makeDbError(8155, {std::to_string(i + 1), exposed}, line);
        for (size_t j = 0; j < i; ++j)
            if (sameName(source->columns[j].name, name))
                throw makeDbError(8156, {name, exposed}, line);
    }
    source->query = std::move(query);
    return source;
}

CatalogTablePtr Binder::systemView(const Name& name) const {
    if (!context_.catalog.isDatabaseHere(name)) return nullptr;
    return findSystemView(name.qualifier(), name.last());
}

std::unique_ptr<BoundSource> Binder::bindNamedTable(const TableRef& ref) {
    const std::string& name = ref.name.last();
    const std::string exposed = ref.alias.empty() ? name : ref.alias;
    const std::string folded = foldName(name);
    if (ref.name.parts.size() == 1) {
        for (size_t i = recursive_.size(); i-- > 0;) {
            if (recursive_[i].name != folded) continue;
            auto table = std::make_shared<CatalogTable>();
            table->name = name;
            table->sqlName = recursive_[i].sqlName;
            table->system = true;
            auto source = tableSource(table, exposed);
            source->columns = recursive_[i].columns;
            return source;
        }
        for (size_t i = with_.size(); i-- > 0;) {
            const CommonTable& common = *with_[i];
            if (foldName(common.name) != folded) continue;
            // Bound anew at each use, with only the common tables before it in sight.
            std::vector<const CommonTable*> visible(with_.begin(), with_.begin() + i);
            std::swap(with_, visible);
            std::vector<std::unique_ptr<Scope>> outer;
            std::swap(outer, scopes_);
            std::unique_ptr<BoundQuery> inner;
            const auto restore = [&] {
                std::swap(outer, scopes_);
                std::swap(with_, visible);
            };
            try {
                inner = bindRecursive(common, ref.line);
            } catch (...) {
                restore();
                throw;
            }
            restore();
            auto source = derivedSource(std::move(inner), exposed, common.columns, ref.line);
            source->tableName = name;
            return source;
        }
        if (context_.pseudoTables) {
            const auto pseudo = context_.pseudoTables->find(folded);
            if (pseudo != context_.pseudoTables->end()) return tableSource(pseudo->second, exposed);
        }
    }
    if (CatalogTablePtr system = systemView(ref.name)) return tableSource(system, exposed);
    if (CatalogTablePtr table = context_.catalog.findTable(ref.name)) {
        dependOn(*table);
        return tableSource(table, exposed);
    }
    if (CatalogModulePtr module = context_.catalog.findModule(ref.name)) {
        if (module->kind == ModuleKind::View) {
            dependencies_.push_back({module->name, true, module->signature});
            return bindView(*module, exposed);
        }
    }
    // Gone or not there yet: the plan must not outlive the object's coming.
    throw makeDbError(208, {ref.name.text()}, ref.line);
}

namespace {

bool namesTable(const TableRef& ref, const std::string& folded) {
    if (ref.kind == TableRef::Join)
        return namesTable(*ref.left, folded) || namesTable(*ref.right, folded);
    return ref.kind == TableRef::Table && ref.name.parts.size() == 1 &&
           foldName(ref.name.last()) == folded;
}

}  // namespace

// The query of a common table; one that reads itself in the second half of a UNION ALL recurs.
std::unique_ptr<BoundQuery> Binder::bindRecursive(const CommonTable& common, int line) {
    const QueryBody& body = *common.query->body;
    const std::string folded = foldName(common.name);
    const bool recurs = body.kind == QueryBody::UnionAll && body.right->kind == QueryBody::Select &&
                        std::any_of(body.right->from.begin(), body.right->from.end(),
                                    [&](const TableRefPtr& t) { return namesTable(*t, folded); });
    if (!recurs) return bindSubquery(*common.query);
    auto q = std::make_unique<BoundQuery>();
    q->kind = QueryBody::UnionAll;
    q->recursiveName = "r" + std::to_string(nextAlias_++);
    q->left = bindBody(*body.left, nullptr, nullptr);
    q->columns = q->left->columns;
    Recursive self{folded, q->recursiveName, q->columns};
    for (size_t i = 0; i < self.columns.size(); ++i) {
        if (i < common.columns.size()) self.columns[i].name = common.columns[i];
        self.columns[i].sqlName = "c" + std::to_string(i);
    }
    recursive_.push_back(std::move(self));
    try {
        q->right = bindBody(*body.right, nullptr, nullptr);
    } catch (...) {
        recursive_.pop_back();
        throw;
    }
    recursive_.pop_back();
    if (q->right->columns.size() != q->columns.size()) throw makeDbError(205, {}, line);
    std::vector<SqlType> types;
    for (size_t i = 0; i < q->columns.size(); ++i) {
        const SqlType& own = q->columns[i].type;
        const SqlType& step = q->right->columns[i].type;
        // Untyped NULLs aside, both parts must have the very same type.
        if (own.kind != step.kind && step.kind != SqlKind::Null)
            throw makeDbError(
                240,
                {i < common.columns.size() ? common.columns[i] : q->columns[i].name, common.name},
                line);
        types.push_back(own);
    }
    convertOutputs(*q->right, types);
    // Each row carries how deep it lies.
    for (const auto& source : q->right->sources)
        if (source->table && source->table->sqlName == q->recursiveName) {
            BoundItem depth;
            depth.expr =
                op("t_depth(" + source->alias + ".depth," + std::to_string(maxRecursion_) + ")",
                   SqlType::of(SqlKind::Int), {});
            q->right->items.push_back(std::move(depth));
            break;
        }
    return q;
}

// The body of a view or inline function: it sees nothing of the statement that uses it, but for the
// arguments of a function.
std::unique_ptr<BoundQuery> Binder::bindModuleBody(
    CatalogModule& module, const std::map<std::string, BoundPtr>* arguments) {
    if (viewDepth_ >= 32) throw makeDbError(217);
    ParsedBatch& parsed = context_.catalog.parsed(module);
    struct Outside {
        Binder& b;
        std::vector<std::unique_ptr<Scope>> scopes;
        std::vector<const CommonTable*> with;
        std::vector<LiteralSlot>* literals = b.context_.literals;
        const std::vector<std::vector<std::string>>* stars = b.fixedStars_;
        std::vector<std::vector<std::string>>* record = b.recordStars;
        const std::map<std::string, BoundPtr>* parameters = b.parameters_;
        size_t star = b.nextStar_;

        explicit Outside(Binder& binder) : b(binder) {
            std::swap(scopes, b.scopes_);
            std::swap(with, b.with_);
            ++b.viewDepth_;
        }
        ~Outside() {
            --b.viewDepth_;
            std::swap(scopes, b.scopes_);
            std::swap(with, b.with_);
            b.context_.literals = literals;
            b.fixedStars_ = stars;
            b.recordStars = record;
            b.parameters_ = parameters;
            b.nextStar_ = star;
        }
    } outside(*this);
    context_.literals = &parsed.ast.literals;
    recordStars = nullptr;
    parameters_ = arguments;
    fixedStars_ = arguments ? nullptr : &module.stars;
    if (!arguments) nextStar_ = 0;
    return bindSubquery(*parsed.definition->query);
}

std::unique_ptr<BoundSource> Binder::bindView(CatalogModule& view, const std::string& exposed) {
    const ModuleDefinition& definition = *context_.catalog.parsed(view).definition;
    auto source = derivedSource(bindModuleBody(view, nullptr), exposed, definition.viewColumns, 0);
    source->tableName = view.name;
    source->checkOption = definition.checkOption;
    return source;
}

// --- functions in FROM ---

// A parameter's default: its literals are those of the module's text.
BoundPtr Binder::defaultArgument(CatalogModule& module, const Parameter& p) {
    if (!p.defaultValue) return null(p.type);
    BindContext context{context_.catalog};
    context.literals = &context_.catalog.parsed(module).ast.literals;
    Binder binder(context);
    binder.viewDepth_ = 1;
    return binder.bindValue(*p.defaultValue);
}

// By the parameters' folded names, converted to their types.
std::map<std::string, BoundPtr> Binder::bindArguments(const TableRef& ref, CatalogModule& module) {
    const ModuleDefinition& definition = *context_.catalog.parsed(module).definition;
    if (ref.args.size() > definition.parameters.size())
        throw makeDbError(8144, {ref.name.text()}, ref.line);
    std::map<std::string, BoundPtr> arguments;
    for (size_t i = 0; i < definition.parameters.size(); ++i) {
        const Parameter& p = definition.parameters[i];
        BoundPtr value;
        if (i < ref.args.size() && ref.args[i]->kind != ExprKind::Default) {
            value = bindValue(*ref.args[i]);
        } else {
            if (i >= ref.args.size())
                throw DbError(313, 16, 3, ref.line,
                              "An insufficient number of arguments were supplied for the procedure "
                              "or function " +
                                  ref.name.text() + ".");
            value = defaultArgument(module, p);
        }
        arguments[foldName(p.name)] = convert(std::move(value), p.type);
    }
    return arguments;
}

std::unique_ptr<BoundSource> Binder::bindTableFunction(const TableRef& ref) {
    CatalogModulePtr module = context_.catalog.findModule(ref.name);
    if (!module ||
        (module->kind != ModuleKind::InlineFunction && module->kind != ModuleKind::TableFunction))
        throw makeDbError(208, {ref.name.text()}, ref.line);
    dependencies_.push_back({module->name, true, module->signature});
    const ModuleDefinition& definition = *context_.catalog.parsed(*module).definition;
    std::map<std::string, BoundPtr> arguments = bindArguments(ref, *module);
    const std::string& exposed = ref.alias.empty() ? ref.name.last() : ref.alias;
    if (module->kind == ModuleKind::InlineFunction)
        return derivedSource(bindModuleBody(*module, &arguments), exposed, ref.columnAliases,
                             ref.line);
    const bool constant = std::all_of(arguments.begin(), arguments.end(),
                                      [](const auto& a) { return a.second->isConstant(); });
    if (!constant && applyDepth_ == 0)
        throw makeDbError(15281, {"A table function whose argument is no constant"}, ref.line);
    std::vector<BoundPtr> inOrder;
    for (const Parameter& p : definition.parameters)
        inOrder.push_back(std::move(arguments[foldName(p.name)]));
    return constant ? calledBefore(*module, definition, std::move(inOrder), exposed)
                    : calledForRows(*module, definition, std::move(inOrder), exposed);
}

// A function of several statements on the right side of an APPLY: called for each row on the left.
std::unique_ptr<BoundSource> Binder::calledForRows(const CatalogModule& module,
                                                   const ModuleDefinition& definition,
                                                   std::vector<BoundPtr> arguments,
                                                   const std::string& exposed) {
    auto source = std::make_unique<BoundSource>();
    source->alias = newAlias();
    source->exposedName = exposed;
    source->tableName = module.name;
    source->applyArguments = std::move(arguments);
    for (const ColumnDefinition& c : definition.returnsColumns)
        source->columns.push_back({c.name, c.type, c.nullable.value_or(true),
                                   "c" + std::to_string(source->columns.size())});
    return source;
}

// Called once, before the statement: its rows come into a table.
std::unique_ptr<BoundSource> Binder::calledBefore(const CatalogModule& module,
                                                  const ModuleDefinition& definition,
                                                  std::vector<BoundPtr> arguments,
                                                  const std::string& exposed) {
    TableCall call;
    call.function = module.name;
    call.arguments = std::move(arguments);
    call.sqlName = "temp." + sqliteName("rows of " + foldName(module.name) + "~" +
                                        std::to_string(tableCalls.size()));
    auto table = std::make_shared<CatalogTable>();
    table->name = module.name;
    table->sqlName = call.sqlName;
    table->system = true;
    for (const ColumnDefinition& c : definition.returnsColumns) {
        CatalogColumn column;
        column.name = c.name;
        column.type = c.type;
        column.nullable = c.nullable.value_or(true);
        table->columns.push_back(std::move(column));
    }
    tableCalls.push_back(std::move(call));
    return tableSource(table, exposed);
}

}  // namespace owb::tsql
