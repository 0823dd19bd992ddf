// What was entered into a grid, so that it can be taken back and entered again. Both are edits as
// the user's own: the screen's handlers, marks and audit run. A step (an edit, or a block) is taken
// back whole or not at all: where a cell is locked by now, it stays and the reason is told.
#pragma once

#include <cstddef>
#include <deque>
#include <optional>
#include <string>
#include <vector>

#include "screen/grid_cursor.h"

namespace owb {

class Grid;
struct CellText;

class GridHistory {
  public:
    explicit GridHistory(Grid& grid) : grid_(grid) {}

    // Takes the last step back, or enters it again; Grid::said() tells what was done. False when
    // there is none, or it was refused.
    bool undo();
    bool redo();
    bool canUndo() const { return !done_.empty(); }
    bool canRedo() const { return !undone_.empty(); }
    // The rows or columns are others now.
    void clear();
    // The rows are read again: steps stand where the grid can tell its rows apart.
    void rowsGone();

    // A cell has got what it holds now by the user; `before` stood there. Nothing when it is the
    // same.
    void record(size_t row, size_t column, const std::string& before);
    // While one lives, what is recorded is one step.
    class Step {
      public:
        explicit Step(GridHistory& history) : history_(history) { ++history_.open_; }
        // `area` is what is chosen again when the step is taken back.
        Step(GridHistory& history, const GridCursor::Block& area) : Step(history) {
            history.now_.area = area;
        }
        ~Step() { history_.closed(); }
        Step(const Step&) = delete;
        Step& operator=(const Step&) = delete;

      private:
        GridHistory& history_;
    };

    static constexpr size_t kSteps = 100;

  private:
    struct Change {
        std::string rowKey;  // where the grid has keys of its rows
        size_t row, column;
        std::string before, after;
    };
    struct Changes {
        std::vector<Change> cells;
        std::optional<GridCursor::Block> area;  // places in sight at that time
        uint64_t sight = 0;                     // its version then
    };
    bool replay(std::deque<Changes>& from, std::deque<Changes>& to, bool back);
    void show(const Changes& step, const std::vector<CellText>& entries);
    void closed();

    Grid& grid_;
    std::deque<Changes> done_, undone_;
    Changes now_;
    int open_ = 0;
    bool replaying_ = false;
};

}  // namespace owb
