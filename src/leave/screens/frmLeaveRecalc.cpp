#include "leave/screens/frmLeaveRecalc.h"

#include "db/recordset.h"
#include "db/sql_text.h"
#include "family/modCommon.h"
#include "leave/screens/modLeaveProcess.h"
#include "marks/marks.h"
#include "session/modEmployeeViews.h"
#include "session/modRights.h"
#include "session/months.h"
#include "session/queries.h"
#include "session/screens/modExternal.h"
#include "session/screens/query_lists.h"

namespace owb {

namespace {

enum Column : size_t { kOn, kId, kReference, kName };

}  // namespace

frmLeaveRecalc::frmLeaveRecalc(Session& session, FrontEnd& frontEnd)
    : SessionScreen(session, frontEnd, "frmLeaveRecalc", "Allotment Recalculation") {
    for (MonthCombo* combo : {&cmbFromMonth, &cmbToMonth}) {
        combo->editable = false;
        combo->onChange = [this] { loadLists(); };
    }
    cmbAttHead.editable = false;
    cmbAttHead.onChange = [this] { loadEmployees(); };
    lstLeave.caption = "Leaves";
    lstLeave.checkable = true;
    lstLeave.onChange = [this] { count(); };
    chkAllEmployees.caption = "Select All &" + session.gEmployeeCaption + "s";
    fpgEmployee.caption = session.gEmployeeCaption + "s";
    fpgEmployee.setColumns(
        {{.caption = "Select", .width = 7, .type = CellType::Check, .locked = false},
         {.caption = session.gOptSet.EMPIDCAP, .width = 8, .align = Align::Right},
         {.caption = session.gOptSet.REFNOCAP, .width = 12, .hidden = !session.gOptSet.EMPREFNOYN},
         {.caption = session.gEmployeeCaption + " Name", .width = 32}});
    fpgEmployee.frozenColumns = 1;
    fpgEmployee.onEditEnd = [this](size_t, size_t, const std::string&) { count(); };
    chkAllLeaves.onClick = [this] { chkAllLeaves_Click(); };
    chkAllEmployees.onClick = [this] { chkAllEmployees_Click(); };
}

Layout frmLeaveRecalc::layout() {
    return column({row({item("From", cmbFromMonth), item("To", cmbToMonth),
                        item("Attendance Head", cmbAttHead)}),
                   row({group("Leaves", {item(lstLeave, 1),
                                         row({item(chkAllLeaves), space(), item(lblLeaveCount)})}),
                        column({item(fpgEmployee, 1),
                                row({item(chkAllEmployees), space(), item(lblEmployeeCount)})},
                               1)},
                       1),
                   row({item(cmdFilter), space(), item(cmdRecalculate), item(cmdClose)})});
}

void frmLeaveRecalc::load() {
    ClearEmployeeFilter(session_);
    for (MonthCombo* combo : {&cmbFromMonth, &cmbToMonth}) {
        combo->load(session_.gFirstLeaveMonth);
        if (!combo->items.empty()) combo->select(0);
    }
    if (!cmbFromMonth.items.empty()) loadLists();
}

std::string frmLeaveRecalc::firstDay() const {
    DateTime first, last;
    GetMonthPeriod(session_, cmbFromMonth.month(), first, last);
    return FnStrIsoLiteral(first);
}

std::string frmLeaveRecalc::inMonths() const {
    DateTime first, last;
    GetMonthPeriod(session_, cmbToMonth.month(), first, last);
    return " WHERE ALLOTFROM BETWEEN " + firstDay() + " AND " + FnStrIsoLiteral(last) + " AND ";
}

void frmLeaveRecalc::loadLists() {
    lstLeave.clear();
    chkAllLeaves.value = false;
    cmbAttHead.clear();
    cmbAttHead.add("ALL", 0);
    addItems(session_, lstLeave,
             "SELECT LEVID, LEVSHORT + ' - ' + LEVNAME FROM ATT_DEFINITION WHERE LEVID IN (SELECT  "
             "DISTINCT LEVID FROM  LEV_ALLOTMENT" +
                 inMonths() + "(LEVID=2 OR LEVID>4)) ");
    addItems(session_, cmbAttHead,
             "SELECT ATTHEADID, ATTHEADNAME FROM MAS_ATTHEAD WHERE ATTHEADID IN (SELECT  DISTINCT "
             "ATTHEADID FROM  LEV_ALLOTMENT" +
                 inMonths() + "LEVID<>4) ");
    cmbAttHead.select(0);
    loadEmployees();
}

void frmLeaveRecalc::loadEmployees() {
    FillClassSecurity(session_, 0, 0);
    Sql head;
    if (cmbAttHead.key() != 0) head << " AND ATTHEADID = " << cmbAttHead.key();
    fillGrid(session_, fpgEmployee,
             "SELECT 0 AS CHOSEN, ME.EMPID, ME.REFNO, ME.EMPNAME FROM " + session_.gEmployeeView +
                 " ME WHERE FILTERYN1=1 AND ME.EMPID IN (SELECT EMPID FROM LEV_ALLOTMENT" +
                 inMonths() + "LEVID<>4" + head.text() + ")" + FnStrClassSecurityFilter(session_) +
                 " ORDER BY ME.EMPID",
             kId);
    chkAllEmployees.value = false;
    count();
}

void frmLeaveRecalc::count() {
    lblLeaveCount.caption = "Selected : " + std::to_string(lstLeave.checkedKeys().size());
    lblEmployeeCount.caption = "Selected : " + std::to_string(chosenEmployees().size());
}

std::vector<std::string> frmLeaveRecalc::chosenEmployees() const {
    std::vector<std::string> employees;
    for (size_t row = 0; row < fpgEmployee.rowCount(); ++row)
        if (fpgEmployee.checked(row, kOn)) employees.push_back(fpgEmployee.cell(row, kId));
    return employees;
}

void frmLeaveRecalc::chkAllLeaves_Click() {
    for (ListItem& leave : lstLeave.items) leave.checked = chkAllLeaves.value;
    count();
}

void frmLeaveRecalc::chkAllEmployees_Click() {
    for (size_t row = 0; row < fpgEmployee.rowCount(); ++row)
        fpgEmployee.setCell(row, kOn, chkAllEmployees.value ? "1" : "0");
    count();
}

void frmLeaveRecalc::cmdFilter_Click() {
    ShowFilterProgram(session_, frontEnd());
    loadEmployees();
}

// --- recalculating ---

void frmLeaveRecalc::cmdRecalculate_Click() {
    if (cmbFromMonth.key() > cmbToMonth.key())
        return refuse("From Month is greater than To month", cmbFromMonth);
    if (lstLeave.checkedKeys().empty()) return refuse("Select atleast one Leave Type", lstLeave);
    const std::vector<std::string> employees = chosenEmployees();
    if (employees.empty())
        return refuse("Select atleast one " + session_.gEmployeeCaption, fpgEmployee);
    ChooseEmployees(session_, employees);
    if (FnVarValueOrThrow(session_, "SELECT COUNT(ALLOTID)" + chosenRows()).toInt() == 0)
        return inform("No leaves to recalculate");
    if (!save(SaveBatch().add(MarkChosenAllotmentSql(chosenRows())), [] {})) return;
    modLeaveProcess process(session_, frontEnd());
    process.showModal();
    if (process.Succeeded()) inform("Recalculated Successfully");
}

std::string frmLeaveRecalc::chosenRows() const {
    Sql rows;
    rows << " FROM lev_allotment LEV," << session_.gFilterTable
         << " MAS WHERE LEV.EMPID=MAS.EMPID AND MAS.REPTYN1=1 AND LEVID IN (0";
    for (const int64_t levId : lstLeave.checkedKeys()) rows << "," << levId;
    rows << ") AND ALLOTFROM >= " << firstDay() << "  AND ATTHEADID ";
    return cmbAttHead.key() == 0 ? rows << ">= 0" : rows << "= " << cmbAttHead.key();
}

}  // namespace owb
