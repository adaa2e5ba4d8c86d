#include "lumora/platform/formats.h"

#include "lumora/platform/date_mask.h"

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

} // namespace lumora
