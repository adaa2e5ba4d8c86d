#include "lumora/qtsql/celltext.h"

#include "lumora/platform/convert.h"

#include <QByteArray>
#include <QStringEncoder>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string_view>

namespace lumora {

namespace {

bool isFloat(const QVariant& value) {
    return value.typeId() == QMetaType::Double || value.typeId() == QMetaType::Float;
}

template <typename T>
void appendNumber(std::string& line, T number) {
    char text[32];
    const std::to_chars_result end = std::to_chars(text, text + sizeof text, number);
    line.append(text, end.ptr);
}

// Half a surrogate pair becomes U+FFFD.
void appendText(std::string& line, const QString& text) {
    const std::size_t size = line.size();
    QStringEncoder encoder(QStringConverter::Utf8, QStringConverter::Flag::Stateless);
    line.resize(size + static_cast<std::size_t>(encoder.requiredSpace(text.size())));
    const char* const end = encoder.appendToBuffer(line.data() + size, text);
    line.resize(static_cast<std::size_t>(end - line.data()));
}

// One of the forms that JSON knows: "-12.50", "1e+300".
bool isJsonNumber(std::string_view text) {
    const auto skipDigits = [&] {
        const std::size_t digits = std::min(text.find_first_not_of("0123456789"), text.size());
        text.remove_prefix(digits);
        return digits;
    };
    const auto skip = [&](std::string_view any) {
        const bool found = !text.empty() && any.find(text.front()) != std::string_view::npos;
        text.remove_prefix(found ? 1 : 0);
        return found;
    };
    skip("-");
    const bool leadingZero = !text.empty() && text.front() == '0';
    const std::size_t digits = skipDigits();
    if (digits == 0 || (leadingZero && digits > 1) || (skip(".") && skipDigits() == 0))
        return false;
    if (skip("eE")) {
        skip("+-");
        if (skipDigits() == 0)
            return false;
    }
    return text.empty();
}

std::string_view jsonEscape(char c) {
    switch (c) {
    case '"':
        return "\\\"";
    case '\\':
        return "\\\\";
    case '\b':
        return "\\b";
    case '\f':
        return "\\f";
    case '\n':
        return "\\n";
    case '\r':
        return "\\r";
    case '\t':
        return "\\t";
    default:
        return {};
    }
}

} // namespace

bool isNumber(const QVariant& value) {
    switch (value.typeId()) {
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Double:
    case QMetaType::Float:
        return !value.isNull();
    default:
        return false;
    }
}

bool isDecimal(const QVariant& value) {
    return value.typeId() == QMetaType::QString && !value.isNull() &&
           isJsonNumber(value.toString().toStdString());
}

QString cellText(const QVariant& value) {
    if (value.isNull())
        return {};
    if (isFloat(value))
        return QString::fromStdString(FloatToStr(value.toDouble()));
    if (value.typeId() == QMetaType::QByteArray)
        return QString::fromLatin1(value.toByteArray().toHex());
    return value.toString();
}

void appendCell(std::string& line, const QVariant& value) {
    if (value.isNull())
        return;
    switch (value.typeId()) {
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
        return appendNumber(line, value.toLongLong());
    case QMetaType::ULongLong:
        return appendNumber(line, value.toULongLong());
    case QMetaType::Double:
    case QMetaType::Float:
        if (std::isfinite(value.toDouble()))
            return appendNumber(line, value.toDouble());
        [[fallthrough]];
    default:
        appendText(line, cellText(value));
    }
}

void appendJsonString(std::string& line, std::string_view text) {
    line += '"';
    for (const char c : text) {
        if (const std::string_view escape = jsonEscape(c); !escape.empty())
            line += escape;
        else if (static_cast<unsigned char>(c) < 0x20)
            line.append("\\u00").append(1, "01"[c >> 4]).append(1, "0123456789abcdef"[c & 15]);
        else
            line += c;
    }
    line += '"';
}

void appendJson(std::string& line, const QVariant& value, bool mayBeDecimal) {
    if (value.isNull()) {
        line += "null";
        return;
    }
    if (isFloat(value) && !std::isfinite(value.toDouble())) { // JSON has no word for it
        line += std::isnan(value.toDouble()) ? "null" : value.toDouble() < 0 ? "-1e999" : "1e999";
        return;
    }
    if (isNumber(value) || value.typeId() == QMetaType::Bool)
        return appendCell(line, value);
    std::string text;
    appendCell(text, value);
    if (mayBeDecimal && isJsonNumber(text))
        line += text;
    else if (mayBeDecimal && text == "NaN")
        line += "null";
    else if (mayBeDecimal && (text == "Infinity" || text == "-Infinity"))
        line += text[0] == '-' ? "-1e999" : "1e999";
    else
        appendJsonString(line, text);
}

void appendCsvField(std::string& line, const QVariant& value) {
    if (value.isNull())
        return;
    const std::size_t start = line.size();
    appendCell(line, value);
    if (line.size() > start && line.find_first_of(",\"\r\n", start) == std::string::npos)
        return;
    const std::string field = line.substr(start);
    line.replace(start, std::string::npos, 1, '"');
    for (const char c : field)
        line.append(c == '"' ? 2 : 1, c);
    line += '"';
}

} // namespace lumora
