// Named placeholders, ":name", in the text of a statement.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace lumora {

struct Placeholder {
    std::string_view name; // without the colon
    std::size_t position;  // of the colon
};

// The placeholders of an SQL text in their order, those that occur several times each time. What stands in
// literals, quoted names and comments is none, and neither is a cast ("::date"). A name begins with a letter
// or "_". The views are of the text.
std::vector<Placeholder> findPlaceholders(std::string_view sql);

} // namespace lumora
