#include "siblings/frmFilter.h"

#include <set>

#include "base/utf8.h"

#include "db/recordset.h"
#include "session/screens/FnGrid.h"

namespace owb {

namespace {

enum Column : size_t { kOn, kId, kReference, kName, kDepartment, kDesignation, kBranch, kHead };
constexpr size_t kAtOnce = 500;  // employees in one statement

}  // namespace

frmFilter::frmFilter(Session& session, FrontEnd& frontEnd)
    : SessionScreen(session, frontEnd, "frmFilter", "OrvaneWagebook - Filter") {
    txtSearch.toolTip = "Search by specified characters in Employee Name and ID";
    txtSearch.onChange = [this] { narrow(); };
    for (Combo* combo : {&cmbDepartment, &cmbDesignation, &cmbBranch, &cmbAttHead}) {
        combo->editable = false;
        combo->onChange = [this] { narrow(); };
    }
    fpgEmployee.frozenColumns = 4;
    cmdSelectAll.onClick = [this] { setListed(true); };
    cmdClear.onClick = [this] { setListed(false); };
    cmdApply.onClick = [this] { cmdApply_Click(); };
}

Layout frmFilter::layout() {
    return column({row({form({item("Search", txtSearch), item("Department", cmbDepartment),
                              item("Designation", cmbDesignation)}),
                        form({item("Branch", cmbBranch), item("Attendance Head", cmbAttHead)})}),
                   item(fpgEmployee, 1),
                   row({item(lblListedCount), space(), item(cmdSelectAll), item(cmdClear),
                        item(cmdApply), item(cmdClose)})});
}

void frmFilter::load() {
    fpgEmployee.setColumns(
        {{.caption = "Show", .width = 6, .type = CellType::Check, .locked = false},
         {.caption = session_.gOptSet.EMPIDCAP, .width = 8, .align = Align::Right},
         {.caption = session_.gOptSet.REFNOCAP,
          .width = 10,
          .hidden = !session_.gOptSet.EMPREFNOYN},
         {.caption = session_.gEmployeeCaption + " Name", .width = 24},
         {.caption = "Department", .width = 14},
         {.caption = "Designation", .width = 14},
         {.caption = "Branch", .width = 12},
         {.caption = "Attendance Head", .width = 18}});
    // A version holds the key of its department and designation, or the text itself.
    Recordset rs(
        session_.gConn,
        "SELECT V.FILTERYN1, V.EMPID, V.REFNO, V.EMPNAME, ISNULL(MD.DEPARTMENT, "
        "D.DEPARTMENT), ISNULL(MG.DESIGNATION, D.DESIGNATION), "
        "B.BRANCHNAME, H.ATTHEADNAME FROM " +
            session_.gEmployeeView +
            " V INNER JOIN MAS_EMPLOYEEDET D ON D.EMPID = V.EMPID AND D.EMPDETID = (SELECT "
            "MAX(EMPDETID) FROM MAS_EMPLOYEEDET WHERE EMPID = V.EMPID) LEFT JOIN "
            "MAS_BRANCH B ON B.BRANCHID = D.BRANCHID LEFT JOIN MAS_ATTHEAD H ON "
            "H.ATTHEADID = D.ATTHEADID LEFT JOIN MAS_DEPARTMENT MD ON "
            "CAST(MD.DEPARTMENTID AS NVARCHAR(100)) = D.DEPARTMENT LEFT JOIN MAS_DESIGNATION MG "
            "ON CAST(MG.DESIGNATIONID AS NVARCHAR(100)) = D.DESIGNATION ORDER BY V.EMPID");
    for (; !rs.IsEOF(); rs.MoveNext()) {
        std::vector<std::string> cells;
        for (size_t c = 0; c < rs.FieldCount(); ++c) cells.push_back(rs.Fields(c).toText());
        cells[kOn] = rs.Fields(kOn).toBool() ? "1" : "0";
        fpgEmployee.addRow(std::move(cells));
    }
    ticksBegun_ = ticks();
    fillCombos();
    narrow();
}

std::string frmFilter::ticks() const {
    std::string all;
    for (size_t r = 0; r < fpgEmployee.rowCount(); ++r) all += fpgEmployee.cell(r, kOn);
    return all;
}

void frmFilter::fillCombos() {
    const std::pair<Combo*, size_t> lists[] = {{&cmbDepartment, kDepartment},
                                               {&cmbDesignation, kDesignation},
                                               {&cmbBranch, kBranch},
                                               {&cmbAttHead, kHead}};
    for (const auto& [combo, c] : lists) {
        std::set<std::string> texts;
        for (size_t r = 0; r < fpgEmployee.rowCount(); ++r) texts.insert(fpgEmployee.cell(r, c));
        texts.erase("");
        combo->add("ALL");
        for (const std::string& text : texts) combo->add(text);
        combo->select(0);
    }
}

void frmFilter::narrow() {
    FnGridFirstMatch(fpgEmployee, txtSearch.value, {kId, kReference, kName});
    const auto fits = [](const Combo& combo, const std::string& cell) {
        return combo.selected() <= 0 || compareText(combo.value, cell) == 0;
    };
    for (size_t r = 0; r < fpgEmployee.rowCount(); ++r) {
        const auto cell = [&](size_t c) { return fpgEmployee.cell(r, c); };
        if (!fits(cmbDepartment, cell(kDepartment)) || !fits(cmbDesignation, cell(kDesignation)) ||
            !fits(cmbBranch, cell(kBranch)) || !fits(cmbAttHead, cell(kHead)))
            fpgEmployee.setRowHidden(r, true);
    }
    lblListedCount.caption = "Listed : " + std::to_string(fpgEmployee.visibleRowCount());
}

void frmFilter::setListed(bool on) {
    for (size_t r = 0; r < fpgEmployee.rowCount(); ++r)
        if (!fpgEmployee.rowHidden(r)) fpgEmployee.setCell(r, kOn, on ? "1" : "0");
}

void frmFilter::cmdApply_Click() {
    std::vector<std::string> kept;
    for (size_t r = 0; r < fpgEmployee.rowCount(); ++r)
        if (!fpgEmployee.rowHidden(r) && fpgEmployee.checked(r, kOn))
            kept.push_back(fpgEmployee.cell(r, kId));
    if (kept.empty()) return inform("Select atleast one " + session_.gEmployeeCaption);
    const std::string update = "UPDATE " + session_.gFilterTable + " SET FILTERYN1 = ";
    SaveBatch batch;
    batch.add(" " + update + "0");
    for (size_t from = 0; from < kept.size(); from += kAtOnce) {
        std::string ids;
        for (size_t i = from; i < std::min(from + kAtOnce, kept.size()); ++i)
            ids += (ids.empty() ? "" : ",") + kept[i];
        batch.add(" " + update + "1 WHERE EMPID IN (" + ids + ")");
    }
    batch.run(session_);
    session_.settings.SaveSetting("Settings", "Filter",
                                  kept.size() < fpgEmployee.rowCount() ? "1" : "0");
    close();
}

}  // namespace owb
