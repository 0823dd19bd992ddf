// The rows that the ledger needs, in step with the masters: from-dates, opening balances, ledger
// rows. What goes or comes marks whatever was worked out from it.
#include <vector>

#include "data/Session.h"
#include "data/modCommon.h"
#include "leave/modLeaveFunctions.h"

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
    session.gConn.Execute("UPDATE LEV_ALLOTMENT SET EDITMODEYN=1 FROM LEV_ALLOTMENT LE, " + table +
                          " LA WHERE LE.EMPID = LA.EMPID AND LE.LEVID = LA.LEVID AND " + changed +
                          " UPDATE " + table + " SET " + column + " = D.DUEFROM, ACT" + column +
                          " = D.DUEFROM, CHANGEYN = 0, EDITEDYN = 0 FROM " + table + " LA, (" +
                          dueDates(kind) +
                          ") D WHERE LA.EMPID = D.EMPID AND LA.LEVID = D.LEVID AND " + changed +
                          " UPDATE " + table + " SET CHANGEYN = 0 WHERE CHANGEYN = 1");
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
    session.gConn.Execute(batch + " DROP TABLE #DEL");
}

namespace {

// Ledger rows as the masters want them, as a table W: one for each salary row and allot-from date,
// from the head's first settings of the leave on; up to the first month.
constexpr const char* kWanted =
    " FROM (SELECT SE.EMPID, MD.ATTHEADID, SE.EMPDETID, LA.LEVID, "
    "SE.MONTHYEAR, CASE WHEN LA.ALLOTFROM >= MM.CALCSTARTDATE THEN (CASE WHEN LA.ALLOTFROM >= "
    "MD.EFFFROMDATE THEN LA.ALLOTFROM ELSE MD.EFFFROMDATE END) ELSE (CASE WHEN MM.CALCSTARTDATE "
    ">= MD.EFFFROMDATE THEN MM.CALCSTARTDATE ELSE MD.EFFFROMDATE END) END AS ALLOTFROM, CASE WHEN "
    "ME.DOL <= E.LASTDATE THEN ME.DOL ELSE E.LASTDATE END AS ALLOTTO FROM SLC_SALARYCALC_E SE "
    "INNER JOIN MAS_EMPLOYEEDET MD ON MD.EMPID = SE.EMPID AND MD.EMPDETID = SE.EMPDETID INNER JOIN "
    "MAS_EMPLOYEE ME ON ME.EMPID = SE.EMPID INNER JOIN MAS_MONTHYEAR MM ON MM.MONTHYEAR = "
    "SE.MONTHYEAR INNER JOIN LEV_ALLOTFROM LA ON LA.EMPID = SE.EMPID INNER JOIN (SELECT "
    "LEVID,ATTHEADID,MIN(MONTHYEAR) AS MONTHYEAR FROM LEV_SETTINGS GROUP BY LEVID,ATTHEADID) TEMP "
    "ON TEMP.LEVID = LA.LEVID AND TEMP.ATTHEADID = MD.ATTHEADID AND SE.MONTHYEAR >= TEMP.MONTHYEAR "
    "CROSS APPLY (SELECT CASE WHEN MD.EFFTODATE < MM.CALCENDDATE THEN MD.EFFTODATE ELSE "
    "MM.CALCENDDATE END AS LASTDATE) E WHERE ISNULL(MM.TDSPORTYN, 0) <> 1 AND SE.MONTHYEAR >= ";

// Whether a wanted row is the ledger's.
std::string sameRow(const std::string& wanted) {
    std::string same;
    for (const char* column : {"EMPID", "LEVID", "ALLOTFROM", "ALLOTTO", "EMPDETID", "ATTHEADID"})
        same +=
            (same.empty() ? "" : " AND ") + wanted + "." + column + " = LEV_ALLOTMENT." + column;
    return same;
}

// Marks the rows of employees and leaves from a year before the first row in a list: the longest
// period whose credit may rest on it.
std::string markPeriods(const std::string& rows) {
    return " UPDATE LEV_ALLOTMENT SET EDITMODEYN = 1 FROM LEV_ALLOTMENT LA, (SELECT EMPID, LEVID, "
           "DATEADD(YEAR, -1, MIN(ALLOTFROM)) AS SINCE FROM " +
           rows +
           " GROUP BY EMPID, LEVID) C WHERE LA.EMPID = C.EMPID AND LA.LEVID = C.LEVID AND "
           "LA.ALLOTFROM >= C.SINCE AND LA.EDITMODEYN <> 1";
}

constexpr const char* kDropWanted =
    "IF OBJECT_ID('tempdb..#TEMPTABLE1') IS NOT NULL DROP TABLE #TEMPTABLE1 IF "
    "OBJECT_ID('tempdb..#TEMPTABLE2') IS NOT NULL DROP TABLE #TEMPTABLE2";

// Employees after one number up to another, as a condition on EMPID.
struct EmployeeBlock {
    std::string after, upTo;  // "" no bound
    std::string of(const std::string& column) const {
        return (after.empty() ? "" : " AND " + column + " > " + after) +
               (upTo.empty() ? "" : " AND " + column + " <= " + upTo);
    }
};

std::vector<EmployeeBlock> employeeBlocks(Session& session) {
    constexpr size_t kEmployeesAtOnce = 5000;
    std::vector<EmployeeBlock> blocks(1);
    for (Recordset rs(session.gConn, "SELECT EMPID FROM MAS_EMPLOYEE ORDER BY EMPID"); !rs.IsEOF();
         rs.MoveNext()) {
        if (rs.AbsolutePosition() % kEmployeesAtOnce != 0) continue;
        const std::string last = rs.Fields(0).toText();
        blocks.back().upTo = last;
        blocks.push_back({last, ""});
    }
    return blocks;
}

void deleteUnwanted(Session& session, const EmployeeBlock& block) {
    const std::string unwanted =
        "LEV_ALLOTMENT WHERE NOT EXISTS (SELECT * FROM #TEMPTABLE1 T1 "
        "WHERE " +
        sameRow("T1") + ")" + block.of("LEV_ALLOTMENT.EMPID");
    if (Recordset(session.gConn, "SELECT TOP 1 ALLOTID FROM " + unwanted).IsEOF()) return;
    session.gConn.Execute(markPeriods(unwanted) + " DELETE FROM " + unwanted);
}

// A row that only goes on where the one before it ends changes nothing that stands already: the
// pass itself marks what follows. Any other may be the first of a period, or cut one short: by the
// end of service, by another version or setting.
void insertMissing(Session& session) {
    session.gConn.Execute(
        std::string("SELECT T1.* INTO #TEMPTABLE2 FROM #TEMPTABLE1 T1 WHERE NOT EXISTS (SELECT * "
                    "FROM LEV_ALLOTMENT WHERE ") +
        sameRow("T1") + ")");
    if (Recordset(session.gConn, "SELECT TOP 1 EMPID FROM #TEMPTABLE2").IsEOF()) return;
    const std::string last =
        FnVarReadValue(session, "SELECT MAX(ALLOTID) FROM LEV_ALLOTMENT", 0).toText();
    session.gConn.Execute(
        markPeriods(
            "#TEMPTABLE2 T2 WHERE NOT EXISTS (SELECT * FROM #TEMPTABLE1 T1 WHERE T1.EMPID = "
            "T2.EMPID AND T1.LEVID = T2.LEVID AND T1.ALLOTTO = T2.ALLOTFROM - 1 AND T1.EMPDETID = "
            "T2.EMPDETID AND T1.MONTHYEAR = T2.MONTHYEAR - 1) OR EXISTS (SELECT * FROM "
            "LEV_SETTINGS LS WHERE LS.LEVID = T2.LEVID AND LS.ATTHEADID = T2.ATTHEADID AND "
            "LS.MONTHYEAR = T2.MONTHYEAR) OR EXISTS (SELECT * FROM MAS_EMPLOYEE ME WHERE ME.EMPID "
            "= T2.EMPID AND ME.DOL = T2.ALLOTTO)") +
        " INSERT INTO LEV_ALLOTMENT(ALLOTID, EMPID, ATTHEADID, EMPDETID, LEVID, ALLOTFROM, "
        "ALLOTTO, ACTALLOTLEV, ALLOTLEV, COLEV, LAPSE, EDITMODEYN) (SELECT (ROW_NUMBER() OVER "
        "(ORDER BY EMPID, LEVID, ALLOTFROM, EMPDETID) + " +
        last +
        ") AS ALLOTID, EMPID, ATTHEADID, EMPDETID, LEVID, ALLOTFROM, ALLOTTO, 0, 0, 0, 0, 1 FROM "
        "#TEMPTABLE2)");
}

// Whether every wanted row stands and no other: what almost every start finds.
bool inStep(Session& session, const EmployeeBlock& block, const std::string& wanted) {
    Recordset rs(session.gConn,
                 "SELECT COUNT(*), COUNT(LEV_ALLOTMENT.ALLOTID), (SELECT COUNT(*) FROM "
                 "LEV_ALLOTMENT WHERE 1 = 1" +
                     block.of("EMPID") + ")" + wanted + " LEFT JOIN LEV_ALLOTMENT ON " +
                     sameRow("W") + " WHERE W.ALLOTFROM <= W.ALLOTTO");
    const int64_t standing = rs.Fields(1).toInt();
    return rs.Fields(0).toInt() == standing && rs.Fields(2).toInt() == standing;
}

}  // namespace

