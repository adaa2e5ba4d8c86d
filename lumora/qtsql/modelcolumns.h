// The columns and cells of item models, as datasets and filters see them.
#pragma once

#include "lumora/platform/field_types.h"
#include "lumora/platform/filter_value.h"

#include <QAbstractItemModel>
#include <QHash>
#include <QList>
#include <QSet>
#include <QString>
#include <QVariant>

#include <string>

class QSqlTableModel;

namespace lumora {

struct ModelColumn {
    QString name;                // unique among the columns of its model, letter case ignored
    QString label;               // what the user sees
    TFieldType type = ftUnknown; // where it cannot be told
    int size = 0;                // the characters of a text, 0 when there is no limit
    bool isRelation =
        false; // it shows the text of another table in place of its key, which it is named after

    bool operator==(const ModelColumn& other) const;
};

// The model's columns. Of a model over a database the names and types are the database's; SQLite's types are
// made good by the values in the first rows. Any other model has its names from the horizontal headers
// (characters that no name has become "_") and its types from the first rows.
QList<ModelColumn> modelColumns(const QAbstractItemModel& model);
// Whether the model's rows can be read: it has columns, and a model over a database has run its query.
bool isModelOpen(const QAbstractItemModel& model);
bool isSqlModel(const QAbstractItemModel& model);

// What the cell holds for editing, or what it shows when there is nothing else.
QVariant cellValue(const QAbstractItemModel& model, int row, int column, const QModelIndex& parent = {});
// As a person of the core would type it: "." before decimals, dates in the program's formats.
std::string valueText(const QVariant& value);
TFilterValue toFilterValue(const QVariant& value);

// From what a relational column shows back to the key that it stands for.
class RelationKeys {
public:
    RelationKeys() = default;
    // Of a column of a QSqlRelationalTableModel with a relation; reads the related table whole.
    RelationKeys(const QAbstractItemModel& model, int column);

    // False when several keys show one text.
    bool isUnique() const { return unique_; }
    // Null for a null and for what no key shows.
    QVariant keyOf(const QVariant& shown) const;

private:
    QHash<QString, QVariant> keys_;
    bool unique_ = true;
};

} // namespace lumora
