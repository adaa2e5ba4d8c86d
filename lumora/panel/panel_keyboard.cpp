#include "lumora/panel/panel_keyboard.h"

#include "lumora/panel/Vquerpnl.h"
#include "lumora/panel/screen_words.h"

#include <algorithm>

namespace lumora {

namespace {

// The indexes of the words that the keyboard can stand on.
std::vector<int> ControlsOf(const TVQueryPanel& panel) {
    std::vector<int> controls;
    if (!panel.GetCurrentRow())
        return controls;
    const std::vector<TScreenWord> words = ScreenWords(panel, *panel.GetCurrentRow());
    for (std::size_t i = 0; i < words.size(); ++i)
        if (words[i].Action == waEditor || words[i].Action == waValueMenu)
            controls.push_back(static_cast<int>(i));
    return controls;
}

} // namespace

// The words may have become fewer since the last move.
int TPanelKeyboard::GetCurControl() const {
    const std::vector<int> controls = ControlsOf(panel_);
    if (controls.empty())
        return -1;
    return controls[static_cast<std::size_t>(std::min(control_, static_cast<int>(controls.size()) - 1))];
}

void TPanelKeyboard::SetCurControl(int word) {
    const std::vector<int> controls = ControlsOf(panel_);
    for (std::size_t i = 0; i < controls.size(); ++i)
        if (controls[i] == word)
            control_ = static_cast<int>(i);
}

bool TPanelKeyboard::FirstCurControl() {
    const int before = GetCurControl();
    control_ = 0;
    return GetCurControl() != before;
}

bool TPanelKeyboard::StepControl(int by) {
    const int last = static_cast<int>(ControlsOf(panel_).size()) - 1;
    const int from = std::min(control_, last);
    if (from < 0 || from + by < 0 || from + by > last)
        return false;
    control_ = from + by;
    return true;
}

bool TPanelKeyboard::NextCurControl() {
    return StepControl(1);
}

bool TPanelKeyboard::PrevCurControl() {
    return StepControl(-1);
}

bool TPanelKeyboard::KeyDown(int key, TShiftState shift) {
    if (!panel_.GetActive() || !panel_.GetAppearance().GetOptions().Contains(aoAllowKeyboard))
        return false;
    switch (key) {
    case keyEnter:
    case keyLeft:
    case keyUp:
    case keyRight:
    case keyDown:
    case keyDelete:
        return panel_.GetCurrentRow() && IsRowVisible(panel_, *panel_.GetCurrentRow()) &&
               HandleRowKey(key, shift);
    case keyInsert:
        return Insert(shift);
    default:
        return false;
    }
}

// Alt goes to the row's first word and opens its editor. Otherwise a condition comes right behind the current
// row, so it is the first one in a bracket that is current.
bool TPanelKeyboard::Insert(TShiftState shift) {
    if (shift.Contains(ssAlt)) {
        FirstCurControl();
        return DropDown();
    }
    const bool isOnRow = panel_.GetCurrentRow() != nullptr; // no row is current once all are deleted
    TFilterBracket* const bracket = isOnRow ? panel_.GetCurrentBracket() : panel_.GetRootBracket();
    if (bracket->GetRowLevel() >= MaxRowLevel || !(shift.Empty() || shift.Contains(ssCtrl)))
        return false;
    panel_.AddConditionNum(*bracket, 1 + (isOnRow ? panel_.GetCurrentRowNum() : bracket->GetLastRowNum()));
    return true;
}

bool TPanelKeyboard::DropDown() {
    const int control = GetCurControl();
    if (control < 0 || !IsRowVisible(panel_, *panel_.GetCurrentRow()))
        return false;
    panel_.ClickWord(*panel_.GetCurrentRow(), control);
    return true;
}

bool TPanelKeyboard::HandleRowKey(int key, TShiftState shift) {
    const bool plain = shift.Empty();
    const bool ctrl = shift.Contains(ssCtrl);
    if (!plain && !ctrl)
        return false;
    switch (key) {
    case keyUp:
        plain ? panel_.DecCurRow() : panel_.MoveCurRowUp();
        return true;
    case keyDown:
        plain ? panel_.IncCurRow() : panel_.MoveCurRowDown();
        return true;
    case keyLeft:
        if (!plain)
            panel_.MoveCurRowLeft();
        else if (PrevCurControl())
            panel_.View().RepaintRow(*panel_.GetCurrentRow());
        return true;
    case keyRight:
        if (!plain)
            panel_.MoveCurRowRight();
        else if (NextCurControl())
            panel_.View().RepaintRow(*panel_.GetCurrentRow());
        return true;
    case keyEnter:
        return plain && DropDown();
    case keyDelete:
        if (plain)
            return false;
        panel_.DeleteCurRow();
        return true;
    default:
        return false;
    }
}

} // namespace lumora
