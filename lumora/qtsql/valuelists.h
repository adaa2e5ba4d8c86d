// Lists of values to choose from, found by looking at rows.
#pragma once

#include "lumora/qtsql/boundedqueries.h"
#include "lumora/qtsql/databasecontents.h"

namespace lumora {

// Gives a query for its list to each column that refers to a table of few records by a key of one column,
// when those records have a name, and to each short text that has few different values.
void findValueLists(DatabaseContents& contents, BoundedQueries& queries);

} // namespace lumora
