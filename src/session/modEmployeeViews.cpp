#include "session/modEmployeeViews.h"

#include "db/numbered_column.h"
#include "db/sql_text.h"
#include "session/Session.h"
#include "session/lenient_queries.h"
#include "session/queries.h"

namespace owb {

namespace {

std::string withoutBrackets(const std::string& name) {
    return name.substr(1, name.size() - 2);
}

// Last day up to which a detail version counts: its own end, or that of the month if it is
// earlier. The month's end without MAS_MONTHYEAR: the key less 22800 counts months from 1900.
std::string lastDayOfVersion(const Session& session, bool byMonth) {
    const std::string end = "ISNULL(DET.EFFTODATE, '31/DEC/2099')";
    if (!byMonth) return end;
    const std::string monthEnd = session.gFeature.CALCINMIDYN
                                     ? "QRYMNT.CALCENDDATE"
                                     : "(DATEADD(MONTH, QRYMNT.MONTHYEAR - 22800, 0) - 1)";
    return "(CASE WHEN " + end + " < " + monthEnd + " THEN " + end + " ELSE " + monthEnd + " END)";
}

}  // namespace

void SetHostNames(Session& session) {
    session.gHostPrefix = FnStrHostPrefix(session);
    session.gLeaveSummaryView = "[" + session.gHostPrefix + "_vw_LeaveSummary]";
    session.gFilterTable = "[TMPFILTER" + session.gHostPrefix + "]";
    session.gEmployeeView = "[vw_MAS_EMPLOYEE" + session.gHostPrefix + "]";
    session.gEmployeeDetView = "[Vw_MAS_EMPLOYEEDET" + session.gHostPrefix + "]";
}

void CreateFilterObjects(Session& session) {
    SetHostNames(session);
    const std::string table = session.gFilterTable, view = session.gEmployeeView;
    // CREATE VIEW must stand alone in its batch.
    session.gConn.Execute(
        Sql() << "IF EXISTS (SELECT * FROM SYS.TABLES WHERE NAME = "
              << literal(withoutBrackets(table)) << ") BEGIN INSERT INTO " << table
              << " SELECT EMPID, 1 AS FILTERYN1, 1 AS REPTYN1 FROM MAS_EMPLOYEE WHERE EMPID NOT IN "
                 "(SELECT EMPID FROM "
              << table << ") UPDATE " << table
              << " SET FILTERYN1 = 1, REPTYN1 = 1 END ELSE BEGIN SELECT EMPID, 1 AS FILTERYN1, 1 "
                 "AS REPTYN1 INTO "
              << table << " FROM MAS_EMPLOYEE ALTER TABLE " << table << " ADD CONSTRAINT [PK_"
              << withoutBrackets(table) << "] PRIMARY KEY (EMPID) END");
    session.gConn.Execute(Sql() << "IF EXISTS (SELECT * FROM SYS.VIEWS WHERE NAME = "
                                << literal(withoutBrackets(view)) << ") DROP VIEW " << view);
    session.gConn.Execute(Sql() << "CREATE VIEW " << view
                                << " AS SELECT E.*, ISNULL(T.FILTERYN1, 1) AS FILTERYN1, "
                                   "ISNULL(T.REPTYN1, 1) AS REPTYN1 FROM MAS_EMPLOYEE E LEFT JOIN "
                                << table << " T ON E.EMPID =T.EMPID");
}

void ClearEmployeeFilter(Session& session) {
    session.gConn.Execute("UPDATE " + session.gFilterTable + " SET FILTERYN1 = 1");
}

void ChooseEmployees(Session& session, const std::vector<std::string>& empIds) {
    constexpr size_t kAtOnce = 500;  // employees in one statement
    session.gConn.Execute("UPDATE " + session.gFilterTable + " SET REPTYN1 = 0");
    for (size_t from = 0; from < empIds.size(); from += kAtOnce) {
        std::string ids;
        for (size_t i = from; i < std::min(from + kAtOnce, empIds.size()); ++i)
            ids += (ids.empty() ? "" : ",") + empIds[i];
        session.gConn.Execute(Sql() << "UPDATE " << session.gFilterTable
                                    << " SET REPTYN1 = 1 WHERE EMPID IN (" << ids << ")");
    }
}

void CreateEmployeeDetailView(Session& session, int64_t lngEmpId, const std::string& monthList) {
    const bool byMonth = !monthList.empty();
    std::string columns =
        "DET.EMPID, DET.EMPDETID, DET.EFFFROMDATE, DET.EFFTODATE, DET.BRANCHID, DET.STRUCTID, "
        "DET.ATTHEADID";
    for (int n = 6; n <= 19; ++n) columns += ", EXT." + numberedColumn("EXTCLASS", n);
    columns += ", EXT.EMPEXTID";
    if (byMonth) columns += ", QRYMNT.MONTHYEAR";
    const std::string bank = session.gFeature.ADVBANKYN ? "EXT." : "DET.";
    columns += ", " + bank + "INSTID, " + bank + "BANKACNO, " + bank + "IFSCCODE";
    constexpr std::array classes = {"DESIGNATION", "OCCUPATION", "DEPARTMENT", "DIVISION", "GRADE"};
    for (size_t n = 0; n < classes.size(); ++n)
        columns += session.gExtCaptionUsed[n]
                       ? ", EXT.EXTCLASS0" + std::to_string(n + 1) + "  AS " + classes[n]
                       : std::string(", DET.") + classes[n];

    std::string sql = "CREATE VIEW " + session.gEmployeeDetView + " WITH ENCRYPTION AS SELECT " +
                      columns + " FROM MAS_EMPLOYEEDET DET ";
    if (byMonth) sql += "CROSS JOIN QRYMONTH QRYMNT ";
    sql +=
        "LEFT JOIN MAS_EMPLOYEEEXTDET EXT ON EXT.EMPID = DET.EMPID AND EXT.EMPEXTID = (SELECT "
        "TOP 1 EMPEXTID FROM MAS_EMPLOYEEEXTDET WHERE EMPID = DET.EMPID AND EFFFROMDATE <= " +
        lastDayOfVersion(session, byMonth) + " ORDER BY EFFFROMDATE DESC, EMPEXTID DESC)";
    std::string where;
    if (lngEmpId != 0) where = "DET.EMPID = " + std::to_string(lngEmpId);
    if (byMonth)
        where += (where.empty() ? "" : " AND ") + ("QRYMNT.MONTHYEAR IN (" + monthList + ")");
    if (!where.empty()) sql += " WHERE " + where;

    FnBlnExecute(session, "DROP VIEW " + session.gEmployeeDetView);
    FnBlnExecute(session, sql);
}

}  // namespace owb
