// The rows of a query as a table.
#pragma once

#include "apps/lumora-desk/resultrows.h"

#include <QAbstractTableModel>

#include <vector>

namespace lumora::desk {

// Takes rows as they come, in their order; sorted by a column once sort() is called. Numbers and times are
// sorted as such, numbers before texts, and what has no value stands last either way.
class ResultTableModel : public QAbstractTableModel {
    Q_OBJECT

public:
    using QAbstractTableModel::QAbstractTableModel;

    void clear() { begin({}); }
    void begin(const QList<ResultColumn>& columns);
    // Behind the rows that are there, sorted or not: sort() again when all are there.
    void append(const ResultRows& rows);

    const QList<ResultColumn>& columns() const { return columns_; }
    const ResultRow& rowAt(int row) const { return rows_[order_[static_cast<std::size_t>(row)]]; }
    // In the order that is shown.
    ResultRows allRows() const;
    // The cells as lines of texts with tabs between; tabs and line breaks in a text become blanks.
    QString tabSeparated(const QList<int>& rows, const QList<int>& columns, bool headers) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    // A column of -1: in the order in which the rows came.
    void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;

private:
    bool isNumber(const QVariant& value, int column) const;
    void keepSelection(const std::vector<qsizetype>& order);

    QList<ResultColumn> columns_;
    ResultRows rows_;
    std::vector<qsizetype> order_; // positions in rows_
};

} // namespace lumora::desk
