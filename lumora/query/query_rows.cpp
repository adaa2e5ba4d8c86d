// A query's rows: their numbers, and what happens to them when they go.
#include "lumora/query/query_rows.h"
#include "lumora/query/filter_rows.h"
#include "lumora/query/query.h"
#include "lumora/query/query_listener.h"

#include <algorithm>

namespace lumora {

TSimpleCond* TVQuery::ManualAddCond(TFilterBracket& bracket, TDSField* field, TDSOperator* op,
                                    const std::string& value) {
    const TRowRef<TSimpleCond> condition(bracket.AddCond());
    if (condition)
        condition.Get()->SetField(field);
    if (condition)
        condition.Get()->SetOperator(op);
    if (condition)
        condition.Get()->SetValue(1, value);
    return condition.Get();
}

const TStringList& TVQuery::GetSQLParams() {
    sqlParams_.Clear();
    ForEachCondition([this](TFilterCond& condition) { condition.UpdateSQLParams(sqlParams_); });
    return sqlParams_;
}

// --- Numbers.

void TVQuery::EnsureRowNumbers() {
    if (!rowNumbersStale_)
        return;
    rowNumbersStale_ = false;
    rowOrder_.clear();
    if (root_)
        NumberRows(*root_);
}

void TVQuery::NumberRows(TFilterRow& row) {
    row.SetRowNum(static_cast<int>(rowOrder_.size()));
    rowOrder_.push_back(&row);
    if (row.GetRowType() != frtBracket)
        return;
    auto& bracket = static_cast<TFilterBracket&>(row);
    for (int i = 0; i < bracket.GetRowCount(); ++i)
        NumberRows(*bracket.GetRow(i));
}

TFilterRow* TVQuery::GetRowByNum(int number) {
    EnsureRowNumbers();
    return number >= 0 && number < static_cast<int>(rowOrder_.size())
               ? rowOrder_[static_cast<std::size_t>(number)]
               : nullptr;
}

TFilterRow* TVQuery::GetLastRow() {
    return root_ ? root_->GetLastRow() : nullptr;
}

bool TVQuery::HasRow(const TFilterRow* row) {
    EnsureRowNumbers();
    return std::find(rowOrder_.begin(), rowOrder_.end(), row) != rowOrder_.end();
}

// --- Told by the rows.

void TVQuery::RowsChanged() {
    rowNumbersStale_ = true;
    ++rowsVersion_;
    listener_->RowsChanged();
}

void TVQuery::RowChanged(TFilterRow& row) {
    listener_->RowChanged(row);
}

void TVQuery::RowDeleting(TFilterRow& row) {
    listener_->RowDeleting(row);
}

void TVQuery::RowDestroyed(TFilterRow& row) {
    rowRefs_.RowDestroyed(row);
    rowNumbersStale_ = true;
    ++rowsVersion_;
    listener_->RowDestroyed(row);
}

// Parameters of the rows go with them, and whoever is told of that finds the tree whole again.
void TVQuery::FreeRows(std::vector<std::unique_ptr<TFilterRow>> rows) {
    HoldParamNotices();
    rows.clear();
    RowsChanged();
    ReleaseParamNotices();
}

} // namespace lumora
