#include "calendar/screens/modHolidayWeekly.h"

#include "db/recordset.h"
#include "db/sql_text.h"
#include "family/modCommon.h"
#include "marks/marks.h"
#include "session/queries.h"
#include "session/screens/fill_grid.h"

namespace owb {

namespace {

constexpr int32_t kMenuId = 1511;
constexpr const char* kRule = "The weekly holiday";
constexpr Captions<10> kFlags = {"FH1YN", "SH1YN", "FH2YN", "SH2YN", "FH3YN",
                                 "SH3YN", "FH4YN", "SH4YN", "FH5YN", "SH5YN"};
constexpr Captions<5> kWeeks = {"1st Week", "2nd Week", "3rd Week", "4th Week", "5th Week"};

std::string flagColumns() {
    std::string columns;
    for (const char* flag : kFlags) columns += (columns.empty() ? "" : ", ") + std::string(flag);
    return columns;
}

const char* halvesText(bool first, bool second) {
    return first && second ? "Full Day" : first ? "First Half" : second ? "Second Half" : "";
}

RowText flagsOf(const std::array<bool, 10>& halves) {
    RowText row;
    for (size_t i = 0; i < halves.size(); ++i) row.set(kFlags[i], Value(halves[i]));
    return row.set("EDITEDYN", Value(0));
}

}  // namespace

std::string modHolidayWeekly::Rule::key() const {
    return Sql() << "EFFFROM=" << monthYear << " AND WEEKID=" << weekDay;
}

modHolidayWeekly::modHolidayWeekly(Session& session, FrontEnd& frontEnd)
    : SessionScreen(session, frontEnd, "modHolidayWeekly", "Weekly Holiday", kMenuId),
      attHeadId_(session.gAttHeadId) {
    cmbWeekDay.toolTip = "Select Weekday";
    cmbWeekDay.editable = false;
    for (int day = 1; day <= 7; ++day) cmbWeekDay.add(weekdayName(day), day);
    cmbMonthYear.toolTip = "Select effective Month/Year,Press F2 or Double click  to quick select";
    cmdAdvanced.toolTip = "Rotating Weekly Holiday";
    std::vector<GridColumn> columns{{.caption = "EFFFROM", .hidden = true},
                                    {.caption = "WEEKID", .hidden = true},
                                    {.caption = "Eff. From Month", .width = 12},
                                    {.caption = "Day", .width = 12}};
    for (const char* week : kWeeks) columns.push_back({.caption = week, .width = 11});
    fpgWeeklyHoliday.setColumns(std::move(columns));
    fpgWeeklyHoliday.singleRows = true;
    fpgWeeklyHoliday.onCurrentChange = [this](size_t row, size_t) { fpgWeeklyHoliday_Click(row); };
}

Layout modHolidayWeekly::layout() {
    std::vector<Layout> weeks;
    for (size_t week = 0; week < 5; ++week)
        weeks.push_back(group(kWeeks[week], {item(chkFirst[week]), item(chkSecond[week])}));
    return column(
        {form({item("Day of the Week", cmbWeekDay), item("Eff. From", cmbMonthYear)}),
         row(std::move(weeks)), item(fpgWeeklyHoliday, 1),
         row({item(cmdAdvanced), space(), item(cmdSave), item(cmdDelete), item(cmdClose)})});
}

void modHolidayWeekly::load() {
    cmbMonthYear.load();
    cmdAdvanced.visible = attHeadId_ == 0 && session_.gOpt.ROTWHYN;
    showAgain();
}

void modHolidayWeekly::showAgain() {
    shown_ = {};
    std::vector<std::vector<std::string>> rows;
    for (Recordset rs(session_.gConn, Sql() << "SELECT EFFFROM, WEEKID, " << flagColumns()
                                            << " FROM LEV_WEEKLYHLD WHERE ATTHEADID = "
                                            << attHeadId_ << " ORDER BY EFFFROM DESC, WEEKID");
         !rs.IsEOF(); rs.MoveNext()) {
        const auto month = static_cast<int32_t>(rs.Fields("EFFFROM").toInt());
        const auto day = static_cast<int>(rs.Fields("WEEKID").toInt());
        std::vector<std::string>& cells = rows.emplace_back(
            std::vector<std::string>{std::to_string(month), std::to_string(day),
                                     FnStrMonthYearText(month), weekdayName(day)});
        for (size_t i = 0; i < kFlags.size(); i += 2)
            cells.emplace_back(
                halvesText(rs.Fields(kFlags[i]).toBool(), rs.Fields(kFlags[i + 1]).toBool()));
    }
    fpgWeeklyHoliday.setCurrent(-1, -1);
    fillGrid(fpgWeeklyHoliday, std::move(rows));
}

modHolidayWeekly::Rule modHolidayWeekly::ruleOnScreen() const {
    Rule rule{cmbMonthYear.month(), static_cast<int32_t>(cmbWeekDay.key()), {}};
    for (size_t week = 0; week < 5; ++week) {
        rule.halves[2 * week] = chkFirst[week].value;
        rule.halves[2 * week + 1] = chkSecond[week].value;
    }
    return rule;
}

void modHolidayWeekly::show(const Rule& rule) {
    cmbMonthYear.setMonth(rule.monthYear);
    cmbWeekDay.selectKey(rule.weekDay);
    for (size_t week = 0; week < 5; ++week) {
        chkFirst[week].value = rule.halves[2 * week];
        chkSecond[week].value = rule.halves[2 * week + 1];
    }
}

void modHolidayWeekly::fpgWeeklyHoliday_Click(size_t row) {
    Rule rule{static_cast<int32_t>(fpgWeeklyHoliday.number(row, 0)),
              static_cast<int32_t>(fpgWeeklyHoliday.number(row, 1)),
              {}};
    shown_ = readRow(rule);
    if (!shown_.found()) {
        frontEnd().warning(FnStrChangedMeanwhile(kRule));
        return showAgain();
    }
    rule.halves = halvesOf(shown_);
    show(rule);
}

ShownRow modHolidayWeekly::readRow(const Rule& key) {
    return ShownRow(session_, "LEV_WEEKLYHLD", flagColumns(),
                    Sql() << "ATTHEADID=" << attHeadId_ << " AND " << key.key());
}

modHolidayWeekly::Halves modHolidayWeekly::halvesOf(const ShownRow& row) {
    Halves halves{};
    for (size_t i = 0; i < halves.size(); ++i) halves[i] = row.value(kFlags[i]).toBool();
    return halves;
}

bool modHolidayWeekly::stillAsChosen(const ShownRow& row) {
    return shown_.key() != row.key() || stillAsShown(shown_, kRule, [this] { showAgain(); });
}

Lock modHolidayWeekly::lockFrom(int32_t lngMonthYear) const {
    return MonthsLock(lngMonthYear, kForEver, true, 0, FnStrLockedFrom(session_, lngMonthYear));
}

void modHolidayWeekly::cmdAdvanced_Click() {
    inform("Rotating Weekly Holiday is not available in this version.");
}

// --- saving ---

void modHolidayWeekly::cmdSave_Click() {
    const Rule rule = ruleOnScreen();
    if (rule.monthYear == 0) return refuse("Select effective Month/Year.", cmbMonthYear);
    if (rule.weekDay == 0) return refuse("Select proper 'Day of the Week'.", cmbWeekDay);
    SaveBatch batch;
    if (refusedByLock(batch, lockFrom(rule.monthYear))) return;

    const ShownRow row = readRow(rule);
    if (!stillAsChosen(row)) return;
    const Halves before = halvesOf(row);
    batch.requireShown(row, kRule);
    writeRow(batch, row, rule);
    if (attHeadId_ != 0)
        markEdited(batch, rule);
    else
        passOnToHeads(batch, rule);
    batch.add(marksOf(rule, !row.found() || before != rule.halves))
        .audit(auditSave(rule, !row.found(), before));
    if (!save(batch, [this] { showAgain(); })) return;
    showAgain();
    session_.gGenCmn.ShowSavedMessage();
}

void modHolidayWeekly::writeRow(SaveBatch& batch, const ShownRow& row, const Rule& rule) const {
    RowText flags = flagsOf(rule.halves);
    if (row.found()) {
        batch.add(flags.update("LEV_WEEKLYHLD", row.key()));
        return;
    }
    flags.setSql("WHID", batch.newKey("LEV_WEEKLYHLD", "WHID"))
        .set("ATTHEADID", Value(attHeadId_))
        .set("EFFFROM", Value(rule.monthYear))
        .set("WEEKID", Value(rule.weekDay));
    batch.add(flags.insertInto("LEV_WEEKLYHLD"));
}

// A company rule flows to all heads that have not diverged.
void modHolidayWeekly::passOnToHeads(SaveBatch& batch, const Rule& rule) const {
    batch.add(flagsOf(rule.halves)
                  .update("LEV_WEEKLYHLD",
                          rule.key() + " AND ISNULL(EDITEDYN,0) <> 1 AND ATTHEADID IN (SELECT "
                                       "ATTHEADID FROM MAS_ATTHEAD)"));
    const std::string first = batch.newKey("LEV_WEEKLYHLD", "WHID");
    Sql values;
    for (const bool half : rule.halves) values << ", " << half;
    batch.add(Sql() << " INSERT INTO LEV_WEEKLYHLD (WHID, ATTHEADID, EFFFROM, WEEKID, EDITEDYN, "
                    << flagColumns() << ") SELECT " << first
                    << " + ROW_NUMBER() OVER (ORDER BY ATTHEADID) - 1, ATTHEADID, "
                    << rule.monthYear << ", " << rule.weekDay << ", 0" << values
                    << " FROM MAS_ATTHEAD WHERE ATTHEADID NOT IN (SELECT ATTHEADID FROM "
                       "LEV_WEEKLYHLD WHERE "
                    << rule.key() << ")");
}

// A head's row that differs from the company's of the same month and day no longer follows it.
void modHolidayWeekly::markEdited(SaveBatch& batch, const Rule& rule) const {
    Sql same;
    for (size_t i = 0; i < rule.halves.size(); ++i)
        same << " AND ISNULL(" << kFlags[i] << ",0) = " << rule.halves[i];
    batch.add(Sql() << " UPDATE LEV_WEEKLYHLD SET EDITEDYN=1 WHERE ATTHEADID=" << attHeadId_
                    << " AND " << rule.key()
                    << " AND NOT EXISTS (SELECT * FROM LEV_WEEKLYHLD WHERE ATTHEADID=0 AND "
                    << rule.key() << same << ")");
}

// A save that changes nothing marks the widest set: the rows of all heads.
std::string modHolidayWeekly::marksOf(const Rule& rule, bool changed) const {
    if (!changed) return MarkWeeklyOffUnchangedSql(rule.monthYear);
    Sql heads;
    if (attHeadId_ != 0)
        heads << " = " << attHeadId_;
    else
        heads << " IN (SELECT ATTHEADID FROM LEV_WEEKLYHLD WHERE " << rule.key()
              << " AND ATTHEADID<>0 AND EDITEDYN=0)";
    return MarkWeeklyOffSql(session_, rule.monthYear, heads);
}

// --- deleting ---

void modHolidayWeekly::cmdDelete_Click() {
    if (fpgWeeklyHoliday.rowCount() == 0) return inform("No records to delete.");
    const Rule rule = ruleOnScreen();
    const ShownRow row = readRow(rule);
    if (!stillAsChosen(row)) return;
    if (!row.found()) return inform("Select record to Delete");
    SaveBatch batch;
    if (!deletionAccepted(batch, rule)) return;
    batch.requireShown(row, kRule).add(" DELETE FROM LEV_WEEKLYHLD WHERE " + row.key());
    if (attHeadId_ == 0)
        batch.add(" DELETE FROM LEV_WEEKLYHLD WHERE " + rule.key() + " AND EDITEDYN = 0 ");
    batch.add(MarkWeeklyOffDeletedSql(session_, rule.monthYear, attHeadId_))
        .audit({"Weekly Holiday Deleted", auditBegin(rule).text()});
    if (save(batch, [this] { showAgain(); })) showAgain();
}

bool modHolidayWeekly::deletionAccepted(SaveBatch& batch, const Rule& rule) {
    if (refusedByLock(batch, lockFrom(rule.monthYear))) return false;
    if (!ask("Do you want to delete selected record?")) return false;
    const bool paid = FnBlnExistsOrThrow(
        session_,
        Sql() << "Select EMPID From SLC_SALARYCALC_E Where MONTHYEAR >= " << rule.monthYear);
    return !paid || ask("Salary will be re-calculated.  Do you want to continue?");
}

// --- the audit's words ---

AuditText modHolidayWeekly::auditBegin(const Rule& rule) const {
    return AuditText()
        .value("Attendance Name", attHeadId_ == 0 ? "All" : session_.gAtt.ATTHEADNAME)
        .value("Eff. From Month", FnStrMonthYearText(rule.monthYear))
        .value("Day", weekdayName(rule.weekDay));
}

AuditLine modHolidayWeekly::auditSave(const Rule& rule, bool isNew, const Halves& before) const {
    AuditText detail = auditBegin(rule);
    for (size_t week = 0; week < 5; ++week) {
        AuditText halves("", ":->");
        for (const size_t half : {size_t{0}, size_t{1}}) {
            const std::string label = half == 0 ? "First Half" : "Second Half";
            const std::string now = FnStrYesNo(rule.halves[2 * week + half]);
            if (isNew)
                halves.value(label, now);
            else
                halves.change(label, FnStrYesNo(before[2 * week + half]), now);
        }
        if (!halves.text().empty())
            detail.add(std::string("::Week = ") + kWeeks[week] + halves.text());
    }
    return {isNew ? "Weekly Holiday Added" : "Weekly Holiday Updated", detail.text()};
}

}  // namespace owb
