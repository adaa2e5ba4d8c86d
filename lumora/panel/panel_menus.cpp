#include "lumora/panel/panel_menus.h"

#include "lumora/panel/Vquerpnl.h"
#include "lumora/support/messages.h"

namespace lumora {

namespace {

TMenuItem MakeItem(std::string caption, int command) {
    TMenuItem item;
    item.Caption = std::move(caption);
    item.Command = command;
    return item;
}

TMenuItem CustomConditionItem(const TVCustomDBStructure& model, int index) {
    TMenuItem item =
        MakeItem(FormatText("&%d. %s", {std::to_string(index + 1), model.GetCondition(index)->GetCaption()}),
                 pcCustomCondition);
    item.Index = index;
    return item;
}

} // namespace

void TPanelMenus::CreateMenus() {
    UpdateMenus();
}

void TPanelMenus::UpdateMenus() {
    FillRowMenu(bracketMenu_);
    FillRowMenu(conditionMenu_);
    valueMenu_.Items = {MakeItem(panel_.GetTitle("ttlConstant"), pcConstant),
                        MakeItem(panel_.GetTitle("ttlParameter"), pcParameter)};
}

void TPanelMenus::FillRowMenu(TPopupMenu& menu) const {
    TMenuItem custom = MakeItem(panel_.GetTitle("ttlCustomCond"), pcNone);
    custom.IsSubMenu = true;
    if (const TVCustomDBStructure* const model = panel_.GetDbStruct())
        for (int i = 0; i < model->GetConditionCount(); ++i)
            custom.Items.push_back(CustomConditionItem(*model, i));
    custom.Enabled = !custom.Items.empty();
    menu.Items = {MakeItem(panel_.GetTitle("ttlAddCond"), pcAddCondition),
                  MakeItem(panel_.GetTitle("ttlAddBracket"), pcAddBracket),
                  std::move(custom),
                  MakeItem(panel_.GetTitle("ttlDelRow"), pcDeleteRow),
                  MakeItem(std::string(SeparatorCaption), pcNone),
                  MakeItem(panel_.GetTitle("ttlEnableDisable"), pcEnableDisable)};
}

bool TPanelMenus::IsEnabled(int command) const {
    const TFilterRow* const row = panel_.GetCurrentRow();
    switch (command) {
    case pcAddCondition:
    case pcCustomCondition:
    case pcAddBracket:
        return panel_.GetCurrentBracket() && panel_.GetCurrentBracket()->GetRowLevel() < MaxRowLevel;
    case pcDeleteRow:
        return row && row->GetParent();
    case pcEnableDisable:
        return row != nullptr;
    default:
        return false;
    }
}

// The model tells nobody when it gets a condition, so the submenu is made anew.
void TPanelMenus::VPopup(TPopupMenu& menu) {
    if (&menu == &valueMenu_)
        return;
    FillRowMenu(menu);
    for (TMenuItem& item : menu.Items)
        if (!item.IsSubMenu && !item.IsSeparator())
            item.Enabled = IsEnabled(item.Command);
        else if (item.IsSubMenu)
            item.Enabled = !item.Items.empty() && IsEnabled(pcCustomCondition);
}

void TPanelMenus::ValuePopup(const TFilterCond& condition, int value) {
    for (TMenuItem& item : valueMenu_.Items) {
        item.Checked = (item.Command == pcParameter) == condition.GetValueIsParam(value);
        item.Enabled = item.Command == pcConstant || item.Checked || panel_.AllowsParam(condition, value);
    }
}

TPopupMenu& TPanelMenus::MenuOf(const TFilterRow& row) {
    return row.GetRowType() == frtBracket ? bracketMenu_ : conditionMenu_;
}

void TPanelMenus::MenuItemClick(const TMenuItem& item) {
    if (!IsEnabled(item.Command))
        return;
    TFilterRow& row = *panel_.GetCurrentRow();
    switch (item.Command) {
    case pcAddCondition:
        panel_.AddCondition(*panel_.GetCurrentBracket());
        break;
    case pcAddBracket:
        panel_.AddBracket(*panel_.GetCurrentBracket());
        break;
    case pcCustomCondition:
        AddCustomConditionClick(item.Index);
        break;
    case pcDeleteRow:
        panel_.DeleteCurRow();
        break;
    case pcEnableDisable:
        row.SetEnabled(!row.GetEnabled());
        break;
    default:
        break;
    }
}

void TPanelMenus::AddCustomConditionClick(int condition) {
    const TVCustomDBStructure* const model = panel_.GetDbStruct();
    TFilterBracket* const bracket = panel_.GetCurrentBracket();
    if (model && bracket && condition >= 0 && condition < model->GetConditionCount())
        panel_.AddCustomCondition(*bracket, *model->GetCondition(condition));
}

void TPanelMenus::ValueMenuItemClick(const TMenuItem& item, TFilterCond& condition, int value) {
    if (item.Command == pcConstant)
        condition.SetValueIsParam(value, false);
    else if (item.Command == pcParameter && panel_.AllowsParam(condition, value))
        condition.SetValueIsParam(value, true);
}

} // namespace lumora
