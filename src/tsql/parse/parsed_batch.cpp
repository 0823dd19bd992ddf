// A text parsed, and checked as far as the text alone allows: variables and labels.
#include "tsql/parse/parsed_batch.h"

#include <algorithm>

#include "base/db_error.h"
#include "tsql/parse/names.h"
#include "tsql/parse/parser.h"

namespace owb::tsql {

namespace {

// Every statement among these, those inside others included, in their order.
template <class Work>
void forEach(const std::vector<StatementPtr>& statements, const Work& work) {
    for (const StatementPtr& s : statements) {
        work(*s);
        if (const CompoundStatement* c = compound(*s)) {
            forEach(c->body, work);
            forEach(c->otherwise, work);
        }
    }
}

void collectVariables(ParsedBatch& batch) {
    forEach(batch.body(), [&](const Statement& s) {
        if (s.kind != StatementKind::Declare) return;
        for (const VariableDeclaration& v : as<DeclareStatement>(s).variables) {
            if (v.isTable) continue;
            if (batch.findVariable(v.name) >= 0) throw makeDbError(134, {v.name}, s.line);
            batch.variables.push_back({v.name, v.type});
        }
    });
}

using Labels = std::vector<const LabelStatement*>;

bool isAmong(const Labels& labels, const LabelStatement& wanted) {
    return std::any_of(labels.begin(), labels.end(),
                       [&](const LabelStatement* l) { return l->label == wanted.label; });
}

// Every GOTO finds its label in its own list of statements or in one around it; `around` holds the
// labels of those.
void checkJumps(const std::vector<StatementPtr>& statements, Labels around, const Labels& all) {
    for (const StatementPtr& s : statements)
        if (s->kind == StatementKind::Label) around.push_back(&as<LabelStatement>(*s));
    for (const StatementPtr& s : statements) {
        if (s->kind == StatementKind::Goto) {
            const auto& jump = as<LabelStatement>(*s);
            if (isAmong(around, jump)) continue;
            if (isAmong(all, jump)) throw makeDbError(15281, {"GOTO into a block"}, s->line);
            throw makeDbError(133, {jump.label}, s->line);
        }
        if (const CompoundStatement* c = compound(*s)) {
            checkJumps(c->body, around, all);
            checkJumps(c->otherwise, around, all);
        }
    }
}

void checkLabels(const std::vector<StatementPtr>& statements) {
    Labels labels;
    forEach(statements, [&](const Statement& s) {
        if (s.kind != StatementKind::Label) return;
        const auto& label = as<LabelStatement>(s);
        if (isAmong(labels, label)) throw makeDbError(132, {label.label}, s.line);
        labels.push_back(&label);
    });
    checkJumps(statements, {}, labels);
}

}  // namespace

const CompoundStatement* compound(const Statement& s) {
    switch (s.kind) {
        case StatementKind::Block:
        case StatementKind::If:
        case StatementKind::While:
        case StatementKind::TryCatch:
            return &as<CompoundStatement>(s);
        default:
            return nullptr;
    }
}

int ParsedBatch::findVariable(const std::string& name) const {
    const std::string folded = foldName(name);
    for (size_t i = 0; i < variables.size(); ++i)
        if (foldName(variables[i].name) == folded) return static_cast<int>(i);
    return -1;
}

std::shared_ptr<ParsedBatch> parseBatch(std::string text) {
    auto batch = std::make_shared<ParsedBatch>();
    batch->text = std::move(text);
    batch->tokens = tokenize(batch->text);
    batch->ast = Parser(batch->text, batch->tokens).parseBatch();
    const std::vector<StatementPtr>& statements = batch->ast.statements;
    if (!statements.empty() && statements[0]->kind == StatementKind::CreateModule) {
        batch->definition = &as<ModuleStatement>(*statements[0]).module;
        for (const Parameter& p : batch->definition->parameters)
            batch->variables.push_back({p.name, p.type});
    }
    collectVariables(*batch);
    checkLabels(batch->body());
    return batch;
}

}  // namespace owb::tsql
