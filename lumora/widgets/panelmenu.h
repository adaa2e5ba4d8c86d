// Menus of the core as Qt menus.
#pragma once

#include "lumora/platform/menus.h"

#include <functional>

class QMenu;

namespace lumora {

// Adds the items and their submenus. `choose` is given a copy of the item that is chosen.
void fillMenu(QMenu& menu, const std::vector<TMenuItem>& items,
              const std::function<void(const TMenuItem&)>& choose);

} // namespace lumora
