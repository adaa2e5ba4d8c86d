// The mouse on a panel's widget: clicks, what the pointer is over, and dragging rows.
#include "lumora/lumora.h"
#include "lumora/widgets/querypanelwidget.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QMouseEvent>
#include <QScrollBar>

#include <algorithm>

namespace lumora {

namespace {

constexpr int dragScrollInterval = 30; // milliseconds
constexpr int dragScrollZone = 24;     // pixels from the edge where scrolling begins

bool isSame(const TWordPlace& a, const TWordPlace& b) {
    return a.Line == b.Line && a.Word == b.Word;
}

} // namespace

void QueryPanelWidget::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || drag_.isActive())
        return;
    pressed_ = placeAt(event->pos());
    pressPosition_ = event->pos();
    if (pressed_.Line < 0)
        return;
    const TPlacedLine placed = line(pressed_.Line);
    const bool isWord =
        pressed_.Word >= 0 && placed.Words[static_cast<std::size_t>(pressed_.Word)].Word.IsClickable();
    viewport()->update(lineRect(pressed_.Line));
    if (!isWord)
        clickWord(pressed_.Line, -1);
}

void QueryPanelWidget::mouseMoveEvent(QMouseEvent* event) {
    if (drag_.isActive())
        return dragTo(event->pos());
    if (!(event->buttons() & Qt::LeftButton))
        return setHovered(placeAt(event->pos()));
    const bool isFar = (event->pos() - pressPosition_).manhattanLength() >= QApplication::startDragDistance();
    if (!isFar || !canDragFrom(pressed_))
        return;
    const int from = pressed_.Line;
    pressed_ = {};
    makeCurrent(from);
    drag_.begin(*panel(), *layout_->RowOfLine(from));
    dragTimer_ = startTimer(dragScrollInterval);
    viewport()->setCursor(Qt::ClosedHandCursor);
    dragTo(event->pos());
}

void QueryPanelWidget::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton)
        return;
    if (drag_.isActive()) {
        dragTo(event->pos());
        return endDrag(true);
    }
    const TWordPlace pressed = pressed_;
    pressed_ = {};
    updatePlace(pressed);
    if (pressed.Word < 0 || !isSame(pressed, placeAt(event->pos())))
        return;
    if (line(pressed.Line).Words[static_cast<std::size_t>(pressed.Word)].Word.IsClickable())
        clickWord(pressed.Line, pressed.Word);
}

// Except on a value, it is one more press: a check box that is clicked fast switches each time.
void QueryPanelWidget::mouseDoubleClickEvent(QMouseEvent* event) {
    const TWordPlace place = placeAt(event->pos());
    const TPlacedLine placed = line(place.Line);
    const bool isValue = placed.Row && place.Word >= 0 &&
                         placed.Words[static_cast<std::size_t>(place.Word)].Word.Role == wrValue;
    if (!isValue)
        return mousePressEvent(event);
    if (event->button() == Qt::LeftButton)
        attempt([&] { panel()->DblClickWord(*placed.Row, place.Word); });
}

void QueryPanelWidget::contextMenuEvent(QContextMenuEvent* event) {
    if (drag_.isActive())
        return;
    if (event->reason() == QContextMenuEvent::Keyboard) {
        const TWordPlace place = currentPlace();
        return showMenu(place.Line, place.Word);
    }
    const TWordPlace place = placeAt(event->pos());
    showMenu(place.Line, place.Word);
}

// A touchpad tells the pixels themselves.
void QueryPanelWidget::wheelEvent(QWheelEvent* event) {
    const QPoint pixels = event->pixelDelta();
    if (pixels.isNull())
        return QAbstractScrollArea::wheelEvent(event);
    verticalScrollBar()->setValue(verticalScrollBar()->value() - pixels.y());
    const int along = isMirrored() ? -pixels.x() : pixels.x();
    horizontalScrollBar()->setValue(horizontalScrollBar()->value() - along);
    event->accept();
}

void QueryPanelWidget::setHovered(TWordPlace place) {
    const TPlacedLine placed = line(place.Line);
    const bool isLink =
        place.Word >= 0 && placed.Words[static_cast<std::size_t>(place.Word)].Word.IsClickable();
    if (!isLink)
        place.Word = -1;
    if (!drag_.isActive())
        viewport()->setCursor(isLink ? Qt::PointingHandCursor : Qt::ArrowCursor);
    if (isSame(place, hovered_))
        return;
    updatePlace(hovered_);
    hovered_ = place;
    updatePlace(hovered_);
}

// The lines have moved under the pointer.
void QueryPanelWidget::updateHovered() {
    const QPoint position = viewport()->mapFromGlobal(QCursor::pos());
    const bool isInside = viewport()->underMouse() && viewport()->rect().contains(position);
    setHovered(isInside ? placeAt(position) : TWordPlace());
}

void QueryPanelWidget::updatePlace(const TWordPlace& place) {
    if (place.Word >= 0)
        viewport()->update(wordRect(place.Line, place.Word).adjusted(-2, -2, 2, 2));
}

// --- Dragging: by a row's button, or by where it has no word to click.

bool QueryPanelWidget::canDragFrom(const TWordPlace& place) const {
    const TPlacedLine placed = line(place.Line);
    if (!placed.Row || !placed.Row->GetParent())
        return false;
    if (place.Word < 0)
        return true;
    const TWordAction action = placed.Words[static_cast<std::size_t>(place.Word)].Word.Action;
    return action == waNone || action == waRowMenu;
}

void QueryPanelWidget::dragTo(const QPoint& position) {
    const QPoint point = toContent(position);
    if (!layout_ || !drag_.moveTo(*layout_, *panel(), point.x(), point.y()))
        return endDrag(false);
    viewport()->setCursor(drag_.mark().Right > drag_.mark().Left ? Qt::ClosedHandCursor
                                                                 : Qt::ForbiddenCursor);
    viewport()->update();
}

void QueryPanelWidget::endDrag(bool drop) {
    pressed_ = {};
    if (dragTimer_ == 0)
        return;
    killTimer(dragTimer_);
    dragTimer_ = 0;
    viewport()->unsetCursor();
    viewport()->update();
    if (drop && panel() && !attempt([this] { drag_.drop(*panel()); }))
        return;
    drag_.cancel();
    scrollToCurrentSoon();
}

void QueryPanelWidget::timerEvent(QTimerEvent* event) {
    if (event->timerId() == dragTimer_)
        scrollWhileDragging();
    else
        QAbstractScrollArea::timerEvent(event);
}

void QueryPanelWidget::scrollWhileDragging() {
    const QPoint position = viewport()->mapFromGlobal(QCursor::pos());
    const int above = dragScrollZone - position.y();
    const int below = position.y() - (viewport()->height() - dragScrollZone);
    const int by = above > 0 ? -above : std::max(0, below);
    QScrollBar* const bar = verticalScrollBar();
    const int before = bar->value();
    bar->setValue(before + std::clamp(by, -2 * dragScrollZone, 2 * dragScrollZone));
    if (bar->value() != before)
        dragTo(position);
}

} // namespace lumora
