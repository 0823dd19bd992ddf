// A table of texts: what the registers and lists of the screens are shown in.
//
// Rows and columns count from 0, hidden ones included. Styles are few and cells many, so a cell
// holds the number of its style; tags and lists of single cells are rare and stand apart. The
// counters tell a front end what to draw anew: `shape` grows when rows, columns or their hiding
// change, `content` when anything in a cell does.
#pragma once

#include <cstdint>
#include <optional>
#include <unordered_map>

#include "screen/control.h"

namespace owb {

enum class CellType : uint8_t { Text, Number, Date, Check, Combo };
enum class Align : uint8_t { Left, Center, Right };

// Blue-green-red as the family writes it (80C0FF is a light orange), or one of the desktop's own.
using Color = uint32_t;
constexpr Color kDefaultColor = 0xFFFFFFFF;
constexpr Color kButtonFaceColor = 0x8000000F;  // an entry that is locked
constexpr Color kToolTipColor = 0x80000018;

struct GridColumn {
    std::string caption;
    int width = 10;  // in digits
    CellType type = CellType::Text;
    int decimals = 2;  // of Number
    Align align = Align::Left;
    bool hidden = false;
    bool locked = true;
    bool editable = false;             // Combo: free text beside the choices
    std::vector<std::string> choices;  // Combo
    std::string toolTip;
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
    bool rowHidden(size_t row) const { return hiddenRows_[row]; }
    size_t visibleRowCount() const;

    // --- cells ---
    const std::string& cell(size_t row, size_t c) const {
        return cells_[row * columns_.size() + c];
    }
    double number(size_t row, size_t c) const;  // leading number; 0 of an empty cell
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
    // Begins an edit: what stands in the cell may change by it. False, with the reason, when the
    // cell takes none.
    bool beginEdit(size_t row, size_t c, std::string& reason);
    // Ends one that has begun. False, with the reason, when the text does not fit.
    bool endEdit(size_t row, size_t c, const std::string& text, std::string& reason);
    // A whole edit, from beginning to end. False, with the reason, when nothing changed.
    bool edit(size_t row, size_t c, const std::string& text, std::string& reason);
    bool check(size_t row, size_t c, bool on, std::string& reason);
    // A block of texts from its upper left cell over visible rows and columns. All targets are
    // looked at first: one that is locked, beyond the end or does not fit refuses the whole block.
    bool paste(size_t row, size_t c, const std::vector<std::vector<std::string>>& block,
               std::string& reason);
    // The same for cells that the front end has chosen.
    struct CellText {
        size_t row, column;
        std::string text;
    };
    bool paste(const std::vector<CellText>& targets, std::string& reason);
    // The visible cells between two corners, tab-separated lines.
    std::string copy(size_t row, size_t c, size_t toRow, size_t toColumn) const;

    size_t frozenColumns = 0;  // stay in sight at the left
    bool singleRows = false;   // a click selects the row
    std::function<void(size_t row, size_t c)> onCurrentChange;
    std::function<void(size_t row, size_t c)> onCellClick;
    std::function<void(size_t row, size_t c)> onCellDoubleClick;
    std::function<void(size_t row, size_t c)> onRightClick;
    std::function<void(size_t row, size_t c)> onEditBegin;
    // After the edit; the cell holds the new text, `before` is what stood there.
    std::function<void(size_t row, size_t c, const std::string& before)> onEditEnd;
    std::function<std::string(size_t row, size_t c)> cellToolTip;

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
    // The text as the cell would hold it; nothing, with the reason, when it does not fit.
    std::optional<std::string> fitted(size_t row, size_t c, const std::string& text,
                                      std::string& reason) const;
    std::string cellName(size_t row, size_t c) const;
    bool takesEdit(size_t row, size_t c, std::string& reason) const;

    std::vector<GridColumn> columns_;
    size_t rows_ = 0;
    std::vector<std::string> cells_;
    std::vector<uint16_t> styleOf_;
    std::vector<Style> styles_{Style{}};
    std::vector<bool> hiddenRows_;
    std::unordered_map<uint64_t, std::string> tags_;
    std::unordered_map<uint64_t, std::vector<std::string>> choices_;
    int currentRow_ = -1, currentColumn_ = -1;
    uint64_t shape_ = 1, content_ = 1;
};

}  // namespace owb
