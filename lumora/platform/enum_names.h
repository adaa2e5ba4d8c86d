// Enumerations carry their names once: a specialisation of TEnumNames with the names in ordinal order.
// Text forms, form files and property sheets all read that table.
#pragma once

#include "lumora/platform/ascii.h"

#include <cstddef>
#include <iterator>
#include <string_view>

namespace lumora {

template <typename E>
struct TEnumNames;

template <typename E>
constexpr int EnumCount = static_cast<int>(std::size(TEnumNames<E>::Names));

// The enumeration name of a value; empty for an ordinal that has none.
template <typename E>
constexpr std::string_view EnumName(E value) {
    const auto ordinal = static_cast<std::size_t>(value);
    return ordinal < std::size(TEnumNames<E>::Names) ? TEnumNames<E>::Names[ordinal] : std::string_view();
}

// The ordinal of an enumeration name, letter case ignored; -1 for an unknown name.
template <typename E>
int EnumOrdinal(std::string_view name) {
    for (int i = 0; i < EnumCount<E>; ++i)
        if (SameText(TEnumNames<E>::Names[i], name))
            return i;
    return -1;
}

} // namespace lumora
