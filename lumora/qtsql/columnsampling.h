// How columns keep days and moments, and what stands in columns without a type, found by looking at rows.
#pragma once

#include "lumora/qtsql/boundedqueries.h"
#include "lumora/qtsql/databasecontents.h"

namespace lumora {

// For an engine whose columns hold whatever is put into them: gives columns that hold days their type and
// storage, and columns without a declared type the type of what is in them. Small tables are looked at
// whole, of large ones the first and the last rows. What cannot be compared rightly is remarked on. A view
// may take long, so tables and views are asked for apart.
void lookAtDates(DatabaseContents& contents, TableKind kind, BoundedQueries& queries);

} // namespace lumora
