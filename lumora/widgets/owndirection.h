// Texts of somebody else's in a window that is laid out from right to left.
#pragma once

#include <QString>

namespace lumora {

// The text in the direction of its own first letter, so that "-5", "1. ascending" and dates stay as they are
// written whatever stands around them.
inline QString inOwnDirection(const QString& text, Qt::LayoutDirection around) {
    constexpr QChar isolate(0x2068);
    constexpr QChar end(0x2069);
    return around == Qt::RightToLeft && !text.isEmpty() ? isolate + text + end : text;
}

} // namespace lumora
