// How a table is joined to one before it.
#pragma once

#include <cstdint>

namespace lumora {

class TDSLink;
class TDSTable;

// The table before stands on the left.
enum TJoinKind : std::uint8_t { jkInner, jkLeft, jkRight, jkFull };
// As the link says it, seen from the table that it joins.
TJoinKind JoinKindOf(const TDSLink& link, const TDSTable* joined);

} // namespace lumora
