#include "lumora/platform/formats.h"

#include "lumora/platform/ascii.h"
#include "lumora/platform/errors.h"

#include <cstdio>

namespace lumora {

TFormatSettings& FormatSettings() {
    static TFormatSettings settings;
    return settings;
}

const TFormatSettings& IsoFormatSettings() {
    static const TFormatSettings settings;
    return settings;
}

namespace {

// Masks, taken apart for writing and reading alike.

struct TMaskItem {
    char Kind =
        '\''; // the letter in lower case (minutes are 'n' however written), "/" or ":"; "'" for plain text
    std::size_t Count = 0;
    std::string_view Text; // the item as it stands in the mask, without quotes
    bool TwelveHours = false;
};

bool StartsWith(std::string_view text, std::string_view start) {
    return SameText(text.substr(0, start.size()), start);
}

// The am/pm item at the start of the mask; empty when there is none.
std::string_view AmPmItem(std::string_view mask) {
    if (mask.empty() || LowerAscii(mask.front()) != 'a')
        return {};
    for (const std::string_view item : {"am/pm", "ampm", "a/p"})
        if (StartsWith(mask, item))
            return mask.substr(0, item.size());
    return {};
}

// Whether the hour just before this rest of a mask is one of twelve: am/pm comes before another hour does.
bool AmPmFollows(std::string_view rest) {
    char quote = 0;
    for (; !rest.empty(); rest.remove_prefix(1)) {
        const char c = LowerAscii(rest.front());
        if (quote != 0)
            quote = c == quote ? '\0' : quote;
        else if (c == '"' || c == '\'')
            quote = c;
        else if (c == 'h')
            return false;
        else if (c == 'a' && !AmPmItem(rest).empty())
            return true;
    }
    return false;
}

class TMaskScanner {
public:
    explicit TMaskScanner(std::string_view mask) : rest_(mask) {}

    // The next item; nothing at the mask's end.
    std::optional<TMaskItem> Next() {
        if (rest_.empty())
            return std::nullopt;
        const char c = LowerAscii(rest_.front());
        if (c == '"' || c == '\'')
            return TakeQuoted();
        if (const std::string_view item = AmPmItem(rest_); !item.empty()) {
            lastLetter_ = 'a';
            return TMaskItem{'a', 1, Take(item.size())};
        }
        if (std::string_view("dmyhnsztc").find(c) != std::string_view::npos)
            return TakeLetters(c);
        if (c >= 'a' && c <= 'z')
            lastLetter_ = c;
        return TMaskItem{c == '/' || c == ':' ? c : '\'', 1, Take(1)};
    }

private:
    std::string_view Take(std::size_t size) {
        const std::string_view taken = rest_.substr(0, size);
        rest_.remove_prefix(taken.size());
        return taken;
    }

    TMaskItem TakeQuoted() {
        const char quote = rest_.front();
        rest_.remove_prefix(1);
        const std::string_view text = Take(rest_.find(quote));
        if (!rest_.empty())
            rest_.remove_prefix(1);
        return {'\'', 1, text};
    }

    TMaskItem TakeLetters(char letter) {
        std::size_t count = 1;
        while (letter != 'c' && count < rest_.size() && LowerAscii(rest_[count]) == letter)
            ++count;
        TMaskItem item{letter, count, Take(count)};
        if (letter == 'm' && lastLetter_ == 'h')
            item.Kind = 'n';
        item.TwelveHours = letter == 'h' && AmPmFollows(rest_);
        lastLetter_ = item.Kind;
        return item;
    }

    std::string_view rest_;
    char lastLetter_ = 0;
};

// Writing.

class TDateTimeWriter {
public:
    TDateTimeWriter(TDateTime value, const TFormatSettings& settings)
        : value_(value), date_(DecodeDate(value)), time_(DecodeTime(value)), settings_(settings) {}

