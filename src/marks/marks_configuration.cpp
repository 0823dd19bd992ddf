// Marks by attendance heads and kinds of leave.
#include "db/sql_text.h"
#include "marks/marks.h"

namespace owb {

std::string MarkHeadSql(int32_t intAttHeadId) {
    return Sql() << MarkHeadHoursSql(intAttHeadId)
                 << " UPDATE LEV_MONTHDET SET EDITMODEYN =1 WHERE EMPID IN (SELECT EMPID FROM "
                    "MAS_EMPLOYEEDET WHERE ATTHEADID = "
                 << intAttHeadId
                 << ") UPDATE SLC_SALARYCALC_E SET EDITMODEYN = 1 , TSALEDITMODEYN = 1 WHERE SALID "
                    "IN(Select SE.SALID From SLC_SALARYCALC_E SE, MAS_EMPLOYEEDET ED  Where "
                    "SE.EMPID = ED.EMPID AND SE.EMPDETID = ED.EMPDETID AND ED.ATTHEADID = "
                 << intAttHeadId << ")";
}

std::string MarkHeadHoursSql(int32_t intAttHeadId) {
    return Sql() << " UPDATE ATT_DAYTODAY SET EDITMODEYN = 1 WHERE ATTHEADID = " << intAttHeadId;
}

std::string MarkLeaveKindSql(int32_t intLevId) {
    return Sql() << " UPDATE dbo.LEV_MONTHDET SET EDITMODEYN = 1 FROM dbo.LEV_MONTHDET LM, (SELECT "
                    "DISTINCT EMPID, DBO.FNLNGMONTHYEAR(LEAVEDATE, LEAVEDATE) AS MNTHYR FROM "
                    "dbo.LEV_DETAILS WHERE LEVID = "
                 << intLevId
                 << ") AS TMPTAB WHERE LM.EMPID = TMPTAB.EMPID AND LM.MONTHYEAR = TMPTAB.MNTHYR";
}

}  // namespace owb
