// A PostgreSQL server of the test's own.
#pragma once

#include "tests/private_server.h"

#include <QSqlDatabase>
#include <QString>

#include <string>

namespace lumora::tests {

// On the socket in its folder it trusts whoever can reach it.
class PostgresServer : public PrivateServer {
public:
    // The one server of this process, started by the first call; none when PostgreSQL is not installed,
    // unless the environment variable LUMORA_REQUIRE_POSTGRES is set. std::runtime_error when it cannot be
    // started.
    static PostgresServer* get();
    static constexpr const char* notInstalled = "PostgreSQL is not installed";

    ~PostgresServer() override;

    std::string socketFolder() const { return folder() / ""; }

private:
    explicit PostgresServer(const std::string& programs);
    bool isReady() const;
    void makeUserAndDatabase() const;
};

// A connection as the server's user, through the socket. Needs a QCoreApplication.
class PostgresConnection {
public:
    explicit PostgresConnection(const PostgresServer& server)
        : PostgresConnection(server, server.user(), server.database()) {}
    PostgresConnection(const PostgresServer& server, const std::string& user, const std::string& database);
    ~PostgresConnection();
    PostgresConnection(const PostgresConnection&) = delete;
    PostgresConnection& operator=(const PostgresConnection&) = delete;

    QSqlDatabase connection() const { return QSqlDatabase::database(name_, false); }
    void execute(const QString& sql) const; // std::runtime_error with the server's message

private:
    QString name_;
};

} // namespace lumora::tests
