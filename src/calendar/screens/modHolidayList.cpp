#include "calendar/screens/modHolidayList.h"

#include "data/modCommon.h"
#include "db/recordset.h"

namespace owb {

namespace {

enum Column : size_t { kId, kHeadId, kBranchId, kDate, kDescription, kType };

std::string number(int64_t value) {
    return std::to_string(value);
}

}  // namespace

modHolidayList::modHolidayList(Session& session, FrontEnd& frontEnd)
    : SessionScreen(session, frontEnd, "modHolidayList", "Holiday List") {
    chkBranchWise.toolTip = "Holiday List Can be Define Branchwise";
    for (TextBox* box : {&txtHDate, &txtFilterFrom, &txtFilterTo}) {
        box->toolTip = "dd/mm/yyyy,Press F2 or Double click";
        box->filter = [this](int key, const std::string&) {
            return session_.gGenCmn.FnIntAllowDateOnly(key);
        };
        box->onLeave = [box] { box->value = FnStrCleanDateCentury(box->value); };
        pickDates(*box);
    }
    txtHDesc.maxLength = 100;
    lblExport.toolTip = "Right Click For Export To Excel";
    cmbHFilter.toolTip = "Holiday Type";
    cmbHFilter.editable = false;
    cmbHFilter.add("All", -1);
    cmbHFilter.add("General", 0);
    cmbHFilter.add("National", 1);
    fpgHDetail.setColumns({{.caption = "HID", .hidden = true},
                           {.caption = "Att.Head ID", .hidden = true},
                           {.caption = "BranchID", .hidden = true},
                           {.caption = "Date", .width = 12, .type = CellType::Date},
                           {.caption = "Description", .width = 40},
                           {.caption = "Type", .width = 12}});
    fpgHDetail.singleRows = true;

    chkBranchWise.onClick = [this] { chkBranchWise_Click(); };
    cmbAttHead.onChange = [this] { cmbAttHead_Click(); };
    cmbHFilter.onChange = txtFilterFrom.onChange =
        txtFilterTo.onChange = [this] { filter_Change(); };
    fpgHDetail.onCurrentChange = [this](size_t row, size_t) { fpgHDetail_Click(row); };
    lblImport.onClick = [this] { lblImport_Click(); };
    lblExport.onClick = [this] { lblExport_Click(); };
    cmdNew.onClick = [this] { cmdNew_Click(); };
    cmdSave.onClick = [this] { cmdSave_Click(); };
    cmdDelete.onClick = [this] { cmdDelete_Click(); };
    cmdClose.onClick = [this] { close(); };
}

Layout modHolidayList::layout() {
    return column({row({item(chkBranchWise), item(lblAttHead), item(cmbAttHead, 1),
                        item("Branch wise Eff.From :", lblEffFrom)}),
                   group("Filter", {row({item("Holiday Type", cmbHFilter),
                                         item("From", txtFilterFrom), item("To", txtFilterTo)})}),
                   item(fpgHDetail, 1),
                   form({item("Date", txtHDate), item("Description", txtHDesc), item("", chkNH)}),
                   row({item(lblImport), item(lblExport), space(), item(cmdNew), item(cmdSave),
                        item(cmdDelete), item(cmdClose)})});
}

void modHolidayList::onLoad() {
    applyRights({&cmdSave, &cmdDelete});
    cmbHFilter.select(0);
    loadScopes();
    refreshBranchStart();
    LoadList();
}

// The heads, or the branches, below the whole company.
void modHolidayList::loadScopes() {
    const bool branches = chkBranchWise.value;
    lblAttHead.caption = branches ? "Branch" : "Attendance Head";
    cmbAttHead.clear();
    cmbAttHead.add("ALL", 0);
    Recordset rs(session_.gConn,
                 branches ? "SELECT BRANCHID, BRANCHNAME FROM MAS_BRANCH ORDER BY BRANCHNAME"
                          : "SELECT ATTHEADID, ATTHEADNAME FROM MAS_ATTHEAD ORDER BY ATTHEADID");
    for (; !rs.IsEOF(); rs.MoveNext()) cmbAttHead.add(rs.Fields(1).toText(), rs.Fields(0).toInt());
    if (branches || !cmbAttHead.selectKey(session_.gAttHeadId)) cmbAttHead.select(0);
}

void modHolidayList::LoadList() {
    fpgHDetail.setRowCount(0);
    selected_ = {};
    const std::string columns =
        "Select HOLIDAYID, HOLIDAYDATE, HOLIDAYDESC, HOLIDAYTYPE, ATTHEADID ,BRANCHID  From "
        "ATT_HOLIDAY Where ";
    std::string limits;
    const std::string from = FnStrCleanDateCentury(txtFilterFrom.value);
    const std::string to = FnStrCleanDateCentury(txtFilterTo.value);
    if (!from.empty() && !to.empty()) {
        limits =
            " And HOLIDAYDATE Between '" + FnStrSqlDate(from) + "' And '" + FnStrSqlDate(to) + "'";
        if (cmbHFilter.key() >= 0) limits += " And HOLIDAYTYPE = " + number(cmbHFilter.key());
    }
    std::string sql = columns + "ISNULL(ATTHEADID,0) = 0 AND ISNULL(BRANCHID,0) = 0" + limits;
    const std::string scope = number(scopeId());
    if (scopeId() != 0) sql += " UNION " + columns + scopeColumn() + "= " + scope + limits;
    Recordset rs(session_.gConn, sql + " Order By HOLIDAYDATE DESC");
    for (; !rs.IsEOF(); rs.MoveNext()) {
        const std::string id = rs.Fields("HOLIDAYID").toText();
        if (scopeId() != 0 &&
            FnBlnRecordExists(session_, "SELECT HOLIDAYID FROM ATT_HOLEX Where HOLIDAYID = " + id +
                                            " AND " + scopeColumn() + "= " + scope))
            continue;
        fpgHDetail.addRow({id, rs.Fields("ATTHEADID").toText(), rs.Fields("BRANCHID").toText(),
                           dateText(rs.Fields("HOLIDAYDATE").toDate(), "dd/mm/yyyy"),
                           rs.Fields("HOLIDAYDESC").toText(),
                           rs.Fields("HOLIDAYTYPE").toBool() ? "National" : "General"});
    }
}

void modHolidayList::chkBranchWise_Click() {
    loadScopes();
    cmdNew_Click();
    LoadList();
}

void modHolidayList::cmbAttHead_Click() {
    cmdNew_Click();
    LoadList();
}

void modHolidayList::filter_Change() {
    LoadList();
}

void modHolidayList::fpgHDetail_Click(size_t row) {
    selected_.id = static_cast<int64_t>(fpgHDetail.number(row, kId));
    txtHDate.value = fpgHDetail.cell(row, kDate);
    txtHDesc.value = fpgHDetail.cell(row, kDescription);
    chkNH.value = fpgHDetail.cell(row, kType) == "National";
    selected_.date = parseDate(txtHDate.value, DateOrder::DayFirst).value_or(DateTime{});
    selected_.description = txtHDesc.value;
    selected_.national = chkNH.value;
}

void modHolidayList::cmdNew_Click() {
    selected_ = {};
    txtHDate.value.clear();
    txtHDesc.value.clear();
    chkNH.value = false;
    fpgHDetail.setCurrent(-1, -1);
    setFocus(txtHDate);
}

int32_t modHolidayList::monthOf(const DateTime& date) {
    const std::string day = FnStrIsoDate(date);
    return static_cast<int32_t>(
        FnVarGetValue(session_, "SELECT DBO.FNLNGMONTHYEAR('" + day + "', '" + day + "')").toInt());
}

std::string modHolidayList::lockText() const {
    return "One or more " + session_.gEmployeeCaption +
           " Record(s)/Month(s) has been locked.\nStill if you want to make changes, unlock it and "
           "try again.";
}

}  // namespace owb
