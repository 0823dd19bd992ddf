#include "calendar/screens/modHolidayWeekly.h"

#include "data/modAuditTrail.h"
#include "data/modCommon.h"
#include "data/modOWBSetting.h"
#include "db/recordset.h"

namespace owb {

namespace {

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
    applyRights({&cmdSave, &cmdDelete});
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
    if (readRow(attHeadId_, rule, rule.halves)) show(rule);
}

bool modHolidayWeekly::monthsLocked(int32_t lngMonthYear) {
    if (!FnBlnMonthRangeLocked(session_, lngMonthYear, 99999, true, 0)) return false;
    frontEnd().warning("One or more " + session_.gEmployeeCaption +
                           " (s) record/Month(s) has been locked with effective from " +
                           FnStrMonthYearText(lngMonthYear) + ".",
                       "Permission Denied");
    return true;
}

// --- saving ---

void modHolidayWeekly::cmdSave_Click() {
    if (denied(cmdSave)) return;
    const Rule rule = ruleOnScreen();
    if (rule.monthYear == 0) return refuse("Select effective Month/Year.", cmbMonthYear);
    if (rule.weekDay == 0) return refuse("Select proper 'Day of the Week'.", cmbWeekDay);
    if (monthsLocked(rule.monthYear)) return;

    Halves before{};
    const bool isNew = !readRow(attHeadId_, rule, before);
    const bool changed = isNew || before != rule.halves;
    SaveWeeklyRow(attHeadId_, rule);
    if (attHeadId_ != 0) {
        if (!FnBlnSameAsCompanyRow(rule)) setEdited(attHeadId_, rule, true);
    } else {
        // A company rule flows to all heads that have not diverged.
        Recordset heads(session_.gConn, "SELECT ATTHEADID FROM MAS_ATTHEAD");
        for (; !heads.IsEOF(); heads.MoveNext()) {
            const auto head = static_cast<int32_t>(heads.Fields(0).toInt());
            const Value edited = FnVarGetValue(
                session_, "SELECT EDITEDYN FROM LEV_WEEKLYHLD WHERE ATTHEADID=" + number(head) +
                              " AND EFFFROM=" + number(rule.monthYear) +
                              " AND WEEKID=" + number(rule.weekDay));
            if (edited.toInt() == 1) continue;
            SaveWeeklyRow(head, rule);
            setEdited(head, rule, false);
        }
    }
    markAfterSave(rule, changed);
    if (FnBlnAuditTrailOn(session_)) auditSave(rule, isNew, before);
    loadGrid();
    session_.gGenCmn.ShowSavedMessage();
}

namespace {

std::string rowCondition(int32_t intAttHeadId, int32_t monthYear, int32_t weekDay) {
    return " WHERE ATTHEADID=" + number(intAttHeadId) + " AND EFFFROM=" + number(monthYear) +
           " AND WEEKID=" + number(weekDay);
}

}  // namespace

bool modHolidayWeekly::readRow(int32_t intAttHeadId, const Rule& key, Halves& halves) {
    Recordset rs(session_.gConn, "SELECT * FROM LEV_WEEKLYHLD" +
                                     rowCondition(intAttHeadId, key.monthYear, key.weekDay));
    if (rs.IsEOF()) return false;
    for (size_t i = 0; i < halves.size(); ++i) halves[i] = rs.Fields(kFlags[i]).toBool();
    return true;
}

void modHolidayWeekly::SaveWeeklyRow(int32_t intAttHeadId, const Rule& rule) {
    Recordset rs;
    rs.Open(
        "SELECT * FROM LEV_WEEKLYHLD" + rowCondition(intAttHeadId, rule.monthYear, rule.weekDay),
        session_.gConn, adOpenKeyset, adLockOptimistic);
    if (rs.IsEOF()) {
        const int64_t key =
            FnVarGetValue(session_, "SELECT MAX(WHID) FROM LEV_WEEKLYHLD", Value(0)).toInt() + 1;
        rs.AddNew();
        rs.Fields("WHID") = Value(key);
        rs.Fields("ATTHEADID") = Value(intAttHeadId);
        rs.Fields("EFFFROM") = Value(rule.monthYear);
        rs.Fields("WEEKID") = Value(rule.weekDay);
    }
    for (size_t i = 0; i < rule.halves.size(); ++i)
        rs.Fields(kFlags[i]) = Value(rule.halves[i] ? 1 : 0);
    rs.Fields("EDITEDYN") = Value(0);
    rs.Update();
}

bool modHolidayWeekly::FnBlnSameAsCompanyRow(const Rule& rule) {
    Halves company{};
    return readRow(0, rule, company) && company == rule.halves;
}

void modHolidayWeekly::setEdited(int32_t intAttHeadId, const Rule& rule, bool edited) {
    session_.gConn.Execute("UPDATE LEV_WEEKLYHLD SET EDITEDYN=" + number(edited ? 1 : 0) +
                           rowCondition(intAttHeadId, rule.monthYear, rule.weekDay));
}

void modHolidayWeekly::markHead(int32_t intAttHeadId, int32_t lngMonthYear) {
    const std::string head = number(intAttHeadId), month = number(lngMonthYear);
    session_.gConn.Execute("UPDATE ATT_DAYTODAY SET EDITMODEYN=1 WHERE MONTHYEAR >= " + month +
                           " AND ATTHEADID = " + head);
    session_.gConn.Execute(
        "UPDATE LEV_MONTHDET SET EDITMODEYN=1 WHERE MONTHYEAR>=" + month +
        " AND EMPID=(SELECT EMPID FROM MAS_EMPLOYEEDET WHERE EMPDETID=LEV_MONTHDET.EMPDETID AND "
        "EMPID=LEV_MONTHDET.EMPID AND ATTHEADID=" +
        head + ")");
    session_.gConn.Execute("UPDATE LEV_ALLOTMENT SET EDITMODEYN = 1 WHERE ATTHEADID = " + head +
                           " AND allotfrom >='" +
                           dateText(FnDteMonthStart(session_, lngMonthYear), "yyyy-mmm-dd") + "'");
}

// A save that changes nothing marks the widest set: the rows of all heads.
void modHolidayWeekly::markAfterSave(const Rule& rule, bool changed) {
    const std::string month = number(rule.monthYear);
    if (!changed) {
        session_.gConn.Execute("UPDATE ATT_DAYTODAY SET EDITMODEYN=1 WHERE MONTHYEAR >= " + month);
        session_.gConn.Execute("UPDATE LEV_MONTHDET SET EDITMODEYN=1 WHERE MONTHYEAR >= " + month);
    } else if (attHeadId_ != 0) {
        markHead(attHeadId_, rule.monthYear);
    } else {
        Recordset heads(session_.gConn, "SELECT ATTHEADID FROM LEV_WEEKLYHLD WHERE EFFFROM=" +
                                            month + " AND WEEKID=" + number(rule.weekDay) +
                                            " AND ATTHEADID<>0 AND EDITEDYN=0");
        for (; !heads.IsEOF(); heads.MoveNext())
            markHead(static_cast<int32_t>(heads.Fields(0).toInt()), rule.monthYear);
    }
}

// --- deleting ---

void modHolidayWeekly::cmdDelete_Click() {
    if (denied(cmdDelete)) return;
    if (fpgWeeklyHoliday.rowCount() == 0) return inform("No records to delete.");
    const Rule rule = ruleOnScreen();
    if (rule.monthYear == 0) return refuse("Select effective Month/Year.", cmbMonthYear);
    if (rule.weekDay == 0) return refuse("Select proper 'Day of the Week'.", cmbWeekDay);
    if (monthsLocked(rule.monthYear)) return;
    if (!ask("Do you want to delete selected record?")) return;
    const std::string month = number(rule.monthYear);
    if (FnVarGetValue(session_,
                      "Select Count(EMPID) From SLC_SALARYCALC_E Where MONTHYEAR >= " + month)
                .toInt() > 0 &&
        !ask("Salary will be re-calculated.  Do you want to continue?"))
        return;
    const std::string key =
        " WHERE WEEKID = " + number(rule.weekDay) + " AND EFFFROM = " + month + " AND ";
    session_.gConn.Execute("DELETE FROM LEV_WEEKLYHLD" + key + "ATTHEADID= " + number(attHeadId_));
    if (attHeadId_ == 0)
        session_.gConn.Execute("DELETE FROM LEV_WEEKLYHLD" + key + "EDITEDYN = 0 ");
    markAfterDelete(rule.monthYear);
    if (FnBlnAuditTrailOn(session_))
        UpdateAuditTrail(session_, kAuditModule, 0, "Weekly Holiday Deleted",
                         ":Attendance Name = " + attendanceName() + ":Eff. From Month = " +
                             FnStrMonthYearText(rule.monthYear) + ":Day = " + cmbWeekDay.value);
    loadGrid();
}

void modHolidayWeekly::markAfterDelete(int32_t lngMonthYear) {
    const std::string month = number(lngMonthYear), head = number(attHeadId_);
    const bool all = attHeadId_ == 0;
    const std::string salary =
        all ? " Where MONTHYEAR >= " + month
            : " Where EMPID In (Select EMPID From MAS_EMPLOYEEDET Where ATTHEADID = " + head +
                  ") AND MONTHYEAR >= " + month;
    session_.gConn.Execute("Update SLC_SALARYCALC_E Set EDITMODEYN = 1" + salary);
    session_.gConn.Execute("Update SLC_SALARYRATE_E Set TSALEDITMODEYN = 1" + salary);
    session_.gConn.Execute("UPDATE LEV_ALLOTMENT SET EDITMODEYN = 1 WHERE allotfrom >='" +
                           dateText(FnDteMonthStart(session_, lngMonthYear), "yyyy-mmm-dd") + "'" +
                           (all ? "" : " AND ATTHEADID= " + head));
    session_.gConn.Execute("UPDATE ATT_DAYTODAY SET EDITMODEYN = 1 WHERE MONTHYEAR >= " + month +
                           (all ? "" : " AND ATTHEADID = " + head));
    session_.gConn.Execute(
        "UPDATE LEV_MONTHDET SET EDITMODEYN = 1 WHERE MONTHYEAR >= " + month +
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
