// The sheet of keys that F1 opens, made from what the screen and its controls say of themselves.
#pragma once

#include "screen/grid.h"
#include "screen/screen.h"

namespace owb {

class KeySheet final : public Screen {
  public:
    KeySheet(FrontEnd& frontEnd, const std::string& of, const std::vector<KeyHelp>& keys);

    Grid fpgKeys{*this, "fpgKeys"};
    CloseCommand cmdClose{*this};

  private:
    Layout layout() override;
};

}  // namespace owb
