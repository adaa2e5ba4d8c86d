// The popup menus of rows and values.
#pragma once

#include "lumora/platform/menus.h"

namespace lumora {

class TFilterCond;
class TFilterRow;
class TQueryScreen;

enum TPanelCommand : int {
    pcNone,
    pcAddCondition,
    pcAddBracket,
    pcCustomCondition, // the item's Index: which predefined condition of the model
    pcDeleteRow,
    pcEnableDisable,
    pcConstant,
    pcParameter
};

class TScreenMenus {
public:
    explicit TScreenMenus(TQueryScreen& screen) : screen_(screen) {}

    // Makes the three menus.
    void CreateMenus();
    // The custom conditions of the model, and the captions of the titles there are now.
    void UpdateMenus();
    // Before a menu is shown: what can be chosen for the current row.
    void VPopup(TPopupMenu& menu);
    // Before the value menu is shown: what value k of the condition is.
    void ValuePopup(const TFilterCond& condition, int value);

    TPopupMenu& GetBracketMenu() { return bracketMenu_; }
    TPopupMenu& GetConditionMenu() { return conditionMenu_; }
    TPopupMenu& GetValueMenu() { return valueMenu_; }
    TPopupMenu& MenuOf(const TFilterRow& row);

    // Carry out an item. Nothing happens for one that is not enabled now, and without a model or a current
    // row where one is needed.
    void MenuItemClick(const TMenuItem& item);
    void AddCustomConditionClick(int condition);
    void ValueMenuItemClick(const TMenuItem& item, TFilterCond& condition, int value);

private:
    void FillRowMenu(TPopupMenu& menu) const;
    bool IsEnabled(int command) const;

    TQueryScreen& screen_;
    TPopupMenu bracketMenu_;
    TPopupMenu conditionMenu_;
    TPopupMenu valueMenu_;
};

} // namespace lumora
