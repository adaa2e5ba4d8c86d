#include "lumora/reading/single_literals.h"

#include "lumora/platform/ascii.h"
#include "lumora/platform/convert.h"
#include "lumora/statement/dialects/dialect.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace lumora {

std::optional<std::string> ValueOfSingle(std::string_view literal, const TDialect& dialect) {
    const std::string_view pattern = dialect.SingleNumber;
    const std::size_t at = std::min(pattern.find('@'), pattern.size());
    const std::string_view before = pattern.substr(0, at),
                           behind = pattern.substr(std::min(at + 2, pattern.size()));
    const bool isCast = !pattern.empty() && literal.size() > before.size() + behind.size() &&
                        SameText(literal.substr(0, before.size()), before) &&
                        SameText(literal.substr(literal.size() - behind.size()), behind);
    if (isCast)
        literal = literal.substr(before.size(), literal.size() - before.size() - behind.size());
    const std::optional<double> number = TryStrToFloat(literal);
    if (!number)
        return std::nullopt;
    const bool isHeld = std::fabs(*number) <= static_cast<double>(std::numeric_limits<float>::max()) &&
                        static_cast<double>(static_cast<float>(*number)) == *number;
    return isCast || isHeld || pattern.empty() ? std::optional(std::string(Trim(literal))) : std::nullopt;
}

} // namespace lumora
