// The rows of registers and months in step with the salary rows: what has no salary row goes first,
// what is missing comes then, and both mark the months that they change.
#include "db/numbered_column.h"
#include "db/recordset.h"
#include "leave/modLeaveFunctions.h"
#include "session/Session.h"

namespace owb {

namespace {

// ", DAY01, DAY02 ..." to the last day of the longest month.
std::string dayColumns() {
    std::string columns;
    for (int day = 1; day <= 31; ++day) columns += ", " + numberedColumn("DAY", day);
    return columns;
}

// The same value for each of them.
std::string dayValues(const std::string& value) {
    std::string values;
    for (int day = 1; day <= 31; ++day) values += ", " + value;
    return values;
}

// The months of leave, as a condition on a row's month.
std::string sinceStart(const Session& session) {
    return "MONTHYEAR >= " + std::to_string(session.gFeature.LVSTARTMNYEAR);
}

}  // namespace

// A register row and its twin go together and come together.
void ReconcileMonthlyRows(Session& session) {
    const std::string since = sinceStart(session);
    const std::string withoutSalary =
        " WHERE EMPID NOT IN (SELECT EMPID FROM SLC_SALARYCALC_E WHERE EMPID = "
        "ATT_DAYTODAY.EMPID AND MONTHYEAR = ATT_DAYTODAY.MONTHYEAR AND EMPDETID = "
        "ATT_DAYTODAY.EMPDETID) AND " +
        since;
    session.gConn.ExecuteAtomic(
        "DELETE FROM ATT_OVERTIME WHERE ATTTRANNO IN (SELECT ATTTRANNO FROM ATT_DAYTODAY" +
        withoutSalary + ") DELETE FROM ATT_DAYTODAY" + withoutSalary);

    // A number that a stray twin still bears is not given again: its hours would come with it.
    session.gConn.ExecuteAtomic(
        "DECLARE @LAST bigint SET @LAST = ISNULL((SELECT MAX(ATTTRANNO) FROM (SELECT ATTTRANNO "
        "FROM "
        "ATT_DAYTODAY WITH (TABLOCKX, HOLDLOCK) UNION ALL SELECT ATTTRANNO FROM ATT_OVERTIME) "
        "TMP), "
        "0) INSERT INTO ATT_DAYTODAY(ATTTRANNO, EMPID, EMPDETID, ATTHEADID, MONTHYEAR, EDITMODEYN" +
        dayColumns() +
        ") (SELECT (ROW_NUMBER() OVER (ORDER BY MONTHYEAR, EMPID, EMPDETID) + @LAST) AS ATTTRANNO, "
        "EMPID, EMPDETID, ATTHEADID, MONTHYEAR, 1" +
        dayValues("FILLVALUE") +
        " FROM (SELECT DISTINCT SE.EMPID, SE.EMPDETID, MD.ATTHEADID, SE.MONTHYEAR, CASE WHEN "
        "ISNULL(AO.LOADDEFYN, 0) <> 1 THEN '' WHEN ISNULL(AO.DEFVAL, 0) = 1 THEN '0' WHEN "
        "MA.ATTNTYPE = 2 THEN 'P' ELSE '' END AS FILLVALUE FROM SLC_SALARYCALC_E SE INNER JOIN "
        "MAS_EMPLOYEEDET MD ON MD.EMPID = SE.EMPID AND MD.EMPDETID = SE.EMPDETID INNER JOIN "
        "MAS_ATTHEAD MA ON MA.ATTHEADID = MD.ATTHEADID LEFT JOIN ATT_OPTSETTINGS AO ON "
        "AO.ATTHEADID = MD.ATTHEADID WHERE (MA.ATTNTYPE = 2 OR MA.ATTNTYPE = 3) AND SE." +
        since +
        " AND NOT EXISTS (SELECT * FROM ATT_DAYTODAY AD WHERE AD.EMPID = SE.EMPID AND "
        "AD.EMPDETID = SE.EMPDETID AND AD.MONTHYEAR = SE.MONTHYEAR)) TMP) INSERT INTO "
        "ATT_OVERTIME(ATTTRANNO) (SELECT ATTTRANNO FROM ATT_DAYTODAY WHERE ATTTRANNO NOT IN "
        "(SELECT ATTTRANNO FROM ATT_OVERTIME))");
    session.gConn.Execute(
        "UPDATE LEV_MONTHDET SET EDITMODEYN = 1 WHERE EDITMODEYN <> 1 AND MONTHYEAR NOT IN (SELECT "
        "MONTHYEAR FROM MAS_MONTHYEAR WHERE TDSPORTYN = 1) AND EXISTS (SELECT * FROM ATT_DAYTODAY "
        "AD WHERE AD.EMPID = LEV_MONTHDET.EMPID AND AD.MONTHYEAR = LEV_MONTHDET.MONTHYEAR AND "
        "AD.EDITMODEYN = 1)");
}

// The rows that come or go mark the others of their employee's month in the same transaction.
void ReconcileMonthDetails(Session& session) {
    const std::string since = sinceStart(session);
    const std::string unwanted =
        " FROM LEV_MONTHDET WHERE " + since +
        " AND MONTHYEAR NOT IN (SELECT MONTHYEAR FROM MAS_MONTHYEAR WHERE TDSPORTYN = 1) AND NOT "
        "EXISTS (SELECT * FROM SLC_SALARYCALC_E SE, MAS_EMPLOYEEDET MD WHERE SE.EMPID = "
        "LEV_MONTHDET.EMPID AND SE.EMPDETID = LEV_MONTHDET.EMPDETID AND SE.MONTHYEAR = "
        "LEV_MONTHDET.MONTHYEAR AND MD.EMPID = SE.EMPID AND MD.EMPDETID = SE.EMPDETID)";
    const std::string missing =
        " FROM SLC_SALARYCALC_E SE INNER JOIN MAS_MONTHYEAR MM ON MM.MONTHYEAR = SE.MONTHYEAR "
        "INNER "
        "JOIN MAS_EMPLOYEEDET MD ON MD.EMPID = SE.EMPID AND MD.EMPDETID = SE.EMPDETID WHERE "
        "ISNULL(MM.TDSPORTYN, 0) <> 1 AND SE." +
        since +
        " AND NOT EXISTS (SELECT * FROM LEV_MONTHDET LM WHERE LM.EMPID = SE.EMPID AND LM.EMPDETID "
        "= SE.EMPDETID AND LM.MONTHYEAR = SE.MONTHYEAR)";
    const auto markMonths = [](const std::string& rows) {
        return "UPDATE LEV_MONTHDET SET EDITMODEYN = 1 FROM LEV_MONTHDET LM, (" + rows +
               ") C WHERE LM.EMPID = C.EMPID AND LM.MONTHYEAR = C.MONTHYEAR AND LM.EDITMODEYN <> "
               "1 ";
    };
    if (!Recordset(session.gConn, "SELECT TOP 1 EMPID" + unwanted).IsEOF())
        session.gConn.ExecuteAtomic(markMonths("SELECT DISTINCT EMPID, MONTHYEAR" + unwanted) +
                                    "DELETE" + unwanted);
    if (!Recordset(session.gConn, "SELECT TOP 1 SE.EMPID" + missing).IsEOF())
        session.gConn.ExecuteAtomic(
            markMonths("SELECT DISTINCT SE.EMPID, SE.MONTHYEAR" + missing) +
            "INSERT INTO LEV_MONTHDET(EMPID, EMPDETID, MONTHYEAR, NODCALC, NOD, NDP, OT1, OT2, "
            "ADJHRS, EDITMODEYN) (SELECT DISTINCT SE.EMPID, SE.EMPDETID, SE.MONTHYEAR, 0, 0, 0, 0, "
            "0, 0, 1" +
            missing + ")");
}

}  // namespace owb
