#include "tests/postgres_server.h"

#include <QSqlError>
#include <QSqlQuery>

#include <signal.h>

#include <algorithm>
#include <memory>

namespace lumora::tests {

namespace fs = std::filesystem;

namespace {

constexpr const char* owner = "lumora_owner"; // the superuser

// The folder of initdb and postgres; empty when there is none.
std::string programFolder() {
    std::vector<std::string> folders;
    const ProcessResult config = runProcess({"pg_config", "--bindir"});
    if (config.status == 0)
        folders.push_back(config.out.substr(0, config.out.find('\n')));
    std::error_code error;
    for (const fs::directory_entry& version : fs::directory_iterator("/usr/lib/postgresql", error))
        folders.push_back((version.path() / "bin").string());
    const auto found = std::find_if(folders.begin(), folders.end(), [](const std::string& folder) {
        return fs::exists(folder + "/initdb") && fs::exists(folder + "/postgres");
    });
    return found == folders.end() ? "" : *found;
}

} // namespace

PostgresServer* PostgresServer::get() {
    static std::unique_ptr<PostgresServer> server;
    if (server)
        return server.get();
    const std::string programs = programFolder();
    if (!programs.empty())
        server.reset(new PostgresServer(programs));
    else if (std::getenv("LUMORA_REQUIRE_POSTGRES"))
        throw std::runtime_error(notInstalled);
    return server.get();
}

PostgresServer::PostgresServer(const std::string& programs) : PrivateServer("postgresql", "postgres") {
    run({programs + "/initdb", "-D", folder() / "data", "-U", owner, "-E", "UTF8", "--locale=C.UTF-8",
         "--auth-local=trust", "--auth-host=scram-sha-256", "--no-sync"});
    start(
        [&](int port) {
            return Command{programs + "/postgres",
                           "-D",
                           folder() / "data",
                           "-k",
                           socketFolder(),
                           "-p",
                           std::to_string(port),
                           "-c",
                           "listen_addresses=127.0.0.1",
                           "-c",
                           "fsync=off"};
        },
        [this] { return isReady(); });
    makeUserAndDatabase();
}

PostgresServer::~PostgresServer() {
    stop(SIGINT); // ends connections and stops
}

// The server says so in the last line of a file.
bool PostgresServer::isReady() const {
    std::ifstream file(folder() / "data/postmaster.pid");
    std::string word;
    bool ready = false;
    while (file >> word)
        ready = word == "ready";
    return ready;
}

void PostgresServer::makeUserAndDatabase() const {
    const PostgresConnection connection(*this, owner, "postgres");
    QString quoted = QString::fromStdString(password());
    quoted.replace('\'', "''");
    connection.execute(QString("create role %1 login password '%2'").arg(user().c_str(), quoted));
    connection.execute(QString("create database %1 owner %2").arg(database().c_str(), user().c_str()));
}

PostgresConnection::PostgresConnection(const PostgresServer& server, const std::string& user,
                                       const std::string& database) {
    static int count = 0;
    name_ = QString("postgres-test-%1").arg(++count);
    QSqlDatabase handle = QSqlDatabase::addDatabase("QPSQL", name_);
    handle.setHostName(QString::fromStdString(server.socketFolder()));
    handle.setPort(server.port());
    handle.setUserName(QString::fromStdString(user));
    handle.setDatabaseName(QString::fromStdString(database));
    if (!handle.open())
        throw std::runtime_error(handle.lastError().text().toStdString());
}

PostgresConnection::~PostgresConnection() {
    QSqlDatabase::removeDatabase(name_);
}

void PostgresConnection::execute(const QString& sql) const {
    QSqlQuery query(connection());
    if (!query.exec(sql))
        throw std::runtime_error(query.lastError().text().toStdString());
}

} // namespace lumora::tests
