// Date-time numbers: days since 1899-12-30, the fraction is the time of day (before that day too, where the
// fraction counts away from zero: -1.25 is 06:00 of 1899-12-29).
#pragma once

#include <cstdint>
#include <optional>

namespace lumora {

using TDateTime = double;
inline constexpr std::int64_t MillisecondsADay = 24 * 60 * 60 * 1000;

struct TDateParts {
    int Year = 0, Month = 0, Day = 0; // years 1 to 9999
};
struct TTimeParts {
    int Hour = 0, Minute = 0, Second = 0, Millisecond = 0;
};

// Nothing when the date (of the Gregorian calendar, also before there was one) does not exist.
std::optional<TDateTime> TryEncodeDate(int year, int month, int day);
// The time as a fraction of a day; nothing when a part is out of its range (hours 0 to 23).
std::optional<TDateTime> TryEncodeTime(int hour, int minute, int second, int millisecond);
// Rounded to the millisecond. Numbers outside the years 1 to 9999 are taken to the nearest day inside, at
// midnight; what is no number counts as 0.
TDateParts DecodeDate(TDateTime value);
TTimeParts DecodeTime(TDateTime value);
// Sunday is 1.
int DayOfWeek(TDateTime value);
// A date and a time of day put together, the right way round for dates before the first day too.
TDateTime JoinDateTime(TDateTime date, TDateTime time);
// Whole milliseconds since the start of 1899-12-30, which do count on before that day; and back.
std::int64_t ToMilliseconds(TDateTime value);
TDateTime OfMilliseconds(std::int64_t milliseconds);
bool HasTime(TDateTime value); // the time of day, rounded to the millisecond, is not midnight

} // namespace lumora
