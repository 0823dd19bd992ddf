// What the user sees of a grid, and in which order: rows that neither the screen nor a filter
// hides, sorted as he likes; columns that neither the screen nor he hides, in his order. The grid
// itself keeps its rows and columns where the screen has put them.
//
// A place counts what is in sight from 0, a row or column what the grid holds.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace owb {

class Grid;

class GridSight {
  public:
    explicit GridSight(const Grid& grid) : grid_(grid) {}

    const std::vector<size_t>& rows() const;
    const std::vector<size_t>& columns() const;
    // Nothing for one that is out of sight.
    std::optional<size_t> placeOfRow(size_t row) const;
    std::optional<size_t> placeOfColumn(size_t c) const;

    // --- order of the rows ---
    struct Order {
        size_t column = 0;
        bool descending = false;
    };
    const std::optional<Order>& order() const { return order_; }
    void sort(std::optional<Order> order);
    // A click on the header: ascending, then descending, then the screen's own order.
    void sortNext(size_t c);

    // --- filters ---
    // The texts of a column's rows, each with their number; other columns' filters count.
    std::vector<std::pair<std::string, size_t>> values(size_t c) const;
    // Only rows with one of these texts stay.
    void filter(size_t c, std::set<std::string> texts);
    void clearFilter(size_t c);
    void clearFilters();
    const std::map<size_t, std::set<std::string>>& filters() const { return filters_; }
    bool filteredOut(size_t row) const;
    // "214 of 2,000 shown"; empty while no row is out of sight.
    std::string summary() const;

    // --- columns ---
    // The last column in sight stays.
    void hideColumn(size_t c, bool hidden);
    bool columnHidden(size_t c) const { return hiddenColumns_.contains(c); }
    // Puts a column before the one that is at a place now.
    void moveColumn(size_t c, size_t place);
    // All columns of the grid in the user's order; empty: as the screen has them. Another number of
    // columns than the grid's is left alone.
    const std::vector<size_t>& columnOrder() const { return columnOrder_; }
    void setColumnOrder(const std::vector<size_t>& order);
    // The columns up to this place stay in sight; 0: none.
    void freeze(size_t places) { frozen_ = places; }
    // Columns in sight at the left that stay there.
    size_t frozen() const;

    // Grows with every change of what is in sight.
    uint64_t version() const;

    // The columns of the grid are others now: nothing of the user's applies to them.
    void reset();

  private:
    void refresh() const;
    void changed();
    bool passes(size_t row, std::optional<size_t> except = {}) const;
    void collectRows() const;
    void collectColumns() const;

    const Grid& grid_;
    std::optional<Order> order_;
    std::map<size_t, std::set<std::string>> filters_;
    std::set<size_t> hiddenColumns_;
    std::vector<size_t> columnOrder_;  // empty: the screen's
    std::optional<size_t> frozen_;     // nothing: the screen's

    // Made when asked for after a change of the grid's shape or of the above. A row that was edited
    // stays where it is until then.
    mutable std::vector<size_t> rows_, columns_;
    mutable std::vector<std::optional<size_t>> placeOfRow_;
    mutable std::vector<bool> filteredOut_;
    mutable uint64_t seenShape_ = 0;
    mutable uint64_t version_ = 1;
    mutable bool stale_ = true;
};

}  // namespace owb
