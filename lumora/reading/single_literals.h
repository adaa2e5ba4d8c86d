// Numbers of a strict statement that a column of single precision is compared with.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace lumora {

struct TDialect;

// The value of a condition that compares as the literal does. Nothing for what is no number, and for one
// that the column can't hold where the engine compares with more digits than the column has.
std::optional<std::string> ValueOfSingle(std::string_view literal, const TDialect& dialect);

} // namespace lumora
