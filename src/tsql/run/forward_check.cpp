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
        check(frame, s->body);
        check(frame, s->otherwise);
    }
}

void ForwardCheck::checkOne(Frame& frame, const Statement& s) {
    switch (s.kind) {
        case StatementKind::Query:
        case StatementKind::DeclareCursor:
            plans_.plan(frame, &s, [&](Planner& p) { return p.query(*s.query); });
            break;
        case StatementKind::Insert:
            if (s.query || s.defaultValues)
                plans_.plan(frame, &s, [&](Planner& p) {
                    return p.insert(s, identity_.isExplicit(s.target));
                });
            break;
        case StatementKind::Update:
            plans_.plan(frame, &s, [&](Planner& p) { return p.update(s); });
            break;
        case StatementKind::Delete:
            plans_.plan(frame, &s, [&](Planner& p) { return p.remove(s); });
            break;
        case StatementKind::If:
        case StatementKind::While:
            plans_.plan(frame, s.condition.get(),
                        [&](Planner& p) { return p.condition(*s.condition); });
            break;
        default:
            break;
    }
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
            case StatementKind::Declare:
                return std::any_of(s->variables.begin(), s->variables.end(),
                                   [](const VariableDeclaration& v) { return v.isTable; });
            case StatementKind::Query: {
                const QueryBody* first = s->query->body.get();
                while (first->left) first = first->left.get();
                return !first->into.empty();
            }
            default:
                return changesSchema(s->body) || changesSchema(s->otherwise);
        }
    });
}

}  // namespace owb::tsql
