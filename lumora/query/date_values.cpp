#include "lumora/query/date_values.h"

#include "lumora/platform/ascii.h"
#include "lumora/platform/errors.h"
#include "lumora/platform/formats.h"
#include "lumora/statement/dialects/dialect.h"

namespace lumora {

namespace {

struct TOracleForm {
    std::string_view Mask;
    std::string_view OracleMask;
};

constexpr TOracleForm OracleForms[] = {{"dd-mm-yyyy", "dd-mm-yyyy"},
                                       {"hh:nn:ss", "hh24:mi:ss"},
                                       {"dd-mm-yyyy hh:nn:ss", "dd-mm-yyyy hh24:mi:ss"}};

// The date of TO_DATE('05-03-2001', 'dd-mm-yyyy'), with single or double quotes.
std::optional<TReadDateTime> ParseOracleLiteral(std::string_view text) {
    constexpr std::string_view head = "to_date(";
    if (!SameText(text.substr(0, head.size()), head) || text.size() < head.size() + 2 || text.back() != ')')
        return std::nullopt;
    const char quote = text[head.size()];
    const std::size_t end = text.find(quote, head.size() + 1);
    if ((quote != '\'' && quote != '"') || end == std::string_view::npos)
        return std::nullopt;
    const std::string_view value = text.substr(head.size() + 1, end - head.size() - 1);
    std::string_view mask = text.substr(end + 1, text.size() - end - 2);
    mask = mask.starts_with(',') ? Trim(mask.substr(1)) : std::string_view();
    for (const TOracleForm& form : OracleForms)
        if (mask.size() > 2 && mask.front() == quote && mask.back() == quote &&
            SameText(mask.substr(1, mask.size() - 2), form.OracleMask))
            return ParseDateTime(value, form.Mask, IsoFormatSettings());
    return std::nullopt;
}

} // namespace

namespace {

// The number that digits of a text in a pattern of "0" and other characters make.
bool MatchesDigits(std::string_view text, std::string_view pattern) {
    for (std::size_t i = 0; i < pattern.size(); ++i)
        if (pattern[i] == '0' ? !IsDigit(text[i]) : text[i] != pattern[i])
            return false;
    return true;
}

int TwoDigits(std::string_view text, std::size_t at) {
    return (text[at] - '0') * 10 + (text[at + 1] - '0');
}

// Whether the text is a date as ISO writes it, perhaps with a time to the second, and means what it says.
bool IsIsoValue(std::string_view text) {
    constexpr std::string_view pattern = "0000-00-00 00:00:00";
    if ((text.size() != 10 && text.size() != 19) || !MatchesDigits(text, pattern.substr(0, text.size())))
        return false;
    const int year = TwoDigits(text, 0) * 100 + TwoDigits(text, 2);
    // The last days of months are left to those who know the calendar.
    const bool isDay = year > 0 && TwoDigits(text, 5) - 1U < 12 && TwoDigits(text, 8) - 1U < 28;
    return isDay && (text.size() == 10 ||
                     (TwoDigits(text, 11) < 24 && TwoDigits(text, 14) < 60 && TwoDigits(text, 17) < 60));
}

// Appends a value that stands in the form of the mask already, or could by parts that are zero. Most do, and
// nothing needs to be reckoned.
bool AppendIsoValue(std::string& out, std::string_view mask, std::string_view text,
                    const TFormatSettings& settings) {
    constexpr std::string_view masks = "yyyy-mm-dd hh:nn:ss", zero = "0000-00-00 00:00:00";
    const bool isIso =
        (mask.size() == 10 || mask.size() == 16 || mask.size() == 19) && masks.substr(0, mask.size()) == mask;
    if (!isIso || settings.TimeSeparator != ":" || !IsIsoValue(text))
        return false;
    out.append(text, 0, mask.size());
    if (text.size() < mask.size())
        out.append(zero, text.size(), mask.size() - text.size());
    return true;
}

} // namespace

void AppendDateValue(std::string& out, const TSQLFormats& formats, TFieldType type, std::string_view text,
                     const TDialect& dialect) {
    const TDateForm& form = DateFormOf(dialect, type);
    if (form.Mask.empty() && AppendIsoValue(out, formats.MaskFor(type), text, FormatSettings()))
        return;
    AppendDateValue(out, formats, type, StrToDateTime(text), dialect);
}

void AppendDateValue(std::string& out, const TSQLFormats& formats, TFieldType type, TDateTime value,
                     const TDialect& dialect) {
    const TDateForm& form = DateFormOf(dialect, type);
    out += form.Before;
    const std::string date = form.Mask.empty() ? FormatDateTime(formats.MaskFor(type), value)
                                               : FormatDateTime(form.Mask, value, IsoFormatSettings());
    constexpr std::string_view noFraction = ".000";
    const bool whole = form.Mask.ends_with(".zzz") && date.ends_with(noFraction);
    out.append(date, 0, date.size() - (whole ? noFraction.size() : 0));
    out += form.After;
}

std::string DateValueToSQL(const TSQLFormats& formats, TFieldType type, std::string_view text,
                           TSQLSyntax syntax, bool strict) {
    std::string date;
    AppendDateValue(date, formats, type, text, EffectiveDialect(sdStandard, syntax, strict));
    return date;
}

std::optional<TReadDateTime> ReadSQLDate(const TSQLFormats& formats, TFieldType type, std::string_view text) {
    const std::optional<TReadDateTime> read = ParseOracleLiteral(text);
    return read ? read : ParseDateTime(text, formats.MaskFor(type));
}

std::string DateValueFromSQL(const TSQLFormats& formats, TFieldType type, std::string_view text) {
    const std::optional<TReadDateTime> read = ReadSQLDate(formats, type, text);
    if (!read)
        throw EConvertError("\"" + std::string(text) + "\" is not a valid date and time");
    return type == ftTime ? TimeToStr(read->Value) : DateTimeToStr(read->Value);
}

} // namespace lumora
