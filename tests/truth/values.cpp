#include "tests/truth/values.h"

#include <QRegularExpression>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace lumora::truth {

std::string show(const Cell& cell) {
    if (isNull(cell))
        return "NULL";
    if (cell.index() == 2)
        return "'" + text(cell) + "'";
    char digits[32]; // fewer than the engines keep: an average has its own last digits in each
    std::snprintf(digits, sizeof digits, "%.10g", number(cell) + 0.0);
    return digits;
}

std::string show(const Cells& cells) {
    std::string row;
    for (const Cell& cell : cells)
        row += show(cell) + " | ";
    return row;
}

namespace {

// "2024-07-01", and the same with a time behind it when `size` is 19.
bool isMoment(const Cell& cell, std::size_t size) {
    return std::holds_alternative<std::string>(cell) && text(cell).size() == size && text(cell)[4] == '-' &&
           text(cell)[7] == '-' && (size == 10 || text(cell)[13] == ':');
}

} // namespace

// A moment compares with a day as its own day does.
Truth compare(const Cell& left, std::string_view sign, const Cell& right) {
    if (isNull(left) || isNull(right))
        return Truth::unknown;
    if (isMoment(left, 19) && isMoment(right, 10))
        return compare(text(left).substr(0, 10), sign, right);
    return truthOf((left < right && sign.find('<') != sign.npos) ||
                   (left > right && sign.find('>') != sign.npos) ||
                   (left == right && sign.find('=') != sign.npos));
}

Truth in(const Cell& cell, const Cells& list) {
    Truth truth = Truth::no;
    for (const Cell& item : list)
        truth = std::max(truth, compare(cell, "=", item));
    return truth;
}

namespace {

std::size_t characterSize(std::string_view text) {
    std::size_t size = 1;
    while (size < text.size() && (text[size] & 0xC0) == 0x80)
        ++size;
    return size;
}

bool matches(std::string_view text, std::string_view pattern, char escape) {
    if (pattern.empty())
        return text.empty();
    if (pattern[0] == '%') {
        for (; !matches(text, pattern.substr(1), escape); text.remove_prefix(1))
            if (text.empty())
                return false;
        return true;
    }
    if (text.empty())
        return false;
    if (pattern[0] == '_')
        return matches(text.substr(characterSize(text)), pattern.substr(1), escape);
    if (escape && pattern[0] == escape)
        pattern.remove_prefix(1);
    return text[0] == pattern[0] && matches(text.substr(1), pattern.substr(1), escape);
}

} // namespace

Truth like(const Cell& cell, std::string_view pattern, char escape) {
    return isNull(cell) ? Truth::unknown : truthOf(matches(text(cell), pattern, escape));
}

bool isNumberType(TFieldType type) {
    return TFieldTypes{ftSmallint, ftInteger, ftWord, ftFloat, ftCurrency, ftBCD, ftAutoInc, ftLargeint}
        .Contains(type);
}

bool isTextType(TFieldType type) {
    return !isNumberType(type) && !IsDateOrTime(type) && type != ftBoolean;
}

namespace {

std::string trimmed(const std::string& text) {
    const std::size_t first = text.find_first_not_of(' ');
    return first == text.npos ? "" : text.substr(first, text.find_last_not_of(' ') - first + 1);
}

// The parts of the whole text; none when it is not of the form.
QRegularExpressionMatch match(const char* form, const std::string& text) {
    return QRegularExpression(QRegularExpression::anchoredPattern(form)).match(QString::fromStdString(text));
}

std::optional<Cell> numberOf(TFieldType type, const std::string& text, bool strict) {
    if (text.empty() && !strict && type != ftBCD)
        return 0.0;
    const bool whole = strict && !TFieldTypes{ftFloat, ftCurrency, ftBCD}.Contains(type);
    if (!match(whole ? "[+-]?[0-9]+" : "[+-]?[0-9]+([.][0-9]+)?([eE][+-]?[0-9]+)?", text).hasMatch())
        return std::nullopt;
    return std::strtod(text.c_str(), nullptr);
}

std::optional<Cell> booleanOf(std::string text, bool strict) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char c) { return c >= 'A' ? char(c | 32) : c; });
    if (text == "1" || text == "true")
        return 1.0;
    if (text == "0" || text == "false" || (text.empty() && !strict))
        return 0.0;
    return std::nullopt;
}

// Dates are entered as 2024-07-01, times as 9:05, 09:05:30 or 2:30 pm.
std::optional<Cell> dateOf(TFieldType type, const std::string& text, bool strict) {
    if (text.empty() && !strict)
        return "00/00/00";
    const QRegularExpressionMatch part =
        match("([0-9]{4}-[0-9]{2}-[0-9]{2})?( ?([0-9]{1,2}):([0-9]{2})(:([0-9]{2}))?( pm)?)?", text);
    if (text.empty() || !part.hasMatch())
        return std::nullopt;
    char time[16];
    const int hour = part.captured(3).toInt() + (part.captured(7).isEmpty() ? 0 : 12);
    std::snprintf(time, sizeof time, "%02d:%02d:%02d", hour % 24, part.captured(4).toInt() % 60,
                  part.captured(6).toInt() % 60);
    if (type == ftTime)
        return time;
    const std::string day = part.captured(1).toStdString();
    const bool cut = type == ftDate && time != std::string("00:00:00");
    if (strict && (day.empty() || cut))
        return std::nullopt;
    const std::string date = day.empty() ? "1899-12-30" : day;
    return type == ftDate ? date : date + " " + time;
}

} // namespace

std::optional<Cell> meaningOf(TFieldType type, const std::string& text, bool strict) {
    if (isNumberType(type))
        return numberOf(type, trimmed(text), strict);
    if (type == ftBoolean)
        return booleanOf(trimmed(text), strict);
    return IsDateOrTime(type) ? dateOf(type, trimmed(text), strict) : text;
}

// Items are separated by commas and trimmed; one between double quotes is kept as it is.
std::vector<std::string> listItems(const std::string& text) {
    static const QRegularExpression item(R"x(\G *(?:"((?:[^"]|"")*)"|([^,"][^,]*)?) *(,|$))x");
    std::vector<std::string> items;
    if (trimmed(text).empty())
        return items;
    QRegularExpressionMatchIterator parts = item.globalMatch(QString::fromStdString(text));
    for (bool more = true; more && parts.hasNext();) {
        const QRegularExpressionMatch part = parts.next();
        items.push_back(part.hasCaptured(1) ? part.captured(1).replace("\"\"", "\"").toStdString()
                                            : trimmed(part.captured(2).toStdString()));
        more = !part.captured(3).isEmpty();
    }
    return items;
}

} // namespace lumora::truth
