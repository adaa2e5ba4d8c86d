#include "lumora/widgets/roundbuttonwidget.h"

#include "lumora/widgets/linkcolor.h"
#include "lumora/widgets/paintercanvas.h"

#include <QAccessibleWidget>
#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPointer>
#include <QShortcutEvent>

namespace lumora {

namespace {

class AccessibleRoundButton : public QAccessibleWidget {
public:
    explicit AccessibleRoundButton(RoundButtonWidget* button)
        : QAccessibleWidget(button, QAccessible::PushButton), button_(button) {}

    QString text(QAccessible::Text kind) const override {
        const bool isNamed = kind != QAccessible::Name || !button_->accessibleName().isEmpty();
        return isNamed ? QAccessibleWidget::text(kind) : button_->shownText();
    }
    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.pressed = button_->isDown();
        return state;
    }
    QStringList actionNames() const override {
        return button_->isEnabled() ? QStringList{pressAction()} + QAccessibleWidget::actionNames()
                                    : QStringList();
    }
    void doAction(const QString& name) override {
        if (name == pressAction())
            button_->click();
        else
            QAccessibleWidget::doAction(name);
    }

private:
    RoundButtonWidget* button_;
};

QAccessibleInterface* makeAccessible(const QString&, QObject* object) {
    auto* const button = qobject_cast<RoundButtonWidget*>(object);
    return button ? new AccessibleRoundButton(button) : nullptr;
}

TMouseButton toMouseButton(Qt::MouseButton button) {
    return button == Qt::LeftButton ? mbLeft : button == Qt::RightButton ? mbRight : mbMiddle;
}

} // namespace

RoundButtonWidget::RoundButtonWidget(QWidget* parent) : RoundButtonWidget(QString(), parent) {}

RoundButtonWidget::RoundButtonWidget(const QString& text, QWidget* parent) : QWidget(parent) {
    static const bool isInstalled = (QAccessible::installFactory(makeAccessible), true);
    Q_UNUSED(isInstalled)
    button_.SetHost(this);
    button_.OnClick = [this](TVRndBtn&) { emit clicked(); };
    button_.OnDblClick = [this](TVRndBtn&) { emit doubleClicked(); };
    button_.OnMouseDown = [this](TVRndBtn&, TMouseButton button, int, int) {
        if (button == mbLeft)
            emit pressed();
    };
    button_.OnMouseUp = [this](TVRndBtn&, TMouseButton button, int, int) {
        if (button == mbLeft)
            emit released();
    };
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Minimum, QSizePolicy::Fixed);
    setCursor(Qt::PointingHandCursor);
    setText(text);
    resize(button_.GetWidth(), button_.GetHeight());
}

RoundButtonWidget::~RoundButtonWidget() {
    button_.SetHost(nullptr);
}

QString RoundButtonWidget::text() const {
    return QString::fromStdString(button_.GetCaption());
}

void RoundButtonWidget::setText(const QString& text) {
    if (text == this->text())
        return;
    button_.SetCaption(text.toStdString());
    updateShortcut();
    updateGeometry();
    QAccessibleEvent event(this, QAccessible::NameChanged);
    QAccessible::updateAccessibility(&event);
    emit textChanged(text);
}

QString RoundButtonWidget::shownText() const {
    return QString::fromStdString(button_.GetShownCaption());
}

QColor RoundButtonWidget::overColor() const {
    return toQColor(button_.GetOverColor());
}

void RoundButtonWidget::setOverColor(const QColor& color) {
    button_.SetOverColor(fromQColor(color));
}

QColor RoundButtonWidget::pressedColor() const {
    return toQColor(button_.GetPressedColor());
}

void RoundButtonWidget::setPressedColor(const QColor& color) {
    button_.SetPressedColor(fromQColor(color));
}

QSize RoundButtonWidget::sizeHint() const {
    const QSize text(fontMetrics().horizontalAdvance(shownText()) + 10, fontMetrics().height() + 1);
    return autoSize() ? text : text.expandedTo(QSize(25, 18));
}

void RoundButtonWidget::click() {
    if (isEnabled())
        button_.Click();
}

