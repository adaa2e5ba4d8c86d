#include "widgets/querypanelwidget.h"

#include "panel/Vquerpnl.h"
#include "panel/word_editors.h"
#include "widgets/panelmenu.h"
#include "widgets/querypanelaccessible.h"
#include "widgets/querypanelpainter.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QHelpEvent>
#include <QPainter>
#include <QScrollBar>
#include <QTextDocument>
#include <QToolTip>

#include <algorithm>

namespace lumora {

namespace {

constexpr int dragScrollInterval = 30; // milliseconds
constexpr int dragScrollZone = 24;     // pixels from the edge where scrolling begins
constexpr int scrollMargin = 6;        // left beside a word that comes into view

TShiftState toShiftState(Qt::KeyboardModifiers modifiers) {
    TShiftState state;
    if (modifiers & Qt::ShiftModifier)
        state.Include(ssShift);
    if (modifiers & Qt::AltModifier)
        state.Include(ssAlt);
    if (modifiers & Qt::ControlModifier)
        state.Include(ssCtrl);
    return state;
}

int toPanelKey(int key) {
    switch (key) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return keyEnter;
    case Qt::Key_Left:
        return keyLeft;
    case Qt::Key_Up:
        return keyUp;
    case Qt::Key_Right:
        return keyRight;
    case Qt::Key_Down:
        return keyDown;
    case Qt::Key_Insert:
        return keyInsert;
    case Qt::Key_Delete:
        return keyDelete;
    default:
        return 0;
    }
}

bool isSame(const TWordPlace& a, const TWordPlace& b) {
    return a.Line == b.Line && a.Word == b.Word;
}

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
        layout_ = std::make_unique<TPanelLayout>(*panel, measurer_);
    verticalScrollBar()->setValue(0);
    horizontalScrollBar()->setValue(0);
    rowsChanged();
}

// --- Places.

QPoint QueryPanelWidget::scrolled() const {
    return {horizontalScrollBar()->value(), verticalScrollBar()->value()};
}

QRect QueryPanelWidget::toViewport(const TRect& rect) const {
    return QRect(rect.Left, rect.Top, rect.Right - rect.Left, rect.Bottom - rect.Top).translated(-scrolled());
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
    const QPoint point = position + scrolled();
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
    if (const QRect word = wordRect(place.Line, place.Word); !word.isEmpty()) {
        if (word.right() + scrollMargin > viewport()->width())
            horizontal->setValue(horizontal->value() + word.right() + scrollMargin - viewport()->width());
        if (const int left = wordRect(place.Line, place.Word).left(); left < scrollMargin)
            horizontal->setValue(horizontal->value() + left - scrollMargin);
    }
}

