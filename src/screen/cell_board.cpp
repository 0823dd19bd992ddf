#include "screen/cell_board.h"

#include <algorithm>

namespace owb {

// --- any board ---

std::string CellBoard::text() const {
    return current < 0 ? "" : cells[static_cast<size_t>(current)].text;
}

bool CellBoard::goTo(size_t place) {
    if (!takesInput() || place >= cells.size() || !cells[place].enabled) return false;
    current = static_cast<int>(place);
    return true;
}

bool CellBoard::pick(size_t place) {
    if (!onPickCell || !goTo(place) || !mayWrite()) return false;
    run([this, place] { onPickCell(place); });
    return true;
}

// Cells that cannot be picked are passed over.
std::optional<int> CellBoard::moved(const std::string& key) const {
    const int across = static_cast<int>(columns_), count = static_cast<int>(cells.size());
    struct Move {
        const char* key;
        int from, step;
    };
    for (const Move& move : {Move{"Left", current - 1, -1},
                             {"Right", current + 1, 1},
                             {"Up", current - across, -across},
                             {"Down", current + across, across},
                             {"Home", 0, 1},
                             {"End", count - 1, -1}}) {
        if (key != move.key) continue;
        int at = move.from;
        while (at >= 0 && at < count && !cells[static_cast<size_t>(at)].enabled) at += move.step;
        return at;  // beyond the ends: nowhere
    }
    return std::nullopt;
}

bool CellBoard::turn(const std::string& key) {
    const int step = key == "PgDown" ? 1 : key == "PgUp" ? -1 : 0;
    if (step == 0 || !onPage) return false;
    run([this, step] { onPage(step); });
    return true;
}

bool CellBoard::takesKey(const std::string& key) const {
    return key == "Enter" || key == "Space" || key == "PgUp" || key == "PgDown" ||
           moved(key).has_value() || Control::takesKey(key);
}

bool CellBoard::key(const std::string& key) {
    if (!takesInput()) return false;
    if (key == "Enter" || key == "Space") return current >= 0 && pick(static_cast<size_t>(current));
    if (turn(key)) return true;
    const auto place = moved(key);
    if (!place) return Control::key(key);
    return *place >= 0 && goTo(static_cast<size_t>(*place));
}

std::vector<KeyHelp> CellBoard::keyHelp() const {
    return {{"Arrows, Home, End", "go over the board"},
            {"PgUp, PgDown", "show the page before or behind"},
            {"Enter", "picks what the board stands on"}};
}

// --- a month ---

void MonthView::show(int year, int month, int day) {
    year_ = year;
    month_ = month;
    const DateTime first = DateTime::fromCivil(year, month, 1);
    before_ = first.weekday() - 1;
    cells.assign(cells.size(), {});
    for (int d = 1; d <= days(); ++d) {
        const DateTime date = first.plusDays(d - 1);
        BoardCell& cell = cellOf(d);
        cell.text = std::to_string(d);
        cell.enabled = true;
        cell.offDay = date.weekday() == 1;
        cell.ringed = date.day == today.day;
        cell.chosen = chosen && date.day == chosen->day;
    }
    current = static_cast<int>(placeOf(std::clamp(day, 1, days())));
}

DateTime MonthView::dateAt(size_t place) const {
    return DateTime::fromCivil(year_, month_, 1).plusDays(static_cast<int>(place) - before_);
}

bool MonthView::goToDate(const DateTime& date) {
    const CivilDate to = date.civil();
    if (to.year == year_ && to.month == month_) return goTo(placeOf(to.day));
    return onTurn && onTurn(to.year, to.month, to.day);
}

std::optional<int> MonthView::moved(const std::string& key) const {
    if (key == "Home") return static_cast<int>(placeOf(1));
    if (key == "End") return static_cast<int>(placeOf(days()));
    return std::nullopt;
}

bool MonthView::turn(const std::string& key) {
    struct Step {
        const char* key;
        int days, months;
    };
    for (const Step& step : {Step{"Left", -1, 0},
                             {"Right", 1, 0},
                             {"Up", -7, 0},
                             {"Down", 7, 0},
                             {"PgUp", 0, -1},
                             {"PgDown", 0, 1}})
        if (key == step.key) {
            run([&] { goToDate(date().plusDays(step.days).plusMonths(step.months)); });
            return true;
        }
    if (key != "T") return false;
    run([&] { goToDate(today); });
    return true;
}

bool MonthView::takesKey(const std::string& key) const {
    return key == "T" || key == "Left" || key == "Right" || key == "Up" || key == "Down" ||
           CellBoard::takesKey(key);
}

std::vector<KeyHelp> MonthView::keyHelp() const {
    return {{"Arrows", "go to the next day, or the same day of the next week"},
            {"PgUp, PgDown", "show the month before or behind"},
            {"Home, End", "go to the first and the last day"},
            {"T", "goes to today"},
            {"Enter", "picks the day"}};
}

}  // namespace owb
