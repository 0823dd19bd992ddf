// Expressions: columns, operators, conditions, conversions.
#include "tsql/bind/binder.h"

#include <algorithm>

#include "base/utf8.h"
#include "tsql/bind/binder_scope.h"
#include "tsql/types/types.h"

namespace owb::tsql {

namespace {

// The length of a text with literals in it is that of this run alone.
bool hasTextLiteral(const BoundExpr& e) {
    if (e.kind == BoundKind::Literal && e.index >= 0 && e.type.isText()) return true;
    return std::any_of(e.args.begin(), e.args.end(),
                       [](const BoundPtr& a) { return hasTextLiteral(*a); });
}

std::string powerText(int n) {
    return Decimal(powerOfTen(n), 0).toText();
}

int nodesOf(const BoundExpr& e) {
    int nodes = 1;
    for (const BoundPtr& a : e.args) nodes += nodesOf(*a);
    return nodes;
}

bool isWide(const SqlType& t) {
    return t.kind == SqlKind::Numeric && t.precision > kNarrowPrecision;
}

const SqlType kInt = SqlType::of(SqlKind::Int);

}  // namespace

Binder::Binder(BindContext& context) : context_(context) {}
Binder::~Binder() = default;

BoundPtr Binder::op(std::string pattern, SqlType type, std::vector<BoundPtr> args) {
    auto e = std::make_unique<BoundExpr>();
    e->pattern = std::move(pattern);
    e->type = type;
    e->args = std::move(args);
    for (const BoundPtr& a : e->args) e->userFunction |= a->userFunction;
    return e;
}

BoundPtr Binder::verbatim(std::string sql, SqlType type) {
    auto e = std::make_unique<BoundExpr>();
    e->kind = BoundKind::Verbatim;
    e->pattern = std::move(sql);
    e->type = type;
    return e;
}

BoundPtr Binder::constant(Value value, SqlType type) {
    auto e = std::make_unique<BoundExpr>();
    e->kind = value.isNull() ? BoundKind::Null : BoundKind::Literal;
    e->type = e->sourceType = type;
    e->nullable = value.isNull();
    e->constant = std::move(value);
    return e;
}

BoundPtr Binder::null(SqlType type) {
    auto e = std::make_unique<BoundExpr>();
    e->kind = BoundKind::Null;
    e->type = type;
    return e;
}

namespace {

template <class... A>
std::vector<BoundPtr> list(A... a) {
    std::vector<BoundPtr> v;
    (v.push_back(std::move(a)), ...);
    return v;
}

}  // namespace

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
            case ExprKind::Literal: {
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
            case ExprKind::Unary: {
                BoundPtr a = bindValue(*e.args[0]);
                if (a->type.kind == SqlKind::Null) a = convert(std::move(a), kInt);
                const bool minus = e.op == "-";
                if (!(minus ? a->type.isNumber() && a->type.kind != SqlKind::Bit
                            : a->type.isInteger()))
                    throw makeDbError(8117, {a->type.name(), minus ? "minus" : "'~'"}, e.line);
                if (minus && a->kind == BoundKind::Literal && a->index >= 0 &&
                    a->type == a->sourceType && a->type.isNumber()) {
                    a->negated = !a->negated;
                    return a;
                }
                SqlType type = a->type;
                if (!minus)
                    return op(type.kind == SqlKind::Bit       ? "(1 - $0)"
                              : type.kind == SqlKind::TinyInt ? "(255 & ~$0)"
                                                              : "(~$0)",
                              type, list(std::move(a)));
                if (type.kind == SqlKind::TinyInt) type = SqlType::of(SqlKind::SmallInt);
                if (isWide(type)) return op("t_neg($0)", type, list(std::move(a)));
                return op("(-$0)", type, list(std::move(a)));
            }
            case ExprKind::Binary:
                return bindBinary(e);
            case ExprKind::Case:
                return bindCase(e);
            case ExprKind::Function:
                return bindFunction(e);
            case ExprKind::Cast: {
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

BoundPtr Binder::plus(BoundPtr a, BoundPtr b) {
    SqlType type = commonType(a->type, b->type);
    const auto length = [](const BoundExpr& e) {
        return e.type.kind == SqlKind::Null ? 1 : e.type.length;
    };
    const int limit = type.isUnicode() ? 4000 : 8000;
    if (length(*a) == SqlType::kMax || length(*b) == SqlType::kMax)
        type.length = SqlType::kMax;
    else
        type.length = std::min(limit, length(*a) + length(*b));
    type.kind = type.isUnicode() ? SqlKind::NVarChar : SqlKind::VarChar;
    return op("($0 || $1)", type, list(std::move(a), std::move(b)));
}

// A whole-number literal counts with its own digits, not with those of int.
SqlType Binder::operandNumeric(const BoundExpr& e) const {
    if (e.kind != BoundKind::Literal || e.type.kind != SqlKind::Int || !(e.type == e.sourceType))
        return asNumeric(e.type);
    if (e.index >= 0) (*context_.literals)[e.index].typeFixed = true;
    const Value& v = e.index < 0 ? e.constant : (*context_.literals)[e.index].value;
    return SqlType::numeric(v.isInt() ? Decimal::fromInt(v.asInt()).digits() : 10, 0);
}

BoundPtr Binder::arithmetic(char o, BoundPtr a, BoundPtr b, int line) {
    if (o == '&' || o == '|' || o == '^') {
        for (BoundPtr* x : {&a, &b})
            if (!(*x)->type.isInteger()) {
                if ((*x)->type.kind != SqlKind::Null)
                    throw makeDbError(
                        402, {a->type.name(), b->type.name(), std::string("'") + o + "'"}, line);
                *x = convert(std::move(*x), kInt);
            }
        const SqlType type = commonType(a->type, b->type);
        if (o == '^') return op("(($0 | $1) - ($0 & $1))", type, list(std::move(a), std::move(b)));
        return op(std::string("($0 ") + o + " $1)", type, list(std::move(a), std::move(b)));
    }
    if (o == '+') {
        const bool text = (a->type.isText() || a->type.kind == SqlKind::Null) &&
                          (b->type.isText() || b->type.kind == SqlKind::Null) &&
                          (a->type.isText() || b->type.isText());
        if (text) return plus(std::move(a), std::move(b));
    }
    SqlType type = arithmeticType(o, a->type, b->type);
    if (type.isDate()) {
        // A text beside a date is a date; a number is a count of days.
        for (BoundPtr* x : {&a, &b})
            if (!(*x)->type.isNumber())
                *x = convert(std::move(*x), type);
            else if ((*x)->type.isDecimal())
                *x = convert(std::move(*x), SqlType::of(SqlKind::Float));
        BoundPtr sum = op(std::string("t_date($0 ") + o + " $1)", SqlType::of(SqlKind::DateTime),
                          list(std::move(a), std::move(b)));
        return convert(std::move(sum), type);
    }
    if (type.isFloating()) {
        a = convert(std::move(a), type);
        b = convert(std::move(b), type);
        BoundPtr r = op(o == '/' ? "t_fdiv($0,$1)" : std::string("t_float($0 ") + o + " $1)",
                        SqlType::of(SqlKind::Float), list(std::move(a), std::move(b)));
        return convert(std::move(r), type);
    }
    if (type.isMoney()) {
        a = convert(std::move(a), type);
        b = convert(std::move(b), type);
        return op(std::string("t_money('") + o + "',$0,$1," +
                      std::to_string(static_cast<int>(type.kind)) + ")",
                  type, list(std::move(a), std::move(b)));
    }
    if (type.kind != SqlKind::Numeric) {  // whole numbers
        a = convert(std::move(a), type);
        b = convert(std::move(b), type);
        if (o == '/') return op("t_idiv($0,$1)", type, list(std::move(a), std::move(b)));
        if (o == '%') return op("t_imod($0,$1)", type, list(std::move(a), std::move(b)));
        const std::string kind = std::to_string(static_cast<int>(type.kind));
        if (type.kind == SqlKind::BigInt)
            return op(std::string("t_big('") + o + "',$0,$1)", type,
                      list(std::move(a), std::move(b)));
        const std::string check = "t_int($0," + kind + ")";
        const SqlType whole = SqlType::of(SqlKind::BigInt);
        // In a chain the last sum is checked: the ones before it cannot leave 64 bits unseen.
        if (a->kind == BoundKind::Op && a->pattern == check && a->args[0]->pattern[4] != '*' &&
            o != '*')
            a = std::move(a->args[0]);
        BoundPtr sum =
            op(std::string("($0 ") + o + " $1)", whole, list(std::move(a), std::move(b)));
        return op(check, type, list(std::move(sum)));
    }
    // numeric: text and NULL take the other side's type first
    for (BoundPtr* x : {&a, &b})
        if (!(*x)->type.isNumber())
            *x = convert(std::move(*x), asNumeric(x == &a ? b->type : a->type));
    const SqlType ta = operandNumeric(*a), tb = operandNumeric(*b);
    type = arithmeticType(o, ta, tb);
    const bool narrow = ta.precision <= kNarrowPrecision && tb.precision <= kNarrowPrecision;
    const auto scaled = [&](BoundPtr x, const SqlType& t) {
        x = convert(std::move(x), t);
        if (t.scale == type.scale) return x;
        return op("($0 * " + powerText(type.scale - t.scale) + ")", type, list(std::move(x)));
    };
    const bool fits = narrow && ta.precision + type.scale - ta.scale <= kNarrowPrecision &&
                      tb.precision + type.scale - tb.scale <= kNarrowPrecision;
    if ((o == '+' || o == '-') && fits && type.scale >= ta.scale && type.scale >= tb.scale) {
        BoundPtr x = scaled(std::move(a), ta), y = scaled(std::move(b), tb);
        return op(std::string("($0 ") + o + " $1)", type, list(std::move(x), std::move(y)));
    }
    a = convert(std::move(a), ta);
    b = convert(std::move(b), tb);
    if (o == '*' && ta.precision + tb.precision <= kNarrowPrecision &&
        type.scale == ta.scale + tb.scale)
        return op("($0 * $1)", type, list(std::move(a), std::move(b)));
    if (o == '+' || o == '-') {
        // A chain of sums is one call: nested ones would be too deep for SQLite's parser.
        const std::string term = std::to_string(tb.scale) + "," + (o == '+' ? "1)" : "-1)");
        const std::string head = "t_total(" + std::to_string(type.scale);
        if (a->kind == BoundKind::Op && a->pattern.starts_with("t_total(") && a->args.size() < 40) {
            const size_t comma = a->pattern.find(',');
            a->pattern = head + a->pattern.substr(comma, a->pattern.size() - comma - 1) + ",$" +
                         std::to_string(a->args.size()) + ";," + term;
            a->userFunction |= b->userFunction;
            a->args.push_back(std::move(b));
            a->type = type;
            return a;
        }
        return op(head + ",$0," + std::to_string(ta.scale) + ",1,$1," + term, type,
                  list(std::move(a), std::move(b)));
    }
    return op(std::string("t_num('") + o + "',$0," + std::to_string(ta.scale) + ",$1," +
                  std::to_string(tb.scale) + "," + std::to_string(type.scale) + ")",
              type, list(std::move(a), std::move(b)));
}

SqlType Binder::unify(const std::vector<BoundPtr*>& values) {
    SqlType type;
    for (BoundPtr* v : values) type = commonType(type, (*v)->type);
    if (type.kind == SqlKind::Null) type = kInt;
    for (BoundPtr* v : values) *v = convert(std::move(*v), type);
    return type;
}

BoundPtr Binder::compare(const std::string& o, BoundPtr a, BoundPtr b) {
    const SqlType type = unify({&a, &b});
    BoundPtr e;
    if (type.isText())
        e = op("($0 COLLATE TSQL " + o + " $1)", SqlType::of(SqlKind::Bit),
               list(std::move(a), std::move(b)));
    else if (isWide(type))
        e = op("(t_ncmp($0,$1) " + o + " 0)", SqlType::of(SqlKind::Bit),
               list(std::move(a), std::move(b)));
    else
        e = op("($0 " + o + " $1)", SqlType::of(SqlKind::Bit), list(std::move(a), std::move(b)));
    e->predicate = true;
    return e;
}

BoundPtr Binder::bindPredicate(const Expr& e) {
    const SqlType truth = SqlType::of(SqlKind::Bit);
    const auto predicate = [&](std::string pattern, std::vector<BoundPtr> args) {
        BoundPtr p = op(std::move(pattern), truth, std::move(args));
        p->predicate = true;
        return p;
    };
    switch (e.kind) {
        case ExprKind::And:
        case ExprKind::Or: {
            const char* word = e.kind == ExprKind::And ? " AND " : " OR ";
            std::vector<const Expr*> chain;
            const Expr* first = &e;
            while (first->kind == e.kind) {
                chain.push_back(first);
                first = first->args[0].get();
            }
            BoundPtr left = bindCondition(*first);
            for (auto it = chain.rbegin(); it != chain.rend(); ++it)
                left = predicate(std::string("($0") + word + "$1)",
                                 list(std::move(left), bindCondition(*(*it)->args[1])));
            return left;
        }
        case ExprKind::Not:
            return predicate("(NOT $0)", list(bindCondition(*e.args[0])));
        case ExprKind::Compare: {
            BoundPtr a = bindValue(*e.args[0]);
            return compare(e.op, std::move(a), bindValue(*e.args[1]));
        }
        case ExprKind::IsNull:
            return predicate(e.negated ? "($0 IS NOT NULL)" : "($0 IS NULL)",
                             list(bindValue(*e.args[0])));
        case ExprKind::Between: {
            BoundPtr a = bindValue(*e.args[0]);
            BoundPtr low = bindValue(*e.args[1]);
            BoundPtr high = bindValue(*e.args[2]);
            // One common type lets SQLite's own BETWEEN use an index; bounds of another kind
            // compare each in their own type.
            const SqlType type = unify({&a, &low, &high});
            std::string pattern = type.isText()  ? "($0 COLLATE TSQL BETWEEN $1 AND $2)"
                                  : isWide(type) ? "(t_ncmp($0,$1) >= 0 AND t_ncmp($0,$2) <= 0)"
                                                 : "($0 BETWEEN $1 AND $2)";
            if (e.negated) pattern = "(NOT " + pattern + ")";
            return predicate(pattern, list(std::move(a), std::move(low), std::move(high)));
        }
        case ExprKind::InList:
        case ExprKind::InQuery:
            return bindIn(e);
        case ExprKind::Exists: {
            auto p = std::make_unique<BoundExpr>();
            p->kind = BoundKind::ExistsQuery;
            p->type = truth;
            p->predicate = true;
            p->query = bindSubquery(*e.query);
            return p;
        }
        case ExprKind::Quantified:
            return bindQuantified(e);
        case ExprKind::Like: {
            std::vector<BoundPtr> args;
            for (const ExprPtr& a : e.args) {
                BoundPtr v = bindValue(*a);
                if (!v->type.isText())
                    v = convert(std::move(v), SqlType::text(SqlKind::VarChar, 8000));
                args.push_back(std::move(v));
            }
            std::string pattern = args.size() == 3 ? "t_like($1,$0,$2)" : "t_like($1,$0)";
            if (e.negated) pattern = "(NOT " + pattern + ")";
            return predicate(pattern, std::move(args));
        }
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

BoundPtr Binder::convert(BoundPtr e, const SqlType& to) {
    requireConversion(e->type, to, false);
    return cast(std::move(e), to, -1, false, false);
}

BoundPtr Binder::cast(BoundPtr e, const SqlType& to, int style, bool tryCast, bool checked) {
    const SqlType from = e->type;
    if (e->predicate) throw makeDbError(102, {"="});
    if (from == to && style < 0) return e;
    if (e->kind == BoundKind::Null) {
        e->type = to;
        return e;
    }
    // A literal or variable converts once, when it is handed over. In a branch that may never
    // run, a text's conversion must wait until the branch does.
    const bool waits = conditional_ > 0 && from.isText() && !to.isText();
    if ((e->kind == BoundKind::Literal || e->kind == BoundKind::Variable) &&
        e->type == e->sourceType && style < 0 && !tryCast && !waits && !to.isFixedText()) {
        e->type = to;
        return e;
    }
    const bool nullable = e->nullable;
    const auto as = [&](std::string pattern) {
        BoundPtr r = op(std::move(pattern), to, list(std::move(e)));
        r->nullable = nullable;
        return r;
    };
    if (style < 0 && !tryCast) {
        if (from.isInteger()) {
            if (to.kind == SqlKind::Bit) return as("($0 <> 0)");
            if (to.isInteger() && to.kind > from.kind) return as("$0");
            if (to.kind == SqlKind::Numeric && to.precision <= kNarrowPrecision &&
                digitsOf(from) <= to.precision - to.scale)
                return as(to.scale == 0 ? "$0" : "($0 * " + powerText(to.scale) + ")");
            if (to.kind == SqlKind::Float) return as("CAST($0 AS REAL)");
            if (to.kind == SqlKind::DateTime && !checked) return as("$0");
            if (to.isText() && !to.isFixedText() &&
                (to.length == SqlType::kMax || to.length > digitsOf(from)))
                return as("CAST($0 AS TEXT)");
        }
        if (from.kind == SqlKind::Numeric && to.kind == SqlKind::Numeric && !isWide(from) &&
            !isWide(to) && to.scale >= from.scale &&
            to.precision - to.scale >= from.precision - from.scale)
            return as(to.scale == from.scale ? "$0"
                                             : "($0 * " + powerText(to.scale - from.scale) + ")");
        if (from.kind == SqlKind::Numeric && isWide(from) && isWide(to) && to.scale == from.scale &&
            to.precision >= from.precision)
            return as("$0");
        if (from.isDecimal() && to.kind == SqlKind::Float && !isWide(from))
            return as("(CAST($0 AS REAL) / " + powerText(from.scale) + ".0)");
        if (from.isText() && to.isText() && !to.isFixedText()) {
            const bool fits =
                to.length == SqlType::kMax ||
                (from.length != SqlType::kMax && from.length <= to.length && !hasTextLiteral(*e));
            return as(fits ? "$0" : "substr($0,1," + std::to_string(to.length) + ")");
        }
        if (from.kind == SqlKind::Date && to.kind == SqlKind::DateTime && !checked) return as("$0");
    }
    return as(std::string(tryCast ? "t_trycv" : "t_cv") + "($0," + std::to_string(packType(from)) +
              "," + std::to_string(packType(to)) + "," + std::to_string(style) + ")");
}

// CONVERT with a style that only the run knows; NULL for a style gives NULL.
BoundPtr Binder::castByStyle(BoundPtr value, const Expr& e) {
    const std::string types =
        std::to_string(packType(value->type)) + "," + std::to_string(packType(e.type));
    return op(std::string("(CASE WHEN $1 IS NOT NULL THEN t_") + (e.tryCast ? "try" : "") +
                  "cv($0," + types + ",$1) END)",
              e.type, list(std::move(value), convert(bindValue(*e.args[1]), kInt)));
}

BoundPtr Binder::assign(BoundPtr e, const CatalogTable& table, const CatalogColumn& column) {
    const SqlType from = e->type;
    const SqlType& to = column.type;
    // A number that is too long for its text is a star or an overflow, not cut.
    const bool mayNotFit =
        !from.isNumber() && to.isText() && to.length != SqlType::kMax &&
        from.kind != SqlKind::Null &&
        (from.isText() ? from.length == SqlType::kMax || from.length > to.length ||
                             to.isFixedText() || hasTextLiteral(*e)
                       : true);
    if (!mayNotFit) {
        // The only numeric literals whose places do not shape the plan.
        if (e->kind == BoundKind::Literal && e->index >= 0 && e->type == e->sourceType &&
            to.isNumber())
            (*context_.literals)[e->index].typeFixed = false;
        return convert(std::move(e), to);
    }
    SqlType wide = to;
    wide.kind = to.isUnicode() ? SqlKind::NVarChar : SqlKind::VarChar;
    wide.length = from.isText() ? SqlType::kMax : 8000;
    const bool nullable = e->nullable;
    e = convert(std::move(e), wide);
    BoundPtr r = op(
        "t_fit($0," + std::to_string(to.length) + "," + (to.isFixedText() ? "1" : "0") + ",$1,$2)",
        to,
        list(std::move(e), verbatim(sqliteText(context_.catalog.fullName(table)), to),
             verbatim(sqliteText(column.name), to)));
    r->nullable = nullable;
    return r;
}

}  // namespace owb::tsql