    void Write(std::string_view mask) {
        TMaskScanner scanner(mask);
        while (const std::optional<TMaskItem> item = scanner.Next())
            WriteItem(*item);
    }
    std::string Take() { return std::move(text_); }

private:
    void WriteItem(const TMaskItem& item) {
        const std::size_t two = item.Count < 2 ? 1 : 2;
        switch (item.Kind) {
        case 'd':
            return WriteDay(item.Count);
        case 'm':
            return WriteMonth(item.Count);
        case 'y':
            return item.Count > 2 ? Number(date_.Year, 4) : Number(date_.Year % 100, 2);
        case 'h':
            return Number(item.TwelveHours ? (time_.Hour + 11) % 12 + 1 : time_.Hour, two);
        case 'n':
            return Number(time_.Minute, two);
        case 's':
            return Number(time_.Second, two);
        case 'z':
            return Number(time_.Millisecond, item.Count < 2 ? 1 : 3);
        case 'a':
            return WriteAmPm(item.Text);
        case 't':
            return WriteFormat(item.Count < 2 ? settings_.ShortTimeFormat : settings_.LongTimeFormat);
        case 'c':
            WriteFormat(settings_.ShortDateFormat);
            if (HasTime(value_)) {
                text_ += ' ';
                WriteFormat(settings_.LongTimeFormat);
            }
            return;
        case '/':
            text_ += settings_.DateSeparator;
            return;
        case ':':
            text_ += settings_.TimeSeparator;
            return;
        default:
            text_ += item.Text;
        }
    }

    void WriteDay(std::size_t count) {
        const auto dayOfWeek = static_cast<std::size_t>(DayOfWeek(value_) - 1);
        if (count <= 2)
            Number(date_.Day, count);
        else if (count == 3)
            text_ += settings_.ShortDayNames[dayOfWeek];
        else if (count == 4)
            text_ += settings_.LongDayNames[dayOfWeek];
        else
            WriteFormat(count == 5 ? settings_.ShortDateFormat : settings_.LongDateFormat);
    }

    void WriteMonth(std::size_t count) {
        const auto month = static_cast<std::size_t>(date_.Month - 1);
        if (count <= 2)
            Number(date_.Month, count);
        else
            text_ += count == 3 ? settings_.ShortMonthNames[month] : settings_.LongMonthNames[month];
    }

    void WriteAmPm(std::string_view item) {
        const bool afternoon = time_.Hour >= 12;
        const std::size_t slash = item.find('/');
        if (slash == std::string_view::npos)
            text_ += afternoon ? settings_.PMString : settings_.AMString;
        else
            text_ += afternoon ? item.substr(slash + 1) : item.substr(0, slash);
    }

    // A format of the settings inside a mask. It is not followed into further formats: they might name each
    // other.
    void WriteFormat(std::string_view format) {
        if (nested_)
            return;
        nested_ = true;
        Write(format);
        nested_ = false;
    }

    void Number(int number, std::size_t digits) {
        const std::string plain = std::to_string(number);
        if (plain.size() < digits)
            text_.append(digits - plain.size(), '0');
        text_ += plain;
    }

    TDateTime value_;
    TDateParts date_;
    TTimeParts time_;
    const TFormatSettings& settings_;
    std::string text_;
    bool nested_ = false;
};

// Reading.

// The parts that were read so far; -1 for none.
struct TReadParts {
    int Year = -1, Month = -1, Day = -1;
    int Hour = -1, Minute = -1, Second = -1, Millisecond = -1;
    int Afternoon = -1;   // 0 for AM, 1 for PM
    bool IsFiner = false; // digits behind the millisecond were passed over

    bool HasDate() const { return Year >= 0 || Month >= 0 || Day >= 0; }
    bool HasTime() const { return Hour >= 0 || Minute >= 0 || Second >= 0 || Millisecond >= 0; }
};

constexpr int OrElse(int part, int value) {
    return part < 0 ? value : part;
}

std::optional<TDateTime> Encode(const TReadParts& parts) {
    if (!parts.HasDate() && !parts.HasTime())
        return std::nullopt;
    TDateTime date = 0;
    if (parts.HasDate()) {
        const auto encoded = TryEncodeDate(parts.Year, OrElse(parts.Month, 1), OrElse(parts.Day, 1));
        if (!encoded)
            return std::nullopt;
        date = *encoded;
    }
    int hour = OrElse(parts.Hour, 0);
    if (parts.Afternoon >= 0) {
        if (hour < 1 || hour > 12)
            return std::nullopt;
        hour = hour % 12 + 12 * parts.Afternoon;
    }
    const auto time =
        TryEncodeTime(hour, OrElse(parts.Minute, 0), OrElse(parts.Second, 0), OrElse(parts.Millisecond, 0));
    return time ? std::optional(JoinDateTime(date, *time)) : std::nullopt;
}

bool IsWordByte(char c) {
    const char lower = LowerAscii(c);
    return (lower >= 'a' && lower <= 'z') || static_cast<unsigned char>(c) >= 0x80;
}

// Takes pieces off the start of a text.
class TTextCursor {
public:
    explicit TTextCursor(std::string_view text) : rest_(text) {}

