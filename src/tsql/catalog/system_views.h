// INFORMATION_SCHEMA.* and sys.*: views that answer from the catalog.
#pragma once

#include <functional>

#include "tsql/catalog/catalog.h"

namespace owb::tsql {

// The view of that schema and name, as a table that queries may read; null when there is none.
CatalogTablePtr findSystemView(const std::string& schema, const std::string& name);

// Makes the views readable on this connection. `inTransaction` tells whether one is open.
void addSystemViews(Sqlite& sqlite, Catalog& catalog, const std::function<bool()>& inTransaction);

}  // namespace owb::tsql
