// The versions of employees (MAS_EMPLOYEEDET) and their service (MAS_EMPLOYEE) belong to other
// programs, which mark nothing here. LEV_CONFIGUREDDET remembers them as the last pass saw them;
// what differs marks the rows whose figures rest on it.
#pragma once

namespace owb {

struct Session;

// Leave, adjustments and overtime under the version (adjustments also the head) in force on their
// date; the month, the register and the ledger from that day on are marked. A row whose date no
// version holds stays as it is.
void AlignVersions(Session& session);
// Marks months, registers and ledger of every employee whose versions, joining or leaving have
// changed since the last pass, from the first day on that it concerns, and remembers what it saw.
// The first pass of a database only remembers.
void MarkVersionChanges(Session& session);

}  // namespace owb
