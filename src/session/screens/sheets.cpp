#include "session/screens/sheets.h"

#include "base/utf8.h"
#include "exchange/clsEXLFunc.h"
#include "exchange/modExpToExcel.h"
#include "exchange/screens/frmImport.h"
#include "exchange/screens/frmProgress.h"
#include "session/screens/SessionScreen.h"

namespace owb {

void ExportGrid(SessionScreen& screen, const Grid& grid) {
    RunShown(screen.frontEnd(), screen.caption, grid.rowCount(), [&](Progress& progress) {
        ExportGridToExcel(screen.session(), screen.frontEnd(), grid, screen.caption, progress);
    });
}

namespace {

std::vector<std::string> textsOf(const SheetRow& row, const std::vector<ImportColumn>& columns) {
    std::vector<std::string> texts;
    for (size_t c = 0; c < columns.size(); ++c) {
        const SheetCell cell = c < row.size() ? row[c] : SheetCell();
        texts.push_back(columns[c].isDate ? sheetDateText(cell) : sheetText(cell));
    }
    return texts;
}

std::string tooLong(const std::vector<std::string>& texts,
                    const std::vector<ImportColumn>& columns) {
    for (size_t c = 0; c < columns.size(); ++c)
        if (columns[c].longest != 0 && utf8Length(texts[c]) > columns[c].longest)
            return "The " + lowerCase(columns[c].caption) + " is longer than " +
                   std::to_string(columns[c].longest) + " characters.";
    return "";
}

size_t firstRow(const std::vector<SheetRow>& sheet, const std::string& heading) {
    for (size_t r = 0; r < sheet.size(); ++r)
        if (!sheet[r].empty() && compareText(sheetText(sheet[r][0]), heading) == 0) return r + 1;
    return 0;
}

}  // namespace

bool ImportSheet(SessionScreen& screen, const std::vector<ImportColumn>& columns,
                 const std::function<std::string(const std::vector<std::string>&)>& accept) {
    FrontEnd& frontEnd = screen.frontEnd();
    const std::string title = "Import " + screen.caption;
    const std::string path = AskImportFile(screen.session(), frontEnd, title);
    clsEXLFunc book(frontEnd);
    if (path.empty() || !book.EXLOpenBook(path)) return false;
    const std::vector<SheetRow>& sheet = book.rows();
    std::vector<frmImport::Row> rows;
    bool finished = false;
    RunShown(frontEnd, title, sheet.size(), [&](Progress& progress) {
        for (size_t r = firstRow(sheet, columns[0].caption); r < sheet.size(); ++r) {
            if (progress.cancelled()) return;
            if (r % 50 == 0) progress.step(r, sheet.size());
            if (sheet[r].empty()) continue;
            frmImport::Row row{r + 1, textsOf(sheet[r], columns), "", false};
            row.outcome = tooLong(row.cells, columns);
            if (row.outcome.empty()) row.outcome = accept(row.cells);
            row.refused = !row.outcome.empty();
            if (!row.refused) row.outcome = "Add";
            rows.push_back(std::move(row));
        }
        finished = true;
    });
    if (!finished) return false;
    if (rows.empty()) {
        frontEnd.information("No record found in " + path + ".");
        return false;
    }
    std::vector<std::string> captions;
    for (const ImportColumn& column : columns) captions.push_back(column.caption);
    return frmImport(frontEnd, title, captions, std::move(rows)).Ask();
}

}  // namespace owb
