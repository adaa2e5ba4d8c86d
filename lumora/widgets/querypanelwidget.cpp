#include "lumora/widgets/querypanelwidget.h"

#include "lumora/lumora.h"
#include "lumora/widgets/querypanelaccessible.h"
#include "lumora/widgets/querypanelpainter.h"

#include <QCoreApplication>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>
#include <QTextDocument>
#include <QToolTip>

#include <algorithm>

namespace lumora {

namespace {

constexpr int scrollMargin = 6; // left beside a word that comes into view

} // namespace

QueryPanelWidget::QueryPanelWidget(QWidget* parent) : QAbstractScrollArea(parent) {
    installQueryPanelAccessibility();
    setFocusPolicy(Qt::StrongFocus);
    viewport()->setMouseTracking(true);
    viewport()->setBackgroundRole(QPalette::Base);
    viewport()->setAutoFillBackground(true);
    measurer_.setFont(font());
    setAccessibleName(tr("Query"));
}

QueryPanelWidget::~QueryPanelWidget() {
    blockSignals(true); // to slots of what may be half gone
    setPanel(nullptr);
}

void QueryPanelWidget::setPanel(TVQueryPanel* panel) {
    if (panel == this->panel())
        return;
    endDrag(false);
    closeWindows();
    layout_.reset();
    hovered_ = {};
    pressed_ = {};
    toldRow_ = nullptr;
    view_.setPanel(panel);
    if (panel)
        listenToPanel(*panel);
    if (panel)
        layout_ = std::make_unique<TScreenLayout>(panel->GetScreen(), measurer_);
    verticalScrollBar()->setValue(0);
    horizontalScrollBar()->setValue(0);
    rowsChanged();
    tellSettings();
}

// --- Places.

QPoint QueryPanelWidget::scrolled() const {
    return {horizontalScrollBar()->value(), verticalScrollBar()->value()};
}

QRect QueryPanelWidget::toViewport(const TRect& rect) const {
    const QSize size(rect.Right - rect.Left, rect.Bottom - rect.Top);
    const QPoint from = QPoint(rect.Left, rect.Top) - scrolled();
    return {QPoint(isMirrored() ? viewport()->width() - from.x() - size.width() : from.x(), from.y()), size};
}

QPoint QueryPanelWidget::toContent(const QPoint& position) const {
    const int x = isMirrored() ? viewport()->width() - 1 - position.x() : position.x();
    return QPoint(x, position.y()) + scrolled();
}

int QueryPanelWidget::parentLine(int line) const {
    const TFilterRow* const row = rowOfLine(line);
    return row && row->GetParent() ? lineOfRow(row->GetParent()) : -1;
}

QRect QueryPanelWidget::lineRect(int line) const {
    if (line < 0 || line >= lineCount())
        return {};
    const int top = layout_->GetLineTop(line) - scrolled().y();
    return {0, top, viewport()->width(), layout_->GetLineHeight()};
}

QRect QueryPanelWidget::wordRect(int line, int word) const {
    return layout_ ? toViewport(layout_->WordBounds(line, word)) : QRect();
}

TWordPlace QueryPanelWidget::placeAt(const QPoint& position) const {
    const QPoint point = toContent(position);
    return layout_ ? layout_->WordAt(point.x(), point.y()) : TWordPlace();
}

TWordPlace QueryPanelWidget::currentPlace() const {
    if (!layout_)
        return {};
    return {layout_->LineOfRow(panel()->GetCurrentRow()), panel()->GetKeyboard().GetCurControl()};
}

QSize QueryPanelWidget::sizeHint() const {
    const int lineHeight = fontMetrics().height() + 8;
    return {fontMetrics().averageCharWidth() * 60, lineHeight * 8};
}

// --- What the panel asks for. Many changes may come in a row, so what follows from them is done once, later.

void QueryPanelWidget::panelChanged() {
    viewport()->update();
    updateLater();
}

void QueryPanelWidget::rowsChanged() {
    isPlacePending_ = true;
    panelChanged();
}

void QueryPanelWidget::rowChanged(TFilterRow& row) {
    updateLater();
    if (isPlacePending_ || !layout_)
        return;
    const bool isWhole = row.GetRowType() == frtBracket; // its rows may look different, too
    if (const QRect rect = lineRect(layout_->LineOfRow(&row)); !isWhole && !rect.isEmpty())
        viewport()->update(rect.adjusted(0, -2, 0, 2));
    else
        viewport()->update();
}

void QueryPanelWidget::scrollToCurrentSoon() {
    isScrollPending_ = true;
    updateLater();
}

void QueryPanelWidget::updateLater() {
    if (isUpdatePending_)
        return;
    isUpdatePending_ = true;
    QCoreApplication::postEvent(this, new QEvent(QEvent::LayoutRequest));
}

void QueryPanelWidget::updateNow() {
    isUpdatePending_ = false;
    if (isPlacePending_) {
        isPlacePending_ = false;
        if (openRow_ && !(panel() && panel()->HasRow(openRow_)))
            closeWindows();
        isRangePending_ = true;
        updateHovered();
        tellLinesChanged(*this);
    }
    if (isRangePending_) {
        isRangePending_ = false;
        updateScrollBars();
    }
    if (isScrollPending_)
        scrollToCurrent();
    tellCurrent();
}

// Widths are known of lines that have been placed, so those in view are.
void QueryPanelWidget::updateScrollBars() {
    const QSize room = viewport()->size();
    TSize content;
    if (layout_) {
        layout_->PlaceLines(scrolled().y(), scrolled().y() + room.height());
        content = layout_->GetContentSize();
        verticalScrollBar()->setSingleStep(layout_->GetLineHeight() + panel()->GetRowSpace());
        horizontalScrollBar()->setSingleStep(layout_->GetLineHeight());
    }
    verticalScrollBar()->setPageStep(room.height());
    verticalScrollBar()->setRange(0, std::max(0, content.Height - room.height()));
    horizontalScrollBar()->setPageStep(room.width());
    horizontalScrollBar()->setRange(0, std::max(0, content.Width - room.width()));
}

void QueryPanelWidget::scrollToCurrent() {
    isScrollPending_ = false;
    const TWordPlace place = currentPlace();
    if (place.Line < 0)
        return;
    const QRect line = lineRect(place.Line);
    // The line that adds a condition comes into view with the last row.
    const int below = place.Line + 2 == lineCount() ? lineRect(place.Line + 1).bottom() : line.bottom();
    QScrollBar* const vertical = verticalScrollBar();
    if (below + scrollMargin > viewport()->height())
        vertical->setValue(vertical->value() + below + scrollMargin - viewport()->height());
    if (const int top = lineRect(place.Line).top(); top < scrollMargin)
        vertical->setValue(vertical->value() + top - scrollMargin);
    QScrollBar* const horizontal = horizontalScrollBar();
    if (const TRect word = layout_->WordBounds(place.Line, place.Word); word.Left < word.Right) {
        horizontal->setValue(
            std::max(horizontal->value(), word.Right - 1 + scrollMargin - viewport()->width()));
        horizontal->setValue(std::min(horizontal->value(), word.Left - scrollMargin));
    }
}

void QueryPanelWidget::tellCurrent() {
    const TFilterRow* const row = panel() ? panel()->GetCurrentRow() : nullptr;
    const int word = row ? panel()->GetKeyboard().GetCurControl() : -1;
    const int line = lineOfRow(row);
    const bool hasMoved = row == toldRow_ && line != toldLine_;
    if (row == toldRow_ && word == toldWord_ && !hasMoved)
        return;
    toldRow_ = row;
    toldWord_ = word;
    toldLine_ = line;
    if (hasFocus())
        hasMoved ? tellMoved(*this) : tellFocus(*this);
}

bool QueryPanelWidget::attempt(const std::function<void()>& action) {
    const QPointer<QueryPanelWidget> self(this);
    refusal_.clear();
    try {
        action();
        return !self.isNull();
    } catch (const std::exception& error) {
        if (self)
            refuse(QString::fromStdString(error.what()));
        return false;
    }
}

void QueryPanelWidget::refuse(const QString& reason) {
    const TWordPlace place = currentPlace();
    QRect where = wordRect(place.Line, place.Word);
    if (where.isEmpty())
        where = lineRect(place.Line);
    QToolTip::showText(viewport()->mapToGlobal(where.bottomLeft()), Qt::convertFromPlainText(reason), this);
    refusal_ = reason;
    tellAlert(*this);
    emit refused(reason);
}

// --- Painting.

void QueryPanelWidget::paintEvent(QPaintEvent* event) {
    if (!layout_)
        return;
    QPainter painter(viewport());
    painter.setFont(font());
    const QPoint from = scrolled();
    const QRect area = event->rect().translated(0, from.y());
    painter.translate(isMirrored() ? 0 : -from.x(), -from.y());
    const TWordPlace current = currentPlace();
    PanelHighlights highlights;
    highlights.Hovered = drag_.isActive() ? TWordPlace() : hovered_;
    highlights.Pressed = pressed_;
    highlights.FocusedWord = current.Word;
    highlights.HasFocus = hasFocus() || popup_ || menu_;
    highlights.IsEnabled = isEnabled();
    highlights.DropMark = drag_.mark();
    highlights.Dragged = drag_.row();
    highlights.MirrorAt = isMirrored() ? viewport()->width() + from.x() : 0;
    QueryPanelPainter panelPainter(painter, palette(), panel()->GetAppearance(), highlights);
    const int top = area.top() - layout_->GetLineHeight();
    const int bottom = area.bottom() + 3;
    panelPainter.paintGuides(layout_->GuideLines(top, bottom));
    const int left = isMirrored() ? 0 : from.x();
    for (const TPlacedLine& line : layout_->PlaceLines(top, bottom))
        panelPainter.paintLine(line, left, left + viewport()->width());
    panelPainter.paintDropMark();
    if (layout_->GetContentSize().Width > horizontalScrollBar()->maximum() + viewport()->width()) {
        isRangePending_ = true;
        updateLater();
    }
}

void QueryPanelWidget::resizeEvent(QResizeEvent* event) {
    QAbstractScrollArea::resizeEvent(event);
    updateScrollBars();
}

void QueryPanelWidget::scrollContentsBy(int dx, int dy) {
    viewport()->scroll(isMirrored() ? -dx : dx, dy);
    updateHovered();
}

void QueryPanelWidget::changeEvent(QEvent* event) {
    QAbstractScrollArea::changeEvent(event);
    if (event->type() == QEvent::LayoutDirectionChange)
        rowsChanged();
    if (event->type() != QEvent::FontChange && event->type() != QEvent::StyleChange)
        return;
    measurer_.setFont(font());
    if (layout_)
        layout_->Remeasure();
    rowsChanged();
}

bool QueryPanelWidget::event(QEvent* event) {
    if (event->type() == QEvent::LayoutRequest)
        updateNow();
    // While a row is dragged, Escape is ours even where it is a shortcut.
    if (event->type() == QEvent::ShortcutOverride && drag_.isActive() &&
        static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape)
        event->accept();
    return QAbstractScrollArea::event(event);
}

bool QueryPanelWidget::viewportEvent(QEvent* event) {
    if (event->type() == QEvent::Leave)
        setHovered({});
    if (event->type() != QEvent::ToolTip)
        return QAbstractScrollArea::viewportEvent(event);
    auto* const help = static_cast<QHelpEvent*>(event);
    const TWordPlace place = placeAt(help->pos());
    const TPlacedLine placed = line(place.Line);
    QString hint;
    if (placed.Row && place.Word >= 0)
        hint = QString::fromStdString(
            WordHint(*placed.Row, placed.Words[static_cast<std::size_t>(place.Word)].Word));
    if (hint.isEmpty()) {
        QToolTip::hideText();
        event->ignore();
    } else {
        QToolTip::showText(help->globalPos(), Qt::convertFromPlainText(hint), viewport(),
                           wordRect(place.Line, place.Word));
    }
    return true;
}

} // namespace lumora
