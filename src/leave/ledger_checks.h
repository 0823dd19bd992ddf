// What must hold in LEV_ALLOTMENT after every pass, as queries that count what breaks it. Rows that
// await recalculation prove nothing and are left out.
#pragma once

#include <string>
#include <vector>

namespace owb {

struct LedgerCheck {
    const char* what;            // "ledger rows without figures"
    std::string count;           // the query; 0 when all is well
    std::string employees = "";  // the query of the employees whose rows they are; "" not told
};

const std::vector<LedgerCheck>& FnLedgerChecks();
// What is no fault of the tables, but gives figures that somebody may not expect.
const std::vector<LedgerCheck>& FnLedgerRemarks();

}  // namespace owb
