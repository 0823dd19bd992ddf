// Rows on their way into one table: collected and sent as INSERT ... VALUES of many rows.
#pragma once

#include <string>
#include <string_view>

#include "base/date_time.h"
#include "db/connection.h"

namespace owb::ctl {

class RowWriter {
  public:
    RowWriter(Connection& connection, const std::string& table, const std::string& columns)
        : connection_(connection), head_("INSERT INTO " + table + " (" + columns + ") VALUES ") {}

    // One row's values as they stand between the brackets.
    void add(std::string_view values) {
        if (rows_ == kRowsPerStatement || text_.size() > kTextPerStatement) flush();
        text_ += rows_++ == 0 ? "(" : ",(";
        text_ += values;
        text_ += ')';
    }
    void flush() {
        if (rows_ == 0) return;
        connection_.Execute(head_ + text_);
        text_.clear();
        rows_ = 0;
    }

  private:
    static constexpr int kRowsPerStatement = 200;  // a server takes up to 1000
    static constexpr size_t kTextPerStatement = 100000;

    Connection& connection_;
    std::string head_, text_;
    int rows_ = 0;
};

inline std::string sqlText(std::string_view text) {
    std::string out = "'";
    for (const char c : text) out += c == '\'' ? std::string("''") : std::string(1, c);
    return out + "'";
}
inline std::string sqlDate(const DateTime& date) {
    return "'" + isoText(date) + "'";
}

}  // namespace owb::ctl
