// How a person types and is shown dates and numbers. What conditions keep does not depend on it.
#pragma once

#include "lumora/platform/field_types.h"
#include "lumora/platform/formats.h"

#include <optional>
#include <string>
#include <string_view>

namespace lumora {

class TFilterCond;

// The names, order and separators of a person's place.
struct TUserFormats {
    TFormatSettings Dates; // dates are typed in the order of ShortDateFormat, or with a month's name
    std::string DecimalSeparator = ".";
    std::string GroupSeparator;  // between thousands; empty: none
    std::string ZeroDigit = "0"; // the other nine follow it
};

// A date is shown with its month's name and all digits of its year, so that it can't be taken for another; a
// number without groups. What is no value of the type is shown as it is.
std::string ShownValue(const TUserFormats& formats, TFieldType type, std::string_view stored);
// What a condition keeps for a typed text; nothing for one that is no value of the type. Digits of all
// scripts are taken. Types without formats keep the text.
std::optional<std::string> StoredValue(const TUserFormats& formats, TFieldType type, std::string_view typed);

// The same for a value of a condition: the items of a list are shown and typed with ";" between them, and
// with
// "," where that is no part of a number.
std::string ShownValue(const TUserFormats& formats, const TFilterCond& condition, int value,
                       std::string_view stored);
std::optional<std::string> StoredValue(const TUserFormats& formats, const TFilterCond& condition, int value,
                                       std::string_view typed);

} // namespace lumora
