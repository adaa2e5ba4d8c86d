// Several changes of a query that are told as one.
#pragma once

#include "lumora/query/query.h"

namespace lumora {

template <typename TChange>
void AsOneChange(TVQuery& query, TChange change) {
    query.BeginUpdate();
    try {
        change();
    } catch (...) {
        query.EndUpdate();
        throw;
    }
    query.EndUpdate();
}

} // namespace lumora
