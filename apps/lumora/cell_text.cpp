#include "apps/lumora/cell_text.h"

#include "platform/convert.h"

#include <QByteArray>

#include <charconv>
#include <cmath>
#include <string_view>

namespace lumora::cli {

namespace {

bool isFloat(const QVariant& value) {
    return value.typeId() == QMetaType::Double || value.typeId() == QMetaType::Float;
}

QString floatText(double number, bool exact) {
    if (!exact || !std::isfinite(number))
        return QString::fromStdString(FloatToStr(number));
    char text[32];
    const std::to_chars_result end = std::to_chars(text, text + sizeof text, number);
    return QString::fromLatin1(text, static_cast<qsizetype>(end.ptr - text));
}

std::string_view jsonEscape(char16_t c) {
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

QString cellText(const QVariant& value, bool exact) {
    if (value.isNull())
        return {};
    if (isFloat(value))
        return floatText(value.toDouble(), exact);
    if (value.typeId() == QMetaType::QByteArray)
        return QString::fromLatin1(value.toByteArray().toHex());
    return value.toString();
}

std::string jsonString(const QString& text) {
    QString quoted(1, u'"');
    for (const QChar c : text) {
        if (const std::string_view escape = jsonEscape(c.unicode()); !escape.empty())
            quoted += QLatin1StringView(escape.data(), static_cast<qsizetype>(escape.size()));
        else if (c.unicode() < 0x20)
            quoted += QStringLiteral("\\u%1").arg(c.unicode(), 4, 16, QLatin1Char('0'));
        else
            quoted += c;
    }
    return quoted.append(u'"').toStdString(); // half a surrogate pair becomes U+FFFD
}

std::string jsonValue(const QVariant& value) {
    if (value.isNull())
        return "null";
    if (isFloat(value) && !std::isfinite(value.toDouble())) // JSON has no word for it
        return std::isnan(value.toDouble()) ? "null" : value.toDouble() < 0 ? "-1e999" : "1e999";
    if (isNumber(value) || value.typeId() == QMetaType::Bool)
        return cellText(value, true).toStdString();
    return jsonString(cellText(value, true));
}

} // namespace lumora::cli
