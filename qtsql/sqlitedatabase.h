// An SQLite file, opened for reading only.
#pragma once

#include <QSqlDatabase>
#include <QString>

#include <string>

namespace lumora {

// Holds one connection and closes it when it goes. Needs a QCoreApplication, through which Qt finds its
// drivers.
class SqliteDatabase {
public:
    // DatabaseError, which names the file, when it does not exist or is no SQLite database. Nothing is made.
    explicit SqliteDatabase(const std::string& fileName);
    ~SqliteDatabase();
    SqliteDatabase(const SqliteDatabase&) = delete;
    SqliteDatabase& operator=(const SqliteDatabase&) = delete;

    QSqlDatabase connection() const;

private:
    const QString connectionName_;
};

} // namespace lumora
