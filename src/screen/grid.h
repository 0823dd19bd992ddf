// A table of texts: what the registers and lists of the screens are shown in.
//
// Rows and columns count from 0, hidden ones included. Styles are few and cells many, so a cell
// holds the number of its style; tags and lists of single cells are rare and stand apart. The
// counters tell a front end what to draw anew: `shape` grows when rows, columns or their hiding
// change, `content` when anything in a cell does. What the user makes of the grid stands in parts
// of its own: which rows and columns he sees (sight), where he is and what he has chosen (cursor),
// what he types (entry), blocks, undo (history), find.
#pragma once

#include <cstdint>
#include <optional>
#include <unordered_map>

#include "screen/color.h"
#include "screen/control.h"
#include "screen/grid_blocks.h"
#include "screen/grid_cursor.h"
#include "screen/grid_entry.h"
#include "screen/grid_find.h"
#include "screen/grid_history.h"
#include "screen/grid_sight.h"

namespace owb {

// A cell of type Combo takes a code of its list, or any text where the column is `editable`.
enum class CellType : uint8_t { Text, Number, Date, Check, Combo };
enum class Align : uint8_t { Left, Center, Right };

struct GridColumn {
    std::string caption;  // by which scripts and exports know it
    int width = 10;       // in digits
    CellType type = CellType::Text;
    int decimals = 2;  // of Number
    Align align = Align::Left;
    bool hidden = false;
    bool locked = true;
    bool editable = false;             // Combo: free text beside the choices
    std::vector<std::string> choices;  // Combo
    std::string toolTip;
    std::string heading;  // what stands in the header, "05\nThu"; "": the caption
    Color headingColor = kDefaultColor;
    bool amount = false;  // Number: shown with the Indian grouping of digits
    bool total = false;   // Number: its sum stands below the grid
};

class Grid : public Control {
  public:
    Grid(Screen& screen, std::string name, std::vector<GridColumn> columns = {});
    std::string text() const override;  // of the current cell

    // --- shape ---
    void setColumns(std::vector<GridColumn> columns);  // the rows go
    size_t columnCount() const { return columns_.size(); }
    const GridColumn& column(size_t c) const { return columns_[c]; }
    GridColumn& changeColumn(size_t c);
    // By caption, in any letter case.
    std::optional<size_t> findColumn(std::string_view caption) const;
    void setRowCount(size_t rows);  // new rows are empty
    size_t rowCount() const { return rows_; }
    size_t addRow(std::vector<std::string> cells);
    void removeRow(size_t row);
    void setRowHidden(size_t row, bool hidden);
    // By the screen, or by a filter of the user's: what works on all rows passes it over.
    bool rowHidden(size_t row) const { return hiddenRows_[row] || sight.filteredOut(row); }
    bool hiddenByScreen(size_t row) const { return hiddenRows_[row]; }
    size_t visibleRowCount() const;

    // --- cells ---
    const std::string& cell(size_t row, size_t c) const {
        return cells_[row * columns_.size() + c];
    }
    double number(size_t row, size_t c) const;  // leading number; 0 of an empty cell
    // Of the rows in sight, as the column's numbers read.
    std::string totalText(size_t c) const;
    bool checked(size_t row, size_t c) const { return cell(row, c) == "1"; }
    void setCell(size_t row, size_t c, std::string text);
    Color backColor(size_t row, size_t c) const { return style(row, c).back; }
    Color foreColor(size_t row, size_t c) const { return style(row, c).fore; }
    void setBackColor(size_t row, size_t c, Color color);
    void setForeColor(size_t row, size_t c, Color color);
    bool locked(size_t row, size_t c) const;
    void setLocked(size_t row, size_t c, bool locked);  // against the column's own
    void setCellType(size_t row, size_t c, CellType type);
    CellType cellType(size_t row, size_t c) const;
    const std::string& cellTag(size_t row, size_t c) const;
    void setCellTag(size_t row, size_t c, std::string tag);
    const std::vector<std::string>& choices(size_t row, size_t c) const;
    void setChoices(size_t row, size_t c, std::vector<std::string> choices);

    // The current cell; -1 while there is none. Moving it here runs no handler.
    int currentRow() const { return currentRow_; }
    int currentColumn() const { return currentColumn_; }
    void setCurrent(int row, int c);

