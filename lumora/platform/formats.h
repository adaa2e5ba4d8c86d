// Format masks for dates and times, and the formats that a program shows and reads them in.
#pragma once

#include "lumora/platform/datetime.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace lumora {

// The defaults are ISO, so that a program behaves the same everywhere; a host sets others.
struct TFormatSettings {
    std::string ShortDateFormat = "yyyy-mm-dd";
    std::string LongDateFormat = "yyyy-mm-dd";
    std::string ShortTimeFormat = "hh:nn";
    std::string LongTimeFormat = "hh:nn:ss";
    std::string DateSeparator = "-";    // what "/" of a mask stands for
    std::string TimeSeparator = ":";    // what ":" of a mask stands for
    std::string DecimalSeparator = "."; // between seconds and milliseconds
    std::string AMString = "AM";
    std::string PMString = "PM";
    std::array<std::string, 12> ShortMonthNames = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                   "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    std::array<std::string, 12> LongMonthNames = {"January",   "February", "March",    "April",
                                                  "May",       "June",     "July",     "August",
                                                  "September", "October",  "November", "December"};
    std::array<std::string, 7> ShortDayNames = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    std::array<std::string, 7> LongDayNames = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                               "Thursday", "Friday", "Saturday"};
    // Years of two digits lie in the hundred years from this one: 50 is 1950 and 49 is 2049. It is fixed, not
    // reckoned from today, so that a text keeps its meaning.
    int FirstTwoDigitYear = 1950;
};

// The settings of the program; it may change them, before threads start.
TFormatSettings& FormatSettings();
// Those that no program changes: a mask's separators are meant as they stand.
const TFormatSettings& IsoFormatSettings();

// The value in a mask: d dd ddd dddd (5 and 6: the short and the long date), m mm mmm mmmm (minutes right
// after an hour), y yy yyyy, h hh (of 12 when am/pm follows), n nn, s ss, z zzz, t tt (the short and the long
// time), am/pm, a/p, ampm (the settings' words), c (date and time, the time left out at midnight), "/" and
// ":" separators, and text in single or double quotes; what is none of these stands as it is. Letter case
// does not matter. Dates outside the years 1 to 9999 show the nearest day inside.
std::string FormatDateTime(std::string_view mask, TDateTime value,
                           const TFormatSettings& settings = FormatSettings());

std::string DateToStr(TDateTime value); // short date
std::string TimeToStr(TDateTime value); // long time
std::string
DateTimeToStr(TDateTime value); // short date, then a blank and the long time unless it is midnight

// How exactly a text says its date or time.
enum TDatePrecision : std::uint8_t {
    dpDay,
    dpSecond, // a time without a fraction
    dpMillisecond,
    dpFiner // digits behind the millisecond, which no TDateTime holds
};
struct TReadDateTime {
    TDateTime Value = 0;
    TDatePrecision Precision = dpDay;
    bool HasDate = false;
};

// A date is three numbers in the order (day, month, year) of the short date format with one separator ("-",
// "/", ".", a blank or the settings' own) between them, or has a month's name ("5 March 2001", "Mar 5,
// 2001"). A year of three or four digits may stand first whatever the order. A day of the week before the
// date is passed over. A time has minutes, then perhaps seconds and a decimal fraction of a second, then
// perhaps AM or PM ("2:30 pm"; "2 pm" too). Blanks around do not matter; anything else around, and what no
// calendar or clock has, gives nothing.
std::optional<TDateTime> TryStrToDate(std::string_view text,
                                      const TFormatSettings& settings = FormatSettings());
std::optional<TDateTime> TryStrToTime(std::string_view text,
                                      const TFormatSettings& settings = FormatSettings());
// A date, a date and a time (a blank, a comma or "T" between them), or a time alone.
std::optional<TDateTime> TryStrToDateTime(std::string_view text,
                                          const TFormatSettings& settings = FormatSettings());
std::optional<TReadDateTime> ReadDateTime(std::string_view text,
                                          const TFormatSettings& settings = FormatSettings());
// The same, EConvertError '"TEXT" is not a valid date and time' instead of nothing.
TDateTime StrToDateTime(std::string_view text);

// TimeToStr with the milliseconds, where there are any.
std::string ExactTimeToStr(TDateTime value);
// The short date, with the time as far as the precision goes, midnight too.
std::string ExactDateTimeToStr(TDateTime value, TDatePrecision precision);
// Reads a text that FormatDateTime wrote with this mask; failing that, a date and time as above with the
// parts in the mask's order. Parts that the mask lacks are the first month, the first day or zero.
std::optional<TDateTime> TryParseDateTime(std::string_view text, std::string_view mask,
                                          const TFormatSettings& settings = FormatSettings());
std::optional<TReadDateTime> ParseDateTime(std::string_view text, std::string_view mask,
                                           const TFormatSettings& settings = FormatSettings());

} // namespace lumora
