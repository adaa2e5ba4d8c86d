// The core's canvas over a QPainter.
#pragma once

#include "lumora/platform/canvas.h"

#include <QColor>
#include <QPainter>
#include <QPalette>
#include <QRegion>

namespace lumora {

// Draws inside `bounds`, with the painter's font; colours of the screen's own come from the palette. The
// painter is the caller's, and is left as it was.
class PainterCanvas : public TCanvas {
public:
    PainterCanvas(QPainter& painter, const QRect& bounds, const QPalette& palette);
    ~PainterCanvas() override;
    PainterCanvas(const PainterCanvas&) = delete;
    PainterCanvas& operator=(const PainterCanvas&) = delete;

    // Draws in another colour what is asked for in `color`.
    void replaceColor(TColor color, const QColor& replacement);

    void SetPenStyle(TPenStyle style) override { penStyle_ = style; }
    void SetPenColor(TColor color) override { penColor_ = color; }
    void SetBrushStyle(TBrushStyle style) override { brushStyle_ = style; }
    void SetBrushColor(TColor color) override { brushColor_ = color; }
    void SetFontColor(TColor color) override { fontColor_ = color; }
    void RoundRect(int left, int top, int right, int bottom, int ellipseWidth, int ellipseHeight) override;
    void TextOut(int x, int y, std::string_view text, int underlined) override;
    TSize TextExtent(std::string_view text) const override;
    void OffsetClipRegion(int dx, int dy) override;

private:
    QColor screenColor(TColor color) const;

    QPainter& painter_;
    QPalette palette_;
    QRegion clip_;
    TColor replacedColor_ = clNone;
    QColor replacement_;
    TPenStyle penStyle_ = psSolid;
    TBrushStyle brushStyle_ = bsSolid;
    TColor penColor_ = clBlack;
    TColor brushColor_ = clWhite;
    TColor fontColor_ = clWindowText;
};

} // namespace lumora
