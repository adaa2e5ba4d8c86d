// Dates and times read from text.
#include "lumora/platform/ascii.h"
#include "lumora/platform/date_mask.h"
#include "lumora/platform/errors.h"
#include "lumora/platform/formats.h"

namespace lumora {

namespace {

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
        if (text.empty() || !SameText(rest_.substr(0, text.size()), text))
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
