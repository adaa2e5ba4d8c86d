// Numbers to and from text, "." as decimal separator whatever the locale of the process.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace lumora {

// The platform's strict integer conversion: optional blanks before, a sign, decimal digits (or "$" and
// hexadecimal digits) and nothing else. EConvertError: '"TEXT" is not a valid integer value'.
int StrToInt(std::string_view text);
std::optional<std::int64_t> TryStrToInt64(std::string_view text);

// Decimal number with optional sign, fraction and exponent, blanks around allowed; no "inf", "nan" or
// hexadecimal.
std::optional<double> TryStrToFloat(std::string_view text);
// At most 15 significant digits, as short as they allow.
std::string FloatToStr(double value);

} // namespace lumora
