// A table as CREATE TABLE and DECLARE describe it, before it is made.
#pragma once

#include <string>
#include <vector>

#include "tsql/catalog/catalog.h"

namespace owb::tsql {

// Throws DbError where a column is there twice or a constraint names one that is not.
CatalogTable describeTable(const std::string& name, const std::vector<ColumnDefinition>& columns,
                           const std::vector<ConstraintDefinition>& constraints);

// A name for a constraint that the text gives none.
std::string generatedName(const char* kind, const std::string& table, const std::string& what);
std::string joined(const std::vector<std::string>& parts, char separator);

}  // namespace owb::tsql
