#include "sqlparse/sql_words.h"

#include "platform/ascii.h"

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

// Where the words of each length begin in the table.
constexpr std::array<std::uint8_t, LongestWord + 2> MakeFirstOfLength() {
    std::array<std::uint8_t, LongestWord + 2> first{};
    for (std::size_t length = 0; length <= LongestWord + 1; ++length) {
        std::uint8_t at = 0;
        while (at < std::size(Words) && Words[at].Text.size() < length)
            ++at;
        first[length] = at;
    }
    return first;
}

constexpr auto FirstOfLength = MakeFirstOfLength();

} // namespace

TSQLWord SQLWordOf(std::string_view identifier) {
    if (identifier.size() < 2 || identifier.size() > LongestWord)
        return swNone;
    const char first = LowerAscii(identifier[0]);
    for (std::size_t i = FirstOfLength[identifier.size()]; i < FirstOfLength[identifier.size() + 1]; ++i)
        if (Words[i].Text[0] == first && SameText(Words[i].Text, identifier))
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
