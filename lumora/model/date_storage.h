// How a column keeps days and moments where its engine has no type for them, or keeps them otherwise than the
// type says.
#pragma once

#include "lumora/platform/enum_names.h"

#include <cstdint>
#include <string_view>

namespace lumora {

enum TDateStorage : std::uint8_t {
    dsAsType,            // as the field's type and the model's formats say
    dsDay,               // '1996-07-08'
    dsMoment,            // '1996-07-08 12:34:56'
    dsMomentFraction,    // '1996-07-08 12:34:56.789'
    dsMomentT,           // '1996-07-08T12:34:56'
    dsMixedText,         // several of these forms of text
    dsEpochSeconds,      // since 1970-01-01, UTC
    dsEpochMilliseconds, // the same
    dsJulianDay          // days and parts of a day since noon of -4713-11-24
};
template <>
struct TEnumNames<TDateStorage> {
    static constexpr std::string_view Names[] = {
        "dsAsType",   "dsDay",       "dsMoment",       "dsMomentFraction",
        "dsMomentT",  "dsMixedText", "dsEpochSeconds", "dsEpochMilliseconds",
        "dsJulianDay"};
};

// What the text of a model with storages needs of its reader.
inline constexpr std::string_view NeedStorage = "Storage";

} // namespace lumora
