// The keyboard: what a key does, and the word of the current row that it acts on.
#pragma once

#include "lumora/platform/keys.h"

namespace lumora {

class TFilterRow;
class TQueryScreen;

class TScreenKeyboard {
public:
    explicit TScreenKeyboard(TQueryScreen& screen) : screen_(screen) {}

    // True when the key was handled.
    bool KeyDown(int key, TShiftState shift);

    // The current word as its index in ScreenWords of the current row; -1 when there is none. The words that
    // drop down an editor, and a value that is a parameter, can be current.
    int GetCurControl() const;
    void SetCurControl(int word);
    // Each moves to another word; false when the word stays. The first of these has no word before it.
    bool FirstCurControl();
    bool NextCurControl();
    bool PrevCurControl();
    // The current row is another one now.
    void RowChanged() { control_ = 0; }

private:
    bool StepControl(int by);
    bool Insert(TShiftState shift);
    bool DropDown();
    bool HandleRowKey(int key, TShiftState shift);

    TQueryScreen& screen_;
    int control_ = 0; // among the words that can be current
};

} // namespace lumora
