#include "lumora/screen/word_editors.h"

#include "lumora/model/structure.h"
#include "lumora/query/filter_rows.h"
#include "lumora/query/query.h"
#include "lumora/query/strict_checks.h"
#include "lumora/screen/condition_changes.h"
#include "lumora/screen/query_screen.h"
#include "lumora/screen/value_lists.h"
#include "lumora/screen/word_choices.h"
#include "lumora/support/messages.h"
#include "lumora/support/string_helpers.h"

namespace lumora {

namespace {

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

TDropDownContent TWordEditor::GetContent() const {
    if (!row_)
        return {};
    const bool isSimple = row_->GetRowType() == frtSimpleCondition;
    switch (role_) {
    case wrLinkWord:
        return row_->GetRowType() == frtBracket ? LinkContent(screen_, static_cast<TFilterBracket&>(*row_))
                                                : TDropDownContent();
    case wrAndOr:
        return row_->GetParent() ? AndOrContent(screen_, *row_->GetParent()) : TDropDownContent();
    case wrField:
        return isSimple ? FieldContent(screen_, static_cast<TSimpleCond&>(*row_)) : TDropDownContent();
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
    if (kind == vkSubQuery || screen_.Host().HasEditor(condition))
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
    const bool isOpen = list && TakesParts(condition);
    const bool popup = screen_.GetAppearance().GetOptions().Contains(aoPopupValue) && !isOpen;
    TDropDownContent content;
    if (list && NeedsQuery(screen_, *list)) {
        content.LoadItems = [editor = *this] { return editor.LoadItems(); };
    } else {
        content.Items = list ? ListItems(screen_, condition, value_, *list) : BooleanItems(condition, value_);
        content.CurrentItem = IndexOfChecked(content.Items);
    }
    content.Kind = condition.GetValueKind(value_) == vkList ? ddCheckList : popup ? ddMenu : ddList;
    content.Text =
        condition.GetCaption(value_).empty() ? condition.GetValue(value_) : condition.GetCaption(value_);
    content.MaxMenuItems = screen_.GetMaxPopupItemCount();
    content.IsOpenList = isOpen && content.Kind == ddList;
    return content;
}

TDropDownContent TWordEditor::LineContent(const TFilterCond& condition) const {
    const TDSTextEditor* const editor = TextEditorOf(condition);
    TDropDownContent content;
    content.Kind =
        condition.GetValueKind(value_) == vkList ? ddText : LineKind(editor, condition.GetValueType(value_));
    content.Text = condition.GetValue(value_);
    if (const TUserFormats* const formats = screen_.GetUserFormats()) {
        content.Text = ShownValue(*formats, condition, value_, content.Text);
        content.DateSettings = &formats->Dates;
    }
    if (content.Kind == ddMask)
        content.EditMask = editor->EditMask;
    content.Check = [editor = *this](std::string_view text) { return editor.RefusalOfTyped(text); };
    return content;
}

std::optional<std::string> TWordEditor::Understood(std::string_view text) const {
    const TUserFormats* const formats = screen_.GetUserFormats();
    if (!row_ || !formats)
        return std::string(text);
    return StoredValue(*formats, static_cast<TFilterCond&>(*row_), value_, text);
}

std::string TWordEditor::RefusalOfTyped(std::string_view text) const {
    const std::optional<std::string> value = Understood(text);
    if (value)
        return Refusal(*value);
    return FormatText(Message(msgInvalidValue), {text, static_cast<TFilterCond&>(*row_).GetCaptionText()});
}

std::string TWordEditor::Refusal(std::string_view text) const {
    return row_ ? ValueRefusal(static_cast<TFilterCond&>(*row_), value_, text) : std::string();
}

std::vector<TDropDownItem> TWordEditor::LoadItems() const {
    if (!row_)
        return {};
    const auto& condition = static_cast<TFilterCond&>(*row_);
    TDSListEditor* const list = ValueListOf(condition);
    if (!list)
        return {};
    OpenList(screen_, *list);
    return ListItems(screen_, condition, value_, *list);
}

// --- The way back.

std::string TWordEditor::AcceptText(std::string_view text) {
    if (!row_)
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
        ChangeValue(screen_, condition, value_, {}, {});
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
    if (std::string refusal = RefusalOfTyped(text); !refusal.empty())
        return refusal;
    const bool blanksCount =
        condition.GetValueKind(value_) == vkScalar && !IsCheckedType(condition.GetValueType(value_));
    const std::string value = Understood(text).value_or(std::string(text));
    const std::string taken(blanksCount ? value : Trim(value));
    ChangeValue(screen_, condition, value_, taken, CaptionOfValue(condition, value_, taken));
    return {};
}

std::string TWordEditor::AcceptItem(const TDropDownItem& item) {
    if (!row_)
        return {};
    const TVCustomDBStructure& model = *screen_.GetQuery().GetDbStruct();
    switch (role_) {
    case wrLinkWord:
    case wrAndOr:
        if (const int link = EnumOrdinal<TFilterLinkType>(item.Value); link >= 0)
            (role_ == wrAndOr ? *row_->GetParent() : static_cast<TFilterBracket&>(*row_))
                .SetLinkType(static_cast<TFilterLinkType>(link));
        break;
    case wrField:
        if (TDSField* const field = model.FieldByID(XStrToInt(item.Value)))
            ChangeField(screen_, static_cast<TSimpleCond&>(*row_), *field);
        break;
    case wrOperator:
        if (TDSOperator* const op = model.OperatorByName(item.Value))
            ChangeOperator(screen_, static_cast<TSimpleCond&>(*row_), *op);
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
    ChangeValue(screen_, condition, value_, text, item.Caption == text ? std::string() : item.Caption);
    return {};
}

std::string TWordEditor::AcceptChecked(const std::vector<TDropDownItem>& items) {
    if (!row_ || role_ != wrValue)
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
    ChangeValue(screen_, static_cast<TFilterCond&>(*row_), value_, text,
                caption == text ? std::string() : caption);
    return {};
}

// While a window is open anything may happen to the row.
bool TWordEditor::RunDialog() {
    if (!row_ || GetContent().Kind != ddDialog)
        return false;
    auto& condition = static_cast<TFilterCond&>(*row_);
    if (condition.GetValueKind(value_) != vkSubQuery) {
        screen_.Host().EditValue(condition, value_);
        return true;
    }
    TStringList lines = condition.GetSubQuery();
    std::string sql;
    TSQLOptions options = condition.GetSubQueryOptions();
    if (!screen_.Host().EditSubQuery(lines, sql, options) || !row_)
        return false;
    ChangeSubQuery(screen_, condition, value_, lines, sql, options);
    return true;
}

} // namespace lumora
