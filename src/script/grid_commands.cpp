#include "script/grid_commands.h"

#include "base/utf8.h"
#include "screen/grid.h"
#include "screen/grid_menu.h"
#include "screen/screen.h"
#include "script/script_words.h"

namespace owb {

namespace {

void refuseIf(bool refused, const Grid& grid, const std::string& what) {
    if (!refused) return;
    throw ScriptError{grid.said().refusal ? grid.said().text
                                          : grid.name() + " takes no " + what + " now"};
}

Grid& gridOf(Screen& screen, std::string& words) {
    return gridNamed(screen, takeWord(words));
}

// "ROW COL" at the beginning, as places in sight.
std::pair<size_t, size_t> takePlace(const Grid& grid, std::string& words) {
    const std::string row = takeWord(words);
    const CellPlace at = placeAt(grid, row + " " + takeWord(words));
    return {*grid.sight.placeOfRow(at.row), *grid.sight.placeOfColumn(at.column)};
}

std::string behindEquals(std::string& words) {
    const size_t equals = words.find('=');
    if (equals == std::string::npos) return "";
    const std::string behind = trim(std::string_view(words).substr(equals + 1));
    words = trim(std::string_view(words).substr(0, equals));
    return behind;
}

}  // namespace

void typeInto(Screen& screen, const std::string& words) {
    std::string rest = words;
    Grid& grid = gridOf(screen, rest);
    refuseIf(!grid.entry.type(rest), grid, "typing");
}

void chooseCells(Screen& screen, const std::string& words) {
    std::string rest = words;
    Grid& grid = gridOf(screen, rest);
    const auto [row, column] = takePlace(grid, rest);
    refuseIf(!grid.goTo(grid.sight.rows()[row], grid.sight.columns()[column]), grid, "choice");
    const auto [toRow, toColumn] = takePlace(grid, rest);
    grid.cursor.extendTo(toRow, toColumn);
}

void fillCells(Screen& screen, const std::string& words) {
    std::string rest = words;
    Grid& grid = gridOf(screen, rest);
    const auto [row, column] = takePlace(grid, rest);
    refuseIf(!grid.blocks.fillTo(row, column), grid, "filling");
}

void pasteCells(Screen& screen, const std::string& words) {
    std::string rest = words;
    Grid& grid = gridOf(screen, rest);
    std::string block;
    for (size_t at = 0; at < rest.size(); ++at) {
        const bool escaped = rest[at] == '\\' && at + 1 < rest.size();
        if (escaped) ++at;
        block += !escaped ? rest[at] : rest[at] == 't' ? '\t' : rest[at] == 'n' ? '\n' : rest[at];
    }
    refuseIf(!grid.blocks.paste(block), grid, "paste");
}

void findText(Screen& screen, const std::string& words) {
    std::string rest = words;
    Grid& grid = gridOf(screen, rest);
    grid.find.open();
    grid.find.setText(rest);
    grid.say(std::to_string(grid.find.count()) + " found");
}

void filterRows(Screen& screen, const std::string& words) {
    std::string rest = words;
    Grid& grid = gridOf(screen, rest);
    if (rest.empty()) return grid.sight.clearFilters();
    const bool sets = rest.find('=') != std::string::npos;
    const std::string texts = behindEquals(rest);
    const size_t column = columnAt(grid, rest);
    if (!sets) return grid.sight.clearFilter(column);
    std::set<std::string> wanted;
    if (texts.empty()) wanted.insert("");  // cells without a text
    for (const std::string& text : split(texts, ';')) wanted.insert(trim(text));
    grid.sight.filter(column, std::move(wanted));
}

void clickHeader(Screen& screen, const std::string& words) {
    std::string rest = words;
    Grid& grid = gridOf(screen, rest);
    grid.sight.sortNext(columnAt(grid, rest));
}

void clickLegend(Screen& screen, const std::string& words) {
    std::string rest = words;
    Grid& grid = gridOf(screen, rest);
    std::vector<std::string> names;
    for (const LegendEntry& entry : grid.legend) {
        names.push_back(entry.caption);
        if (equalsIgnoreCaseAscii(entry.caption, rest))
            return refuseIf(!grid.cursor.nextOfColor(entry.color), grid, "such cell");
    }
    throw ScriptError{grid.name() + " has no colour " + rest + ": there are " + listed(names)};
}

void chooseItem(Screen& screen, const std::string& words) {
    std::string rest = words;
    Grid& grid = gridOf(screen, rest);
    const int current = grid.currentColumn();
    std::vector<GridMenuItem> items =
        gridMenu(grid, current < 0 ? std::nullopt : std::optional(static_cast<size_t>(current)));
    for (const std::string& caption : split(rest, '/')) {
        std::vector<std::string> names;
        const GridMenuItem* found = nullptr;
        for (const GridMenuItem& item : items) {
            if (equalsIgnoreCaseAscii(plainCaption(item.caption), trim(caption))) found = &item;
            if (item.caption != "-") names.push_back(plainCaption(item.caption));
        }
        if (found == nullptr)
            throw ScriptError{grid.name() + " has no item " + caption + ": there are " +
                              listed(names)};
        refuseIf(!found->enabled, grid, "choice of " + caption);
        if (found->act) return found->act();
        items = std::vector<GridMenuItem>(found->below);
    }
}

void hideColumn(Screen& screen, const std::string& words) {
    std::string rest = words;
    Grid& grid = gridOf(screen, rest);
    const bool hidden = yesOrNo(takeLastWord(rest));
    grid.sight.hideColumn(columnAt(grid, rest, Among::All), hidden);
}

void moveColumn(Screen& screen, const std::string& words) {
    std::string rest = words;
    Grid& grid = gridOf(screen, rest);
    const size_t before = *grid.sight.placeOfColumn(columnAt(grid, takeLastWord(rest)));
    grid.sight.moveColumn(columnAt(grid, rest), before);
}

void freezeColumns(Screen& screen, const std::string& words) {
    std::string rest = words;
    Grid& grid = gridOf(screen, rest);
    grid.sight.freeze(rest == "0" ? 0 : *grid.sight.placeOfColumn(columnAt(grid, rest)) + 1);
}

}  // namespace owb
