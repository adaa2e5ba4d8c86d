// The cells of a string grid, without its screen.
#pragma once

#include "lumora/platform/errors.h"

#include <cstddef>
#include <string>
#include <vector>

namespace lumora {

class TStringGrid {
public:
    TStringGrid(int colCount, int rowCount) { Resize(colCount, rowCount); }

    int GetColCount() const { return colCount_; }
    int GetRowCount() const { return rowCount_; }
    // Empties the grid and gives it another size.
    void Resize(int colCount, int rowCount) {
        colCount_ = colCount;
        rowCount_ = rowCount;
        cells_.assign(static_cast<std::size_t>(colCount) * static_cast<std::size_t>(rowCount), {});
    }
    // EListError for a cell outside the grid.
    std::string& Cell(int col, int row) {
        const std::size_t inRow = CheckIndex(col, static_cast<std::size_t>(colCount_));
        const std::size_t rows = CheckIndex(row, static_cast<std::size_t>(rowCount_));
        return cells_[rows * static_cast<std::size_t>(colCount_) + inRow];
    }

private:
    int colCount_ = 0;
    int rowCount_ = 0;
    std::vector<std::string> cells_;
};

} // namespace lumora
