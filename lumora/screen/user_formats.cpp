#include "lumora/screen/user_formats.h"

#include "lumora/model/Lmglobal.h"
#include "lumora/platform/ascii.h"
#include "lumora/query/filter_rows.h"
#include "lumora/query/strict_checks.h"
#include "lumora/query/value_text.h"
#include "lumora/support/string_helpers.h"

namespace lumora {

namespace {

// Where the digits of the scripts begin.
constexpr char32_t Zeros[] = {0x0660, 0x06F0, 0x07C0, 0x0966, 0x09E6, 0x0A66, 0x0AE6, 0x0B66, 0x0BE6, 0x0C66,
                              0x0CE6, 0x0D66, 0x0E50, 0x0ED0, 0x0F20, 0x1040, 0x17E0, 0x1810, 0xFF10};

// The character of three bytes or two that the text begins with, and its length; 0 for another.
char32_t CharAt(std::string_view text, std::size_t& length) {
    const auto byte = [text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    length = (byte(0) & 0xE0) == 0xC0 ? 2 : (byte(0) & 0xF0) == 0xE0 ? 3 : 1;
    if (length == 1 || text.size() < length)
        return 0;
    char32_t c = byte(0) & (length == 2 ? 0x1Fu : 0x0Fu);
    for (std::size_t i = 1; i < length; ++i)
        c = c << 6 | (byte(i) & 0x3Fu);
    return c;
}

bool IsWideBlank(char32_t c) {
    return c == 0x00A0 || c == 0x2007 || c == 0x2009 || c == 0x202F;
}

// Whether a text direction is set by it, which says nothing.
bool IsDirection(char32_t c) {
    return c == 0x200E || c == 0x200F || c == 0x061C || (c >= 0x202A && c <= 0x202E) ||
           (c >= 0x2066 && c <= 0x2069);
}

// The text with the digits, blanks and minus signs of ASCII.
std::string Plain(std::string_view text) {
    std::string plain;
    for (std::size_t at = 0, length = 1; at < text.size(); at += length) {
        const char32_t c = CharAt(text.substr(at), length);
        std::string shown(text.substr(at, length));
        for (const char32_t zero : Zeros)
            if (c >= zero && c <= zero + 9)
                shown = static_cast<char>('0' + (c - zero));
        if (IsDirection(c))
            shown.clear();
        plain += IsWideBlank(c) ? " " : c == 0x2212 ? "-" : shown;
    }
    return plain;
}

// The digits in the person's own script.
std::string WithDigits(const TUserFormats& formats, std::string_view text) {
    if (formats.ZeroDigit == "0" || formats.ZeroDigit.empty())
        return std::string(text);
    std::string shown;
    for (const char c : text) {
        if (!IsDigit(c)) {
            shown += c;
            continue;
        }
        shown += formats.ZeroDigit;
        shown.back() = static_cast<char>(shown.back() + (c - '0'));
    }
    return shown;
}

// --- Dates.

// Day, month and year in the person's order. Behind the year a month needs no name.
std::string NamedDateMask(const TFormatSettings& settings) {
    const std::string order = LowerAscii(settings.ShortDateFormat);
    const std::size_t d = order.find('d'), m = order.find('m'), y = order.find('y');
    return y < m ? "yyyy-mm-dd" : m < d ? "mmmm d, yyyy" : "d mmmm yyyy";
}

std::string ShownDate(const TUserFormats& formats, TFieldType type, std::string_view stored) {
    const std::optional<TReadDateTime> read = ReadDateTime(stored);
    if (!read || read->Precision == dpFiner || (type != ftTime && !read->HasDate))
        return std::string(stored);
    std::string mask = type == ftTime ? "" : NamedDateMask(formats.Dates);
    if (type == ftTime || read->Precision != dpDay) {
        const bool isExact = read->Precision == dpMillisecond;
        mask += mask.empty() ? "" : " ";
        mask += isExact ? "hh:nn:ss.zzz" : formats.Dates.LongTimeFormat;
    }
    return WithDigits(formats, FormatDateTime(mask, read->Value, formats.Dates));
}

std::optional<std::string> StoredDate(const TUserFormats& formats, TFieldType type, std::string_view typed) {
    const std::optional<TReadDateTime> read = ReadDateTime(Plain(typed), formats.Dates);
    if (!read || read->Precision == dpFiner || (type != ftTime && !read->HasDate))
        return std::nullopt;
    if (type == ftTime)
        return ExactTimeToStr(read->Value);
    return ExactDateTimeToStr(read->Value, read->Precision);
}

// --- Numbers.

std::string ShownNumber(const TUserFormats& formats, TFieldType type, std::string_view stored) {
    if (!IsValidValue(type, stored))
        return std::string(stored);
    return ReplaceText(WithDigits(formats, Trim(stored)), ".", formats.DecimalSeparator);
}

// Without the separators of groups, of which all but the first have three digits.
std::optional<std::string> WithoutGroups(std::string_view number, std::string_view separator) {
    if (separator.empty() || number.find(separator) == std::string_view::npos)
        return std::string(number);
    std::string whole;
    bool isFirst = true;
    for (std::size_t start = 0; start <= number.size();) {
        const std::size_t end = std::min(number.find(separator, start), number.size());
        const std::string_view group = number.substr(start, end - start);
        const std::size_t digits = group.size() - (isFirst && !group.empty() && !IsDigit(group[0]) ? 1 : 0);
        if (digits == 0 || digits > 3 || (!isFirst && digits != 3))
            return std::nullopt;
        whole += group;
        isFirst = false;
        start = end + separator.size();
    }
    return whole;
}

std::optional<std::string> StoredNumber(const TUserFormats& formats, TFieldType type,
                                        std::string_view typed) {
    const std::string text = Plain(Trim(typed)), decimal = Plain(formats.DecimalSeparator);
    const std::size_t point = decimal.empty() ? std::string::npos : text.find(decimal);
    std::optional<std::string> number =
        WithoutGroups(std::string_view(text).substr(0, point), Plain(formats.GroupSeparator));
    if (!number)
        return std::nullopt;
    if (point == std::string::npos && decimal != "." && number->find('.') != std::string::npos)
        return std::nullopt; // a point of another place
    if (point != std::string::npos)
        number->append(".").append(text, point + decimal.size());
    return IsValidValue(type, *number) ? number : std::nullopt;
}

bool HasFormats(TFieldType type) {
    return IsDateOrTime(type) || IsNumber(type);
}

// With what a person parts the items of a list.
char ListSeparator(const TUserFormats& formats, std::string_view typed) {
    const bool isDecimal = Plain(formats.DecimalSeparator) == ",";
    return isDecimal || typed.find(';') != std::string_view::npos ? ';' : ',';
}

} // namespace

std::string ShownValue(const TUserFormats& formats, TFieldType type, std::string_view stored) {
    return IsDateOrTime(type) ? ShownDate(formats, type, stored)
           : IsNumber(type)   ? ShownNumber(formats, type, stored)
                              : std::string(stored);
}

std::optional<std::string> StoredValue(const TUserFormats& formats, TFieldType type, std::string_view typed) {
    return IsDateOrTime(type) ? StoredDate(formats, type, typed)
           : IsNumber(type)   ? StoredNumber(formats, type, typed)
                              : std::optional(std::string(typed));
}

std::string ShownValue(const TUserFormats& formats, const TFilterCond& condition, int value,
                       std::string_view stored) {
    const TFieldType type = condition.GetValueType(value);
    const TValueKind kind = condition.GetValueKind(value);
    if (!HasFormats(type) || kind == vkSubQuery)
        return std::string(stored);
    if (kind == vkScalar)
        return ShownValue(formats, type, stored);
    std::string shown;
    for (const std::string& item : SplitListValue(stored))
        shown.append(shown.empty() ? "" : "; ").append(ShownValue(formats, type, item));
    return shown;
}

std::optional<std::string> StoredValue(const TUserFormats& formats, const TFilterCond& condition, int value,
                                       std::string_view typed) {
    const TFieldType type = condition.GetValueType(value);
    const TValueKind kind = condition.GetValueKind(value);
    if (!HasFormats(type) || kind == vkSubQuery || Trim(typed).empty())
        return std::string(typed);
    if (kind == vkScalar)
        return StoredValue(formats, type, typed);
    std::string stored;
    for (const std::string_view item : SplitText(typed, ListSeparator(formats, typed))) {
        const std::optional<std::string> one = StoredValue(formats, type, item);
        if (!one)
            return std::nullopt;
        stored.append(stored.empty() ? "" : ",").append(*one);
    }
    return stored;
}

} // namespace lumora
