// A board of cells of which one is picked: the days of a month, the months of a year. A cell is the
// current one; the arrows move it over those that can be picked.
#pragma once

#include <optional>

#include "base/date_time.h"
#include "screen/control.h"

namespace owb {

struct BoardCell {
    std::string text;  // lines of it where more than a name is shown
    std::string tip;
    bool enabled = false;  // can be current, and picked
    bool offDay = false;   // tinted, and a holiday in another tint
    bool holiday = false;
    bool ringed = false;  // today
    bool chosen = false;  // filled: what the field holds
};

class CellBoard : public Control {
  public:
    CellBoard(Screen& screen, std::string name, size_t columns, size_t rows)
        : Control(screen, std::move(name)), cells(columns * rows), columns_(columns) {}
    size_t columns() const { return columns_; }
    std::string text() const override;  // of the current cell

    // --- what a user does ---
    // Makes a cell the current one, or picks it; false where the cell is not to be had.
    bool goTo(size_t place);
    bool pick(size_t place);
    // Arrows, Home and End move, PgUp and PgDown turn the page, Enter picks.
    bool key(const std::string& key) override;
    bool takesKey(const std::string& key) const override;
    std::vector<KeyHelp> keyHelp() const override;

    std::vector<std::string> heads;                // above the columns; may be none
    std::vector<BoardCell> cells;                  // row by row
    int current = -1;                              // -1: none
    std::function<void(size_t place)> onPickCell;  // none: the board is only read
    std::function<void(int step)> onPage;          // -1 the page before, 1 the next

  protected:
    // The cell that a key goes to from the current one; nothing when it is none of the moves.
    virtual std::optional<int> moved(const std::string& key) const;
    virtual bool turn(const std::string& key);

  private:
    size_t columns_;
};

// Six weeks of a month, Sunday first: the first day stands below its weekday. Moving beyond the
// month's ends shows the month before or behind.
class MonthView : public CellBoard {
  public:
    MonthView(Screen& screen, std::string name) : CellBoard(screen, std::move(name), 7, 6) {}

    // The month anew; its Sundays are off. `day` is the current one, cut to the month's length.
    void show(int year, int month, int day = 1);
    size_t placeOf(int day) const { return static_cast<size_t>(before_ + day - 1); }
    BoardCell& cellOf(int day) { return cells[placeOf(day)]; }
    int days() const { return daysInMonth(year_, month_); }
    // The day of a place; of the current one.
    DateTime dateAt(size_t place) const;
    DateTime date() const { return dateAt(static_cast<size_t>(current)); }

    // T goes to today.
    bool takesKey(const std::string& key) const override;
    std::vector<KeyHelp> keyHelp() const override;

    DateTime today{};
    std::optional<DateTime> chosen;
    // Asked for a month when the user goes there; whoever shows it calls show(). False: not to be
    // had. Without it the month stays.
    std::function<bool(int year, int month, int day)> onTurn;

  protected:
    std::optional<int> moved(const std::string& key) const override;
    bool turn(const std::string& key) override;

  private:
    bool goToDate(const DateTime& date);

    int year_ = 1900, month_ = 1;
    int before_ = 0;  // empty cells before the first day
};

}  // namespace owb
