// Types like a person, with pauses, into a grid in its window, and compares with what a spreadsheet
// does for the same keys (calc_keys.tsv). Where the program means to differ, the case is listed
// here with the reason and with what it does.
#include <gtest/gtest.h>

#include <QKeySequence>
#include <QLineEdit>
#include <QTableView>
#include <fstream>
#include <map>

#include "base/utf8.h"
#include "qt/desk.h"
#include "qt/qt_text.h"
#include "screen/grid.h"

namespace owb::test {
namespace {

constexpr size_t kSide = 6;
constexpr int kPause = 60;  // milliseconds of a "pause", a slow typist's

using Sheet = std::vector<std::vector<std::string>>;

struct Place {
    size_t row, column;
};

Place placeOf(const std::string& name) {
    return {static_cast<size_t>(std::stoi(name.substr(1)) - 1), static_cast<size_t>(name[0] - 'A')};
}
std::string nameOf(size_t row, size_t column) {
    return std::string(1, static_cast<char>('A' + column)) + std::to_string(row + 1);
}

struct Case {
    std::string name, sheet, start, keys, changed, cursor, selection, note;
};

struct Table {
    Table() {
        std::ifstream in(OWB_SOURCE_DIR "/tests/qt/calc_keys.tsv");
        for (std::string line; std::getline(in, line);) {
            if (line.empty() || line[0] == '#') continue;
            std::vector<std::string> f = split(line, '\t');
            if (f[0] == "sheet") {
                for (const std::string& row : split(f[2], '/'))
                    sheets[f[1]].push_back(split(row, ','));
            } else {
                f.resize(9);
                cases.push_back({f[1], f[2], f[3], f[4], f[5], f[6], f[7], f[8]});
            }
        }
    }
    std::map<std::string, Sheet> sheets;
    std::vector<Case> cases;
};

class SheetScreen final : public Screen {
  public:
    SheetScreen(FrontEnd& frontEnd, const Sheet& cells) : Screen(frontEnd, "Sheet", "Sheet") {
        grid.setColumns(std::vector<GridColumn>(kSide, {.locked = false}));
        for (const std::vector<std::string>& row : cells) grid.addRow(row);
        grid.enterGoes = Grid::EnterGoes::Down;
    }
    Grid grid{*this, "fpgSheet"};
};

// One case under the hands of a typist.
class Typist {
  public:
    Typist(Desk& desk, Grid& grid)
        : desk_(desk), grid_(grid), table_(*desk.widget<QTableView>("fpgSheet")) {
        table_.setFocus();
    }

    void start(const std::string& where) {
        const std::vector<std::string> corners = split(where, ':');
        const Place at = placeOf(corners.front()), to = placeOf(corners.back());
        QTest::mouseClick(table_.viewport(), Qt::LeftButton, Qt::NoModifier, center(at));
        const auto extend = [&](int times, Qt::Key key) {
            for (int i = 0; i < times; ++i) QTest::keyClick(&table_, key, Qt::ShiftModifier);
        };
        extend(static_cast<int>(to.row) - static_cast<int>(at.row), Qt::Key_Down);
        extend(static_cast<int>(at.row) - static_cast<int>(to.row), Qt::Key_Up);
        extend(static_cast<int>(to.column) - static_cast<int>(at.column), Qt::Key_Right);
        extend(static_cast<int>(at.column) - static_cast<int>(to.column), Qt::Key_Left);
    }

    void press(const std::string& word) {
        const size_t colon = word.find(':');
        const std::string verb = word.substr(0, colon);
        const std::string rest = colon == std::string::npos ? "" : word.substr(colon + 1);
        const std::vector<std::string> corners = split(rest, ':');
        if (verb == "type") return type(rest);
        if (verb == "pause") return desk_.rest(kPause);
        if (verb == "goto") return start(rest);
        if (verb == "click" || verb == "shiftclick")
            return QTest::mouseClick(table_.viewport(), Qt::LeftButton,
                                     verb == "click" ? Qt::NoModifier : Qt::ShiftModifier,
                                     center(placeOf(rest)));
        if (verb == "doubleclick")
            return QTest::mouseDClick(table_.viewport(), Qt::LeftButton, Qt::NoModifier,
                                      center(placeOf(rest)));
        if (verb == "drag") return drag(center(placeOf(corners[0])), center(placeOf(corners[1])));
        if (verb == "fill" || verb == "ctrlfill")
            return drag(rect(placeOf(corners[0])).bottomRight() - QPoint(2, 2),
                        center(placeOf(corners[1])));
        key(word);
    }