    bool AtEnd() const { return rest_.empty(); }
    void SkipBlanks() {
        while (!rest_.empty() && IsBlank(rest_.front()))
            rest_.remove_prefix(1);
    }

    bool Take(std::string_view text) {
        if (text.empty() || !StartsWith(rest_, text))
            return false;
        rest_.remove_prefix(text.size());
        return true;
    }

    // A whole word: no letter may follow it.
    bool TakeWord(std::string_view word) {
        const TTextCursor start = *this;
        if (!Take(word))
            return false;
        if (rest_.empty() || !IsWordByte(word.back()) || !IsWordByte(rest_.front()))
            return true;
        *this = start;
        return false;
    }

    // The index of the name that stands here; -1 for none.
    template <std::size_t N>
    int TakeName(const std::array<std::string, N>& names) {
        for (std::size_t i = 0; i < N; ++i)
            if (TakeWord(names[i]))
                return static_cast<int>(i);
        return -1;
    }

    // One to `most` digits; `digits` tells how many there were. -1 for none; more digits stay and make what
    // follows fail.
    int TakeNumber(std::size_t most, std::size_t& digits) {
        int number = 0;
        for (digits = 0; digits < most && digits < rest_.size() && IsDigit(rest_[digits]); ++digits)
            number = number * 10 + (rest_[digits] - '0');
        rest_.remove_prefix(digits);
        return digits == 0 ? -1 : number;
    }
    int TakeNumber(std::size_t most) {
        std::size_t digits = 0;
        return TakeNumber(most, digits);
    }

    // Whether any of the digits that stand here is not zero.
    bool SkipDigits() {
        bool any = false;
        for (; !rest_.empty() && IsDigit(rest_.front()); rest_.remove_prefix(1))
            any = any || rest_.front() != '0';
        return any;
    }

private:
    std::string_view rest_;
};

int FullYear(int year, std::size_t digits, const TFormatSettings& settings) {
    if (digits > 2 || year < 0)
        return year;
    const int century = settings.FirstTwoDigitYear - settings.FirstTwoDigitYear % 100;
    return year >= settings.FirstTwoDigitYear % 100 ? century + year : century + 100 + year;
}

int TakeMonthName(TTextCursor& cursor, const TFormatSettings& settings) {
    const int month = cursor.TakeName(settings.LongMonthNames);
    return (month >= 0 ? month : cursor.TakeName(settings.ShortMonthNames)) + 1;
}

bool TakeDayName(TTextCursor& cursor, const TFormatSettings& settings) {
    return cursor.TakeName(settings.LongDayNames) >= 0 || cursor.TakeName(settings.ShortDayNames) >= 0;
}

bool TakeAmPm(TTextCursor& cursor, const TFormatSettings& settings, TReadParts& parts) {
    for (const std::string_view word :
         {std::string_view(settings.AMString), std::string_view("am"), std::string_view("a")})
        if (cursor.TakeWord(word)) {
            parts.Afternoon = 0;
            return true;
        }
    for (const std::string_view word :
         {std::string_view(settings.PMString), std::string_view("pm"), std::string_view("p")})
        if (cursor.TakeWord(word)) {
            parts.Afternoon = 1;
            return true;
        }
    return false;
}

// The letters d, m and y in the order in which a mask has them; year, month, day when it lacks one.
std::string DateOrder(std::string_view mask, std::string_view otherwise) {
    std::string order;
    TMaskScanner scanner(mask);
    while (const std::optional<TMaskItem> item = scanner.Next()) {
        const bool isPart = item->Kind == 'y' || item->Kind == 'm' || (item->Kind == 'd' && item->Count <= 2);
        if (isPart && order.find(item->Kind) == std::string::npos)
            order += item->Kind;
    }
    return order.size() == 3 ? order : std::string(otherwise);
}

// Reads what a person writes: parts in a known order, whatever stands between them.
class TFreeReader {
public:
    TFreeReader(std::string_view text, std::string order, const TFormatSettings& settings)
        : cursor_(Trim(text)), order_(std::move(order)), settings_(settings) {}

