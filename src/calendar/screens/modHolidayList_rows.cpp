// Saving and deleting holidays: the checks in their order, the rows and exceptions, the marks, the
// audit.
#include "base/utf8.h"
#include "calendar/screens/modHolidayList.h"
#include "data/modAuditTrail.h"
#include "data/modCommon.h"
#include "data/modOWBSetting.h"
#include "db/recordset.h"

namespace owb {

namespace {

std::string number(int64_t value) {
    return std::to_string(value);
}

const char* yesNo(bool value) {
    return value ? "Yes" : "No";
}

constexpr const char* kGeneralRow = " And ISNULL(ATTHEADID,0) = 0 And ISNULL(BRANCHID,0) = 0 ";

}  // namespace

// An existing row passes the same checks but for the one of doubles.
std::string modHolidayList::refusal(const Holiday& holiday, int32_t& lngMonthYear) {
    if (!cmbAttHead.isInList()) return "'" + lblAttHead.caption + "' not found.  Select from list.";
    if (holiday.date == DateTime{}) return "Specify Holiday date.";
    if (!FnBlnInPayrollPeriod(session_, holiday.date))
        return "Given date cannot be before 'Start Month' specified.";
    if (trim(holiday.description).empty()) return "Specify holiday description.";
    const std::string day = FnStrSqlDate(holiday.date);
    lngMonthYear = monthOf(holiday.date);
    if (FnBlnMonthRangeLocked(session_, lngMonthYear, lngMonthYear, true, 0)) return lockText();
    const auto count = [&](const std::string& condition) {
        return FnVarGetValue(session_, "SELECT COUNT(HOLIDAYID) FROM ATT_HOLIDAY where " +
                                           condition + "'" + day + "'")
            .toInt();
    };
    if (chkBranchWise.value) {
        if (count("attheadid>0 and HOLIDAYDATE >= ") > 0)
            return "Future Holiday Date defined in Attendancewise.  Branchwise Holiday Can't "
                   "Define ";
    } else if (count("BRANCHID>0 and HOLIDAYDATE <= ") > 0) {
        const Value start = FnVarGetValue(session_, " Select BRGHEFROM  From MAS_OPTSET");
        return "Branch wise Holiday Enabled from " +
               (start.isNull() ? "" : dateText(start.toDate(), "dd/mmm/yy")) +
               "  AttendanceWise Holiday Can't Define ";
    }
    if (holiday.id != 0) return "";

    const Value general =
        FnVarGetValue(session_, "Select HOLIDAYID From ATT_HOLIDAY Where HOLIDAYDATE = '" + day +
                                    "'" + kGeneralRow);
    const std::string scope = scopeColumn() + "= " + number(scopeId());
    if (!general.isNull()) {
        if (scopeId() == 0 ||
            !FnBlnRecordExists(session_, "SELECT HOLIDAYID FROM ATT_HOLEX Where HOLIDAYID = " +
                                             general.toText() + " AND " + scope))
            return "Holiday already available.";
    } else if (scopeId() != 0 &&
               FnBlnRecordExists(session_,
                                 "Select HOLIDAYID From ATT_HOLIDAY Where HOLIDAYDATE = '" + day +
                                     "' And " + scope)) {
        return "Holiday defined in '" + scopeName() + "' category.";
    }
    return "";
}

void modHolidayList::cmdSave_Click() {
    if (denied(cmdSave)) return;
    Holiday holiday = selected_;
    holiday.date =
        parseDate(FnStrCleanDateCentury(txtHDate.value), DateOrder::DayFirst).value_or(DateTime{});
    holiday.description = txtHDesc.value;
    holiday.national = chkNH.value;
    int32_t lngMonthYear = 0;
    const std::string reason = refusal(holiday, lngMonthYear);
    if (reason == lockText()) return frontEnd().warning(reason, "Permission Denied");
    if (!reason.empty())
        return refuse(reason, !cmbAttHead.isInList() ? static_cast<Control&>(cmbAttHead)
                              : trim(holiday.description).empty() ? txtHDesc
                                                                  : txtHDate);
    const int32_t before = selected_.id == 0 ? lngMonthYear : monthOf(selected_.date);
    if (before != lngMonthYear && FnBlnMonthRangeLocked(session_, before, before, true, 0))
        return frontEnd().warning(lockText(), "Permission Denied");
    SaveHolidayRow(holiday);
    if (before != lngMonthYear) MarkHolidayMonth(before);
    MarkHolidayMonth(lngMonthYear);
    if (FnBlnAuditTrailOn(session_)) auditSave(holiday);
    LoadList();
    cmdNew_Click();
    session_.gGenCmn.ShowSavedMessage();
}

void modHolidayList::SaveHolidayRow(const Holiday& holiday) {
    const std::string day = FnStrSqlDate(holiday.date);
    const std::string scope = scopeColumn() + "= " + number(scopeId());
    const int64_t next =
        FnVarGetValue(session_, "SELECT Max(HOLIDAYID) FROM ATT_HOLIDAY", Value(0)).toInt() + 1;
    bool written = false;
    if (holiday.id == 0 && scopeId() != 0) {
        // A company's holiday that was taken from this scope comes back: no new row.
        const Value general = FnVarGetValue(
            session_, "Select HOLIDAYID From ATT_HOLIDAY Where HOLIDAYDATE = '" + day +
                          "' And HOLIDAYDESC = '" +
                          session_.gSpChar.FnStrSpSQL(holiday.description) + "'" + kGeneralRow);
        const std::string exception =
            " FROM ATT_HOLEX WHERE HOLIDAYID = " + general.toText() + " AND " + scope;
        if (!general.isNull() && FnBlnRecordExists(session_, "SELECT HOLIDAYID" + exception)) {
            session_.gConn.Execute("DELETE" + exception);
            written = true;
        }
    }
    if (!written) {
        Recordset rs;
        rs.Open("SELECT * FROM ATT_HOLIDAY WHERE " +
                    (holiday.id != 0 ? "HOLIDAYID = " + number(holiday.id)
                                     : "HOLIDAYDATE = '" + day + "'" +
                                           (scopeId() == 0 ? kGeneralRow : " And " + scope)),
                session_.gConn, adOpenKeyset, adLockOptimistic);
        if (rs.IsEOF()) {
            rs.AddNew();
            rs.Fields("HOLIDAYID") = Value(next);
            rs.Fields("GENERALYN") = Value(scopeId() == 0 ? 1 : 0);
            if (scopeId() != 0) rs.Fields(trim(scopeColumn())) = Value(scopeId());
        }
        rs.Fields("HOLIDAYDATE") = Value(holiday.date);
        rs.Fields("HOLIDAYDESC") = Value(holiday.description);
        rs.Fields("HOLIDAYTYPE") = Value(holiday.national ? 1 : 0);
        rs.Update();
    }
    refreshBranchStart();
}

// BRGHEFROM is the first date of a holiday of a branch.
void modHolidayList::refreshBranchStart() {
    session_.gConn.Execute(
        "UPDATE MAS_OPTSET SET BRGHEFROM =(SELECT MIN(HOLIDAYDATE) FROM ATT_HOLIDAY where "
        "BRANCHID>0) ");
    const Value start = FnVarGetValue(session_, " Select BRGHEFROM  From MAS_OPTSET");
    lblEffFrom.caption = start.isNull() ? "N/A" : dateText(start.toDate(), "dd/mmm/yyyy");
}

// Registers and month rows are not limited to the scope: all rows of the month are looked at again.
void modHolidayList::MarkHolidayMonth(int32_t lngMonthYear) {
    const std::string month = number(lngMonthYear);
    const std::string salary = scopeId() == 0
                                   ? " WHERE MONTHYEAR = " + month
                                   : " WHERE EMPID In (Select EMPID From MAS_EMPLOYEEDET Where" +
                                         scopeColumn() + "= " + number(scopeId()) +
                                         ") And MONTHYEAR = " + month;
    session_.gConn.Execute("UPDATE SLC_SALARYCALC_E SET EDITMODEYN = 1" + salary);
    session_.gConn.Execute("UPDATE SLC_SALARYRATE_E SET TSALEDITMODEYN = 1" + salary);
    session_.gConn.Execute("UPDATE ATT_DAYTODAY SET EDITMODEYN=1 WHERE MONTHYEAR = " + month);
    session_.gConn.Execute("UPDATE LEV_MONTHDET SET EDITMODEYN=1 WHERE MONTHYEAR = " + month);
    // Only leaves allotted on days worked depend on holidays.
    session_.gConn.Execute(
        "UPDATE LEV_ALLOTMENT SET EDITMODEYN = 1 FROM LEV_ALLOTMENT WHERE LEVID IN(SELECT DISTINCT "
        "LEVID FROM LEV_SETTINGS WHERE (ALLOTON = 2 OR ALLOTON >= 7)) AND "
        "DBO.FNLNGMONTHYEAR(ALLOTFROM, ALLOTTO) = " +
        month);
}

void modHolidayList::cmdDelete_Click() {
    if (denied(cmdDelete)) return;
    if (fpgHDetail.rowCount() == 0) return inform("No records to delete.");
    if (!cmbAttHead.isInList()) return refuse("Select '" + lblAttHead.caption + "'.", cmbAttHead);
    if (selected_.id == 0) return inform("Select record to delete.");
    const std::string id = number(selected_.id);
    Recordset row(session_.gConn, "SELECT GENERALYN FROM ATT_HOLIDAY WHERE HOLIDAYID = " + id);
    if (row.IsEOF()) return inform("Holiday already deleted.");
    const int32_t lngMonthYear = monthOf(selected_.date);
    if (FnBlnMonthRangeLocked(session_, lngMonthYear, lngMonthYear, true, 0))
        return frontEnd().warning(lockText(), "Permission Denied");
    if (!ask("Do you want to delete selected record?")) return;
    const bool general = row.Fields(0).toBool();
    if (general && scopeId() != 0) {
        if (chkBranchWise.value &&
            FnBlnRecordExists(session_,
                              "SELECT HOLIDAYID FROM ATT_HOLEX WHERE ATTHEADID > 0 AND "
                              "HOLIDAYID = " +
                                  id))
            return inform("General Holiday Can't Delete in Branchwise");
        Recordset rs;
        rs.Open("SELECT * FROM ATT_HOLEX WHERE" + scopeColumn() + "= " + number(scopeId()) +
                    " AND HOLIDAYID = " + id,
                session_.gConn, adOpenKeyset, adLockOptimistic);
        if (rs.IsEOF()) {
            rs.AddNew();
            rs.Fields(trim(scopeColumn())) = Value(scopeId());
            rs.Fields("HOLIDAYID") = Value(selected_.id);
            rs.Update();
        }
    } else {
        session_.gConn.Execute("Delete From ATT_HOLIDAY Where HOLIDAYID = " + id);
        session_.gConn.Execute("Delete From ATT_HOLEX Where HOLIDAYID = " + id);
    }
    MarkHolidayMonth(lngMonthYear);
    refreshBranchStart();
    if (FnBlnAuditTrailOn(session_))
        UpdateAuditTrail(session_, kAuditModule, 0, "General Holiday Deleted",
                         scopeAudit() + describe(selected_));
    LoadList();
    cmdNew_Click();
}

// --- the audit's words ---

std::string modHolidayList::scopeAudit() const {
    return (chkBranchWise.value ? " :Branch Name = " : " :Attendance Name = ") +
           (scopeId() == 0 ? "All" : scopeName());
}

std::string modHolidayList::describe(const Holiday& holiday) const {
    return ":Holiday Date = " + dateText(holiday.date, "dd/mm/yyyy") +
           ":Description = " + holiday.description +
           ":National Holiday = " + yesNo(holiday.national);
}

void modHolidayList::auditSave(const Holiday& holiday) {
    if (holiday.id == 0) {
        UpdateAuditTrail(session_, kAuditModule, 0, "General Holiday Added",
                         scopeAudit() + describe(holiday));
        return;
    }
    std::string detail = scopeAudit();
    const auto change = [&](const char* label, const std::string& before, const std::string& now) {
        if (before != now) detail += label + (" Changed from " + before) + " to " + now;
    };
    change(":Holiday Date", dateText(selected_.date, "dd/mm/yyyy"),
           dateText(holiday.date, "dd/mm/yyyy"));
    change(":Description", selected_.description, holiday.description);
    change(":National Holiday Applicability", yesNo(selected_.national), yesNo(holiday.national));
    UpdateAuditTrail(session_, kAuditModule, 0, "General Holiday Updated", detail);
}

}  // namespace owb
