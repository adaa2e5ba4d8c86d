#include "lumora/screen/keyboard.h"

#include "lumora/model/structure.h"
#include "lumora/query/filter_rows.h"
#include "lumora/query/query.h"
#include "lumora/screen/query_screen.h"
#include "lumora/screen/screen_words.h"

#include <algorithm>

namespace lumora {

namespace {

// The indexes of the words that the keyboard can stand on.
std::vector<int> ControlsOf(const TQueryScreen& screen) {
    std::vector<int> controls;
    if (!screen.GetCurrentRow())
        return controls;
    const std::vector<TScreenWord> words = ScreenWords(screen, *screen.GetCurrentRow());
    for (std::size_t i = 0; i < words.size(); ++i)
        if (words[i].Action == waEditor || words[i].Action == waValueMenu)
            controls.push_back(static_cast<int>(i));
    return controls;
}

} // namespace

// The words may have become fewer since the last move.
int TScreenKeyboard::GetCurControl() const {
    const std::vector<int> controls = ControlsOf(screen_);
    if (controls.empty())
        return -1;
    return controls[static_cast<std::size_t>(std::min(control_, static_cast<int>(controls.size()) - 1))];
}

void TScreenKeyboard::SetCurControl(int word) {
    const std::vector<int> controls = ControlsOf(screen_);
    for (std::size_t i = 0; i < controls.size(); ++i)
        if (controls[i] == word)
            control_ = static_cast<int>(i);
}

bool TScreenKeyboard::FirstCurControl() {
    const int before = GetCurControl();
    control_ = 0;
    return GetCurControl() != before;
}

bool TScreenKeyboard::StepControl(int by) {
    const int last = static_cast<int>(ControlsOf(screen_).size()) - 1;
    const int from = std::min(control_, last);
    if (from < 0 || from + by < 0 || from + by > last)
        return false;
    control_ = from + by;
    return true;
}

bool TScreenKeyboard::NextCurControl() {
    return StepControl(1);
}

bool TScreenKeyboard::PrevCurControl() {
    return StepControl(-1);
}

bool TScreenKeyboard::KeyDown(int key, TShiftState shift) {
    if (!screen_.GetActive() || !screen_.GetAppearance().GetOptions().Contains(aoAllowKeyboard))
        return false;
    switch (key) {
    case keyEnter:
    case keyLeft:
    case keyUp:
    case keyRight:
    case keyDown:
    case keyDelete:
        return screen_.GetCurrentRow() && IsRowVisible(screen_, *screen_.GetCurrentRow()) &&
               HandleRowKey(key, shift);
    case keyInsert:
        return Insert(shift);
    default:
        return false;
    }
}

// Alt goes to the row's first word and opens its editor. Otherwise a condition comes right behind the current
// row, so it is the first one in a bracket that is current.
bool TScreenKeyboard::Insert(TShiftState shift) {
    if (shift.Contains(ssAlt)) {
        FirstCurControl();
        return DropDown();
    }
    const bool isOnRow = screen_.GetCurrentRow() != nullptr; // no row is current once all are deleted
    TFilterBracket* const bracket =
        isOnRow ? screen_.GetCurrentBracket() : screen_.GetQuery().GetRootBracket();
    if (bracket->GetRowLevel() >= MaxRowLevel || !(shift.Empty() || shift.Contains(ssCtrl)))
        return false;
    screen_.AddConditionNum(*bracket, 1 + (isOnRow ? screen_.GetCurrentRowNum() : bracket->GetLastRowNum()));
    return true;
}

bool TScreenKeyboard::DropDown() {
    const int control = GetCurControl();
    if (control < 0 || !IsRowVisible(screen_, *screen_.GetCurrentRow()))
        return false;
    screen_.ClickWord(*screen_.GetCurrentRow(), control);
    return true;
}

bool TScreenKeyboard::HandleRowKey(int key, TShiftState shift) {
    const bool plain = shift.Empty();
    const bool ctrl = shift.Contains(ssCtrl);
    if (!plain && !ctrl)
        return false;
    switch (key) {
    case keyUp:
        plain ? screen_.DecCurRow() : screen_.MoveCurRowUp();
        return true;
    case keyDown:
        plain ? screen_.IncCurRow() : screen_.MoveCurRowDown();
        return true;
    case keyLeft:
        if (!plain)
            screen_.MoveCurRowLeft();
        else if (PrevCurControl())
            screen_.View().RepaintRow(*screen_.GetCurrentRow());
        return true;
    case keyRight:
        if (!plain)
            screen_.MoveCurRowRight();
        else if (NextCurControl())
            screen_.View().RepaintRow(*screen_.GetCurrentRow());
        return true;
    case keyEnter:
        return plain && DropDown();
    case keyDelete:
        if (plain)
            return false;
        screen_.DeleteCurRow();
        return true;
    default:
        return false;
    }
}

} // namespace lumora
