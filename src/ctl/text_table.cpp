#include "ctl/text_table.h"

#include "base/utf8.h"

namespace owb::ctl {

namespace {

bool isNumber(const std::string& text) {
    return text.find_first_not_of("0123456789.-") == std::string::npos;
}

}  // namespace

std::string textTable(const std::vector<std::vector<std::string>>& rows,
                      std::vector<bool> numbers) {
    const size_t columns = rows.front().size();
    std::vector<size_t> width(columns, 0);
    const bool told = !numbers.empty();
    if (!told) numbers.assign(columns, true);
    for (size_t r = 0; r < rows.size(); ++r) {
        for (size_t c = 0; c < columns; ++c) {
            width[c] = std::max(width[c], utf8Length(rows[r][c]));
            if (!told && r > 0 && !isNumber(rows[r][c])) numbers[c] = false;
        }
    }
    std::string out;
    for (size_t r = 0; r < rows.size(); ++r) {
        std::string line;
        for (size_t c = 0; c < columns; ++c) {
            const std::string blanks(width[c] - utf8Length(rows[r][c]), ' ');
            line += (c ? "  " : "") + (numbers[c] ? blanks + rows[r][c] : rows[r][c] + blanks);
        }
        out += std::string(trimRight(line)) + "\n";
        if (r > 0) continue;
        std::string rule;
        for (size_t c = 0; c < columns; ++c) rule += (c ? "  " : "") + std::string(width[c], '-');
        out += std::string(trimRight(rule)) + "\n";
    }
    return out;
}

}  // namespace owb::ctl
