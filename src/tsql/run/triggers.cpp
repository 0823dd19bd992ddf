#include "tsql/run/triggers.h"

#include <algorithm>

namespace owb::tsql {

void Triggers::fire(const Plan& plan, const PseudoTables& rows) {
    std::vector<std::string> columns = plan.assignedColumns;
    // A new row has all its columns from the INSERT, if only by default.
    if (plan.writes == StatementKind::Insert)
        for (const CatalogColumn& c : plan.target->columns) columns.push_back(foldName(c.name));
    Restored updated(updatedColumns_, std::move(columns));
    Transactions::OfStatement level(transactions_);
    for (const std::string& name : plan.triggers) {
        CatalogModulePtr module = session_.catalog.findModule(name);
        // A trigger that writes its own table does not fire itself.
        if (!module || std::find(active_.begin(), active_.end(), name) != active_.end()) continue;
        active_.push_back(name);
        try {
            fireOne(*module, rows);
        } catch (const DbError& e) {
            active_.pop_back();
            TravellingError error(e);
            error.undoes = true;
            throw error;
        }
        active_.pop_back();
        if (!transactions_.isOpen()) {
            TravellingError ended(makeDbError(3609));
            ended.endsBatch = true;
            throw ended;
        }
    }
}

void Triggers::fireOne(CatalogModule& module, const PseudoTables& rows) {
    Restored options(session_.options);
    session_.options.xactAbort = true;  // as the server has it in every trigger
    Frame body = codes_.frameOf(module);
    body.pseudoTables = &rows;
    try {
        runner_.runScope(body);
    } catch (...) {
        body.code->plans.clear();
        throw;
    }
    body.code->plans.clear();  // made for these very tables
}

bool Triggers::isUpdated(const std::string& column) const {
    return std::find(updatedColumns_.begin(), updatedColumns_.end(), column) !=
           updatedColumns_.end();
}

}  // namespace owb::tsql
