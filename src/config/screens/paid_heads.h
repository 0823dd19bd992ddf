// Whether salary rests on an attendance head already.
#pragma once

#include <cstdint>

namespace owb {

struct Session;

// Is there a salary row of an employee under the head? Throws DbError.
bool FnBlnHeadPaid(Session& session, int32_t intAttHeadId);

}  // namespace owb
