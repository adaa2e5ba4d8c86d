// The catalogues of single engines, and what they share.
#pragma once

#include "lumora/qtsql/catalogue.h"

#include <QSqlQuery>
#include <QVariantList>

#include <string>

namespace lumora {

std::unique_ptr<Catalogue> openSqliteCatalogue(const QSqlDatabase& database);
std::unique_ptr<Catalogue> openPostgresCatalogue(const QSqlDatabase& database);
std::unique_ptr<Catalogue> openMySqlCatalogue(const QSqlDatabase& database);
std::unique_ptr<Catalogue> openGenericCatalogue(const QSqlDatabase& database);

// Runs a statement with values for its "?"; DatabaseError when it fails.
QSqlQuery execute(const QSqlDatabase& database, const QString& statement, const QVariantList& values = {});
// Moves to the next row; false behind the last. DatabaseError when reading fails.
bool nextRow(QSqlQuery& query);
std::string textOf(const QSqlQuery& query, int column);

// Adds a column to the foreign key that the row before began, or begins one when `isNew`.
void addKeyColumn(std::vector<ForeignKey>& keys, bool isNew, const std::string& table,
                  const std::string& referencedTable, std::string column, std::string referencedColumn);

} // namespace lumora
