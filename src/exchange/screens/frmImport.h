// What an import will do, row by row, before anything is written: each row of the sheet with its
// outcome, refused ones with their reason. The user imports the good rows or leaves.
#pragma once

#include <string>
#include <vector>

#include "screen/grid.h"
#include "screen/screen.h"

namespace owb {

class frmImport final : public Screen {
  public:
    struct Row {
        size_t line = 0;  // in the sheet, from 1
        std::vector<std::string> cells;
        std::string outcome;  // "Add", "Change", or why it is refused
        bool refused = false;
    };
    frmImport(FrontEnd& frontEnd, const std::string& title, std::vector<std::string> captions,
              std::vector<Row> rows);

    // Shows it; whether the user wants the good rows.
    bool Ask();

    Grid fpgImport{*this, "fpgImport"};
    Label lblCount{*this, "lblCount"};
    Command cmdImport{*this, "cmdImport", "&Import"};
    Command cmdClose{*this, "cmdClose", "Cl&ose"};

    void cmdImport_Click();

  private:
    Layout layout() override;

    bool wanted_ = false;
};

}  // namespace owb
