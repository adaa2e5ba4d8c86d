// The items of a drop-down popup: a list, a tree, a check list or a menu, with a search box where there are
// many.
#pragma once

#include "lumora/widgets/dropdownpage.h"

#include <QPoint>

class QAbstractItemView;
class QHBoxLayout;
class QLabel;
class QLineEdit;
class QModelIndex;

namespace lumora {

class DropDownItems;

class DropDownListPage : public DropDownPage {
    Q_OBJECT

public:
    DropDownListPage(TDropDownEditor& editor, const QList<QIcon>& images, QWidget* parent);

    QWidget* input() const override;
    bool handleKey(QWidget* receiver, QKeyEvent* event) override;

protected:
    void showEvent(QShowEvent* event) override;

private:
    bool isCheckList() const { return editor_.GetKind() == ddCheckList; }
    void addSearchBox();
    void addView();
    void addCheckButtons();
    void fitView();
    void fitMenu(const QSize& longest);
    QSize itemSize() const;
    void search(const QString& text);
    void showCurrent();
    void showItems();
    void selectionChanged();
    void hover(const QModelIndex& index);
    void click(const QModelIndex& index);
    void moveToColumn(bool next);
    void check(bool checked);
    bool handleSearchKey(QKeyEvent* event);
    bool checkFound();
    void toggle(int item);
    bool handleViewKey(QKeyEvent* event);

    DropDownItems* items_;
    QLineEdit* search_ = nullptr;
    QAbstractItemView* view_ = nullptr;
    QLabel* nothing_ = nullptr; // says that no item matches
    QPoint pointerAtStart_;
    int itemsInColumn_ = 1; // of a menu
};

} // namespace lumora
