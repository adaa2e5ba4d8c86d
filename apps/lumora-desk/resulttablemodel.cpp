#include "apps/lumora-desk/resulttablemodel.h"

#include "apps/lumora-desk/sortkey.h"
#include "lumora/qtsql/celltext.h"

#include <QGuiApplication>
#include <QPalette>

#include <algorithm>
#include <numeric>

namespace lumora::desk {

namespace {

constexpr int longestText = 500; // of a cell; the whole text is in the copy and in the file

QString shortened(const QString& text) {
    return text.size() <= longestText ? text : text.left(longestText) + QChar(0x2026);
}

QString oneLine(QString text) {
    for (QChar& c : text)
        if (c == u'\t' || c == u'\n' || c == u'\r')
            c = u' ';
    return text;
}

} // namespace

void ResultTableModel::begin(const QList<ResultColumn>& columns) {
    beginResetModel();
    columns_ = columns;
    rows_.clear();
    order_.clear();
    endResetModel();
}

void ResultTableModel::append(const ResultRows& rows) {
    if (rows.isEmpty())
        return;
    const auto first = static_cast<int>(rows_.size());
    beginInsertRows({}, first, first + static_cast<int>(rows.size()) - 1);
    rows_.append(rows);
    order_.resize(static_cast<std::size_t>(rows_.size()));
    std::iota(order_.begin() + first, order_.end(), first);
    endInsertRows();
}

ResultRows ResultTableModel::allRows() const {
    ResultRows rows;
    rows.reserve(rows_.size());
    for (const qsizetype position : order_)
        rows.append(rows_[position]);
    return rows;
}

QString ResultTableModel::tabSeparated(const QList<int>& rows, const QList<int>& columns,
                                       bool headers) const {
    QStringList lines;
    const auto addLine = [&](const auto& textOf) {
        QStringList texts;
        for (const int column : columns)
            texts.append(oneLine(textOf(column)));
        lines.append(texts.join(u'\t'));
    };
    if (headers)
        addLine([&](int column) { return columns_[column].name; });
    for (const int row : rows)
        addLine([&](int column) { return cellText(rowAt(row)[column]); });
    return lines.join(u'\n');
}

int ResultTableModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

int ResultTableModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(columns_.size());
}

bool ResultTableModel::isNumber(const QVariant& value, int column) const {
    return lumora::isNumber(value) || (columns_[column].decimal && isDecimal(value));
}

QVariant ResultTableModel::data(const QModelIndex& index, int role) const {
    const QVariant& value = rowAt(index.row())[index.column()];
    switch (role) {
    case Qt::DisplayRole:
        return value.isNull() ? QString(QChar(0x2013)) : shortened(cellText(value));
    case Qt::ToolTipRole:
        return value.isNull() ? tr("No value") : QVariant();
    case Qt::AccessibleTextRole:
        return value.isNull() ? tr("No value") : cellText(value);
    case Qt::ForegroundRole:
        return value.isNull() ? QGuiApplication::palette().brush(QPalette::PlaceholderText) : QVariant();
    case Qt::TextAlignmentRole:
        return QVariant(Qt::AlignVCenter |
                        (isNumber(value, index.column()) ? Qt::AlignRight : Qt::AlignLeft));
    default:
        return {};
    }
}

QVariant ResultTableModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (role != Qt::DisplayRole)
        return QAbstractTableModel::headerData(section, orientation, role);
    return orientation == Qt::Horizontal ? columns_[section].name : QString::number(section + 1);
}

void ResultTableModel::sort(int column, Qt::SortOrder order) {
    if (column >= columnCount())
        return;
    std::vector<qsizetype> sorted(order_.size());
    std::iota(sorted.begin(), sorted.end(), 0);
    if (column >= 0) {
        std::vector<SortKey> keys;
        keys.reserve(sorted.size());
        SortKeyMaker makeKey(columns_[column].decimal);
        for (const ResultRow& row : rows_)
            keys.push_back(makeKey(row[column]));
        std::stable_sort(sorted.begin(), sorted.end(), [&](qsizetype a, qsizetype b) {
            return isBefore(keys[static_cast<std::size_t>(a)], keys[static_cast<std::size_t>(b)],
                            order == Qt::DescendingOrder);
        });
    }
    emit layoutAboutToBeChanged({}, VerticalSortHint);
    keepSelection(sorted);
    order_ = std::move(sorted);
    emit layoutChanged({}, VerticalSortHint);
}

void ResultTableModel::keepSelection(const std::vector<qsizetype>& order) {
    const QModelIndexList before = persistentIndexList();
    if (before.isEmpty())
        return;
    std::vector<int> places(order.size());
    for (std::size_t i = 0; i < order.size(); ++i)
        places[static_cast<std::size_t>(order[i])] = static_cast<int>(i);
    QModelIndexList after;
    for (const QModelIndex& old : before) {
        const qsizetype position = order_[static_cast<std::size_t>(old.row())];
        after.append(index(places[static_cast<std::size_t>(position)], old.column()));
    }
    changePersistentIndexList(before, after);
}

} // namespace lumora::desk
