// What sets the database engines apart.
#pragma once

#include "lumora/statement/sql_dialect.h"

#include <QSqlDatabase>
#include <QString>

#include <string_view>

namespace lumora {

class TVCustomDBStructure;

enum class Engine { Sqlite, PostgreSql, MySql, Other };

// Behind ODBC an open connection is asked.
Engine engineOf(const QSqlDatabase& database);
// The engine that a driver of Qt's, "QPSQL", is for; Other for ODBC, which leads to any.
Engine engineOf(const QString& driver);

// The dialect in which statements for the engine are written.
TSQLDialect dialectOf(Engine engine);

// Whether a table's or column's name, spelled as the catalogue has it, must stand in quotes in a statement.
bool needsQuotes(Engine engine, std::string_view name);

// Sets the forms of dates and times, the quote symbols and the types whose values stand in quotes to what the
// engine takes. Model texts keep no quoted types, so a model that was loaded for an engine needs this too.
void prepareModel(TVCustomDBStructure& model, Engine engine);

} // namespace lumora
