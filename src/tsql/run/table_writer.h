// Makes tables in the file, or in memory for temporary ones, with their keys and what the catalog
// keeps of them beside SQLite's own schema.
#pragma once

#include <string>
#include <vector>

#include "tsql/run/session.h"

namespace owb::tsql {

class TableWriter {
  public:
    explicit TableWriter(Session& session) : session_(session) {}

    // Makes a new table, its keys and its entries in the catalog.
    void create(CatalogTable table, int line);
    // SQLite cannot change a column's type or a check in place: the table is made anew under its
    // name.
    void rebuild(const CatalogTable& before, CatalogTable after);
    // CREATE TABLE in SQLite's words. The name is another than the table's own while it is rebuilt.
    std::string ddl(const CatalogTable& table, const std::string& sqlName);
    void createKeyIndex(const CatalogTable& table, const CatalogKey& key, bool unique);
    // What SQLite's schema cannot hold: names of constraints, defaults, identity.
    void storeConstraints(const CatalogTable& table);
    // The catalog learns what became of a table that was changed in place.
    void changed(const CatalogTable& before, CatalogTable after);

    // --- table variables, which outlive a ROLLBACK ---
    void makeWithKeys(const CatalogTable& table);
    std::vector<std::vector<Value>> rowsOf(const CatalogTable& table);
    void addRows(const CatalogTable& table, const std::vector<std::vector<Value>>& rows);

  private:
    std::string checkText(const CatalogTable& table, const std::string& source);

    Session& session_;
};

// SQLite's grammar wants a number where T-SQL says (MAX).
std::string storedType(const SqlType& type);

}  // namespace owb::tsql
