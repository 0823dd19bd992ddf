#include "calendar/screens/modHolidayList.h"

#include <set>

#include "base/utf8.h"
#include "db/sql_text.h"
#include "family/modCommon.h"
#include "session/queries.h"
#include "session/screens/query_lists.h"
#include "session/screens/sheets.h"

namespace owb {

namespace {

constexpr int32_t kMenuId = 1512;
constexpr size_t kLongestDescription = 100;

}  // namespace

modHolidayList::modHolidayList(Session& session, FrontEnd& frontEnd)
    : RowScreen(session, frontEnd, {"modHolidayList", "Holiday List", kMenuId, "fpgHDetail"},
                holiday_) {
    holiday_.date("HOLIDAYDATE", txtHDate, "Holiday Date");
    holiday_.text("HOLIDAYDESC", txtHDesc, "Description");
    holiday_.check("HOLIDAYTYPE", chkNH, "National Holiday Applicability").addedLabel =
        "National Holiday";
    // Shown with the row, so that a save finds out when they change; not edited.
    holiday_.keep("ATTHEADID");
    holiday_.keep("BRANCHID");
    chkBranchWise.toolTip = "Holiday List Can be Define Branchwise";
    txtHDesc.maxLength = kLongestDescription;
    lblImport.writes = true;
    lblExport.toolTip = "Right Click For Export To Excel";
    cmbHFilter.toolTip = "Holiday Type";
    cmbHFilter.editable = false;
    cmbHFilter.add("All", -1);
    cmbHFilter.add("General", 0);
    cmbHFilter.add("National", 1);
    list.setColumns({{.caption = "HID", .hidden = true},
                     {.caption = "Att.Head ID", .hidden = true},
                     {.caption = "BranchID", .hidden = true},
                     {.caption = "Date", .width = 12, .type = CellType::Date},
                     {.caption = "Description", .width = 40},
                     {.caption = "Type", .width = 12}});

    chkBranchWise.onClick = [this] { scopesChanged(); };
    cmbAttHead.onChange = [this] { showAgain(); };
    cmbHFilter.onChange = txtFilterFrom.onChange = txtFilterTo.onChange = [this] { reloadList(); };
    lblImport.onClick = [this] { lblImport_Click(); };
    lblExport.onClick = [this] { ExportGrid(*this, list); };
}

Layout modHolidayList::layout() {
    return column({row({item(chkBranchWise), item(lblAttHead), item(cmbAttHead, 1),
                        item("Branch wise Eff.From :", lblEffFrom)}),
                   group("Filter", {row({item("Holiday Type", cmbHFilter),
                                         item("From", txtFilterFrom), item("To", txtFilterTo)})}),
                   item(list, 1),
                   form({item("Date", txtHDate), item("Description", txtHDesc), item("", chkNH)}),
                   commandRow({item(lblImport), item(lblExport)})});
}

PrintHeading modHolidayList::printHeading() const {
    PrintHeading heading = RowScreen::printHeading();
    if (cmbHFilter.key() >= 0) heading.filters.push_back("Holiday Type: " + cmbHFilter.text());
    if (txtFilterFrom.date()) heading.filters.push_back("From: " + txtFilterFrom.text());
    if (txtFilterTo.date()) heading.filters.push_back("To: " + txtFilterTo.text());
    return heading;
}

std::string modHolidayList::titleHead() const {
    return cmbAttHead.key() == 0 ? "" : cmbAttHead.value;
}

void modHolidayList::load() {
    cmbHFilter.select(0);
    cmbAttHead.load(ScopeCombo::Of::Heads, session_.gAttHeadId);
    showAgain();
}

void modHolidayList::scopesChanged() {
    const bool branches = chkBranchWise.value;
    lblAttHead.caption = branches ? "Branch" : "Attendance Head";
    cmbAttHead.load(branches ? ScopeCombo::Of::Branches : ScopeCombo::Of::Heads,
                    branches ? 0 : session_.gAttHeadId);
    showAgain();
}

// BRGHEFROM is the first date of a holiday of a branch.
void modHolidayList::showAgain() {
    RowScreen::showAgain();
    const Value start = FnVarValueOrThrow(session_, " Select BRGHEFROM  From MAS_OPTSET");
    lblEffFrom.caption = start.isNull() ? "N/A" : dateText(start.toDate(), "dd/mmm/yyyy");
}

HolidayScope modHolidayList::scope() const {
    return {chkBranchWise.value ? "BRANCHID" : "ATTHEADID", cmbAttHead.key()};
}

// The company's holidays and the scope's own, but for those that are taken from it.
void modHolidayList::loadList() {
    Sql limits, sql;
    if (const auto from = txtFilterFrom.date()) limits << " And HOLIDAYDATE >= " << *from;
    if (const auto to = txtFilterTo.date()) limits << " And HOLIDAYDATE <= " << *to;
    if (cmbHFilter.key() >= 0) limits << " And ISNULL(HOLIDAYTYPE,0) = " << cmbHFilter.key();
    const char* columns =
        "Select HOLIDAYID, ATTHEADID, BRANCHID, HOLIDAYDATE, HOLIDAYDESC, (CASE WHEN HOLIDAYTYPE = "
        "1 THEN 'National' ELSE 'General' END) AS KIND From ATT_HOLIDAY Where ";
    sql << columns << "ISNULL(ATTHEADID,0) = 0 AND ISNULL(BRANCHID,0) = 0";
    if (scope().id != 0)
        sql << " AND NOT " << exceptionSql("ATT_HOLIDAY.HOLIDAYID") << limits << " UNION "
            << columns << scope().condition();
    fillGrid(session_, list, sql << limits << " Order By HOLIDAYDATE DESC");
}

modHolidayList::Holiday modHolidayList::typed() const {
    return {txtHDate.date().value_or(DateTime{}), trim(txtHDesc.value), chkNH.value};
}

int32_t modHolidayList::monthOf(const DateTime& date) {
    return static_cast<int32_t>(FnVarValueOrThrow(session_, Sql() << "SELECT DBO.FNLNGMONTHYEAR("
                                                                  << date << ", " << date << ")")
                                    .toInt());
}

int32_t modHolidayList::monthBefore() {
    return monthOf(row_.before("HOLIDAYDATE").toDate());
}

Lock modHolidayList::lockOf(int32_t lngMonthYear) const {
    return MonthsLock(lngMonthYear, lngMonthYear, true, 0, FnStrRecordsLocked(session_));
}

// --- from a sheet of the list's own columns ---

// Each row goes through the checks of a save before anything is written, and all good rows are
// written as one.
void modHolidayList::lblImport_Click() {
    std::vector<Holiday> holidays;
    std::set<int32_t> days, months;
    const auto accept = [&](const std::vector<std::string>& cells) -> std::string {
        const Holiday holiday{parseTypedDate(FnStrCleanDateCentury(cells[0])).value_or(DateTime{}),
                              trim(cells[1]), equalsIgnoreCaseAscii(trim(cells[2]), "National")};
        if (const auto refusal = refusalOf(holiday, true)) return refusal->text;
        if (!days.insert(holiday.date.day).second) return "Holiday already available.";
        holidays.push_back(holiday);
        return "";
    };
    if (!ImportSheet(*this, {{"Date", 0, true}, {"Description", kLongestDescription}, {"Type"}},
                     accept))
        return;
    SaveBatch batch;
    for (const Holiday& holiday : holidays) {
        addHoliday(batch, holiday);
        months.insert(monthOf(holiday.date));
        batch.audit({"General Holiday Added",
                     auditBegin()
                         .value("Holiday Date", dateText(holiday.date, "dd/mm/yyyy"))
                         .value("Description", holiday.description)
                         .value("National Holiday", FnStrYesNo(holiday.national))});
    }
    for (const int32_t month : months) markMonth(batch, month);
    updateBranchStart(batch);
    if (!save(batch, [this] { showAgain(); })) return;
    showAgain();
    session_.gGenCmn.ShowSavedMessage();
}

}  // namespace owb
