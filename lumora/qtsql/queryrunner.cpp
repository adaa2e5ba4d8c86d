#include "lumora/qtsql/queryrunner.h"

#include "lumora/platform/ascii.h"
#include "lumora/qtsql/databaseerror.h"
#include "lumora/qtsql/engine.h"
#include "lumora/qtsql/placeholders.h"
#include "lumora/qtsql/querycanceller.h"
#include "lumora/sqlparse/Vscanner.h"

#include <QSqlField>
#include <QSqlQuery>
#include <QSqlRecord>

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

// A statement whose named placeholders have become "?", which every driver takes, and what stands for them.
struct PositionalStatement {
    QString text;
    QList<QVariant> values;
};

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
        statement.values.append(value->second);
        text.append(sql, copied, placeholder.position - copied).append("?");
        copied = placeholder.position + 1 + placeholder.name.size();
    }
    statement.text = QString::fromStdString(text.append(sql, copied));
    return statement;
}

// Without values nothing is prepared: a "?" may be an operator then.
void executePositional(QSqlQuery& query, const PositionalStatement& statement) {
    query.setForwardOnly(true);
    query.setNumericalPrecisionPolicy(QSql::HighPrecision);
    bool done = statement.values.isEmpty() ? query.exec(statement.text) : query.prepare(statement.text);
    for (const QVariant& value : statement.values)
        query.addBindValue(value);
    if (done && !statement.values.isEmpty())
        done = query.exec();
    if (!done)
        throw DatabaseError(query);
}

bool isTime(const QSqlField& column) {
    const int type = column.metaType().id();
    return type == QMetaType::QDate || type == QMetaType::QTime || type == QMetaType::QDateTime;
}

QString quoted(QString name) {
    return '"' + name.replace('"', "\"\"") + '"';
}

// The columns of a statement for PostgreSQL around it: `columns` are its own.
QString castColumns(const QSqlRecord& columns, const QString& statement) {
    QStringList names;
    QStringList casts;
    for (int i = 0; i < columns.count(); ++i) {
        const QString name = QStringLiteral("lumora_%1").arg(i + 1);
        names.append(name);
        casts.append(name + QLatin1StringView(isTime(columns.field(i)) ? "::text as " : " as ") +
                     quoted(columns.fieldName(i)));
    }
    return "select " + casts.join(", ") + " from (\n" + statement + "\n) as lumora_rows(" + names.join(", ") +
           ')';
}

// PostgreSQL sends whatever a statement gives, so it is told the limit too.
PositionalStatement forPostgres(const QSqlDatabase& database, PositionalStatement statement,
                                const RunSettings& settings) {
    const QString all = "select * from (\n" + statement.text + "\n) as lumora_rows limit ";
    bool isCast = false;
    if (settings.timesAsText) {
        QSqlQuery description(database);
        executePositional(description, {all + '0', statement.values});
        const QSqlRecord columns = description.record();
        for (int i = 0; i < columns.count(); ++i)
            isCast = isCast || isTime(columns.field(i));
        if (isCast)
            statement.text = castColumns(columns, statement.text);
    }
    if (settings.limit >= 0)
        statement.text = (isCast ? statement.text + " limit " : all) + QString::number(settings.limit);
    return statement;
}

qint64 receiveRows(QSqlQuery& query, const RowReceiver& receiver, qint64 limit,
                   const QueryCanceller::Running& running) {
    const QSqlRecord columns = query.record();
    QList<QVariant> values(columns.count());
    qint64 count = 0;
    try {
        receiver.columns(columns);
        for (; count != limit && query.next(); ++count) {
            running.check();
            for (qsizetype i = 0; i < values.size(); ++i)
                values[i] = query.value(static_cast<int>(i));
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
        if (engineOf(database) == Engine::PostgreSql)
            positional = forPostgres(database, std::move(positional), settings);
        QSqlQuery query(database);
        executePositional(query, positional);
        return receiveRows(query, receiver, settings.limit, running);
    } catch (const DatabaseError&) { // of a statement that was stopped, the engine says so in its own way
        running.check();
        throw;
    }
}

} // namespace lumora
