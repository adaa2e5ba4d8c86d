#include "lumora/platform/convert.h"

#include "lumora/platform/ascii.h"
#include "lumora/platform/errors.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <locale>
#include <sstream>
#include <system_error>

namespace lumora {

std::optional<std::int64_t> TryStrToInt64(std::string_view text) {
    while (!text.empty() && IsBlank(text.front()))
        text.remove_prefix(1);
    const bool negative = text.substr(0, 1) == "-";
    if (negative || text.substr(0, 1) == "+")
        text.remove_prefix(1);
    const bool hexadecimal = text.substr(0, 1) == "$";
    if (hexadecimal)
        text.remove_prefix(1);
    std::uint64_t magnitude = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, magnitude, hexadecimal ? 16 : 10);
    constexpr auto largest = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    if (text.empty() || error != std::errc() || stop != end || magnitude > largest + (negative ? 1 : 0))
        return std::nullopt;
    return static_cast<std::int64_t>(negative ? 0 - magnitude : magnitude);
}

int StrToInt(std::string_view text) {
    const std::optional<std::int64_t> value = TryStrToInt64(text);
    if (!value || *value < std::numeric_limits<int>::min() || *value > std::numeric_limits<int>::max())
        throw EConvertError("\"" + std::string(text) + "\" is not a valid integer value");
    return static_cast<int>(*value);
}

namespace {

// What the text of a decimal number says: Mantissa * 10^Exponent, unless it has more digits than the mantissa
// holds.
struct TDecimal {
    bool Negative = false;
    bool Whole = true; // Mantissa holds every digit
    std::uint64_t Mantissa = 0;
    int Exponent = 0;
};

// Takes the digits at the start of `text`; false when there are none.
bool TakeDigits(std::string_view& text, TDecimal& number, bool fraction) {
    const std::size_t size = text.size();
    for (; !text.empty() && IsDigit(text.front()); text.remove_prefix(1)) {
        if (number.Mantissa > (std::numeric_limits<std::uint64_t>::max() - 9) / 10) {
            number.Whole = false;
            continue;
        }
        number.Mantissa = number.Mantissa * 10 + static_cast<std::uint64_t>(text.front() - '0');
        if (fraction)
            --number.Exponent;
    }
    return text.size() < size;
}

bool TakeExponent(std::string_view& text, TDecimal& number) {
    if (text.empty() || LowerAscii(text.front()) != 'e')
        return true;
    text.remove_prefix(1);
    const bool negative = text.substr(0, 1) == "-";
    if (negative || text.substr(0, 1) == "+")
        text.remove_prefix(1);
    if (text.empty() || !IsDigit(text.front()))
        return false;
    int exponent = 0;
    for (; !text.empty() && IsDigit(text.front()); text.remove_prefix(1))
        if (exponent < 100000)
            exponent = exponent * 10 + (text.front() - '0');
    number.Exponent += negative ? -exponent : exponent;
    return true;
}

std::optional<TDecimal> ScanDecimal(std::string_view text) {
    TDecimal number;
    number.Negative = text.substr(0, 1) == "-";
    if (number.Negative || text.substr(0, 1) == "+")
        text.remove_prefix(1);
    bool hasDigits = TakeDigits(text, number, false);
    if (text.substr(0, 1) == ".") {
        text.remove_prefix(1);
        hasDigits = TakeDigits(text, number, true) || hasDigits;
    }
    if (!hasDigits || !TakeExponent(text, number) || !text.empty())
        return std::nullopt;
    return number;
}

// The classic locale is named here, so the process's own does not matter.
std::optional<double> ReadWithStream(std::string_view text) {
    std::istringstream stream{std::string(text)};
    stream.imbue(std::locale::classic());
    double value = 0;
    stream >> value;
    // Libraries report a number too small as a failure or not at all; one too large fails and gives the
    // limit.
    if (stream.fail() && std::fabs(value) >= std::numeric_limits<double>::max())
        return std::nullopt;
    return value;
}

} // namespace

std::optional<double> TryStrToFloat(std::string_view text) {
    text = Trim(text);
    const std::optional<TDecimal> number = ScanDecimal(text);
    if (!number)
        return std::nullopt;
    // With both factors exact, one multiplication or division rounds correctly.
    static constexpr double powers[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                        1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                        1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
    if (!number->Whole || number->Mantissa > (std::uint64_t{1} << 53) || std::abs(number->Exponent) > 22)
        return ReadWithStream(text);
    const auto mantissa = static_cast<double>(number->Mantissa);
    const double magnitude =
        number->Exponent < 0 ? mantissa / powers[-number->Exponent] : mantissa * powers[number->Exponent];
    return number->Negative ? -magnitude : magnitude;
}

namespace {

std::string PlaceDecimalPoint(std::string digits, int exponent) {
    const int count = static_cast<int>(digits.size());
    if (exponent < -4 || exponent >= 15) {
        if (count > 1)
            digits.insert(1, ".");
        return digits + "E" + std::to_string(exponent);
    }
    if (exponent < 0)
        return "0." + std::string(static_cast<std::size_t>(-exponent - 1), '0') + digits;
    if (exponent + 1 >= count)
        return digits + std::string(static_cast<std::size_t>(exponent + 1 - count), '0');
    return digits.insert(static_cast<std::size_t>(exponent) + 1, ".");
}

} // namespace

std::string FloatToStr(double value) {
    if (std::isnan(value))
        return "NAN";
    if (std::isinf(value))
        return value < 0 ? "-INF" : "INF";
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%.14e", std::fabs(value));
    // Only the digits are taken: the decimal separator between them is the process locale's.
    std::string digits;
    const char* at = buffer;
    for (; *at != 'e' && *at != '\0'; ++at)
        if (IsDigit(*at))
            digits += *at;
    const int exponent = *at == 'e' ? std::atoi(at + 1) : 0;
    digits.erase(digits.find_last_not_of('0') + 1);
    if (digits.empty())
        return "0";
    return (value < 0 ? "-" : "") + PlaceDecimalPoint(std::move(digits), exponent);
}

} // namespace lumora
