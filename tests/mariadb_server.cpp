#include "tests/mariadb_server.h"

#include <QSqlDatabase>
#include <QString>

#include <memory>

namespace lumora::tests {

namespace {

// The first of these that there is; empty without any.
std::string programOf(const std::string& name) {
    for (const char* const folder : {"/usr/sbin/", "/usr/bin/", "/usr/local/sbin/", "/usr/local/bin/"})
        if (std::filesystem::exists(folder + name))
            return folder + name;
    return {};
}

} // namespace

MariaDbServer* MariaDbServer::get() {
    static std::unique_ptr<MariaDbServer> server;
    if (server)
        return server.get();
    const std::string program = programOf("mariadbd");
    if (!program.empty() && QSqlDatabase::isDriverAvailable("QMYSQL"))
        server.reset(new MariaDbServer(program));
    else if (std::getenv("LUMORA_REQUIRE_MARIADB"))
        throw std::runtime_error(notInstalled);
    return server.get();
}

MariaDbServer::MariaDbServer(const std::string& program) : PrivateServer("mariadb", "mysql") {
    const std::string data = "--datadir=" + folder() / "data";
    const std::string smallLog = "--innodb-log-file-size=4M";
    run({programOf("mariadb-install-db"), "--no-defaults", "--auth-root-authentication-method=normal",
         "--skip-test-db", "--skip-name-resolve", smallLog, data});
    writeFile(folder() / "first.sql", firstStatements());
    start(
        [&](int port) {
            return Command{program,
                           "--no-defaults",
                           data,
                           smallLog,
                           "--socket=" + folder() / "s",
                           "--port=" + std::to_string(port),
                           "--bind-address=127.0.0.1",
                           "--skip-name-resolve",
                           "--skip-log-bin",
                           "--innodb-flush-log-at-trx-commit=0",
                           "--init-file=" + folder() / "first.sql"};
        },
        [this] { return log().find(": ready for connections") != std::string::npos; });
}

// One statement a line.
std::string MariaDbServer::firstStatements() const {
    std::string secret;
    for (const char c : password())
        secret.append(c == '\'' ? 2 : 1, c);
    std::string statements = "create user " + user() + " identified by '" + secret + "';\n";
    for (const std::string& name : {database(), std::string("Sales")})
        statements += "create database `" + name + "` character set utf8mb4;\ngrant all on `" + name +
                      "`.* to " + user() + ";\n";
    return statements;
}

} // namespace lumora::tests
