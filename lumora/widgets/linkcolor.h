// Colours of the model's side on a Qt palette.
#pragma once

#include "lumora/platform/color.h"

#include <QColor>
#include <QPalette>

namespace lumora {

inline QColor toQColor(TColor color) {
    return QColor(color.Value & 0xFF, (color.Value >> 8) & 0xFF, (color.Value >> 16) & 0xFF);
}
inline TColor fromQColor(const QColor& color) {
    return TColor{color.red() | color.green() << 8 | color.blue() << 16};
}

inline bool isDark(const QPalette& palette) {
    return palette.color(QPalette::Window).lightness() < 128;
}

inline QColor errorColor(const QPalette& palette) {
    return isDark(palette) ? QColor(0xFF, 0x8A, 0x80) : QColor(0xB0, 0x00, 0x20);
}

// The colour that a word is drawn in. The default blue cannot be read on a dark ground, where it gives way to
// the palette's link colour (or a light blue, where that is as dark); colours that were chosen stay.
inline QColor linkColor(TColor color, const QPalette& palette) {
    if (color.Value < 0 || color == clNone)
        return palette.color(QPalette::WindowText);
    if (color != clBlue || !isDark(palette))
        return toQColor(color);
    const QColor link = palette.color(QPalette::Link);
    return link.lightness() <= 128 ? QColor(0x6C, 0xB2, 0xFF) : link;
}

} // namespace lumora
