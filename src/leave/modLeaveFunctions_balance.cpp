// The leave ledger's passes as the screens call them, each under the recalculation lock, and the
// balance of a leave on a day.
#include "base/db_error.h"
#include "calendar/clsNODNDPCalc.h"
#include "db/sql_text.h"
#include "family/modCommon.h"
#include "leave/AllotmentPass.h"
#include "leave/RecalculationLock.h"
#include "leave/modLeaveFunctions.h"
#include "leave/slice_sql.h"
#include "session/Session.h"
#include "session/modFiles.h"
#include "session/months.h"
#include "session/queries.h"

namespace owb {

namespace {

// Up to this date an excluded day means that none is left out.
const DateTime kNoExclusion = DateTime::fromCivil(1950, 12, 30);

}  // namespace

bool ProcessAllotments(Session& session, Progress& frm) {
    const RecalculationLock lock(session, frm);
    if (!lock.Held()) return false;
    AllotmentPass pass(session, frm);
    const bool settled = pass.ProcessAllotments();
    return pass.TellFailures() && settled && !frm.cancelled();
}

bool ProcessAllotmentsOld(Session& session, Progress& frm, const std::string& strEmpFilter) {
    try {
        const RecalculationLock lock(session, frm);
        if (!lock.Held()) return false;
        AllotmentPass pass(session, frm);
        bool settled = true;
        if (strEmpFilter.empty() && !FnBlnMarkerFile(session, "\\OldLevAllotment.dat") &&
            !pass.FewMarked())
            settled &= pass.ProcessAllotments();
        settled &= pass.RowByRow(strEmpFilter);
        return pass.TellFailures() && settled && !frm.cancelled();
    } catch (const DbError& e) {
        session.boxes.critical(std::to_string(e.number) + ": " + e.what(), "");
        return false;
    }
}

double GetClosingBalance(Session& session, int64_t lngEmpId, int32_t intLevId, DateTime dteAsOn,
                         DateTime dteExclude, int32_t intAttHeadId) {
    const std::string date = FnStrIsoLiteral(dteAsOn);
    const std::string ofLeave = intLevId == 0 ? "" : " AND LA.LEVID = " + std::to_string(intLevId);
    // A total is open when one of its leaves is.
    const std::string open = "CASE WHEN LA.ALLOTFROM > " + date + " THEN 0 ELSE 1 END";
    if (FnVarValueOrThrow(
            session,
            Sql() << "SELECT " << (intLevId == 0 ? "MAX(" + open + ")" : open)
                  << " FROM ATT_DEFINITION AD, LEV_ALLOTFROM LA WHERE LA.EMPID = " << lngEmpId
                  << " AND AD.LEVID = LA.LEVID AND AD.ALLOTMENTYN = 1 " << ofLeave,
            -1)
            .toInt() == 0)
        return 0;

    int32_t month = 0;
    std::string monthName;
    GetMonthOfDate(session, dteAsOn, month, monthName);
    Value balance;
    if (month != 0) {
        DateTime first, last;
        GetMonthPeriod(session, month, first, last);
        const bool excludes = dteExclude > kNoExclusion;
        const std::string exclusion =
            excludes ? " AND LD.LEAVEDATE <> " + FnStrIsoLiteral(dteExclude) : "";
        const std::string rounded =
            Sql() << "[dbo].FnDblRndOff((ISNULL(LA.ALLOTLEV,0) + ISNULL(LA.COLEV,0) + "
                  << slice_sql::adjusted("LA", std::to_string(month)) << ") - ("
                  << slice_sql::encashed("LA") << " + ISNULL(LA.LAPSE,0) + "
                  << slice_sql::availed("LA", exclusion) << "), LS.RNDTYPE)";
        Sql slice;
        slice << " FROM LEV_ALLOTMENT LA, UDF_LSET(" << month
              << ") LS WHERE LA.EMPID = " << lngEmpId << ofLeave;
        if (intAttHeadId != 0) slice << " AND LA.ATTHEADID = " << intAttHeadId;
        slice << " AND LA.LEVID = LS.LEVID AND LS.ATTHEADID = LA.ATTHEADID AND LA.ALLOTFROM >= "
              << first << " AND LA.ALLOTTO <= " << last
              << " AND LA.EMPDETID = [dbo].FnIntMaxEmpDetID(" << lngEmpId << ", " << date << ","
              << date << ")";
        balance = FnVarValueOrThrow(
            session, intLevId == 0 ? Sql() << "SELECT SUM(LEVBAL) FROM (SELECT " << rounded
                                           << " AS LEVBAL" << slice << ") TEMP"
                                   : Sql() << "SELECT " << rounded << slice);
    }
    if (balance.isNull())
        balance = FnVarValueOrThrow(session,
                                    Sql() << "SELECT OPBAL FROM ATT_OPBAL WHERE EMPID = "
                                          << lngEmpId << " AND LEVID  = " << intLevId,
                                    0);
    double earned = 0;  // by work of the day that is being entered again
    if (intLevId == 2 && dteExclude > kNoExclusion && session.gAtt.ATTNTYPE != 4)
        FnNodNdp(session).FnDblLeaveAvailed(lngEmpId, 3, dteExclude, dteExclude, intAttHeadId,
                                            false, earned);
    return balance.toDouble() - earned;
}

}  // namespace owb
