// The one way in which databases, and statements that run on them, fail.
#pragma once

#include "lumora/platform/errors.h"

#include <QSqlError>
#include <QString>

#include <cstdint>

class QSqlDatabase;
class QSqlQuery;

namespace lumora {

class DatabaseError : public Exception {
public:
    enum class Kind : std::uint8_t {
        Invalid,        // what was asked for can be asked of no database; none was asked
        CannotConnect,  // the database cannot be opened
        ConnectionLost, // it was open and no longer answers
        NotFound,       // there is no database, table or column of the name
        ReadOnly,       // it would write where only reading is allowed
        Cancelled,      // it was stopped before its end
        Refused         // the engine refuses for another reason
    };

    DatabaseError(Kind kind, const QString& message) : Exception(message.toStdString()), kind_(kind) {}
    // What failed last in a query or in what a driver does without one, with the engine's reason.
    explicit DatabaseError(const QSqlQuery& failed);
    explicit DatabaseError(const QSqlDatabase& failed);
    DatabaseError(const QSqlDatabase& database, const QSqlError& error);

    // Told apart for SQLite, PostgreSQL and MySQL; with other engines Refused stands for more.
    Kind kind() const noexcept { return kind_; }

private:
    Kind kind_;
};

// The engine's own words where it has any, in one line, without its pointers into the statement; never empty.
QString reasonOf(const QSqlError& error);

} // namespace lumora
