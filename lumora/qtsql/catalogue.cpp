#include "lumora/qtsql/catalogue.h"

#include "lumora/qtsql/catalogues.h"
#include "lumora/qtsql/databaseerror.h"
#include "lumora/qtsql/engine.h"

namespace lumora {

std::unique_ptr<Catalogue> openCatalogue(const QSqlDatabase& database) {
    switch (engineOf(database)) {
    case Engine::Sqlite:
        return openSqliteCatalogue(database);
    case Engine::PostgreSql:
        return openPostgresCatalogue(database);
    case Engine::MySql:
        return openMySqlCatalogue(database);
    default:
        return openGenericCatalogue(database);
    }
}

TFieldType numericType(int precision, int scale) {
    if (scale != 0 || precision == 0 || precision > 18)
        return ftBCD;
    return precision < 5 ? ftSmallint : precision < 10 ? ftInteger : ftLargeint;
}

QSqlQuery execute(const QSqlDatabase& database, const QString& statement, const QVariantList& values) {
    QSqlQuery query(database);
    query.setForwardOnly(true);
    bool done = false;
    if (values.isEmpty()) { // not everything can be prepared
        done = query.exec(statement);
    } else if (query.prepare(statement)) {
        for (const QVariant& value : values)
            query.addBindValue(value);
        done = query.exec();
    }
    if (!done)
        throw DatabaseError(query);
    return query;
}

bool nextRow(QSqlQuery& query) {
    if (query.next())
        return true;
    if (query.lastError().isValid())
        throw DatabaseError(query);
    return false;
}

std::string textOf(const QSqlQuery& query, int column) {
    return query.value(column).toString().toStdString();
}

void addKeyColumn(std::vector<ForeignKey>& keys, bool isNew, const std::string& table,
                  const std::string& referencedTable, std::string column, std::string referencedColumn) {
    if (isNew)
        keys.push_back({table, referencedTable, {}, {}});
    keys.back().columns.push_back(std::move(column));
    keys.back().referencedColumns.push_back(std::move(referencedColumn));
}

} // namespace lumora
