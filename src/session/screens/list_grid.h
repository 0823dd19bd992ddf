// A list of a screen: a grid whose right-click menu exports it, and whose date cells open the
// calendar.
#pragma once

#include "screen/grid.h"

namespace owb {

class SessionScreen;

class ListGrid : public Grid {
  public:
    ListGrid(SessionScreen& screen, std::string name, std::string caption = "",
             std::vector<GridColumn> columns = {});

  private:
    MenuItem mnuExport_;  // "mnuExport", "Export To Excel"
};

}  // namespace owb
