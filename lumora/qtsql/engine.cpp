#include "lumora/qtsql/engine.h"

#include "lumora/model/structure.h"
#include "lumora/qtsql/reservedwords.h"

#include <QSqlDriver>
#include <QSqlQuery>
#include <QVariant>

#include <algorithm>

namespace lumora {

namespace {

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}
bool isLower(char c) {
    return c >= 'a' && c <= 'z';
}
bool isUpper(char c) {
    return c >= 'A' && c <= 'Z';
}

bool answers(const QSqlDatabase& database, const char* question, QLatin1StringView part) {
    QSqlQuery query(database);
    return query.exec(QLatin1StringView(question)) && query.next() &&
           query.value(0).toString().contains(part, Qt::CaseInsensitive);
}

// Qt knows some engines behind ODBC; others tell when they are asked.
Engine askEngine(const QSqlDatabase& database) {
    switch (database.driver()->dbmsType()) {
    case QSqlDriver::PostgreSQL:
        return Engine::PostgreSql;
    case QSqlDriver::MySqlServer:
        return Engine::MySql;
    case QSqlDriver::UnknownDbms:
        break;
    default:
        return Engine::Other;
    }
    if (answers(database, "select sqlite_version()", QLatin1StringView(".")))
        return Engine::Sqlite;
    return answers(database, "select version()", QLatin1StringView("MariaDB")) ? Engine::MySql
                                                                               : Engine::Other;
}

} // namespace

// ODBC leads to any engine.
Engine engineOf(const QSqlDatabase& database) {
    static constexpr const char* known =
        "lumoraEngine"; // by the driver, of which each connection has its own
    if (database.driverName() != QLatin1StringView("QODBC") || !database.isOpen())
        return engineOf(database.driverName());
    QSqlDriver& driver = *database.driver();
    if (!driver.property(known).isValid())
        driver.setProperty(known, static_cast<int>(askEngine(database)));
    return static_cast<Engine>(driver.property(known).toInt());
}

Engine engineOf(const QString& driver) {
    if (driver == QLatin1StringView("QSQLITE"))
        return Engine::Sqlite;
    if (driver == QLatin1StringView("QPSQL"))
        return Engine::PostgreSql;
    if (driver == QLatin1StringView("QMYSQL") || driver == QLatin1StringView("QMARIADB"))
        return Engine::MySql;
    return Engine::Other;
}

// PostgreSQL folds unquoted names to lower case. Letters beyond ASCII are left to quotes everywhere.
TSQLDialect dialectOf(Engine engine) {
    switch (engine) {
    case Engine::Sqlite:
        return sdSQLite;
    case Engine::PostgreSql:
        return sdPostgreSQL;
    case Engine::MySql:
        return sdMySQL;
    case Engine::Other:
        break;
    }
    return sdStandard;
}

bool needsQuotes(Engine engine, std::string_view name) {
    const bool foldsCase = engine == Engine::PostgreSql;
    const auto isNameChar = [&](char c) {
        return isLower(c) || isDigit(c) || c == '_' || (isUpper(c) && !foldsCase);
    };
    return name.empty() || isDigit(name.front()) || !std::all_of(name.begin(), name.end(), isNameChar) ||
           isReservedWord(engine, name);
}

void prepareModel(TVCustomDBStructure& model, Engine engine) {
    TSQLFormats& formats = model.GetSQLFormats();
    formats.SetDate("yyyy-mm-dd");
    formats.SetTime("hh:nn:ss");
    formats.SetDateTime("yyyy-mm-dd hh:nn:ss");
    formats.SetQuoteSymbol1('"');
    formats.SetQuoteSymbol2('"');
    TQuotedTypes quoted = DefaultQuotedTypes + TQuotedTypes{ftGuid};
    if (engine == Engine::Sqlite || engine == Engine::MySql) // true, false, 1 and 0 stand for themselves
        quoted = quoted - TQuotedTypes{ftBoolean};
    if (engine == Engine::PostgreSql) // money compares with no number
        quoted = quoted + TQuotedTypes{ftCurrency};
    model.SetQuotedTypes(quoted);
}

} // namespace lumora
