#include "script/script_words.h"

#include <charconv>

#include "base/utf8.h"
#include "screen/grid.h"
#include "screen/screen.h"

namespace owb {

namespace {

constexpr size_t kNamed = 15;

bool readNumber(const std::string& word, size_t& number) {
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
    return error == std::errc() && end == word.data() + word.size();
}

}  // namespace

std::string takeWord(std::string& rest) {
    const size_t end = std::min(rest.find(' '), rest.size());
    std::string word = rest.substr(0, end);
    rest = trim(std::string_view(rest).substr(end));
    return word;
}

std::string takeLastWord(std::string& rest) {
    const size_t at = rest.find_last_of(' ');
    const size_t from = at == std::string::npos ? 0 : at + 1;
    std::string word = rest.substr(from);
    rest = trim(std::string_view(rest).substr(0, from));
    return word;
}

size_t wordCount(const std::string& text) {
    size_t words = 0;
    for (std::string rest = trim(text); !rest.empty(); takeWord(rest)) ++words;
    return words;
}

std::string oneLine(const std::string& text) {
    std::string out;
    for (const char c : text) {
        if (c == '\n')
            out += "\\n";
        else if (c != '\r')
            out += c;
    }
    return out;
}

const char* yesNo(bool value) {
    return value ? "Yes" : "No";
}

bool yesOrNo(const std::string& word) {
    if (equalsIgnoreCaseAscii(word, "Yes")) return true;
    if (equalsIgnoreCaseAscii(word, "No")) return false;
    throw ScriptError{"not Yes or No: " + word};
}

std::string listed(const std::vector<std::string>& names) {
    if (names.empty()) return "none";
    std::string text;
    for (size_t i = 0; i < std::min(names.size(), kNamed); ++i)
        text += (i > 0 ? ", " : "") + oneLine(names[i]);
    if (names.size() > kNamed) text += " and " + std::to_string(names.size() - kNamed) + " more";
    return text;
}

Control& controlNamed(const Screen& screen, const std::string& name) {
    if (Control* control = screen.find(name)) return *control;
    std::vector<std::string> names;
    for (const Control* control : screen.controls()) names.push_back(control->name());
    throw ScriptError{"no control " + name + " on " + screen.name() + ": there are " +
                      listed(names)};
}

Grid& gridNamed(const Screen& screen, const std::string& name) {
    if (auto* grid = dynamic_cast<Grid*>(&controlNamed(screen, name))) return *grid;
    std::vector<std::string> names;
    for (const Control* control : screen.controls())
        if (dynamic_cast<const Grid*>(control)) names.push_back(control->name());
    throw ScriptError{name + " is no grid: there are " + listed(names)};
}

size_t entryNamed(const Control& list, const std::vector<ListItem>& items,
                  const std::string& text) {
    std::vector<std::string> names;
    for (size_t i = 0; i < items.size(); ++i) {
        if (compareText(items[i].text, text) == 0) return i;
        names.push_back(items[i].text);
    }
    throw ScriptError{list.name() + " has no entry " + text + ": there are " + listed(names)};
}

std::vector<size_t> shownRows(const Grid& grid) {
    return grid.sight.rows();
}

std::vector<size_t> shownColumns(const Grid& grid) {
    return grid.sight.columns();
}

size_t rowAt(const Grid& grid, const std::string& word) {
    size_t wanted = 0;
    if (!readNumber(word, wanted)) throw ScriptError{"no row number: " + word};
    const std::vector<size_t> rows = shownRows(grid);
    if (wanted >= 1 && wanted <= rows.size()) return rows[wanted - 1];
    throw ScriptError{grid.name() + " has no row " + word + ": there are " +
                      std::to_string(rows.size())};
}

size_t columnAt(const Grid& grid, const std::string& word, Among which) {
    const std::vector<size_t> columns = shownColumns(grid);
    size_t wanted = 0;
    if (readNumber(word, wanted) && wanted >= 1 && wanted <= columns.size())
        return columns[wanted - 1];
    std::vector<std::string> names;
    for (const size_t c : columns) {
        if (equalsIgnoreCaseAscii(grid.column(c).caption, word)) return c;
        names.push_back(grid.column(c).caption);
    }
    if (which == Among::All)
        if (const auto hidden = grid.findColumn(word)) return *hidden;
    throw ScriptError{grid.name() + " has no column " + word + ": there are " + listed(names)};
}

CellPlace placeAt(const Grid& grid, std::string words, Among which) {
    const size_t row = rowAt(grid, takeWord(words));
    return {row, columnAt(grid, words, which)};
}

}  // namespace owb
