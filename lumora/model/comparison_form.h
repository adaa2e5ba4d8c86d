// What an operator's template compares: where it holds the field itself against values.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace lumora {

enum TComparison : std::uint8_t {
    cmEqual,
    cmNotEqual,
    cmLess,
    cmLessOrEqual,
    cmGreater,
    cmGreaterOrEqual,
    cmBetween,
    cmNotBetween,
    cmInList,
    cmNotInList
};

// A piece of a template.
struct TComparisonPiece {
    enum TKind : std::uint8_t { Literal, Field, Comparison };

    TKind Kind = Literal;
    std::string Text;               // of a literal
    TComparison Operator = cmEqual; // of a comparison
    int Value = 0;                  // of a comparison: which value, from 1
    int SecondValue = 0;            // of cmBetween and cmNotBetween
};

// The template taken apart into comparisons such as "@f >= '@1'" and what stands between them; empty when it
// has none, or uses a value in another way too.
std::vector<TComparisonPiece> FindComparisons(std::string_view sqlTemplate);

} // namespace lumora
