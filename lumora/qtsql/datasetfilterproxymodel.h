// Shows the rows of a model for which a filter is true.
#pragma once

#include "lumora/platform/filter_expression.h"
#include "lumora/qtsql/modelcolumns.h"

#include <QHash>
#include <QList>
#include <QSortFilterProxyModel>
#include <QString>

#include <memory>

namespace lumora {

// The filter is written as datasets write it (platform/filter_expression.h); a panel over a
// TVDatasetStructure with the filter syntax fsStandard makes such texts. It is evaluated beside what
// QSortFilterProxyModel filters by itself. Errors are no exceptions here: a setter returns false,
// errorString() says what is wrong, and the filter that was there stays in force. A filter that no longer
// fits when the source gets other columns shows no rows, until one does.
//
// Of a source over a database all rows are fetched, so that none is missed. A column with a relation is
// compared by its key, found by the text that it shows; where several keys show one text, a filter that needs
// the column is refused.
class DatasetFilterProxyModel : public QSortFilterProxyModel {
    Q_OBJECT
    Q_PROPERTY(QString filterExpression READ filterExpression WRITE setFilterExpression NOTIFY
                   filterExpressionChanged)
    Q_PROPERTY(QString errorString READ errorString NOTIFY errorStringChanged)

public:
    explicit DatasetFilterProxyModel(QObject* parent = nullptr);
    ~DatasetFilterProxyModel() override;

    QString filterExpression() const { return text_; }
    // An empty text shows all rows. Without a source it is read but not yet looked at for unknown columns.
    bool setFilterExpression(const QString& text);
    // Of the last call, or of the source's last change; empty when all is well.
    QString errorString() const { return errorString_; }

    const TFilterOptions& filterOptions() const { return options_; }
    bool setFilterOptions(const TFilterOptions& options);
    // The names and types by which the filter knows the columns, such as ItemModelDataSet::columns() gives.
    // Without them those of the model (modelColumns), where only a database's types count: the values of any
    // other model are taken one by one as they come.
    bool setColumns(const QList<ModelColumn>& columns);

    void setSourceModel(QAbstractItemModel* model) override;

signals:
    void filterExpressionChanged();
    void errorStringChanged();

protected:
    bool filterAcceptsRow(int row, const QModelIndex& parent) const override;

private:
    struct Filter {
        TFilterExpression expression;
        bool fits = false; // bound to the source's columns
        QHash<int, RelationKeys> relations;
    };
    class RowValues;

    void sourceChanged();
    void bind(Filter& filter, const QList<ModelColumn>& columns) const;
    QList<ModelColumn> sourceColumns(const QList<ModelColumn>& given) const;
    bool replaceFilter(const QString& text, const TFilterOptions& options, const QList<ModelColumn>& columns);
    void setError(const QString& error);
    void fetchAll();

    QString text_;
    QString errorString_;
    TFilterOptions options_;
    QList<ModelColumn> columns_; // given by the host
    Filter filter_;
    std::unique_ptr<QObject> context_; // of the connections to the source
};

} // namespace lumora
