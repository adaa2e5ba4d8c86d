#include "lumora/widgets/paintercanvas.h"

#include "lumora/widgets/linkcolor.h"

#include <QFontMetrics>
#include <QTextCharFormat>
#include <QTextLayout>

namespace lumora {

namespace {

QString fromUtf8(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

} // namespace

PainterCanvas::PainterCanvas(QPainter& painter, const QRect& bounds, const QPalette& palette)
    : painter_(painter), palette_(palette), clip_(bounds) {
    painter_.save();
    painter_.setRenderHint(QPainter::Antialiasing);
    painter_.setClipRegion(clip_);
}

PainterCanvas::~PainterCanvas() {
    painter_.restore();
}

void PainterCanvas::replaceColor(TColor color, const QColor& replacement) {
    replacedColor_ = color;
    replacement_ = replacement;
}

void PainterCanvas::RoundRect(int left, int top, int right, int bottom, int ellipseWidth, int ellipseHeight) {
    // Lines run through the middle of the pixels that they cover.
    const QRectF rect(left + 0.5, top + 0.5, right - left - 1, bottom - top - 1);
    painter_.setPen(penStyle_ == psClear ? QPen(Qt::NoPen) : QPen(screenColor(penColor_), 1));
    painter_.setBrush(brushStyle_ == bsClear ? QBrush(Qt::NoBrush) : QBrush(screenColor(brushColor_)));
    painter_.drawRoundedRect(rect, ellipseWidth / 2.0, ellipseHeight / 2.0);
}

void PainterCanvas::TextOut(int x, int y, std::string_view text, int underlined) {
    painter_.setPen(screenColor(fontColor_));
    const QString string = fromUtf8(text);
    QTextLayout layout(string, painter_.font());
    if (underlined >= 0) {
        QTextCharFormat format;
        format.setFontUnderline(true);
        const auto start = fromUtf8(text.substr(0, static_cast<std::size_t>(underlined))).size();
        layout.setFormats({{static_cast<int>(start), 1, format}});
    }
    layout.beginLayout();
    layout.createLine();
    layout.endLayout();
    layout.draw(&painter_, QPointF(x, y));
}

TSize PainterCanvas::TextExtent(std::string_view text) const {
    const QFontMetrics metrics = painter_.fontMetrics();
    return {metrics.horizontalAdvance(fromUtf8(text)), metrics.height()};
}

void PainterCanvas::OffsetClipRegion(int dx, int dy) {
    clip_.translate(dx, dy);
    painter_.setClipRegion(clip_);
}

QColor PainterCanvas::screenColor(TColor color) const {
    if (color == replacedColor_)
        return replacement_;
    if (color == clBtnFace)
        return palette_.color(QPalette::Button);
    if (color.Value < 0)
        return palette_.color(QPalette::WindowText);
    return toQColor(color);
}

} // namespace lumora
