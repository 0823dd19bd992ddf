#include "leave/VersionChanges.h"

#include "db/recordset.h"
#include "session/Session.h"

namespace owb {

namespace {

// Marks for a list of employees with a day each: a table expression C (EMPID, SINCE). The ledger is
// marked from a year before on, the longest period whose credit may rest on the day.
std::string marksSince(const std::string& changes) {
    std::string sql;
    for (const char* table : {"LEV_MONTHDET", "ATT_DAYTODAY"})
        sql += std::string(" UPDATE ") + table + " SET EDITMODEYN = 1 FROM " + table + " T, " +
               changes +
               " C WHERE T.EMPID = C.EMPID AND T.MONTHYEAR >= [dbo].FnLngMonthYear(C.SINCE, "
               "C.SINCE) AND T.EDITMODEYN <> 1 AND T.MONTHYEAR NOT IN (SELECT MONTHYEAR FROM "
               "MAS_MONTHYEAR WHERE TDSPORTYN = 1)";
    return sql + " UPDATE LEV_ALLOTMENT SET EDITMODEYN = 1 FROM LEV_ALLOTMENT T, " + changes +
           " C WHERE T.EMPID = C.EMPID AND T.ALLOTTO >= DATEADD(YEAR, -1, C.SINCE) AND "
           "T.EDITMODEYN <> 1";
}

std::string versionOn(const std::string& date) {
    return "(SELECT MAX(EMPDETID) FROM MAS_EMPLOYEEDET MD WHERE MD.EMPID = T.EMPID AND "
           "MD.EFFFROMDATE <= " +
           date + " AND (MD.EFFTODATE IS NULL OR MD.EFFTODATE >= " + date + "))";
}

// The rows of a table T whose version is another than that in force on a date, marked and changed;
// `further` is a condition on them.
void align(Session& session, const std::string& table, const std::string& date,
           const std::string& further, bool withHead) {
    const std::string version = versionOn(date);
    const std::string wrong =
        " FROM " + table + " T WHERE ISNULL(T.EMPDETID, 0) <> " + version + further;
    if (Recordset(session.gConn, "SELECT TOP 1 EMPID" + wrong).IsEOF()) return;
    std::string batch = "SELECT T.EMPID, MIN(" + date + ") AS SINCE INTO #ALIGNED" + wrong +
                        " GROUP BY T.EMPID" + marksSince("#ALIGNED") + " UPDATE " + table +
                        " SET EMPDETID = " + version + wrong;
    if (withHead)
        batch += " UPDATE " + table + " SET ATTHEADID = MD.ATTHEADID FROM " + table +
                 " T, MAS_EMPLOYEEDET MD, #ALIGNED C WHERE T.EMPID = C.EMPID AND MD.EMPID = "
                 "T.EMPID AND MD.EMPDETID = T.EMPDETID AND T.ATTHEADID <> MD.ATTHEADID";
    session.gConn.ExecuteAtomic(batch + " DROP TABLE #ALIGNED");
}

}  // namespace

void AlignVersions(Session& session) {
    align(session, "LEV_DETAILS", "T.LEAVEDATE", "", false);
    align(session, "LEV_ADJUSTMENT", "ISNULL(T.ASONDATE, [dbo].FnDteGetLastDate(T.MONTHYEAR))", "",
          true);
    // Hours follow their register row; only what has no version at all is brought to one.
    align(session, "LEV_OTDETAILS", "T.OTDATE", " AND ISNULL(T.EMPDETID, 0) = 0", false);
}

namespace {

// EMPID and SINCE of each difference between what stands and what was seen: the first day on which
// it matters.
std::string differences() {
    const std::string never = "'2099-12-31'";
    const std::string both =
        " FROM MAS_EMPLOYEEDET MD WITH (HOLDLOCK) INNER JOIN MAS_EMPLOYEE ME WITH (HOLDLOCK) ON "
        "ME.EMPID = MD.EMPID INNER JOIN LEV_CONFIGUREDDET S ON S.EMPID = MD.EMPID AND S.EMPDETID = "
        "MD.EMPDETID WHERE ";
    const auto earlier = [&](const std::string& column, const std::string& now) {
        const std::string a = "ISNULL(" + now + ", " + never + ")",
                          b = "ISNULL(S." + column + ", " + never + ")";
        return "SELECT MD.EMPID, CASE WHEN " + a + " < " + b + " THEN " + a + " ELSE " + b +
               " END AS SINCE" + both + a + " <> " + b;
    };
    return earlier("EFFFROMDATE", "MD.EFFFROMDATE") + " UNION ALL " +
           earlier("EFFTODATE", "MD.EFFTODATE") + " UNION ALL " + earlier("DOJ", "ME.DOJ") +
           " UNION ALL " + earlier("DOL", "ME.DOL") + " UNION ALL " +
           earlier("SALCALCFROM", "ME.SALCALCFROM") + " UNION ALL SELECT MD.EMPID, MD.EFFFROMDATE" +
           both +
           "(ISNULL(MD.ATTHEADID, 0) <> ISNULL(S.ATTHEADID, 0) OR ISNULL(MD.BRANCHID, 0) <> "
           "ISNULL(S.BRANCHID, 0)) UNION ALL SELECT MD.EMPID, MD.EFFFROMDATE FROM MAS_EMPLOYEEDET "
           "MD WHERE NOT EXISTS (SELECT * FROM LEV_CONFIGUREDDET S WHERE S.EMPID = MD.EMPID AND "
           "S.EMPDETID = MD.EMPDETID) UNION ALL SELECT S.EMPID, S.EFFFROMDATE FROM "
           "LEV_CONFIGUREDDET S WHERE NOT EXISTS (SELECT * FROM MAS_EMPLOYEEDET MD WHERE MD.EMPID "
           "= "
           "S.EMPID AND MD.EMPDETID = S.EMPDETID)";
}

constexpr const char* kSeen =
    " INSERT INTO LEV_CONFIGUREDDET (EMPID, EMPDETID, EFFFROMDATE, EFFTODATE, ATTHEADID, BRANCHID, "
    "DOJ, DOL, SALCALCFROM) SELECT MD.EMPID, MD.EMPDETID, MD.EFFFROMDATE, MD.EFFTODATE, "
    "MD.ATTHEADID, MD.BRANCHID, ME.DOJ, ME.DOL, ME.SALCALCFROM FROM MAS_EMPLOYEEDET MD WITH "
    "(HOLDLOCK) INNER JOIN MAS_EMPLOYEE ME WITH (HOLDLOCK) ON ME.EMPID = MD.EMPID";

}  // namespace

void MarkVersionChanges(Session& session) {
    if (Recordset(session.gConn, "SELECT TOP 1 EMPID FROM LEV_CONFIGUREDDET").IsEOF()) {
        session.gConn.Execute(kSeen);
        return;
    }
    const std::string changes = "(" + differences() + ") D";
    if (Recordset(session.gConn, "SELECT TOP 1 EMPID FROM " + changes).IsEOF()) return;
    session.gConn.ExecuteAtomic(
        "SELECT EMPID, MIN(SINCE) AS SINCE INTO #CHANGED FROM " + changes + " GROUP BY EMPID" +
        marksSince("#CHANGED") +
        " DELETE FROM LEV_CONFIGUREDDET WHERE EMPID IN (SELECT EMPID FROM #CHANGED)" + kSeen +
        " WHERE NOT EXISTS (SELECT * FROM LEV_CONFIGUREDDET S WHERE S.EMPID = MD.EMPID) DROP TABLE "
        "#CHANGED");
}

}  // namespace owb
