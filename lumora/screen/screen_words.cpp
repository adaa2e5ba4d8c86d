#include "lumora/screen/screen_words.h"

#include "lumora/model/structure.h"
#include "lumora/query/filter_rows.h"
#include "lumora/query/query.h"
#include "lumora/screen/query_screen.h"
#include "lumora/support/messages.h"

namespace lumora {

bool IsRowVisible(const TQueryScreen& screen, const TFilterRow& row) {
    if (!screen.GetActive() || (!row.GetParent() && screen.GetAppearance().GetStyle() == psAndOr))
        return false;
    for (const TFilterRow* outer = &row; outer; outer = outer->GetParent())
        if (outer->GetHidden() && outer->GetParent())
            return false;
    return true;
}

bool IsRowEnabled(const TFilterRow& row) {
    for (const TFilterRow* outer = &row; outer; outer = outer->GetParent())
        if (!outer->GetEnabled())
            return false;
    return true;
}

std::string ScreenCaption(std::string_view text) {
    std::string caption;
    int characters = 0;
    for (const char c : text) {
        const bool begins = (static_cast<unsigned char>(c) & 0xC0) != 0x80;
        if (begins && ++characters > MaxScreenCaption)
            return caption + "\xE2\x80\xA6";
        caption += static_cast<unsigned char>(c) < ' ' ? ' ' : c;
    }
    return caption;
}

namespace {

TColor ColorOf(const TQPAppearance& looks, TWordRole role) {
    switch (role) {
    case wrField:
        return looks.GetFieldColor();
    case wrOperator:
        return looks.GetOperatorColor();
    case wrValue:
        return looks.GetValueColor();
    case wrLinkWord:
    case wrAndOr:
        return looks.GetBoolOpColor();
    case wrAddRow:
        return looks.GetAddRowColor();
    case wrButton:
    case wrCheckBox:
        return looks.GetControlBorderColor();
    case wrText:
        break;
    }
    return clNone;
}

TWordAction ActionOf(const TFilterRow& row, const TRowWord& word) {
    if (word.Role == wrText)
        return waNone;
    const bool isParam =
        word.Role == wrValue && static_cast<const TFilterCond&>(row).GetValueIsParam(word.Value);
    return isParam ? waValueMenu : waEditor;
}

std::string NameOf(TWordRole role, const std::string& caption) {
    switch (role) {
    case wrButton:
        return Message(msgRowMenuName);
    case wrCheckBox:
        return Message(msgRowCheckBoxName);
    case wrField:
        return FormatText(Message(msgFieldName), {caption});
    case wrOperator:
        return FormatText(Message(msgOperatorName), {caption});
    case wrValue:
        return FormatText(Message(msgValueName), {caption});
    case wrLinkWord:
    case wrAndOr:
        return FormatText(Message(msgLinkName), {caption});
    case wrText:
    case wrAddRow:
        break;
    }
    return caption;
}

TScreenWord MakeWord(const TQueryScreen& screen, TWordRole role, TWordAction action,
                     std::string_view text = {}) {
    TScreenWord word;
    word.Role = role;
    word.Action = action;
    word.Caption = ScreenCaption(text);
    if (word.Caption.size() != text.size())
        word.FullCaption = text;
    word.Color = ColorOf(screen.GetAppearance(), role);
    word.Name = NameOf(role, word.Caption);
    return word;
}

} // namespace

std::vector<TScreenWord> ScreenWords(const TQueryScreen& screen, TFilterRow& row) {
    std::vector<TScreenWord> words;
    words.push_back(MakeWord(screen, wrButton, waRowMenu));
    if (screen.GetAppearance().GetOptions().Contains(aoShowCheckBoxes)) {
        words.push_back(MakeWord(screen, wrCheckBox, waToggle));
        words.back().Checked = row.GetEnabled();
    }
    for (const TRowWord& said : RowWords(screen, row, true)) {
        TScreenWord& word =
            words.emplace_back(MakeWord(screen, said.Role, ActionOf(row, said), said.Caption));
        word.Value = said.Value;
        word.IsPrompt = said.IsPrompt;
        const TRowProblem problem = WordProblem(screen, row, said.Role, said.Value);
        word.State = problem.State;
        word.Problem = problem.Text;
    }
    const bool enabled = IsRowEnabled(row);
    for (TScreenWord& word : words)
        word.Enabled = enabled;
    return words;
}

std::vector<TScreenWord> AddRowWords(const TQueryScreen& screen) {
    return {MakeWord(screen, wrAddRow, waAddCondition, screen.GetTitle("ttlClickToAdd"))};
}

std::string RowName(const TQueryScreen& screen, TFilterRow& row) {
    std::string name;
    for (const TRowWord& word : RowWords(screen, row, true))
        name.append(name.empty() ? "" : " ").append(ScreenCaption(word.Caption));
    if (!IsRowEnabled(row))
        name = FormatText(Message(msgRowDisabled), {name});
    if (const TRowProblem problem = RowProblem(screen, row))
        name.append(". ").append(problem.Text);
    else if (const std::string remark = RowRemark(row); !remark.empty())
        name.append(". ").append(remark);
    return name;
}

std::string RowPlace(const TQueryScreen& screen, const TFilterRow& row) {
    const TFilterBracket* const bracket = row.GetParent();
    if (!bracket)
        return {};
    int place = 0;
    int count = 0;
    for (int i = 0; i < bracket->GetRowCount(); ++i)
        if (!bracket->GetRow(i)->GetHidden()) {
            ++count;
            place += i <= row.GetIndex() ? 1 : 0;
        }
    return FormatText(Message(msgRowPlace),
                      {std::to_string(place), std::to_string(count), Trim(RowText(screen, *bracket))});
}

std::string WordHint(const TFilterRow& row, const TScreenWord& word) {
    if (!word.Problem.empty())
        return word.Problem;
    if (word.Role == wrValue && word.Value == 1)
        if (const std::string& hint = static_cast<const TFilterCond&>(row).GetHint(); !hint.empty())
            return hint;
    const std::string remark = word.Role == wrValue ? RowRemark(row) : std::string();
    return remark.empty() ? word.FullCaption : remark;
}

} // namespace lumora
