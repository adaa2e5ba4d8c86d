// The rows of a screen: adding, the current row, moving it, and what happens to it when rows go.
#include "lumora/model/structure.h"
#include "lumora/query/filter_rows.h"
#include "lumora/query/one_change.h"
#include "lumora/query/query.h"
#include "lumora/query/row_moves.h"
#include "lumora/screen/condition_changes.h"
#include "lumora/screen/query_screen.h"
#include "lumora/screen/screen_words.h"
#include "lumora/screen/word_choices.h"

#include <type_traits>

namespace lumora {

// --- Adding. All that comes with a new row is told as one change, when it is done.

template <typename TInsert>
auto TQueryScreen::AddNew(TInsert insert) -> decltype(insert()) {
    using TRow = std::remove_pointer_t<decltype(insert())>;
    TRowRef<TRow> added;
    AsOneChange(query_, [&] {
        added.Set(insert());
        TakeFirstField(*added.Get());
        if (!added)
            return;
        view_->ShowRow(*added.Get());
        SetCurrentRow(added.Get());
        view_->ScrollToEnd();
    });
    return added.Get();
}

void TQueryScreen::TakeFirstField(TFilterRow& row) {
    if (row.GetRowType() != frtSimpleCondition)
        return;
    auto& condition = static_cast<TSimpleCond&>(row);
    const TRowRef<TSimpleCond> there(&condition);
    if (TDSField* const field = FirstOfferedField(*query_.GetDbStruct()))
        condition.SetField(field);
    if (there)
        TakeDefaultValue(condition);
}

TSimpleCond* TQueryScreen::AddCondition(TFilterBracket& bracket) {
    return AddNew([&] { return bracket.AddCond(); });
}

TSimpleCond* TQueryScreen::AddConditionNum(TFilterBracket& bracket, int number) {
    return AddNew([&] { return bracket.InsertSimpleCondByNum(number); });
}

TCustomCond* TQueryScreen::AddCustomCondition(TFilterBracket& bracket, TDSCondition& condition) {
    return AddNew([&] { return bracket.AddCustomCond(&condition); });
}

TFilterBracket* TQueryScreen::AddBracket(TFilterBracket& bracket) {
    return AddNew([&] { return bracket.AddNewBracket(); });
}

TFilterBracket* TQueryScreen::AddBracketNum(TFilterBracket& bracket, int number) {
    return AddNew([&] { return bracket.InsertNewBracketByNum(number); });
}

// --- The current row.

void TQueryScreen::SetCurrentRow(TFilterRow* row) {
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

TFilterBracket* TQueryScreen::GetCurrentBracket() const {
    if (currentRow_ && currentRow_->GetRowType() == frtBracket)
        return static_cast<TFilterBracket*>(currentRow_);
    return currentRow_ ? currentRow_->GetParent() : nullptr;
}

int TQueryScreen::GetCurrentRowNum() const {
    return currentRow_ ? currentRow_->GetRowNum() : -1;
}

void TQueryScreen::StepCurRow(int by) {
    TFilterRow* row = currentRow_;
    if (row) {
        do
            row = query_.GetRowByNum(row->GetRowNum() + by);
        while (row && !IsRowVisible(*this, *row));
    }
    if (row)
        SetCurrentRow(row);
    movedByKeyboard_ = true;
}

// The row stays current, unless whoever hears of the move removes it.
void TQueryScreen::MoveCurRow(TRowTarget target) {
    if (MoveRow(query_, *currentRow_, target) && currentRow_)
        view_->RepaintRow(*currentRow_);
}

void TQueryScreen::MoveCurRowUp() {
    if (currentRow_)
        MoveCurRow(TargetUp(*currentRow_));
}

void TQueryScreen::MoveCurRowDown() {
    if (currentRow_)
        MoveCurRow(TargetDown(*currentRow_));
}

void TQueryScreen::MoveCurRowLeft() {
    if (currentRow_)
        MoveCurRow(TargetLeft(*currentRow_));
}

void TQueryScreen::MoveCurRowRight() {
    if (currentRow_)
        MoveCurRow(TargetRight(*currentRow_));
}

// The row that was to become current may have been a bracket that went as well, being empty.
void TQueryScreen::DeleteCurRow() {
    if (!currentRow_ || !currentRow_->GetParent())
        return;
    currentRow_->GetParent()->DeleteRow(currentRow_->GetIndex());
    if (!currentRow_ && !query_.GetEmpty())
        SetCurrentRow(query_.GetLastRow());
}

// --- Told by the query.

// When the current row goes, the one behind it becomes current, or the one before it at the end.
void TQueryScreen::RowDeleting(TFilterRow& row) {
    if (!currentRow_ || !IsWithin(currentRow_, row))
        return;
    const TFilterBracket* const root = query_.GetRootBracket();
    const int number = row.GetRowNum();
    TFilterRow* const last =
        row.GetRowType() == frtBracket ? static_cast<TFilterBracket&>(row).GetLastRow() : &row;
    TFilterRow* next = nullptr;
    if (number > 0 && (root->GetRowCount() > 1 || row.GetParent() != root)) {
        next = query_.GetRowByNum(last->GetRowNum() + 1);
        if (!next)
            next = query_.GetRowByNum(number - 1);
    }
    SetCurrentRow(next);
}

void TQueryScreen::RowDestroyed(TFilterRow& row) {
    if (currentRow_ != &row)
        return;
    currentRow_ = nullptr;
    view_->Repaint();
}

void TQueryScreen::ModelReplaced() {
    UpdateMenus();
    view_->PlaceAllRows();
    view_->Repaint();
}

} // namespace lumora
