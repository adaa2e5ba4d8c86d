// Visits the conditions of a query.
#pragma once

#include "lumora/query/filter_rows.h"
#include "lumora/query/query.h"

namespace lumora {

// The visit must leave the tree as it is.
template <typename TVisit>
void TVQuery::ForEachCondition(TVisit visit) {
    EnsureRowNumbers();
    for (TFilterRow* const row : rowOrder_)
        if (row->GetRowType() != frtBracket)
            visit(static_cast<TFilterCond&>(*row));
}

} // namespace lumora
