#include "lumora/widgets/dropdownitems.h"

#include <QFont>

#include <algorithm>

namespace lumora {

namespace {

// An index's internal number is 0 at the top, and that of its group's row and 1 below.
constexpr quintptr atTop = 0;

QString fromUtf8(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

} // namespace

DropDownItems::DropDownItems(TDropDownEditor& editor, const QList<QIcon>& images, QObject* parent)
    : QAbstractItemModel(parent), editor_(editor), images_(images), rows_(editor.GetRows()) {}

void DropDownItems::refresh() {
    beginResetModel();
    rows_ = editor_.GetRows();
    endResetModel();
}

int DropDownItems::itemOf(const QModelIndex& index) const {
    if (!index.isValid())
        return -1;
    const auto row = static_cast<std::size_t>(index.row());
    if (index.internalId() == atTop)
        return rows_[row].Item;
    return rows_[index.internalId() - 1].Items[row];
}

QModelIndex DropDownItems::indexOf(int item) const {
    if (item < 0)
        return {};
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        if (rows_[i].Item == item)
            return index(static_cast<int>(i), 0);
        const std::vector<int>& items = rows_[i].Items;
        const auto at = std::find(items.begin(), items.end(), item);
        if (at != items.end())
            return createIndex(static_cast<int>(at - items.begin()), 0, i + 1);
    }
    return {};
}

QModelIndex DropDownItems::index(int row, int column, const QModelIndex& parent) const {
    if (!hasIndex(row, column, parent))
        return {};
    return createIndex(row, column, parent.isValid() ? static_cast<quintptr>(parent.row()) + 1 : atTop);
}

QModelIndex DropDownItems::parent(const QModelIndex& index) const {
    if (!index.isValid() || index.internalId() == atTop)
        return {};
    return createIndex(static_cast<int>(index.internalId() - 1), 0, atTop);
}

int DropDownItems::rowCount(const QModelIndex& parent) const {
    if (!parent.isValid())
        return static_cast<int>(rows_.size());
    return parent.internalId() == atTop
               ? static_cast<int>(rows_[static_cast<std::size_t>(parent.row())].Items.size())
               : 0;
}

int DropDownItems::columnCount(const QModelIndex&) const {
    return 1;
}

QVariant DropDownItems::data(const QModelIndex& index, int role) const {
    if (!index.isValid())
        return {};
    const int item = itemOf(index);
    if (item >= 0)
        return itemData(item, role);
    const TDropDownRow& group = rows_[static_cast<std::size_t>(index.row())];
    if (role == Qt::DisplayRole)
        return fromUtf8(group.Caption);
    if (role == Qt::DecorationRole && !group.Items.empty())
        return icon(
            editor_.GetContent().Items[static_cast<std::size_t>(group.Items.front())].GroupImageIndex);
    if (role == Qt::FontRole) {
        QFont font;
        font.setBold(true);
        return font;
    }
    return {};
}

bool DropDownItems::setData(const QModelIndex& index, const QVariant& value, int role) {
    const int item = itemOf(index);
    if (role != Qt::CheckStateRole || item < 0 || editor_.GetKind() != ddCheckList)
        return false;
    editor_.SetChecked(item, value.toInt() == Qt::Checked);
    emit dataChanged(index, index, {role});
    emit checked();
    return true;
}

Qt::ItemFlags DropDownItems::flags(const QModelIndex& index) const {
    if (itemOf(index) < 0)
        return Qt::ItemIsEnabled;
    const Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren;
    return editor_.GetKind() == ddCheckList ? flags | Qt::ItemIsUserCheckable : flags;
}

QVariant DropDownItems::icon(int index) const {
    return index >= 0 && index < images_.size() ? images_[index] : QVariant();
}

QVariant DropDownItems::itemData(int item, int role) const {
    const TDropDownItem& data = editor_.GetContent().Items[static_cast<std::size_t>(item)];
    if (role == Qt::DisplayRole)
        return fromUtf8(data.Caption);
    if (role == Qt::DecorationRole)
        return icon(data.ImageIndex);
    if (role == Qt::CheckStateRole && editor_.GetKind() == ddCheckList)
        return editor_.IsChecked(item) ? Qt::Checked : Qt::Unchecked;
    return {};
}

} // namespace lumora
