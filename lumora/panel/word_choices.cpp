#include "lumora/panel/word_choices.h"

#include "lumora/panel/Vquerpnl.h"
#include "lumora/support/messages.h"

namespace lumora {

int IndexOfChecked(const std::vector<TDropDownItem>& items) {
    for (std::size_t i = 0; i < items.size(); ++i)
        if (items[i].Checked)
            return static_cast<int>(i);
    return -1;
}

namespace {

TDropDownItem MakeItem(std::string caption, std::string value) {
    TDropDownItem item;
    item.Caption = std::move(caption);
    item.Value = std::move(value);
    return item;
}

// The items are offered as a list; the checked one is the present one.
TDropDownContent ChoiceOf(TDropDownKind kind, std::vector<TDropDownItem> items) {
    TDropDownContent content;
    content.Kind = items.empty() ? ddNone : kind;
    content.CurrentItem = IndexOfChecked(items);
    content.Items = std::move(items);
    if (content.CurrentItem >= 0)
        content.Text = content.Items[static_cast<std::size_t>(content.CurrentItem)].Caption;
    return content;
}

// --- Link words.

constexpr std::string_view LinkTitles[] = {"ttlAll", "ttlAny", "ttlNone", "ttlNotAll"};

std::vector<TDropDownItem> LinkItems(const TVQueryPanel& panel, const TFilterBracket& bracket) {
    std::vector<TDropDownItem> items;
    for (const TFilterLinkType type : {fltAll, fltAny, fltNone, fltNotAll}) {
        if (!panel.GetAppearance().GetLinkTypes().Contains(type))
            continue;
        items.push_back(MakeItem(panel.GetTitle(LinkTitles[type]), std::string(EnumName(type))));
        items.back().Checked = type == bracket.GetLinkType();
    }
    return items;
}

// "and" and "or" change how the rows are joined; whether the whole is negated stays as it is.
std::vector<TDropDownItem> AndOrItems(const TVQueryPanel& panel, const TFilterBracket& bracket) {
    const TFilterLinkType link = bracket.GetLinkType();
    const bool negated = link == fltNone || link == fltNotAll;
    const TFilterLinkType choices[] = {negated ? fltNotAll : fltAll, negated ? fltNone : fltAny};
    std::vector<TDropDownItem> items;
    for (const TFilterLinkType type : choices) {
        if (!panel.GetAppearance().GetLinkTypes().Contains(type))
            continue;
        items.push_back(
            MakeItem(panel.GetTitle(type == choices[0] ? "ttlAnd" : "ttlOr"), std::string(EnumName(type))));
        items.back().Checked = type == link;
    }
    return items;
}

// --- Fields and operators.

class TFieldItems {
public:
    TFieldItems(TVQueryPanel& panel, const TDSField* current) : panel_(panel), current_(current) {}

    std::vector<TDropDownItem> Make() {
        const TVCustomDBStructure& model = *panel_.GetDbStruct();
        const TDSFieldGroupList& groups = model.GetFieldGroups();
        if (model.RootFieldsFirst)
            AddGroup(model.GetRootGroup(), false);
        for (int i = 0; i < groups.Count(); ++i)
            AddGroup(*groups.GetGroup(i), panel_.GetAppearance().GetOptions().Contains(aoShowGroupName));
        if (!model.RootFieldsFirst)
            AddGroup(model.GetRootGroup(), false);
        return std::move(items_);
    }

private:
    void AddGroup(const TDSFieldGroup& group, bool named) {
        int groupImage = -1;
        if (named && panel_.OnGetGroupImageIndex)
            panel_.OnGetGroupImageIndex(panel_, group, groupImage);
        for (const TDSField* const field : group.Fields) {
            TDropDownItem& item =
                items_.emplace_back(MakeItem(field->GetDisplayName(), std::to_string(field->GetID())));
            item.Checked = field == current_;
            item.GroupImageIndex = groupImage;
            if (named)
                item.Group = group.GroupName;
            if (panel_.OnGetItemImageIndex)
                panel_.OnGetItemImageIndex(panel_, *field, item.ImageIndex);
        }
    }

    TVQueryPanel& panel_;
    const TDSField* current_;
    std::vector<TDropDownItem> items_;
};

} // namespace

TDropDownContent LinkContent(const TVQueryPanel& panel, const TFilterBracket& bracket) {
    return ChoiceOf(ddList, LinkItems(panel, bracket));
}

TDropDownContent AndOrContent(const TVQueryPanel& panel, const TFilterBracket& bracket) {
    return ChoiceOf(ddList, AndOrItems(panel, bracket));
}

TDropDownContent FieldContent(TVQueryPanel& panel, const TSimpleCond& condition) {
    const TQPAppearanceOptions options = panel.GetAppearance().GetOptions();
    const bool grouped =
        options.Contains(aoShowGroupName) && panel.GetDbStruct()->GetFieldGroups().Count() > 0;
    const TDropDownKind kind = options.Contains(aoPopupField) ? ddMenu : grouped ? ddTree : ddList;
    TDropDownContent content = ChoiceOf(kind, TFieldItems(panel, condition.GetField()).Make());
    content.MaxMenuItems = panel.GetMaxPopupItemCount();
    content.Prompt = Message(msgFieldPrompt);
    return content;
}

TDropDownContent OperatorContent(const TSimpleCond& condition) {
    std::vector<TDropDownItem> items;
    if (condition.GetField())
        for (const TDSOperator* const op : condition.GetField()->GetOperators()) {
            items.push_back(MakeItem(op->DisplayName, op->GetName()));
            items.back().Checked = op == condition.GetOperator();
        }
    TDropDownContent content = ChoiceOf(ddList, std::move(items));
    content.Prompt = Message(msgOperatorPrompt);
    return content;
}

} // namespace lumora
