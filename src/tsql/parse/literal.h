// Literals of a batch.
#pragma once

#include "tsql/parse/ast.h"
#include "tsql/parse/token.h"

namespace owb::tsql {

// The value and type of a literal token; a leading minus is not part of it.
LiteralSlot literalOf(const Token& token);

}  // namespace owb::tsql
