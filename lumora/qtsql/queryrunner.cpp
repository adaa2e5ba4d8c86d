#include "lumora/qtsql/queryrunner.h"

#include "lumora/platform/ascii.h"
#include "lumora/qtsql/databaseerror.h"
#include "lumora/qtsql/engine.h"
#include "lumora/qtsql/placeholders.h"
#include "lumora/qtsql/querycanceller.h"
#include "lumora/qtsql/serverstatement.h"
#include "lumora/sqlparse/Vscanner.h"

#include <QSqlQuery>
#include <QSqlRecord>

#include <algorithm>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace lumora {

namespace {

// The text of one statement without the ";" behind it.
std::string withoutEnd(const std::string& sql) {
    TVScanner scanner(sql);
    while (!scanner.AtEnd() && !scanner.Token().IsSymbol(';'))
        scanner.Next();
    return scanner.AtEnd()
               ? sql
               : sql.substr(0, static_cast<std::size_t>(scanner.Token().Text.data() - sql.data()));
}

// The statement whose named placeholders have become "?".
PositionalStatement toPositional(const std::string& sql, const QVariantMap& parameters) {
    std::unordered_map<std::string, QVariant, TNoCaseHash, TNoCaseEqual> values;
    for (auto parameter = parameters.cbegin(); parameter != parameters.cend(); ++parameter)
        values.emplace(parameter.key().toStdString(), parameter.value());
    PositionalStatement statement;
    std::string text;
    std::size_t copied = 0;
    for (const Placeholder& placeholder : findPlaceholders(sql)) {
        const auto value = values.find(placeholder.name);
        if (value == values.end())
            throw DatabaseError(
                DatabaseError::Kind::Invalid,
                QStringLiteral("No value for the placeholder :%1").arg(QString::fromUtf8(placeholder.name)));
        text.append(sql, copied, placeholder.position - copied);
        if (const QVariant& given = value->second; given.metaType() == QMetaType::fromType<TypedText>()) {
            statement.values.append(given.value<TypedText>().text);
            text.append("cast(? as ").append(given.value<TypedText>().type.toStdString()).append(")");
        } else {
            statement.values.append(given);
            text.append("?");
        }
        copied = placeholder.position + 1 + placeholder.name.size();
    }
    statement.text = QString::fromStdString(text.append(sql, copied));
    return statement;
}

// Qt's driver for MySQL takes a text for bytes when its column is compared byte by byte.
QVariant mySqlValue(const QVariant& value) {
    if (value.typeId() != QMetaType::QByteArray || value.isNull())
        return value;
    const QByteArray bytes = value.toByteArray();
    const bool isText =
        QUtf8StringView(bytes).isValidUtf8() && std::none_of(bytes.begin(), bytes.end(), [](char c) {
            return (c >= 0 && c < ' ' && c != '\t' && c != '\n' && c != '\r') || c == 127;
        });
    return isText ? QString::fromUtf8(bytes) : value;
}

qint64 receiveRows(QSqlQuery& query, Engine engine, const RowReceiver& receiver, qint64 limit,
                   const QueryCanceller::Running& running) {
    const QSqlRecord columns = query.record();
    QList<QVariant> values(columns.count());
    qint64 count = 0;
    try {
        receiver.columns(columns);
        for (; count != limit && query.next(); ++count) {
            running.check();
            for (qsizetype i = 0; i < values.size(); ++i) {
                const QVariant value = query.value(static_cast<int>(i));
                values[i] = engine == Engine::MySql ? mySqlValue(value) : value;
            }
            receiver.row(values);
        }
    } catch (...) { // the driver would read all rows to come
        running.stopEngine();
        throw;
    }
    if (count != limit && query.lastError().isValid())
        throw DatabaseError(query);
    return count;
}

} // namespace

// The connection may allow more than reading, and some drivers run several statements.
void checkStatement(std::string_view sql) {
    if (sql.find('\0') != std::string_view::npos) // an engine would take it for the end
        throw DatabaseError(DatabaseError::Kind::Invalid,
                            QStringLiteral("The statement holds a zero character"));
    TVScanner scanner(sql);
    const std::string_view word = scanner.Token().Text;
    if (!SameText(word, "select") && !SameText(word, "with") && !SameText(word, "values"))
        throw DatabaseError(DatabaseError::Kind::Invalid, QStringLiteral("The statement is no query"));
    while (!scanner.AtEnd() && !scanner.Token().IsSymbol(';'))
        scanner.Next();
    while (scanner.Token().IsSymbol(';'))
        scanner.Next();
    if (!scanner.AtEnd())
        throw DatabaseError(DatabaseError::Kind::Invalid,
                            QStringLiteral("The text holds more than one statement"));
}

qint64 runQuery(const QSqlDatabase& database, const QString& statement, const QVariantMap& parameters,
                const RowReceiver& receiver, const RunSettings& settings) {
    const std::string text = statement.toStdString();
    checkStatement(text);
    PositionalStatement positional = toPositional(withoutEnd(text), parameters);
    const QueryCanceller::Running running(settings.canceller);
    running.check();
    try {
        QSqlQuery query(database);
        executePositional(query, database, std::move(positional), settings.limit, settings.timesAsText);
        return receiveRows(query, engineOf(database), receiver, settings.limit, running);
    } catch (const DatabaseError&) { // of a statement that was stopped, the engine says so in its own way
        running.check();
        throw;
    }
}

} // namespace lumora
