#include "leave/EncashableBalance.h"

#include "db/sql_text.h"
#include "family/modCommon.h"
#include "leave/modLeaveFunctions.h"
#include "session/Session.h"
#include "session/queries.h"

namespace owb {

void GetEncashableBalance(Session& session, int64_t lngEmpId, double& dblAvailable,
                          double& dblMinBalance, int32_t& intAttHeadId, DateTime dteDate,
                          int32_t intLevId, bool blnOnRetirement, bool blnFullAndFinal) {
    const std::string date = FnStrIsoLiteral(dteDate);
    intAttHeadId = static_cast<int32_t>(
        FnVarValueOrThrow(session,
                          Sql() << "SELECT TOP 1 ATTHEADID FROM MAS_EMPLOYEEDET WHERE EMPID = "
                                << lngEmpId << " AND " << date
                                << " BETWEEN EFFFROMDATE AND ISNULL(EFFTODATE,'2099-12-31') ORDER "
                                   "BY EMPDETID DESC",
                          0)
            .toInt());
    Sql ofLeave;
    ofLeave << "LEVID = " << intLevId << " AND ATTHEADID = " << intAttHeadId;
    dblMinBalance =
        FnVarValueOrThrow(session,
                          Sql() << "SELECT ENCASHMINBAL FROM LEV_SETTINGS WHERE " << ofLeave
                                << " AND MONTHYEAR = (SELECT MAX(LS.MONTHYEAR) FROM LEV_SETTINGS "
                                   "LS INNER JOIN MAS_MONTHYEAR MM ON MM.MONTHYEAR = LS.MONTHYEAR "
                                   "WHERE "
                                << ofLeave
                                << " AND MM.MONTHYEAR <= (SELECT MONTHYEAR FROM MAS_MONTHYEAR "
                                   "WHERE "
                                << date << " BETWEEN CALCSTARTDATE AND CALCENDDATE))",
                          0)
            .toDouble();
    dblAvailable = GetClosingBalance(session, lngEmpId, intLevId, dteDate, {}, intAttHeadId);
    if (!blnOnRetirement && !blnFullAndFinal) dblAvailable -= dblMinBalance;
    dblAvailable +=
        FnVarValueOrThrow(
            session,
            Sql() << "SELECT TOP 1 [dbo].FnDblRndOff(ISNULL(LA.LAPSE, 0), LS.RNDTYPE) FROM "
                     "LEV_ALLOTMENT LA, UDF_LSET([dbo].FnLngMonthYear("
                  << date << ", " << date << ")) LS WHERE LA.EMPID = " << lngEmpId << " AND "
                  << date << " BETWEEN LA.ALLOTFROM AND LA.ALLOTTO AND LA.LEVID = " << intLevId
                  << " AND LS.LEVID = LA.LEVID AND LS.ATTHEADID = LA.ATTHEADID ORDER BY "
                     "LA.EMPDETID DESC",
            0)
            .toDouble();
}

}  // namespace owb
