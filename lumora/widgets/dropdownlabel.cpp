#include "lumora/widgets/dropdownlabel.h"

#include "lumora/widgets/linkcolor.h"

#include <QAccessibleWidget>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QStyle>

#include <algorithm>

namespace lumora {

namespace {

constexpr int sidePadding = 3;
constexpr int topPadding = 2;

class AccessibleDropDownLabel : public QAccessibleWidget {
public:
    explicit AccessibleDropDownLabel(DropDownLabel* label)
        : QAccessibleWidget(label, QAccessible::ButtonMenu), label_(label) {}

    QString text(QAccessible::Text kind) const override {
        if (kind == QAccessible::Value)
            return label_->text();
        if (kind != QAccessible::Name || !label_->accessibleName().isEmpty())
            return QAccessibleWidget::text(kind);
        return label_->shownText();
    }
    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.hasPopup = true;
        state.expandable = true;
        state.expanded = label_->isOpen();
        state.collapsed = !label_->isOpen();
        return state;
    }
    QStringList actionNames() const override {
        return label_->isEnabled() ? QStringList{showMenuAction(), pressAction()} : QStringList();
    }
    void doAction(const QString& name) override {
        if (name == showMenuAction() || name == pressAction())
            label_->openEditor();
        else
            QAccessibleWidget::doAction(name);
    }

private:
    DropDownLabel* label_;
};

QAccessibleInterface* makeAccessible(const QString&, QObject* object) {
    auto* const label = qobject_cast<DropDownLabel*>(object);
    return label ? new AccessibleDropDownLabel(label) : nullptr;
}

} // namespace

DropDownLabel::DropDownLabel(QWidget* parent) : QWidget(parent) {
    static const bool isInstalled = (QAccessible::installFactory(makeAccessible), true);
    Q_UNUSED(isInstalled)
    label_.OnInvalidate = [this] { update(); };
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    setCursor(Qt::PointingHandCursor);
}

DropDownLabel::DropDownLabel(const QString& text, TDropDownContent content, QWidget* parent)
    : DropDownLabel(parent) {
    setText(text);
    setContent(std::move(content));
}

DropDownLabel::~DropDownLabel() {
    label_.OnInvalidate = nullptr;
}

QString DropDownLabel::text() const {
    return QString::fromStdString(label_.GetCaption());
}

void DropDownLabel::setText(const QString& text) {
    if (text == this->text())
        return;
    label_.SetCaption(text.toStdString());
    textHasChanged();
}

QString DropDownLabel::shownText() const {
    if (label_.ShowsPrompt() && label_.GetContent().Prompt.empty() && !prompt_.isEmpty())
        return prompt_;
    const std::string_view shown = label_.GetShownText();
    return QString::fromUtf8(shown.data(), static_cast<qsizetype>(shown.size()));
}

void DropDownLabel::setPrompt(const QString& prompt) {
    prompt_ = prompt;
    updateGeometry();
    update();
}

QColor DropDownLabel::color() const {
    return toQColor(label_.GetColor());
}

void DropDownLabel::setColor(const QColor& color) {
    label_.SetColor(fromQColor(color));
}

void DropDownLabel::setContent(TDropDownContent content) {
    label_.SetContent(std::move(content));
    updateGeometry();
}

QSize DropDownLabel::sizeHint() const {
    const QFontMetrics metrics(font());
    return {metrics.horizontalAdvance(shownText()) + 2 * sidePadding, metrics.height() + 2 * topPadding};
}

QSize DropDownLabel::minimumSizeHint() const {
    const int few = fontMetrics().averageCharWidth() * 3 + 2 * sidePadding;
    return {std::min(few, sizeHint().width()), sizeHint().height()};
}

void DropDownLabel::openEditor() {
    if (!isEnabled() || isOpen())
        return;
    emit aboutToOpen();
    if (label_.CanOpen() && label_.GetContent().Kind == ddDialog)
        return emit dialogRequested();
    const std::shared_ptr<TDropDownEditor> editor = label_.Open();
    const QRect below = textRect().adjusted(0, -1, 0, 1);
    popup_ = DropDownPopup::open(this, QRect(mapToGlobal(below.topLeft()), below.size()), editor, images_);
    if (!popup_)
        return;
    connect(popup_, &DropDownPopup::accepted, this, &DropDownLabel::take);
    connect(popup_, &DropDownPopup::cancelled, this, [this] {
        popup_.clear();
        label_.Cancel();
        emit cancelled();
    });
    connect(popup_, &DropDownPopup::tabbed, this, [this](bool forward) { focusNextPrevChild(forward); });
}

