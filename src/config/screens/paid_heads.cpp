#include "config/screens/paid_heads.h"

#include "db/sql_text.h"
#include "session/queries.h"

namespace owb {

bool FnBlnHeadPaid(Session& session, int32_t intAttHeadId) {
    return FnBlnExistsOrThrow(session, Sql() << "Select SE.SALID From SLC_SALARYCALC_E SE, "
                                                "MAS_EMPLOYEEDET ED  Where SE.EMPID = ED.EMPID AND "
                                                "SE.EMPDETID = ED.EMPDETID AND ED.ATTHEADID = "
                                             << intAttHeadId);
}

}  // namespace owb
