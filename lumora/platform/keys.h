// Keys and what is held down with them.
#pragma once

#include "lumora/platform/enum_names.h"
#include "lumora/platform/enum_set.h"

#include <cstdint>
#include <string_view>

namespace lumora {

inline constexpr int keyEnter = 13;
inline constexpr int keyLeft = 37;
inline constexpr int keyUp = 38;
inline constexpr int keyRight = 39;
inline constexpr int keyDown = 40;
inline constexpr int keyInsert = 45;
inline constexpr int keyDelete = 46;

enum TShiftKey : std::uint8_t { ssShift, ssAlt, ssCtrl };
template <>
struct TEnumNames<TShiftKey> {
    static constexpr std::string_view Names[] = {"ssShift", "ssAlt", "ssCtrl"};
};
using TShiftState = TEnumSet<TShiftKey>;

} // namespace lumora
