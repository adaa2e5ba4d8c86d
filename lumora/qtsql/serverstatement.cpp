#include "lumora/qtsql/serverstatement.h"

#include "lumora/platform/ascii.h"
#include "lumora/qtsql/databaseerror.h"
#include "lumora/qtsql/engine.h"
#include "lumora/sqlparse/Vscanner.h"

#include <QSqlField>
#include <QSqlRecord>

namespace lumora {

namespace {

using namespace Qt::StringLiterals;

// Without values nothing is prepared: a "?" may be an operator then.
void send(QSqlQuery& query, const PositionalStatement& statement) {
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

bool hasTime(const QSqlRecord& columns) {
    for (int i = 0; i < columns.count(); ++i)
        if (isTime(columns.field(i)))
            return true;
    return false;
}

QString quoted(QString name) {
    return '"' + name.replace('"', "\"\"") + '"';
}

// The select list that casts the dates and times of a statement around which it stands, and the names by
// which it knows the statement's columns.
struct Cast {
    Cast(const QSqlRecord& columns, const QString& pattern) {
        for (int i = 0; i < columns.count(); ++i) {
            const QString name = u"lumora_%1"_s.arg(i + 1);
            names.append(name);
            list.append((isTime(columns.field(i)) ? pattern.arg(name) : name) + " as "_L1 +
                        quoted(columns.fieldName(i)));
        }
    }

    QStringList names;
    QStringList list;
};

// --- PostgreSQL sends whatever a statement gives, so it is told the limit too.

PositionalStatement forPostgres(const QSqlDatabase& database, PositionalStatement statement, qint64 limit,
                                bool timesAsText) {
    const QString rows = " from (\n"_L1 + statement.text + "\n) as lumora_rows"_L1;
    bool isCast = false;
    if (timesAsText) {
        QSqlQuery description(database);
        send(description, {"select *"_L1 + rows + " limit 0"_L1, statement.values});
        if (isCast = hasTime(description.record()); isCast) {
            const Cast cast(description.record(), u"%1::text"_s);
            statement.text =
                "select "_L1 + cast.list.join(", "_L1) + rows + '('_L1 + cast.names.join(", "_L1) + ')'_L1;
        }
    }
    if (limit >= 0)
        statement.text =
            (isCast ? statement.text : "select *"_L1 + rows) + " limit "_L1 + QString::number(limit);
    return statement;
}

// --- MySQL and MariaDB, whose driver reads all rows before it gives the first.

// Says how many rows a SELECT without a limit of its own gives; all of them again when it goes.
class SelectLimit {
public:
    SelectLimit(const QSqlDatabase& database, qint64 limit) : query_(database), isSet_(limit >= 0) {
        if (isSet_ && !query_.exec(statement(QString::number(limit))))
            throw DatabaseError(query_);
    }
    ~SelectLimit() {
        if (isSet_)
            query_.exec(statement(u"default"_s));
    }
    SelectLimit(const SelectLimit&) = delete;
    SelectLimit& operator=(const SelectLimit&) = delete;

private:
    static QString statement(const QString& limit) { return "set session sql_select_limit = "_L1 + limit; }

    QSqlQuery query_;
    const bool isSet_;
};

bool hasOwnLimit(const std::string& sql) {
    int depth = 0;
    for (TVScanner scanner(sql); !scanner.AtEnd(); scanner.Next()) {
        const TToken& token = scanner.Token();
        depth += token.IsSymbol('(') ? 1 : token.IsSymbol(')') ? -1 : 0;
        if (depth == 0 && token.Kind == tkIdentifier && SameText(token.Text, "limit"))
            return true;
    }
    return false;
}

// Rows of a table expression keep their order only where it has a limit: `all` is one that leaves none out.
PositionalStatement castTimes(const QSqlRecord& columns, PositionalStatement statement,
                              const QString& pattern, QLatin1StringView all) {
    if (!hasTime(columns))
        return statement;
    const Cast cast(columns, pattern);
    if (!hasOwnLimit(statement.text.toStdString()))
        statement.text += "\nlimit "_L1 + all;
    statement.text = "with lumora_rows("_L1 + cast.names.join(", "_L1) + ") as (\n"_L1 + statement.text +
                     "\n) select "_L1 + cast.list.join(", "_L1) + " from lumora_rows"_L1;
    return statement;
}

void sendToMySql(QSqlQuery& query, const QSqlDatabase& database, PositionalStatement statement, qint64 limit,
                 bool timesAsText) {
    if (timesAsText) {
        QSqlQuery description(database);
        {
            const SelectLimit none(database, 0);
            send(description, statement);
        }
        statement = castTimes(description.record(), std::move(statement), u"cast(%1 as char)"_s,
                              "18446744073709551615"_L1);
    }
    const SelectLimit only(database, limit);
    send(query, statement);
}

// --- SQLite, whose texts its driver for ODBC takes for dates by what the column was declared as.

void sendToSqlite(QSqlQuery& query, const QSqlDatabase& database, PositionalStatement statement,
                  bool timesAsText) {
    if (timesAsText && database.driverName() == "QODBC"_L1) {
        QSqlQuery description(database);
        send(description, statement);
        statement = castTimes(description.record(), std::move(statement), u"cast(%1 as text)"_s, "-1"_L1);
    }
    send(query, statement);
}

} // namespace

void executePositional(QSqlQuery& query, const QSqlDatabase& database, PositionalStatement statement,
                       qint64 limit, bool timesAsText) {
    switch (engineOf(database)) {
    case Engine::PostgreSql:
        return send(query, forPostgres(database, std::move(statement), limit, timesAsText));
    case Engine::MySql:
        return sendToMySql(query, database, std::move(statement), limit, timesAsText);
    case Engine::Sqlite:
        return sendToSqlite(query, database, std::move(statement), timesAsText);
    case Engine::Other:
        break;
    }
    send(query, statement);
}

} // namespace lumora
