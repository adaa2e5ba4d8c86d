#include "apps/lumora/text_width.h"

#include <QChar>
#include <QList>

#include <algorithm>
#include <array>

namespace lumora::cli {

namespace {

struct CharRange {
    char32_t first;
    char32_t last;
};

// Blocks whose characters are two columns wide: East Asian scripts, their punctuation and pictures.
constexpr std::array wideRanges = {
    CharRange{0x1100, 0x115F},   CharRange{0x231A, 0x231B},   CharRange{0x2329, 0x232A},
    CharRange{0x23E9, 0x23EC},   CharRange{0x2E80, 0x303E},   CharRange{0x3041, 0x4DBF},
    CharRange{0x4E00, 0xA4CF},   CharRange{0xA960, 0xA97F},   CharRange{0xAC00, 0xD7A3},
    CharRange{0xF900, 0xFAFF},   CharRange{0xFE10, 0xFE19},   CharRange{0xFE30, 0xFE6F},
    CharRange{0xFF00, 0xFF60},   CharRange{0xFFE0, 0xFFE6},   CharRange{0x1F300, 0x1F64F},
    CharRange{0x1F680, 0x1F6FF}, CharRange{0x1F900, 0x1F9FF}, CharRange{0x1FA70, 0x1FAFF},
    CharRange{0x20000, 0x3FFFD}};

int charWidth(char32_t c) {
    switch (QChar::category(c)) {
    case QChar::Mark_NonSpacing:
    case QChar::Mark_Enclosing:
    case QChar::Other_Format:
        return 0;
    default:
        break;
    }
    const auto range = std::lower_bound(wideRanges.begin(), wideRanges.end(), c,
                                        [](const CharRange& r, char32_t value) { return r.last < value; });
    return range != wideRanges.end() && range->first <= c ? 2 : 1;
}

bool isUnruly(QChar c) {
    const char16_t code = c.unicode();
    return c.category() == QChar::Other_Control || code == 0x2028 || code == 0x2029 ||
           (code >= 0x200E && code <= 0x200F) || (code >= 0x202A && code <= 0x202E) ||
           (code >= 0x2066 && code <= 0x2069);
}

QString escaped(QChar c) {
    switch (c.unicode()) {
    case '\n':
        return QStringLiteral("\\n");
    case '\r':
        return QStringLiteral("\\r");
    case '\t':
        return QStringLiteral("\\t");
    default:
        return QStringLiteral("\\u%1").arg(c.unicode(), 4, 16, QLatin1Char('0'));
    }
}

// Most text is, and is told so fast.
bool isPlainAscii(const QString& text) {
    const ushort* const end = text.utf16() + text.size();
    return std::all_of(text.utf16(), end, [](ushort c) { return c >= ' ' && c <= '~'; });
}

} // namespace

int displayWidth(const QString& text) {
    if (isPlainAscii(text))
        return static_cast<int>(text.size());
    int width = 0;
    for (const char32_t c : text.toUcs4())
        width += charWidth(c);
    return width;
}

QString visibleLine(const QString& text) {
    if (isPlainAscii(text) || std::none_of(text.begin(), text.end(), isUnruly))
        return text;
    QString line;
    for (const QChar c : text)
        if (isUnruly(c))
            line += escaped(c);
        else
            line += c;
    return line;
}

} // namespace lumora::cli
