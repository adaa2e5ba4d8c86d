#include "lumora/screen/word_choices.h"

#include "lumora/model/structure.h"
#include "lumora/query/filter_rows.h"
#include "lumora/query/query.h"
#include "lumora/screen/query_screen.h"
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

std::vector<TDropDownItem> LinkItems(const TQueryScreen& screen, const TFilterBracket& bracket) {
    std::vector<TDropDownItem> items;
    for (const TFilterLinkType type : {fltAll, fltAny, fltNone, fltNotAll}) {
        if (!screen.GetAppearance().GetLinkTypes().Contains(type))
            continue;
        items.push_back(MakeItem(screen.GetTitle(LinkTitles[type]), std::string(EnumName(type))));
        items.back().Checked = type == bracket.GetLinkType();
    }
    return items;
}

// "and" and "or" change how the rows are joined; whether the whole is negated stays as it is.
std::vector<TDropDownItem> AndOrItems(const TQueryScreen& screen, const TFilterBracket& bracket) {
    const TFilterLinkType link = bracket.GetLinkType();
    const bool negated = link == fltNone || link == fltNotAll;
    const TFilterLinkType choices[] = {negated ? fltNotAll : fltAll, negated ? fltNone : fltAny};
    std::vector<TDropDownItem> items;
    for (const TFilterLinkType type : choices) {
        if (!screen.GetAppearance().GetLinkTypes().Contains(type))
            continue;
        items.push_back(
            MakeItem(screen.GetTitle(type == choices[0] ? "ttlAnd" : "ttlOr"), std::string(EnumName(type))));
        items.back().Checked = type == link;
    }
    return items;
}

// --- Fields and operators.

// Without an operator nothing can be asked of a field.
bool IsOffered(const TDSField& field) {
    return field.GetOperatCount() > 0;
}

class TFieldItems {
public:
    TFieldItems(TQueryScreen& screen, const TDSField* current) : screen_(screen), current_(current) {}

    std::vector<TDropDownItem> Make() {
        const TVCustomDBStructure& model = *screen_.GetQuery().GetDbStruct();
        const TDSFieldGroupList& groups = model.GetFieldGroups();
        if (model.RootFieldsFirst)
            AddGroup(model.GetRootGroup(), false);
        for (int i = 0; i < groups.Count(); ++i)
            AddGroup(*groups.GetGroup(i), screen_.GetAppearance().GetOptions().Contains(aoShowGroupName));
        if (!model.RootFieldsFirst)
            AddGroup(model.GetRootGroup(), false);
        return std::move(items_);
    }

private:
    void AddGroup(const TDSFieldGroup& group, bool named) {
        int groupImage = -1;
        if (named)
            screen_.Host().GroupImage(group, groupImage);
        for (const TDSField* const field : group.Fields) {
            if (!IsOffered(*field) && field != current_)
                continue;
            TDropDownItem& item =
                items_.emplace_back(MakeItem(field->GetDisplayName(), std::to_string(field->GetID())));
            item.Checked = field == current_;
            item.GroupImageIndex = groupImage;
            if (named)
                item.Group = group.GroupName;
            screen_.Host().FieldImage(*field, item.ImageIndex);
        }
    }

    TQueryScreen& screen_;
    const TDSField* current_;
    std::vector<TDropDownItem> items_;
};

} // namespace

TDSField* FirstOfferedField(const TVCustomDBStructure& model) {
    for (int i = 0; i < model.GetFieldCount(); ++i)
        if (IsOffered(*model.GetField(i)))
            return model.GetField(i);
    return model.GetFieldCount() > 0 ? model.GetField(0) : nullptr;
}

TDropDownContent LinkContent(const TQueryScreen& screen, const TFilterBracket& bracket) {
    return ChoiceOf(ddList, LinkItems(screen, bracket));
}

TDropDownContent AndOrContent(const TQueryScreen& screen, const TFilterBracket& bracket) {
    return ChoiceOf(ddList, AndOrItems(screen, bracket));
}

TDropDownContent FieldContent(TQueryScreen& screen, const TSimpleCond& condition) {
    const TQPAppearanceOptions options = screen.GetAppearance().GetOptions();
    const bool grouped =
        options.Contains(aoShowGroupName) && screen.GetQuery().GetDbStruct()->GetFieldGroups().Count() > 0;
    const TDropDownKind kind = options.Contains(aoPopupField) ? ddMenu : grouped ? ddTree : ddList;
    TDropDownContent content = ChoiceOf(kind, TFieldItems(screen, condition.GetField()).Make());
    content.MaxMenuItems = screen.GetMaxPopupItemCount();
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
