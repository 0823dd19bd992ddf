// What the ledger's rows begin with and hang on: from-dates, opening balances, encashments. The
// rows themselves are in LedgerSlices.cpp.
#include "db/recordset.h"
#include "leave/modLeaveFunctions.h"
#include "session/Session.h"

namespace owb {

namespace {

// The two tables of from-dates and the settings that their dates come from.
struct FromDates {
    const char *table, *column, *dateType, *months, *days;
};
constexpr FromDates kAllot{"LEV_ALLOTFROM", "ALLOTFROM", "MINDATETYPE", "MINMONTH", "MINDAYS"};
constexpr FromDates kAvail{"LEV_AVAILFROM", "AVAILFROM", "MINAVAILDATETYPE", "MINAVAILMONTH",
                           "MINAVAILDAYS"};

// EMPID, LEVID and DUEFROM of every employee and allotted leave, by the settings for the head of
// the employee's first version in the month in which it began; without any, the day of joining.
std::string dueDates(const FromDates& kind) {
    const std::string setting = "LS.", base = "CASE ISNULL(" + setting + kind.dateType +
                                              ",0) WHEN 0 THEN ME.DOJ WHEN 1 THEN ME.PROBATIONDATE "
                                              "WHEN 2 THEN ME.CONFIRMATIONDATE END";
    return "SELECT T.EMPID, T.LEVID, CASE WHEN T.BASE IS NULL THEN CAST('2099-12-31' AS datetime) "
           "ELSE DATEADD(DAY, T.DAYS, DATEADD(MONTH, T.MONTHS, T.BASE)) END AS DUEFROM FROM "
           "(SELECT ME.EMPID, AD.LEVID, " +
           base + " AS BASE, ISNULL(" + setting + kind.months + ",0) AS MONTHS, ISNULL(" + setting +
           kind.days +
           ",0) AS DAYS FROM MAS_EMPLOYEE ME INNER JOIN MAS_EMPLOYEEDET MD ON MD.EMPID = ME.EMPID "
           "AND MD.EMPDETID = (SELECT MIN(EMPDETID) FROM MAS_EMPLOYEEDET WHERE EMPID = ME.EMPID) "
           "INNER JOIN ATT_DEFINITION AD ON AD.ALLOTMENTYN = 1 AND AD.LEVID <> 3 LEFT JOIN "
           "LEV_SETTINGS LS ON LS.LEVID = AD.LEVID AND LS.ATTHEADID = MD.ATTHEADID AND "
           "LS.MONTHYEAR = (SELECT MAX(MONTHYEAR) FROM LEV_SETTINGS WHERE LEVID = AD.LEVID AND "
           "ATTHEADID = MD.ATTHEADID AND MONTHYEAR <= [dbo].FnLngMonthYear(MD.EFFFROMDATE, "
           "MD.EFFFROMDATE))) T";
}

void insertDates(Session& session, const FromDates& kind) {
    const std::string table = kind.table, column = kind.column;
    session.gConn.Execute("INSERT INTO " + table + "(EMPID, LEVID, " + column + ", ACT" + column +
                          ", CHANGEYN, EDITEDYN) SELECT D.EMPID, D.LEVID, D.DUEFROM, D.DUEFROM, 0, "
                          "0 FROM (" +
                          dueDates(kind) + ") D WHERE NOT EXISTS (SELECT * FROM " + table +
                          " LA WHERE LA.EMPID = D.EMPID AND LA.LEVID = D.LEVID)");
}

// Dates edited by hand stay. The ledger rows are marked before the reason for it goes.
void updateDates(Session& session, const FromDates& kind) {
    const std::string table = kind.table, column = kind.column;
    const std::string changed = "LA.CHANGEYN = 1 AND ISNULL(LA.EDITEDYN, 0) = 0";
    session.gConn.ExecuteAtomic(
        "UPDATE LEV_ALLOTMENT SET EDITMODEYN=1 FROM LEV_ALLOTMENT LE, " + table +
        " LA WHERE LE.EMPID = LA.EMPID AND LE.LEVID = LA.LEVID AND " + changed + " UPDATE " +
        table + " SET " + column + " = D.DUEFROM, ACT" + column +
        " = D.DUEFROM, CHANGEYN = 0, EDITEDYN = 0 FROM " + table + " LA, (" + dueDates(kind) +
        ") D WHERE LA.EMPID = D.EMPID AND LA.LEVID = D.LEVID AND " + changed + " UPDATE " + table +
        " SET CHANGEYN = 0 WHERE CHANGEYN = 1");
}

}  // namespace

void InsertAllotFromDate(Session& session) {
    insertDates(session, kAllot);
}
void UpdateAllotFromDate(Session& session) {
    updateDates(session, kAllot);
}
void InsertAvailFromDate(Session& session) {
    insertDates(session, kAvail);
}
void UpdateAvailFromDate(Session& session) {
    updateDates(session, kAvail);
}

void InsertOpeningBalances(Session& session) {
    session.gConn.Execute(
        "INSERT INTO ATT_OPBAL(EMPID, LEVID, OPBAL) SELECT ME.EMPID, AD.LEVID, 0 FROM MAS_EMPLOYEE "
        "ME, ATT_DEFINITION AD WHERE AD.ALLOTMENTYN = 1 AND AD.LEVID <> 3 AND NOT EXISTS (SELECT * "
        "FROM ATT_OPBAL OB WHERE OB.EMPID = ME.EMPID AND OB.LEVID = AD.LEVID)");
}

void DeleteUnallottedLeaves(Session& session) {
    std::string batch =
        "SELECT LEVID INTO #DEL FROM ATT_DEFINITION WHERE ISNULL(ALLOTMENTYN, 1) <> 0 UPDATE "
        "LEV_ADJUSTMENT SET ALLOT = 0 WHERE ALLOT <> 0 AND LEVID NOT IN (SELECT LEVID FROM #DEL)";
    for (const char* table :
         {"ATT_OPBAL", "LEV_ALLOTMENT", "LEV_ALLOTFROM", "LEV_AVAILFROM", "LEV_ALLOTCONFIG"})
        batch +=
            std::string(" DELETE FROM ") + table + " WHERE LEVID NOT IN (SELECT LEVID FROM #DEL)";
    for (const char* table : {"LEV_ALLOTFROM", "LEV_AVAILFROM"})
        batch += std::string(" DELETE FROM ") + table + " WHERE LEVID = 3";
    session.gConn.ExecuteAtomic(batch + " DROP TABLE #DEL");
}

// The salary is marked first; the payment goes with its rows, the encashment last.
void DeleteOrphanedEncashments(Session& session) {
    const std::string orphans =
        "ATT_ENCASH WHERE ALLOTID NOT IN (SELECT ALLOTID FROM LEV_ALLOTMENT) AND MONTHYEAR>=" +
        std::to_string(session.gFeature.LVSTARTMNYEAR);
    if (Recordset(session.gConn, "SELECT TOP 1 ALLOTID FROM " + orphans).IsEOF()) return;
    const std::string entries = "(SELECT ADDENTRYID FROM " + orphans + ")";
    session.gConn.ExecuteAtomic(
        "UPDATE SLC_SALARYCALC_E SET EDITMODEYN = 1 WHERE EXISTS (SELECT * FROM " + orphans +
        " AND ATT_ENCASH.EMPID = SLC_SALARYCALC_E.EMPID AND ATT_ENCASH.MONTHYEAR = "
        "SLC_SALARYCALC_E.MONTHYEAR) DELETE FROM SLC_ADDEMPCALC_D WHERE ADDENTRYID IN " +
        entries + " DELETE FROM SLC_ADDEMPCALC_E WHERE ADDENTRYID IN " + entries + " DELETE FROM " +
        orphans);
}

}  // namespace owb
