#include "calendar/screens/modHolidayWeekly.h"

#include "db/recordset.h"
#include "family/modCommon.h"
#include "session/locks.h"
#include "session/modAuditTrail.h"
#include "session/modOWBSetting.h"
#include "session/months.h"
#include "session/queries.h"

namespace owb {

namespace {

constexpr int32_t kMenuId = 1511;
constexpr const char* kRule = "The weekly holiday";
constexpr const char* kFlags[] = {"FH1YN", "SH1YN", "FH2YN", "SH2YN", "FH3YN",
                                  "SH3YN", "FH4YN", "SH4YN", "FH5YN", "SH5YN"};
constexpr const char* kWeeks[] = {"1st Week", "2nd Week", "3rd Week", "4th Week", "5th Week"};

template <size_t... I>
std::array<CheckBox, sizeof...(I)> boxes(Screen& screen, const char* name, const char* caption,
                                         std::index_sequence<I...>) {
    return {CheckBox(screen, std::string(name) + "(" + std::to_string(I) + ")", caption)...};
}

std::string number(int64_t value) {
    return std::to_string(value);
}

const char* yesNo(bool value) {
    return value ? "Yes" : "No";
}

}  // namespace

modHolidayWeekly::modHolidayWeekly(Session& session, FrontEnd& frontEnd)
    : SessionScreen(session, frontEnd, "modHolidayWeekly", "Weekly Holiday"),
      chkFirst(boxes(*this, "chkFirst", "First Half", std::make_index_sequence<5>())),
      chkSecond(boxes(*this, "chkSecond", "Second Half", std::make_index_sequence<5>())),
      attHeadId_(session.gAttHeadId) {
    cmbWeekDay.toolTip = "Select Weekday";
    cmbWeekDay.editable = false;
    for (int day = 1; day <= 7; ++day) cmbWeekDay.add(weekdayName(day), day);
    cmbMonthYear.toolTip = "Select effective Month/Year,Press F2 or Double click  to quick select";
    pickMonths(cmbMonthYear);
    cmdAdvanced.toolTip = "Rotating Weekly Holiday";
    std::vector<GridColumn> columns{{.caption = "EFFFROM", .hidden = true},
                                    {.caption = "WEEKID", .hidden = true},
                                    {.caption = "Eff. From Month", .width = 12},
                                    {.caption = "Day", .width = 12}};
    for (const char* week : kWeeks) columns.push_back({.caption = week, .width = 11});
    fpgWeeklyHoliday.setColumns(std::move(columns));
    fpgWeeklyHoliday.singleRows = true;
    fpgWeeklyHoliday.onCurrentChange = [this](size_t row, size_t) { fpgWeeklyHoliday_Click(row); };
    cmdSave.onClick = [this] { cmdSave_Click(); };
    cmdDelete.onClick = [this] { cmdDelete_Click(); };
    cmdAdvanced.onClick = [this] { cmdAdvanced_Click(); };
    cmdClose.onClick = [this] { close(); };
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

void modHolidayWeekly::onLoad() {
    applyRights({&cmdSave, &cmdDelete}, kMenuId);
    loadMonths(cmbMonthYear, 0);
    cmdAdvanced.visible = attHeadId_ == 0 && session_.gOpt.ROTWHYN;
    loadGrid();
}

void modHolidayWeekly::loadGrid() {
    fpgWeeklyHoliday.setRowCount(0);
    std::string flags;
    for (const char* flag : kFlags) flags += std::string(", ") + flag;
    Recordset rs(session_.gConn, "SELECT EFFFROM, WEEKID" + flags +
                                     " FROM LEV_WEEKLYHLD WHERE ATTHEADID = " + number(attHeadId_) +
                                     " ORDER BY EFFFROM DESC, WEEKID");
    for (; !rs.IsEOF(); rs.MoveNext()) {
        std::vector<std::string> cells{
            rs.Fields("EFFFROM").toText(), rs.Fields("WEEKID").toText(),
            FnStrMonthYearText(static_cast<int32_t>(rs.Fields("EFFFROM").toInt())),
            weekdayName(static_cast<int>(rs.Fields("WEEKID").toInt()))};
        for (size_t week = 0; week < 5; ++week) {
            const bool first = rs.Fields(kFlags[2 * week]).toBool();
            const bool second = rs.Fields(kFlags[2 * week + 1]).toBool();
            cells.emplace_back(first && second ? "Full Day"
                               : first         ? "First Half"
                               : second        ? "Second Half"
                                               : "");
        }
        fpgWeeklyHoliday.addRow(std::move(cells));
    }
}

modHolidayWeekly::Rule modHolidayWeekly::ruleOnScreen() const {
    Rule rule;
    rule.monthYear = static_cast<int32_t>(cmbMonthYear.key());
    rule.weekDay = static_cast<int32_t>(cmbWeekDay.key());
    for (size_t week = 0; week < 5; ++week) {
        rule.halves[2 * week] = chkFirst[week].value;
        rule.halves[2 * week + 1] = chkSecond[week].value;
    }
    return rule;
}

void modHolidayWeekly::show(const Rule& rule) {
    cmbMonthYear.selectKey(rule.monthYear);
    cmbWeekDay.selectKey(rule.weekDay);
    for (size_t week = 0; week < 5; ++week) {
        chkFirst[week].value = rule.halves[2 * week];
        chkSecond[week].value = rule.halves[2 * week + 1];
    }
}

void modHolidayWeekly::fpgWeeklyHoliday_Click(size_t row) {
    Rule rule;
    rule.monthYear = static_cast<int32_t>(fpgWeeklyHoliday.number(row, 0));
    rule.weekDay = static_cast<int32_t>(fpgWeeklyHoliday.number(row, 1));
    shown_ = readRow(attHeadId_, rule);
    if (!shown_.found()) {
        frontEnd().warning(FnStrChangedMeanwhile(kRule));
        return showAgain();
    }
    rule.halves = halvesOf(shown_);
    show(rule);
}

void modHolidayWeekly::showAgain() {
    shown_ = {};
    loadGrid();
}

std::string modHolidayWeekly::lockText(int32_t lngMonthYear) const {
    return "One or more " + session_.gEmployeeCaption +
           " (s) record/Month(s) has been locked with effective from " +
           FnStrMonthYearText(lngMonthYear) + ".";
}

bool modHolidayWeekly::monthsLocked(int32_t lngMonthYear) {
    if (!FnBlnMonthRangeLocked(session_, lngMonthYear, kForEver, true, 0)) return false;
    frontEnd().warning(lockText(lngMonthYear), "Permission Denied");
    return true;
}

namespace {

std::string keyOf(int32_t monthYear, int32_t weekDay) {
    return "EFFFROM=" + number(monthYear) + " AND WEEKID=" + number(weekDay);
}

}  // namespace

ShownRow modHolidayWeekly::readRow(int32_t intAttHeadId, const Rule& key) {
    std::string columns;
    for (const char* flag : kFlags) columns += (columns.empty() ? "" : ", ") + std::string(flag);
    return ShownRow(
        session_, "LEV_WEEKLYHLD", columns,
        "ATTHEADID=" + number(intAttHeadId) + " AND " + keyOf(key.monthYear, key.weekDay));
}

modHolidayWeekly::Halves modHolidayWeekly::halvesOf(const ShownRow& row) {
    Halves halves{};
    for (size_t i = 0; i < halves.size(); ++i) halves[i] = row.value(kFlags[i]).toBool();
    return halves;
}

bool modHolidayWeekly::stillAsChosen(const ShownRow& row) {
    return shown_.key() != row.key() || stillAsShown(shown_, kRule, [this] { showAgain(); });
}

// --- saving ---

void modHolidayWeekly::cmdSave_Click() {
    if (denied(cmdSave)) return;
    const Rule rule = ruleOnScreen();
    if (rule.monthYear == 0) return refuse("Select effective Month/Year.", cmbMonthYear);
    if (rule.weekDay == 0) return refuse("Select proper 'Day of the Week'.", cmbWeekDay);
    if (monthsLocked(rule.monthYear)) return;

    const ShownRow row = readRow(attHeadId_, rule);
    if (!stillAsChosen(row)) return;
    const Halves before = halvesOf(row);
    const bool changed = !row.found() || before != rule.halves;
    SaveBatch batch;
    batch.refuseUnless(FnStrMonthRangeOpenSql(rule.monthYear, kForEver, true, 0),
                       lockText(rule.monthYear));
    batch.requireShown(row, kRule);
    SaveWeeklyRow(batch, row, rule);
    if (attHeadId_ != 0)
        markEdited(batch, rule);
    else
        passOnToHeads(batch, rule);
    markAfterSave(batch, rule, changed);
    if (!save(batch, [this] { showAgain(); })) return;
    if (FnBlnAuditTrailOn(session_)) auditSave(rule, !row.found(), before);
    showAgain();
    session_.gGenCmn.ShowSavedMessage();
}

namespace {

RowText flagsOf(const std::array<bool, 10>& halves) {
    RowText row;
    for (size_t i = 0; i < halves.size(); ++i) row.set(kFlags[i], Value(halves[i] ? 1 : 0));
    return row.set("EDITEDYN", Value(0));
}

}  // namespace

void modHolidayWeekly::SaveWeeklyRow(SaveBatch& batch, const ShownRow& row,
                                     const Rule& rule) const {
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
    const std::string key = keyOf(rule.monthYear, rule.weekDay);
    batch.add(flagsOf(rule.halves)
                  .update("LEV_WEEKLYHLD", key + " AND ISNULL(EDITEDYN,0) <> 1 AND ATTHEADID IN "
                                                 "(SELECT ATTHEADID FROM MAS_ATTHEAD)"));
    std::string columns, values;
    for (size_t i = 0; i < rule.halves.size(); ++i) {
        columns += std::string(", ") + kFlags[i];
        values += rule.halves[i] ? ", 1" : ", 0";
    }
    const std::string first = batch.newKey("LEV_WEEKLYHLD", "WHID");
    batch.add(" INSERT INTO LEV_WEEKLYHLD (WHID, ATTHEADID, EFFFROM, WEEKID, EDITEDYN" + columns +
              ") SELECT " + first + " + ROW_NUMBER() OVER (ORDER BY ATTHEADID) - 1, ATTHEADID, " +
              number(rule.monthYear) + ", " + number(rule.weekDay) + ", 0" + values +
              " FROM MAS_ATTHEAD WHERE ATTHEADID NOT IN (SELECT ATTHEADID FROM LEV_WEEKLYHLD "
              "WHERE " +
              key + ")");
}

// A head's row that differs from the company's of the same month and day no longer follows it.
void modHolidayWeekly::markEdited(SaveBatch& batch, const Rule& rule) const {
    std::string same;
    for (size_t i = 0; i < rule.halves.size(); ++i)
        same += std::string(" AND ISNULL(") + kFlags[i] + ",0) = " + (rule.halves[i] ? "1" : "0");
    const std::string key = keyOf(rule.monthYear, rule.weekDay);
    batch.add(" UPDATE LEV_WEEKLYHLD SET EDITEDYN=1 WHERE ATTHEADID=" + number(attHeadId_) +
              " AND " + key +
              " AND NOT EXISTS (SELECT * FROM LEV_WEEKLYHLD WHERE ATTHEADID=0 AND " + key + same +
              ")");
}

// `heads` is " = 10" or " IN (...)".
void modHolidayWeekly::markHeads(SaveBatch& batch, const std::string& heads,
                                 int32_t lngMonthYear) const {
    const std::string month = number(lngMonthYear);
    DateTime first, last;
    GetMonthPeriod(session_, lngMonthYear, first, last);
    batch
        .add(" UPDATE ATT_DAYTODAY SET EDITMODEYN=1 WHERE MONTHYEAR >= " + month +
             " AND ATTHEADID" + heads)
        .add(" UPDATE LEV_MONTHDET SET EDITMODEYN=1 WHERE MONTHYEAR>=" + month +
             " AND EMPID=(SELECT EMPID FROM MAS_EMPLOYEEDET WHERE EMPDETID=LEV_MONTHDET.EMPDETID "
             "AND EMPID=LEV_MONTHDET.EMPID AND ATTHEADID" +
             heads + ")")
        .add(" UPDATE LEV_ALLOTMENT SET EDITMODEYN = 1 WHERE ATTHEADID" + heads +
             " AND allotfrom >='" + dateText(first, "yyyy-mmm-dd") + "'");
}

// A save that changes nothing marks the widest set: the rows of all heads.
void modHolidayWeekly::markAfterSave(SaveBatch& batch, const Rule& rule, bool changed) const {
    const std::string month = number(rule.monthYear);
    if (!changed)
        batch.add(" UPDATE ATT_DAYTODAY SET EDITMODEYN=1 WHERE MONTHYEAR >= " + month)
            .add(" UPDATE LEV_MONTHDET SET EDITMODEYN=1 WHERE MONTHYEAR >= " + month);
    else if (attHeadId_ != 0)
        markHeads(batch, " = " + number(attHeadId_), rule.monthYear);
    else
        markHeads(batch,
                  " IN (SELECT ATTHEADID FROM LEV_WEEKLYHLD WHERE " +
                      keyOf(rule.monthYear, rule.weekDay) + " AND ATTHEADID<>0 AND EDITEDYN=0)",
                  rule.monthYear);
}

// --- deleting ---

void modHolidayWeekly::cmdDelete_Click() {
    if (denied(cmdDelete)) return;
    if (fpgWeeklyHoliday.rowCount() == 0) return inform("No records to delete.");
    const Rule rule = ruleOnScreen();
    const ShownRow row = readRow(attHeadId_, rule);
    if (!stillAsChosen(row)) return;
    if (!row.found()) return inform("Select record to Delete");
    if (monthsLocked(rule.monthYear)) return;
    if (!ask("Do you want to delete selected record?")) return;
    const std::string month = number(rule.monthYear);
    if (FnVarValueOrThrow(session_,
                          "Select Count(EMPID) From SLC_SALARYCALC_E Where MONTHYEAR >= " + month)
                .toInt() > 0 &&
        !ask("Salary will be re-calculated.  Do you want to continue?"))
        return;
    const std::string key =
        " WHERE WEEKID = " + number(rule.weekDay) + " AND EFFFROM = " + month + " AND ";
    SaveBatch batch;
    batch.refuseUnless(FnStrMonthRangeOpenSql(rule.monthYear, kForEver, true, 0),
                       lockText(rule.monthYear));
    batch.requireShown(row, kRule);
    batch.add(" DELETE FROM LEV_WEEKLYHLD" + key + "ATTHEADID= " + number(attHeadId_));
    if (attHeadId_ == 0) batch.add(" DELETE FROM LEV_WEEKLYHLD" + key + "EDITEDYN = 0 ");
    markAfterDelete(batch, rule.monthYear);
    if (!save(batch, [this] { showAgain(); })) return;
    if (FnBlnAuditTrailOn(session_))
        UpdateAuditTrail(session_, kAuditModule, 0, "Weekly Holiday Deleted",
                         ":Attendance Name = " + attendanceName() + ":Eff. From Month = " +
                             FnStrMonthYearText(rule.monthYear) + ":Day = " + cmbWeekDay.value);
    showAgain();
}

void modHolidayWeekly::markAfterDelete(SaveBatch& batch, int32_t lngMonthYear) const {
    const std::string month = number(lngMonthYear), head = number(attHeadId_);
    const bool all = attHeadId_ == 0;
    const std::string salary =
        all ? " Where MONTHYEAR >= " + month
            : " Where EMPID In (Select EMPID From MAS_EMPLOYEEDET Where ATTHEADID = " + head +
                  ") AND MONTHYEAR >= " + month;
    DateTime first, last;
    GetMonthPeriod(session_, lngMonthYear, first, last);
    batch.add(" Update SLC_SALARYCALC_E Set EDITMODEYN = 1" + salary)
        .add(" Update SLC_SALARYRATE_E Set TSALEDITMODEYN = 1" + salary)
        .add(" UPDATE LEV_ALLOTMENT SET EDITMODEYN = 1 WHERE allotfrom >='" +
             dateText(first, "yyyy-mmm-dd") + "'" + (all ? "" : " AND ATTHEADID= " + head))
        .add(" UPDATE ATT_DAYTODAY SET EDITMODEYN = 1 WHERE MONTHYEAR >= " + month +
             (all ? "" : " AND ATTHEADID = " + head))
        .add(" UPDATE LEV_MONTHDET SET EDITMODEYN = 1 WHERE MONTHYEAR >= " + month +
             (all ? ""
                  : " AND EMPID=(SELECT EMPID FROM MAS_EMPLOYEEDET WHERE "
                    "EMPDETID=LEV_MONTHDET.EMPDETID AND EMPID=LEV_MONTHDET.EMPID AND ATTHEADID=" +
                        head + ")"));
}

void modHolidayWeekly::cmdAdvanced_Click() {
    inform("Rotating Weekly Holiday is not available in this version.");
}

// --- the audit's words ---

std::string modHolidayWeekly::attendanceName() {
    return attHeadId_ == 0 ? "All" : session_.gAtt.ATTHEADNAME;
}

void modHolidayWeekly::auditSave(const Rule& rule, bool isNew, const Halves& before) {
    std::string detail = ":Attendance Name = " + attendanceName() +
                         ":Eff. From Month = " + FnStrMonthYearText(rule.monthYear) +
                         ":Day = " + cmbWeekDay.value;
    for (size_t week = 0; week < 5; ++week) {
        std::string halves;
        for (const size_t half : {size_t{0}, size_t{1}}) {
            const std::string label = half == 0 ? ":->First Half" : ":->Second Half";
            const bool now = rule.halves[2 * week + half], was = before[2 * week + half];
            if (isNew)
                halves += label + " = " + yesNo(now);
            else if (now != was)
                halves += label + " Changed from " + yesNo(was) + " to " + yesNo(now);
        }
        if (!halves.empty()) detail += std::string("::Week = ") + kWeeks[week] + halves;
    }
    UpdateAuditTrail(session_, kAuditModule, 0,
                     isNew ? "Weekly Holiday Added" : "Weekly Holiday Updated", detail);
}

}  // namespace owb
