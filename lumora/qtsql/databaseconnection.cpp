#include "lumora/qtsql/databaseconnection.h"

#include "lumora/qtsql/databaseerror.h"
#include "lumora/qtsql/sqlitefile.h"

#include <QSqlQuery>

#include <atomic>

namespace lumora {

using namespace Qt::StringLiterals;
using Access = DatabaseConnection::Access;

namespace {

QString newConnectionName() {
    static std::atomic<int> count = 0;
    return u"lumora-%1"_s.arg(++count);
}

[[noreturn]] void failToOpen(const DatabaseParameters& parameters, const QString& reason) {
    throw DatabaseError(DatabaseError::Kind::CannotConnect,
                        u"Cannot open database \"%1\": %2"_s.arg(parameters.label(), reason));
}

// The driver writes "DSN=" before what is no connection string to its eyes.
QString odbcSource(const QString& text) {
    return text.startsWith("DSN="_L1, Qt::CaseInsensitive) ? text.mid(4) : text;
}

QString joinOptions(const QString& options, const QString& more) {
    return options.isEmpty() || more.isEmpty() ? options + more : options + ';'_L1 + more;
}

void setUp(QSqlDatabase& database, const DatabaseParameters& parameters, Access access) {
    QString options = parameters.connectOptions;
    if (parameters.driver == "QSQLITE"_L1) {
        const SqliteFile file(parameters, access);
        database.setDatabaseName(file.name);
        options = joinOptions(options, file.options);
    } else if (parameters.driver == "QODBC"_L1) {
        database.setDatabaseName(odbcSource(parameters.databaseName));
    } else {
        database.setDatabaseName(parameters.databaseName);
    }
    if (parameters.driver == "QPSQL"_L1 && !options.contains("connect_timeout"_L1))
        options = joinOptions(options, u"connect_timeout=15"_s);
    if (parameters.driver == "QMYSQL"_L1 && !options.contains("MYSQL_OPT_CONNECT_TIMEOUT"_L1))
        options = joinOptions(options, u"MYSQL_OPT_CONNECT_TIMEOUT=15"_s);
    database.setHostName(parameters.hostName);
    database.setPort(parameters.port);
    database.setUserName(parameters.userName);
    database.setPassword(parameters.password);
    database.setConnectOptions(options);
}

// What has to be said to an engine before anything else. SQLite looks into its file only now. Servers are
// told to take quotes, backslashes and "||" as standard SQL has them, and not to write where we only read.
QStringList firstStatements(const QSqlDatabase& database, Access access) {
    const bool readOnly = access == Access::ReadOnly;
    switch (engineOf(database)) {
    case Engine::Sqlite:
        return {u"select count(*) from sqlite_master"_s, u"pragma foreign_keys=on"_s,
                u"pragma query_only=%1"_s.arg(readOnly ? "on"_L1
                                                       : "off"_L1)}; // for ODBC, which opens for writing
    case Engine::PostgreSql:
        return {u"set standard_conforming_strings = on"_s,
                u"set default_transaction_read_only = %1"_s.arg(readOnly ? "on"_L1 : "off"_L1)};
    case Engine::MySql:
        return {u"set session sql_mode = concat(@@sql_mode,"
                " ',ANSI_QUOTES,NO_BACKSLASH_ESCAPES,PIPES_AS_CONCAT')"_s,
                u"set session transaction read %1"_s.arg(readOnly ? "only"_L1 : "write"_L1)};
    default:
        return {};
    }
}

// The reason of a failure; none when the database is open.
QString tryToOpen(const QString& connectionName, const DatabaseParameters& parameters, Access access) {
    QSqlDatabase database = QSqlDatabase::addDatabase(parameters.driver, connectionName);
    setUp(database, parameters, access);
    if (!database.open())
        return reasonOf(database.lastError());
    for (const QString& statement : firstStatements(database, access)) {
        QSqlQuery query(database);
        if (!query.exec(statement))
            return reasonOf(query.lastError());
    }
    return {};
}

} // namespace

DatabaseConnection::DatabaseConnection(const DatabaseParameters& parameters, Access access)
    : parameters_(parameters), connectionName_(newConnectionName()) {
    if (!QSqlDatabase::isDriverAvailable(parameters.driver))
        failToOpen(parameters, u"Qt's driver %1 is not installed"_s.arg(parameters.driver));
    QString reason;
    try {
        reason = tryToOpen(connectionName_, parameters, access);
    } catch (...) {
        QSqlDatabase::removeDatabase(connectionName_);
        throw;
    }
    if (reason.isEmpty())
        return;
    QSqlDatabase::removeDatabase(connectionName_);
    failToOpen(parameters, parameters.driver == "QSQLITE"_L1 ? sqliteReason(parameters, reason) : reason);
}

DatabaseConnection::~DatabaseConnection() {
    QSqlDatabase::removeDatabase(connectionName_);
}

QSqlDatabase DatabaseConnection::connection() const {
    return QSqlDatabase::database(connectionName_, false);
}

} // namespace lumora
