// A row that is being dragged with the mouse, and where it would go.
#pragma once

#include "lumora/screen/layout.h"

namespace lumora {

class TVQueryPanel;

class RowDrag {
public:
    bool isActive() const { return row_ != nullptr; }
    TFilterRow* row() const { return row_; }
    // Where the row would stand; empty when it cannot be dropped.
    TRect mark() const { return target_.Target.Bracket ? target_.Mark : TRect(); }

    void begin(TVQueryPanel& panel, TFilterRow& row);
    // The point is one of the panel's. False when the rows have changed, which ends the drag.
    bool moveTo(TScreenLayout& layout, const TVQueryPanel& panel, int x, int y);
    // Moves the row if it can go there. Raises what MoveRow does; the drag has ended then, too.
    void drop(TVQueryPanel& panel);
    void cancel() { *this = {}; }

private:
    TFilterRow* row_ = nullptr;
    unsigned version_ = 0; // of the rows, when it began
    TDropTarget target_;
};

} // namespace lumora
