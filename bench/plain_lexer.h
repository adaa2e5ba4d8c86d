// A lexer that is nothing but a table: what the scanner is measured against.
#pragma once

#include <cstddef>
#include <string_view>

namespace lumora::bench {

// The number of tokens in a text, found by their ends; whether they make sense is not looked at. Tokens end
// where the scanner ends them.
std::size_t CountTokensByTable(std::string_view text);

} // namespace lumora::bench
