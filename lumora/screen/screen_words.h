// The words that a line shows: those that it says, and those that serve to work with it.
#pragma once

#include "lumora/platform/color.h"
#include "lumora/screen/row_problems.h"

#include <string>
#include <string_view>
#include <vector>

namespace lumora {

// What a click on a word does. Each but waNone is carried out by ClickWord.
enum TWordAction : std::uint8_t {
    waNone,
    waRowMenu,     // shows the row's menu
    waToggle,      // enables or disables the row
    waEditor,      // drops down the word's editor
    waValueMenu,   // shows the value menu: the value is a parameter
    waAddCondition // adds a condition
};

struct TScreenWord {
    TWordRole Role = wrText;
    int Value = 0;           // which value, of a value word
    std::string Caption;     // in one line; a button and a check box have none
    std::string FullCaption; // when Caption had to be cut short
    bool IsPrompt = false;   // the caption stands for what is not given yet: to be drawn faintly
    bool Checked = false;    // of a check box
    bool Enabled = true;     // the row contributes to the statement; drawn faintly otherwise
    TColor Color = clNone;   // clNone: the screen's own
    TWordAction Action = waNone;
    TRowState State = rsReady;
    std::string Problem; // why the word is not ready
    std::string Name;    // for a screen reader: what the word is, and what it says

    bool IsClickable() const { return Action != waNone; }
};

// Captions on screen are cut to this many characters.
inline constexpr int MaxScreenCaption = 80;
// One line of at most so many characters.
std::string ScreenCaption(std::string_view text);

// The words of a row, in order: the button, the check box (aoShowCheckBoxes), and what the row says, with
// prompts for what is not given yet. The root bracket's words are the header's.
std::vector<TScreenWord> ScreenWords(const TQueryScreen& screen, TFilterRow& row);
// The words of the line that adds a condition.
std::vector<TScreenWord> AddRowWords(const TQueryScreen& screen);

// What a screen reader says for a row: its words, prompts included, whether it is disabled, and its problem
// or a remark.
std::string RowName(const TQueryScreen& screen, TFilterRow& row);
// Where a row stands: "row 2 of 4, in: any of the following apply"; of the rows that are not hidden. Empty
// for the root bracket.
std::string RowPlace(const TQueryScreen& screen, const TFilterRow& row);
// The text shown when the pointer rests on a word: its problem, the hint of a sub-query, a remark about the
// row's values, or the caption that was cut; empty: none.
std::string WordHint(const TFilterRow& row, const TScreenWord& word);

// Whether the row has a line on the screen: neither it nor a bracket around it is hidden, and it is not the
// root of a screen that shows no header.
bool IsRowVisible(const TQueryScreen& screen, const TFilterRow& row);
bool IsRowEnabled(const TFilterRow& row); // with all brackets around it

} // namespace lumora
