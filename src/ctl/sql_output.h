// How owbctl sql shows what a batch gave: rows as CSV, as JSON or as tables for people, what it
// said and what failed, with the place of a syntax error in its line.
#pragma once

#include <iosfwd>
#include <string>

#include "base/result_set.h"

namespace owb {
class Connection;
}

namespace owb::ctl {

class SqlOutput {
  public:
    enum class Rows { Csv, Json, Tables, Vertical };  // Vertical: a line for each column

    SqlOutput(std::ostream& out, std::ostream& err, Rows rows, bool time)
        : out(out), err(err), time(time), rows(rows) {}

    // Runs a batch and shows what it gave. Whether it went without an error.
    bool run(Connection& connection, const std::string& batch);

    std::ostream& out;
    std::ostream& err;
    bool time;
    Rows rows;

  private:
    void show(const BatchResult& result);
    void showSet(const ResultSet& set);
    bool forPeople() const { return rows == Rows::Tables || rows == Rows::Vertical; }
    void showError(const std::string& batch, const DbError& error);

    bool first_ = true;
};

// The line of a text in which an error stands and, below it, a caret at its place; cut on both
// sides when it is long. Lines and columns count from 1, columns in bytes.
std::string placeOf(const std::string& text, int line, int column);

}  // namespace owb::ctl
