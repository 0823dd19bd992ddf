// The values of identity columns: what the next row of a table gets, and what @@IDENTITY,
// SCOPE_IDENTITY and IDENT_CURRENT tell.
#pragma once

#include "tsql/run/session.h"

namespace owb::tsql {

class IdentityValues {
  public:
    explicit IdentityValues(Session& session) : session_(session) {}

    // Around an INSERT: load, next for each row, store.
    void load(const CatalogTable& table);
    int64_t next();
    void store(const CatalogTable& table);

    const Value& last() const { return last_; }
    const Value& ofScope() const { return ofScope_; }
    Value& ofScope() { return ofScope_; }
    Value current(const std::string& table);

    // SET IDENTITY_INSERT: the one table whose INSERT may give the value itself.
    void allowExplicit(const Name& table, bool on, int line);
    bool isExplicit(const Name& table) const { return foldName(table.last()) == explicit_; }

  private:
    Session& session_;
    Value last_;
    Value ofScope_;  // of the scope that runs
    int64_t next_ = 0, step_ = 1;
    bool used_ = false;
    std::string explicit_;  // folded; "" none
};

}  // namespace owb::tsql
