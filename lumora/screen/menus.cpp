#include "lumora/screen/menus.h"

#include "lumora/model/structure.h"
#include "lumora/query/filter_rows.h"
#include "lumora/query/query.h"
#include "lumora/screen/query_screen.h"
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

void TScreenMenus::CreateMenus() {
    UpdateMenus();
}

void TScreenMenus::UpdateMenus() {
    FillRowMenu(bracketMenu_);
    FillRowMenu(conditionMenu_);
    valueMenu_.Items = {MakeItem(screen_.GetTitle("ttlConstant"), pcConstant),
                        MakeItem(screen_.GetTitle("ttlParameter"), pcParameter)};
}

void TScreenMenus::FillRowMenu(TPopupMenu& menu) const {
    TMenuItem custom = MakeItem(screen_.GetTitle("ttlCustomCond"), pcNone);
    custom.IsSubMenu = true;
    if (const TVCustomDBStructure* const model = screen_.GetQuery().GetDbStruct())
        for (int i = 0; i < model->GetConditionCount(); ++i)
            custom.Items.push_back(CustomConditionItem(*model, i));
    custom.Enabled = !custom.Items.empty();
    menu.Items = {MakeItem(screen_.GetTitle("ttlAddCond"), pcAddCondition),
                  MakeItem(screen_.GetTitle("ttlAddBracket"), pcAddBracket),
                  std::move(custom),
                  MakeItem(screen_.GetTitle("ttlDelRow"), pcDeleteRow),
                  MakeItem(std::string(SeparatorCaption), pcNone),
                  MakeItem(screen_.GetTitle("ttlEnableDisable"), pcEnableDisable)};
}

bool TScreenMenus::IsEnabled(int command) const {
    const TFilterRow* const row = screen_.GetCurrentRow();
    switch (command) {
    case pcAddCondition:
    case pcCustomCondition:
    case pcAddBracket:
        return screen_.GetCurrentBracket() && screen_.GetCurrentBracket()->GetRowLevel() < MaxRowLevel;
    case pcDeleteRow:
        return row && row->GetParent();
    case pcEnableDisable:
        return row != nullptr;
    default:
        return false;
    }
}

// The model tells nobody when it gets a condition, so the submenu is made anew.
void TScreenMenus::VPopup(TPopupMenu& menu) {
    if (&menu == &valueMenu_)
        return;
    FillRowMenu(menu);
    for (TMenuItem& item : menu.Items)
        if (!item.IsSubMenu && !item.IsSeparator())
            item.Enabled = IsEnabled(item.Command);
        else if (item.IsSubMenu)
            item.Enabled = !item.Items.empty() && IsEnabled(pcCustomCondition);
}

void TScreenMenus::ValuePopup(const TFilterCond& condition, int value) {
    for (TMenuItem& item : valueMenu_.Items) {
        item.Checked = (item.Command == pcParameter) == condition.GetValueIsParam(value);
        item.Enabled = item.Command == pcConstant || item.Checked || screen_.AllowsParam(condition, value);
    }
}

TPopupMenu& TScreenMenus::MenuOf(const TFilterRow& row) {
    return row.GetRowType() == frtBracket ? bracketMenu_ : conditionMenu_;
}

void TScreenMenus::MenuItemClick(const TMenuItem& item) {
    if (!IsEnabled(item.Command))
        return;
    TFilterRow& row = *screen_.GetCurrentRow();
    switch (item.Command) {
    case pcAddCondition:
        screen_.AddCondition(*screen_.GetCurrentBracket());
        break;
    case pcAddBracket:
        screen_.AddBracket(*screen_.GetCurrentBracket());
        break;
    case pcCustomCondition:
        AddCustomConditionClick(item.Index);
        break;
    case pcDeleteRow:
        screen_.DeleteCurRow();
        break;
    case pcEnableDisable:
        row.SetEnabled(!row.GetEnabled());
        break;
    default:
        break;
    }
}

void TScreenMenus::AddCustomConditionClick(int condition) {
    const TVCustomDBStructure* const model = screen_.GetQuery().GetDbStruct();
    TFilterBracket* const bracket = screen_.GetCurrentBracket();
    if (model && bracket && condition >= 0 && condition < model->GetConditionCount())
        screen_.AddCustomCondition(*bracket, *model->GetCondition(condition));
}

void TScreenMenus::ValueMenuItemClick(const TMenuItem& item, TFilterCond& condition, int value) {
    if (item.Command == pcConstant)
        condition.SetValueIsParam(value, false);
    else if (item.Command == pcParameter && screen_.AllowsParam(condition, value))
        condition.SetValueIsParam(value, true);
}

} // namespace lumora
