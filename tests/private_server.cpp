#include "tests/private_server.h"

#include <QString>
#include <QUrl>

#include <arpa/inet.h>
#include <grp.h>
#include <pwd.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/socket.h>

#include <chrono>
#include <thread>

namespace lumora::tests {

namespace {

// Whom the server runs as when we are root, with whom it refuses to run.
const passwd* otherUser(const std::string& name) {
    return geteuid() == 0 ? getpwnam(name.c_str()) : nullptr;
}

void become(const passwd& user) {
    if (initgroups(user.pw_name, user.pw_gid) != 0 || setgid(user.pw_gid) != 0 || setuid(user.pw_uid) != 0 ||
        chdir("/") != 0)
        _exit(126);
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

PrivateServer::PrivateServer(std::string scheme, std::string userForRoot)
    : scheme_(std::move(scheme)), userForRoot_(std::move(userForRoot)) {
    if (const passwd* const user = otherUser(userForRoot_))
        if (chown((folder_ / "").c_str(), user->pw_uid, user->pw_gid) != 0)
            throw std::runtime_error("cannot give " + folder_ / "" + " to " + userForRoot_);
}

PrivateServer::~PrivateServer() {
    stop(SIGKILL);
}

std::string PrivateServer::url() const {
    const QByteArray secret = QUrl::toPercentEncoding(QString::fromStdString(password()));
    return scheme_ + "://" + user() + ":" + secret.toStdString() + "@" + host() + ":" +
           std::to_string(port()) + "/" + database();
}

std::string PrivateServer::log() const {
    return readFile(folder_ / "log");
}

// A child that is sent SIGQUIT when this process dies.
int PrivateServer::startProgram(const Command& command) const {
    std::vector<char*> arguments;
    for (const std::string& word : command)
        arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    const passwd* const user = otherUser(userForRoot_);
    const std::string log = folder_ / "log";
    const int child = fork();
    if (child != 0)
        return child;
    const int out = open(log.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
    dup2(open("/dev/null", O_RDONLY), STDIN_FILENO);
    dup2(out, STDOUT_FILENO);
    dup2(out, STDERR_FILENO);
    if (user)
        become(*user);
    prctl(PR_SET_PDEATHSIG, SIGQUIT);
    execv(arguments[0], arguments.data());
    _exit(127);
}

void PrivateServer::run(const Command& command) const {
    int status = 0;
    const int child = startProgram(command);
    if (child < 0 || waitpid(child, &status, 0) != child || status != 0)
        throw std::runtime_error(command[0] + " failed:\n" + log());
}

// Another program may take the port meanwhile.
void PrivateServer::start(const std::function<Command(int port)>& command,
                          const std::function<bool()>& isReady) {
    for (int attempt = 0; attempt < 4; ++attempt) {
        port_ = freePort();
        if (tryToStart(command(port_), isReady))
            return;
    }
    throw std::runtime_error("The server does not start:\n" + log());
}

bool PrivateServer::tryToStart(const Command& command, const std::function<bool()>& isReady) {
    process_ = startProgram(command);
    for (int waited = 0; process_ > 0 && waited < 3000; ++waited) {
        if (isReady())
            return true;
        if (waitpid(process_, nullptr, WNOHANG) != 0) {
            process_ = -1;
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    stop(SIGKILL);
    return false;
}

void PrivateServer::stop(int signal) {
    if (process_ <= 0)
        return;
    kill(process_, signal);
    waitpid(process_, nullptr, 0);
    process_ = -1;
}

} // namespace lumora::tests
