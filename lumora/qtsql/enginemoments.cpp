#include "lumora/qtsql/enginemoments.h"

#include "lumora/qtsql/queryrunner.h"

#include <QRegularExpression>

namespace lumora {

namespace {

using namespace Qt::StringLiterals;

constexpr auto day = "\\d{4,6}-\\d\\d-\\d\\d"_L1;
constexpr auto clock = "\\d\\d:\\d\\d:\\d\\d(?<fraction>\\.\\d{1,6})?"_L1;
constexpr auto zone = "(?<zone>[+-]\\d\\d(:\\d\\d){0,2})?"_L1;
constexpr auto era = "(?<era> BC)?"_L1;
constexpr auto always = "-?infinity"_L1;

QString postgresForm(TFieldType type) {
    switch (type) {
    case ftDate:
        return day + era + '|' + always;
    case ftTime:
        return clock + zone;
    default:
        return day + ' ' + clock + zone + era + '|' + always;
    }
}

QString mySqlForm(TFieldType type) {
    switch (type) {
    case ftDate:
        return day + QString();
    case ftTime:
        return "(?<era>-|(?=\\d\\d\\d))?\\d?"_L1 + clock;
    default:
        return day + ' ' + clock;
    }
}

} // namespace

// A zone counts only for a type that has zones: a moment without one would leave it out without a word.
std::optional<QVariant> engineMoment(TFieldType type, std::string_view text, Engine engine) {
    if (!IsDateOrTime(type) || (engine != Engine::PostgreSql && engine != Engine::MySql))
        return std::nullopt;
    const QString value = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
    const QRegularExpression form(QRegularExpression::anchoredPattern(
        engine == Engine::PostgreSql ? postgresForm(type) : mySqlForm(type)));
    const QRegularExpressionMatch parts = form.match(value);
    const bool isMore = parts.hasCaptured("fraction"_L1) || parts.hasCaptured("zone"_L1) ||
                        parts.hasCaptured("era"_L1) || value.endsWith("infinity"_L1);
    if (!parts.hasMatch() || !isMore)
        return std::nullopt;
    if (parts.hasCaptured("zone"_L1))
        return QVariant::fromValue(TypedText{value, type == ftTime ? u"timetz"_s : u"timestamptz"_s});
    return value;
}

} // namespace lumora