    std::string changed(const Sheet& before) const {
        std::string all;
        for (size_t r = 0; r < kSide; ++r)
            for (size_t c = 0; c < kSide; ++c) {
                std::string text = grid_.cell(r, c);
                if (text == before[r][c]) continue;
                std::replace(text.begin(), text.end(), ' ', '_');
                all += (all.empty() ? "" : " ") + nameOf(r, c) + "=" + text;
            }
        return all.empty() ? "-" : all;
    }
    std::string cursor() const {
        return nameOf(static_cast<size_t>(grid_.currentRow()),
                      static_cast<size_t>(grid_.currentColumn()));
    }
    std::string selection() const {
        const auto block = grid_.cursor.block();
        const std::string first = nameOf(block->top, block->left);
        return block->several() ? first + ":" + nameOf(block->bottom, block->right) : first;
    }

  private:
    QWidget* focus() const {
        QWidget* widget = QApplication::focusWidget();
        return widget != nullptr ? widget : &table_;
    }
    QRect rect(Place at) const {
        return table_.visualRect(
            table_.model()->index(static_cast<int>(at.row), static_cast<int>(at.column)));
    }
    QPoint center(Place at) const { return rect(at).center(); }
    void type(const std::string& text) {
        for (const char c : text) QTest::keyClick(focus(), c == '_' ? ' ' : c);
    }
    void drag(const QPoint& from, const QPoint& to) {
        QWidget* cells = table_.viewport();
        QTest::mousePress(cells, Qt::LeftButton, Qt::NoModifier, from);
        QMouseEvent over(QEvent::MouseMove, to, cells->mapToGlobal(to), Qt::LeftButton,
                         Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(cells, &over);
        QTest::mouseRelease(cells, Qt::LeftButton, Qt::NoModifier, to);
    }
    void key(const std::string& name) {
        QString known = toQt(name);
        known.replace("Enter", "Return").replace("Delete", "Del").replace("PgDn", "PgDown");
        const QKeyCombination combination = QKeySequence(known)[0];
        ASSERT_NE(combination.key(), Qt::Key_unknown) << name;
        QTest::keyClick(focus(), combination.key(), combination.keyboardModifiers());
    }

    Desk& desk_;
    Grid& grid_;
    QTableView& table_;
};

// What the program does otherwise, and why.
struct Otherwise {
    const char *name, *changed, *cursor, *selection;
};
constexpr Otherwise kOtherwise[] = {
    // Up and Down enter what is edited, too: digits of two rows never run together.
    {"F2 Up", "B2=8 B3=327", "B3", "B3"},
    {"F2 Down", "B3=327 B4=8", "B5", "B5"},
    {"F2 Home Down", "B4=8", "B5", "B5"},
    {"F2 PgDn", "B3=327", "B6", "B6"},
    // Tab goes on in the next row, as it does where cells are locked.
    {"Tab at the last column", "-", "A3", "A3"},
    {"Shift+Tab at the first column", "-", "F1", "F1"},
    // From where the user is, whatever is chosen.
    {"Ctrl+Right in a selection", "-", "F2", "F2"},
    {"type then Shift+Left", "B2=75", "B3", "B3"},
    {"double click, Down", "C3=373 C4=8", "C5", "C5"},
    // Enter goes on, whatever was copied.
    {"copy one cell, Enter pastes", "-", "D3", "D3"},
    // Nothing is written beyond several chosen cells.
    {"copy 2x2, paste into 1x2", "-", "D3", "D3:E3"},
    {"copy 2x2, paste into 2x1", "-", "D3", "D3:D4"},
    {"copy a row of three, paste into a column of three", "-", "D4", "D4:D6"},
    {"copy a column of three, paste into three columns", "-", "D4", "D4:F4"},
    // Ctrl+R fills to the right, as Ctrl+D fills down.
    {"Ctrl+R on a selection", "C2=22 D2=22 E2=22", "B2", "B2:E2"},
    {"Ctrl+R on a selection, redone", "C2=22 D2=22 E2=22", "B2", "B2:E2"},
    {"Ctrl+R on two rows", "C2=22 D2=22 C3=32 D3=32", "B2", "B2:D3"},
    {"Ctrl+R on two rows, redone", "C2=22 D2=22 C3=32 D3=32", "B2", "B2:D3"},
    {"Ctrl+R on one cell", "C2=22", "C2", "C2"},
    // Ctrl+Enter types into all that is chosen, as Alt+Enter does; cells have one line, no
    // formulas.
    {"type, Ctrl+Enter: a line break", "B2=8 C2=7 B3=7 C3=7 B4=7 C4=7", "B3", "B2:C4"},
    {"F2, Alt+Enter into a selection", "B2=227 C2=227 B3=227 C3=227 B4=227 C4=227", "B2", "B2:C4"},
    {"type, Shift+Ctrl+Enter into a selection", "-", "B2", "B2:C4"},
    // Undo goes to what it has changed, and takes back whole entries.
    {"edit to nothing, undo", "-", "B2", "B2"},
    {"type then Ctrl+Z takes back letters", "B2=7", "B3", "B3"},
    // The handle repeats codes and figures, it counts none on; dragged back it does nothing.
    {"fill handle, one text up", "C1=CL C2=CL C3=CL", "C3", "C1:C3"},
    {"fill handle, one number down", "B4=5 B5=5 B6=5", "B3", "B3:B6"},
    {"fill handle, one number down, redone", "B4=5 B5=5 B6=5", "B3", "B3:B6"},
    {"fill handle, two numbers down", "A5=1 A6=2", "A3", "A3:A6"},
    {"fill handle, two numbers down, redone", "A5=1 A6=2", "A3", "A3:A6"},
    {"fill handle, two numbers falling down", "B5=5 B6=3", "B3", "B3:B6"},
    {"fill handle, text with a number down", "B3=W7 B4=W7", "B2", "B2:B4"},
    {"fill handle, two texts down", "A3=CL A4=W1 A5=CL A6=W1", "A1", "A1:A6"},
};

TEST(Qt, KeysDoInAGridWhatTheyDoInASpreadsheet) {
    const Table table;
    ASSERT_GT(table.cases.size(), 60U);
    size_t met = 0;
    for (const Case& c : table.cases) {
        Desk desk;
        SheetScreen screen(desk.frontEnd, table.sheets.at(c.sheet));
        desk.then([&] {
            desk.frontEnd.top()->resize(900, 400);
            Typist typist(desk, screen.grid);
            typist.start(c.start);
            for (const std::string& word : split(c.keys, ' ')) typist.press(word);
            Otherwise wanted{c.name.c_str(), c.changed.c_str(), c.cursor.c_str(),
                             c.selection.c_str()};
            for (const Otherwise& other : kOtherwise)
                if (c.name == other.name) {
                    wanted = other;
                    ++met;
                }
            EXPECT_EQ(
                typist.changed(table.sheets.at(c.sheet)) + " | " + typist.cursor() + " | " +
                    typist.selection(),
                std::string(wanted.changed) + " | " + wanted.cursor + " | " + wanted.selection)
                << c.name << ": " << c.sheet << " " << c.start << " " << c.keys;
            screen.grid.entry.cancel();
        });
        screen.showModal();
    }
    EXPECT_EQ(met, std::size(kOtherwise)) << "a case that is told otherwise is not in the table";
}

}  // namespace
}  // namespace owb::test
