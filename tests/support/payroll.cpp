#include "support/payroll.h"

#include "leave/modLeaveFunctions.h"
#include "schema/modSQLFunction.h"
#include "session/modOWBSetting.h"

namespace owb::test {

namespace {

std::string text(int64_t n) {
    return std::to_string(n);
}
std::string date(const std::string& d) {
    return d.empty() ? "NULL" : "'" + d + "'";
}

std::string dayBefore(const std::string& d) {
    return dateText(parseDate(d).value().plusDays(-1), "yyyy-MM-dd");
}

// "F", "S", "FS" as two flags.
std::string flags(const std::string& halves) {
    auto has = [&](char c) { return halves.find(c) != std::string::npos ? "1" : "0"; };
    return std::string(has('F')) + ", " + has('S');
}

}  // namespace

Payroll::Payroll(int32_t from, int32_t to) {
    addMonths(from, to);
    run("UPDATE MAS_OPTSETFEATURE SET LVSTARTMNYEAR = " + text(from));
    InstallServerObjects(session);
    LoadOptSet(session);
}

void Payroll::head(const Head& h) {
    run("INSERT INTO MAS_ATTHEAD (ATTHEADID, ATTHEADNAME, ATTMENUNAME, ATTNTIGHTYN, ATTNTYPE, "
        "ATTNDTODYN, OT1YN, OT2YN, NODFORCALC, MINHALFDAY, MAXHALFDAY, CUTOFFHALFDAY, "
        "MINFULLDAY, MAXFULLDAY, CUTOFFFULLDAY, ATTUPPERLIMIT, OTHOURMIN) VALUES (" +
        text(h.id) + ", 'Head " + text(h.id) + "', 'Head " + text(h.id) + "', " +
        (h.tight ? "1" : "0") + ", " + text(h.type) + ", 1, 0, 0, " + text(h.basis) +
        ", 2, 5.99, 4, 6, 24, 8, 24, 0)");
    run("INSERT INTO ATT_OPTSETTINGS (ATTHEADID, LOADDEFYN, DEFVAL) VALUES (" + text(h.id) +
        ", 0, 0)");
}

void Payroll::setHead(int id, const std::string& assignments) {
    run("UPDATE MAS_ATTHEAD SET " + assignments + " WHERE ATTHEADID = " + text(id));
}

void Payroll::setOptions(int head, const std::string& assignments) {
    run("UPDATE ATT_OPTSETTINGS SET " + assignments + " WHERE ATTHEADID = " + text(head));
}

void Payroll::employee(int id, const std::string& joined, int head, const std::string& left,
                       int branch) {
    run("INSERT INTO MAS_EMPLOYEE (EMPID, EMPNAME, DOJ, SALCALCFROM, DOL) VALUES (" + text(id) +
        ", 'Employee " + text(id) + "', " + date(joined) + ", " + date(joined) + ", " + date(left) +
        ")");
    run("INSERT INTO MAS_EMPLOYEEDET (EMPID, EMPDETID, EFFFROMDATE, ATTHEADID, BRANCHID, "
        "STRUCTID) VALUES (" +
        text(id) + ", 1, " + date(joined) + ", " + text(head) + ", " + text(branch) + ", 1)");
}

void Payroll::version(int id, int det, const std::string& from, int head, int branch) {
    run("UPDATE MAS_EMPLOYEEDET SET EFFTODATE = '" + dayBefore(from) +
        "' WHERE EMPID = " + text(id) + " AND EMPDETID = " + text(det - 1));
    run("INSERT INTO MAS_EMPLOYEEDET (EMPID, EMPDETID, EFFFROMDATE, ATTHEADID, BRANCHID, "
        "STRUCTID) VALUES (" +
        text(id) + ", " + text(det) + ", '" + from + "', " + text(head) + ", " + text(branch) +
        ", 1)");
}

void Payroll::salary(int id, int det, int32_t from, int32_t to) {
    for (int32_t month = from; month <= to; ++month)
        run("INSERT INTO SLC_SALARYCALC_E (SALID, EMPID, EMPDETID, MONTHYEAR, EDITMODEYN) SELECT "
            "ISNULL(MAX(SALID), 0) + 1, " +
            text(id) + ", " + text(det) + ", " + text(month) + ", 0 FROM SLC_SALARYCALC_E");
}

void Payroll::leaveKind(int id, const std::string& shortName, bool affectsSalary, bool leave) {
    run("INSERT INTO ATT_DEFINITION (LEVID, LEVNAME, LEVSHORT, LEAVEYN, AFFECTSALARYYN, "
        "ALLOTMENTYN) VALUES (" +
        text(id) + ", '" + shortName + "', '" + shortName + "', " + (leave ? "1" : "0") + ", " +
        (affectsSalary ? "1" : "0") + ", 1)");
}

void Payroll::leave(int id, int det, int leaveId, const std::string& on,
                    const std::string& halves) {
    const bool figure = halves.find_first_of("FS") == std::string::npos;
    run("INSERT INTO LEV_DETAILS (EMPID, EMPDETID, LEVID, LEAVEDATE, FIRSTHALFYN, SECONDHALFYN, "
        "LEVMONTHLY) VALUES (" +
        text(id) + ", " + text(det) + ", " + text(leaveId) + ", '" + on + "', " + flags(halves) +
        ", " + (figure ? halves : "NULL") + ")");
}

void Payroll::weekly(int head, int weekday, const std::string& weeks, int32_t since) {
    weeklyRow("LEV_WEEKLYHLD (WHID, ATTHEADID", text(head), weekday, weeks, since);
}

void Payroll::weeklyOfBranch(int branch, int weekday, const std::string& weeks, int32_t since) {
    weeklyRow("LEV_WEEKLYHLDBRANCH (WHID, BRANCHID", text(branch), weekday, weeks, since);
}

void Payroll::weeklyRow(const std::string& table, const std::string& owner, int weekday,
                        const std::string& weeks, int32_t since) {
    std::string values;
    for (size_t week = 0; week < 5; ++week) values += ", " + flags(weeks.substr(week * 3, 2));
    run("INSERT INTO " + table +
        ", EFFFROM, WEEKID, FH1YN, SH1YN, FH2YN, SH2YN, FH3YN, SH3YN, FH4YN, SH4YN, FH5YN, "
        "SH5YN) VALUES (1, " +
        owner + ", " + text(since) + ", " + text(weekday) + values + ")");
}

void Payroll::rotating(int head, int employee, const std::string& on, const std::string& halves) {
    run("INSERT INTO ATT_WKLYROT (ATTHEADID, EMPID, WEEKDATE, FIRSTHALFYN, SECONDHALFYN) VALUES (" +
        text(head) + ", " + text(employee) + ", '" + on + "', " + flags(halves) + ")");
}

void Payroll::holiday(int id, const std::string& on, int head, int branch) {
    run("INSERT INTO ATT_HOLIDAY (HOLIDAYID, HOLIDAYDATE, GENERALYN, ATTHEADID, BRANCHID) VALUES "
        "(" +
        text(id) + ", '" + on + "', " + (head == 0 && branch == 0 ? "1" : "0") + ", " +
        (head ? text(head) : "NULL") + ", " + (branch ? text(branch) : "NULL") + ")");
}

void Payroll::exceptHead(int holiday, int head) {
    run("INSERT INTO ATT_HOLEX (HOLIDAYID, ATTHEADID) VALUES (" + text(holiday) + ", " +
        text(head) + ")");
}

void Payroll::hours(int id, int det, int32_t month, int day, const std::string& value) {
    run("UPDATE ATT_OVERTIME SET OTDAY" + std::string(day < 10 ? "0" : "") + text(day) + " = " +
        value + " WHERE ATTTRANNO = (SELECT ATTTRANNO FROM ATT_DAYTODAY WHERE EMPID = " + text(id) +
        " AND EMPDETID = " + text(det) + " AND MONTHYEAR = " + text(month) + ")");
    run("UPDATE ATT_DAYTODAY SET EDITMODEYN = 1 WHERE EMPID = " + text(id));
}

std::string Payroll::monthDet(int id, int det, int32_t month) {
    return rows(
        "SELECT CAST(NODCALC AS FLOAT), CAST(NOD AS FLOAT), CAST(NDP AS FLOAT), CAST(OT1 AS "
        "FLOAT), CAST(OT2 AS FLOAT), CAST(ADJHRS AS FLOAT) FROM LEV_MONTHDET WHERE EMPID = " +
        text(id) + " AND EMPDETID = " + text(det) + " AND MONTHYEAR = " + text(month));
}

void Payroll::reconcile() {
    ReconcileMonthDetails(session);
    ReconcileMonthlyRows(session);
}

void Payroll::recalculate() {
    NoProgress progress;
    UpdateDayDetails(session, progress, true, 0);
    UpdateMonthDays(session, progress);
}

}  // namespace owb::test