    bool AtEnd() const { return cursor_.AtEnd(); }
    const TReadParts& Parts() const { return parts_; }

    bool ReadDate() {
        if (TakeDayName(cursor_, settings_))
            TakeSeparator();
        TDatePart dateParts[3];
        std::string separators[2];
        for (std::size_t i = 0; i < 3; ++i) {
            if (i > 0 && (separators[i - 1] = TakeSeparator()).empty())
                return false;
            if (!ReadDatePart(dateParts[i]))
                return false;
        }
        return PlaceDateParts(dateParts, separators[0] == separators[1]);
    }

    bool ReadTime() {
        parts_.Hour = cursor_.TakeNumber(2);
        if (parts_.Hour < 0)
            return false;
        const bool hasMinutes = TakeTimeSeparator();
        if (hasMinutes && !ReadMinutes())
            return false;
        cursor_.SkipBlanks();
        return TakeAmPm(cursor_, settings_, parts_) || hasMinutes;
    }

    // What stands between a date and a time.
    bool TakeJoint() {
        if (cursor_.Take("T"))
            return true;
        return !TakeSeparatorFrom({" ", ","}).empty();
    }

private:
    struct TDatePart {
        int Number = -1;
        std::size_t Digits = 0;
        bool IsMonthName = false;
    };

    bool ReadDatePart(TDatePart& part) {
        part.Number = cursor_.TakeNumber(4, part.Digits);
        if (part.Number >= 0)
            return true;
        part.Number = TakeMonthName(cursor_, settings_);
        part.IsMonthName = part.Number > 0;
        return part.IsMonthName;
    }

    // The separator that stands here, with or without blanks around it; empty for none.
    std::string TakeSeparator() { return TakeSeparatorFrom({settings_.DateSeparator, "-", "/", ".", ","}); }
    std::string TakeSeparatorFrom(std::initializer_list<std::string_view> separators) {
        const TTextCursor start = cursor_;
        const bool blank = cursor_.Take(" ") || cursor_.Take("\t");
        cursor_.SkipBlanks();
        for (const std::string_view separator : separators)
            if (cursor_.Take(separator)) {
                cursor_.SkipBlanks();
                return std::string(separator);
            }
        if (blank)
            return " ";
        cursor_ = start;
        return {};
    }

    bool PlaceDateParts(const TDatePart (&dateParts)[3], bool sameSeparators) {
        std::size_t names = 0;
        std::size_t name = 0;
        for (std::size_t i = 0; i < 3; ++i)
            if (dateParts[i].IsMonthName) {
                ++names;
                name = i;
            }
        if (names == 0)
            return sameSeparators &&
                   PlaceNumbers(dateParts, dateParts[0].Digits > 2 ? std::string("ymd") : order_);
        if (names > 1)
            return false;
        std::string order = order_;
        order.erase(order.find('m'), 1);
        const TDatePart& first = dateParts[name == 0 ? 1 : 0];
        const TDatePart& second = dateParts[name == 2 ? 1 : 2];
        if (first.Digits > 2)
            order = "yd";
        else if (second.Digits > 2)
            order = "dy";
        return PlaceNumbers(dateParts, order.insert(name, "m"));
    }

    bool PlaceNumbers(const TDatePart (&dateParts)[3], const std::string& order) {
        for (std::size_t i = 0; i < 3; ++i) {
            const TDatePart& part = dateParts[i];
            if (order[i] == 'y') {
                parts_.Year = FullYear(part.Number, part.Digits, settings_);
                continue;
            }
            if (part.Digits > 2)
                return false;
            (order[i] == 'm' ? parts_.Month : parts_.Day) = part.Number;
        }
        return true;
    }

    bool TakeTimeSeparator() { return cursor_.Take(settings_.TimeSeparator) || cursor_.Take(":"); }

