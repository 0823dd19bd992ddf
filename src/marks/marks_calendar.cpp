// Marks by holidays and weekly offs.
#include "db/sql_text.h"
#include "family/modCommon.h"
#include "marks/marks.h"
#include "session/Session.h"
#include "session/months.h"

namespace owb {

namespace {

// " UPDATE ... " of the salary's two tables for the rows of a condition.
std::string salaryRows(const std::string& where) {
    return " UPDATE SLC_SALARYCALC_E SET EDITMODEYN = 1" + where +
           " UPDATE SLC_SALARYRATE_E SET TSALEDITMODEYN = 1" + where;
}

// The month's first day, as ledger rows begin.
std::string firstDay(Session& session, int32_t lngMonthYear) {
    DateTime first, last;
    GetMonthPeriod(session, lngMonthYear, first, last);
    return FnStrIsoLiteral(first);
}

// Month rows of employees of the heads; `heads` is " = 10" or " IN (...)".
std::string ofHeads(const std::string& heads) {
    return " AND EMPID=(SELECT EMPID FROM MAS_EMPLOYEEDET WHERE EMPDETID=LEV_MONTHDET.EMPDETID AND "
           "EMPID=LEV_MONTHDET.EMPID AND ATTHEADID" +
           heads + ")";
}

}  // namespace

std::string HolidayScope::condition() const {
    return Sql() << column << " = " << id;
}

std::string MarkHolidaySql(int32_t lngMonthYear, const HolidayScope& scope) {
    Sql where, sql;
    where << " WHERE MONTHYEAR = " << lngMonthYear;
    Sql salary = where;
    if (scope.id != 0)
        salary << " AND EMPID In (Select EMPID From MAS_EMPLOYEEDET Where " << scope.condition()
               << ")";
    sql << salaryRows(salary) << " UPDATE ATT_DAYTODAY SET EDITMODEYN=1" << where
        << " UPDATE LEV_MONTHDET SET EDITMODEYN=1" << where
        << " UPDATE LEV_ALLOTMENT SET EDITMODEYN = 1 FROM LEV_ALLOTMENT WHERE LEVID IN(SELECT "
           "DISTINCT LEVID FROM LEV_SETTINGS WHERE (ALLOTON = 2 OR ALLOTON >= 7)) AND "
           "DBO.FNLNGMONTHYEAR(ALLOTFROM, ALLOTTO) = "
        << lngMonthYear;
    return sql;
}

std::string MarkWeeklyOffSql(Session& session, int32_t lngMonthYear, const std::string& heads) {
    return Sql() << " UPDATE ATT_DAYTODAY SET EDITMODEYN=1 WHERE MONTHYEAR >= " << lngMonthYear
                 << " AND ATTHEADID" << heads
                 << " UPDATE LEV_MONTHDET SET EDITMODEYN=1 WHERE MONTHYEAR>=" << lngMonthYear
                 << ofHeads(heads) << " UPDATE LEV_ALLOTMENT SET EDITMODEYN = 1 WHERE ATTHEADID"
                 << heads << " AND allotfrom >=" << firstDay(session, lngMonthYear);
}

std::string MarkWeeklyOffUnchangedSql(int32_t lngMonthYear) {
    return Sql() << " UPDATE ATT_DAYTODAY SET EDITMODEYN=1 WHERE MONTHYEAR >= " << lngMonthYear
                 << " UPDATE LEV_MONTHDET SET EDITMODEYN=1 WHERE MONTHYEAR >= " << lngMonthYear;
}

std::string MarkWeeklyOffDeletedSql(Session& session, int32_t lngMonthYear, int32_t intAttHeadId) {
    const std::string head = intAttHeadId == 0 ? "" : " = " + std::to_string(intAttHeadId);
    Sql from, sql;
    from << " WHERE MONTHYEAR >= " << lngMonthYear;
    Sql salary = from;
    if (!head.empty())
        salary << " AND EMPID In (Select EMPID From MAS_EMPLOYEEDET Where ATTHEADID" << head << ")";
    sql << salaryRows(salary) << " UPDATE LEV_ALLOTMENT SET EDITMODEYN = 1 WHERE allotfrom >="
        << firstDay(session, lngMonthYear) << (head.empty() ? "" : " AND ATTHEADID" + head)
        << " UPDATE ATT_DAYTODAY SET EDITMODEYN = 1" << from
        << (head.empty() ? "" : " AND ATTHEADID" + head)
        << " UPDATE LEV_MONTHDET SET EDITMODEYN = 1" << from << (head.empty() ? "" : ofHeads(head));
    return sql;
}

}  // namespace owb
