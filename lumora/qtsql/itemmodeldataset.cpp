#include "lumora/qtsql/itemmodeldataset.h"

#include <QPersistentModelIndex>
#include <QSqlRelationalTableModel>

namespace lumora {

namespace {

// A row that moves takes its bookmark along.
struct RowPlace {
    QPersistentModelIndex index; // invalid when the row has gone, or at the end
    bool isEnd;
};

QSqlTableModel* relationModel(const QAbstractItemModel& model, int column) {
    const auto* const relational = qobject_cast<const QSqlRelationalTableModel*>(&model);
    return relational ? relational->relationModel(column) : nullptr;
}

} // namespace

ItemModelDataSet::ItemModelDataSet(QAbstractItemModel* model, TComponent* owner) : TDataSet(owner) {
    setModel(model);
}

ItemModelDataSet::~ItemModelDataSet() {
    BeginDestruction();
    ClearFields();
}

void ItemModelDataSet::setModel(QAbstractItemModel* model) {
    model_ = model;
    row_ = 0;
    refresh();
    watchModel();
}

void ItemModelDataSet::watchModel() {
    context_ = std::make_unique<QObject>();
    if (!model_)
        return;
    const auto changed = [this] { refresh(); };
    QObject* const context = context_.get();
    QObject::connect(model_, &QAbstractItemModel::modelReset, context, changed);
    QObject::connect(model_, &QAbstractItemModel::columnsInserted, context, changed);
    QObject::connect(model_, &QAbstractItemModel::columnsRemoved, context, changed);
    QObject::connect(model_, &QAbstractItemModel::columnsMoved, context, changed);
    QObject::connect(model_, &QAbstractItemModel::headerDataChanged, context, changed);
}

QList<ModelColumn> ItemModelDataSet::columns() const {
    if (!model_)
        return {};
    QList<ModelColumn> columns = modelColumns(*model_);
    for (auto name = names_.cbegin(); name != names_.cend(); ++name)
        if (name.key() < columns.size())
            columns[name.key()].name = name.value();
    for (auto type = types_.cbegin(); type != types_.cend(); ++type)
        if (type.key() < columns.size())
            columns[type.key()].type = type.value();
    return columns;
}

void ItemModelDataSet::setColumnName(int column, const QString& name) {
    names_.insert(column, name);
    refresh();
}

void ItemModelDataSet::setColumnType(int column, TFieldType type) {
    types_.insert(column, type);
    refresh();
}

bool ItemModelDataSet::GetActive() const {
    return model_ && isModelOpen(*model_);
}

// --- Fields.

void ItemModelDataSet::UpdateFields() {
    if (!stale_ || !GetActive())
        return;
    stale_ = false;
    keys_.clear();
    const QList<ModelColumn> columns = this->columns();
    QList<QPointer<QAbstractItemModel>> relations;
    for (int i = 0; i < columns.size(); ++i)
        relations.append(columns[i].isRelation ? relationModel(*model_, i) : nullptr);
    if (columns == made_ && relations == relations_)
        return;
    made_ = columns;
    relations_ = relations;
    makeFields(columns);
}

void ItemModelDataSet::makeFields(const QList<ModelColumn>& columns) {
    ClearFields();
    places_.clear();
    lookups_.clear();
    for (int i = 0; i < columns.size(); ++i) {
        const ModelColumn& column = columns[i];
        TField& field = AddField(column.name.toStdString(), column.type == ftUnknown ? ftString : column.type,
                                 column.size);
        field.DisplayLabel = column.label.toStdString();
        field.Visible = !column.isRelation; // its look-up field is what a person sees
        places_.emplace(&field, Place{i, column.isRelation});
    }
    for (int i = 0; i < columns.size(); ++i)
        if (columns[i].isRelation && relations_[i])
            addLookup(i, columns[i].name);
}

void ItemModelDataSet::addLookup(int column, const QString& key) {
    const QSqlRelation relation = qobject_cast<QSqlRelationalTableModel*>(model_)->relation(column);
    lookups_.push_back(std::make_unique<ItemModelDataSet>(relations_[column]));
    TField& field = AddField((key + u'_' + relation.displayColumn()).toStdString(), ftString);
    field.DisplayLabel = made_[column].label.toStdString();
    field.FieldKind = fkLookup;
    field.KeyFields = key.toStdString();
    field.SetLookupDataSet(lookups_.back().get());
    field.LookupKeyFields = relation.indexColumn().toStdString();
    field.LookupResultField = relation.displayColumn().toStdString();
    places_.emplace(&field, Place{column, false});
}

// --- Rows.

void ItemModelDataSet::First() {
    CheckActive();
    row_ = 0;
    fetchRow();
}

void ItemModelDataSet::Next() {
    CheckActive();
    if (row_ < model_->rowCount())
        ++row_;
    fetchRow();
}

// What cannot be had although it was promised is the end.
void ItemModelDataSet::fetchRow() const {
    int rows = model_->rowCount();
    while (row_ >= rows && model_->canFetchMore({})) {
        model_->fetchMore({});
        if (model_->rowCount() <= rows)
            break;
        rows = model_->rowCount();
    }
}

bool ItemModelDataSet::Eof() const {
    return !GetActive() || row_ >= model_->rowCount();
}

TBookmark ItemModelDataSet::GetBookmark() const {
    CheckActive();
    return RowPlace{QPersistentModelIndex(model_->index(row_, 0)), Eof()};
}

void ItemModelDataSet::GotoBookmark(const TBookmark& bookmark) {
    const RowPlace* const place = std::any_cast<RowPlace>(&bookmark);
    if (!place || !GetActive())
        return;
    if (place->isEnd)
        row_ = model_->rowCount();
    else if (place->index.isValid() && place->index.model() == model_)
        row_ = place->index.row();
}

std::string ItemModelDataSet::GetFieldText(const TField& field) const {
    CheckActive();
    const auto place = places_.find(&field);
    if (place == places_.end())
        throw EDatabaseError("Field '" + field.FieldName + "' is of another dataset");
    if (row_ >= model_->rowCount())
        return {};
    const int column = place->second.column;
    const QVariant value = cellValue(*model_, row_, column);
    if (field.DataType == ftBoolean && !value.isNull()) // SQLite has it as a number
        return valueText(value.toBool());
    if (!place->second.isKey)
        return valueText(value);
    if (!keys_.contains(column))
        keys_.insert(column, RelationKeys(*model_, column));
    if (!keys_[column].isUnique())
        throw EDatabaseError("Field '" + field.FieldName + "': several keys show the same text");
    return valueText(keys_[column].keyOf(value));
}

} // namespace lumora
