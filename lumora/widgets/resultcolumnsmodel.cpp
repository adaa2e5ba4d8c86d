#include "lumora/widgets/resultcolumnsmodel.h"

#include "lumora/lumora.h"

#include <algorithm>
#include <functional>

namespace lumora {

namespace {

bool isOrdered(TFieldType type) {
    return type != ftBlob && type != ftMemo && type != ftGraphic && type != ftBoolean;
}

// "id", "customer_id", "customerId", "CustomerID".
bool isCalledKey(std::string_view name) {
    if (SameText(name, "id") || LowerAscii(name).ends_with("_id"))
        return true;
    const char before = name.size() > 2 ? name[name.size() - 3] : ' ';
    return before >= 'a' && before <= 'z' && (name.ends_with("Id") || name.ends_with("ID"));
}

// Whether a table of that name is linked by the column: as the one that refers to another, or as either.
bool isLinked(const TDSField& field, bool asReferring) {
    const TVCustomDBStructure& model = field.GetTable()->GetStructure();
    const auto joins = [&field](const TDSTable& table, const TStringList& columns) {
        return table.GetName() == field.GetTable()->GetName() && columns.IndexOf(field.GetFieldText()) >= 0;
    };
    for (int i = 0; i < model.GetLinkCount(); ++i) {
        const TDSLink& link = *model.GetLink(i);
        if (joins(*link.Table1, link.Fields1) || (!asReferring && joins(*link.Table2, link.Fields2)))
            return true;
    }
    return false;
}

// A text that others refer to by is one that people read.
bool isKey(const TDSField& field) {
    if (isCalledKey(field.GetFieldText()) || field.FieldType == ftAutoInc || field.FieldType == ftGuid)
        return true;
    return field.GetKind() == vfkData && field.GetTable() && isLinked(field, !IsNumber(field.FieldType));
}

} // namespace

ResultColumnsModel::ResultColumnsModel(QObject* parent) : QAbstractTableModel(parent) {}

void ResultColumnsModel::setPanel(TVQueryPanel* panel) {
    SetQueryPanel(panel);
    refresh();
}

void ResultColumnsModel::refresh() {
    const int count = panel() ? fields().Count() : 0;
    if (count > rows_) {
        beginInsertRows({}, rows_, count - 1);
        rows_ = count;
        endInsertRows();
    } else if (count < rows_) {
        beginRemoveRows({}, count, rows_ - 1);
        rows_ = count;
        endRemoveRows();
    }
    if (count > 0)
        emit dataChanged(index(0, 0), index(count - 1, ColumnCount - 1));
    emit queryChanged();
}

// --- Changes.

int ResultColumnsModel::addField(TDSField& added) {
    panel()->BeginUpdate();
    fields().Add("@1", {&added}, fields().GetUniqCaption(added.GetDisplayName()));
    panel()->EndUpdate();
    return rows_ - 1;
}

void ResultColumnsModel::removeRows(std::vector<int> rows) {
    std::sort(rows.begin(), rows.end(), std::greater<>());
    panel()->BeginUpdate();
    for (const int row : rows)
        fields().Delete(row);
    panel()->EndUpdate();
}

int ResultColumnsModel::moveRow(int row, int step) {
    const int target = row + step;
    if (target < 0 || target >= rows_)
        return row;
    panel()->BeginUpdate();
    fields().Move(row, target);
    panel()->EndUpdate();
    return target;
}

std::vector<TResultField*> ResultColumnsModel::sortedFields() const {
    std::vector<TResultField*> sorted;
    for (int i = 0; i < fields().Count(); ++i)
        if (field(i).GetSorting() != stNoSort)
            sorted.push_back(&field(i));
    std::stable_sort(sorted.begin(), sorted.end(), [](const TResultField* a, const TResultField* b) {
        return a->GetSortOrder() < b->GetSortOrder();
    });
    return sorted;
}

int ResultColumnsModel::sortRank(int row) const {
    const std::vector<TResultField*> sorted = sortedFields();
    const auto found = std::find(sorted.begin(), sorted.end(), &field(row));
    return found == sorted.end() ? 0 : static_cast<int>(found - sorted.begin()) + 1;
}

void ResultColumnsModel::renumberSorting(const std::vector<TResultField*>& sorted) {
    panel()->BeginUpdate();
    for (std::size_t i = 0; i < sorted.size(); ++i)
        sorted[i]->SetSortOrder(static_cast<int>(i) + 1);
    panel()->EndUpdate();
}

void ResultColumnsModel::setSortRank(int row, int rank) {
    std::vector<TResultField*> sorted = sortedFields();
    const auto found = std::find(sorted.begin(), sorted.end(), &field(row));
    if (found == sorted.end())
        return;
    TResultField* const moved = *found;
    sorted.erase(found);
    sorted.insert(sorted.begin() + std::clamp(rank - 1, 0, static_cast<int>(sorted.size())), moved);
    renumberSorting(sorted);
}

// --- Aggregates.

ResultColumnsModel::Aggregate ResultColumnsModel::aggregate(int row) const {
    return static_cast<Aggregate>(TotalOf(field(row)));
}

void ResultColumnsModel::setAggregate(int row, Aggregate aggregate) {
    if (aggregate == Custom || aggregate == this->aggregate(row))
        return;
    panel()->BeginUpdate();
    SetTotal(field(row), static_cast<TColumnTotal>(aggregate));
    panel()->EndUpdate();
}

std::vector<ResultColumnsModel::Aggregate> ResultColumnsModel::aggregates(int row) const {
    if (aggregate(row) == Custom)
        return {Custom};
    const TFieldType type = field(row).GetFields().front()->FieldType;
    std::vector<Aggregate> offered = {Value, Count, CountDifferent};
    if (IsNumber(type) && !isKey(*field(row).GetFields().front()))
        offered.insert(offered.end(), {Sum, Average});
    if (isOrdered(type))
        offered.insert(offered.end(), {Least, Greatest});
    if (std::find(offered.begin(), offered.end(), aggregate(row)) == offered.end())
        offered.push_back(aggregate(row));
    return offered;
}

QString ResultColumnsModel::aggregateName(Aggregate aggregate) {
    switch (aggregate) {
    case Value:
        return tr("each value");
    case Count:
        return tr("how many");
    case CountDifferent:
        return tr("how many different");
    case Sum:
        return tr("sum");
    case Average:
        return tr("average");
    case Least:
        return tr("least");
    case Greatest:
        return tr("greatest");
    case Custom:
        break;
    }
    return tr("own formula");
}

QString ResultColumnsModel::sortingName(TSortingType sorting) {
    switch (sorting) {
    case stAscending:
        return tr("ascending");
    case stDescending:
        return tr("descending");
    case stNoSort:
        break;
    }
    return tr("not sorted");
}

TDSFieldList ResultColumnsModel::tellingFields(const TVCustomDBStructure& model, const TDSTable& table) {
    constexpr std::size_t enough = 5;
    TDSFieldList telling;
    for (int i = 0; i < model.GetFieldCount() && telling.size() < enough; ++i) {
        TDSField& field = *model.GetField(i);
        if (field.UIR && field.GetTable() == &table && !isKey(field) && field.FieldType != ftBlob &&
            field.FieldType != ftGraphic)
            telling.push_back(&field);
    }
    for (int i = 0; i < model.GetFieldCount() && telling.empty(); ++i) // a table of keys
        if (model.GetField(i)->UIR && model.GetField(i)->GetTable() == &table)
            telling.push_back(model.GetField(i));
    return telling;
}

// --- As a table.

int ResultColumnsModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : rows_;
}

int ResultColumnsModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : ColumnCount;
}

QString ResultColumnsModel::formulaText(int row) const {
    return QString::fromStdString(field(row).GetExpression()).remove(u'{').remove(u'}');
}

QVariant ResultColumnsModel::data(const QModelIndex& index, int role) const {
    const int row = index.row();
    if (!isThere(row))
        return {};
    if (role == Qt::ToolTipRole && index.column() != Sorting) {
        const TDSField* const first =
            field(row).GetFields().empty() ? nullptr : field(row).GetFields().front();
        const QString table = first && first->GetTable()
                                  ? QString::fromStdString(first->GetTable()->GetDisplayName())
                                  : QString();
        return table.isEmpty() ? formulaText(row) : tr("%1 of %2").arg(formulaText(row), table);
    }
    if (role == Qt::AccessibleDescriptionRole && index.column() == Shown)
        return formulaText(row);
    const bool display = role == Qt::DisplayRole;
    if (!display && role != Qt::EditRole && role != RawRole)
        return {};
    switch (index.column()) {
    case Caption:
        return QString::fromStdString(ColumnHeading(field(row)));
    case Shown:
        if (!display)
            return static_cast<int>(aggregate(row));
        if (field(row).GetHidden())
            return tr("not shown");
        return aggregate(row) == Custom ? formulaText(row) : aggregateName(aggregate(row));
    case Sorting: {
        const TSortingType sorting = field(row).GetSorting();
        if (!display)
            return static_cast<int>(sorting);
        return sorting == stNoSort ? sortingName(sorting)
                                   : tr("%1. %2").arg(sortRank(row)).arg(sortingName(sorting));
    }
    default:
        return {};
    }
}

bool ResultColumnsModel::setData(const QModelIndex& index, const QVariant& value, int role) {
    const int row = index.row();
    if (role != Qt::EditRole || !isThere(row))
        return false;
    switch (index.column()) {
    case Caption: {
        const std::string caption = value.toString().simplified().toStdString();
        if (caption.empty() || caption == ColumnHeading(field(row)))
            return false;
        panel()->BeginUpdate();
        field(row).SetCaption(fields().GetUniqCaption(caption));
        panel()->EndUpdate();
        return true;
    }
    case Shown:
        setAggregate(row, static_cast<Aggregate>(value.toInt()));
        return true;
    case Sorting: {
        const auto sorting = static_cast<TSortingType>(value.toInt());
        if (sorting == field(row).GetSorting())
            return true;
        panel()->BeginUpdate();
        const bool isNew = field(row).GetSorting() == stNoSort;
        field(row).SetSorting(sorting);
        if (isNew)
            setSortRank(row, rows_); // behind the others, whatever place it once had
        renumberSorting(sortedFields());
        panel()->EndUpdate();
        return true;
    }
    default:
        return false;
    }
}

QVariant ResultColumnsModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return QAbstractTableModel::headerData(section, orientation, role);
    switch (section) {
    case Caption:
        return tr("Column");
    case Shown:
        return tr("Shows");
    default:
        return tr("Sorted");
    }
}

Qt::ItemFlags ResultColumnsModel::flags(const QModelIndex& index) const {
    Qt::ItemFlags flags = QAbstractTableModel::flags(index);
    const bool editable = index.isValid() && isThere(index.row()) &&
                          (index.column() != Shown || aggregate(index.row()) != Custom);
    return editable ? flags | Qt::ItemIsEditable : flags;
}

} // namespace lumora