    bool ReadMinutes() {
        parts_.Minute = cursor_.TakeNumber(2);
        if (parts_.Minute < 0 || !TakeTimeSeparator())
            return parts_.Minute >= 0;
        parts_.Second = cursor_.TakeNumber(2);
        if (parts_.Second < 0 ||
            !(cursor_.Take(settings_.DecimalSeparator) || cursor_.Take(".") || cursor_.Take(",")))
            return parts_.Second >= 0;
        std::size_t digits = 0;
        parts_.Millisecond = cursor_.TakeNumber(3, digits);
        for (std::size_t i = digits; i < 3; ++i)
            parts_.Millisecond *= 10;
        parts_.IsFiner = cursor_.SkipDigits(); // what is finer than a millisecond is dropped
        return digits > 0;
    }

    TTextCursor cursor_;
    std::string order_;
    const TFormatSettings& settings_;
    TReadParts parts_;
};

std::optional<TReadDateTime> Evaluate(const TReadParts& parts) {
    const std::optional<TDateTime> value = Encode(parts);
    if (!value)
        return std::nullopt;
    const TDatePrecision precision = parts.IsFiner            ? dpFiner
                                     : parts.Millisecond >= 0 ? dpMillisecond
                                     : parts.HasTime()        ? dpSecond
                                                              : dpDay;
    return TReadDateTime{*value, precision, parts.HasDate()};
}

std::optional<TReadDateTime> ReadFreely(std::string_view text, const std::string& order, bool dateAllowed,
                                        bool timeAllowed, const TFormatSettings& settings) {
    if (dateAllowed) {
        TFreeReader reader(text, order, settings);
        if (reader.ReadDate() &&
            (reader.AtEnd() || (timeAllowed && reader.TakeJoint() && reader.ReadTime() && reader.AtEnd())))
            if (const std::optional<TReadDateTime> read = Evaluate(reader.Parts()))
                return read;
    }
    if (!timeAllowed)
        return std::nullopt;
    TFreeReader reader(text, order, settings);
    return reader.ReadTime() && reader.AtEnd() ? Evaluate(reader.Parts()) : std::nullopt;
}

std::optional<TDateTime> ValueOf(const std::optional<TReadDateTime>& read) {
    return read ? std::optional(read->Value) : std::nullopt;
}

std::string SettingsOrder(const TFormatSettings& settings) {
    return DateOrder(settings.ShortDateFormat, "ymd");
}

// Reads a text exactly as a mask writes it.
class TMaskReader {
public:
    TMaskReader(std::string_view text, const TFormatSettings& settings)
        : cursor_(Trim(text)), settings_(settings) {}

    std::optional<TReadDateTime> Read(std::string_view mask) {
        TMaskScanner scanner(Trim(mask));
        std::optional<TMaskItem> item = scanner.Next();
        while (item) {
            const std::optional<TMaskItem> next = scanner.Next();
            // Numbers that touch are told apart by their width alone.
            if (!ReadItem(*item, next && IsNumber(*next)))
                return std::nullopt;
            item = next;
        }
        return cursor_.AtEnd() ? Evaluate(parts_) : std::nullopt;
    }

private:
    static bool IsNumber(const TMaskItem& item) {
        return std::string_view("yhnsz").find(item.Kind) != std::string_view::npos ||
               ((item.Kind == 'd' || item.Kind == 'm') && item.Count <= 2);
    }

    bool ReadItem(const TMaskItem& item, bool touches) {
        switch (item.Kind) {
        case 'd':
            if (item.Count > 4)
                return false;
            return item.Count > 2 ? TakeDayName(cursor_, settings_) : ReadNumber(parts_.Day, 2, touches);
        case 'm':
            if (item.Count <= 2)
                return ReadNumber(parts_.Month, 2, touches);
            return (parts_.Month = TakeMonthName(cursor_, settings_)) > 0;
        case 'y':
            return ReadYear(item.Count > 2 ? 4 : 2, touches);
        case 'h':
            return ReadNumber(parts_.Hour, 2, touches);
        case 'n':
            return ReadNumber(parts_.Minute, 2, touches);
        case 's':
            return ReadNumber(parts_.Second, 2, touches);
        case 'z':
            return ReadNumber(parts_.Millisecond, 3, item.Count > 1);
        case 'a':
            return TakeAmPm(cursor_, settings_, parts_);
        case 't':
        case 'c':
            return false; // their own formats are read freely
        case '/':
            return cursor_.Take(settings_.DateSeparator) || cursor_.Take("/");
        case ':':
            return cursor_.Take(settings_.TimeSeparator) || cursor_.Take(":");
        default:
            return item.Text.empty() || cursor_.Take(item.Text);
        }
    }

