// Rows on their way into one table: collected and sent as INSERT ... VALUES of many rows. Every
// value is written as text, which the column's type converts: so all statements of a table have one
// shape, and the server finds its plan again.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/date_time.h"
#include "db/connection.h"

namespace owb::sample {

class RowWriter {
  public:
    RowWriter(Connection& connection, const std::string& table, const std::string& columns)
        : connection_(connection), head_("INSERT INTO " + table + " (" + columns + ") VALUES ") {}

    // One whole row.
    template <class... Values>
    void add(const Values&... values) {
        beginRow();
        (cell(values), ...);
        endRow();
    }

    // A row cell by cell.
    void beginRow() {
        if (rows_ == kRowsPerStatement) flush();
        text_ += rows_++ == 0 ? "(" : ",(";
        first_ = true;
    }
    void cell(std::string_view text) {
        separate();
        text_ += '\'';
        for (const char c : text) {
            if (c == '\'') text_ += '\'';
            text_ += c;
        }
        text_ += '\'';
    }
    void cell(const char* text) { cell(std::string_view(text)); }
    void cell(const std::string& text) { cell(std::string_view(text)); }
    void cell(int64_t number) { cell(std::to_string(number)); }
    void cell(int number) { cell(std::to_string(number)); }
    void cell(bool flag) { cell(std::string_view(flag ? "1" : "0")); }
    void cell(const DateTime& date) { cell(isoText(date)); }
    void cell(std::nullopt_t) {
        separate();
        text_ += "NULL";
    }
    template <class T>
    void cell(const std::optional<T>& value) {
        if (value)
            cell(*value);
        else
            cell(std::nullopt);
    }
    void endRow() { text_ += ')'; }

    void flush() {
        if (rows_ == 0) return;
        connection_.Execute(head_ + text_);
        text_.clear();
        rows_ = 0;
    }

  private:
    static constexpr int kRowsPerStatement = 50;

    void separate() {
        if (!first_) text_ += ',';
        first_ = false;
    }

    Connection& connection_;
    std::string head_, text_;
    int rows_ = 0;
    bool first_ = true;
};

}  // namespace owb::sample
