// The databases that a program can reach, by name.
#pragma once

#include "lumora/metadata/session.h"
#include "lumora/qtsql/catalogue.h"
#include "lumora/qtsql/databaseconnection.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace lumora {

// Opens a database when it is first asked for something, and anew when its connection has been lost. Belongs
// to one thread; is the default session, from which providers take theirs, while it lives.
class DatabaseSession : public TSession {
public:
    DatabaseSession();
    ~DatabaseSession() override;

    // A database of that name from now on; one that there was is closed. Nothing is opened yet.
    void registerDatabase(const std::string& name, const DatabaseParameters& parameters,
                          DatabaseConnection::Access access = DatabaseConnection::Access::ReadOnly);
    void unregisterDatabase(const std::string& name);

    // The open connection of a database; DatabaseError when there is none of the name or it cannot be opened.
    DatabaseConnection& open(const std::string& name);
    void close(const std::string& name);
    // To be told of a failure on a database: a connection that no longer answers is given up.
    void checkConnection(const std::string& name);

    void GetDatabaseNames(TStringList& names) override;
    void GetTableNames(const std::string& database, std::string_view pattern, bool extensions,
                       bool systemTables, TStringList& names) override;
    TDatabase* FindDatabase(const std::string& database) override;
    std::unique_ptr<TTable> NewTable() override;
    std::unique_ptr<TQuery> NewQuery() override;
    void SetBusyCursor(bool busy) override;

    // Called by SetBusyCursor; a program with a screen sets it.
    std::function<void(bool busy)> onBusy;

private:
    class Database;

    Database* find(const std::string& name) const;

    std::vector<std::unique_ptr<Database>> databases_;
};

} // namespace lumora
