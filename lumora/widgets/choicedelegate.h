// Cells of a table that offer a few choices.
#pragma once

#include <QStyledItemDelegate>

#include <functional>

namespace lumora {

// Paints an arrow into cells that can be edited and opens the choices with the editor; a choice is taken at
// once.
class ChoiceDelegate : public QStyledItemDelegate {
    Q_OBJECT

public:
    using Choices = QList<QPair<QString, QVariant>>; // what is read, and the cell's value
    using ChoicesOf = std::function<Choices(const QModelIndex& index)>;

    ChoiceDelegate(ChoicesOf choices, QObject* parent)
        : QStyledItemDelegate(parent), choices_(std::move(choices)) {}

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const override;
    void setEditorData(QWidget* editor, const QModelIndex& index) const override;
    void setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const override;

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;

private:
    const ChoicesOf choices_;
};

} // namespace lumora
