// What a row says: its words, in order.
#pragma once

#include "query/filter_rows.h"

#include <string>
#include <vector>

namespace lumora {

class TVQueryPanel;

enum TWordRole : std::uint8_t {
    wrText, // plain text between the words that do something
    wrField,
    wrOperator,
    wrValue,
    wrLinkWord, // how a bracket's rows are joined
    wrAndOr     // "and" or "or" before a row
};

struct TRowWord {
    TWordRole Role = wrText;
    std::string Caption;
    int Value = 0; // which value, of a value word
};

inline constexpr std::size_t MaxRowWords = 10;

// The words that are seen, MaxRowWords at most.
std::vector<TRowWord> RowWords(const TVQueryPanel& panel, const TFilterRow& row);
// One blank and the caption for each word.
std::string RowText(const TVQueryPanel& panel, const TFilterRow& row);

} // namespace lumora
