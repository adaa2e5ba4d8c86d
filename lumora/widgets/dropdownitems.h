// The shown items of a drop-down editor for Qt's views: a list, or groups with their items.
#pragma once

#include "lumora/controls/drop_down_editor.h"

#include <QAbstractItemModel>
#include <QIcon>
#include <QList>

#include <vector>

namespace lumora {

class DropDownItems : public QAbstractItemModel {
    Q_OBJECT

public:
    // The editor is the popup's and outlives the model.
    DropDownItems(TDropDownEditor& editor, const QList<QIcon>& images, QObject* parent);

    void refresh(); // the editor shows other items
    // -1 for a group or no index; no index for what is not shown.
    int itemOf(const QModelIndex& index) const;
    QModelIndex indexOf(int item) const;

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& index) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

signals:
    void checked();

private:
    QVariant itemData(int item, int role) const;
    QVariant icon(int index) const; // none for an index that there is not

    TDropDownEditor& editor_;
    QList<QIcon> images_;
    std::vector<TDropDownRow> rows_;
};

} // namespace lumora