void ReconcileLedgerRows(Session& session, const std::function<void(const char*)>& status) {
    for (const EmployeeBlock& block : employeeBlocks(session)) {
        status("Deleteing unwanted records...");
        const std::string wanted = kWanted + std::to_string(session.gFeature.LVSTARTMNYEAR) +
                                   block.of("SE.EMPID") + " ) W";
        if (inStep(session, block, wanted)) {
            status("Inserting missing records...");
            continue;
        }
        session.gConn.Execute(kDropWanted);
        session.gConn.Execute(
            "SELECT DISTINCT W.EMPID, W.ATTHEADID, W.EMPDETID, W.LEVID, W.MONTHYEAR, W.ALLOTFROM, "
            "W.ALLOTTO INTO #TEMPTABLE1" +
            wanted + " WHERE W.ALLOTFROM <= W.ALLOTTO");
        session.gConn.Execute(
            "CREATE INDEX IX_TEMPTABLE1 ON #TEMPTABLE1 (EMPID, LEVID, ALLOTFROM)");
        deleteUnwanted(session, block);
        status("Inserting missing records...");
        insertMissing(session);
        session.gConn.Execute(kDropWanted);
    }
}

// The salary is marked first; the payment goes with its rows, the encashment last.
void DeleteOrphanedEncashments(Session& session) {
    const std::string orphans =
        "ATT_ENCASH WHERE ALLOTID NOT IN (SELECT ALLOTID FROM LEV_ALLOTMENT) AND MONTHYEAR>=" +
        std::to_string(session.gFeature.LVSTARTMNYEAR);
    if (Recordset(session.gConn, "SELECT TOP 1 ALLOTID FROM " + orphans).IsEOF()) return;
    const std::string entries = "(SELECT ADDENTRYID FROM " + orphans + ")";
    session.gConn.Execute(
        "UPDATE SLC_SALARYCALC_E SET EDITMODEYN = 1 WHERE EXISTS (SELECT * FROM " + orphans +
        " AND ATT_ENCASH.EMPID = SLC_SALARYCALC_E.EMPID AND ATT_ENCASH.MONTHYEAR = "
        "SLC_SALARYCALC_E.MONTHYEAR) DELETE FROM SLC_ADDEMPCALC_D WHERE ADDENTRYID IN " +
        entries + " DELETE FROM SLC_ADDEMPCALC_E WHERE ADDENTRYID IN " + entries + " DELETE FROM " +
        orphans);
}

}  // namespace owb
