#include "lumora/panel/screen_words.h"

#include "lumora/panel/Vquerpnl.h"
#include "lumora/support/messages.h"

namespace lumora {

bool IsRowVisible(const TVQueryPanel& panel, const TFilterRow& row) {
    if (!panel.GetActive() || (!row.GetParent() && panel.GetAppearance().GetStyle() == psAndOr))
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

namespace {

// One line of at most MaxScreenCaption characters.
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

TScreenWord MakeWord(const TVQueryPanel& panel, TWordRole role, TWordAction action,
                     std::string_view text = {}) {
    TScreenWord word;
    word.Role = role;
    word.Action = action;
    word.Caption = ScreenCaption(text);
    if (word.Caption.size() != text.size())
        word.FullCaption = text;
    word.Color = ColorOf(panel.GetAppearance(), role);
    word.Name = NameOf(role, word.Caption);
    return word;
}

} // namespace

std::vector<TScreenWord> ScreenWords(const TVQueryPanel& panel, TFilterRow& row) {
    std::vector<TScreenWord> words;
    words.push_back(MakeWord(panel, wrButton, waRowMenu));
    if (panel.GetAppearance().GetOptions().Contains(aoShowCheckBoxes)) {
        words.push_back(MakeWord(panel, wrCheckBox, waToggle));
        words.back().Checked = row.GetEnabled();
    }
    for (const TRowWord& said : RowWords(panel, row, true)) {
        TScreenWord& word = words.emplace_back(MakeWord(panel, said.Role, ActionOf(row, said), said.Caption));
        word.Value = said.Value;
        word.IsPrompt = said.IsPrompt;
        const TRowProblem problem = WordProblem(panel, row, said.Role, said.Value);
        word.State = problem.State;
        word.Problem = problem.Text;
    }
    const bool enabled = IsRowEnabled(row);
    for (TScreenWord& word : words)
        word.Enabled = enabled;
    return words;
}

std::vector<TScreenWord> AddRowWords(const TVQueryPanel& panel) {
    return {MakeWord(panel, wrAddRow, waAddCondition, panel.GetTitle("ttlClickToAdd"))};
}

std::string RowName(const TVQueryPanel& panel, TFilterRow& row) {
    std::string name;
    for (const TRowWord& word : RowWords(panel, row, true))
        name.append(name.empty() ? "" : " ").append(ScreenCaption(word.Caption));
    if (!IsRowEnabled(row))
        name = FormatText(Message(msgRowDisabled), {name});
    if (const TRowProblem problem = RowProblem(panel, row))
        name.append(". ").append(problem.Text);
    return name;
}

std::string WordHint(const TFilterRow& row, const TScreenWord& word) {
    if (!word.Problem.empty())
        return word.Problem;
    if (word.Role == wrValue && word.Value == 1)
        if (const std::string& hint = static_cast<const TFilterCond&>(row).GetHint(); !hint.empty())
            return hint;
    return word.FullCaption;
}

} // namespace lumora
