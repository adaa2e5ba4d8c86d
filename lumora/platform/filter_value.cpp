#include "lumora/platform/filter_value.h"

#include "lumora/platform/ascii.h"
#include "lumora/platform/convert.h"
#include "lumora/platform/formats.h"

#include <algorithm>
#include <cmath>

namespace lumora {

namespace {

constexpr std::int64_t DayMilliseconds = 86400000;

TFilterValue OfKind(TFilterValueKind kind, std::int64_t integer) {
    TFilterValue value;
    value.Kind = kind;
    value.Integer = integer;
    return value;
}

bool IsDateLike(const TFilterValue& value) {
    return value.Kind == fvkDate || value.Kind == fvkDateTime;
}

bool IsNumberLike(const TFilterValue& value) {
    return value.Kind == fvkNumber || value.Kind == fvkBoolean;
}

double NumberOf(const TFilterValue& value) {
    return value.Kind == fvkBoolean || value.Whole ? static_cast<double>(value.Integer) : value.Number;
}

// Milliseconds since the first day; the fraction of a date-time number counts away from zero.
std::int64_t MillisecondsOf(TDateTime value) {
    const double days = std::trunc(value);
    const double time = std::fabs(value - days) * static_cast<double>(DayMilliseconds);
    return static_cast<std::int64_t>(days) * DayMilliseconds + std::llround(time);
}

std::int64_t TimeOfDay(std::int64_t milliseconds) {
    const std::int64_t rest = milliseconds % DayMilliseconds;
    return rest < 0 ? rest + DayMilliseconds : rest;
}

TDateTime DateTimeOf(std::int64_t milliseconds) {
    const std::int64_t time = TimeOfDay(milliseconds);
    return JoinDateTime(static_cast<double>((milliseconds - time) / DayMilliseconds),
                        static_cast<double>(time) / static_cast<double>(DayMilliseconds));
}

std::optional<TFilterValue> NumberFromText(std::string_view text) {
    text = Trim(text);
    const std::string_view digits = text.substr(text.starts_with('-') || text.starts_with('+') ? 1 : 0);
    if (std::all_of(digits.begin(), digits.end(), [](char c) { return IsDigit(c); }))
        if (const std::optional<std::int64_t> whole = TryStrToInt64(text))
            return TFilterValue::OfInteger(*whole);
    if (const std::optional<double> number = TryStrToFloat(text))
        return TFilterValue::OfNumber(*number);
    return std::nullopt;
}

std::optional<TFilterValue> BooleanFromText(std::string_view text) {
    text = Trim(text);
    if (SameText(text, "true") || text == "1")
        return TFilterValue::OfBoolean(true);
    if (SameText(text, "false") || text == "0")
        return TFilterValue::OfBoolean(false);
    return std::nullopt;
}

std::optional<TFilterValue> DateFromText(std::string_view text, TFilterValueKind kind,
                                         const TFilterOptions& options) {
    const std::string& mask = kind == fvkDate   ? options.DateMask
                              : kind == fvkTime ? options.TimeMask
                                                : options.DateTimeMask;
    const std::optional<TDateTime> value =
        mask.empty() ? TryStrToDateTime(text) : TryParseDateTime(text, mask);
    if (!value || (kind != fvkTime && TryStrToTime(text))) // a time alone is no date
        return std::nullopt;
    const std::int64_t milliseconds = MillisecondsOf(*value);
    return OfKind(kind, kind == fvkTime ? TimeOfDay(milliseconds) : milliseconds);
}

std::string TextOf(const TFilterValue& value) {
    switch (value.Kind) {
    case fvkNumber:
        return value.Whole ? std::to_string(value.Integer) : FloatToStr(value.Number);
    case fvkBoolean:
        return value.Integer != 0 ? "True" : "False";
    case fvkDate:
        return DateToStr(DateTimeOf(value.Integer));
    case fvkTime:
        return TimeToStr(DateTimeOf(value.Integer));
    case fvkDateTime:
        return DateTimeToStr(DateTimeOf(value.Integer));
    default:
        return value.Text;
    }
}

template <typename T>
int Order(T a, T b) {
    return a < b ? -1 : b < a ? 1 : 0;
}

int CompareTexts(std::string_view a, std::string_view b, bool folded) {
    if (!folded)
        return a.compare(b);
    const std::size_t size = std::min(a.size(), b.size());
    for (std::size_t i = 0; i < size; ++i) {
        const auto left = static_cast<unsigned char>(LowerAscii(a[i]));
        const auto right = static_cast<unsigned char>(LowerAscii(b[i]));
        if (left != right)
            return Order(left, right);
    }
    return Order(a.size(), b.size());
}

} // namespace

TFilterValue TFilterValue::OfText(std::string text) {
    TFilterValue value;
    value.Kind = fvkText;
    value.Text = std::move(text);
    return value;
}

TFilterValue TFilterValue::OfInteger(std::int64_t number) {
    TFilterValue value = OfKind(fvkNumber, number);
    value.Whole = true;
    return value;
}

TFilterValue TFilterValue::OfNumber(double number) {
    TFilterValue value;
    value.Kind = fvkNumber;
    value.Number = number;
    return value;
}

TFilterValue TFilterValue::OfBoolean(bool value) {
    return OfKind(fvkBoolean, value ? 1 : 0);
}

TFilterValue TFilterValue::OfDate(std::int64_t days) {
    return OfKind(fvkDate, days * DayMilliseconds);
}

TFilterValue TFilterValue::OfTime(std::int64_t milliseconds) {
    return OfKind(fvkTime, milliseconds);
}

TFilterValue TFilterValue::OfDateTime(std::int64_t days, std::int64_t milliseconds) {
    return OfKind(fvkDateTime, days * DayMilliseconds + milliseconds);
}

TFilterValueKind FilterKindOf(TFieldType type) {
    if (IsNumber(type))
        return fvkNumber;
    switch (type) {
    case ftString:
    case ftMemo:
    case ftFmtMemo:
    case ftFixedChar:
    case ftWideString:
    case ftOraClob:
    case ftGuid:
        return fvkText;
    case ftBoolean:
        return fvkBoolean;
    case ftDate:
        return fvkDate;
    case ftTime:
        return fvkTime;
    case ftDateTime:
        return fvkDateTime;
    default:
        return fvkNull;
    }
}

std::string_view FilterKindName(TFilterValueKind kind) {
    static constexpr std::string_view names[] = {"null", "text", "number",       "boolean",
                                                 "date", "time", "date and time"};
    return names[kind];
}

std::optional<TFilterValue> ConvertFilterValue(const TFilterValue& value, TFilterValueKind kind,
                                               const TFilterOptions& options) {
    if (kind == fvkNull || value.Kind == kind || value.Kind == fvkNull)
        return value;
    const bool isText = value.Kind == fvkText;
    switch (kind) {
    case fvkText:
        return TFilterValue::OfText(value.Text.empty() ? TextOf(value) : value.Text);
    case fvkNumber:
        if (isText)
            return NumberFromText(value.Text);
        return value.Kind == fvkBoolean ? std::optional(TFilterValue::OfInteger(value.Integer))
                                        : std::nullopt;
    case fvkBoolean:
        if (isText)
            return BooleanFromText(value.Text);
        return value.Kind == fvkNumber ? std::optional(TFilterValue::OfBoolean(NumberOf(value) != 0))
                                       : std::nullopt;
    case fvkTime:
        if (value.Kind == fvkDateTime)
            return TFilterValue::OfTime(TimeOfDay(value.Integer));
        break;
    default:
        if (IsDateLike(value)) // a date and time stays whole: no date is equal to it
            return OfKind(fvkDateTime, value.Integer);
    }
    return isText ? DateFromText(value.Text, kind, options) : std::nullopt;
}

std::optional<int> CompareFilterValues(const TFilterValue& a, const TFilterValue& b,
                                       const TFilterOptions& options) {
    if (a.Kind == fvkNull || b.Kind == fvkNull)
        return std::nullopt;
    if (a.Kind == fvkText && b.Kind == fvkText)
        return CompareTexts(a.Text, b.Text, options.CaseInsensitive);
    if (a.Kind == fvkText || b.Kind == fvkText) {
        const bool left = a.Kind == fvkText;
        const std::optional<TFilterValue> read =
            ConvertFilterValue(left ? a : b, left ? b.Kind : a.Kind, options);
        if (!read)
            return std::nullopt;
        return left ? CompareFilterValues(*read, b, options) : CompareFilterValues(a, *read, options);
    }
    if (IsNumberLike(a) && IsNumberLike(b)) {
        if ((a.Whole || a.Kind == fvkBoolean) && (b.Whole || b.Kind == fvkBoolean))
            return Order(a.Integer, b.Integer);
        const double left = NumberOf(a);
        const double right = NumberOf(b);
        return std::isnan(left) || std::isnan(right) ? std::nullopt : std::optional(Order(left, right));
    }
    if ((IsDateLike(a) && IsDateLike(b)) || a.Kind == b.Kind)
        return Order(a.Integer, b.Integer);
    return std::nullopt;
}

} // namespace lumora
