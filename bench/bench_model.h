// The data models that are measured: made from a shape and a fixed seed, so every run measures the same.
#pragma once

#include "lumora/model/Vdbstruc.h"

namespace lumora::bench {

struct TModelShape {
    int Tables;
    int FieldsPerTable;
    int Links;
    // The last tables of the model, this many, are linked among themselves only: no path leads to them.
    int IslandTables = 0;
    // Models of other seeds have other links, other columns first and other editors.
    int Seed = 0;
};

inline constexpr TModelShape LargeModel{1000, 20, 1500};
inline constexpr TModelShape DenseModel{1000, 4, 10000, 100};

// Fills an empty model. Its tables have the columns of an order-keeping business.
void FillModel(TVDBStructure& model, const TModelShape& shape);

} // namespace lumora::bench
