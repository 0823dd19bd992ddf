#include "ctl/sql_output.h"

#include <chrono>
#include <ostream>

#include "base/csv.h"
#include "base/number_text.h"
#include "base/utf8.h"
#include "ctl/json_text.h"
#include "ctl/text_table.h"
#include "db/connection.h"

namespace owb::ctl {

namespace {

constexpr size_t kBefore = 60, kWidth = 100;  // how much of a long line is shown

std::string tableCell(const Value& value) {
    if (value.isNull()) return "NULL";
    std::string text = value.isText() ? value.asText() : csvCell(value);
    // A row stays one line.
    while (text.ends_with('\n') || text.ends_with('\r')) text.pop_back();
    for (char& c : text)
        if (static_cast<unsigned char>(c) < ' ') c = ' ';
    return text;
}

std::string titleOf(const Column& column) {
    return column.name.empty() ? "(No column name)" : column.name;
}

// Rows that are wider than the terminal: each as a block, a line for each column.
std::string verticalText(const ResultSet& set) {
    size_t width = 0;
    for (const Column& c : set.columns) width = std::max(width, utf8Length(titleOf(c)));
    std::string text;
    for (size_t r = 0; r < set.rows; ++r) {
        text += "-- row " + std::to_string(r + 1) + "\n";
        for (size_t c = 0; c < set.columns.size(); ++c) {
            const std::string title = titleOf(set.columns[c]);
            text += title + std::string(width - utf8Length(title) + 2, ' ') +
                    tableCell(set.at(r, c)) + "\n";
        }
    }
    return text;
}

std::string tableText(const ResultSet& set) {
    std::vector<std::vector<std::string>> rows(1);
    std::vector<bool> numbers;
    for (const Column& c : set.columns) {
        rows[0].push_back(titleOf(c));
        numbers.push_back(c.type.isNumber());
    }
    for (size_t r = 0; r < set.rows; ++r) {
        rows.emplace_back();
        for (size_t c = 0; c < set.columns.size(); ++c)
            rows.back().push_back(tableCell(set.at(r, c)));
    }
    return textTable(rows, numbers);
}

std::string countText(int64_t rows) {
    return "(" + std::to_string(rows) + (rows == 1 ? " row affected)" : " rows affected)");
}

bool continuesCharacter(char c) {
    return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
}

}  // namespace

std::string placeOf(const std::string& text, int line, int column) {
    size_t from = 0;
    for (int n = 1; n < line; ++n) {
        const size_t end = text.find('\n', from);
        if (end == std::string::npos) return "";
        from = end + 1;
    }
    std::string shown = text.substr(from, text.find('\n', from) - from);
    while (shown.ends_with('\r')) shown.pop_back();
    size_t at = std::min(static_cast<size_t>(column - 1), shown.size());
    if (at > kBefore) {
        size_t cut = at - kBefore;
        while (continuesCharacter(shown[cut])) ++cut;
        shown = "..." + shown.substr(cut);
        at = at - cut + 3;
    }
    if (shown.size() > kWidth) {
        size_t cut = kWidth;
        while (continuesCharacter(shown[cut])) --cut;
        shown = shown.substr(0, cut) + "...";
    }
    std::string pad;
    for (size_t i = 0; i < at; ++i)
        if (!continuesCharacter(shown[i])) pad += shown[i] == '\t' ? '\t' : ' ';
    return shown + "\n" + pad + "^\n";
}

bool SqlOutput::run(Connection& connection, const std::string& batch) {
    using Clock = std::chrono::steady_clock;
    const Clock::time_point start = Clock::now();
    const BatchResult result = connection.RunCollecting(batch);
    const std::chrono::duration<double, std::milli> took = Clock::now() - start;
    show(result);
    for (const DbError& error : result.errors) showError(batch, error);
    if (time) {
        err << "Time: " << numberText(took.count(), std::chars_format::fixed, 3) << " ms\n";
    }
    err.flush();
    return result.errors.empty();
}

void SqlOutput::show(const BatchResult& result) {
    for (const ResultSet& set : result.sets) showSet(set);
    if (forPeople()) {
        for (int64_t count : result.counts) out << countText(count) << '\n';
        if (result.sets.empty() && result.counts.empty() && result.messages.empty() &&
            result.errors.empty())
            out << "Commands completed successfully.\n";
    }
    out.flush();
    for (const std::string& message : result.messages) err << message << '\n';
}

void SqlOutput::showSet(const ResultSet& set) {
    if (!first_) out << '\n';
    first_ = false;
    switch (rows) {
        case Rows::Csv:
            out << csvText(set);
            break;
        case Rows::Json:
            printJson(out, jsonOf(set));
            break;
        case Rows::Tables:
        case Rows::Vertical:
            out << (rows == Rows::Tables ? tableText(set) : verticalText(set)) << '\n'
                << countText(static_cast<int64_t>(set.rows)) << '\n';
    }
}

void SqlOutput::showError(const std::string& batch, const DbError& error) {
    // The client's own errors have no number of the server's.
    std::string head;
    if (error.number > 0) {
        head = "Msg " + std::to_string(error.number) + ", Level " + std::to_string(error.severity) +
               ", State " + std::to_string(error.state);
        if (!error.procedure.empty()) head += ", Procedure " + error.procedure;
        if (error.line > 0) head += ", Line " + std::to_string(error.line);
        head += "\n";
    }
    if (forPeople() && !head.empty())
        err << head << error.what() << '\n';
    else
        err << "error: " << error.what() << '\n' << head;
    if (error.column > 0 && error.procedure.empty())
        err << placeOf(batch, error.line, error.column);
}

}  // namespace owb::ctl
