#include "apps/lumora-desk/querylistmodel.h"

#include <QFont>

namespace lumora::desk {

QueryListModel::QueryListModel(DeskDocument& document, QObject* parent)
    : QAbstractListModel(parent), document_(document) {
    connect(&document, &DeskDocument::opened, this, &QueryListModel::refresh);
    connect(&document, &DeskDocument::queryListChanged, this, &QueryListModel::refresh);
    connect(&document, &DeskDocument::modifiedChanged, this, &QueryListModel::refresh);
    refresh();
}

void QueryListModel::refresh() {
    std::vector<Entry> entries;
    const TVStoredQueryBase* const base = document_.queries();
    for (int i = 0; base && i < base->GetCount(); ++i) {
        const TVQueryItem& item = *base->GetQuery(i);
        entries.push_back({QString::fromStdString(item.GetQueryName()),
                           QString::fromStdString(item.GetDescription()).trimmed(), document_.isStored(i)});
    }
    if (entries.size() != entries_.size()) {
        beginResetModel();
        entries_ = std::move(entries);
        endResetModel();
    } else {
        entries_ = std::move(entries);
        if (!entries_.empty())
            emit dataChanged(index(0), index(rowCount() - 1));
    }
}

int QueryListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(entries_.size());
}

QVariant QueryListModel::data(const QModelIndex& index, int role) const {
    const Entry& entry = entries_[static_cast<std::size_t>(index.row())];
    const bool changed = index.row() == document_.currentIndex() && document_.isModified();
    switch (role) {
    case Qt::DisplayRole:
        return changed ? entry.name + QStringLiteral(" *") : entry.name;
    case Qt::EditRole:
        return entry.name;
    case Qt::ToolTipRole:
        if (!entry.stored)
            return tr("New, not saved yet");
        return entry.description.isEmpty() ? entry.name : entry.description;
    case Qt::AccessibleDescriptionRole:
        return !entry.stored ? tr("not saved yet") : changed ? tr("changed") : entry.description;
    case Qt::FontRole: {
        QFont font;
        font.setItalic(!entry.stored);
        font.setBold(index.row() == document_.currentIndex());
        return font;
    }
    default:
        return {};
    }
}

Qt::ItemFlags QueryListModel::flags(const QModelIndex& index) const {
    return QAbstractListModel::flags(index) | Qt::ItemIsEditable;
}

bool QueryListModel::setData(const QModelIndex& index, const QVariant& value, int role) {
    const QString name = value.toString().trimmed();
    if (role != Qt::EditRole || name.isEmpty() ||
        name == entries_[static_cast<std::size_t>(index.row())].name)
        return false;
    emit renameWanted(index.row(), name);
    return true;
}

} // namespace lumora::desk
