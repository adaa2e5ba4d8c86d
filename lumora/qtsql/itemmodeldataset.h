// A dataset over an item model of Qt: a table, a query, a list.
#pragma once

#include "lumora/platform/dataset.h"
#include "lumora/qtsql/modelcolumns.h"

#include <QAbstractItemModel>
#include <QHash>
#include <QList>
#include <QObject>
#include <QPointer>

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace lumora {

// Its rows are those at the top of the model, and it has a current row of its own. A column is a data field;
// a column of a QSqlRelationalTableModel with a relation is an invisible data field, named and typed like the
// key, and behind all data fields a look-up field "key_shown" that looks in the relation's own model. The
// dataset is open while the model is there and open (isModelOpen). Fields hold until the model gets other
// columns, also through a reset with the same ones.
class ItemModelDataSet : public TDataSet {
public:
    // The model is the host's and may go before the dataset does.
    explicit ItemModelDataSet(QAbstractItemModel* model = nullptr, TComponent* owner = nullptr);
    ~ItemModelDataSet() override;

    std::string_view ClassName() const override { return "ItemModelDataSet"; }

    QAbstractItemModel* model() const { return model_; }
    void setModel(QAbstractItemModel* model);
    // What modelColumns says of the model, with the names and types that the host has given.
    QList<ModelColumn> columns() const;
    // In place of what the model says: where SQLite keeps dates as text, where a list is still empty.
    void setColumnName(int column, const QString& name);
    void setColumnType(int column, TFieldType type);
    // The columns are looked at anew, for a model that has changed them without telling.
    void refresh() { stale_ = true; }

    bool GetActive() const override;
    void First() override;
    void Next() override; // fetches more where the model has not read all
    bool Eof() const override;
    TBookmark GetBookmark() const override;
    void GotoBookmark(const TBookmark& bookmark) override;
    // Also EDatabaseError for a key whose relation shows one text for several keys.
    std::string GetFieldText(const TField& field) const override;

protected:
    void UpdateFields() override;

private:
    struct Place {
        int column;
        bool isKey; // of a relation
    };

    void watchModel();
    void makeFields(const QList<ModelColumn>& columns);
    void addLookup(int column, const QString& key);
    void fetchRow() const;

    QPointer<QAbstractItemModel> model_;
    std::unique_ptr<QObject> context_; // of the connections to the model
    QHash<int, QString> names_;
    QHash<int, TFieldType> types_;
    bool stale_ = true;
    QList<ModelColumn> made_;                       // the columns that the fields were made of
    QList<QPointer<QAbstractItemModel>> relations_; // their models, none for other columns
    std::unordered_map<const TField*, Place> places_;
    std::vector<std::unique_ptr<ItemModelDataSet>> lookups_;
    mutable QHash<int, RelationKeys> keys_;
    int row_ = 0;
};

} // namespace lumora
