// The list to a sheet, and back from a sheet of the same columns: each row goes through the checks
// of a save before anything is written, and all good rows are written as one.
#include <set>

#include "base/utf8.h"
#include "calendar/screens/modHolidayList.h"
#include "exchange/clsEXLFunc.h"
#include "exchange/modExpToExcel.h"
#include "exchange/screens/frmImport.h"
#include "family/modCommon.h"
#include "session/modOWBSetting.h"

namespace owb {

void modHolidayList::lblExport_Click() {
    NoProgress unseen;
    ExportGridToExcel(session_, frontEnd(), fpgHDetail, caption, unseen);
}

void modHolidayList::lblImport_Click() {
    if (denied(cmdSave)) return;
    const std::string path = AskImportFile(session_, frontEnd(), "Import " + caption);
    clsEXLFunc book(frontEnd());
    if (path.empty() || !book.EXLOpenBook(path)) return;
    std::vector<frmImport::Row> rows;
    std::vector<Holiday> holidays;
    readHolidays(book.rows(), rows, holidays);
    if (rows.empty()) return inform("No record found in " + path + ".");
    if (!frmImport(frontEnd(), "Import " + caption, {"Date", "Description", "Type"}, rows).Ask())
        return;
    SaveBatch batch;
    std::set<int32_t> months;
    for (const Holiday& holiday : holidays) {
        SaveHolidayRow(batch, holiday);
        months.insert(monthOf(holiday.date));
    }
    for (const int32_t month : months) MarkHolidayMonth(batch, month);
    updateBranchStart(batch);
    if (!save(batch, [this] { showAgain(); })) return;
    if (FnBlnAuditTrailOn(session_))
        for (const Holiday& holiday : holidays) auditSave(holiday);
    showAgain();
    session_.gGenCmn.ShowSavedMessage();
}

// Rows behind the one that is headed "Date"; without one, all rows.
void modHolidayList::readHolidays(const std::vector<SheetRow>& sheet,
                                  std::vector<frmImport::Row>& rows,
                                  std::vector<Holiday>& holidays) {
    const auto at = [](const SheetRow& row, size_t c) {
        return c < row.size() ? row[c] : SheetCell();
    };
    size_t first = 0;
    for (size_t r = 0; r < sheet.size(); ++r)
        if (compareText(sheetText(at(sheet[r], 0)), "Date") == 0) first = r + 1;
    std::set<int32_t> days;
    for (size_t r = first; r < sheet.size(); ++r) {
        if (sheet[r].empty()) continue;
        frmImport::Row row;
        row.line = r + 1;
        row.cells = {sheetDateText(at(sheet[r], 0)), sheetText(at(sheet[r], 1)),
                     sheetText(at(sheet[r], 2))};
        Holiday holiday;
        holiday.date = parseTypedDate(FnStrCleanDateCentury(row.cells[0])).value_or(DateTime{});
        holiday.description = row.cells[1];
        holiday.national = equalsIgnoreCaseAscii(trim(row.cells[2]), "National");
        int32_t lngMonthYear = 0;
        row.outcome = refusal(holiday, lngMonthYear);
        if (row.outcome.empty() && !days.insert(holiday.date.day).second)
            row.outcome = "Holiday already available.";
        row.refused = !row.outcome.empty();
        if (!row.refused) {
            row.outcome = "Add";
            holidays.push_back(holiday);
        }
        rows.push_back(std::move(row));
    }
}

}  // namespace owb
