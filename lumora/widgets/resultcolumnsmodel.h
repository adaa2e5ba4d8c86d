// The columns that a query shows, as a table that can be edited.
#pragma once

#include "lumora/panel/Vquerpnl.h"
#include "lumora/panel/panel_links.h"
#include "lumora/query/column_total.h"
#include "lumora/query/query_result.h"

#include <QAbstractTableModel>
#include <QStringList>

#include <vector>

namespace lumora {

// One row for each result field of a panel's query; follows the panel's changes.
class ResultColumnsModel : public QAbstractTableModel, private TVQueryPanelLink {
    Q_OBJECT

public:
    enum Column { Caption, Shown, Sorting, ColumnCount };
    // What is shown of a column's field. Custom is any other formula, which stays as it is.
    enum Aggregate {
        Value = ctValue,
        Count = ctCount,
        CountDifferent = ctCountDifferent,
        Sum = ctSum,
        Average = ctAverage,
        Least = ctLeast,
        Greatest = ctGreatest,
        Custom = ctFormula
    };
    enum Role { RawRole = Qt::UserRole }; // of Shown an Aggregate, of Sorting a TSortingType

    explicit ResultColumnsModel(QObject* parent = nullptr);

    // Not owned, and to be taken back before it goes; none: no columns.
    void setPanel(TVQueryPanel* panel);
    TVQueryPanel* panel() const { return GetQueryPanel(); }
    // Takes over what was changed without the panel telling: its query was loaded, or it got another model.
    void refresh();

    // The row of the new column.
    int addField(TDSField& field);
    void removeRows(std::vector<int> rows);
    // By one place; -1 up, 1 down. The row's place then.
    int moveRow(int row, int step);
    // Makes the column the `rank`-th (from 1) by which rows are sorted.
    void setSortRank(int row, int rank);
    int sortRank(int row) const; // 0: not sorted

    Aggregate aggregate(int row) const;
    // A caption that nobody typed follows.
    void setAggregate(int row, Aggregate aggregate);
    // Those that make sense for the column's field; of a custom formula only that.
    std::vector<Aggregate> aggregates(int row) const;
    static QString aggregateName(Aggregate aggregate);
    static QString sortingName(TSortingType sorting);

    // A few fields that say what a record of the table is: no keys, nothing that cannot be read, and only
    // what may be a column (UIR).
    static TDSFieldList tellingFields(const TVCustomDBStructure& model, const TDSTable& table);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

signals:
    // The panel's query, with columns or without.
    void queryChanged();

private:
    void QueryPanelChanged() override { refresh(); }
    TRFieldList& fields() const { return GetQueryPanel()->GetQResult().GetResultFields(); }
    TResultField& field(int row) const { return *fields().GetRField(row); }
    // Views may ask for rows that a panel has dropped without telling yet.
    bool isThere(int row) const { return panel() && row < fields().Count(); }
    QString formulaText(int row) const;
    std::vector<TResultField*> sortedFields() const;
    void renumberSorting(const std::vector<TResultField*>& sorted);

    int rows_ = 0; // as views know it
};

} // namespace lumora
