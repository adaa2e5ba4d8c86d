// The shop's rows: made in an SQLite file, copied to servers, and held in memory for the reference.
#pragma once

#include "tests/truth/values.h"

#include <QSqlDatabase>

#include <string>
#include <vector>

namespace lumora::truth {

struct Column {
    std::string name;
    std::string type; // as SQLite was told
};

struct Table {
    std::size_t columnIndex(const std::string& name) const; // std::out_of_range when there is none

    std::string name;
    std::vector<Column> columns;
    std::vector<Cells> rows;
};

// Cuts the sample database down, so that joins stay fast, makes its amounts multiples of a half, so that all
// sums are exact in binary and in decimal, and adds the rows that shops do not have.
void prepareShop(const QSqlDatabase& sqlite);
std::vector<Table> readTables(const QSqlDatabase& sqlite);
// Makes the tables and the functions that the sample model takes from SQLite.
void fillServer(const QSqlDatabase& server, const std::vector<Table>& tables);

// The rows of a statement. std::runtime_error with the engine's message when it refuses it.
std::vector<Cells> runStatement(const QSqlDatabase& database, const std::string& sql);

} // namespace lumora::truth
