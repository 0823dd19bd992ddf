#include "tsql/run/forward_check.h"

#include <algorithm>

namespace owb::tsql {

void ForwardCheck::check(Frame& frame, const std::vector<StatementPtr>& statements) {
    for (const StatementPtr& s : statements) {
        try {
            checkOne(frame, *s);
        } catch (DbError& e) {
            if (e.line == 0) e.line = s->line;
            if (e.number != 208 && e.number != 544 && e.number != 545 && e.number != 8101) throw;
        }
        if (const CompoundStatement* c = compound(*s)) {
            check(frame, c->body);
            check(frame, c->otherwise);
        }
    }
}

void ForwardCheck::checkOne(Frame& frame, const Statement& s) {
    switch (s.kind) {
        case StatementKind::Query:
            return checkQuery(frame, s, *as<QueryStatement>(s).query);
        case StatementKind::DeclareCursor:
            return checkQuery(frame, s, *as<CursorStatement>(s).query);
        case StatementKind::Insert: {
            const auto& insert = as<InsertStatement>(s);
            if (!insert.executed)
                plans_.plan(frame, &s, [&](Planner& p) {
                    return p.insert(insert, identity_.isExplicit(insert.target));
                });
            break;
        }
        case StatementKind::Update:
            plans_.plan(frame, &s, [&](Planner& p) { return p.update(as<ChangeStatement>(s)); });
            break;
        case StatementKind::Delete:
            plans_.plan(frame, &s, [&](Planner& p) { return p.remove(as<ChangeStatement>(s)); });
            break;
        case StatementKind::If:
        case StatementKind::While: {
            const Expr& condition = *as<CompoundStatement>(s).condition;
            plans_.plan(frame, &condition, [&](Planner& p) { return p.condition(condition); });
            break;
        }
        default:
            break;
    }
}

void ForwardCheck::checkQuery(Frame& frame, const Statement& s, const Query& query) {
    plans_.plan(frame, &s, [&](Planner& p) { return p.query(query); });
}

bool ForwardCheck::changesSchema(const std::vector<StatementPtr>& statements) {
    return std::any_of(statements.begin(), statements.end(), [](const StatementPtr& s) {
        switch (s->kind) {
            case StatementKind::CreateTable:
            case StatementKind::AlterTable:
            case StatementKind::Drop:
            case StatementKind::Execute:
            case StatementKind::ExecuteText:
                return true;
            case StatementKind::Declare: {
                const auto& variables = as<DeclareStatement>(*s).variables;
                return std::any_of(variables.begin(), variables.end(),
                                   [](const VariableDeclaration& v) { return v.isTable; });
            }
            case StatementKind::Query: {
                const QueryBody* first = as<QueryStatement>(*s).query->body.get();
                while (first->left) first = first->left.get();
                return !first->into.empty();
            }
            case StatementKind::Insert:
                return as<InsertStatement>(*s).executed != nullptr;
            default:
                const CompoundStatement* c = compound(*s);
                return c && (changesSchema(c->body) || changesSchema(c->otherwise));
        }
    });
}

}  // namespace owb::tsql
