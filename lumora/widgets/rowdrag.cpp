#include "lumora/widgets/rowdrag.h"

#include "lumora/lumora.h"

namespace lumora {

void RowDrag::begin(TVQueryPanel& panel, TFilterRow& row) {
    row_ = &row;
    version_ = panel.GetRowsVersion();
    target_ = {};
}

bool RowDrag::moveTo(TScreenLayout& layout, const TVQueryPanel& panel, int x, int y) {
    if (!row_ || version_ != panel.GetRowsVersion()) {
        cancel();
        return false;
    }
    target_ = layout.DropTargetAt(*row_, x, y);
    return true;
}

void RowDrag::drop(TVQueryPanel& panel) {
    const RowDrag drag = *this;
    cancel();
    if (drag.row_ && drag.version_ == panel.GetRowsVersion() && drag.target_.Target.Bracket)
        MoveRow(panel.GetQuery(), *drag.row_, drag.target_.Target);
}

} // namespace lumora
