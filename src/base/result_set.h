// What a batch brings back: typed columns and the cells of all rows, row by row, and errors.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "base/db_error.h"
#include "base/sql_type.h"
#include "base/value.h"

namespace owb {

struct Column {
    std::string name;
    SqlType type;
    bool nullable = true;
};

// The columns of a result. Results of one statement share them; a change makes an own copy.
class Columns {
  public:
    Columns() = default;
    Columns(std::initializer_list<Column> columns)
        : held_(std::make_shared<std::vector<Column>>(columns)) {}
    size_t size() const { return held_ ? held_->size() : 0; }
    bool empty() const { return size() == 0; }
    const Column& operator[](size_t i) const { return (*held_)[i]; }
    const Column* begin() const { return held_ ? held_->data() : nullptr; }
    const Column* end() const { return begin() + size(); }
    void push_back(Column column) {
        if (!held_)
            held_ = std::make_shared<std::vector<Column>>();
        else if (held_.use_count() > 1)
            held_ = std::make_shared<std::vector<Column>>(*held_);
        held_->push_back(std::move(column));
    }

  private:
    std::shared_ptr<std::vector<Column>> held_;
};

struct ResultSet {
    Columns columns;
    std::vector<Value> cells;  // rows * columns.size()
    size_t rows = 0;

    const Value& at(size_t row, size_t column) const {
        return cells[row * columns.size() + column];
    }
};

struct BatchResult {
    std::vector<ResultSet> sets;        // one for each SELECT that gives rows
    std::vector<int64_t> counts;        // rows that each INSERT, UPDATE, DELETE touched, in order
    int64_t affected = 0;               // rows that the last statement touched
    std::vector<DbError> errors;        // in order; the batch may have gone on after each
    std::vector<std::string> messages;  // PRINT and informational messages
};

}  // namespace owb
