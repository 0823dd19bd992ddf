#include "tsql/lower/lowerer.h"

#include <algorithm>
#include <set>

#include "tsql/functions/functions.h"
#include "tsql/types/types.h"

namespace owb::tsql {

Value negated(const Value& v) {
    if (v.isInt()) return Value(-v.asInt());
    if (v.isDecimal()) return Value(-v.asDecimal());
    return Value(-v.asDouble());
}

std::string Lowerer::parameter(PlanParameter p) {
    parameters_.push_back(std::move(p));
    return "?" + std::to_string(parameters_.size());
}

namespace {

constexpr size_t kLongestSql = 1000000;  // which is what SQLite takes

// Operators that chain to the left without parentheses.
enum { kNone, kAnd, kOr, kJoin, kSum };

int chainKind(const BoundExpr& e) {
    if (e.kind != BoundKind::Op || e.args.size() != 2) return kNone;
    if (e.pattern == "($0 AND $1)") return kAnd;
    if (e.pattern == "($0 OR $1)") return kOr;
    if (e.pattern == "($0 || $1)") return kJoin;
    if (e.pattern == "($0 + $1)" || e.pattern == "($0 - $1)") return kSum;
    return kNone;
}

template <class Print>
std::string chain(const BoundExpr& e, int kind, Print print) {
    std::vector<const BoundExpr*> links;
    const BoundExpr* first = &e;
    while (chainKind(*first) == kind) {
        links.push_back(first);
        first = first->args[0].get();
    }
    std::string out = "(" + print(*first);
    for (auto link = links.rbegin(); link != links.rend(); ++link) {
        const std::string& pattern = (*link)->pattern;  // "($0 op $1)"
        out += pattern.substr(3, pattern.size() - 6) + print(*(*link)->args[1]);
    }
    return out + ")";
}

}  // namespace

namespace {

PlanParameter parameterOf(const BoundExpr& e) {
    PlanParameter p;
    p.kind = e.kind == BoundKind::Variable ? PlanParameter::Variable
             : e.index < 0                 ? PlanParameter::Constant
                                           : PlanParameter::Literal;
    p.index = e.index;
    p.constant = e.constant;
    p.from = e.sourceType;
    p.to = e.type;
    p.negated = e.negated;
    return p;
}

}  // namespace

std::string Lowerer::column(const BoundExpr& e) {
    if (!outer_ || std::find(outer_->begin(), outer_->end(), e.source) == outer_->end())
        return e.source->alias + "." + e.source->columns[e.column].sqlName;
    PlanParameter p;
    p.kind = PlanParameter::Outer;
    p.index = static_cast<int>(outerColumns_.size());
    outerColumns_.push_back(&e);
    return parameter(std::move(p));
}

std::string Lowerer::expression(const BoundExpr& e) {
    if (const int kind = chainKind(e); kind != kNone)
        return chain(e, kind, [this](const BoundExpr& x) { return expression(x); });
    switch (e.kind) {
        case BoundKind::Null:
            return "NULL";
        case BoundKind::Literal:
        case BoundKind::Variable:
            return parameter(parameterOf(e));
        case BoundKind::LiveVariable:
            return "t_var(" + std::to_string(e.index) + ")";
        case BoundKind::Column:
            return column(e);
        case BoundKind::ScalarQuery: {
            if (e.query->singleRow) return "(" + query(*e.query, false) + ")";
            // More than one row is an error, which t_one raises.
            return "(SELECT t_one(c0) FROM (" + query(*e.query, true) + "))";
        }
        case BoundKind::ExistsQuery:
            return std::string(e.negated ? "NOT " : "") + "EXISTS(" + query(*e.query, false) + ")";
        case BoundKind::InQuery: {
            const BoundExpr& left = *e.args[0];
            return "(" + expression(left) + (left.type.isText() ? " COLLATE TSQL" : "") +
                   (e.negated ? " NOT IN (" : " IN (") + query(*e.query, false) + "))";
        }
        case BoundKind::Verbatim:
            return e.pattern;
        case BoundKind::Op:
            break;
    }
    return filledPattern(e);
}

// The pattern with the operands in their places.
std::string Lowerer::filledPattern(const BoundExpr& e) {
    std::string out;
    const std::string& p = e.pattern;
    for (size_t i = 0; i < p.size(); ++i) {
        if (p[i] != '$') {
            const size_t next = std::min(p.find('$', i), p.size());
            out.append(p, i, next - i);
            i = next - 1;
            continue;
        }
        if (p[i + 1] == '*') {  // the operands not named so far, comma separated
            const size_t from = p.find("$0") < i ? 1 : 0;
            for (size_t a = from; a < e.args.size(); ++a) {
                if (a > from) out += ",";
                out += expression(*e.args[a]);
            }
            ++i;
            continue;
        }
        size_t n = 0;
        size_t at = i + 1;
        while (at < p.size() && p[at] >= '0' && p[at] <= '9') n = n * 10 + (p[at++] - '0');
        if (at < p.size() && p[at] == ';') ++at;  // ends a number that a digit follows
        out += expression(*e.args[n]);
        i = at - 1;
    }
    // An operand that stands in a form twice doubles at every level.
    if (out.size() > kLongestSql) throw makeDbError(8623);
    return out;
}

namespace {

void ownSources(const BoundQuery& q, std::set<const BoundSource*>& own) {
    for (const auto& s : q.sources) {
        own.insert(s.get());
        if (s->query) ownSources(*s->query, own);
    }
    if (q.left) ownSources(*q.left, own);
    if (q.right) ownSources(*q.right, own);
}

bool reachesOut(const BoundExpr& e, const std::set<const BoundSource*>& own) {
    if (e.kind == BoundKind::Column && !own.count(e.source)) return true;
    if (e.query) return true;  // looked at no further
    return std::any_of(e.args.begin(), e.args.end(),
                       [&](const BoundPtr& a) { return reachesOut(*a, own); });
}

// A plain SELECT whose condition names columns of the query around it.
bool isCorrelatedFilter(const BoundQuery& q) {
    if (q.kind != QueryBody::Select || q.grouped || q.limit || q.from.empty() || !q.where ||
        q.items[0].expr->window)
        return false;
    std::set<const BoundSource*> own;
    ownSources(q, own);
    return reachesOut(*q.where, own);
}

}  // namespace

std::string Lowerer::filter(const BoundExpr& e) {
    const int kind = chainKind(e);
    if (kind == kAnd || kind == kOr)
        return chain(e, kind, [this](const BoundExpr& x) { return filter(x); });
    // IN over a query of this very row would gather the whole list for each row; asking whether
    // the one value is in it lets an index answer.
    if (e.kind == BoundKind::InQuery && !e.negated && isCorrelatedFilter(*e.query)) {
        const BoundQuery& q = *e.query;
        const BoundExpr& left = *e.args[0];
        std::string text = "EXISTS(SELECT 1 FROM " + fromClause(q);
        text += " WHERE " + expression(*q.items[0].expr) +
                (left.type.isText() ? " COLLATE TSQL" : "") + " = " + expression(left);
        return text + " AND " + filter(*q.where) + ")";
    }
    return expression(e);
}

std::string Lowerer::applied(const BoundSource& s) {
    if (!applies_) throw makeDbError(15281, {"APPLY here"});
    auto plan = std::make_unique<ApplyPlan>();
    PlanParameter itself;
    itself.kind = PlanParameter::Apply;
    itself.apply = plan.get();
    std::string call = "t_apply(" + parameter(std::move(itself));
    size_t arguments = s.applyArguments.size();
    if (!s.query) {
        plan->function = s.tableName;
        for (const BoundPtr& a : s.applyArguments) call += "," + expression(*a);
    } else {
        Lowerer inner(plan->parameters, applies_);
        inner.outer_ = &s.outer;
        plan->sql = inner.query(*s.query, true);
        arguments = inner.outerColumns_.size();
        for (const BoundExpr* column : inner.outerColumns_) call += "," + expression(*column);
    }
    if (arguments > kMostApplied || s.columns.size() > kMostApplied)
        throw makeDbError(15281, {"An APPLY of more than 64 columns"});
    applies_->push_back(std::move(plan));
    return call + ") AS " + s.alias;
}

std::string Lowerer::sourceText(const BoundSource& s) {
    if (s.applied) return applied(s);
    if (s.table) return s.table->sqlName + " AS " + s.alias;
    return "(" + query(*s.query, true) + ") AS " + s.alias;
}

std::string Lowerer::fromItem(const BoundFrom& f) {
    if (f.source) return sourceText(*f.source);
    const char* word = " JOIN ";
    switch (f.join) {
        case JoinKind::Left:
            word = " LEFT JOIN ";
            break;
        case JoinKind::Right:
            word = " RIGHT JOIN ";
            break;
        case JoinKind::Full:
            word = " FULL JOIN ";
            break;
        case JoinKind::CrossApply:
            word = " CROSS JOIN ";
            break;
        case JoinKind::OuterApply:
            word = " LEFT JOIN ";
            break;
        default:
            break;
    }
    const std::string left = fromItem(*f.left);
    std::string right = fromItem(*f.right);
    if (!f.right->source) right = "(" + right + ")";
    return left + word + right + (f.on ? " ON " + expression(*f.on) : "");
}

std::string Lowerer::fromClause(const BoundQuery& q) {
    std::string out;
    for (const auto& f : q.from) {
        if (!out.empty()) out += ", ";
        // A RIGHT or FULL join beside a comma would otherwise take in what stands left of it.
        const std::string item = fromItem(*f);
        out += !f->source && q.from.size() > 1 ? "(" + item + ")" : item;
    }
    return out;
}

std::string Lowerer::orderBy(const BoundQuery& q) {
    std::string out;
    for (const BoundOrder& o : q.order) {
        out += out.empty() ? " ORDER BY " : ", ";
        const SqlType& type = o.expr ? o.expr->type : q.columns[o.ordinal].type;
        out += o.expr ? expression(*o.expr) : std::to_string(o.ordinal + 1);
        if (type.isText()) out += " COLLATE TSQL";
        if (o.descending) out += " DESC";
    }
    return out;
}

std::string Lowerer::select(const BoundQuery& q, bool named, const std::string& extra) {
    std::string out = q.distinct ? "SELECT DISTINCT " : "SELECT ";
    for (size_t i = 0; i < q.items.size(); ++i) {
        if (i) out += ", ";
        const BoundExpr& e = *q.items[i].expr;
        out += expression(e);
        if (q.distinct && e.type.isText()) out += " COLLATE TSQL";
        if (named) out += " AS c" + std::to_string(i);
    }
    out += extra;
    if (!q.from.empty()) out += " FROM " + fromClause(q);
    if (q.where) out += " WHERE " + filter(*q.where);
    for (size_t i = 0; i < q.groupBy.size(); ++i) {
        out += (i ? ", " : " GROUP BY ") + expression(*q.groupBy[i]);
        if (q.groupBy[i]->type.isText()) out += " COLLATE TSQL";
    }
    if (q.having) out += " HAVING " + expression(*q.having);
    return out;
}

// TOP with ties or of a share: every row gets its place, and the total if need be.
std::string Lowerer::ranked(const BoundQuery& q) {
    std::string order;
    for (const BoundOrder& o : q.order) {
        const BoundExpr& e = o.expr ? *o.expr : *q.items[o.ordinal].expr;
        order += order.empty() ? "ORDER BY " : ", ";
        order += q.distinct ? "c" + std::to_string(o.ordinal) : expression(e);
        order +=
            std::string(e.type.isText() ? " COLLATE TSQL" : "") + (o.descending ? " DESC" : "");
    }
    std::string extra =
        std::string(q.withTies ? ", rank()" : ", row_number()") + " OVER (" + order + ") AS place";
    if (q.percent) extra += ", count(*) OVER () AS total";
    const std::string rows = q.distinct ? "SELECT *" + extra + " FROM (" + select(q, true, "") + ")"
                                        : select(q, true, extra);
    std::string names;
    for (size_t i = 0; i < q.items.size(); ++i) names += (i ? ", c" : "c") + std::to_string(i);
    const std::string limit = expression(*q.limit);
    return "SELECT " + names + " FROM (" + rows +
           ") WHERE place <= " + (q.percent ? "t_share(total," + limit + ")" : limit) +
           " ORDER BY place";
}

std::string Lowerer::setOperand(const BoundQuery& q, bool named, bool right) {
    const bool nested = q.left && right;
    const bool limited = q.limit || !q.order.empty();
    if (!nested && !limited) return query(q, named);
    return "SELECT * FROM (" + query(q, named) + ")";
}

std::string Lowerer::query(const BoundQuery& q, bool named) {
    std::string out;
    if (!q.recursiveName.empty()) {
        std::string names;
        for (size_t i = 0; i < q.columns.size(); ++i)
            names += (i ? ", c" : "c") + std::to_string(i);
        return "WITH RECURSIVE " + q.recursiveName + "(" + names +
               ", depth) AS (SELECT *, 0 FROM (" + query(*q.left, true) + ") UNION ALL " +
               setOperand(*q.right, true, true) + ") SELECT " + names + " FROM " + q.recursiveName;
    }
    switch (q.kind) {
        case QueryBody::Select:
            if (q.withTies || q.percent) return ranked(q);
            out = select(q, named, "");
            break;
        case QueryBody::Values: {
            out = "VALUES ";
            for (size_t r = 0; r < q.rows.size(); ++r) {
                out += r ? ",(" : "(";
                for (size_t c = 0; c < q.rows[r].size(); ++c)
                    out += (c ? "," : "") + expression(*q.rows[r][c]);
                out += ")";
            }
            return out;
        }
        default: {
            const char* word = q.kind == QueryBody::Union      ? " UNION "
                               : q.kind == QueryBody::UnionAll ? " UNION ALL "
                               : q.kind == QueryBody::Except   ? " EXCEPT "
                                                               : " INTERSECT ";
            bool text = false;
            for (const BoundColumn& c : q.columns) text |= c.type.isText();
            if (text && q.kind != QueryBody::UnionAll) {
                // The left operand's collation decides which texts are the same.
                std::string collated = "SELECT ";
                for (size_t i = 0; i < q.columns.size(); ++i) {
                    if (i) collated += ", ";
                    collated += "c" + std::to_string(i);
                    if (q.columns[i].type.isText())
                        collated += " COLLATE TSQL AS c" + std::to_string(i);
                }
                out = collated + " FROM (" + query(*q.left, true) + ")";
            } else {
                out = setOperand(*q.left, named, false);
            }
            out += word + setOperand(*q.right, named, true);
        }
    }
    out += orderBy(q);
    if (q.limit) {
        out += " LIMIT " + expression(*q.limit);
        if (q.offset) out += " OFFSET " + expression(*q.offset);
    }
    return out;
}

}  // namespace owb::tsql
