// The words that the query panel and the result fields editor show, in their default texts.
#pragma once

#include "lumora/platform/string_list.h"

#include <span>
#include <string_view>

namespace lumora {

// The default titles: "[section]" lines and key=value lines.
const TStringList& DefaultTitles();
// The keys of the old, positional title forms, by index.
std::span<const std::string_view> OldTitleKeys();

} // namespace lumora
