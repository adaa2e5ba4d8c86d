// A MariaDB server of the test's own.
#pragma once

#include "tests/private_server.h"

namespace lumora::tests {

// The user may do anything in the databases "shop" and "Sales".
class MariaDbServer : public PrivateServer {
public:
    // The one server of this process, started by the first call; none when MariaDB or Qt's driver for it is
    // not installed, unless the environment variable LUMORA_REQUIRE_MARIADB is set. std::runtime_error when
    // it cannot be started. Needs a QCoreApplication.
    static MariaDbServer* get();
    static constexpr const char* notInstalled = "MariaDB, or Qt's driver for it, is not installed";

private:
    explicit MariaDbServer(const std::string& program);
    std::string firstStatements() const;
};

} // namespace lumora::tests
