// Dates and times of a strict statement, as values of conditions.
#pragma once

#include "lumora/statement/dialects/dialect.h"

#include <optional>
#include <string>
#include <string_view>

namespace lumora {

class TFilterCond;
class TVCustomDBStructure;

// The value with which the condition says what the statement says with the literal (its text without quotes).
// Nothing when there is none: the literal is no date or time, is finer than any value, or compares otherwise
// than the column's values do.
std::optional<std::string> ValueOfMomentLiteral(const TVCustomDBStructure& model, const TDialect& dialect,
                                                const TFilterCond& condition, int value,
                                                std::string_view literal, bool quoted);

} // namespace lumora
