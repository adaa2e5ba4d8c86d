// What a storage needs to know of the query texts that it keeps.
#pragma once

#include "lumora/platform/string_list.h"

#include <string>
#include <string_view>

namespace lumora {

// The lines of the description section; empty when there is none.
std::string DescriptionOf(const TStringList& content);

// Makes the text say that its query has this name. A text that says nothing of a name stays as it is.
void PutQueryName(TStringList& content, std::string_view name);

// What keeps the text from being a query text ("it has no section [Main]"); empty when nothing does.
std::string QueryTextFault(const TStringList& content);

} // namespace lumora
