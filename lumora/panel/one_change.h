// Several changes of a query that are told as one.
#pragma once

#include "lumora/panel/Vquerpnl.h"

namespace lumora {

template <typename TChange>
void AsOneChange(TVQueryPanel& panel, TChange change) {
    panel.BeginUpdate();
    try {
        change();
    } catch (...) {
        panel.EndUpdate();
        throw;
    }
    panel.EndUpdate();
}

} // namespace lumora
