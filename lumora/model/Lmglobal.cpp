#include "lumora/model/Lmglobal.h"

#include "lumora/platform/string_grid.h"

namespace lumora {

void EmptyGridRow(TStringGrid& grid, int row) {
    for (int col = 0; col < grid.GetColCount(); ++col)
        grid.Cell(col, row).clear();
}

} // namespace lumora
