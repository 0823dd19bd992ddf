// What the next recalculation has to do: the marked rows of the day registers, the month days and
// the leave ledger.
#pragma once

#include <cstdint>
#include <string>

namespace owb {

struct Session;

// `condition` narrows them (" AND LEV.EMPID IN ..."; the tables are called LEV). Without the ledger
// for the recalculation that leaves it out. Throws DbError.
int64_t FnLngAwaitingRows(Session& session, const std::string& condition = "",
                          bool blnLedger = true);

}  // namespace owb
