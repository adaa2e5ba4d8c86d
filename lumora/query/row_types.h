// Kinds of rows, and how the rows of a bracket are joined.
#pragma once

#include "lumora/platform/enum_names.h"
#include "lumora/platform/enum_set.h"

#include <cstdint>
#include <string_view>

namespace lumora {

enum TFilterRowType : std::uint8_t { frtSimpleCondition, frtBracket, frtCustomCondition };
template <>
struct TEnumNames<TFilterRowType> {
    static constexpr std::string_view Names[] = {"frtSimpleCondition", "frtBracket", "frtCustomCondition"};
};

enum TFilterLinkType : std::uint8_t {
    fltAll,   // all rows hold
    fltAny,   // any row holds
    fltNone,  // no row holds
    fltNotAll // not all rows hold
};
template <>
struct TEnumNames<TFilterLinkType> {
    static constexpr std::string_view Names[] = {"fltAll", "fltAny", "fltNone", "fltNotAll"};
};
using TFilterLinkTypes = TEnumSet<TFilterLinkType>;

} // namespace lumora