bool RoundButtonWidget::event(QEvent* event) {
    if (event->type() == QEvent::Enter)
        button_.MouseEnter();
    else if (event->type() == QEvent::Leave)
        button_.MouseLeave();
    else if (event->type() == QEvent::Shortcut &&
             static_cast<QShortcutEvent*>(event)->shortcutId() == shortcut_) {
        click();
        return true;
    }
    return QWidget::event(event);
}

void RoundButtonWidget::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    {
        PainterCanvas canvas(painter, rect(), palette());
        // Silver under a light caption cannot be read.
        if (isDark(palette()) && button_.GetOverColor() == clSilver)
            canvas.replaceColor(clSilver, palette().color(QPalette::Window).lighter(190));
        button_.Paint(canvas);
    }
    if (!hasFocus())
        return;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(palette().color(QPalette::Highlight), 1.5));
    painter.setBrush(Qt::NoBrush);
    const double radius = isRounded() ? height() * 3 / 8.0 - 2 : 0;
    painter.drawRoundedRect(QRectF(rect()).adjusted(2, 2, -2, -2), radius, radius);
}

void RoundButtonWidget::changeEvent(QEvent* event) {
    if (event->type() == QEvent::EnabledChange)
        button_.SetEnabled(isEnabled());
    if (event->type() == QEvent::FontChange) {
        button_.ParentFontChanged();
        updateGeometry();
    }
    QWidget::changeEvent(event);
}

void RoundButtonWidget::resizeEvent(QResizeEvent*) {
    button_.SetBounds(0, 0, width(), height());
}

void RoundButtonWidget::focusOutEvent(QFocusEvent* event) {
    if (spaceHeld_) {
        spaceHeld_ = false;
        button_.MouseUp(mbLeft, -1, -1);
    }
    QWidget::focusOutEvent(event);
}

void RoundButtonWidget::keyPressEvent(QKeyEvent* event) {
    if (event->key() != Qt::Key_Space)
        return QWidget::keyPressEvent(event);
    if (event->isAutoRepeat() || spaceHeld_)
        return;
    spaceHeld_ = true;
    button_.MouseDown(mbLeft, 0, 0);
}

void RoundButtonWidget::keyReleaseEvent(QKeyEvent* event) {
    if (event->key() != Qt::Key_Space)
        return QWidget::keyReleaseEvent(event);
    if (event->isAutoRepeat() || !spaceHeld_)
        return;
    spaceHeld_ = false;
    button_.MouseUp(mbLeft, 0, 0);
}

void RoundButtonWidget::mousePressEvent(QMouseEvent* event) {
    button_.MouseDown(toMouseButton(event->button()), event->pos().x(), event->pos().y());
}

void RoundButtonWidget::mouseMoveEvent(QMouseEvent* event) {
    button_.MouseMove(event->pos().x(), event->pos().y());
}

void RoundButtonWidget::mouseReleaseEvent(QMouseEvent* event) {
    button_.MouseUp(toMouseButton(event->button()), event->pos().x(), event->pos().y());
}

void RoundButtonWidget::mouseDoubleClickEvent(QMouseEvent* event) {
    const QPointer<RoundButtonWidget> self(this);
    if (event->button() == Qt::LeftButton)
        button_.DblClick();
    if (self)
        mousePressEvent(event);
}

void RoundButtonWidget::Invalidate(TVRndBtn&) {
    update();
}

void RoundButtonWidget::BoundsChanged(TVRndBtn& button) {
    if (size() != QSize(button.GetWidth(), button.GetHeight()))
        resize(button.GetWidth(), button.GetHeight());
    if (button.GetAutoSize())
        updateGeometry();
}

bool RoundButtonWidget::IsUnderPointer(const TVRndBtn&) const {
    return isVisible() && QApplication::widgetAt(QCursor::pos()) == this;
}

TSize RoundButtonWidget::TextExtent(const TFont&, std::string_view text) const {
    const QString string = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
    return {fontMetrics().horizontalAdvance(string), fontMetrics().height()};
}

TColor RoundButtonWidget::ParentColor() const {
    const QWidget* const parent = parentWidget();
    return fromQColor(palette().color(parent ? parent->backgroundRole() : QPalette::Window));
}

void RoundButtonWidget::updateShortcut() {
    if (shortcut_ != 0)
        releaseShortcut(shortcut_);
    const QKeySequence keys = QKeySequence::mnemonic(text());
    shortcut_ = keys.isEmpty() ? 0 : grabShortcut(keys);
}

} // namespace lumora
