#include "session/screens/list_grid.h"

#include "session/screens/SessionScreen.h"
#include "session/screens/frmOwbCalender.h"
#include "session/screens/sheets.h"

namespace owb {

ListGrid::ListGrid(SessionScreen& screen, std::string name, std::string caption,
                   std::vector<GridColumn> columns)
    : Grid(screen, std::move(name), std::move(columns)),
      mnuExport_(screen, *this, "mnuExport", "Export To Excel") {
    this->caption = std::move(caption);
    mnuExport_.onClick = [this, &screen] { ExportGrid(screen, *this); };
    onPickCell = [this, &screen](size_t row, size_t c) {
        frmOwbCalender picker(screen.session(), screen.frontEnd());
        picker.SetTarget(cell(row, c), [this, row, c](const std::string& date) {
            if (std::string reason; !edit(row, c, date, reason)) say(reason, true);
        });
        picker.showModal();
    };
}

}  // namespace owb
