#include "exchange/modExpToExcel.h"

#include <filesystem>

#include "base/number_text.h"
#include "exchange/clsEXLFunc.h"
#include "screen/front_end.h"
#include "screen/print_pages.h"
#include "session/Session.h"
#include "session/lenient_queries.h"

namespace owb {

namespace {

constexpr const char* kSection = "LeaveMgmt";
constexpr const char* kFolder = "ExportFolder";
constexpr SheetColor kWhite = 0xFFFFFF;

std::string askFile(Session& session, FrontEnd& frontEnd, FileQuestion question) {
    const std::string folder = session.settings.GetSetting(kSection, kFolder, "");
    if (!folder.empty())
        question.suggested = (std::filesystem::path(folder) / question.suggested).string();
    const std::string path = frontEnd.askFile(question);
    if (!path.empty())
        session.settings.SaveSetting(kSection, kFolder,
                                     std::filesystem::absolute(path).parent_path().string());
    return path;
}

SheetColumn sheetColumn(const GridColumn& column) {
    return {column.type == CellType::Number ? SheetColumn::Number
            : column.type == CellType::Date ? SheetColumn::Date
                                            : SheetColumn::Text,
            column.decimals};
}

void ShowExportProgress(Progress& progress, size_t done, size_t all) {
    progress.status(
        "Generating Excel Report " +
        formatNumber(100.0 * static_cast<double>(done) / static_cast<double>(all), "0.00") +
        "% completed.");
    progress.step(done, all);
}

}  // namespace

bool ExportGridToExcel(Session& session, FrontEnd& frontEnd, const Grid& grid,
                       const std::string& title, Progress& progress, size_t rowsToSkip,
                       bool showHeader) {
    SheetTable table;
    table.name = title;
    const std::vector<size_t>& columns = grid.sight.columns();
    for (const size_t c : columns) {
        if (showHeader) table.header.push_back(grid.column(c).caption);
        table.columns.push_back(sheetColumn(grid.column(c)));
    }
    table.frozenColumns = grid.sight.frozen();
    for (const LegendEntry& entry : grid.legend)
        table.legend.push_back({paperColor(entry.color).value_or(kWhite), entry.caption});
    for (const size_t r : grid.sight.rows()) {
        if (r < rowsToSkip) continue;
        std::vector<std::string> cells;
        for (const size_t c : columns) {
            const SheetLook look{paperColor(grid.backColor(r, c)),
                                 paperColor(grid.foreColor(r, c))};
            if (look != SheetLook{}) table.looks[{table.rows.size(), cells.size()}] = look;
            cells.push_back(printedText(grid, r, c));
        }
        table.rows.push_back(std::move(cells));
        if (table.rows.size() % 200 == 0) {
            ShowExportProgress(progress, table.rows.size(), grid.rowCount());
            if (progress.cancelled()) return false;
        }
    }
    if (table.rows.empty()) {
        frontEnd.information("No record found for Excel export.");
        return false;
    }
    table.headings = {FnVarGetValue(session, "SELECT CMPNAME FROM MAS_COMPANY").toText(),
                      FnVarGetValue(session, "SELECT ADDRESS FROM MAS_COMPANY").toText(), title};
    clsGenCmn& texts = session.gGenCmn;
    const std::string path = askFile(session, frontEnd,
                                     {.title = title,
                                      .suggested = texts.FnStrClearAllNonFileChar(title) + ".xlsx",
                                      .save = true});
    if (path.empty()) return false;
    try {
        writeSheet(path, table);
    } catch (const std::exception& e) {
        clsEXLFunc(frontEnd).ExlFnIntErrorHandler(1004, e.what());
        return false;
    }
    ShowExportProgress(progress, 1, 1);
    frontEnd.openFile(path);
    return true;
}

std::string AskImportFile(Session& session, FrontEnd& frontEnd, const std::string& title) {
    return askFile(session, frontEnd, {.title = title});
}

}  // namespace owb
