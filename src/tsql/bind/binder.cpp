// Expressions: columns, operators, conditions, conversions.
#include "tsql/bind/binder.h"

#include <algorithm>

#include "base/utf8.h"
#include "tsql/bind/binder_scope.h"
#include "tsql/types/types.h"

namespace owb::tsql {

namespace {

int nodesOf(const BoundExpr& e) {
    int nodes = 1;
    for (const BoundPtr& a : e.args) nodes += nodesOf(*a);
    return nodes;
}

const SqlType kInt = SqlType::of(SqlKind::Int);

}  // namespace

Binder::Binder(BindContext& context) : TypedExpressions(context) {}
Binder::~Binder() = default;

void Binder::dependOn(const CatalogTable& table) {
    if (!table.system) dependencies_.push_back({table.name, false, table.signature});
}

BoundPtr Binder::bindValue(const Expr& e) {
    BoundPtr bound = bind(e);
    if (bound->predicate) throw makeDbError(102, {e.op.empty() ? "=" : e.op}, e.line);
    return bound;
}

BoundPtr Binder::bindCondition(const Expr& e) {
    BoundPtr bound = bind(e);
    if (!bound->predicate)
        throw DbError(4145, 15, 1, e.line,
                      "An expression of non-boolean type specified in a context where a condition "
                      "is expected.");
    return bound;
}

const Value* Binder::fixedLiteral(const Expr& e) {
    if (e.kind != ExprKind::Literal) return nullptr;
    LiteralSlot& slot = (*context_.literals)[e.literal];
    slot.fixed = true;
    return &slot.value;
}

void Binder::spend(int nodes) {
    if ((spent_ += nodes) > 500000) throw makeDbError(8623);
}

BoundPtr Binder::bind(const Expr& e) {
    spend(1);
    try {
        switch (e.kind) {
            case ExprKind::Literal:
                return bindLiteral(e);
            case ExprKind::Null:
                return null();
            case ExprKind::Column:
                return bindColumn(e);
            case ExprKind::Star:
                throw makeDbError(102, {"*"}, e.line);
            case ExprKind::Variable:
                return bindVariable(e);
            case ExprKind::SystemVariable:
                return bindSystemVariable(e);
            case ExprKind::Unary:
                return bindUnary(e);
            case ExprKind::Binary:
                return bindBinary(e);
            case ExprKind::Case:
                return bindCase(e);
            case ExprKind::Function:
                return bindFunction(e);
            case ExprKind::Cast:
                return bindCast(e);
            case ExprKind::Subquery:
                return scalarQuery(*e.query, e.line);
            case ExprKind::Default:
                throw makeDbError(156, {"DEFAULT"}, e.line);
            default:
                return bindPredicate(e);
        }
    } catch (DbError& error) {
        if (error.line == 0) error.line = e.line;
        throw;
    }
}

BoundPtr Binder::bindLiteral(const Expr& e) {
    LiteralSlot& slot = (*context_.literals)[e.literal];
    // In the body of a view or function a literal is a constant of that body.
    if (viewDepth_ > 0) return constant(slot.value, slot.type);
    auto b = std::make_unique<BoundExpr>();
    b->kind = BoundKind::Literal;
    b->index = e.literal;
    b->type = b->sourceType = slot.type;
    b->nullable = false;
    // Its places shape the plan, unless it goes straight into a column.
    if (slot.type.kind == SqlKind::Numeric) slot.typeFixed = true;
    return b;
}

BoundPtr Binder::bindUnary(const Expr& e) {
    BoundPtr a = bindValue(*e.args[0]);
    if (a->type.kind == SqlKind::Null) a = convert(std::move(a), kInt);
    SqlType type = a->type;
    const bool minus = e.op == "-";
    if (!(minus ? type.isNumber() && type.kind != SqlKind::Bit : type.isInteger()))
        throw makeDbError(8117, {type.name(), minus ? "minus" : "'~'"}, e.line);
    if (!minus)
        return op(type.kind == SqlKind::Bit       ? "(1 - $0)"
                  : type.kind == SqlKind::TinyInt ? "(255 & ~$0)"
                                                  : "(~$0)",
                  type, list(std::move(a)));
    if (a->kind == BoundKind::Literal && a->index >= 0 && type == a->sourceType) {
        a->negated = !a->negated;
        return a;
    }
    if (type.kind == SqlKind::TinyInt) type = SqlType::of(SqlKind::SmallInt);
    return op(isWide(type) ? "t_neg($0)" : "(-$0)", type, list(std::move(a)));
}

BoundPtr Binder::bindCast(const Expr& e) {
    BoundPtr a = bindValue(*e.args[0]);
    requireConversion(a->type, e.type, true);
    int style = -1;
    if (e.args.size() > 1) {
        const Value* v = fixedLiteral(*e.args[1]);
        if (!v) return castByStyle(std::move(a), e);
        style = static_cast<int>(v->toInt());
    }
    return cast(std::move(a), e.type, style, e.tryCast, true);
}

bool Binder::isNamed(const BoundSource& source, const Name& column) const {
    if (!sameName(source.exposedName, column.qualifier())) return false;
    if (column.parts.size() < 3) return true;
    Name table = column;
    table.parts.pop_back();
    return sameName(source.exposedName, source.tableName) && context_.catalog.isHere(table);
}

BoundPtr Binder::bindColumn(const Expr& e) {
    const std::string& column = e.name.last();
    const std::string qualifier = e.name.qualifier();
    bool qualifierSeen = false;
    for (auto it = scopes_.rbegin(); it != scopes_.rend(); ++it) {
        Scope& scope = **it;
        BoundSource* found = nullptr;
        int at = -1;
        for (BoundSource* source : scope.sources) {
            if (!qualifier.empty() && !isNamed(*source, e.name)) continue;
            qualifierSeen |= !qualifier.empty();
            for (size_t i = 0; i < source->columns.size(); ++i) {
                const std::string& name = source->columns[i].name;
                if (!equalsIgnoreCaseAscii(name, column) && foldName(name) != foldName(column))
                    continue;
                if (found) throw makeDbError(209, {column}, e.line);
                found = source;
                at = static_cast<int>(i);
            }
        }
        if (found) {
            auto b = std::make_unique<BoundExpr>();
            b->kind = BoundKind::Column;
            b->source = found;
            b->column = at;
            b->type = found->columns[at].type;
            b->nullable = found->columns[at].nullable || scope.outerJoined;
            b->name = found->columns[at].name;
            return b;
        }
        if (qualifierSeen) break;
    }
    if (!qualifier.empty() && !qualifierSeen) throw makeDbError(4104, {e.name.text()}, e.line);
    throw makeDbError(207, {column}, e.line);
}

BoundPtr Binder::bindVariable(const Expr& e) {
    const std::string& name = e.name.last();
    if (parameters_) {
        const auto found = parameters_->find(foldName(name));
        if (found != parameters_->end()) {
            spend(nodesOf(*found->second));
            return cloneBound(*found->second);
        }
        throw makeDbError(137, {name}, e.line);
    }
    if (context_.variables && viewDepth_ == 0) {
        for (size_t i = 0; i < context_.variables->size(); ++i) {
            const VariableInfo& v = (*context_.variables)[i];
            if (foldName(v.name) != foldName(name)) continue;
            auto b = std::make_unique<BoundExpr>();
            const bool live = std::find(assignedVariables_.begin(), assignedVariables_.end(),
                                        static_cast<int>(i)) != assignedVariables_.end();
            b->kind = live ? BoundKind::LiveVariable : BoundKind::Variable;
            b->index = static_cast<int>(i);
            b->type = b->sourceType = v.type;
            return b;
        }
    }
    throw makeDbError(137, {name}, e.line);
}

BoundPtr Binder::bindSystemVariable(const Expr& e) {
    const std::string name = upperCase(e.name.last());
    static const struct {
        const char* name;
        SqlKind kind;
    } known[] = {{"@@ROWCOUNT", SqlKind::Int},      {"@@ERROR", SqlKind::Int},
                 {"@@TRANCOUNT", SqlKind::Int},     {"@@FETCH_STATUS", SqlKind::Int},
                 {"@@NESTLEVEL", SqlKind::Int},     {"@@SPID", SqlKind::Int},
                 {"@@DATEFIRST", SqlKind::TinyInt}, {"@@LOCK_TIMEOUT", SqlKind::Int}};
    for (const auto& k : known)
        if (name == k.name)
            return op("t_system('" + name.substr(2) + "')", SqlType::of(k.kind), {});
    if (name == "@@IDENTITY") return op("t_system('IDENTITY')", SqlType::numeric(38, 0), {});
    if (name == "@@VERSION" || name == "@@SERVERNAME")
        return op("t_system('" + name.substr(2) + "')", SqlType::text(SqlKind::NVarChar, 300), {});
    throw makeDbError(137, {e.name.last()}, e.line);
}

BoundPtr Binder::bindBinary(const Expr& e) {
    // A long chain such as a + b + c leans to the left: walked, not recursed into.
    std::vector<const Expr*> chain;
    const Expr* first = &e;
    while (first->kind == ExprKind::Binary) {
        chain.push_back(first);
        first = first->args[0].get();
    }
    BoundPtr left = bindValue(*first);
    for (auto it = chain.rbegin(); it != chain.rend(); ++it) {
        const Expr& b = **it;
        BoundPtr right = bindValue(*b.args[1]);
        left = arithmetic(b.op[0], std::move(left), std::move(right), b.line);
    }
    return left;
}

// A chain of AND or OR leans to the left: walked, not recursed into.
BoundPtr Binder::bindChain(const Expr& e) {
    const char* pattern = e.kind == ExprKind::And ? "($0 AND $1)" : "($0 OR $1)";
    std::vector<const Expr*> chain;
    const Expr* first = &e;
    while (first->kind == e.kind) {
        chain.push_back(first);
        first = first->args[0].get();
    }
    BoundPtr left = bindCondition(*first);
    for (auto it = chain.rbegin(); it != chain.rend(); ++it)
        left = predicate(pattern, list(std::move(left), bindCondition(*(*it)->args[1])));
    return left;
}

// One common type lets SQLite's own BETWEEN use an index; bounds of another kind compare each in
// their own type.
BoundPtr Binder::bindBetween(const Expr& e) {
    BoundPtr a = bindValue(*e.args[0]);
    BoundPtr low = bindValue(*e.args[1]);
    BoundPtr high = bindValue(*e.args[2]);
    const SqlType type = unify({&a, &low, &high});
    std::string pattern = type.isText()  ? "($0 COLLATE TSQL BETWEEN $1 AND $2)"
                          : isWide(type) ? "(t_ncmp($0,$1) >= 0 AND t_ncmp($0,$2) <= 0)"
                                         : "($0 BETWEEN $1 AND $2)";
    if (e.negated) pattern = "(NOT " + pattern + ")";
    return predicate(pattern, list(std::move(a), std::move(low), std::move(high)));
}

BoundPtr Binder::bindLike(const Expr& e) {
    Args args;
    for (const ExprPtr& a : e.args) {
        BoundPtr v = bindValue(*a);
        if (!v->type.isText()) v = convert(std::move(v), SqlType::text(SqlKind::VarChar, 8000));
        args.push_back(std::move(v));
    }
    std::string pattern = args.size() == 3 ? "t_like($1,$0,$2)" : "t_like($1,$0)";
    if (e.negated) pattern = "(NOT " + pattern + ")";
    return predicate(pattern, std::move(args));
}

BoundPtr Binder::bindPredicate(const Expr& e) {
    switch (e.kind) {
        case ExprKind::And:
        case ExprKind::Or:
            return bindChain(e);
        case ExprKind::Not:
            return predicate("(NOT $0)", list(bindCondition(*e.args[0])));
        case ExprKind::Compare: {
            BoundPtr a = bindValue(*e.args[0]);
            return compare(e.op, std::move(a), bindValue(*e.args[1]));
        }
        case ExprKind::IsNull:
            return predicate(e.negated ? "($0 IS NOT NULL)" : "($0 IS NULL)",
                             list(bindValue(*e.args[0])));
        case ExprKind::Between:
            return bindBetween(e);
        case ExprKind::InList:
            return bindInList(e);
        case ExprKind::InQuery:
            return bindInQuery(e);
        case ExprKind::Exists:
            return subqueryPredicate(BoundKind::ExistsQuery, bindSubquery(*e.query), false);
        case ExprKind::Quantified:
            return bindQuantified(e);
        case ExprKind::Like:
            return bindLike(e);
        default:
            throw makeDbError(102, {"?"}, e.line);
    }
}

BoundPtr Binder::bindCase(const Expr& e) {
    ++conditional_;
    std::vector<BoundPtr> conditions, results;
    size_t at = 0;
    const Expr* operand = nullptr;
    if (e.hasOperand) operand = e.args[at++].get();
    const size_t end = e.args.size() - (e.hasElse ? 1 : 0);
    for (; at < end; at += 2) {
        if (operand)
            conditions.push_back(compare("=", bindValue(*operand), bindValue(*e.args[at])));
        else
            conditions.push_back(bindCondition(*e.args[at]));
        results.push_back(bindValue(*e.args[at + 1]));
    }
    if (e.hasElse) results.push_back(bindValue(*e.args.back()));
    std::vector<BoundPtr*> all;
    bool nullable = !e.hasElse;
    for (BoundPtr& r : results) {
        all.push_back(&r);
        nullable |= r->nullable;
    }
    if (std::all_of(results.begin(), results.end(),
                    [](const BoundPtr& r) { return r->type.kind == SqlKind::Null; }))
        throw makeDbError(8133, {}, e.line);
    const SqlType type = unify(all);
    --conditional_;
    std::string pattern = "CASE";
    std::vector<BoundPtr> args;
    for (size_t i = 0; i < conditions.size(); ++i) {
        pattern += " WHEN $" + std::to_string(args.size()) + ";";
        args.push_back(std::move(conditions[i]));
        pattern += " THEN $" + std::to_string(args.size()) + ";";
        args.push_back(std::move(results[i]));
    }
    if (e.hasElse) {
        pattern += " ELSE $" + std::to_string(args.size()) + ";";
        args.push_back(std::move(results.back()));
    }
    BoundPtr c = op("(" + pattern + " END)", type, std::move(args));
    c->nullable = nullable;
    return c;
}

// CONVERT with a style that only the run knows; NULL for a style gives NULL.
BoundPtr Binder::castByStyle(BoundPtr value, const Expr& e) {
    const std::string types =
        std::to_string(packType(value->type)) + "," + std::to_string(packType(e.type));
    return op(std::string("(CASE WHEN $1 IS NOT NULL THEN t_") + (e.tryCast ? "try" : "") +
                  "cv($0," + types + ",$1) END)",
              e.type, list(std::move(value), convert(bindValue(*e.args[1]), kInt)));
}

}  // namespace owb::tsql
