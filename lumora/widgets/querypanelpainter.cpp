#include "lumora/widgets/querypanelpainter.h"

#include "lumora/controls/Vrndbtn.h"
#include "lumora/widgets/linkcolor.h"
#include "lumora/widgets/paintercanvas.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>

namespace lumora {

namespace {

constexpr int groundPadding = 2; // of the current row, above and below its words
constexpr int focusPadding = 2;
constexpr int checkBoxSize = 13;

QColor mixed(const QColor& over, const QColor& under, qreal part) {
    const auto mix = [part](int a, int b) { return qRound(a * part + b * (1 - part)); };
    return QColor(mix(over.red(), under.red()), mix(over.green(), under.green()),
                  mix(over.blue(), under.blue()));
}

bool isOwnColor(TColor color) {
    return color.Value >= 0 && color != clNone;
}

QColor faintColor(const QPalette& palette) {
    return mixed(palette.color(QPalette::WindowText), palette.color(QPalette::Window), 0.6);
}

QColor textColor(const TScreenWord& word, const QPalette& palette, bool isEnabled) {
    if (!word.Enabled || !isEnabled)
        return mixed(palette.color(QPalette::WindowText), palette.color(QPalette::Window), 0.5);
    return word.IsPrompt ? faintColor(palette) : linkColor(word.Color, palette);
}

} // namespace

QueryPanelPainter::QueryPanelPainter(QPainter& painter, const QPalette& palette, const TQPAppearance& looks,
                                     const PanelHighlights& highlights)
    : painter_(painter), palette_(palette), looks_(looks), highlights_(highlights) {}

QRect QueryPanelPainter::placed(const TRect& rect) const {
    const int left = highlights_.MirrorAt > 0 ? highlights_.MirrorAt - rect.Right : rect.Left;
    return QRect(left, rect.Top, rect.Right - rect.Left, rect.Bottom - rect.Top);
}

// --- Grounds.

QColor QueryPanelPainter::groundOf(const TPlacedLine& line) const {
    const QColor base = palette_.color(QPalette::Base);
    if (!line.IsCurrent)
        return base;
    if (isOwnColor(looks_.GetActiveRowColor()))
        return toQColor(looks_.GetActiveRowColor());
    return mixed(palette_.color(QPalette::Highlight), base, highlights_.HasFocus ? 0.16 : 0.08);
}

// A colour that was chosen for the current row may be dark in a light window, or the other way round.
QPalette QueryPanelPainter::paletteOn(const TPlacedLine& line) const {
    QPalette palette = palette_;
    const QColor ground = groundOf(line);
    const bool wasDark = palette_.color(QPalette::Base).lightness() < 128;
    const bool isNowDark = ground.lightness() < 128;
    palette.setColor(QPalette::Window, ground);
    palette.setColor(QPalette::WindowText, wasDark == isNowDark ? palette_.color(QPalette::Text)
                                           : isNowDark          ? QColor(Qt::white)
                                                                : QColor(Qt::black));
    return palette;
}

// --- Lines.

void QueryPanelPainter::paintLine(const TPlacedLine& line, int left, int right) {
    const QPalette palette = paletteOn(line);
    if (line.IsCurrent)
        painter_.fillRect(QRect(left, line.Bounds.Top - groundPadding + 1, right - left,
                                line.Bounds.Bottom - line.Bounds.Top + 2 * groundPadding - 2),
                          groundOf(line));
    painter_.setOpacity(highlights_.Dragged && line.Row == highlights_.Dragged ? 0.45 : 1);
    for (std::size_t i = 0; i < line.Words.size(); ++i) {
        const auto isAt = [&](const TWordPlace& place) {
            return place.Line == line.Line && place.Word == static_cast<int>(i);
        };
        paintWord(line.Words[i], palette, isAt(highlights_.Hovered), isAt(highlights_.Pressed));
    }
    if (line.IsCurrent && highlights_.HasFocus) {
        const auto focused = static_cast<std::size_t>(highlights_.FocusedWord); // -1: the whole row
        paintFocus(placed(focused < line.Words.size() ? line.Words[focused].Bounds : line.Bounds), palette);
    }
    painter_.setOpacity(1);
}

void QueryPanelPainter::paintGuides(const std::vector<TGuideLine>& guides) {
    const QColor color = mixed(palette_.color(QPalette::Text), palette_.color(QPalette::Base), 0.22);
    for (const TGuideLine& guide : guides)
        painter_.fillRect(placed({guide.X, guide.Top, guide.X + 1, guide.Bottom}), color);
}

void QueryPanelPainter::paintDropMark() {
    const QRect mark = placed(highlights_.DropMark);
    if (mark.isEmpty())
        return;
    const QColor color = palette_.color(QPalette::Highlight);
    painter_.fillRect(mark, color);
    painter_.save();
    painter_.setRenderHint(QPainter::Antialiasing);
    painter_.setPen(QPen(color, 2));
    painter_.setBrush(palette_.color(QPalette::Base));
    const int start = highlights_.MirrorAt > 0 ? mark.right() + 2 : mark.left() - 1;
    painter_.drawEllipse(QPointF(start, mark.top() + mark.height() / 2.0), 3, 3);
    painter_.restore();
}

// --- Words.

void QueryPanelPainter::paintWord(const TPlacedWord& word, const QPalette& palette, bool isHovered,
                                  bool isPressed) {
    const QRect bounds = placed(word.Bounds);
    if (word.Word.Role == wrButton)
        paintButton(word.Word, bounds, palette, isHovered, isPressed);
    else if (word.Word.Role == wrCheckBox)
        paintCheckBox(word.Word, bounds, palette, isHovered);
    else
        paintText(word.Word, bounds, palette, isHovered);
}

void QueryPanelPainter::paintText(const TScreenWord& word, const QRect& bounds, const QPalette& palette,
                                  bool isHovered) {
    const QColor color = textColor(word, palette, highlights_.IsEnabled);
    if (isHovered && word.IsClickable()) {
        QColor tint = palette.color(QPalette::Highlight);
        tint.setAlpha(36);
        painter_.fillRect(bounds.adjusted(-1, 0, 1, 0), tint);
    }
    painter_.setPen(color);
    const QString caption = QString::fromStdString(word.Caption);
    painter_.setLayoutDirection(caption.isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight);
    painter_.drawText(bounds, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine | Qt::TextDontClip,
                      caption);
    if (word.State == rsWrong && word.Enabled)
        paintWave(bounds.left(), bounds.right() + 1, bounds.bottom() - 2, errorColor(palette));
    else if (word.IsClickable())
        paintUnderline(word, bounds, color, isHovered);
}

// What is not given yet has a dotted line, so that it does not pass for a word of the query.
void QueryPanelPainter::paintUnderline(const TScreenWord& word, const QRect& bounds, const QColor& color,
                                       bool isHovered) {
    const QFontMetrics metrics = painter_.fontMetrics();
    const int baseline = bounds.top() + (bounds.height() - metrics.height()) / 2 + metrics.ascent();
    const int y = std::min(baseline + 2, bounds.bottom());
    const int thickness = isHovered ? 2 : 1;
    if (!word.IsPrompt)
        return painter_.fillRect(QRect(bounds.left(), y, bounds.width(), thickness), color);
    for (int x = bounds.left(); x < bounds.right(); x += 4)
        painter_.fillRect(QRect(x, y, 2, thickness), color);
}

void QueryPanelPainter::paintWave(int left, int right, int y, const QColor& color) {
    constexpr qreal step = 2;
    QPainterPath wave(QPointF(left, y + 1));
    bool isUp = true;
    for (qreal x = left + step; x <= right; x += step, isUp = !isUp)
        wave.lineTo(x, isUp ? y - 1 : y + 1);
    painter_.save();
    painter_.setRenderHint(QPainter::Antialiasing);
    painter_.setPen(QPen(color, 1.2));
    painter_.setBrush(Qt::NoBrush);
    painter_.drawPath(wave);
    painter_.restore();
}

void QueryPanelPainter::paintButton(const TScreenWord& word, const QRect& bounds, const QPalette& palette,
                                    bool isHovered, bool isPressed) {
    const TQPAppearanceOptions options = looks_.GetOptions();
    const bool isFlat = options.Contains(aoFlatButtons);
    const QColor ground = palette.color(QPalette::Window);
    const QColor text = palette.color(QPalette::WindowText);
    if (!isFlat || isHovered || isPressed) {
        TVRndBtn button;
        button.SetRounded(options.Contains(aoRoundButtons));
        button.SetFlat(true); // a quiet outline rather than a relief
        button.SetBounds(0, 0, bounds.width() - 2, bounds.height() - 2);
        if (isHovered || isPressed)
            button.MouseEnter();
        QPalette colors = palette;
        colors.setColor(QPalette::Button, mixed(text, ground, 0.05));
        painter_.save();
        painter_.translate(bounds.topLeft() + QPoint(1, 1));
        {
            PainterCanvas canvas(painter_, QRect(QPoint(), bounds.size() - QSize(2, 2)), colors);
            canvas.replaceColor(isHovered || isPressed ? button.GetOverColor() : clNone,
                                mixed(text, ground, isPressed ? 0.32 : 0.18));
            button.Paint(canvas);
        }
        painter_.restore();
    }
    painter_.save();
    painter_.setRenderHint(QPainter::Antialiasing);
    painter_.setPen(Qt::NoPen);
    painter_.setBrush(isOwnColor(word.Color) ? toQColor(word.Color) : mixed(text, ground, 0.65));
    const QPointF centre = QRectF(bounds).center();
    for (const int dy : {-4, 0, 4})
        painter_.drawEllipse(centre + QPointF(0, dy), 1.25, 1.25);
    painter_.restore();
}

void QueryPanelPainter::paintCheckBox(const TScreenWord& word, const QRect& bounds, const QPalette& palette,
                                      bool isHovered) {
    const int top = bounds.top() + (bounds.height() - checkBoxSize) / 2;
    const QRectF box(bounds.left() + 0.5, top + 0.5, checkBoxSize - 1, checkBoxSize - 1);
    const QColor ground = palette.color(QPalette::Window);
    const QColor text = palette.color(QPalette::WindowText);
    const QColor border = isOwnColor(word.Color) ? toQColor(word.Color) : mixed(text, ground, 0.55);
    painter_.save();
    painter_.setRenderHint(QPainter::Antialiasing);
    painter_.setPen(QPen(isHovered ? palette.color(QPalette::Highlight) : border, isHovered ? 1.5 : 1));
    painter_.setBrush(palette.color(QPalette::Base));
    painter_.drawRoundedRect(box, 2, 2);
    if (word.Checked) {
        const QColor tick =
            palette.color(QPalette::Base).lightness() < 128 ? QColor(Qt::white) : QColor(0x20, 0x20, 0x20);
        painter_.setPen(QPen(word.Enabled ? tick : border, 1.8, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        const QPointF points[] = {box.topLeft() + QPointF(3, 6.2), box.topLeft() + QPointF(5.2, 8.6),
                                  box.topLeft() + QPointF(9.2, 3.4)};
        painter_.drawPolyline(points, 3);
    }
    painter_.restore();
}

void QueryPanelPainter::paintFocus(const QRect& bounds, const QPalette& palette) {
    painter_.save();
    painter_.setRenderHint(QPainter::Antialiasing);
    painter_.setPen(
        QPen(mixed(palette.color(QPalette::Highlight), palette.color(QPalette::WindowText), 0.75), 1.5));
    painter_.setBrush(Qt::NoBrush);
    painter_.drawRoundedRect(QRectF(bounds).adjusted(-focusPadding - 0.25, 0.25, focusPadding + 0.25, -0.25),
                             3, 3);
    painter_.restore();
}

} // namespace lumora
