// The saved queries as a list.
#pragma once

#include "apps/lumora-desk/deskdocument.h"

#include <QAbstractListModel>

#include <vector>

namespace lumora::desk {

// Follows the document: names, descriptions as tool tips, which one is not saved. Editing a name only tells;
// the document is renamed by whoever can show that it failed.
class QueryListModel : public QAbstractListModel {
    Q_OBJECT

public:
    explicit QueryListModel(DeskDocument& document, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;

signals:
    void renameWanted(int index, const QString& name);

private:
    struct Entry {
        QString name;
        QString description;
        bool stored = true;

        bool operator==(const Entry&) const = default;
    };

    void refresh();

    DeskDocument& document_;
    std::vector<Entry> entries_;
};

} // namespace lumora::desk
