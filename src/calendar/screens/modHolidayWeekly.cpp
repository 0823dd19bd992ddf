#include "calendar/screens/modHolidayWeekly.h"

#include "db/recordset.h"
#include "db/sql_text.h"
#include "family/modCommon.h"
#include "marks/marks.h"
#include "session/queries.h"
#include "session/screens/query_lists.h"

namespace owb {

namespace {

constexpr int32_t kMenuId = 1511;
constexpr Captions<10> kFlags = {"FH1YN", "SH1YN", "FH2YN", "SH2YN", "FH3YN",
                                 "SH3YN", "FH4YN", "SH4YN", "FH5YN", "SH5YN"};
constexpr Captions<5> kWeeks = {"1st Week", "2nd Week", "3rd Week", "4th Week", "5th Week"};

std::string flagColumns() {
    std::string columns;
    for (const char* flag : kFlags) columns += (columns.empty() ? "" : ", ") + std::string(flag);
    return columns;
}

}  // namespace

modHolidayWeekly::modHolidayWeekly(Session& session, FrontEnd& frontEnd)
    : RowScreen(session, frontEnd,
                {"modHolidayWeekly", "Weekly Holiday", kMenuId, "fpgWeeklyHoliday"}, rule_),
      attHeadId_(session.gAttHeadId) {
    cmdNew.visible = false;  // whoever types a month and a weekday has begun a rule
    cmbWeekDay.writes = cmbMonthYear.writes = true;
    cmbWeekDay.toolTip = "Select Weekday";
    cmbWeekDay.editable = false;
    for (int day = 1; day <= 7; ++day) cmbWeekDay.add(weekdayName(day), day);
    cmbMonthYear.toolTip = "Select effective Month/Year,Press F2 or Double click  to quick select";
    cmdAdvanced.toolTip = "Rotating Weekly Holiday";
    std::vector<GridColumn> columns{{.caption = "EFFFROM", .hidden = true},
                                    {.caption = "WEEKID", .hidden = true},
                                    {.caption = "Eff. From Month", .width = 12},
                                    {.caption = "Day", .width = 12}};
    for (size_t week = 0; week < kWeeks.size(); ++week) {
        columns.push_back({.caption = kWeeks[week], .width = 11});
        rule_.section(std::string("::Week = ") + kWeeks[week]);
        rule_.check(kFlags[2 * week], chkFirst[week], "First Half");
        rule_.check(kFlags[2 * week + 1], chkSecond[week], "Second Half");
    }
    list.setColumns(std::move(columns));
}

Layout modHolidayWeekly::layout() {
    std::vector<Layout> weeks;
    for (size_t week = 0; week < kWeeks.size(); ++week)
        weeks.push_back(group(kWeeks[week], {item(chkFirst[week]), item(chkSecond[week])}));
    return column(
        {form({item("Day of the Week", cmbWeekDay), item("Eff. From", cmbMonthYear)}),
         row(std::move(weeks)), item(list, 1),
         row({item(cmdAdvanced), space(), item(cmdSave), item(cmdDelete), item(cmdClose)})});
}

void modHolidayWeekly::load() {
    cmbMonthYear.load();
    cmdAdvanced.visible = attHeadId_ == 0 && session_.gOpt.ROTWHYN;
    showAgain();
}

// What was typed stays, for the next day or month.
void modHolidayWeekly::showAgain() {
    loadList();
    list.setCurrent(-1, -1);
    row_.adopt(session_, "");
    row_.remember();
}

void modHolidayWeekly::finish() {
    showAgain();
    setFocus(cmbWeekDay);
}

void modHolidayWeekly::loadList() {
    std::vector<std::vector<std::string>> rows;
    for (Recordset rs(session_.gConn, Sql() << "SELECT EFFFROM, WEEKID, " << flagColumns()
                                            << " FROM LEV_WEEKLYHLD WHERE ATTHEADID = "
                                            << attHeadId_ << " ORDER BY EFFFROM DESC, WEEKID");
         !rs.IsEOF(); rs.MoveNext()) {
        const auto month = static_cast<int32_t>(rs.Fields("EFFFROM").toInt());
        const auto day = static_cast<int>(rs.Fields("WEEKID").toInt());
        rows.push_back({std::to_string(month), std::to_string(day), FnStrMonthYearText(month),
                        weekdayName(day)});
        for (size_t i = 0; i < kFlags.size(); i += 2) {
            const bool first = rs.Fields(kFlags[i]).toBool();
            const bool second = rs.Fields(kFlags[i + 1]).toBool();
            rows.back().emplace_back(first && second ? "Full Day"
                                     : first         ? "First Half"
                                     : second        ? "Second Half"
                                                     : "");
        }
    }
    fillGrid(list, std::move(rows));
}

bool modHolidayWeekly::readLine(size_t line) {
    cmbMonthYear.setMonth(static_cast<int32_t>(list.number(line, 0)));
    cmbWeekDay.selectKey(static_cast<int64_t>(list.number(line, 1)));
    return row_.readWhere(session_, ownKey());
}

bool modHolidayWeekly::isShownBy(size_t line) const {
    return list.number(line, 0) == cmbMonthYear.month() &&
           list.number(line, 1) == static_cast<double>(cmbWeekDay.key());
}

std::string modHolidayWeekly::typedKey() const {
    return Sql() << "EFFFROM=" << cmbMonthYear.month() << " AND WEEKID=" << cmbWeekDay.key();
}

std::string modHolidayWeekly::ownKey() const {
    return Sql() << "ATTHEADID=" << attHeadId_ << " AND " << typedKey();
}

Lock modHolidayWeekly::lockFrom(int32_t lngMonthYear) const {
    return MonthsLock(lngMonthYear, kForEver, true, 0, FnStrLockedFrom(session_, lngMonthYear));
}

void modHolidayWeekly::cmdAdvanced_Click() {
    inform("Rotating Weekly Holiday is not available in this version.");
}

// --- saving ---

std::optional<Refusal> modHolidayWeekly::check() {
    if (cmbMonthYear.month() == 0) return Refusal{"Select effective Month/Year.", &cmbMonthYear};
    if (cmbWeekDay.key() == 0) return Refusal{"Select proper 'Day of the Week'.", &cmbWeekDay};
    if (row_.shown().key() != ownKey()) row_.adopt(session_, ownKey());
    return {};
}

bool modHolidayWeekly::mayBeSaved(SaveBatch& batch) {
    return !refusedByLock(batch, lockFrom(cmbMonthYear.month()));
}

std::string modHolidayWeekly::writeRow(SaveBatch& batch) {
    if (row_.isNew()) batch.requireShown(row_.shown(), row_.what());
    const std::string key = row_.writeInto(batch, RowText().set("EDITEDYN", Value(0)),
                                           RowText()
                                               .set("ATTHEADID", Value(attHeadId_))
                                               .set("EFFFROM", Value(cmbMonthYear.month()))
                                               .set("WEEKID", Value(cmbWeekDay.key())));
    attHeadId_ != 0 ? markEdited(batch) : passOnToHeads(batch);
    return key;
}

// A company rule flows to all heads that have not diverged.
void modHolidayWeekly::passOnToHeads(SaveBatch& batch) const {
    RowText flags = row_.typedRow();
    batch.add(flags.set("EDITEDYN", Value(0))
                  .update("LEV_WEEKLYHLD",
                          typedKey() + " AND ISNULL(EDITEDYN,0) <> 1 AND ATTHEADID IN (SELECT "
                                       "ATTHEADID FROM MAS_ATTHEAD)"));
    const std::string first = batch.newKey("LEV_WEEKLYHLD", "WHID");
    Sql values;
    for (const char* flag : kFlags) values << ", " << literal(row_.typed(flag));
    batch.add(Sql() << " INSERT INTO LEV_WEEKLYHLD (WHID, ATTHEADID, EFFFROM, WEEKID, EDITEDYN, "
                    << flagColumns() << ") SELECT " << first
                    << " + ROW_NUMBER() OVER (ORDER BY ATTHEADID) - 1, ATTHEADID, "
                    << cmbMonthYear.month() << ", " << cmbWeekDay.key() << ", 0" << values
                    << " FROM MAS_ATTHEAD WHERE ATTHEADID NOT IN (SELECT ATTHEADID FROM "
                       "LEV_WEEKLYHLD WHERE "
                    << typedKey() << ")");
}

// A head's row that differs from the company's of the same month and day no longer follows it.
void modHolidayWeekly::markEdited(SaveBatch& batch) const {
    Sql same;
    for (const char* flag : kFlags)
        same << " AND ISNULL(" << flag << ",0) = " << literal(row_.typed(flag));
    batch.add(Sql() << " UPDATE LEV_WEEKLYHLD SET EDITEDYN=1 WHERE " << ownKey()
                    << " AND NOT EXISTS (SELECT * FROM LEV_WEEKLYHLD WHERE ATTHEADID=0 AND "
                    << typedKey() << same << ")");
}

// A save that changes nothing marks the widest set: the rows of all heads.
void modHolidayWeekly::joinMarks(SaveBatch& batch, Change change, const std::string&) {
    const int32_t month = cmbMonthYear.month();
    Sql heads;
    if (attHeadId_ != 0)
        heads << " = " << attHeadId_;
    else
        heads << " IN (SELECT ATTHEADID FROM LEV_WEEKLYHLD WHERE " << typedKey()
              << " AND ATTHEADID<>0 AND EDITEDYN=0)";
    if (change == Change::Deleted)
        batch.add(MarkWeeklyOffDeletedSql(session_, month, attHeadId_));
    else if (change == Change::Updated && !row_.changed())
        batch.add(MarkWeeklyOffUnchangedSql(month));
    else
        batch.add(MarkWeeklyOffSql(session_, month, heads));
}

// --- deleting ---

std::optional<Refusal> modHolidayWeekly::checkDeletion() {
    if (list.rowCount() == 0) return Refusal{"No records to delete."};
    if (row_.shown().key() != ownKey()) row_.adopt(session_, ownKey());
    if (row_.isNew()) return Refusal{"Select record to Delete"};
    return {};
}

bool modHolidayWeekly::mayBeDeleted(SaveBatch& batch) {
    if (refusedByLock(batch, lockFrom(cmbMonthYear.month()))) return false;
    if (!askToDelete("Do you want to delete selected record?")) return false;
    const bool paid =
        FnBlnExistsOrThrow(session_, Sql() << "Select EMPID From SLC_SALARYCALC_E Where MONTHYEAR "
                                              ">= "
                                           << cmbMonthYear.month());
    return !paid || ask("Salary will be re-calculated.  Do you want to continue?");
}

std::string modHolidayWeekly::rowWords() const {
    return cmbWeekDay.value + ", " + cmbMonthYear.value;
}

void modHolidayWeekly::deleteRow(SaveBatch& batch) {
    row_.deleteIn(batch);
    if (attHeadId_ == 0)
        batch.add(" DELETE FROM LEV_WEEKLYHLD WHERE " + typedKey() + " AND EDITEDYN = 0 ");
}

// --- the audit's words ---

AuditLine modHolidayWeekly::auditLine(Change change) {
    return {change == Change::Added     ? "Weekly Holiday Added"
            : change == Change::Updated ? "Weekly Holiday Updated"
                                        : "Weekly Holiday Deleted",
            AuditText()
                .value("Attendance Name", attHeadId_ == 0 ? "All" : session_.gAtt.ATTHEADNAME)
                .value("Eff. From Month", FnStrMonthYearText(cmbMonthYear.month()))
                .value("Day", cmbWeekDay.value)};
}

void modHolidayWeekly::tellRow(AuditText& detail, Change change) {
    if (change != Change::Deleted) RowScreen::tellRow(detail.mark(":->"), change);
}

}  // namespace owb
