// Saving and deleting holidays: the checks in their order, the rows and exceptions, the marks, the
// audit.
#include "base/utf8.h"
#include "calendar/screens/modHolidayList.h"
#include "db/sql_text.h"
#include "family/modCommon.h"
#include "session/months.h"
#include "session/queries.h"

namespace owb {

namespace {

constexpr const char* kAlreadyAvailable = "Holiday already available.";
constexpr const char* kOfCompany = "ISNULL(ATTHEADID,0) = 0 And ISNULL(BRANCHID,0) = 0";

RowText rowOf(const modHolidayList::Holiday& holiday) {
    return RowText()
        .set("HOLIDAYDATE", Value(holiday.date))
        .set("HOLIDAYDESC", Value(holiday.description))
        .set("HOLIDAYTYPE", Value(holiday.national));
}

std::string countSql(const char* condition, const DateTime& date) {
    return Sql() << "SELECT COUNT(HOLIDAYID) FROM ATT_HOLIDAY where " << condition << date;
}

}  // namespace

std::optional<Refusal> modHolidayList::check() {
    return refusalOf(typed(), row_.isNew());
}

std::optional<Refusal> modHolidayList::refusalOf(const Holiday& holiday, bool isNew) {
    if (!cmbAttHead.isInList())
        return Refusal{"'" + lblAttHead.caption + "' not found.  Select from list.", &cmbAttHead};
    if (holiday.date == DateTime{}) return Refusal{"Specify Holiday date.", &txtHDate};
    if (!FnBlnInPayrollPeriod(session_, holiday.date))
        return Refusal{"Given date cannot be before 'Start Month' specified.", &txtHDate};
    if (trim(holiday.description).empty())
        return Refusal{"Specify holiday description.", &txtHDesc};
    const Lock lock = lockOf(monthOf(holiday.date));
    if (lock.holds(session_)) return asRefusal(lock);
    const auto count = [&](const char* condition) {
        return FnVarValueOrThrow(session_, countSql(condition, holiday.date)).toInt();
    };
    if (chkBranchWise.value) {
        if (count("attheadid>0 and HOLIDAYDATE >= ") > 0)
            return Refusal{
                "Future Holiday Date defined in Attendancewise.  Branchwise Holiday Can't Define ",
                &txtHDate};
    } else if (count("BRANCHID>0 and HOLIDAYDATE <= ") > 0) {
        const Value start = FnVarValueOrThrow(session_, " Select BRGHEFROM  From MAS_OPTSET");
        return Refusal{"Branch wise Holiday Enabled from " +
                           (start.isNull() ? "" : dateText(start.toDate(), "dd/mmm/yy")) +
                           "  AttendanceWise Holiday Can't Define ",
                       &txtHDate};
    }
    return isNew ? takenRefusal(holiday) : std::nullopt;
}

// A date holds one holiday of the company, unless it is taken from the scope, and one of the scope.
std::optional<Refusal> modHolidayList::takenRefusal(const Holiday& holiday) {
    Sql onDate;
    onDate << "Select HOLIDAYID From ATT_HOLIDAY Where HOLIDAYDATE = " << holiday.date << " And ";
    const Value general = FnVarValueOrThrow(session_, Sql() << onDate << kOfCompany);
    if (!general.isNull()) {
        if (scope().id == 0 ||
            !FnBlnExistsOrThrow(session_, "SELECT 1 WHERE " + exceptionSql(general.toText())))
            return Refusal{kAlreadyAvailable, &txtHDate};
    } else if (scope().id != 0 && FnBlnExistsOrThrow(session_, onDate << scope().condition())) {
        return Refusal{"Holiday defined in '" + cmbAttHead.value + "' category.", &txtHDate};
    }
    return {};
}

std::string modHolidayList::exceptionSql(const std::string& holidayId) const {
    return Sql() << "EXISTS (SELECT HOLIDAYID FROM ATT_HOLEX WHERE HOLIDAYID = " << holidayId
                 << " AND " << scope().condition() << ")";
}

// A company's holiday with an exception already is taken from no further branch.
bool modHolidayList::keptInBranches() {
    if (!chkBranchWise.value ||
        !FnBlnExistsOrThrow(session_, Sql() << "SELECT HOLIDAYID FROM ATT_HOLEX WHERE (ATTHEADID > "
                                               "0 OR BRANCHID > 0) AND HOLIDAYID = "
                                            << row_.key()))
        return false;
    inform("General Holiday Can't Delete in Branchwise");
    return true;
}

bool modHolidayList::isCompanysInScope() const {
    return scope().id != 0 && !row_.isNew() && !row_.shown().value("ATTHEADID").toBool() &&
           !row_.shown().value("BRANCHID").toBool();
}

bool modHolidayList::mayBeSaved(SaveBatch& batch) {
    if (row_.isNew()) return true;
    if (isCompanysInScope() && row_.changed() && keptInBranches()) return false;
    return !refusedByLock(batch, lockOf(monthBefore()));
}

std::string modHolidayList::writeRow(SaveBatch& batch) {
    if (row_.isNew()) {
        addHoliday(batch, typed());
    } else if (!isCompanysInScope()) {
        row_.writeInto(batch);
    } else {
        batch.requireShown(row_.shown(), row_.what());
        if (row_.changed()) {
            takeFromScope(batch);
            insertRow(batch, typed());
        }
    }
    return "";
}

// A company's holiday that was taken from this scope comes back: no new row.
void modHolidayList::addHoliday(SaveBatch& batch, const Holiday& holiday) {
    Sql onDate;
    onDate << "HOLIDAYDATE = " << holiday.date << " And ";
    const std::string general =
        FnVarValueOrThrow(session_,
                          Sql() << "Select HOLIDAYID From ATT_HOLIDAY Where " << onDate
                                << kOfCompany
                                << " And HOLIDAYDESC = " << literal(holiday.description),
                          "")
            .toText();
    if (scope().id != 0 && !general.empty() &&
        FnBlnExistsOrThrow(session_, "SELECT 1 WHERE " + exceptionSql(general))) {
        batch.add(Sql() << " DELETE FROM ATT_HOLEX WHERE HOLIDAYID = " << general << " AND "
                        << scope().condition());
        return;
    }
    const ShownRow own(session_, "ATT_HOLIDAY", "HOLIDAYID",
                       onDate << (scope().id == 0 ? kOfCompany : scope().condition()));
    batch.refuseUnless(own.stands(), kAlreadyAvailable);
    if (own.found())
        batch.add(rowOf(holiday).update("ATT_HOLIDAY", own.key()));
    else
        insertRow(batch, holiday);
}

void modHolidayList::insertRow(SaveBatch& batch, const Holiday& holiday) const {
    RowText row = rowOf(holiday);
    row.setSql("HOLIDAYID", batch.newKey("ATT_HOLIDAY", "HOLIDAYID"))
        .set("GENERALYN", Value(scope().id == 0));
    if (scope().id != 0) row.set(scope().column, Value(scope().id));
    batch.add(row.insertInto("ATT_HOLIDAY"));
}

void modHolidayList::takeFromScope(SaveBatch& batch) const {
    RowText exception;
    exception.set(scope().column, Value(scope().id)).set("HOLIDAYID", Value(row_.key()));
    batch.add(" IF NOT EXISTS (SELECT * FROM ATT_HOLEX WHERE " + exception.condition() + ")" +
              exception.insertInto("ATT_HOLEX"));
}

void modHolidayList::joinMarks(SaveBatch& batch, Change change, const std::string&) {
    const int32_t before = change == Change::Added ? 0 : monthBefore();
    const int32_t now = change == Change::Deleted ? before : monthOf(typed().date);
    if (before != 0 && before != now) markMonth(batch, before);
    markMonth(batch, now);
    updateBranchStart(batch);
}

void modHolidayList::markMonth(SaveBatch& batch, int32_t lngMonthYear) const {
    batch.requireOpen(lockOf(lngMonthYear)).add(MarkHolidaySql(lngMonthYear, scope()));
}

void modHolidayList::updateBranchStart(SaveBatch& batch) {
    batch.add(
        " UPDATE MAS_OPTSET SET BRGHEFROM =(SELECT MIN(HOLIDAYDATE) FROM ATT_HOLIDAY where "
        "BRANCHID>0) ");
}

// --- deleting ---

std::optional<Refusal> modHolidayList::checkDeletion() {
    if (list.rowCount() == 0) return Refusal{"No records to delete."};
    if (!cmbAttHead.isInList()) return Refusal{"Select '" + lblAttHead.caption + "'.", &cmbAttHead};
    if (row_.isNew()) return Refusal{"Select record to delete."};
    if (!FnBlnExistsOrThrow(session_,
                            "SELECT HOLIDAYID FROM ATT_HOLIDAY WHERE " + row_.shown().key()))
        return Refusal{"Holiday already deleted."};
    return {};
}

bool modHolidayList::mayBeDeleted(SaveBatch& batch) {
    return !refusedByLock(batch, lockOf(monthBefore())) &&
           askToDelete("Do you want to delete selected record?") &&
           (!isCompanysInScope() || !keptInBranches());
}

std::string modHolidayList::rowWords() const {
    return row_.before("HOLIDAYDESC").toText() + ", " +
           dateText(row_.before("HOLIDAYDATE").toDate(), "dd/mmm/yyyy");
}

void modHolidayList::deleteRow(SaveBatch& batch) {
    if (isCompanysInScope()) {
        batch.requireShown(row_.shown(), row_.what());
        return takeFromScope(batch);
    }
    row_.deleteIn(batch);
    batch.add(Sql() << " Delete From ATT_HOLEX Where HOLIDAYID = " << row_.key());
}

// --- the audit's words ---

AuditText modHolidayList::auditBegin() const {
    AuditText text(" ");
    text.value(chkBranchWise.value ? "Branch Name" : "Attendance Name",
               scope().id == 0 ? "All" : cmbAttHead.value);
    return text;
}

AuditLine modHolidayList::auditLine(Change change) {
    return {change == Change::Updated ? "General Holiday Updated"
            : change == Change::Added ? "General Holiday Added"
                                      : "General Holiday Deleted",
            auditBegin()};
}

}  // namespace owb
