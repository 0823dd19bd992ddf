// What a batch brings back: typed columns and the cells of all rows, row by row, and errors.
#pragma once

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

struct ResultSet {
    std::vector<Column> columns;
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