    // --- what a user does; a handler runs under the screen's guard ---
    bool goTo(size_t row, size_t c);
    bool clickCell(size_t row, size_t c);
    bool doubleClickCell(size_t row, size_t c);
    bool rightClickCell(size_t row, size_t c);
    // A key that is no text: the screen's handler, then what a grid does with it.
    bool key(const std::string& key) override;
    // What is typed is entered first; while it does not fit, the focus stays here.
    void leave() override;
    std::vector<KeyHelp> keyHelp() const override;
    // Begins an edit: what stands in the cell may change by it. False, with the reason, when the
    // cell takes none.
    bool beginEdit(size_t row, size_t c, std::string& reason);
    // Ends one that has begun. False, with the reason, when the text does not fit.
    bool endEdit(size_t row, size_t c, const std::string& text, std::string& reason);
    // A whole edit, from beginning to end. False, with the reason, when nothing changed.
    bool edit(size_t row, size_t c, const std::string& text, std::string& reason);
    bool check(size_t row, size_t c, bool on, std::string& reason);
    // Whether any cell takes entries.
    bool takesEntries() const;
    bool takesEdit(size_t row, size_t c, std::string& reason) const;
    // The text as the cell would hold it; nothing, with the reason, when it does not fit.
    std::optional<std::string> fitted(size_t row, size_t c, const std::string& text,
                                      std::string& reason) const;
    // Shows what is in sight as it will stand on paper.
    void print();
    // The picker of a date cell; false where there is none.
    bool pick(size_t row, size_t c);

    size_t frozenColumns = 0;  // stay in sight at the left
    bool singleRows = false;   // a list: one whole row is the current one
    // Which way Enter goes from a cell; by its column: down in numbers, else to the right.
    enum class EnterGoes { ByColumn, Down, Right };
    EnterGoes enterGoes = EnterGoes::ByColumn;
    int zoom = 100;  // per cent, by the user
    static constexpr int kLeastZoom = 50, kMostZoom = 300;
    std::vector<LegendEntry> legend;

    std::function<void(size_t row, size_t c)> onCurrentChange;
    std::function<void(size_t row, size_t c)> onCellClick;
    std::function<void(size_t row, size_t c)> onCellDoubleClick;
    std::function<void(size_t row, size_t c)> onRightClick;
    std::function<void(size_t row, size_t c)> onEditBegin;
    // After the edit; the cell holds the new text, `before` is what stood there.
    std::function<void(size_t row, size_t c, const std::string& before)> onEditEnd;
    // A screen that can take a block of entries at once (set by set instead of cell by cell) does
    // so here and puts what the cells then hold. Without it each cell is edited by itself.
    std::function<void(const std::vector<CellText>& entries)> onBlock;
    std::function<void(size_t row, size_t c)> onPickCell;  // F4 on a date cell
    std::function<std::string(size_t row, size_t c)> cellToolTip;
    // What stands behind a choice in the dropped list: "Casual Leave  4.5".
    std::function<std::string(size_t row, size_t c, const std::string& choice)> choiceNote;
    // The character that stands in a cell when `typed` is pressed with `before` in it; 0: refused.
    std::function<char32_t(size_t row, size_t c, char32_t typed, const std::string& before)>
        cellFilter;
    // What tells a row from others after the rows have been read again; without it undo ends there.
    std::function<std::string(size_t row)> rowKey;

    // --- what the user works with ---
    GridSight sight{*this};
    GridCursor cursor{*this};
    GridHistory history{*this};
    GridBlocks blocks{*this};
    GridFind find{*this};
    GridEntry entry{*this};

    // What the line below the grid tells of the last thing done.
    struct Said {
        std::string text;
        bool refusal = false;
    };
    const Said& said() const { return said_; }
    void say(std::string text, bool refusal = false);

    // "row 2, "Days"", as the user counts.
    std::string cellName(size_t row, size_t c) const;
    using Control::frontEnd;
    using Control::run;

    uint64_t shape() const { return shape_; }
    uint64_t content() const { return content_; }

    static constexpr size_t kHeader = static_cast<size_t>(-1);  // as a row of cellToolTip

  private:
    struct Style {
        Color back = kDefaultColor;
        Color fore = kDefaultColor;
        std::optional<bool> locked;
        std::optional<CellType> type;
        bool operator==(const Style&) const = default;
    };
    const Style& style(size_t row, size_t c) const {
        return styles_[styleOf_[row * columns_.size() + c]];
    }
    template <typename Change>
    void changeStyle(size_t row, size_t c, Change change);
    uint64_t place(size_t row, size_t c) const { return row * columns_.size() + c; }

    std::vector<GridColumn> columns_;
    size_t rows_ = 0;
    std::vector<std::string> cells_;
    std::vector<uint16_t> styleOf_;
    std::vector<Style> styles_{Style{}};
    std::vector<bool> hiddenRows_;
    std::unordered_map<uint64_t, std::string> tags_;
    std::unordered_map<uint64_t, std::vector<std::string>> choices_;
    int currentRow_ = -1, currentColumn_ = -1;
    Said said_;
    uint64_t shape_ = 1, content_ = 1;
};

}  // namespace owb