void QueryPanelWidget::tellCurrent() {
    const TFilterRow* const row = panel() ? panel()->GetCurrentRow() : nullptr;
    const int word = row ? panel()->GetKeyboard().GetCurControl() : -1;
    if (row == toldRow_ && word == toldWord_)
        return;
    toldRow_ = row;
    toldWord_ = word;
    if (hasFocus())
        tellFocus(*this);
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

// --- Editors and menus.

void QueryPanelWidget::openEditor(TFilterRow& row, int word) {
    closeWindows();
    updateNow();
    const std::vector<TScreenWord> words = ScreenWords(*panel(), row);
    if (word < 0 || word >= static_cast<int>(words.size()))
        return;
    const TWordRole role = words[static_cast<std::size_t>(word)].Role;
    const int value = words[static_cast<std::size_t>(word)].Value;
    scrollToCurrent();
    TWordEditor editor(*panel(), row, role, value);
    TDropDownContent content = editor.GetContent();
    if (content.Kind == ddDialog) {
        attempt([&editor] { editor.RunDialog(); });
        return;
    }
    const QRect rect = wordRect(layout_->LineOfRow(&row), word);
    popup_ = DropDownPopup::open(this, QRect(viewport()->mapToGlobal(rect.topLeft()), rect.size()),
                                 std::move(content), images_);
    if (!popup_)
        return;
    openRow_ = &row;
    connect(popup_, &DropDownPopup::accepted, this,
            [this, editor](const TDropDownResult& answer) { acceptAnswer(editor, answer); });
    connect(popup_, &DropDownPopup::cancelled, this, [this] {
        popup_.clear();
        openRow_ = nullptr;
        viewport()->update();
    });
    connect(popup_, &DropDownPopup::tabbed, this, &QueryPanelWidget::goToNextWord);
    viewport()->update();
}

void QueryPanelWidget::acceptAnswer(TWordEditor editor, const TDropDownResult& answer) {
    if (!panel() || !popup_)
        return;
    std::vector<TDropDownItem> items = popup_->content().Items;
    popup_.clear();
    openRow_ = nullptr;
    viewport()->update();
    attempt([&] {
        std::string reason;
        if (answer.Answer == daText) {
            reason = editor.AcceptText(answer.Text);
        } else if (answer.Answer == daItem) {
            reason = editor.AcceptItem(items.at(static_cast<std::size_t>(answer.Item)));
        } else {
            for (TDropDownItem& item : items)
                item.Checked = false;
            for (const int checked : answer.Checks)
                items.at(static_cast<std::size_t>(checked)).Checked = true;
            reason = editor.AcceptChecked(items);
        }
        if (!reason.empty())
            throw Exception(reason);
    });
}

void QueryPanelWidget::goToNextWord(bool forward) {
    if (!panel())
        return;
    TPanelKeyboard& keyboard = panel()->GetKeyboard();
    const bool hasMoved = forward ? keyboard.NextCurControl() : keyboard.PrevCurControl();
    viewport()->update();
    if (TFilterRow* const row = panel()->GetCurrentRow(); hasMoved && row)
        attempt([&] { panel()->ClickWord(*row, panel()->GetKeyboard().GetCurControl()); });
}

void QueryPanelWidget::openMenu(const TPopupMenu& menu, const TFilterRow& row, int word,
                                const std::function<void(const TMenuItem&)>& choose) {
    closeWindows();
    updateNow();
    menu_ = new QMenu(this);
    // It goes after the answer that follows.
    connect(menu_, &QMenu::aboutToHide, this, [this, menu = menu_.data()] {
        menu->deleteLater();
        if (menu_ == menu)
            menu_.clear();
        viewport()->update();
    });
    const TFilterRow* const target = &row;
    fillMenu(*menu_, menu.Items, [this, target, choose](const TMenuItem& item) {
        if (panel() && panel()->HasRow(target))
            attempt([&] { choose(item); });
    });
    openRow_ = target;
    const int line = layout_->LineOfRow(&row);
    const QRect rect = wordRect(line, word);
    const bool isAtPointer = rect.isEmpty() && viewport()->underMouse();
    menu_->popup(isAtPointer ? QCursor::pos()
                             : viewport()->mapToGlobal(rect.isEmpty() ? lineRect(line).bottomLeft()
                                                                      : rect.bottomLeft() + QPoint(0, 1)));
}

void QueryPanelWidget::showRowMenu(TFilterRow& row, int word, TPopupMenu& menu) {
    openMenu(menu, row, word, [this, &row](const TMenuItem& item) {
        panel()->SetCurrentRow(&row);
        panel()->MenuItemClick(item);
    });
}

void QueryPanelWidget::showValueMenu(TFilterRow& row, int word, TPopupMenu& menu) {
    const std::vector<TScreenWord> words = ScreenWords(*panel(), row);
    const int value = words.at(static_cast<std::size_t>(word)).Value;
    openMenu(menu, row, word, [this, &row, value](const TMenuItem& item) {
        panel()->ValueMenuItemClick(item, static_cast<TFilterCond&>(row), value);
    });
}

void QueryPanelWidget::closeWindows() {
    openRow_ = nullptr;
    if (popup_) {
        popup_->disconnect(this);
        popup_->cancel();
        popup_.clear();
    }
    if (menu_) {
        menu_->close();
        menu_.clear();
    }
}

void QueryPanelWidget::clickWord(int line, int word) {
    if (!layout_)
        return;
    attempt([&] {
        if (TFilterRow* const row = layout_->RowOfLine(line))
            panel()->ClickWord(*row, word);
        else if (layout_->IsAddLine(line) && word >= 0)
            panel()->AddRowLabelMouseDown();
    });
}

// Beside all lines the menu is that of the whole query.
void QueryPanelWidget::showMenu(int line, int word) {
    if (!panel() || !panel()->GetRootBracket())
        return;
    TFilterRow* const row = layout_->RowOfLine(line);
    attempt([&] { panel()->ContextMenu(row ? *row : *panel()->GetRootBracket(), row ? word : -1); });
}

void QueryPanelWidget::makeCurrent(int line, int word) {
    TFilterRow* const row = layout_ ? layout_->RowOfLine(line) : nullptr;
    if (!row)
        return;
    panel()->SetCurrentRow(row);
    panel()->GetKeyboard().SetCurControl(word);
    rowChanged(*row);
    scrollToCurrentSoon();
}

// --- Painting.

void QueryPanelWidget::paintEvent(QPaintEvent* event) {
    if (!layout_)
        return;
    QPainter painter(viewport());
    painter.setFont(font());
    const QRect area = event->rect().translated(scrolled());
    painter.translate(-scrolled());
    const TWordPlace current = currentPlace();
    PanelHighlights highlights;
    highlights.Hovered = drag_.isActive() ? TWordPlace() : hovered_;
    highlights.Pressed = pressed_;
    highlights.FocusedWord = current.Word;
    highlights.HasFocus = hasFocus() || popup_ || menu_;
    highlights.IsEnabled = isEnabled();
    highlights.DropMark = drag_.mark();
    highlights.Dragged = drag_.row();
    QueryPanelPainter panelPainter(painter, palette(), panel()->GetAppearance(), highlights);
    const int top = area.top() - layout_->GetLineHeight();
    const int bottom = area.bottom() + 3;
    panelPainter.paintGuides(layout_->GuideLines(top, bottom));
    const int left = scrolled().x();
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
    viewport()->scroll(dx, dy);
    updateHovered();
}

void QueryPanelWidget::changeEvent(QEvent* event) {
    QAbstractScrollArea::changeEvent(event);
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

// --- Keyboard.

void QueryPanelWidget::keyPressEvent(QKeyEvent* event) {
    if (drag_.isActive()) {
        if (event->key() == Qt::Key_Escape)
            endDrag(false);
        return;
    }
    if (handlePanelKey(event) || handleScreenKey(event))
        return;
    if (event->key() == Qt::Key_PageUp || event->key() == Qt::Key_PageDown)
        return QAbstractScrollArea::keyPressEvent(event);
    event->ignore();
}

bool QueryPanelWidget::handlePanelKey(QKeyEvent* event) {
    const int key = toPanelKey(event->key());
    if (!panel() || key == 0)
        return false;
    bool isHandled = true; // also when it cannot be done
    if (!attempt([&] { isHandled = panel()->KeyDown(key, toShiftState(event->modifiers())); }))
        return true;
    if (isHandled && panel())
        scrollToCurrentSoon();
    return isHandled;
}

bool QueryPanelWidget::handleScreenKey(QKeyEvent* event) {
    if (!panel() || !panel()->GetActive() || !panel()->GetAppearance().GetOptions().Contains(aoAllowKeyboard))
        return false;
    const int linesInView =
        std::max(1, viewport()->height() / (layout_->GetLineHeight() + panel()->GetRowSpace()) - 1);
    switch (event->key()) {
    case Qt::Key_Space:
        pressCurrent();
        return true;
    case Qt::Key_PageUp:
        moveByLines(-linesInView);
        return true;
    case Qt::Key_PageDown:
        moveByLines(linesInView);
        return true;
    case Qt::Key_Home:
        moveByLines(-lineCount());
        return true;
    case Qt::Key_End:
        moveByLines(lineCount());
        return true;
    default:
        return false;
    }
}

// The check box of the current row, or its button where rows have none.
void QueryPanelWidget::pressCurrent() {
    const TPlacedLine current = line(currentPlace().Line);
    int button = -1;
    for (std::size_t i = 0; i < current.Words.size(); ++i) {
        const TWordAction action = current.Words[i].Word.Action;
        if (action == waToggle || (action == waRowMenu && button < 0))
            button = static_cast<int>(i);
    }
    if (button >= 0)
        clickWord(current.Line, button);
}

void QueryPanelWidget::moveByLines(int by) {
    const int last = layout_->IsAddLine(lineCount() - 1) ? lineCount() - 2 : lineCount() - 1;
    const int from = std::max(0, currentPlace().Line);
    makeCurrent(std::clamp(from + by, 0, std::max(0, last)));
}

void QueryPanelWidget::focusInEvent(QFocusEvent* event) {
    QAbstractScrollArea::focusInEvent(event);
    viewport()->update();
    tellFocus(*this);
}

void QueryPanelWidget::focusOutEvent(QFocusEvent* event) {
    QAbstractScrollArea::focusOutEvent(event);
    viewport()->update();
}

void QueryPanelWidget::hideEvent(QHideEvent* event) {
    endDrag(false);
    closeWindows();
    QAbstractScrollArea::hideEvent(event);
}

// --- Mouse.

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
    if (!isWord)
        clickWord(pressed_.Line, -1);
    viewport()->update(lineRect(pressed_.Line));
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

void QueryPanelWidget::mouseDoubleClickEvent(QMouseEvent* event) {
    const TWordPlace place = placeAt(event->pos());
    TFilterRow* const row = layout_ ? layout_->RowOfLine(place.Line) : nullptr;
    if (event->button() == Qt::LeftButton && row && place.Word >= 0)
        attempt([&] { panel()->DblClickWord(*row, place.Word); });
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
    horizontalScrollBar()->setValue(horizontalScrollBar()->value() - pixels.x());
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
    const QPoint point = position + scrolled();
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
