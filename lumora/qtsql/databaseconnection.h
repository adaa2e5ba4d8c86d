// An open connection to a database.
#pragma once

#include "lumora/qtsql/databaseparameters.h"
#include "lumora/qtsql/engine.h"

#include <QSqlDatabase>
#include <QString>

namespace lumora {

// Opens a connection and closes it when it goes, on one and the same thread. Needs a QCoreApplication,
// through which Qt finds its drivers.
class DatabaseConnection {
public:
    enum class Access {
        ReadOnly, // the engine refuses to write
        ReadWrite,
        Create // as ReadWrite; an SQLite file that does not exist is made
    };

    // DatabaseError, which names the database, when it cannot be reached, or is no SQLite file.
    explicit DatabaseConnection(const DatabaseParameters& parameters, Access access = Access::ReadOnly);
    ~DatabaseConnection();
    DatabaseConnection(const DatabaseConnection&) = delete;
    DatabaseConnection& operator=(const DatabaseConnection&) = delete;

    QSqlDatabase connection() const;
    const DatabaseParameters& parameters() const { return parameters_; }
    Engine engine() const { return engineOf(connection()); }

private:
    const DatabaseParameters parameters_;
    const QString connectionName_;
};

} // namespace lumora
