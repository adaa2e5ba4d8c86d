#include "panel/word_editors.h"

#include "panel/Vquerpnl.h"
#include "panel/condition_changes.h"
#include "panel/value_lists.h"
#include "query/strict_checks.h"
#include "support/messages.h"
#include "support/string_helpers.h"

namespace lumora {

namespace {

TDropDownItem MakeItem(std::string caption, std::string value) {
    TDropDownItem item;
    item.Caption = std::move(caption);
    item.Value = std::move(value);
    return item;
}

int IndexOfChecked(const std::vector<TDropDownItem>& items) {
    for (std::size_t i = 0; i < items.size(); ++i)
        if (items[i].Checked)
            return static_cast<int>(i);
    return -1;
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

// --- Values.

const TDSTextEditor* TextEditorOf(const TFilterCond& condition) {
    if (condition.GetRowType() != frtSimpleCondition)
        return nullptr;
    const auto& simple = static_cast<const TSimpleCond&>(condition);
    const bool ownType = simple.GetField() && simple.GetExprType() == simple.GetField()->FieldType;
    return ownType ? dynamic_cast<const TDSTextEditor*>(simple.GetField()->GetValueEditor()) : nullptr;
}

TDropDownKind KindByType(TFieldType type) {
    switch (type) {
    case ftDate:
        return ddDate;
    case ftTime:
        return ddTime;
    case ftDateTime:
        return ddDateTime;
    default:
        return IsCheckedType(type) ? ddNumber : ddText;
    }
}

// The line in which one value is entered.
TDropDownKind LineKind(const TDSTextEditor* editor, TFieldType type) {
    const TDropDownKind byType = KindByType(type);
    if (!editor)
        return byType;
    switch (editor->EditKind) {
    case tekMask:
        return ddMask;
    case tekDate:
        return type == ftDateTime ? ddDateTime : ddDate;
    case tekTime:
        return ddTime;
    case tekSimple:
        break;
    }
    return byType == ddNumber ? ddNumber : ddText;
}

// The host edits the value in a window of its own.
bool HasHostEditor(const TVQueryPanel& panel, const TFilterCond& condition) {
    if (condition.GetRowType() == frtCustomCondition)
        return static_cast<bool>(panel.OnCustomValue);
    return panel.OnCustomEdit && static_cast<const TSimpleCond&>(condition).GetCustomData();
}

// A text that is none of a list's items will do where the operator looks for parts of values.
bool TakesParts(const TFilterCond& condition) {
    return condition.GetSQLExpr().find('%') != std::string::npos;
}

const TDropDownItem* FindItem(const std::vector<TDropDownItem>& items, std::string_view text) {
    for (const TDropDownItem& item : items)
        if (SameText(item.Caption, text) || item.Value == text)
            return &item;
    return nullptr;
}

} // namespace

bool TWordEditor::RowIsThere() const {
    return panel_.HasRow(row_);
}

TDropDownContent TWordEditor::GetContent() const {
    if (!RowIsThere())
        return {};
    const bool isSimple = row_->GetRowType() == frtSimpleCondition;
    switch (role_) {
    case wrLinkWord:
        return row_->GetRowType() == frtBracket
                   ? ChoiceOf(ddList, LinkItems(panel_, static_cast<TFilterBracket&>(*row_)))
                   : TDropDownContent();
    case wrAndOr:
        return row_->GetParent() ? ChoiceOf(ddList, AndOrItems(panel_, *row_->GetParent()))
                                 : TDropDownContent();
    case wrField:
        return isSimple ? FieldContent(panel_, static_cast<TSimpleCond&>(*row_)) : TDropDownContent();
    case wrOperator:
        return isSimple ? OperatorContent(static_cast<TSimpleCond&>(*row_)) : TDropDownContent();
    case wrValue:
        return row_->GetRowType() == frtBracket ? TDropDownContent() : ValueContent();
    default:
        return {};
    }
}

TDropDownContent TWordEditor::ValueContent() const {
    const auto& condition = static_cast<TFilterCond&>(*row_);
    const TValueKind kind = condition.GetValueKind(value_);
    TDropDownContent content;
    if (value_ > condition.GetValueCount() || condition.GetValueIsParam(value_))
        return content;
    if (kind == vkSubQuery || HasHostEditor(panel_, condition))
        content.Kind = ddDialog;
    else if (ValueListOf(condition) || condition.GetValueType(value_) == ftBoolean)
        content = ListContent(condition);
    else
        content = LineContent(condition);
    content.Prompt = Message(kind == vkSubQuery ? msgSubQueryPrompt : msgValuePrompt);
    return content;
}

TDropDownContent TWordEditor::ListContent(const TFilterCond& condition) const {
    const TDSListEditor* const list = ValueListOf(condition);
    const bool popup = panel_.GetAppearance().GetOptions().Contains(aoPopupValue);
    TDropDownContent content;
    if (list && NeedsQuery(panel_, *list)) {
        content.LoadItems = [editor = *this] { return editor.LoadItems(); };
    } else {
        content.Items = list ? ListItems(panel_, condition, value_, *list) : BooleanItems(condition, value_);
        content.CurrentItem = IndexOfChecked(content.Items);
    }
    content.Kind = condition.GetValueKind(value_) == vkList ? ddCheckList : popup ? ddMenu : ddList;
    content.Text =
        condition.GetCaption(value_).empty() ? condition.GetValue(value_) : condition.GetCaption(value_);
    content.MaxMenuItems = panel_.GetMaxPopupItemCount();
    content.IsOpenList = list && content.Kind == ddList && TakesParts(condition);
    return content;
}

TDropDownContent TWordEditor::LineContent(const TFilterCond& condition) const {
    const TDSTextEditor* const editor = TextEditorOf(condition);
    TDropDownContent content;
    content.Kind =
        condition.GetValueKind(value_) == vkList ? ddText : LineKind(editor, condition.GetValueType(value_));
    content.Text = condition.GetValue(value_);
    if (content.Kind == ddMask)
        content.EditMask = editor->EditMask;
    content.Check = [editor = *this](std::string_view text) { return editor.Refusal(text); };
    return content;
}

std::string TWordEditor::Refusal(std::string_view text) const {
    return RowIsThere() ? ValueRefusal(static_cast<TFilterCond&>(*row_), value_, text) : std::string();
}

std::vector<TDropDownItem> TWordEditor::LoadItems() const {
    if (!RowIsThere())
        return {};
    const auto& condition = static_cast<TFilterCond&>(*row_);
    TDSListEditor* const list = ValueListOf(condition);
    if (!list)
        return {};
    OpenList(panel_, *list);
    return ListItems(panel_, condition, value_, *list);
}

// --- The way back.

std::string TWordEditor::AcceptText(std::string_view text) {
    if (!RowIsThere())
        return {};
    if (role_ == wrValue && row_->GetRowType() != frtBracket)
        return AcceptValueText(static_cast<TFilterCond&>(*row_), text);
    const TDropDownContent content = GetContent();
    const TDropDownItem* const item = FindItem(content.Items, text);
    return item ? AcceptItem(*item) : FormatText(Message(msgNotInList), {text});
}

std::string TWordEditor::AcceptValueText(TFilterCond& condition, std::string_view text) {
    const TDropDownContent content = GetContent();
    if (Trim(text).empty()) {
        ChangeValue(panel_, condition, value_, {}, {});
        return {};
    }
    if (content.Kind == ddList || content.Kind == ddMenu) {
        try {
            const std::vector<TDropDownItem> items = content.LoadItems ? content.LoadItems() : content.Items;
            if (const TDropDownItem* const item = FindItem(items, text))
                return AcceptItem(*item);
        } catch (const std::exception& error) {
            if (!content.IsOpenList)
                return error.what();
        }
        if (!content.IsOpenList)
            return FormatText(Message(msgNotInList), {text});
    }
    if (std::string refusal = Refusal(text); !refusal.empty())
        return refusal;
    const bool blanksCount =
        condition.GetValueKind(value_) == vkScalar && !IsCheckedType(condition.GetValueType(value_));
    const std::string taken(blanksCount ? text : Trim(text));
    ChangeValue(panel_, condition, value_, taken, CaptionOfValue(condition, value_, taken));
    return {};
}

std::string TWordEditor::AcceptItem(const TDropDownItem& item) {
    if (!RowIsThere())
        return {};
    TVCustomDBStructure& model = *panel_.GetDbStruct();
    switch (role_) {
    case wrLinkWord:
    case wrAndOr:
        if (const int link = EnumOrdinal<TFilterLinkType>(item.Value); link >= 0)
            (role_ == wrAndOr ? *row_->GetParent() : static_cast<TFilterBracket&>(*row_))
                .SetLinkType(static_cast<TFilterLinkType>(link));
        break;
    case wrField:
        if (TDSField* const field = model.FieldByID(XStrToInt(item.Value)))
            ChangeField(panel_, static_cast<TSimpleCond&>(*row_), *field);
        break;
    case wrOperator:
        if (TDSOperator* const op = model.OperatorByName(item.Value))
            ChangeOperator(panel_, static_cast<TSimpleCond&>(*row_), *op);
        break;
    case wrValue:
        return AcceptValueItem(static_cast<TFilterCond&>(*row_), item);
    default:
        break;
    }
    return {};
}

std::string TWordEditor::AcceptValueItem(TFilterCond& condition, const TDropDownItem& item) {
    const bool isList = condition.GetValueKind(value_) == vkList;
    const std::string text = isList ? JoinListValue({item.Value}) : item.Value;
    if (std::string refusal = Refusal(text); !refusal.empty())
        return refusal;
    ChangeValue(panel_, condition, value_, text, item.Caption == text ? std::string() : item.Caption);
    return {};
}

std::string TWordEditor::AcceptChecked(const std::vector<TDropDownItem>& items) {
    if (!RowIsThere() || role_ != wrValue)
        return {};
    std::vector<std::string> values;
    std::string caption;
    for (const TDropDownItem& item : items)
        if (item.Checked) {
            values.push_back(item.Value);
            caption.append(caption.empty() ? "" : ", ").append(item.Caption);
        }
    const std::string text = JoinListValue(values);
    if (std::string refusal = Refusal(text); !refusal.empty())
        return refusal;
    ChangeValue(panel_, static_cast<TFilterCond&>(*row_), value_, text,
                caption == text ? std::string() : caption);
    return {};
}

// While a window is open anything may happen to the row.
bool TWordEditor::RunDialog() {
    if (!RowIsThere() || GetContent().Kind != ddDialog)
        return false;
    auto& condition = static_cast<TFilterCond&>(*row_);
    if (condition.GetValueKind(value_) != vkSubQuery) {
        if (condition.GetRowType() == frtCustomCondition)
            panel_.OnCustomValue(panel_, condition, value_);
        else
            panel_.OnCustomEdit(panel_, condition);
        return true;
    }
    TStringList lines = condition.GetSubQuery();
    std::string sql;
    TSQLOptions options = condition.GetSubQueryOptions();
    if (!panel_.EditSubQuery(lines, sql, options) || !RowIsThere())
        return false;
    ChangeSubQuery(panel_, condition, value_, lines, sql, options);
    return true;
}

} // namespace lumora
