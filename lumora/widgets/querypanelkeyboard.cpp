// The keyboard on a panel's widget: most keys are the panel's, some move over the screen.
#include "lumora/lumora.h"
#include "lumora/widgets/querypanelaccessible.h"
#include "lumora/widgets/querypanelwidget.h"

#include <QKeyEvent>
#include <QTextDocument>
#include <QToolTip>

#include <algorithm>

namespace lumora {

namespace {

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

// The panel's "left" is towards where lines begin.
int toPanelKey(int key, bool isMirrored) {
    switch (key) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return keyEnter;
    case Qt::Key_Left:
        return isMirrored ? keyRight : keyLeft;
    case Qt::Key_Up:
        return keyUp;
    case Qt::Key_Right:
        return isMirrored ? keyLeft : keyRight;
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

} // namespace

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
    const int key = toPanelKey(event->key(), isMirrored());
    if (!panel() || key == 0)
        return false;
    bool isHandled = true; // also when it cannot be done
    if (!attempt([&] { isHandled = panel()->KeyDown(key, toShiftState(event->modifiers())); }))
        return true;
    if (isHandled && panel()) {
        scrollToCurrentSoon();
        if (key >= keyLeft && key <= keyDown)
            showProblem();
    }
    return isHandled;
}

// Who does not use the mouse is told as well what is wrong with a word.
void QueryPanelWidget::showProblem() {
    updateNow();
    const TWordPlace place = currentPlace();
    const TPlacedLine placed = line(place.Line);
    const auto word = static_cast<std::size_t>(place.Word); // -1: none
    if (word >= placed.Words.size() || placed.Words[word].Word.State != rsWrong)
        return QToolTip::hideText();
    const QString problem = QString::fromStdString(placed.Words[word].Word.Problem);
    QToolTip::showText(viewport()->mapToGlobal(wordRect(place.Line, place.Word).bottomLeft()),
                       Qt::convertFromPlainText(problem), viewport());
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
    case Qt::Key_F10: // not every platform takes it for the menu key
        if (event->modifiers() != Qt::ShiftModifier)
            return false;
        showMenu(currentPlace().Line, currentPlace().Word);
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

} // namespace lumora
