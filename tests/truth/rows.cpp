#include "tests/truth/rows.h"

#include "lumora/qtsql/engine.h"
#include "tests/cli_process.h"

#include <QDateTime>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QVariant>

#include <stdexcept>

namespace lumora::truth {

namespace {

Cell toCell(const QVariant& value) {
    if (value.isNull())
        return {};
    switch (value.typeId()) {
    case QMetaType::QString:
    case QMetaType::QByteArray: // a text of MariaDB's that is compared by its bytes
        return value.toString().toStdString();
    case QMetaType::QDate:
        return value.toDate().toString("yyyy-MM-dd").toStdString();
    case QMetaType::QTime:
        return value.toTime().toString("HH:mm:ss").toStdString();
    case QMetaType::QDateTime:
        return value.toDateTime().toString("yyyy-MM-dd HH:mm:ss").toStdString();
    default:
        return value.toDouble();
    }
}

// Each statement ends with a ";" at the end of its line.
void runScript(const QSqlDatabase& database, const std::string& script) {
    std::size_t end = 0;
    for (std::size_t start = 0; (end = script.find(";\n", start)) != script.npos; start = end + 2)
        runStatement(database, script.substr(start, end - start));
}

} // namespace

std::vector<Cells> runStatement(const QSqlDatabase& database, const std::string& sql) {
    QSqlQuery query(database);
    query.setForwardOnly(true);
    if (!query.exec(QString::fromStdString(sql)))
        throw std::runtime_error(query.lastError().text().toStdString());
    std::vector<Cells> rows;
    const int count = query.record().count();
    while (query.next()) {
        Cells& row = rows.emplace_back();
        for (int i = 0; i < count; ++i)
            row.push_back(toCell(query.value(i)));
    }
    if (query.lastError().isValid())
        throw std::runtime_error(query.lastError().text().toStdString());
    return rows;
}

void prepareShop(const QSqlDatabase& sqlite) {
    runScript(sqlite, tests::readFile(LUMORA_TRUTH "/prepare_shop.sql"));
}

std::size_t Table::columnIndex(const std::string& column) const {
    for (std::size_t i = 0; i < columns.size(); ++i)
        if (columns[i].name == column)
            return i;
    throw std::out_of_range(name + "." + column);
}

std::vector<Table> readTables(const QSqlDatabase& sqlite) {
    std::vector<Table> tables;
    for (const Cells& name : runStatement(sqlite, "select name from sqlite_master where type = 'table'")) {
        const std::string quoted = "\"" + text(name[0]) + "\"";
        Table& table = tables.emplace_back();
        table.name = text(name[0]);
        for (const Cells& column : runStatement(sqlite, "pragma table_info(" + quoted + ")"))
            table.columns.push_back({text(column[1]), text(column[2])});
        table.rows = runStatement(sqlite, "select * from " + quoted);
    }
    return tables;
}

namespace {

bool isMariaDb(const QSqlDatabase& server) {
    return engineOf(server) == lumora::Engine::MySql;
}

// SQLite's types are the servers' but for these: PostgreSQL's round(x, 2) is there for numeric only, and
// MariaDB's timestamp begins in 1970.
std::string serverType(const std::string& type, bool mariaDb) {
    return type == "REAL" ? "DECIMAL(20,6)" : type == "TIMESTAMP" && mariaDb ? "DATETIME" : type;
}

// A text, of which a server makes what the column holds.
std::string literal(const Cell& cell) {
    if (isNull(cell))
        return "NULL";
    std::string quoted = "'";
    for (const char c : cell.index() == 1 ? show(cell) : text(cell))
        quoted.append(c == '\'' ? 2 : 1, c);
    return quoted + "'";
}

void copyTable(const QSqlDatabase& server, const Table& table) {
    const std::string name = "\"" + table.name + "\"";
    std::string columns;
    for (const Column& column : table.columns)
        columns += (columns.empty() ? "\"" : ", \"") + column.name + "\" " +
                   serverType(column.type, isMariaDb(server));
    runStatement(server, "create table " + name + " (" + columns + ")");
    std::string rows;
    for (const Cells& row : table.rows) {
        std::string values;
        for (const Cell& cell : row)
            values += (values.empty() ? "" : ", ") + literal(cell);
        rows += (rows.empty() ? "(" : ", (") + values + ")";
    }
    runStatement(server, "insert into " + name + " values " + rows);
    runStatement(server, std::string(isMariaDb(server) ? "analyze table " : "analyze ") + name);
}

} // namespace

void fillServer(const QSqlDatabase& server, const std::vector<Table>& tables) {
    const std::string script = isMariaDb(server) ? "/prepare_mariadb.sql" : "/prepare_postgres.sql";
    runScript(server, tests::readFile(LUMORA_TRUTH + script));
    for (const Table& table : tables)
        copyTable(server, table);
}

} // namespace lumora::truth
