#include "lumora/query/row_moves.h"

#include "lumora/query/errors.h"
#include "lumora/query/filter_rows.h"
#include "lumora/query/query.h"

#include <algorithm>

namespace lumora {

bool IsWithin(const TFilterRow* row, const TFilterRow& bracket) {
    while (row && row != &bracket)
        row = row->GetParent();
    return row != nullptr;
}

// Takes a row out and puts it in again, before anyone is told.
class TRowMover {
public:
    explicit TRowMover(TVQuery& query) : query_(query) {}

    void Move(TFilterRow& row, TFilterBracket& to, int index) {
        TFilterBracket& from = *row.GetParent();
        std::vector<std::unique_ptr<TFilterRow>> taken;
        query_.keepsEmptyBrackets_ = true;
        from.TakeOut(row.GetIndex(), taken);
        query_.keepsEmptyBrackets_ = false;
        to.PutIn(index, std::move(taken.front()));
        taken.clear();
        if (&from != &to) { // the order of its rows is no reason to enable a bracket
            to.AdjustEnabled();
            Leave(from, taken);
        }
        query_.FreeRows(std::move(taken));
        query_.QueryChanged();
    }

private:
    void Leave(TFilterBracket& from, std::vector<std::unique_ptr<TFilterRow>>& emptied) {
        if (from.GetRowCount() > 0) {
            from.AdjustEnabled();
        } else if (from.GetParent() && query_.GetRemovesEmptyBrackets()) {
            query_.RowDeleting(from);
            from.GetParent()->TakeOut(from.GetIndex(), emptied);
        }
    }

    TVQuery& query_;
};

bool MoveRow(TVQuery& query, TFilterRow& row, TRowTarget target) {
    if (!target.Bracket || !row.GetParent() || IsWithin(target.Bracket, row))
        return false;
    int index = std::clamp(target.Index, 0, target.Bracket->GetRowCount());
    if (target.Bracket == row.GetParent() && index > row.GetIndex())
        --index; // the row itself leaves its place
    if (target.Bracket == row.GetParent() && index == row.GetIndex())
        return false;
    if (target.Bracket->GetRowLevel() + 1 + row.GetDepth() > MaxRowLevel)
        throw EVQueryPanelError(qpeTooDeep, {std::to_string(MaxRowLevel)});
    TRowMover(query).Move(row, *target.Bracket, index);
    return true;
}

TRowTarget TargetUp(const TFilterRow& row) {
    return row.GetIndex() > 0 ? TRowTarget{row.GetParent(), row.GetIndex() - 1} : TRowTarget{};
}

TRowTarget TargetDown(const TFilterRow& row) {
    const bool isLast = !row.GetParent() || row.GetIndex() + 1 == row.GetParent()->GetRowCount();
    return isLast ? TRowTarget{} : TRowTarget{row.GetParent(), row.GetIndex() + 2};
}

TRowTarget TargetLeft(const TFilterRow& row) {
    const TFilterBracket* const bracket = row.GetParent();
    return bracket && bracket->GetParent() ? TRowTarget{bracket->GetParent(), bracket->GetIndex() + 1}
                                           : TRowTarget{};
}

TRowTarget TargetRight(const TFilterRow& row) {
    TFilterRow* const before = row.GetIndex() > 0 ? row.GetParent()->GetRow(row.GetIndex() - 1) : nullptr;
    if (!before || before->GetRowType() != frtBracket)
        return {};
    auto* const bracket = static_cast<TFilterBracket*>(before);
    return {bracket, bracket->GetRowCount()};
}

} // namespace lumora
