// Runs the T-SQL cases of tests/sql/<topic>/*.test: one test per file, on a database of its own.
//
// A file is a list of cases that share one connection and run in order:
//
//   ## what the case shows              (starts a case; text before the first one is a remark)
//   SELECT ...                          (the batch, as many lines as it takes)
//   ----                                (what it gives; a case without this line must just run)
//   1,abc,NULL                          (rows as CSV; a blank line parts two result sets)
//
// The line of dashes may go on with words: "any" (rows in any order), "typed" (the first line of
// each set then gives "name type" of every column, name "-" for none) and, last, "error N N: text"
// (the numbers of all errors in order, and the text of the first, each as far as given). Rows after
// an error are those that the batch gave all the same; without any, none are compared. NULL stands
// for NULL, "" for an empty text, NOW for a moment less than an hour ago.
#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "base/csv.h"
#include "base/utf8.h"
#include "db/connection.h"
#include "db/embedded/embedded_driver.h"
#include "support/temp_dir.h"

namespace owb {
namespace {

struct Case {
    int line = 0;
    std::string name;
    std::string batch;
    bool any = false;
    bool typed = false;
    std::vector<int> errors;
    std::string errorText;
    bool expectsRows = false;
    std::string rows;
};

void readExpectation(Case& c, std::string words) {
    c.expectsRows = true;
    const size_t colon = words.find(": ");
    if (colon != std::string::npos) {
        c.errorText = words.substr(colon + 2);
        words.resize(colon);
    }
    std::istringstream in(words);
    for (std::string word; in >> word;) {
        if (word == "any")
            c.any = true;
        else if (word == "typed")
            c.typed = true;
        else if (word != "error")
            c.errors.push_back(std::stoi(word));
    }
}

std::vector<Case> readCases(const std::filesystem::path& path) {
    std::vector<Case> cases;
    std::ifstream in(path);
    int number = 0;
    for (std::string line; std::getline(in, line);) {
        ++number;
        if (line.starts_with("## ")) {
            cases.push_back({number, line.substr(3)});
        } else if (cases.empty()) {
            continue;
        } else if (line.starts_with("----")) {
            readExpectation(cases.back(), line.substr(4));
        } else {
            (cases.back().expectsRows ? cases.back().rows : cases.back().batch) += line + "\n";
        }
    }
    for (Case& c : cases)
        while (c.rows.ends_with("\n\n") || c.rows == "\n") c.rows.pop_back();
    return cases;
}

std::string cellText(const Value& value) {
    if (value.isNull()) return "NULL";
    if (!value.isDate()) return csvCell(value);
    const std::time_t now = std::time(nullptr);
    std::tm t{};
    localtime_r(&now, &t);
    const double today = DateTime::fromCivil(t.tm_year + 1900, t.tm_mon + 1, t.tm_mday).day;
    const double ago = today + (t.tm_hour * 60 + t.tm_min) / 1440.0 - value.asDate().toDays();
    return ago > -0.01 && ago < 0.04 ? "NOW" : csvCell(value);
}

std::string setText(const ResultSet& set, const Case& c) {
    std::vector<std::string> lines;
    for (size_t r = 0; r < set.rows; ++r) {
        std::string line;
        for (size_t i = 0; i < set.columns.size(); ++i)
            line += (i ? "," : "") + cellText(set.at(r, i));
        lines.push_back(line + "\n");
    }
    if (c.any) std::sort(lines.begin(), lines.end());
    std::string out;
    if (c.typed) {
        for (const Column& column : set.columns)
            out += (out.empty() ? "" : ", ") + (column.name.empty() ? "-" : column.name) + " " +
                   column.type.ddl();
        out += "\n";
    }
    for (const std::string& line : lines) out += line;
    return out;
}

std::string resultText(const BatchResult& result, const Case& c) {
    std::string out;
    for (size_t i = 0; i < result.sets.size(); ++i)
        out += (i ? "\n" : "") + setText(result.sets[i], c);
    return out;
}

// Rows in any order are kept sorted on both sides, header line apart.
std::string expectedText(const Case& c) {
    if (!c.any) return c.rows;
    std::istringstream in(c.rows);
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);) lines.push_back(line + "\n");
    std::sort(lines.begin() + (c.typed ? 1 : 0), lines.end());
    std::string out;
    for (const std::string& line : lines) out += line;
    return out;
}

void check(const Case& c, const BatchResult& result, const char* file) {
    std::vector<int> numbers;
    std::string texts;
    for (const DbError& e : result.errors) {
        numbers.push_back(e.number);
        texts += "\n    " + std::to_string(e.number) + " " + e.what();
    }
    std::string fault;
    if (numbers != c.errors) {
        fault += "  expected errors:";
        for (int number : c.errors) fault += " " + std::to_string(number);
        fault += "\n  got:" + (texts.empty() ? std::string(" none") : texts) + "\n";
    } else if (!c.errorText.empty() && c.errorText != result.errors.front().what()) {
        fault += "  expected text: " + c.errorText + "\n  got:" + texts + "\n";
    }
    const std::string got = resultText(result, c);
    const bool compareRows = c.errors.empty() ? c.expectsRows : !c.rows.empty();
    if (compareRows && fault.empty() && got != expectedText(c))
        fault += "  expected:\n" + expectedText(c) + "  got:\n" + got;
    if (!fault.empty()) ADD_FAILURE_AT(file, c.line) << c.name << "\n" << c.batch << fault;
}

class SqlCases : public testing::TestWithParam<std::filesystem::path> {};

TEST_P(SqlCases, Answers) {
    const test::TempDir dir;
    const std::string path = dir.file("cases.owb");
    createEmbedded(path);
    Connection connection;
    connection.Open("Provider=OWBEmbedded;Data Source=" + path);
    for (const Case& c : readCases(GetParam()))
        check(c, connection.RunCollecting(c.batch), GetParam().c_str());
}

std::vector<std::filesystem::path> caseFiles() {
    std::vector<std::filesystem::path> files;
    const std::filesystem::path root = std::filesystem::path(OWB_SOURCE_DIR) / "tests/sql";
    for (const auto& entry : std::filesystem::recursive_directory_iterator(root))
        if (entry.path().extension() == ".test") files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    return files;
}

std::string fileName(const testing::TestParamInfo<std::filesystem::path>& info) {
    return info.param.parent_path().filename().string() + "_" + info.param.stem().string();
}

INSTANTIATE_TEST_SUITE_P(Sql, SqlCases, testing::ValuesIn(caseFiles()), fileName);

}  // namespace
}  // namespace owb
