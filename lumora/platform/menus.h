// Menus as data, whatever the screen makes of them.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace lumora {

inline constexpr std::string_view SeparatorCaption = "-";

struct TMenuItem {
    std::string Caption; // "&" before the letter that chooses the item; "-" for a separator
    int Command = 0;     // what choosing it means
    int Index = 0;       // which one, of several items with one command
    bool Enabled = true;
    bool Checked = false;
    bool IsSubMenu = false; // opens its items, also when there are none
    std::vector<TMenuItem> Items;

    bool IsSeparator() const { return Caption == SeparatorCaption; }
};

struct TPopupMenu {
    std::vector<TMenuItem> Items;
};

} // namespace lumora
