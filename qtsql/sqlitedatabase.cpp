#include "qtsql/sqlitedatabase.h"

#include "qtsql/databaseerror.h"

#include <QSqlError>
#include <QSqlQuery>

#include <atomic>
#include <filesystem>
#include <system_error>

namespace lumora {

namespace fs = std::filesystem;

namespace {

QString newConnectionName() {
    static std::atomic<int> count = 0;
    return QStringLiteral("lumora-%1").arg(++count);
}

[[noreturn]] void failToOpen(const std::string& fileName, const QString& reason) {
    throw DatabaseError(
        QStringLiteral("Cannot open database \"%1\": %2").arg(QString::fromStdString(fileName), reason));
}

QString reasonOf(const QSqlError& error) {
    return error.databaseText().isEmpty() ? error.driverText() : error.databaseText();
}

// SQLite would make a file that is missing, and takes some names (":memory:") for none: it gets the whole
// path of a file that is there.
QString existingFile(const std::string& fileName) {
    std::error_code error;
    const fs::file_status status = fs::status(fileName, error);
    if (!fs::exists(status))
        failToOpen(fileName, error ? QString::fromStdString(error.message())
                                   : QStringLiteral("No such file or directory"));
    if (fs::is_directory(status))
        failToOpen(fileName, QStringLiteral("it is a directory"));
    return QString::fromStdString(fs::absolute(fileName, error).string());
}

} // namespace

SqliteDatabase::SqliteDatabase(const std::string& fileName) : connectionName_(newConnectionName()) {
    const QString path = existingFile(fileName);
    const QString driver = QStringLiteral("QSQLITE");
    if (!QSqlDatabase::isDriverAvailable(driver))
        failToOpen(fileName, QStringLiteral("Qt's driver QSQLITE is not installed"));
    QString reason;
    { // the connection can be removed only when nothing refers to it
        QSqlDatabase database = QSqlDatabase::addDatabase(driver, connectionName_);
        database.setDatabaseName(path);
        database.setConnectOptions(QStringLiteral("QSQLITE_OPEN_READONLY"));
        if (!database.open()) {
            reason = reasonOf(database.lastError());
        } else {
            QSqlQuery probe(database); // only now does SQLite look into the file
            if (!probe.exec(QStringLiteral("select count(*) from sqlite_master")))
                reason = reasonOf(probe.lastError());
        }
    }
    if (reason.isEmpty())
        return;
    QSqlDatabase::removeDatabase(connectionName_);
    failToOpen(fileName, reason);
}

SqliteDatabase::~SqliteDatabase() {
    QSqlDatabase::removeDatabase(connectionName_);
}

QSqlDatabase SqliteDatabase::connection() const {
    return QSqlDatabase::database(connectionName_, false);
}

} // namespace lumora
