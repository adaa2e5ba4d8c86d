// A list of a model's fields that can be searched.
#pragma once

#include "lumora/model/structure.h"

#include <QFrame>

class QLineEdit;
class QSortFilterProxyModel;
class QStandardItemModel;
class QTreeView;

namespace lumora {

// Fields that may be columns (UIR), by their groups, in the model's order. Enter, or a click, chooses one;
// the list stays for the next.
class FieldChooser : public QFrame {
    Q_OBJECT

public:
    explicit FieldChooser(QWidget* parent = nullptr);

    void setModel(const TVCustomDBStructure& model);
    // Below a button, as a popup.
    void popupAt(QWidget& anchor);
    QLineEdit& searchLine() { return *search_; }
    QTreeView& list() { return *list_; }

signals:
    void fieldChosen(int fieldID);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void filter(const QString& text);
    void choose(const QModelIndex& index);
    void selectFirstField();

    QLineEdit* const search_;
    QTreeView* const list_;
    QStandardItemModel* const fields_;
    QSortFilterProxyModel* const found_;
};

} // namespace lumora
