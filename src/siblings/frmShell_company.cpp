// What the launcher tells of the company: who works on it, which months are open, what awaits
// recalculation, and its attendance heads.
#include "base/number_text.h"
#include "db/recordset.h"
#include "db/sql_text.h"
#include "family/modCommon.h"
#include "leave/AwaitingRows.h"
#include "session/queries.h"
#include "siblings/frmShell.h"

namespace owb {

namespace {

enum Column : size_t { kName, kRegister, kEmployees, kKey };

const char* registerOf(int64_t type) {
    constexpr const char* names[] = {"", "Leave register", "Daily status", "Hours per day",
                                     "Monthly figures"};
    return type >= 1 && type <= 4 ? names[type] : "";
}

// "Oct/2026, Nov/2026" of a few months, "Apr/2024 to Nov/2026" of many.
std::string inWords(const std::vector<std::string>& months) {
    constexpr size_t kFew = 3;
    if (months.size() > kFew) return months.front() + " to " + months.back();
    std::string words;
    for (const std::string& month : months) words += (words.empty() ? "" : ", ") + month;
    return words;
}

std::string awaitingInWords(int64_t rows) {
    if (rows == 0) return "Nothing awaits recalculation";
    if (rows == 1) return "1 row awaits recalculation";
    return formatNumber(static_cast<double>(rows), "#,##0") + " rows await recalculation";
}

}  // namespace

void frmShell::readCompany() {
    lblCompany.caption =
        FnVarValueOrThrow(session_, "SELECT CMPNAME FROM MAS_COMPANY", "").toText();
    lblUser.caption =
        "Signed in: " + session_.gUser + (session_.gReadOnly ? " (may only look)" : "");
    std::vector<std::string> open;
    size_t locked = 0;
    Recordset rs(session_.gConn,
                 "SELECT MONTHYEAR, CASE WHEN ISNULL(LOCKEDYN, 0) = 1 OR ISNULL(ATTLOCKYN, 0) = 1 "
                 "THEN 1 ELSE 0 END FROM MAS_MONTHYEAR ORDER BY MONTHYEAR");
    for (; !rs.IsEOF(); rs.MoveNext()) {
        if (rs.Fields(1).toBool())
            ++locked;
        else
            open.push_back(FnStrMonthYearText(static_cast<int32_t>(rs.Fields(0).toInt())));
    }
    lblMonths.caption = open.empty() ? "No month is open" : "Months open: " + inWords(open);
    if (locked > 0) lblMonths.caption += "; " + std::to_string(locked) + " locked";
    readAwaiting();
}

void frmShell::readAwaiting() {
    lblAwaiting.caption = awaitingInWords(FnLngAwaitingRows(session_));
}

// Employees are counted where they stand today.
void frmShell::fillHeads() {
    fpgHead.setColumns({{.caption = "Attendance Head", .width = 15},
                        {.caption = "Register", .width = 14},
                        {.caption = "Employees", .width = 10, .align = Align::Right},
                        {.caption = "Key", .hidden = true}});
    const DateTime today{session_.now().day};
    Recordset rs(
        session_.gConn,
        Sql() << "SELECT H.ATTHEADNAME, H.ATTNTYPE, COUNT(D.EMPID), H.ATTHEADID FROM MAS_ATTHEAD H "
                 "LEFT JOIN (SELECT MD.EMPID, MD.ATTHEADID FROM MAS_EMPLOYEEDET MD, MAS_EMPLOYEE "
                 "ME WHERE ME.EMPID = MD.EMPID AND ISNULL(ME.DOL, '2099-12-31') >= "
              << today << " AND MD.EFFFROMDATE <= " << today
              << " AND ISNULL(MD.EFFTODATE, '2099-12-31') >= " << today
              << ") D ON D.ATTHEADID = H.ATTHEADID GROUP BY H.ATTHEADNAME, H.ATTNTYPE, "
                 "H.ATTHEADID ORDER BY H.ATTHEADID");
    fpgHead.addRow({"All", "", "", "0"});
    int64_t all = 0;
    for (; !rs.IsEOF(); rs.MoveNext()) {
        all += rs.Fields(2).toInt();
        fpgHead.addRow({rs.Fields(0).toText(), registerOf(rs.Fields(1).toInt()),
                        rs.Fields(2).toText(), rs.Fields(3).toText()});
    }
    fpgHead.setCell(0, kEmployees, std::to_string(all));
    fpgHead.setCurrent(0, kName);
}

int32_t frmShell::chosenHead() const {
    const auto row = static_cast<size_t>(std::max(fpgHead.currentRow(), 0));
    return static_cast<int32_t>(fpgHead.number(row, kKey));
}

std::string frmShell::headName(int32_t head) const {
    for (size_t r = 0; r < fpgHead.rowCount(); ++r)
        if (static_cast<int32_t>(fpgHead.number(r, kKey)) == head) return fpgHead.cell(r, kName);
    return "";
}

}  // namespace owb
