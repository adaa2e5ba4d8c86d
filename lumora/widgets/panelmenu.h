// Menus of the core as Qt menus.
#pragma once

#include "lumora/platform/drop_down.h"
#include "lumora/platform/menus.h"

#include <QIcon>
#include <QList>

#include <functional>

class QMenu;

namespace lumora {

// Adds the items and their submenus. `choose` is given a copy of the item that is chosen.
void fillMenu(QMenu& menu, const std::vector<TMenuItem>& items,
              const std::function<void(const TMenuItem&)>& choose);

// Whether items stand in groups, which are submenus of a menu.
bool hasGroups(const TDropDownContent& content);
// Fills a menu with the items, each group in a submenu of its own, with their images; `choose` is told the
// index of what was chosen.
void fillChoices(QMenu& menu, const TDropDownContent& content, const QList<QIcon>& images,
                 const std::function<void(int item)>& choose);

} // namespace lumora
