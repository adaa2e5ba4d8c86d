#include "lumora/widgets/choicedelegate.h"

#include "lumora/widgets/owndirection.h"

#include <QApplication>
#include <QComboBox>
#include <QPainter>
#include <QTimer>

#include <algorithm>

namespace lumora {

namespace {

int arrowWidth(const QStyleOptionViewItem& option) {
    return option.fontMetrics.height();
}

bool isChoice(const QModelIndex& index) {
    return index.flags().testFlag(Qt::ItemIsEditable);
}

} // namespace

// The text ends before the arrow; of a formula, which is no choice, both ends tell something.
void ChoiceDelegate::initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const {
    QStyledItemDelegate::initStyleOption(option, index);
    if (option->rect.width() <= 0)
        return; // only the size is asked for
    const int room = option->rect.width() - 8 - (isChoice(index) ? arrowWidth(*option) : 0);
    const Qt::TextElideMode mode = isChoice(index) ? Qt::ElideRight : Qt::ElideMiddle;
    option->text = inOwnDirection(option->fontMetrics.elidedText(option->text, mode, std::max(0, room)),
                                  option->direction);
}

void ChoiceDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                           const QModelIndex& index) const {
    QStyledItemDelegate::paint(painter, option, index);
    if (!isChoice(index))
        return;
    QStyleOption arrow = option;
    const int side = arrowWidth(option) * 2 / 3;
    const QRect end(option.rect.right() - side - 3, option.rect.center().y() - side / 2, side, side);
    arrow.rect = QStyle::visualRect(option.direction, option.rect, end);
    const QStyle& style = option.widget ? *option.widget->style() : *QApplication::style();
    style.drawPrimitive(QStyle::PE_IndicatorArrowDown, &arrow, painter, option.widget);
}

QSize ChoiceDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
    return QStyledItemDelegate::sizeHint(option, index) + QSize(arrowWidth(option) + 6, 0);
}

QWidget* ChoiceDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem&,
                                      const QModelIndex& index) const {
    auto* const box = new QComboBox(parent);
    for (const auto& [text, value] : choices_(index))
        box->addItem(text, value);
    auto* const self = const_cast<ChoiceDelegate*>(this); // editors are made by a const function
    connect(box, &QComboBox::activated, self, [self, box] {
        emit self->commitData(box);
        emit self->closeEditor(box);
    });
    QTimer::singleShot(0, box, &QComboBox::showPopup);
    return box;
}

void ChoiceDelegate::setEditorData(QWidget* editor, const QModelIndex& index) const {
    auto& box = static_cast<QComboBox&>(*editor);
    box.setCurrentIndex(box.findData(index.data(Qt::EditRole)));
}

void ChoiceDelegate::setModelData(QWidget* editor, QAbstractItemModel* model,
                                  const QModelIndex& index) const {
    model->setData(index, static_cast<QComboBox&>(*editor).currentData(), Qt::EditRole);
}

} // namespace lumora
