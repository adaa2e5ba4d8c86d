// Draws the lines of a query panel.
#pragma once

#include "lumora/screen/appearance.h"
#include "lumora/screen/layout.h"

#include <QFont>
#include <QPalette>

#include <vector>

class QPainter;

namespace lumora {

// What of the panel stands out now.
struct PanelHighlights {
    TWordPlace Hovered;
    TWordPlace Pressed;
    int FocusedWord = -1; // of the current line
    bool HasFocus = false;
    bool IsEnabled = true; // the whole widget
    TRect DropMark;
    const TFilterRow* Dragged = nullptr;
    int MirrorAt = 0; // what is at x stands at this less x; 0: at x
};

class QueryPanelPainter {
public:
    // The painter's origin is the content's. All of it outlives this.
    QueryPanelPainter(QPainter& painter, const QPalette& palette, const TQPAppearance& looks,
                      const PanelHighlights& highlights);

    // A line's ground reaches from `left` to `right`.
    void paintLine(const TPlacedLine& line, int left, int right);
    void paintGuides(const std::vector<TGuideLine>& guides);
    void paintDropMark();

private:
    QRect placed(const TRect& rect) const;
    // Text and links on the ground of one line.
    QPalette paletteOn(const TPlacedLine& line) const;
    QColor groundOf(const TPlacedLine& line) const;
    void paintWord(const TPlacedWord& word, const QPalette& palette, bool isHovered, bool isPressed);
    void paintText(const TScreenWord& word, const QRect& bounds, const QPalette& palette, bool isHovered);
    void paintUnderline(const TScreenWord& word, const QRect& bounds, const QColor& color, bool isHovered);
    void paintWave(int left, int right, int y, const QColor& color);
    void paintButton(const TScreenWord& word, const QRect& bounds, const QPalette& palette, bool isHovered,
                     bool isPressed);
    void paintCheckBox(const TScreenWord& word, const QRect& bounds, const QPalette& palette, bool isHovered);
    void paintFocus(const QRect& bounds, const QPalette& palette);

    QPainter& painter_;
    const QPalette& palette_;
    const TQPAppearance& looks_;
    const PanelHighlights& highlights_;
};

} // namespace lumora
