#include "lumora/platform/datetime.h"

#include <cmath>

namespace lumora {

namespace {

constexpr int FirstDay = -693593; // 0001-01-01
constexpr int LastDay = 2958465;  // 9999-12-31

bool IsLeapYear(int year) {
    return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

int DaysInMonth(int year, int month) {
    static constexpr int days[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return month == 2 && IsLeapYear(year) ? 29 : days[month - 1];
}

// Days from 0001-01-01 to the first of January of a year.
int DaysBeforeYear(int year) {
    const int past = year - 1;
    return past * 365 + past / 4 - past / 100 + past / 400;
}

// A number taken apart: the day, and the milliseconds of it that have passed.
struct TSplit {
    int Day = 0;
    int Milliseconds = 0;
};

TSplit Split(TDateTime value) {
    if (std::isnan(value))
        return {};
    if (value <= FirstDay - 1.0) // the fraction counts away from zero: the first day reaches down to here
        return {FirstDay, 0};
    if (value >= LastDay + 1.0)
        return {LastDay, 0};
    const double day = std::trunc(value);
    TSplit split{static_cast<int>(day), static_cast<int>(std::lround(std::fabs(value - day) *
                                                                     static_cast<double>(MillisecondsADay)))};
    if (split.Milliseconds < MillisecondsADay)
        return split;
    if (split.Day == LastDay)
        return {LastDay, static_cast<int>(MillisecondsADay) - 1};
    return {split.Day + 1, 0};
}

} // namespace

std::optional<TDateTime> TryEncodeDate(int year, int month, int day) {
    if (year < 1 || year > 9999 || month < 1 || month > 12 || day < 1 || day > DaysInMonth(year, month))
        return std::nullopt;
    int days = FirstDay + DaysBeforeYear(year) + day - 1;
    for (int before = 1; before < month; ++before)
        days += DaysInMonth(year, before);
    return days;
}

std::optional<TDateTime> TryEncodeTime(int hour, int minute, int second, int millisecond) {
    if (hour < 0 || hour > 23 || minute < 0 || minute > 59 || second < 0 || second > 59 || millisecond < 0 ||
        millisecond > 999)
        return std::nullopt;
    const int milliseconds = ((hour * 60 + minute) * 60 + second) * 1000 + millisecond;
    return static_cast<double>(milliseconds) / static_cast<double>(MillisecondsADay);
}

TDateParts DecodeDate(TDateTime value) {
    const int days = Split(value).Day - FirstDay;
    int year = static_cast<int>(days * 400LL / 146097) + 1; // the right one or the one before
    if (DaysBeforeYear(year + 1) <= days)
        ++year;
    int day = days - DaysBeforeYear(year);
    int month = 1;
    for (; day >= DaysInMonth(year, month); ++month)
        day -= DaysInMonth(year, month);
    return {year, month, day + 1};
}

TTimeParts DecodeTime(TDateTime value) {
    const int milliseconds = Split(value).Milliseconds;
    const int seconds = milliseconds / 1000;
    return {seconds / 3600, seconds / 60 % 60, seconds % 60, milliseconds % 1000};
}

// 0001-01-01 was a Monday.
int DayOfWeek(TDateTime value) {
    return (Split(value).Day - FirstDay + 1) % 7 + 1;
}

TDateTime JoinDateTime(TDateTime date, TDateTime time) {
    const double day = std::trunc(date);
    const double fraction = std::fabs(time - std::trunc(time));
    return day < 0 ? day - fraction : day + fraction;
}

std::int64_t ToMilliseconds(TDateTime value) {
    const TSplit split = Split(value);
    return split.Day * MillisecondsADay + split.Milliseconds;
}

TDateTime OfMilliseconds(std::int64_t milliseconds) {
    std::int64_t ofDay = milliseconds % MillisecondsADay;
    ofDay += ofDay < 0 ? MillisecondsADay : 0;
    const auto day = static_cast<double>((milliseconds - ofDay) / MillisecondsADay);
    return JoinDateTime(day, static_cast<double>(ofDay) / static_cast<double>(MillisecondsADay));
}

bool HasTime(TDateTime value) {
    return Split(value).Milliseconds != 0;
}

} // namespace lumora
