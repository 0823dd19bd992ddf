#include "screen/key_sheet.h"

namespace owb {

KeySheet::KeySheet(FrontEnd& frontEnd, const std::string& of, const std::vector<KeyHelp>& keys)
    : Screen(frontEnd, "KeySheet", "Keys: " + of) {
    fpgKeys.caption = "Keys";
    fpgKeys.singleRows = true;
    fpgKeys.setColumns({{.caption = "Key", .width = 22}, {.caption = "Does", .width = 60}});
    for (const KeyHelp& line : keys) fpgKeys.addRow({line.keys, line.what});
}

Layout KeySheet::layout() {
    return column({item(fpgKeys, 1), row({space(), item(cmdClose)})});
}

}  // namespace owb
