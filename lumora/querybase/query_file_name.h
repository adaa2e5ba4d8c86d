// The names of files in which queries are kept.
#pragma once

#include <string>
#include <string_view>

namespace lumora {

inline constexpr std::string_view QueryFileExtension = ".qry";

// A name that every file system takes, extension included, from which QueryNameOf gives the query's name
// back. What cannot stand in a file name is written as "%" and two hexadecimal digits for each byte.
// EVQueryBaseError for a name that makes too long a file name.
std::string QueryFileName(std::string_view queryName);

// Whether a file of this name holds a query. Hidden files do not.
bool IsQueryFileName(std::string_view fileName);

// The query's name; of a file name that QueryFileName cannot have made ("100%.qry") all but the extension.
std::string QueryNameOf(std::string_view fileName);

} // namespace lumora
