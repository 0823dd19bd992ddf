// A batch, or the text of a module, parsed, with what all of its statements share.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "tsql/parse/ast_statements.h"
#include "tsql/parse/token.h"

namespace owb::tsql {

struct VariableInfo {
    std::string name;  // "@x", as declared
    SqlType type;
};

struct ParsedBatch {
    std::string text;
    std::vector<Token> tokens;  // they point into the text
    Batch ast;
    std::vector<VariableInfo> variables;           // a module's parameters first
    const ModuleDefinition* definition = nullptr;  // of a batch that creates a module

    int findVariable(const std::string& name) const;  // -1 when not declared
    // What runs: the module's body, or the batch itself.
    const std::vector<StatementPtr>& body() const {
        return definition ? definition->body : ast.statements;
    }
};

// Throws DbError: for what the grammar refuses, a variable declared twice, and a label that is
// there twice or not at all.
std::shared_ptr<ParsedBatch> parseBatch(std::string text);

}  // namespace owb::tsql
