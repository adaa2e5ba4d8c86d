#include "lumora/sqlparse/sql_words.h"

#include "lumora/platform/ascii.h"

#include <array>
#include <iterator>

namespace lumora {

namespace {

struct TWordEntry {
    std::string_view Text;
    TSQLWord Word;
};

// Sorted by length, then by text.
constexpr TWordEntry Words[] = {{"as", swAs},
                                {"by", swBy},
                                {"in", swIn},
                                {"is", swIs},
                                {"on", swOn},
                                {"or", swOr},
                                {"and", swAnd},
                                {"asc", swAsc},
                                {"end", swEnd},
                                {"not", swNot},
                                {"case", swCase},
                                {"desc", swDesc},
                                {"from", swFrom},
                                {"full", swFull},
                                {"join", swJoin},
                                {"left", swLeft},
                                {"like", swLike},
                                {"null", swNull},
                                {"over", swOver},
                                {"with", swWith},
                                {"cross", swCross},
                                {"fetch", swFetch},
                                {"group", swGroup},
                                {"inner", swInner},
                                {"limit", swLimit},
                                {"minus", swMinus},
                                {"order", swOrder},
                                {"outer", swOuter},
                                {"right", swRight},
                                {"union", swUnion},
                                {"using", swUsing},
                                {"where", swWhere},
                                {"except", swExcept},
                                {"having", swHaving},
                                {"offset", swOffset},
                                {"select", swSelect},
                                {"window", swWindow},
                                {"between", swBetween},
                                {"natural", swNatural},
                                {"distinct", swDistinct},
                                {"intersect", swIntersect}};

constexpr std::size_t LongestWord = 9;

// The index of a letter, letter case ignored; 26 for any other character.
constexpr unsigned LetterOf(char c) {
    const unsigned letter = (static_cast<unsigned char>(c) | 0x20u) - 'a';
    return letter < 26 ? letter : 26;
}

// For each first letter, a bit for each length that a word has, and where the words of a length begin. Most
// identifiers are known to be no word by that alone.
struct TWordIndex {
    std::array<std::uint16_t, 27> LengthsOfLetter{};
    std::array<std::uint8_t, LongestWord + 2> FirstOfLength{};
};

constexpr TWordIndex MakeWordIndex() {
    TWordIndex index;
    for (const TWordEntry& entry : Words)
        index.LengthsOfLetter[LetterOf(entry.Text[0])] |= static_cast<std::uint16_t>(1u << entry.Text.size());
    for (std::size_t length = 0; length <= LongestWord + 1; ++length)
        while (index.FirstOfLength[length] < std::size(Words) &&
               Words[index.FirstOfLength[length]].Text.size() < length)
            ++index.FirstOfLength[length];
    return index;
}

constexpr TWordIndex Index = MakeWordIndex();

} // namespace

TSQLWord SQLWordOf(std::string_view identifier) {
    const std::size_t length = identifier.size();
    if (length > LongestWord || length == 0 ||
        (Index.LengthsOfLetter[LetterOf(identifier[0])] >> length & 1) == 0)
        return swNone;
    for (std::size_t i = Index.FirstOfLength[length]; i < Index.FirstOfLength[length + 1]; ++i)
        if (LetterOf(Words[i].Text[0]) == LetterOf(identifier[0]) && SameText(Words[i].Text, identifier))
            return Words[i].Word;
    return swNone;
}

bool BeginsClause(TSQLWord word) {
    switch (word) {
    case swSelect:
    case swFrom:
    case swWhere:
    case swGroup:
    case swOrder:
    case swHaving:
    case swLimit:
    case swOffset:
    case swFetch:
    case swUnion:
    case swIntersect:
    case swExcept:
    case swMinus:
    case swWindow:
        return true;
    default:
        return false;
    }
}

} // namespace lumora
