#include "tests/postgres_server.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QUrl>

#include <arpa/inet.h>
#include <grp.h>
#include <pwd.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/socket.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <thread>

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

// Whom the server runs as when we are root, with whom it refuses to run.
const passwd* otherUser() {
    static const passwd* const user = geteuid() == 0 ? getpwnam("postgres") : nullptr;
    return user;
}

// Starts a program as that user. It is sent SIGQUIT when this process dies.
int startProgram(const std::vector<std::string>& command, const std::string& log) {
    std::vector<char*> arguments;
    for (const std::string& word : command)
        arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    const passwd* const user = otherUser();
    const int child = fork();
    if (child != 0)
        return child;
    const int out = open(log.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
    dup2(open("/dev/null", O_RDONLY), STDIN_FILENO);
    dup2(out, STDOUT_FILENO);
    dup2(out, STDERR_FILENO);
    if (user && (initgroups(user->pw_name, user->pw_gid) != 0 || setgid(user->pw_gid) != 0 ||
                 setuid(user->pw_uid) != 0 || chdir("/") != 0))
        _exit(126);
    prctl(PR_SET_PDEATHSIG, SIGQUIT);
    execv(arguments[0], arguments.data());
    _exit(127);
}

int freePort() {
    const int socketHandle = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    const bool done = bind(socketHandle, reinterpret_cast<sockaddr*>(&address), size) == 0 &&
                      getsockname(socketHandle, reinterpret_cast<sockaddr*>(&address), &size) == 0;
    close(socketHandle);
    if (!done)
        throw std::runtime_error("no free port on 127.0.0.1");
    return ntohs(address.sin_port);
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

PostgresServer::PostgresServer(const std::string& programs) {
    makeCluster(programs);
    for (int attempt = 0; !start(programs); ++attempt) // another program may have taken the port meanwhile
        if (attempt == 3)
            throw std::runtime_error("PostgreSQL does not start:\n" + readFile(folder_ / "log"));
    try {
        makeUserAndDatabase();
    } catch (...) {
        stop();
        throw;
    }
}

PostgresServer::~PostgresServer() {
    stop();
}

void PostgresServer::makeCluster(const std::string& programs) const {
    if (const passwd* const user = otherUser())
        if (chown((folder_ / "").c_str(), user->pw_uid, user->pw_gid) != 0)
            throw std::runtime_error("cannot give " + folder_ / "" + " to postgres");
    int status = 0;
    const int child =
        startProgram({programs + "/initdb", "-D", folder_ / "data", "-U", owner, "-E", "UTF8",
                      "--locale=C.UTF-8", "--auth-local=trust", "--auth-host=scram-sha-256", "--no-sync"},
                     folder_ / "log");
    if (child < 0 || waitpid(child, &status, 0) != child || status != 0)
        throw std::runtime_error("initdb failed:\n" + readFile(folder_ / "log"));
}

bool PostgresServer::start(const std::string& programs) {
    port_ = freePort();
    process_ = startProgram({programs + "/postgres", "-D", folder_ / "data", "-k", socketFolder(), "-p",
                             std::to_string(port_), "-c", "listen_addresses=127.0.0.1", "-c", "fsync=off"},
                            folder_ / "log");
    for (int waited = 0; process_ > 0 && waited < 3000; ++waited) {
        if (isReady())
            return true;
        if (waitpid(process_, nullptr, WNOHANG) != 0) {
            process_ = -1;
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    stop();
    return false;
}

// The server says so in the last line of a file.
bool PostgresServer::isReady() const {
    std::ifstream file(folder_ / "data/postmaster.pid");
    std::string word;
    bool ready = false;
    while (file >> word)
        ready = word == "ready";
    return ready;
}

void PostgresServer::stop() {
    if (process_ <= 0)
        return;
    kill(process_, SIGINT); // ends connections and stops
    waitpid(process_, nullptr, 0);
    process_ = -1;
}

void PostgresServer::makeUserAndDatabase() const {
    const PostgresConnection connection(*this, owner, "postgres");
    QString quoted = QString::fromStdString(password());
    quoted.replace('\'', "''");
    connection.execute(QString("create role %1 login password '%2'").arg(user().c_str(), quoted));
    connection.execute(QString("create database %1 owner %2").arg(database().c_str(), user().c_str()));
}

std::string PostgresServer::url() const {
    const QByteArray secret = QUrl::toPercentEncoding(QString::fromStdString(password()));
    return "postgresql://" + user() + ":" + secret.toStdString() + "@" + host() + ":" +
           std::to_string(port()) + "/" + database();
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
