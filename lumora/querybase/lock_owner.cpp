#include "lumora/querybase/lock_owner.h"

#include <cstdlib>
#include <ctime>

#if __has_include(<unistd.h>)
#include <unistd.h>
#endif

namespace lumora {

namespace {

// The first of the variables that is set.
std::string FromEnvironment(std::initializer_list<const char*> names) {
    for (const char* const name : names)
        if (const char* const value = std::getenv(name); value && *value)
            return value;
    return {};
}

std::string UserName() {
    return FromEnvironment({"USER", "LOGNAME", "USERNAME"});
}

std::string HostName() {
#if __has_include(<unistd.h>)
    char name[256] = {};
    if (gethostname(name, sizeof name - 1) == 0)
        return name;
#endif
    return FromEnvironment({"HOSTNAME", "COMPUTERNAME"});
}

std::string ProcessNumber() {
#if __has_include(<unistd.h>)
    return std::to_string(getpid());
#else
    return {};
#endif
}

std::string PresentTime() {
    const std::time_t now = std::time(nullptr);
    char text[32] = {};
    const std::tm* const parts = std::gmtime(&now);
    return parts && std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S UTC", parts) > 0 ? text : "";
}

} // namespace

std::string ThisLockOwner() {
    std::string owner = UserName();
    if (owner.empty())
        owner = "someone";
    if (const std::string host = HostName(); !host.empty())
        owner += " on " + host;
    if (const std::string process = ProcessNumber(); !process.empty())
        owner += ", process " + process;
    if (const std::string since = PresentTime(); !since.empty())
        owner += ", since " + since;
    return owner;
}

} // namespace lumora
