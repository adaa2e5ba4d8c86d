// The panel's rows: adding, numbering, the current row, and what happens to them when the model changes.
#include "lumora/panel/Vquerpnl.h"
#include "lumora/panel/condition_changes.h"
#include "lumora/panel/screen_words.h"

#include <algorithm>

namespace lumora {

// --- Adding and clearing.

TSimpleCond* TVQueryPanel::AddCondition(TFilterBracket& bracket) {
    TSimpleCond* const condition = bracket.AddCond();
    InitializeNewRow(*condition);
    return condition;
}

TSimpleCond* TVQueryPanel::AddConditionNum(TFilterBracket& bracket, int number) {
    TSimpleCond* const condition = bracket.InsertSimpleCondByNum(number);
    InitializeNewRow(*condition);
    return condition;
}

TCustomCond* TVQueryPanel::AddCustomCondition(TFilterBracket& bracket, TDSCondition& condition) {
    TCustomCond* const row = bracket.AddCustomCond(&condition);
    InitializeNewRow(*row);
    return row;
}

TFilterBracket* TVQueryPanel::AddBracket(TFilterBracket& bracket) {
    TFilterBracket* const row = bracket.AddNewBracket();
    InitializeNewRow(*row);
    return row;
}

TFilterBracket* TVQueryPanel::AddBracketNum(TFilterBracket& bracket, int number) {
    TFilterBracket* const row = bracket.InsertNewBracketByNum(number);
    InitializeNewRow(*row);
    return row;
}

// A new condition begins with the model's first field and the first operator of that.
void TVQueryPanel::InitializeNewRow(TFilterRow& row) {
    if (row.GetRowType() == frtSimpleCondition && dbStruct_->GetFieldCount() > 0) {
        static_cast<TSimpleCond&>(row).SetField(dbStruct_->GetField(0));
        TakeDefaultValue(static_cast<TSimpleCond&>(row));
    }
    view_->ShowRow(row);
    SetCurrentRow(&row);
    view_->ScrollToEnd();
}

TSimpleCond* TVQueryPanel::ManualAddCond(TFilterBracket& bracket, TDSField* field, TDSOperator* op,
                                         const std::string& value) {
    TSimpleCond* const condition = bracket.AddCond();
    condition->SetField(field);
    condition->SetOperator(op);
    condition->SetValue(1, value);
    return condition;
}

void TVQueryPanel::ClearRows() {
    currentRow_ = nullptr;
    if (root_)
        root_->ClearRows();
}

void TVQueryPanel::ClearAll() {
    result_.GetResultFields().Forget();
    result_.ClearParams();
    ClearRows();
    modified_ = false;
}

template <typename TVisit>
void TVQueryPanel::ForEachCondition(TVisit visit) {
    EnsureRowNumbers();
    const std::vector<TFilterRow*> rows = rowOrder_; // a visit may delete the row
    for (TFilterRow* const row : rows)
        if (row->GetRowType() != frtBracket)
            visit(static_cast<TFilterCond&>(*row));
}

const TStringList& TVQueryPanel::GetSQLParams() {
    sqlParams_.Clear();
    ForEachCondition([this](TFilterCond& condition) { condition.UpdateSQLParams(sqlParams_); });
    return sqlParams_;
}

// --- Numbers.

void TVQueryPanel::EnsureRowNumbers() {
    if (!rowNumbersStale_)
        return;
    rowNumbersStale_ = false;
    rowOrder_.clear();
    if (root_)
        NumberRows(*root_);
}

void TVQueryPanel::NumberRows(TFilterRow& row) {
    row.SetRowNum(static_cast<int>(rowOrder_.size()));
    rowOrder_.push_back(&row);
    if (row.GetRowType() != frtBracket)
        return;
    auto& bracket = static_cast<TFilterBracket&>(row);
    for (int i = 0; i < bracket.GetRowCount(); ++i)
        NumberRows(*bracket.GetRow(i));
}

TFilterRow* TVQueryPanel::GetRowByNum(int number) {
    EnsureRowNumbers();
    return number >= 0 && number < static_cast<int>(rowOrder_.size())
               ? rowOrder_[static_cast<std::size_t>(number)]
               : nullptr;
}

// --- The current row.

void TVQueryPanel::SetCurrentRow(TFilterRow* row) {
    movedByKeyboard_ = false;
    if (row == currentRow_)
        return;
    TFilterRow* const old = currentRow_;
    currentRow_ = row;
    keyboard_.RowChanged();
    if (old && row && !old->IsDestroying() && !row->IsDestroying()) {
        view_->RepaintRow(*old);
        view_->RepaintRow(*row);
    } else {
        view_->Repaint();
    }
}

TFilterBracket* TVQueryPanel::GetCurrentBracket() const {
    if (currentRow_ && currentRow_->GetRowType() == frtBracket)
        return static_cast<TFilterBracket*>(currentRow_);
    return currentRow_ ? currentRow_->GetParent() : nullptr;
}

void TVQueryPanel::StepCurRow(int by) {
    TFilterRow* row = currentRow_;
    if (row) {
        do
            row = GetRowByNum(row->GetRowNum() + by);
        while (row && !IsRowVisible(*this, *row));
    }
    if (row)
        SetCurrentRow(row);
    movedByKeyboard_ = true;
}

void TVQueryPanel::IncCurRow() {
    StepCurRow(1);
}

void TVQueryPanel::DecCurRow() {
    StepCurRow(-1);
}

void TVQueryPanel::MoveCurRow(TRowTarget target) {
    if (currentRow_ && MoveRow(*this, *currentRow_, target))
        view_->RepaintRow(*currentRow_);
}

void TVQueryPanel::MoveCurRowUp() {
    if (currentRow_)
        MoveCurRow(TargetUp(*currentRow_));
}

void TVQueryPanel::MoveCurRowDown() {
    if (currentRow_)
        MoveCurRow(TargetDown(*currentRow_));
}

void TVQueryPanel::MoveCurRowLeft() {
    if (currentRow_)
        MoveCurRow(TargetLeft(*currentRow_));
}

void TVQueryPanel::MoveCurRowRight() {
    if (currentRow_)
        MoveCurRow(TargetRight(*currentRow_));
}

// The row that was to become current may have been a bracket that went as well, being empty.
void TVQueryPanel::DeleteCurRow() {
    if (!currentRow_ || !currentRow_->GetParent())
        return;
    currentRow_->GetParent()->DeleteRow(currentRow_->GetIndex());
    if (!currentRow_ && !GetEmpty())
        SetCurrentRow(GetLastRow());
}

bool TVQueryPanel::HasRow(const TFilterRow* row) {
    EnsureRowNumbers();
    return std::find(rowOrder_.begin(), rowOrder_.end(), row) != rowOrder_.end();
}

// --- Told by the rows.

void TVQueryPanel::PlaceRowsAnew() {
    rowNumbersStale_ = true;
    ++rowsVersion_;
    view_->PlaceAllRows();
}

void TVQueryPanel::RowsChanged() {
    PlaceRowsAnew();
    QueryChanged();
}

void TVQueryPanel::RowHidden(TFilterRow&) {
    PlaceRowsAnew();
}

void TVQueryPanel::RowChanged(TFilterRow& row) {
    view_->RepaintRow(row);
}

// When the current row goes, the one behind it becomes current, or the one before it at the end.
void TVQueryPanel::RowDeleting(TFilterRow& row) {
    const TFilterRow* ancestor = currentRow_;
    while (ancestor && ancestor != &row)
        ancestor = ancestor->GetParent();
    if (!ancestor)
        return;
    const int number = row.GetRowNum();
    TFilterRow* const last =
        row.GetRowType() == frtBracket ? static_cast<TFilterBracket&>(row).GetLastRow() : &row;
    TFilterRow* next = nullptr;
    if (number > 0 && (root_->GetRowCount() > 1 || row.GetParent() != root_.get())) {
        next = GetRowByNum(last->GetRowNum() + 1);
        if (!next)
            next = GetRowByNum(number - 1);
    }
    SetCurrentRow(next);
}

void TVQueryPanel::RowDestroyed(TFilterRow& row) {
    rowNumbersStale_ = true;
    ++rowsVersion_;
    if (currentRow_ == &row) {
        currentRow_ = nullptr;
        view_->Repaint();
    }
}

void TVQueryPanel::ValueChanged(TFilterCond& condition, int value) {
    if (state_ == stIdle && OnChangeValue)
        OnChangeValue(*this, condition, value);
}

void TVQueryPanel::ConditionChanged(TFilterCond& condition, TConditionChange change) {
    view_->RepaintRow(condition);
    if (state_ != stIdle)
        return;
    if (OnConditionChange)
        OnConditionChange(*this, condition, change);
    QueryChanged();
}

// --- Told by the model. What it no longer knows is shown as unrecognized.

void TVQueryPanel::FieldRemoved(TDSField& field) {
    TDSField* const unrecognized = dbStruct_->GetUnrecognizedField();
    result_.GetResultFields().ReplaceDSField(&field, unrecognized);
    ForEachCondition([&](TFilterCond& condition) {
        if (condition.GetRowType() != frtSimpleCondition)
            return;
        auto& simple = static_cast<TSimpleCond&>(condition);
        TDSOperator* const op = simple.GetOperator();
        if (simple.GetField() == &field) {
            simple.SetField(unrecognized);
            simple.SetOperator(op);
        }
    });
}

void TVQueryPanel::OperatorRemoved(TDSOperator& op) {
    ForEachCondition([&](TFilterCond& condition) {
        if (condition.GetRowType() == frtSimpleCondition &&
            static_cast<TSimpleCond&>(condition).GetOperator() == &op)
            static_cast<TSimpleCond&>(condition).SetOperator(dbStruct_->GetUnrecognizedOperator());
    });
}

void TVQueryPanel::TableRemoved(TDSTable& table) {
    result_.ClearBuild();
    if (mainTable_ == &table)
        mainTable_ = nullptr;
}

void TVQueryPanel::ConditionRemoved(TDSCondition& condition) {
    ForEachCondition([&](TFilterCond& row) {
        if (row.GetRowType() == frtCustomCondition &&
            static_cast<TCustomCond&>(row).GetCondition() == &condition)
            row.GetParent()->DeleteRow(row.GetIndex());
    });
}

// While the model is replaced, the query keeps by ID and name what it refers to.
void TVQueryPanel::ModelReplacing() {
    conditionTargets_.clear();
    resultFieldTargets_.clear();
    const TVBuilderState was = state_;
    state_ = stLoading;
    ForEachCondition([&](TFilterCond& row) {
        if (row.GetRowType() == frtSimpleCondition) {
            auto& simple = static_cast<TSimpleCond&>(row);
            conditionTargets_.push_back(
                {&row, simple.GetField() ? TargetOf(*simple.GetField()) : TFieldTarget{},
                 simple.GetOperator() ? simple.GetOperator()->GetName() : std::string()});
            simple.SetField(dbStruct_->GetUnrecognizedField());
            simple.SetOperator(dbStruct_->GetUnrecognizedOperator());
        } else {
            auto& custom = static_cast<TCustomCond&>(row);
            conditionTargets_.push_back(
                {&row, {custom.GetCondition() ? custom.GetCondition()->GetID() : 0, {}}, {}});
            custom.SetCondition(nullptr);
        }
    });
    TRFieldList& fields = result_.GetResultFields();
    for (int i = 0; i < fields.Count(); ++i) {
        resultFieldTargets_.emplace_back();
        for (const TDSField* const entry : fields.GetRField(i)->GetFields())
            resultFieldTargets_.back().push_back(TargetOf(*entry));
    }
    fields.ReplaceDSField(nullptr, dbStruct_->GetUnrecognizedField());
    result_.ClearBuild();
    mainTable_ = nullptr;
    state_ = was;
}

// A field that has moved bears its old name under another ID; one that was renamed keeps its ID.
TDSField* TVQueryPanel::FindTarget(const TFieldTarget& target) const {
    TDSField* const field = dbStruct_->FieldByID(target.ID);
    if (field && field->GetFullName() == target.FullName)
        return field;
    TDSField* const namesake = dbStruct_->FieldByName(2, target.FullName);
    return namesake ? namesake : field;
}

void TVQueryPanel::ModelReplaced() {
    const TVBuilderState was = state_;
    state_ = stLoading;
    std::vector<TFilterCond*> lost;
    for (const TConditionTarget& target : conditionTargets_) {
        if (target.Condition->GetRowType() == frtSimpleCondition) {
            auto& simple = static_cast<TSimpleCond&>(*target.Condition);
            TDSField* const field = FindTarget(target.Field);
            TDSOperator* const op = dbStruct_->OperatorByName(target.OperatorName);
            simple.SetField(field ? field : dbStruct_->GetUnrecognizedField());
            simple.SetOperator(op ? op : dbStruct_->GetUnrecognizedOperator());
        } else {
            auto& custom = static_cast<TCustomCond&>(*target.Condition);
            custom.SetCondition(dbStruct_->ConditionByID(target.Field.ID));
            if (!custom.GetCondition())
                lost.push_back(&custom);
        }
    }
    TRFieldList& fields = result_.GetResultFields();
    for (std::size_t i = 0; i < resultFieldTargets_.size(); ++i)
        for (std::size_t entry = 0; entry < resultFieldTargets_[i].size(); ++entry)
            if (TDSField* const field = FindTarget(resultFieldTargets_[i][entry]))
                fields.GetRField(static_cast<int>(i))->SetDSField(static_cast<int>(entry), field);
    conditionTargets_.clear();
    resultFieldTargets_.clear();
    state_ = was;
    for (TFilterCond* const row : lost)
        row->GetParent()->DeleteRow(row->GetIndex());
    InitStructureRelatedProperties();
    UpdateMenus();
    view_->PlaceAllRows();
    view_->Repaint();
}

} // namespace lumora
