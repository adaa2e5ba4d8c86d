#include "lumora/query/moment_column.h"

#include "lumora/platform/ascii.h"
#include "lumora/query/date_values.h"
#include "lumora/statement/dialects/dialect.h"

namespace lumora {

namespace {

constexpr std::int64_t EpochStart = 25569 * MillisecondsADay;               // 1970-01-01
constexpr std::int64_t LastMillisecond = 2958466 * MillisecondsADay - 1;    // of 9999-12-31
constexpr std::int64_t JulianHalfMilliseconds = 4830037 * MillisecondsADay; // of 1899-12-30, twice 2415018.5

// A number that was multiplied by 10 to the power `decimals`, without zeros at its end.
void AppendScaled(std::string& out, std::int64_t number, std::size_t decimals) {
    std::string digits = std::to_string(number < 0 ? -number : number);
    if (digits.size() <= decimals)
        digits.insert(0, decimals + 1 - digits.size(), '0');
    digits.insert(digits.size() - decimals, 1, '.');
    digits.erase(digits.find_last_not_of('0') + 1);
    if (digits.back() == '.')
        digits.pop_back();
    (out += number < 0 ? "-" : "") += digits;
}

// `halves` is in half milliseconds, for a bound stands between two of them: the engine's own reckoning with
// parts of days is no more exact.
void AppendJulian(std::string& out, std::int64_t halves) {
    AppendScaled(out, (JulianHalfMilliseconds + halves) * 625 / 108, 9);
}

// Shorter texts come first, so what is zero at the end is left out of a text that others are compared with.
std::string_view ShortestMask(std::int64_t milliseconds) {
    return milliseconds % MillisecondsADay == 0 ? "yyyy-mm-dd"
           : milliseconds % 60000 == 0          ? "yyyy-mm-dd hh:nn"
           : milliseconds % 1000 == 0           ? "yyyy-mm-dd hh:nn:ss"
                                                : "yyyy-mm-dd hh:nn:ss.zzz";
}

std::string_view MaskOf(TDateStorage storage, std::int64_t milliseconds) {
    const bool whole = milliseconds % 1000 == 0;
    switch (storage) {
    case dsDay:
        return "yyyy-mm-dd";
    case dsMomentT:
        return whole ? "yyyy-mm-dd'T'hh:nn:ss" : "yyyy-mm-dd'T'hh:nn:ss.zzz";
    case dsMomentFraction:
        return "yyyy-mm-dd hh:nn:ss.zzz";
    default:
        return whole ? "yyyy-mm-dd hh:nn:ss" : "yyyy-mm-dd hh:nn:ss.zzz";
    }
}

void AppendText(std::string& out, std::string_view mask, std::int64_t milliseconds) {
    out += FormatDateTime(mask, OfMilliseconds(milliseconds), IsoFormatSettings());
}

} // namespace

bool IsNumberStorage(TDateStorage storage) {
    return storage == dsEpochSeconds || storage == dsEpochMilliseconds || storage == dsJulianDay;
}

bool TMomentColumn::IsText() const {
    return !IsNumberStorage(storage_) && (storage_ != dsAsType || dialect_.ComparesDatesAsText);
}

// Texts of another order than year, month, day can be equal only.
bool TMomentColumn::KeepsTimes() const {
    if (storage_ != dsAsType)
        return storage_ != dsDay;
    const std::string& mask = formats_.GetDateTime();
    const bool isOrdered = SameText(mask.substr(0, 10), "yyyy-mm-dd") && mask.size() > 10;
    return type_ == ftDateTime && (!dialect_.ComparesDatesAsText || isOrdered);
}

bool TMomentColumn::KeepsFinerMoments() const {
    return storage_ != dsAsType && storage_ != dsMoment;
}

bool TMomentColumn::CanKeep(const TReadDateTime& value) const {
    const bool daysOnly = storage_ == dsDay || (storage_ == dsAsType && type_ == ftDate);
    return !daysOnly || !HasTime(value.Value);
}

TMomentColumn::TStretch TMomentColumn::StretchOf(const TReadDateTime& value) const {
    const std::int64_t start = ToMilliseconds(value.Value);
    const std::int64_t length = value.Precision == dpDay      ? MillisecondsADay
                                : value.Precision == dpSecond ? 1000
                                                              : 1;
    const bool isPoint = !KeepsTimes() || (value.Precision != dpDay && !KeepsFinerMoments());
    return {start, start + length, isPoint};
}

bool TMomentColumn::IsAfterTime(std::int64_t milliseconds) {
    return milliseconds > LastMillisecond;
}

void TMomentColumn::AppendColumn(std::string& out, std::string_view column, std::int64_t bound) const {
    if (storage_ == dsMixedText && bound % MillisecondsADay != 0)
        out.append("replace(").append(column).append(", 'T', ' ')");
    else
        out += column;
}

void TMomentColumn::AppendBound(std::string& out, std::int64_t milliseconds) const {
    const bool isDay = milliseconds % MillisecondsADay == 0;
    if (storage_ == dsJulianDay)
        return AppendJulian(out, 2 * milliseconds - 1);
    if (!IsText() || !(isDay || storage_ == dsMixedText))
        return AppendLiteral(out, milliseconds);
    out += '\'';
    AppendText(out, ShortestMask(milliseconds), milliseconds);
    out += '\'';
}

void TMomentColumn::AppendLiteral(std::string& out, std::int64_t milliseconds) const {
    const bool quotes =
        storage_ == dsAsType ? quoted_ && !DateFormOf(dialect_, type_).IsLiteral : !IsNumberStorage(storage_);
    out += quotes ? "'" : "";
    AppendPoint(out, milliseconds);
    out += quotes ? "'" : "";
}

void TMomentColumn::AppendPoint(std::string& out, std::int64_t milliseconds) const {
    switch (storage_) {
    case dsAsType:
        return AppendDateValue(out, formats_, type_, OfMilliseconds(milliseconds), dialect_);
    case dsEpochSeconds:
        return AppendScaled(out, milliseconds - EpochStart, 3);
    case dsEpochMilliseconds:
        out += std::to_string(milliseconds - EpochStart);
        return;
    case dsJulianDay:
        return AppendJulian(out, 2 * milliseconds);
    default:
        return AppendText(out, MaskOf(storage_, milliseconds), milliseconds);
    }
}

} // namespace lumora
