// An SQLite file, looked at before SQLite opens it.
#pragma once

#include "lumora/qtsql/databaseconnection.h"

namespace lumora {

// What Qt's driver is given as the database's name and as options of its own. DatabaseError, CannotConnect,
// when the file is missing (and not to be made), is a directory, is empty though it is to be read, or is said
// to be immutable while changes wait in its log.
struct SqliteFile {
    SqliteFile(const DatabaseParameters& parameters, DatabaseConnection::Access access);

    QString name;
    QString options;
};

// SQLite's reason for not opening the file for reading, and what can be done where a log (WAL) is the cause.
QString sqliteReason(const DatabaseParameters& parameters, const QString& reason);

} // namespace lumora
