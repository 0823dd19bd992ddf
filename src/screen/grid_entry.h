// What the user types into the cells of a grid, as in a spreadsheet. The cell is in one of three
// states: ready; enter, which typing begins (it replaces what stood there, and the arrows go on);
// edit, which F2 begins (the arrows move the caret). The text lives here, the front end shows it
// and tells every change. A text that does not fit stays, with the reason, until it is mended or
// given up.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace owb {

class Grid;

class GridEntry {
  public:
    explicit GridEntry(Grid& grid) : grid_(grid) {}

    enum class State { Ready, Enter, Edit };
    State state() const { return state_; }
    bool busy() const { return state_ != State::Ready; }
    // The cell that is typed into, while busy.
    size_t row() const { return row_; }
    size_t column() const { return column_; }
    const std::string& text() const { return text_; }
    // Why the text cannot be entered; empty while nothing speaks against it.
    const std::string& refusal() const { return refusal_; }

    // A key that is no text; false when it is left to the editor (the caret) or to whoever is above
    // (Tab and Ctrl+Tab leave the grid).
    bool press(const std::string& key);
    // Characters that are typed: they begin an entry, or go on with it at its end.
    bool type(const std::string& text);
    // What the editor holds after the caret was at work; refused characters are left out.
    void setText(const std::string& text);
    // Begins with what stands in the current cell, the caret at the end.
    bool edit();
    // Enters the text; false while it does not fit, and the entry goes on.
    bool commit();
    // Leaves the cell as it was.
    void cancel();

    // --- the list of a code cell ---
    bool listOpen() const { return listOpen_; }
    // Codes that begin with what is typed; all of them in a list that was opened by key.
    std::vector<std::string> candidates() const;
    int chosen() const { return chosen_; }  // among them; -1: none
    void openList();
    // Enters the code and stays in the cell.
    bool choose(size_t candidate);

  private:
    bool begin(State state, const std::string& text);
    bool pressReady(const std::string& key);
    bool pressBusy(const std::string& key);
    bool pressInList(const std::string& key);
    bool pressBlock(const std::string& key);
    bool pressOther(const std::string& key);
    bool finish(const std::string& key);
    bool onEnter(bool forward);
    bool toggle();
    bool refuse(const std::string& reason);
    bool codes() const;
    std::string accepted(const std::string& text) const;
    std::vector<std::string> startingWith(const std::string& text) const;

    Grid& grid_;
    State state_ = State::Ready;
    size_t row_ = 0, column_ = 0;
    uint64_t shape_ = 0;  // of the grid when the entry began
    std::string text_, refusal_;
    bool listOpen_ = false, listAll_ = false;
    int chosen_ = -1;
};

}  // namespace owb
