// Saving and deleting holidays: the checks in their order, the rows and exceptions, the marks, the
// audit.
#include "base/utf8.h"
#include "calendar/screens/modHolidayList.h"
#include "db/recordset.h"
#include "family/modCommon.h"
#include "session/locks.h"
#include "session/modAuditTrail.h"
#include "session/modOWBSetting.h"
#include "session/months.h"
#include "session/queries.h"

namespace owb {

namespace {

std::string number(int64_t value) {
    return std::to_string(value);
}

const char* yesNo(bool value) {
    return value ? "Yes" : "No";
}

constexpr const char* kAlreadyAvailable = "Holiday already available.";
constexpr const char* kHoliday = "The holiday";
constexpr const char* kGeneralRow = " And ISNULL(ATTHEADID,0) = 0 And ISNULL(BRANCHID,0) = 0 ";

}  // namespace

// An existing row passes the same checks but for the one of doubles.
std::string modHolidayList::refusal(const Holiday& holiday, int32_t& lngMonthYear) {
    if (!cmbAttHead.isInList()) return "'" + lblAttHead.caption + "' not found.  Select from list.";
    if (holiday.date == DateTime{}) return "Specify Holiday date.";
    if (!FnBlnInPayrollPeriod(session_, holiday.date))
        return "Given date cannot be before 'Start Month' specified.";
    if (trim(holiday.description).empty()) return "Specify holiday description.";
    if (utf8Length(holiday.description) > kLongestDescription)
        return "The description is longer than " + number(kLongestDescription) + " characters.";
    const std::string day = FnStrSqlDate(holiday.date);
    lngMonthYear = monthOf(holiday.date);
    if (FnBlnMonthRangeLocked(session_, lngMonthYear, lngMonthYear, true, 0)) return lockText();
    const auto count = [&](const std::string& condition) {
        return FnVarValueOrThrow(session_, "SELECT COUNT(HOLIDAYID) FROM ATT_HOLIDAY where " +
                                               condition + "'" + day + "'")
            .toInt();
    };
    if (chkBranchWise.value) {
        if (count("attheadid>0 and HOLIDAYDATE >= ") > 0)
            return "Future Holiday Date defined in Attendancewise.  Branchwise Holiday Can't "
                   "Define ";
    } else if (count("BRANCHID>0 and HOLIDAYDATE <= ") > 0) {
        const Value start = FnVarValueOrThrow(session_, " Select BRGHEFROM  From MAS_OPTSET");
        return "Branch wise Holiday Enabled from " +
               (start.isNull() ? "" : dateText(start.toDate(), "dd/mmm/yy")) +
               "  AttendanceWise Holiday Can't Define ";
    }
    if (holiday.id != 0) return "";

    const Value general =
        FnVarValueOrThrow(session_, "Select HOLIDAYID From ATT_HOLIDAY Where HOLIDAYDATE = '" +
                                        day + "'" + kGeneralRow);
    const std::string scope = scopeColumn() + "= " + number(scopeId());
    if (!general.isNull()) {
        if (scopeId() == 0 || !hasException(general.toInt())) return kAlreadyAvailable;
    } else if (scopeId() != 0 &&
               FnBlnExistsOrThrow(session_,
                                  "Select HOLIDAYID From ATT_HOLIDAY Where HOLIDAYDATE = '" + day +
                                      "' And " + scope)) {
        return "Holiday defined in '" + scopeName() + "' category.";
    }
    return "";
}

bool modHolidayList::hasException(int64_t holidayId) {
    return FnBlnExistsOrThrow(
        session_, "SELECT HOLIDAYID FROM ATT_HOLEX Where HOLIDAYID = " + number(holidayId) +
                      " AND " + scopeColumn() + "= " + number(scopeId()));
}

// A company's holiday with an exception already is taken from no further branch.
bool modHolidayList::keptInBranches(int64_t holidayId) {
    if (!chkBranchWise.value ||
        !FnBlnExistsOrThrow(session_,
                            "SELECT HOLIDAYID FROM ATT_HOLEX WHERE (ATTHEADID > 0 OR BRANCHID > "
                            "0) AND HOLIDAYID = " +
                                number(holidayId)))
        return false;
    inform("General Holiday Can't Delete in Branchwise");
    return true;
}

bool modHolidayList::isCompanysInScope() const {
    return scopeId() != 0 && shown_.found() && !shown_.value("ATTHEADID").toBool() &&
           !shown_.value("BRANCHID").toBool();
}

void modHolidayList::cmdSave_Click() {
    if (denied(cmdSave)) return;
    if (selected_.id != 0 && !stillAsShown(shown_, kHoliday, [this] { showAgain(); })) return;
    Holiday holiday = selected_;
    holiday.date = parseTypedDate(FnStrCleanDateCentury(txtHDate.value)).value_or(DateTime{});
    holiday.description = txtHDesc.value;
    holiday.national = chkNH.value;
    int32_t lngMonthYear = 0;
    const std::string reason = refusal(holiday, lngMonthYear);
    if (reason == lockText()) return frontEnd().warning(reason, "Permission Denied");
    if (!reason.empty())
        return refuse(reason, !cmbAttHead.isInList() ? static_cast<Control&>(cmbAttHead)
                              : trim(holiday.description).empty() ? txtHDesc
                                                                  : txtHDate);
    if (isCompanysInScope() && holiday != selected_ && keptInBranches(selected_.id)) return;
    const int32_t before = selected_.id == 0 ? lngMonthYear : monthOf(selected_.date);
    if (before != lngMonthYear && FnBlnMonthRangeLocked(session_, before, before, true, 0))
        return frontEnd().warning(lockText(), "Permission Denied");
    SaveBatch batch;
    SaveHolidayRow(batch, holiday);
    if (before != lngMonthYear) MarkHolidayMonth(batch, before);
    MarkHolidayMonth(batch, lngMonthYear);
    updateBranchStart(batch);
    if (!save(batch, [this] { showAgain(); })) return;
    if (FnBlnAuditTrailOn(session_)) auditSave(holiday);
    showAgain();
    session_.gGenCmn.ShowSavedMessage();
}

void modHolidayList::SaveHolidayRow(SaveBatch& batch, const Holiday& holiday) {
    const std::string day = FnStrSqlDate(holiday.date);
    const std::string scope = scopeColumn() + "= " + number(scopeId());
    RowText row;
    row.set("HOLIDAYDATE", Value(holiday.date))
        .set("HOLIDAYDESC", Value(holiday.description))
        .set("HOLIDAYTYPE", Value(holiday.national ? 1 : 0));
    if (holiday.id != 0) {
        batch.requireShown(shown_, kHoliday);
        if (isCompanysInScope()) {
            if (holiday == selected_) return;
            takeFromScope(batch, holiday.id);
            insertRow(batch, holiday);
        } else {
            batch.add(row.update("ATT_HOLIDAY", "HOLIDAYID = " + number(holiday.id)));
        }
        return;
    }
    if (scopeId() != 0) {
        // A company's holiday that was taken from this scope comes back: no new row.
        const Value general = FnVarValueOrThrow(
            session_, "Select HOLIDAYID From ATT_HOLIDAY Where HOLIDAYDATE = '" + day +
                          "' And HOLIDAYDESC = '" +
                          session_.gSpChar.FnStrSpSQL(holiday.description) + "'" + kGeneralRow);
        if (!general.isNull() && hasException(general.toInt())) {
            batch.add(" DELETE FROM ATT_HOLEX WHERE HOLIDAYID = " + general.toText() + " AND " +
                      scope);
            return;
        }
    }
    const ShownRow own(
        session_, "ATT_HOLIDAY", "HOLIDAYID",
        "HOLIDAYDATE = '" + day + "'" + (scopeId() == 0 ? kGeneralRow : " And " + scope));
    batch.refuseUnless(own.stands(), kAlreadyAvailable);
    if (own.found())
        batch.add(row.update("ATT_HOLIDAY", own.key()));
    else
        insertRow(batch, holiday);
}

void modHolidayList::insertRow(SaveBatch& batch, const Holiday& holiday) const {
    RowText row;
    row.setSql("HOLIDAYID", batch.newKey("ATT_HOLIDAY", "HOLIDAYID"))
        .set("HOLIDAYDATE", Value(holiday.date))
        .set("HOLIDAYDESC", Value(holiday.description))
        .set("HOLIDAYTYPE", Value(holiday.national ? 1 : 0))
        .set("GENERALYN", Value(scopeId() == 0 ? 1 : 0));
    if (scopeId() != 0) row.set(trim(scopeColumn()), Value(scopeId()));
    batch.add(row.insertInto("ATT_HOLIDAY"));
}

void modHolidayList::takeFromScope(SaveBatch& batch, int64_t holidayId) const {
    RowText exception;
    exception.set(trim(scopeColumn()), Value(scopeId())).set("HOLIDAYID", Value(holidayId));
    batch.add(" IF NOT EXISTS (SELECT * FROM ATT_HOLEX WHERE " + exception.condition() + ")" +
              exception.insertInto("ATT_HOLEX"));
}

// BRGHEFROM is the first date of a holiday of a branch.
void modHolidayList::updateBranchStart(SaveBatch& batch) const {
    batch.add(
        " UPDATE MAS_OPTSET SET BRGHEFROM =(SELECT MIN(HOLIDAYDATE) FROM ATT_HOLIDAY where "
        "BRANCHID>0) ");
}

void modHolidayList::showBranchStart() {
    const Value start = FnVarValueOrThrow(session_, " Select BRGHEFROM  From MAS_OPTSET");
    lblEffFrom.caption = start.isNull() ? "N/A" : dateText(start.toDate(), "dd/mmm/yyyy");
}

// Registers and month rows are not limited to the scope: all rows of the month are looked at again.
void modHolidayList::MarkHolidayMonth(SaveBatch& batch, int32_t lngMonthYear) const {
    batch.refuseUnless(FnStrMonthRangeOpenSql(lngMonthYear, lngMonthYear, true, 0), lockText());
    const std::string month = number(lngMonthYear);
    const std::string salary = scopeId() == 0
                                   ? " WHERE MONTHYEAR = " + month
                                   : " WHERE EMPID In (Select EMPID From MAS_EMPLOYEEDET Where" +
                                         scopeColumn() + "= " + number(scopeId()) +
                                         ") And MONTHYEAR = " + month;
    batch.add(" UPDATE SLC_SALARYCALC_E SET EDITMODEYN = 1" + salary)
        .add(" UPDATE SLC_SALARYRATE_E SET TSALEDITMODEYN = 1" + salary)
        .add(" UPDATE ATT_DAYTODAY SET EDITMODEYN=1 WHERE MONTHYEAR = " + month)
        .add(" UPDATE LEV_MONTHDET SET EDITMODEYN=1 WHERE MONTHYEAR = " + month)
        // Only leaves allotted on days worked depend on holidays.
        .add(
            " UPDATE LEV_ALLOTMENT SET EDITMODEYN = 1 FROM LEV_ALLOTMENT WHERE LEVID IN(SELECT "
            "DISTINCT LEVID FROM LEV_SETTINGS WHERE (ALLOTON = 2 OR ALLOTON >= 7)) AND "
            "DBO.FNLNGMONTHYEAR(ALLOTFROM, ALLOTTO) = " +
            month);
}

void modHolidayList::cmdDelete_Click() {
    if (denied(cmdDelete)) return;
    if (fpgHDetail.rowCount() == 0) return inform("No records to delete.");
    if (!cmbAttHead.isInList()) return refuse("Select '" + lblAttHead.caption + "'.", cmbAttHead);
    if (selected_.id == 0) return inform("Select record to delete.");
    const std::string id = number(selected_.id);
    const Value general =
        FnVarValueOrThrow(session_, "SELECT GENERALYN FROM ATT_HOLIDAY WHERE HOLIDAYID = " + id, 0);
    if (!FnBlnExistsOrThrow(session_, "SELECT HOLIDAYID FROM ATT_HOLIDAY WHERE HOLIDAYID = " + id))
        return inform("Holiday already deleted.");
    if (!stillAsShown(shown_, kHoliday, [this] { showAgain(); })) return;
    const int32_t lngMonthYear = monthOf(selected_.date);
    if (FnBlnMonthRangeLocked(session_, lngMonthYear, lngMonthYear, true, 0))
        return frontEnd().warning(lockText(), "Permission Denied");
    if (!ask("Do you want to delete selected record?")) return;
    SaveBatch batch;
    batch.requireShown(shown_, kHoliday);
    if ((general.toBool() && scopeId() != 0) || isCompanysInScope()) {
        if (keptInBranches(selected_.id)) return;
        takeFromScope(batch, selected_.id);
    } else {
        batch.add(" Delete From ATT_HOLIDAY Where HOLIDAYID = " + id)
            .add(" Delete From ATT_HOLEX Where HOLIDAYID = " + id);
    }
    MarkHolidayMonth(batch, lngMonthYear);
    updateBranchStart(batch);
    if (!save(batch, [this] { showAgain(); })) return;
    if (FnBlnAuditTrailOn(session_))
        UpdateAuditTrail(session_, kAuditModule, 0, "General Holiday Deleted",
                         scopeAudit() + describe(selected_));
    showAgain();
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