    bool ReadNumber(int& part, std::size_t width, bool exact) {
        std::size_t digits = 0;
        part = cursor_.TakeNumber(width, digits);
        return part >= 0 && (!exact || digits == width);
    }

    bool ReadYear(std::size_t width, bool exact) {
        std::size_t digits = 0;
        const int year = cursor_.TakeNumber(exact ? width : 4, digits);
        parts_.Year = FullYear(year, digits, settings_);
        return year >= 0 && (!exact || digits == width);
    }

    TTextCursor cursor_;
    const TFormatSettings& settings_;
    TReadParts parts_;
};

} // namespace

std::string FormatDateTime(std::string_view mask, TDateTime value, const TFormatSettings& settings) {
    TDateTimeWriter writer(value, settings);
    writer.Write(mask);
    return writer.Take();
}

std::string DateToStr(TDateTime value) {
    return FormatDateTime(FormatSettings().ShortDateFormat, value);
}
std::string TimeToStr(TDateTime value) {
    return FormatDateTime(FormatSettings().LongTimeFormat, value);
}
std::string DateTimeToStr(TDateTime value) {
    return FormatDateTime("c", value);
}

namespace {

// The long time format with a fraction behind its seconds.
std::string ExactTimeFormat() {
    const std::string& format = FormatSettings().LongTimeFormat;
    std::size_t behindSeconds = std::string::npos;
    TMaskScanner scanner(format);
    while (const std::optional<TMaskItem> item = scanner.Next())
        if (item->Kind == 's')
            behindSeconds = static_cast<std::size_t>(item->Text.data() - format.data()) + item->Count;
    return behindSeconds == std::string::npos ? "hh:nn:ss.zzz"
                                              : std::string(format).insert(behindSeconds, ".zzz");
}

} // namespace

std::string ExactTimeToStr(TDateTime value) {
    return DecodeTime(value).Millisecond == 0 ? TimeToStr(value) : FormatDateTime(ExactTimeFormat(), value);
}

std::string ExactDateTimeToStr(TDateTime value, TDatePrecision precision) {
    const std::string day = DateToStr(value);
    if (precision == dpDay)
        return day;
    return day + ' ' + (precision == dpSecond ? TimeToStr(value) : FormatDateTime(ExactTimeFormat(), value));
}

std::optional<TDateTime> TryStrToDate(std::string_view text, const TFormatSettings& settings) {
    return ValueOf(ReadFreely(text, SettingsOrder(settings), true, false, settings));
}

std::optional<TDateTime> TryStrToTime(std::string_view text, const TFormatSettings& settings) {
    return ValueOf(ReadFreely(text, {}, false, true, settings));
}

std::optional<TDateTime> TryStrToDateTime(std::string_view text, const TFormatSettings& settings) {
    return ValueOf(ReadDateTime(text, settings));
}

std::optional<TReadDateTime> ReadDateTime(std::string_view text, const TFormatSettings& settings) {
    return ReadFreely(text, SettingsOrder(settings), true, true, settings);
}

TDateTime StrToDateTime(std::string_view text) {
    const std::optional<TDateTime> value = TryStrToDateTime(text);
    if (!value)
        throw EConvertError("\"" + std::string(text) + "\" is not a valid date and time");
    return *value;
}

std::optional<TReadDateTime> ParseDateTime(std::string_view text, std::string_view mask,
                                           const TFormatSettings& settings) {
    if (const std::optional<TReadDateTime> read = TMaskReader(text, settings).Read(mask))
        return read;
    return ReadFreely(text, DateOrder(mask, SettingsOrder(settings)), true, true, settings);
}

std::optional<TDateTime> TryParseDateTime(std::string_view text, std::string_view mask,
                                          const TFormatSettings& settings) {
    return ValueOf(ParseDateTime(text, mask, settings));
}

} // namespace lumora
