// Colours of cells, and what they mean.
#pragma once

#include <cstdint>
#include <string>

namespace owb {

// Blue-green-red as the family writes it (80C0FF is a light orange), or one of the desktop's own.
using Color = uint32_t;
constexpr Color kDefaultColor = 0xFFFFFFFF;
constexpr Color kButtonFaceColor = 0x8000000F;  // an entry that is locked
constexpr Color kToolTipColor = 0x80000018;

struct LegendEntry {
    Color color = kDefaultColor;
    std::string caption;
};

}  // namespace owb
