// A surface to draw on, without knowing the screen.
#pragma once

#include "lumora/platform/color.h"
#include "lumora/platform/text_metrics.h"

#include <cstdint>
#include <string_view>

namespace lumora {

inline constexpr TColor clBlack{0x000000};
inline constexpr TColor clGray{0x808080};
inline constexpr TColor clSilver{0xC0C0C0};
inline constexpr TColor clWhite{0xFFFFFF};
inline constexpr TColor clWindowText{-0x7FFFFFF8}; // the screen's own
inline constexpr TColor clBtnFace{-0x7FFFFFF1};

enum TPenStyle : std::uint8_t { psSolid, psClear };
enum TBrushStyle : std::uint8_t { bsSolid, bsClear };

// Rectangles reach from the left top to just before the right bottom; lines are a pixel wide and lie inside.
class TCanvas {
public:
    virtual ~TCanvas() = default;

    virtual void SetPenStyle(TPenStyle style) = 0;
    virtual void SetPenColor(TColor color) = 0;
    virtual void SetBrushStyle(TBrushStyle style) = 0;
    virtual void SetBrushColor(TColor color) = 0;
    virtual void SetFontColor(TColor color) = 0;

    // The corners are quarters of an ellipse of the given width and height.
    virtual void RoundRect(int left, int top, int right, int bottom, int ellipseWidth, int ellipseHeight) = 0;
    // The left top of the text is at (x, y). The character that begins at byte `underlined` is underlined;
    // -1: none.
    virtual void TextOut(int x, int y, std::string_view text, int underlined) = 0;
    virtual TSize TextExtent(std::string_view text) const = 0;
    // Moves the region outside which nothing is drawn.
    virtual void OffsetClipRegion(int dx, int dy) = 0;
};

} // namespace lumora
