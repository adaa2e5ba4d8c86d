#include "lumora/widgets/dropdownpopup.h"

#include "lumora/widgets/dropdownpage.h"
#include "lumora/widgets/linkcolor.h"

#include <QAccessible>
#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QPointer>
#include <QScreen>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>

namespace lumora {

namespace {

constexpr int padding = 6;

constexpr int messageWidth = 320; // a longer reason takes several lines

bool opensEditor(TDropDownKind kind) {
    return kind != ddNone && kind != ddDialog;
}

} // namespace

DropDownPopup* DropDownPopup::open(QWidget* anchor, const QRect& globalRect, TDropDownContent content,
                                   const QList<QIcon>& images) {
    return open(anchor, globalRect, std::make_shared<TDropDownEditor>(std::move(content)), images);
}

DropDownPopup* DropDownPopup::open(QWidget* anchor, const QRect& globalRect,
                                   std::shared_ptr<TDropDownEditor> editor, const QList<QIcon>& images) {
    if (!editor || !opensEditor(editor->GetKind()))
        return nullptr;
    auto* const popup = new DropDownPopup(anchor, globalRect, std::move(editor), images);
    popup->show();
    if (popup->page_)
        popup->page_->input()->setFocus(Qt::PopupFocusReason);
    else
        popup->setFocus(Qt::PopupFocusReason);
    return popup;
}

DropDownPopup::DropDownPopup(QWidget* anchor, const QRect& globalRect,
                             std::shared_ptr<TDropDownEditor> editor, const QList<QIcon>& images)
    : QWidget(anchor, Qt::Popup),
      editor_(std::move(editor)),
      images_(images),
      anchorRect_(globalRect),
      layout_(new QVBoxLayout(this)),
      message_(new QLabel(this)) {
    setContentsMargins(1, 1, 1, 1);
    setAttribute(Qt::WA_WindowPropagation);
    setBackgroundRole(QPalette::Base);
    setAutoFillBackground(true);
    setFocusPolicy(Qt::StrongFocus);
    setAccessibleName(tr("Choose a value"));
    layout_->setContentsMargins(padding, padding, padding, padding);
    layout_->setSpacing(padding);
    layout_->addWidget(message_);
    message_->setWordWrap(true);
    message_->setForegroundRole(QPalette::Text);
    message_->setTextFormat(Qt::PlainText);
    message_->hide();
    if (editor_->NeedsLoading()) {
        isLoading_ = true;
        showMessage(tr("Reading the values..."), false);
    } else {
        showPage();
    }
    place();
}

DropDownPopup::~DropDownPopup() = default;

bool DropDownPopup::accept() {
    return acceptAnd(false, true);
}

void DropDownPopup::cancel() {
    finish(nullptr, false, true);
}

void DropDownPopup::dismiss() {
    const TDropDownKind kind = editor_->GetKind();
    const bool keepsChanges = !editor_->HasItems() || kind == ddCheckList;
    const bool isWhole = page_ && page_->refusal().isEmpty();
    if (keepsChanges && isWhole && editor_->IsChanged())
        if (const auto result = editor_->Accept())
            return finish(&*result, false, true);
    cancel();
}

bool DropDownPopup::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress &&
        handleKey(qobject_cast<QWidget*>(watched), static_cast<QKeyEvent*>(event)))
        return true;
    return QWidget::eventFilter(watched, event);
}

bool DropDownPopup::focusNextPrevChild(bool next) {
    acceptAnd(true, next);
    return true;
}

void DropDownPopup::keyPressEvent(QKeyEvent* event) {
    if (!handleKey(this, event))
        QWidget::keyPressEvent(event);
}

void DropDownPopup::mousePressEvent(QMouseEvent* event) {
    if (rect().contains(event->pos()))
        return;
    // A click on what opened it closes it, and must not open it again.
    if (anchorRect_.contains(event->globalPosition().toPoint()))
        setAttribute(Qt::WA_NoMouseReplay);
    dismiss();
}

void DropDownPopup::closeEvent(QCloseEvent* event) {
    if (!isFinished_)
        dismiss();
    QWidget::closeEvent(event);
}

// Reading the items holds up everything, so what says that they are being read must be on the screen first.
void DropDownPopup::paintEvent(QPaintEvent*) {
    // Frames of styles are darker than the ground, which on a dark one cannot be seen.
    QPainter painter(this);
    QColor frame = palette().color(QPalette::Text);
    frame.setAlpha(90);
    painter.setPen(frame);
    painter.drawRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5));
    if (isLoading_) {
        isLoading_ = false;
        QTimer::singleShot(0, this, &DropDownPopup::load);
    }
}

