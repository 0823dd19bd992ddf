#include "exchange/screens/frmImport.h"

#include <algorithm>

namespace owb {

namespace {

constexpr Color kRefused = 0xC0C0FF;

}  // namespace

frmImport::frmImport(FrontEnd& frontEnd, const std::string& title,
                     std::vector<std::string> captions, std::vector<Row> rows)
    : Screen(frontEnd, "frmImport", title) {
    std::vector<GridColumn> columns{{.caption = "Row", .width = 6, .align = Align::Right}};
    for (std::string& caption : captions)
        columns.push_back({.caption = std::move(caption), .width = 20});
    columns.push_back({.caption = "Import", .width = 40});
    const size_t last = columns.size() - 1;
    fpgImport.setColumns(std::move(columns));
    size_t refused = 0;
    for (Row& row : rows) {
        std::vector<std::string> cells = std::move(row.cells);
        cells.resize(last - 1);
        cells.insert(cells.begin(), std::to_string(row.line));
        cells.push_back(row.outcome);
        const size_t at = fpgImport.addRow(std::move(cells));
        if (!row.refused) continue;
        ++refused;
        fpgImport.setBackColor(at, last, kRefused);
    }
    const size_t good = rows.size() - refused;
    lblCount.caption = std::to_string(good) + " to import, " + std::to_string(refused) + " refused";
    cmdImport.enabled = good > 0;
    cmdImport.onClick = [this] { cmdImport_Click(); };
    cmdClose.onClick = [this] { close(); };
}

Layout frmImport::layout() {
    return column(
        {item(fpgImport, 1), row({item(lblCount), space(), item(cmdImport), item(cmdClose)})});
}

bool frmImport::Ask() {
    showModal();
    return wanted_;
}

void frmImport::cmdImport_Click() {
    wanted_ = true;
    close();
}

}  // namespace owb
