#include "calendar/screens/modHolidayList.h"

#include "db/recordset.h"
#include "family/modCommon.h"
#include "session/queries.h"

namespace owb {

namespace {

constexpr int32_t kMenuId = 1512;

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
            return session_.gGenCmn.FnIntAllowDateOnlyWithAlpha(key);
        };
        box->onLeave = [box] { box->value = FnStrCleanDateCentury(box->value); };
        pickDates(*box);
    }
    txtHDesc.maxLength = kLongestDescription;
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
    applyRights({&cmdSave, &cmdDelete}, kMenuId);
    lblImport.enabled = !session_.gReadOnly;
    cmbHFilter.select(0);
    loadScopes();
    showBranchStart();
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

// The row that is being edited stays the current one.
void modHolidayList::LoadList() {
    std::string limits;
    if (const auto from = parseTypedDate(txtFilterFrom.value))
        limits += " And HOLIDAYDATE >= " + FnStrIsoLiteral(*from);
    if (const auto to = parseTypedDate(txtFilterTo.value))
        limits += " And HOLIDAYDATE <= " + FnStrIsoLiteral(*to);
    if (cmbHFilter.key() >= 0) limits += " And ISNULL(HOLIDAYTYPE,0) = " + number(cmbHFilter.key());
    const std::string columns =
        "Select HOLIDAYID, HOLIDAYDATE, HOLIDAYDESC, HOLIDAYTYPE, ATTHEADID ,BRANCHID  From "
        "ATT_HOLIDAY Where ";
    std::string sql = columns + "ISNULL(ATTHEADID,0) = 0 AND ISNULL(BRANCHID,0) = 0" + limits;
    if (scopeId() != 0)
        sql += " UNION " + columns + scopeColumn() + "= " + number(scopeId()) + limits;
    Recordset rs(session_.gConn, sql + " Order By HOLIDAYDATE DESC");
    fpgHDetail.setRowCount(0);
    for (; !rs.IsEOF(); rs.MoveNext()) {
        if (scopeId() != 0 && hasException(rs.Fields("HOLIDAYID").toInt())) continue;
        const size_t row =
            fpgHDetail.addRow({rs.Fields("HOLIDAYID").toText(), rs.Fields("ATTHEADID").toText(),
                               rs.Fields("BRANCHID").toText(),
                               dateText(rs.Fields("HOLIDAYDATE").toDate(), "dd/mm/yyyy"),
                               rs.Fields("HOLIDAYDESC").toText(),
                               rs.Fields("HOLIDAYTYPE").toBool() ? "National" : "General"});
        if (selected_.id != 0 && rs.Fields("HOLIDAYID").toInt() == selected_.id)
            fpgHDetail.setCurrent(static_cast<int>(row), kDate);
    }
}

void modHolidayList::showAgain() {
    cmdNew_Click();
    LoadList();
    showBranchStart();
}

void modHolidayList::chkBranchWise_Click() {
    loadScopes();
    showAgain();
}

void modHolidayList::cmbAttHead_Click() {
    showAgain();
}

void modHolidayList::filter_Change() {
    LoadList();
}

void modHolidayList::fpgHDetail_Click(size_t row) {
    const auto id = static_cast<int64_t>(fpgHDetail.number(row, kId));
    shown_ = ShownRow(session_, "ATT_HOLIDAY",
                      "HOLIDAYDATE, HOLIDAYDESC, HOLIDAYTYPE, ATTHEADID, BRANCHID",
                      "HOLIDAYID = " + number(id));
    if (!shown_.found()) {
        inform("Holiday already deleted.");
        return showAgain();
    }
    selected_ = {id, shown_.value("HOLIDAYDATE").toDate(), shown_.value("HOLIDAYDESC").toText(),
                 shown_.value("HOLIDAYTYPE").toBool()};
    txtHDate.value = dateText(selected_.date, "dd/mm/yyyy");
    txtHDesc.value = selected_.description;
    chkNH.value = selected_.national;
}

void modHolidayList::cmdNew_Click() {
    selected_ = {};
    shown_ = {};
    txtHDate.value.clear();
    txtHDesc.value.clear();
    chkNH.value = false;
    fpgHDetail.setCurrent(-1, -1);
    setFocus(txtHDate);
}

int32_t modHolidayList::monthOf(const DateTime& date) {
    const std::string day = FnStrIsoDate(date);
    return static_cast<int32_t>(
        FnVarValueOrThrow(session_, "SELECT DBO.FNLNGMONTHYEAR('" + day + "', '" + day + "')")
            .toInt());
}

std::string modHolidayList::lockText() const {
    return "One or more " + session_.gEmployeeCaption +
           " Record(s)/Month(s) has been locked.\nStill if you want to make changes, unlock it and "
           "try again.";
}

}  // namespace owb
