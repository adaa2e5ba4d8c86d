// Measuring text without knowing the screen.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace lumora {

struct TSize {
    int Width = 0;
    int Height = 0;
};

struct TFont {
    std::string Name;
    int PointSize = 9;
    bool Bold = false;
    bool Italic = false;
    bool Underline = false;
};

// Implemented by the screen: the extent in pixels of a text drawn with a font.
class TTextMeasurer {
public:
    virtual ~TTextMeasurer() = default;
    virtual TSize TextExtent(const TFont& font, std::string_view text) const = 0;
};

} // namespace lumora
