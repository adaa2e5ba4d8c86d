// Line breaks of values in the query text, in which a value is one line.
#pragma once

#include <string>
#include <string_view>

namespace lumora {

class TFilterCond;
class TFilterRow;

// What a text needs of its reader that has such values.
inline constexpr std::string_view NeedBreaks = "Breaks";

// Whether the condition, or one below the bracket, has a value with line breaks that its text is to keep: a
// strict one's; a plain one has blanks in their place.
bool KeepsBreaks(const TFilterRow& row);

// The text in one line, and back: "\n", "\r", and "\\" for a backslash.
std::string EscapeBreaks(std::string_view text);
std::string UnescapeBreaks(std::string_view text);

} // namespace lumora
