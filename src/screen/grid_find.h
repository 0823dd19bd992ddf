// Finds a text in what is in sight of a grid: a bar with the text and its number of hits, and, in
// columns that are only read, the letters that are typed there.
#pragma once

#include <cstdint>
#include <string>
#include <unordered_set>
#include <vector>

namespace owb {

class Grid;

class GridFind {
  public:
    explicit GridFind(Grid& grid) : grid_(grid) {}

    // The bar; its text stays when it closes.
    void open() { setOpen(true); }
    void close() { setOpen(false); }
    bool isOpen() const { return open_; }
    const std::string& text() const { return text_; }
    void setText(const std::string& text);
    // Cells that hold the text, in any letter case; none while the bar is closed.
    size_t count() const { return hits().size(); }
    bool isHit(size_t row, size_t c) const;
    // To the next cell that holds it, from the current one on, around; false when there is none.
    bool next(bool forward = true);

    // A letter typed in columns that are only read: goes to the first row whose text begins with
    // all that was typed since the last endTyping(), in the first column of texts that has one.
    bool typeAhead(const std::string& letters);
    void endTyping() { ahead_.clear(); }

  private:
    struct Hit {
        size_t row, column;  // of the grid
    };
    void setOpen(bool on);
    uint64_t place(size_t row, size_t c) const;
    const std::vector<Hit>& hits() const;

    Grid& grid_;
    bool open_ = false;
    std::string text_, ahead_;
    mutable std::vector<Hit> hits_;  // in the order of the sight
    mutable std::unordered_set<uint64_t> hitCells_;
    mutable std::string seenText_;
    mutable uint64_t seenContent_ = 0, seenSight_ = 0;
};

}  // namespace owb
