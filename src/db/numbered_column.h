// Columns that stand in rows by number, always with two digits: DAY01 to DAY31, EXTCLASS06.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace owb {

inline std::string numberedColumn(std::string_view stem, int64_t number) {
    std::string column(stem);
    if (number < 10) column += '0';
    return column += std::to_string(number);
}

}  // namespace owb