void DropDownPopup::showPage() {
    page_ = makeDropDownPage(*editor_, images_, this);
    layout_->insertWidget(0, page_);
    for (QWidget* const part : page_->findChildren<QWidget*>())
        if (part->focusPolicy() != Qt::NoFocus)
            part->installEventFilter(this);
    connect(page_, &DropDownPage::chosen, this, &DropDownPopup::accept);
    connect(page_, &DropDownPage::edited, this, [this] {
        if (!message_->isHidden())
            showMessage({}, false);
    });
}

void DropDownPopup::load() {
    if (isFinished_)
        return;
    const QPointer<DropDownPopup> self(this);
    QApplication::setOverrideCursor(Qt::WaitCursor);
    const bool isLoaded = editor_->Load();
    QApplication::restoreOverrideCursor();
    if (!self || isFinished_)
        return;
    // An open list takes a typed text, whatever became of its items.
    if (isLoaded || editor_->GetContent().IsOpenList)
        showPage();
    showMessage(QString::fromStdString(editor_->GetError()), true);
    if (page_) {
        page_->show();
        page_->input()->setFocus(Qt::PopupFocusReason);
        place();
    }
}

void DropDownPopup::showMessage(const QString& text, bool isError) {
    QPalette colors = palette();
    if (isError)
        colors.setColor(QPalette::Text, errorColor(colors));
    message_->setPalette(colors);
    message_->setText(text);
    // A label that may wrap is narrow unless it is told otherwise.
    const int length = message_->fontMetrics().horizontalAdvance(text) + 2;
    message_->setMinimumWidth(std::min(length, messageWidth));
    message_->setVisible(!text.isEmpty());
    if (isError && !text.isEmpty()) {
        QAccessibleEvent alert(message_, QAccessible::Alert);
        QAccessible::updateAccessibility(&alert);
    }
    place();
}

// Below the anchor, above it where there is more room, and always on its screen.
void DropDownPopup::place() {
    const QScreen* screen = QGuiApplication::screenAt(anchorRect_.center());
    if (!screen)
        screen = this->screen();
    const QRect area = screen->availableGeometry();
    layout_->activate();
    QSize size = layout_->totalSizeHint().expandedTo(QSize(anchorRect_.width(), 0)).boundedTo(area.size());
    if (layout_->hasHeightForWidth())
        size.setHeight(std::min(layout_->totalHeightForWidth(size.width()), area.height()));
    const bool isRightToLeft = layoutDirection() == Qt::RightToLeft;
    int x = isRightToLeft ? anchorRect_.right() + 1 - size.width() : anchorRect_.left();
    int y = anchorRect_.bottom() + 1;
    const int above = anchorRect_.top() - size.height();
    if (y + size.height() > area.bottom() + 1 && anchorRect_.top() - area.top() > area.bottom() - y)
        y = above;
    x = std::clamp(x, area.left(), area.right() + 1 - size.width());
    y = std::clamp(y, area.top(), area.bottom() + 1 - size.height());
    setGeometry(QRect(QPoint(x, y), size));
}

bool DropDownPopup::acceptAnd(bool isTabbed, bool forward) {
    if (isFinished_)
        return true;
    if (!page_ || isLoading_)
        return false;
    page_->commit();
    const QString refusal = page_->refusal();
    const auto result = refusal.isEmpty() ? editor_->Accept() : std::nullopt;
    if (result) {
        finish(&*result, isTabbed, forward);
        return true;
    }
    const QString reason = refusal.isEmpty() ? QString::fromStdString(editor_->GetError()) : refusal;
    // Tab over a list that nothing was chosen from passes it by.
    if (reason.isEmpty() && isTabbed) {
        finish(nullptr, true, forward);
        return true;
    }
    showMessage(reason, true);
    return false;
}

void DropDownPopup::finish(const TDropDownResult* result, bool isTabbed, bool forward) {
    if (isFinished_)
        return;
    isFinished_ = true;
    hide();
    // Not at once: where a popup is the window with the keyboard, its end would close one that opens now.
    QTimer::singleShot(0, this, &QObject::deleteLater);
    // A slot may free the anchor, and this with it.
    const QPointer<DropDownPopup> self(this);
    const auto editor = editor_;
    if (!result)
        emit cancelled();
    else if (result->Answer == daItem)
        emit acceptedItem(result->Item);
    else if (result->Answer == daText)
        emit acceptedText(QString::fromStdString(result->Text));
    else
        emit acceptedChecks(QList<int>(result->Checks.begin(), result->Checks.end()));
    if (self && result)
        emit accepted(*result);
    if (self && isTabbed)
        emit tabbed(forward);
    if (self)
        emit finished();
}

bool DropDownPopup::handleKey(QWidget* receiver, QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_Escape:
        cancel();
        return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        acceptAnd(false, true);
        return true;
    case Qt::Key_Tab:
        acceptAnd(true, true);
        return true;
    case Qt::Key_Backtab:
        acceptAnd(true, false);
        return true;
    default:
        return page_ && receiver != this && page_->handleKey(receiver, event);
    }
}

} // namespace lumora
