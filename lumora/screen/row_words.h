// What a row says: its words, in order.
#pragma once

#include "lumora/platform/enum_names.h"

#include <string>
#include <vector>

namespace lumora {

class TFilterRow;
class TQueryScreen;

enum TWordRole : std::uint8_t {
    wrText, // plain text between the words that do something
    wrField,
    wrOperator,
    wrValue,
    wrLinkWord, // how a bracket's rows are joined
    wrAndOr,    // "and" or "or" before a row
    // On screen only.
    wrButton,   // opens the row's menu
    wrCheckBox, // enables or disables the row
    wrAddRow    // adds a condition
};
template <>
struct TEnumNames<TWordRole> {
    static constexpr std::string_view Names[] = {"wrText",  "wrField",  "wrOperator", "wrValue", "wrLinkWord",
                                                 "wrAndOr", "wrButton", "wrCheckBox", "wrAddRow"};
};

struct TRowWord {
    TWordRole Role = wrText;
    std::string Caption;
    int Value = 0;         // which value, of a value word
    bool IsPrompt = false; // stands for what is not given yet
};

inline constexpr std::size_t MaxRowWords = 10;

// The words that are seen, MaxRowWords at most. `prompts`: a field, operator or value that is not given yet
// has a word as well.
std::vector<TRowWord> RowWords(const TQueryScreen& screen, const TFilterRow& row, bool prompts = false);
// One blank and the caption for each word.
std::string RowText(const TQueryScreen& screen, const TFilterRow& row);

} // namespace lumora
