// Triggers: fired once for a statement, with its rows in the tables inserted and deleted.
#pragma once

#include <string>
#include <vector>

#include "tsql/plan/plan.h"
#include "tsql/run/code_cache.h"
#include "tsql/run/transactions.h"

namespace owb::tsql {

class Triggers {
  public:
    Triggers(Session& session, Transactions& transactions, CodeCache& codes,
             StatementRunner& runner)
        : session_(session), transactions_(transactions), codes_(codes), runner_(runner) {}

    void fire(const Plan& plan, const PseudoTables& rows);
    // UPDATE(column): whether the statement whose trigger runs wrote it.
    bool isUpdated(const std::string& foldedColumn) const;

  private:
    void fireOne(CatalogModule& module, const PseudoTables& rows);

    Session& session_;
    Transactions& transactions_;
    CodeCache& codes_;
    StatementRunner& runner_;
    std::vector<std::string> active_;
    std::vector<std::string> updatedColumns_;  // folded
};

}  // namespace owb::tsql
