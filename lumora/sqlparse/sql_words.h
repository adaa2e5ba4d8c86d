// The words that the SELECT parser knows.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace lumora {

enum TSQLWord : std::uint8_t {
    swNone, // any other identifier, and what is no identifier
    swAnd,
    swAs,
    swAsc,
    swBetween,
    swBy,
    swCase,
    swCross,
    swDesc,
    swDistinct,
    swEnd,
    swExcept,
    swFetch,
    swFrom,
    swFull,
    swGroup,
    swHaving,
    swIlike,
    swIn,
    swInner,
    swIntersect,
    swIs,
    swJoin,
    swLeft,
    swLike,
    swLimit,
    swMinus,
    swNatural,
    swNot,
    swNull,
    swOffset,
    swOn,
    swOr,
    swOrder,
    swOuter,
    swOver,
    swRight,
    swSelect,
    swUnion,
    swUsing,
    swWhere,
    swWindow,
    swWith
};

inline constexpr std::size_t SQLWordCount = swWith + 1; // swNone included

// Which of the words an identifier is, letter case ignored.
TSQLWord SQLWordOf(std::string_view identifier);
// The word in small letters; nothing for swNone.
std::string_view SQLWordText(TSQLWord word);

// Whether a clause of a SELECT statement, or another statement joined to it, begins with the word.
constexpr bool BeginsClause(TSQLWord word) {
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