bool DropDownLabel::event(QEvent* event) {
    if (event->type() == QEvent::Enter)
        label_.SetHovered(true);
    else if (event->type() == QEvent::Leave)
        label_.SetHovered(false);
    else if (event->type() == QEvent::ToolTip && toolTip().isEmpty() && width() < sizeHint().width())
        setToolTip(shownText());
    return QWidget::event(event);
}

void DropDownLabel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF frame = QRectF(textRect()).adjusted(0.75, 0.75, -0.75, -0.75);
    QColor accent = palette().color(QPalette::Highlight);
    if (label_.IsHot()) {
        painter.setPen(label_.IsFocused() ? QPen(accent, 1.5) : QPen(Qt::NoPen));
        QColor fill = accent;
        fill.setAlpha(label_.IsHovered() || label_.IsOpen() ? 48 : 0);
        painter.setBrush(fill);
        painter.drawRoundedRect(frame, 3, 3);
    }
    QFont underlined = font();
    underlined.setUnderline(isEnabled() && !label_.ShowsPrompt());
    painter.setFont(underlined);
    painter.setPen(textColor());
    const QRect inside = textRect().adjusted(sidePadding, 0, -sidePadding, 0);
    const bool fits = width() >= sizeHint().width();
    const QString text =
        fits ? shownText() : fontMetrics().elidedText(shownText(), Qt::ElideRight, inside.width());
    painter.drawText(inside, Qt::AlignVCenter | Qt::AlignLeading | Qt::TextSingleLine, text);
}

void DropDownLabel::changeEvent(QEvent* event) {
    if (event->type() == QEvent::EnabledChange)
        label_.SetEnabled(isEnabled());
    if (event->type() == QEvent::FontChange)
        updateGeometry();
    QWidget::changeEvent(event);
}

void DropDownLabel::focusInEvent(QFocusEvent* event) {
    label_.SetFocused(true);
    QWidget::focusInEvent(event);
}

// While its editor is open the label still counts as the place where one is.
void DropDownLabel::focusOutEvent(QFocusEvent* event) {
    label_.SetFocused(event->reason() == Qt::PopupFocusReason);
    QWidget::focusOutEvent(event);
}

void DropDownLabel::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
    case Qt::Key_Down:
    case Qt::Key_F4:
        return openEditor();
    default:
        QWidget::keyPressEvent(event);
    }
}

void DropDownLabel::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || !textRect().contains(event->pos()))
        return QWidget::mousePressEvent(event);
    setFocus(Qt::MouseFocusReason);
    openEditor();
}

// Where the word stands: a click beside it opens nothing.
QRect DropDownLabel::textRect() const {
    const QSize size = sizeHint().boundedTo(this->size());
    return QStyle::alignedRect(layoutDirection(), Qt::AlignLeft | Qt::AlignVCenter, size, rect());
}

QColor DropDownLabel::textColor() const {
    if (!isEnabled())
        return palette().color(QPalette::Disabled, QPalette::WindowText);
    return label_.ShowsPrompt() ? palette().color(QPalette::PlaceholderText)
                                : linkColor(label_.GetColor(), palette());
}

void DropDownLabel::take(const TDropDownResult& result) {
    popup_.clear();
    label_.Take(result);
    const QPointer<DropDownLabel> self(this);
    textHasChanged();
    if (!self)
        return;
    if (result.Answer == daItem)
        emit acceptedItem(result.Item);
    else if (result.Answer == daText)
        emit acceptedText(text());
    else
        emit acceptedChecks(QList<int>(result.Checks.begin(), result.Checks.end()));
}

void DropDownLabel::textHasChanged() {
    updateGeometry();
    QAccessibleEvent event(this, QAccessible::NameChanged);
    QAccessible::updateAccessibility(&event);
    emit textChanged(text());
}

} // namespace lumora
