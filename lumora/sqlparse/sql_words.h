// The words that the SELECT parser knows.
#pragma once

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

// Which of the words an identifier is, letter case ignored.
TSQLWord SQLWordOf(std::string_view identifier);

// Whether a clause of a SELECT statement, or another statement joined to it, begins with the word.
bool BeginsClause(TSQLWord word);

} // namespace lumora
