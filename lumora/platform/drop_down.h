// What a drop-down editor offers, whatever the screen makes of it.
#pragma once

#include "lumora/platform/enum_names.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace lumora {

struct TFormatSettings;

enum TDropDownKind : std::uint8_t {
    ddNone,      // nothing opens
    ddText,      // a line of text
    ddNumber,    // a line that must be a number
    ddMask,      // a line under an edit mask
    ddDate,      // a calendar
    ddTime,      // a time of day
    ddDateTime,  // both
    ddList,      // one of the items, which are searched as one types
    ddTree,      // one of the items, in their groups
    ddCheckList, // any of the items
    ddMenu,      // one of the items, from a popup menu that is split into columns
    ddDialog     // a window of its own, which whoever gave the content opens
};
template <>
struct TEnumNames<TDropDownKind> {
    static constexpr std::string_view Names[] = {"ddNone", "ddText",      "ddNumber",   "ddMask",
                                                 "ddDate", "ddTime",      "ddDateTime", "ddList",
                                                 "ddTree", "ddCheckList", "ddMenu",     "ddDialog"};
};

struct TDropDownItem {
    std::string Caption;
    std::string Value; // what choosing the item means
    std::string Group; // empty: none
    int ImageIndex = -1;
    bool Checked = false;
    int GroupImageIndex = -1;
};

struct TDropDownContent {
    TDropDownKind Kind = ddNone;
    std::string Text;   // of the present value, to be edited
    std::string Prompt; // shown faintly while there is no text
    std::string EditMask;
    std::vector<TDropDownItem> Items;
    int CurrentItem = -1;
    int MaxMenuItems = 0;    // in a column of a menu; 0: no bound
    bool IsOpenList = false; // a text that is none of the items will do too
    // How the person types and is shown dates, and numbers likewise, which is left to Check; null: by
    // FormatSettings. It outlives the editor.
    const TFormatSettings* DateSettings = nullptr;
    // The reason why a text will not do; empty when it will. None: any text will.
    std::function<std::string(std::string_view text)> Check;
    // Reads the items when they are first shown, because that takes time; raises when they cannot be read.
    // None: they are there.
    std::function<std::vector<TDropDownItem>()> LoadItems;
};

} // namespace lumora
