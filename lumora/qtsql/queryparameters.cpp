#include "lumora/qtsql/queryparameters.h"

#include "lumora/platform/ascii.h"
#include "lumora/platform/convert.h"
#include "lumora/qtsql/databaseerror.h"
#include "lumora/qtsql/enginemoments.h"
#include "lumora/qtsql/placeholders.h"
#include "lumora/query/date_values.h"
#include "lumora/query/errors.h"
#include "lumora/query/filter_rows.h"
#include "lumora/query/strict_checks.h"

#include <QByteArrayView>

#include <algorithm>
#include <cmath>
#include <unordered_set>

namespace lumora {

QString decodeText(std::string_view text, std::string_view what) {
    if (!QUtf8StringView(text.data(), static_cast<qsizetype>(text.size())).isValidUtf8())
        throw DatabaseError(DatabaseError::Kind::Invalid,
                            QString::fromStdString(std::string(what) + " is not valid UTF-8"));
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

namespace {

const GivenParameter* find(const std::vector<GivenParameter>& given, std::string_view name) {
    const auto found = std::find_if(given.begin(), given.end(),
                                    [&](const GivenParameter& g) { return SameText(g.name, name); });
    return found == given.end() ? nullptr : &*found;
}

void addName(std::vector<std::string_view>& names, std::string_view name) {
    if (std::none_of(names.begin(), names.end(), [&](std::string_view n) { return SameText(n, name); }))
        names.push_back(name);
}

void failOver(std::string_view what, const std::vector<std::string_view>& names) {
    if (names.empty())
        return;
    std::string message(what);
    for (const std::string_view name : names)
        message.append(name == names.front() ? " " : ", ").append(name);
    throw DatabaseError(DatabaseError::Kind::Invalid, QString::fromStdString(message));
}

// Numbers as numbers, so that they compare as such with expressions that have no type of their own.
// PostgreSQL gives the placeholder the type that it needs, and takes the digits as they stand: a double would
// not do.
QVariant numberOf(TFieldType type, const std::string& text, Engine engine) {
    if (type == ftBoolean)
        return text == "1" || SameText(text, "true");
    if (engine == Engine::PostgreSql)
        return QString::fromStdString(text);
    if (type != ftFloat && type != ftCurrency && type != ftBCD)
        if (const std::optional<std::int64_t> number = TryStrToInt64(text))
            return QVariant::fromValue<qlonglong>(*number);
    return TryStrToFloat(text).value_or(0);
}

// Whether a date or time has more than the form in which it stands for the database.
bool isCut(TFieldType type, std::string_view text, std::string_view sql, const TSQLFormats& formats) {
    const std::optional<TReadDateTime> given = ReadDateTime(text);
    const std::optional<TReadDateTime> kept = ReadSQLDate(formats, type, sql);
    if (!given || !kept || given->Precision == dpFiner)
        return true;
    const double days = type == ftTime ? std::floor(given->Value) - std::floor(kept->Value) : 0;
    constexpr double millisecond = 1.0 / (24 * 60 * 60 * 1000);
    return std::abs(given->Value - days - kept->Value) > millisecond / 2;
}

// The value of a type whose form is checked, in the form that the database knows.
std::string checkedValue(const TSQLParam& parameter, std::string_view text, const TSQLFormats& formats) {
    const TFieldType type = parameter.GetDataType();
    text = Trim(text);
    const std::string caption = parameter.GetCondition().GetCaptionText();
    if (!IsValidValue(type, text))
        RaiseInvalidValue(text, caption);
    if (!IsDateOrTime(type))
        return std::string(text);
    std::string sql = DateValueToSQL(formats, type, text, ssSQL2, true);
    if (isCut(type, text, sql, formats))
        RaiseInvalidValue(text, caption);
    return sql;
}

// The pattern tells whether the value stands alone or among other text, wildcards for example.
QVariant boundValue(TSQLParam& parameter, const GivenParameter& given, const TSQLFormats& formats,
                    Engine engine) {
    const TFieldType type = parameter.GetDataType();
    const bool isChecked = IsCheckedType(type);
    if (parameter.ValueFormat == "@v")
        if (const std::optional<QVariant> moment = engineMoment(type, Trim(given.value), engine))
            return *moment;
    parameter.Value = isChecked ? checkedValue(parameter, given.value, formats) : std::string(given.value);
    if (isChecked && !IsDateOrTime(type) && parameter.ValueFormat == "@v")
        return numberOf(type, parameter.Value, engine);
    return decodeText(parameter.GetFullValue(), "The value of parameter " + std::string(given.name));
}

std::string placeholderName(std::size_t i) {
    return "lumora_" + std::to_string(i + 1);
}

} // namespace

QueryParameters::QueryParameters(const TQueryResult& result) {
    for (int i = 0; i < result.GetParamCount(); ++i) {
        TSQLParam* const parameter = result.GetParam(i);
        entries_.push_back({parameter->Name, parameter});
        parameter->Name = placeholderName(static_cast<std::size_t>(i));
    }
}

// Parameters of disabled rows do not come into the statement.
std::vector<QueryParameters::Entry> QueryParameters::entriesIn(std::string_view sql) const {
    std::unordered_set<std::string_view> names;
    for (const Placeholder& placeholder : findPlaceholders(sql))
        names.insert(placeholder.name);
    std::vector<Entry> used;
    for (const Entry& entry : entries_)
        if (names.count(entry.parameter->Name) > 0)
            used.push_back(entry);
    return used;
}

void QueryParameters::checkNames(const std::vector<Entry>& used,
                                 const std::vector<GivenParameter>& given) const {
    for (const Entry& entry : used)
        if (!IsParamName(entry.name)) // the name that it has now hides it from the strict build
            RaiseInvalidValue(entry.name, entry.parameter->GetCondition().GetCaptionText());
    std::vector<std::string_view> missing;
    for (const Entry& entry : used)
        if (!find(given, entry.name))
            addName(missing, entry.name);
    failOver("No value for these parameters (use --param):", missing);
    std::vector<std::string_view> unknown;
    for (const GivenParameter& parameter : given)
        if (std::none_of(entries_.begin(), entries_.end(),
                         [&](const Entry& entry) { return SameText(entry.name, parameter.name); }))
            addName(unknown, parameter.name);
    failOver("The query has no such parameters:", unknown);
}

QVariantMap QueryParameters::bind(std::string_view sql, const std::vector<GivenParameter>& given,
                                  const TSQLFormats& formats, Engine engine) const {
    const std::vector<Entry> used = entriesIn(sql);
    QVariantMap values;
    try {
        checkNames(used, given);
        for (const Entry& entry : used)
            values.insert(QString::fromStdString(entry.parameter->Name),
                          boundValue(*entry.parameter, *find(given, entry.name), formats, engine));
    } catch (const EVQueryPanelError& error) { // what a strict panel says of such a value
        throw DatabaseError(DatabaseError::Kind::Invalid, QString::fromUtf8(error.what()));
    }
    return values;
}

} // namespace lumora
