// Which leaves have a balance that counts, from when a leave may be taken, and the order in which
// the leaves of an attendance head stand in for each other. All throw DbError.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "base/date_time.h"

namespace owb {

struct Session;

// LEVID of a name or short name, 0 when there is none.
int32_t FnLevIdOfName(Session& session, const std::string& text);
// LEVNAME of LEVID 1.
std::string FnStrLopName(Session& session);

// Name of a leave whose balance is tested; none for what may be taken freely: leaves without
// allotment, CW, the restricted holiday leave while the list restricts it, leaves of
// ATT_OPTSETTINGS.EXLEVPRIORITY, and what is no leave.
std::optional<std::string> FnStrTestedLeave(Session& session, int32_t intLevId);
// Does the date reach the employee's avail-from date of the leave?
bool FnBlnAvailOpen(Session& session, int64_t lngEmpId, int32_t intLevId, DateTime dteDate);

// The other leaves of the head in order of priority with their balances, a numbered line each; the
// number counts leaves too that are not open yet and have no line. "" without a line.
std::string FnStrPriorityList(Session& session, int64_t lngEmpId, int32_t lngAttHeadId,
                              int32_t intLevId, DateTime dteDate);
// The first other leave in order of priority (0: not in the order) that is open and holds
// dblNeeded days; 1, loss of pay, when none does.
int32_t FnIntNextPriorityLeave(Session& session, int64_t lngEmpId, int32_t lngAttHeadId,
                               int32_t intLevId, double dblNeeded, DateTime dteDate);

}  // namespace owb
