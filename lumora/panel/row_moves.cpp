#include "lumora/panel/row_moves.h"

#include "lumora/panel/one_change.h"
#include "lumora/query/errors.h"

#include <algorithm>

namespace lumora {

bool IsWithin(const TFilterRow* row, const TFilterRow& bracket) {
    while (row && row != &bracket)
        row = row->GetParent();
    return row != nullptr;
}

namespace {

int DepthOf(const TFilterRow& row) {
    if (row.GetRowType() != frtBracket)
        return 0;
    const auto& bracket = static_cast<const TFilterBracket&>(row);
    int deepest = 0;
    for (int i = 0; i < bracket.GetRowCount(); ++i)
        deepest = std::max(deepest, DepthOf(*bracket.GetRow(i)) + 1);
    return deepest;
}

} // namespace

// Takes rows out and puts them in again; the panel leaves empty brackets alone meanwhile.
class TRowMover {
public:
    explicit TRowMover(TVQueryPanel& panel) : panel_(panel) {}
    ~TRowMover() { panel_.keepsEmptyBrackets_ = false; }
    TRowMover(const TRowMover&) = delete;
    TRowMover& operator=(const TRowMover&) = delete;

    void Move(TFilterRow& row, TFilterBracket& to, int index) {
        TFilterBracket& from = *row.GetParent();
        const bool wasEnabled = to.GetEnabled();
        panel_.keepsEmptyBrackets_ = true;
        to.InsertRow(index, from.ExtractRow(row.GetIndex()));
        panel_.keepsEmptyBrackets_ = false;
        if (&from == &to) {
            to.SetEnabled(wasEnabled); // the order of its rows is no reason to enable a bracket
            return;
        }
        to.CheckIfAllDisabled();
        if (from.GetRowCount() > 0)
            from.CheckIfAllDisabled();
        else if (from.GetParent() && panel_.RemovesEmptyBrackets())
            from.GetParent()->DeleteRow(from.GetIndex());
    }

private:
    TVQueryPanel& panel_;
};

bool MoveRow(TVQueryPanel& panel, TFilterRow& row, TRowTarget target) {
    if (!target.Bracket || !row.GetParent() || IsWithin(target.Bracket, row))
        return false;
    int index = std::clamp(target.Index, 0, target.Bracket->GetRowCount());
    if (target.Bracket == row.GetParent() && index > row.GetIndex())
        --index; // the row itself leaves its place
    if (target.Bracket == row.GetParent() && index == row.GetIndex())
        return false;
    if (target.Bracket->GetRowLevel() + 1 + DepthOf(row) > MaxRowLevel)
        throw EVQueryPanelError(qpeTooDeep, {std::to_string(MaxRowLevel)});
    AsOneChange(panel, [&] { TRowMover(panel).Move(row, *target.Bracket, index); });
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
