// A text parsed, and checked as far as the text alone allows: variables and labels.
#include "tsql/parse/parsed_batch.h"

#include <algorithm>

#include "base/db_error.h"
#include "tsql/parse/names.h"
#include "tsql/parse/parser.h"

namespace owb::tsql {

namespace {

void collectVariables(const std::vector<StatementPtr>& statements, ParsedBatch& batch) {
    for (const StatementPtr& s : statements) {
        for (const VariableDeclaration& v : s->variables) {
            if (v.isTable) continue;
            if (batch.findVariable(v.name) >= 0) throw makeDbError(134, {v.name}, s->line);
            batch.variables.push_back({v.name, v.type});
        }
        collectVariables(s->body, batch);
        collectVariables(s->otherwise, batch);
    }
}

void collectLabels(const std::vector<StatementPtr>& statements,
                   std::vector<const Statement*>& found) {
    for (const StatementPtr& s : statements) {
        if (s->kind == StatementKind::Label) found.push_back(s.get());
        collectLabels(s->body, found);
        collectLabels(s->otherwise, found);
    }
}

// Every GOTO finds its label in its own list of statements or in one around it; `around` holds the
// labels of those.
void checkJumps(const std::vector<StatementPtr>& statements, std::vector<std::string> around,
                const std::vector<const Statement*>& labels) {
    for (const StatementPtr& s : statements)
        if (s->kind == StatementKind::Label) around.push_back(s->option);
    for (const StatementPtr& s : statements) {
        if (s->kind == StatementKind::Goto &&
            std::find(around.begin(), around.end(), s->option) == around.end()) {
            const bool elsewhere =
                std::any_of(labels.begin(), labels.end(),
                            [&](const Statement* l) { return l->option == s->option; });
            throw makeDbError(elsewhere ? 15281 : 133,
                              {elsewhere ? "GOTO into a block" : s->option}, s->line);
        }
        checkJumps(s->body, around, labels);
        checkJumps(s->otherwise, around, labels);
    }
}

void checkLabels(const std::vector<StatementPtr>& statements) {
    std::vector<const Statement*> labels;
    collectLabels(statements, labels);
    for (size_t i = 0; i < labels.size(); ++i)
        for (size_t j = 0; j < i; ++j)
            if (labels[i]->option == labels[j]->option)
                throw makeDbError(132, {labels[i]->option}, labels[i]->line);
    checkJumps(statements, {}, labels);
}

}  // namespace

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
        batch->definition = statements[0]->module.get();
        for (const Parameter& p : batch->definition->parameters)
            batch->variables.push_back({p.name, p.type});
    }
    collectVariables(batch->body(), *batch);
    checkLabels(batch->body());
    return batch;
}

}  // namespace owb::tsql
