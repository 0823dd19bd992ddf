// Which view a kind of control gets.
#include "qt/board_view.h"
#include "qt/button_views.h"
#include "qt/entry_views.h"
#include "qt/grid_view.h"
#include "screen/cell_board.h"
#include "screen/grid.h"
#include "screen/lists.h"
#include "screen/text_box.h"

namespace owb {

std::unique_ptr<ControlView> makeView(ScreenWindow& window, Control& control) {
    if (auto* box = dynamic_cast<TextBox*>(&control)) return makeTextView(window, *box);
    if (auto* combo = dynamic_cast<Combo*>(&control)) return makeComboView(window, *combo);
    if (auto* list = dynamic_cast<ListBox*>(&control)) return makeListView(window, *list);
    if (auto* grid = dynamic_cast<Grid*>(&control)) return makeGridView(window, *grid);
    if (auto* board = dynamic_cast<CellBoard*>(&control)) return makeBoardView(window, *board);
    if (auto* check = dynamic_cast<CheckBox*>(&control)) return makeCheckView(window, *check);
    if (auto* option = dynamic_cast<OptionButton*>(&control))
        return makeOptionView(window, *option);
    if (auto* bar = dynamic_cast<ProgressBar*>(&control)) return makeProgressView(window, *bar);
    if (auto* command = dynamic_cast<Command*>(&control)) return makeCommandView(window, *command);
    return makeLabelView(window, dynamic_cast<Label&>(control));
}

}  // namespace owb
