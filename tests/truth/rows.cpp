#include "tests/truth/rows.h"

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

void execute(QSqlQuery& query) {
    if (!query.exec())
        throw std::runtime_error(query.lastError().text().toStdString());
}

void executeAll(const QSqlDatabase& database, std::initializer_list<const char*> statements) {
    for (const char* const statement : statements)
        runStatement(database, statement);
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
    executeAll(sqlite,
               {"pragma case_sensitive_like = on", // as PostgreSQL's like
                "pragma synchronous = off", "delete from returns where order_id > 1400",
                "delete from shipments where order_id > 1120", "delete from payments where order_id > 1120",
                "delete from \"Order Lines\" where order_id > 1120",
                "delete from orders where order_id > 1120",
                "delete from customers where customer_id > 40 and customer_id not in "
                "(select customer_id from orders)",
                "update customers set credit_limit = round(credit_limit)",
                "update products set list_price = round(list_price * 2) / 2, "
                "weight_kg = round(weight_kg * 2) / 2",
                "update orders set freight = round(freight * 2) / 2, total = round(total * 2) / 2",
                "update \"Order Lines\" set unit_price = round(unit_price), "
                "discount = case when discount > 0 then 0.5 else 0 end",
                "update payments set amount = round(amount * 2) / 2",
                "update shipments set weight_kg = round(weight_kg * 2) / 2"});
    // Quotes, wildcards, backslashes, empty texts, nulls, keys that lead nowhere, two rows that are alike.
    executeAll(
        sqlite,
        {"insert into countries values (90, 'O''Land', 'OL', '', 0), (91, 'x_y%z', '%_', 'Europe', 1)",
         "insert into customers values "
         "(901, '', 'D''Arcy', '\"Quo\"te', null, '', 'a_b', '100%', '50%x', 999, '2021-01-08', 1, 0, ''), "
         "(902, null, '', 'Größe', 'a\\b', '%', 'back\\slash', '_', 'O''Hara', 90, '2021-01-08', 0, null, "
         "'it''s 50%\\ off_'), "
         "(903, 'O''Hara', 'Ålesund', 'ålesund', null, null, 'a b', 'A', 'a', 91, '1899-12-30', 1, 12.5, "
         "'two\nlines')",
         "insert into employees values (90, 'No', 'Boss', 'O''Chief', 999, '1970-01-01', '2021-01-08', 0, "
         "'00:00:00', null, 0)",
         "insert into suppliers values (90, 'Nobody', 'Oslo', 999, null, null)",
         "insert into categories values (90, '%', null), (91, '', '')",
         "insert into products values (900, 'a\\b', 999, 90, 10, 0, null, '2021-01-08', 0), "
         "(901, 'A, \"b\"', 90, 999, -2.5, -7, 0, '2020-12-31', 1)",
         "insert into orders values "
         "(2001, 901, 90, '2021-01-08', '2021-01-08 00:00:00', null, '', '%', 0, 0, ''), "
         "(2002, 999, 999, '2021-02-28', '2021-02-28 23:59:59', '2021-03-01', 'new', 'web', -2.5, 3, null), "
         "(2003, 902, 1, '1899-12-30', '1899-12-30 14:30:00', null, 'n_w', 'web', 0.5, 0.5, '\\'), "
         "(2004, 903, 1, '2021-03-01', '2021-03-01 14:30:00', null, 'new', 'shop', 5, 1000, 'O''Hara')",
         "insert into \"Order Lines\" values (2001, 1, 900, 1, 10, 0, ''), (2001, 2, 901, 7, 4, 0.5, "
         "'O''Hara'), "
         "(2002, 1, 999, 0, 3, 0, '%_\\'), (2999, 1, 900, 2, 8, 0.5, null)",
         "insert into payments values (9001, 2001, '2021-01-08', '', 0, null), "
         "(9002, 2001, '2021-01-08', '', 0, null), (9003, 2999, '2021-01-09', 'card', 3, 'a\\b')",
         "insert into shipments values (9001, 2001, 99, '2021-01-08', null, null, null), "
         "(9002, 2002, 1, '2021-01-09', '2021-01-09 12:00:00', '', 0)",
         "insert into returns values (901, 2001, 1, '2021-01-08', 1, 'O''Hara', 0), "
         "(902, 2001, 9, '2021-01-08', 1, '', 1), (903, 2999, 1, '2021-01-10', 2, 'a_b', 1)"});
}

int Table::columnIndex(const std::string& column) const {
    for (std::size_t i = 0; i < columns.size(); ++i)
        if (columns[i].name == column)
            return static_cast<int>(i);
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

// SQLite's types are PostgreSQL's but for this: round(x, 2) is there for numeric only.
std::string postgresType(const std::string& type) {
    return type == "REAL" ? "NUMERIC" : type;
}

void copyTable(const QSqlDatabase& postgres, const Table& table) {
    std::string columns, places;
    for (const Column& column : table.columns) {
        columns += (columns.empty() ? "\"" : ", \"") + column.name + "\" " + postgresType(column.type);
        places += places.empty() ? "?" : ", ?";
    }
    runStatement(postgres, "create table \"" + table.name + "\" (" + columns + ")");
    QSqlQuery insert(postgres);
    insert.prepare(QString::fromStdString("insert into \"" + table.name + "\" values (" + places + ")"));
    for (const Cells& row : table.rows) {
        for (std::size_t i = 0; i < row.size();
             ++i) // as texts, of which PostgreSQL makes what the column holds
            insert.bindValue(static_cast<int>(i),
                             isNull(row[i])
                                 ? QVariant(QMetaType::fromType<QString>())
                                 : QString::fromStdString(row[i].index() == 1 ? show(row[i]) : text(row[i])));
        execute(insert);
    }
    runStatement(postgres, "analyze \"" + table.name + "\"");
}

} // namespace

void fillPostgres(const QSqlDatabase& postgres, const std::vector<Table>& tables) {
    executeAll(postgres,
               {"begin",
                "create function julianday(day date) returns numeric language sql immutable as "
                "'select (day - date ''2000-01-01'') + 2451544.5'",
                "create function strftime(format text, at timestamp) returns text language sql immutable "
                "as 'select to_char(at, ''YYYY'')'"});
    for (const Table& table : tables)
        copyTable(postgres, table);
    executeAll(postgres, {"commit", "set jit = off", "set geqo_threshold = 6"});
}

} // namespace lumora::truth
