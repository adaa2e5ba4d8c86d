// Makes a panel's query at random.
#pragma once

#include "lumora/lumora.h"
#include "tests/truth/rows.h"

#include <vector>

namespace lumora::truth {

// One seed makes one query. Values are mostly taken from the tables. The types of the model's links may be
// changed.
void makeRandomQuery(TVQueryPanel& panel, const std::vector<Table>& tables, unsigned seed);

} // namespace lumora::truth
