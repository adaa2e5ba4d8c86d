#include "qtsql/queryrunner.h"

#include "platform/ascii.h"
#include "qtsql/databaseerror.h"
#include "qtsql/placeholders.h"
#include "sqlparse/Vscanner.h"

#include <QSqlError>
#include <QSqlField>
#include <QSqlQuery>
#include <QSqlRecord>

#include <string>
#include <string_view>
#include <unordered_map>

namespace lumora {

namespace {

[[noreturn]] void fail(const QSqlError& error) {
    throw DatabaseError(reasonOf(error));
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
                QStringLiteral("No value for the placeholder :%1").arg(QString::fromUtf8(placeholder.name)));
        statement.values.append(value->second);
        text.append(sql, copied, placeholder.position - copied).append("?");
        copied = placeholder.position + 1 + placeholder.name.size();
    }
    statement.text = QString::fromStdString(text.append(sql, copied));
    return statement;
}

QStringList columnNames(const QSqlRecord& record) {
    QStringList names;
    for (int i = 0; i < record.count(); ++i)
        names.append(record.fieldName(i));
    return names;
}

} // namespace

// The connection may allow more than reading, and some drivers run several statements.
void checkStatement(std::string_view sql) {
    if (sql.find('\0') != std::string_view::npos) // an engine would take it for the end
        throw DatabaseError(QStringLiteral("The statement holds a zero character"));
    TVScanner scanner(sql);
    const std::string_view word = scanner.Token().Text;
    if (!SameText(word, "select") && !SameText(word, "with") && !SameText(word, "values"))
        throw DatabaseError(QStringLiteral("The statement is no query"));
    while (!scanner.AtEnd() && !scanner.Token().IsSymbol(';'))
        scanner.Next();
    while (scanner.Token().IsSymbol(';'))
        scanner.Next();
    if (!scanner.AtEnd())
        throw DatabaseError(QStringLiteral("The text holds more than one statement"));
}

qint64 runQuery(const QSqlDatabase& database, const QString& statement, const QVariantMap& parameters,
                const RowReceiver& receiver, qint64 limit) {
    const std::string sql = statement.toStdString();
    checkStatement(sql);
    const PositionalStatement positional = toPositional(sql, parameters);

    QSqlQuery query(database);
    query.setForwardOnly(true);
    if (!query.prepare(positional.text))
        fail(query.lastError());
    for (const QVariant& value : positional.values)
        query.addBindValue(value);
    if (!query.exec())
        fail(query.lastError());

    const QStringList names = columnNames(query.record());
    receiver.columns(names);
    QList<QVariant> values(names.size());
    qint64 count = 0;
    for (; count != limit && query.next(); ++count) {
        for (qsizetype i = 0; i < values.size(); ++i)
            values[i] = query.value(static_cast<int>(i));
        receiver.row(values);
    }
    if (count != limit && query.lastError().isValid())
        fail(query.lastError());
    return count;
}

} // namespace lumora
