// What a statement is bound in.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "tsql/catalog/catalog.h"

namespace owb::tsql {

struct BindContext {
    Catalog& catalog;
    std::vector<LiteralSlot>* literals = nullptr;  // of the batch; null: constants only
    const std::vector<VariableInfo>* variables = nullptr;
    const std::map<std::string, CatalogTablePtr>* pseudoTables = nullptr;  // inserted, deleted
    std::function<int(const std::string&)> functionId;  // number of a scalar function
};

}  // namespace owb::tsql
