#include "lumora/qtsql/datasetfilterproxymodel.h"

#include <QSqlQueryModel>

#include <vector>

namespace lumora {

// One row of the source.
class DatasetFilterProxyModel::RowValues : public TFilterValueSource {
public:
    RowValues(const QAbstractItemModel& model, const Filter& filter, int row, const QModelIndex& parent)
        : model_(model), filter_(filter), row_(row), parent_(parent) {}

    TFilterValue Value(int column) const override {
        const QVariant value = cellValue(model_, row_, column, parent_);
        const auto relation = filter_.relations.constFind(column);
        return toFilterValue(relation == filter_.relations.constEnd() ? value : relation->keyOf(value));
    }

private:
    const QAbstractItemModel& model_;
    const Filter& filter_;
    const int row_;
    const QModelIndex& parent_;
};

DatasetFilterProxyModel::DatasetFilterProxyModel(QObject* parent) : QSortFilterProxyModel(parent) {
    filter_.fits = true;
}

DatasetFilterProxyModel::~DatasetFilterProxyModel() = default;

bool DatasetFilterProxyModel::setFilterExpression(const QString& text) {
    const bool isOther = text != text_;
    if (!replaceFilter(text, options_, columns_))
        return false;
    text_ = text;
    if (isOther)
        emit filterExpressionChanged();
    return true;
}

bool DatasetFilterProxyModel::setFilterOptions(const TFilterOptions& options) {
    if (!replaceFilter(text_, options, columns_))
        return false;
    options_ = options;
    return true;
}

bool DatasetFilterProxyModel::setColumns(const QList<ModelColumn>& columns) {
    if (!replaceFilter(text_, options_, columns))
        return false;
    columns_ = columns;
    return true;
}

bool DatasetFilterProxyModel::replaceFilter(const QString& text, const TFilterOptions& options,
                                            const QList<ModelColumn>& columns) {
    Filter filter;
    try {
        filter.expression = TFilterExpression(text.toStdString(), options);
        bind(filter, columns);
    } catch (const EFilterError& error) {
        setError(QString::fromUtf8(error.what()));
        return false;
    }
    filter_ = std::move(filter);
    setError({});
    fetchAll();
    invalidateFilter();
    return true;
}

void DatasetFilterProxyModel::bind(Filter& filter, const QList<ModelColumn>& columns) const {
    filter.fits = filter.expression.ColumnNames().empty();
    filter.relations.clear();
    if (filter.fits || !sourceModel() || !isModelOpen(*sourceModel()))
        return;
    const QList<ModelColumn> found = sourceColumns(columns);
    std::vector<TFilterColumn> names;
    for (const ModelColumn& column : found)
        names.push_back({column.name.toStdString(), column.type});
    filter.expression.Bind(names);
    for (const int column : filter.expression.BoundColumns()) {
        if (!found[column].isRelation)
            continue;
        const RelationKeys keys(*sourceModel(), column);
        if (!keys.isUnique())
            throw EFilterError("The column \"" + names[static_cast<std::size_t>(column)].Name +
                                   "\" shows the same text for several keys, so its keys are not known,",
                               1);
        filter.relations.insert(column, keys);
    }
    filter.fits = true;
}

QList<ModelColumn> DatasetFilterProxyModel::sourceColumns(const QList<ModelColumn>& given) const {
    QList<ModelColumn> columns = modelColumns(*sourceModel());
    if (!isSqlModel(*sourceModel()))
        for (ModelColumn& column : columns)
            column.type = ftUnknown;
    for (qsizetype i = 0; i < std::min(columns.size(), given.size()); ++i) {
        columns[i].name = given[i].name;
        columns[i].type = given[i].type;
    }
    return columns;
}

void DatasetFilterProxyModel::setSourceModel(QAbstractItemModel* model) {
    context_ = std::make_unique<QObject>();
    QSortFilterProxyModel::setSourceModel(model);
    if (model) { // after the base's own connections
        const auto changed = [this] { sourceChanged(); };
        QObject* const context = context_.get();
        connect(model, &QAbstractItemModel::modelReset, context, changed);
        connect(model, &QAbstractItemModel::columnsInserted, context, changed);
        connect(model, &QAbstractItemModel::columnsRemoved, context, changed);
        connect(model, &QAbstractItemModel::columnsMoved, context, changed);
        connect(model, &QAbstractItemModel::headerDataChanged, context, changed);
    }
    sourceChanged();
}

void DatasetFilterProxyModel::sourceChanged() {
    QString error;
    try {
        bind(filter_, columns_);
    } catch (const EFilterError& failure) {
        filter_.fits = false;
        error = QString::fromUtf8(failure.what());
    }
    setError(error);
    fetchAll();
    invalidateFilter();
}

void DatasetFilterProxyModel::setError(const QString& error) {
    if (error == errorString_)
        return;
    errorString_ = error;
    emit errorStringChanged();
}

void DatasetFilterProxyModel::fetchAll() {
    auto* const source = qobject_cast<QSqlQueryModel*>(sourceModel());
    if (!source || filter_.expression.ColumnNames().empty())
        return;
    while (source->canFetchMore()) {
        const int rows = source->rowCount();
        source->fetchMore();
        if (source->rowCount() == rows)
            return;
    }
}

bool DatasetFilterProxyModel::filterAcceptsRow(int row, const QModelIndex& parent) const {
    return filter_.fits && QSortFilterProxyModel::filterAcceptsRow(row, parent) &&
           filter_.expression.Accepts(RowValues(*sourceModel(), filter_, row, parent));
}

} // namespace lumora
