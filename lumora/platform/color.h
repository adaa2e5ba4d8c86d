// Colours.
#pragma once

#include <cstdint>

namespace lumora {

// A colour as 0x00BBGGRR; negative values name the screen's own colours.
struct TColor {
    std::int32_t Value = 0;
    constexpr bool operator==(const TColor& other) const { return Value == other.Value; }
};
inline constexpr TColor clNone{0x1FFFFFFF};
inline constexpr TColor clBlue{0x00FF0000};

} // namespace lumora
