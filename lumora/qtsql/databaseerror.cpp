#include "lumora/qtsql/databaseerror.h"

#include <QRegularExpression>
#include <QSqlDatabase>
#include <QSqlDriver>
#include <QSqlQuery>
#include <QStringList>

namespace lumora {

namespace {

using namespace Qt::StringLiterals;

bool isHint(const QString& line) {
    return line.startsWith("DETAIL:"_L1) || line.startsWith("HINT:"_L1);
}

// PostgreSQL says "ERROR:  MESSAGE", then in lines of their own "LINE 1: STATEMENT" with a mark below,
// "DETAIL:", "HINT:", "CONTEXT:" and its code in brackets. The message may itself have several lines.
QString postgresReason(const QString& text) {
    QString reason;
    bool wanted = true;
    for (const QString& line : text.split('\n'_L1)) {
        const QString words = line.trimmed();
        if (line.startsWith("LINE "_L1) || line.startsWith("CONTEXT:"_L1) || line.startsWith("QUERY:"_L1))
            wanted = false;
        else if (isHint(line))
            wanted = true;
        if (wanted && !words.isEmpty() && !reason.isEmpty())
            reason += isHint(line) ? "; "_L1 : " "_L1;
        if (wanted)
            reason += words;
    }
    for (const QLatin1StringView level : {"ERROR:  "_L1, "FATAL:  "_L1, "PANIC:  "_L1}) {
        const qsizetype position = reason.indexOf(level); // a connection's failure says first what failed
        if (position == 0 || (position > 0 && reason.startsWith("connection to server"_L1)))
            reason.remove(position, level.size());
    }
    return reason;
}

// The driver adds the code, if there is one, when it is no connection that failed.
QString withoutCode(const QString& text) {
    static const QRegularExpression code(u"\\n\\((\\w{5})?\\)$"_s);
    return QString(text).remove(code);
}

using Kind = DatabaseError::Kind;

// The result codes of SQLite, of which the lower byte says what it is about.
Kind sqliteKind(const QSqlError& error) {
    switch (error.nativeErrorCode().toInt() & 0xff) {
    case 8:
        return Kind::ReadOnly;
    case 9:
        return Kind::Cancelled;
    default:
        return error.databaseText().startsWith("no such table"_L1) ||
                       error.databaseText().startsWith("no such column"_L1)
                   ? Kind::NotFound
                   : Kind::Refused;
    }
}

// SQLSTATE; none comes with a connection that broke.
Kind postgresKind(const QString& code) {
    if (code.startsWith("08"_L1) || code.startsWith("57P"_L1))
        return Kind::ConnectionLost;
    if (code == "42P01"_L1 || code == "42703"_L1 || code == "3F000"_L1)
        return Kind::NotFound;
    return code == "25006"_L1 ? Kind::ReadOnly : code == "57014"_L1 ? Kind::Cancelled : Kind::Refused;
}

Kind mySqlKind(int code) {
    switch (code) {
    case 1927:
    case 2006:
    case 2013:
        return Kind::ConnectionLost;
    case 1054:
    case 1146:
        return Kind::NotFound;
    case 1290:
    case 1792:
        return Kind::ReadOnly;
    case 1317:
    case 1969:
    case 3024:
        return Kind::Cancelled;
    default:
        return Kind::Refused;
    }
}

Kind kindOf(const QSqlDriver& driver, const QSqlError& error) {
    if (!driver.isOpen())
        return Kind::ConnectionLost;
    switch (driver.dbmsType()) {
    case QSqlDriver::SQLite:
        return sqliteKind(error);
    case QSqlDriver::PostgreSQL:
        return postgresKind(error.nativeErrorCode());
    case QSqlDriver::MySqlServer:
        return mySqlKind(error.nativeErrorCode().toInt());
    default:
        return Kind::Refused;
    }
}

} // namespace

DatabaseError::DatabaseError(const QSqlQuery& failed)
    : DatabaseError(kindOf(*failed.driver(), failed.lastError()), reasonOf(failed.lastError())) {}

DatabaseError::DatabaseError(const QSqlDatabase& failed) : DatabaseError(failed, failed.lastError()) {}

DatabaseError::DatabaseError(const QSqlDatabase& database, const QSqlError& error)
    : DatabaseError(kindOf(*database.driver(), error), reasonOf(error)) {}

QString reasonOf(const QSqlError& error) {
    QString text = withoutCode(error.databaseText().trimmed());
    if (text.isEmpty())
        text = error.driverText().trimmed();
    if (text.isEmpty())
        return u"the database gives no reason; the connection may be lost"_s;
    return postgresReason(text);
}

} // namespace lumora
