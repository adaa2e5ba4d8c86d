// The database engines that tests run on.
#pragma once

#include "lumora/qtsql/engine.h"
#include "tests/mariadb_server.h"
#include "tests/postgres_server.h"

#include <gtest/gtest.h>

#include <string>

namespace lumora::tests {

// The server of an engine; none for SQLite, and when the engine is not installed. Needs a QCoreApplication.
inline const PrivateServer* serverOf(Engine engine) {
    if (engine == Engine::PostgreSql)
        return PostgresServer::get();
    return engine == Engine::MySql ? MariaDbServer::get() : nullptr;
}

// For SetUp of a test that needs the engine.
#define LUMORA_NEED_ENGINE(engine)                                                                           \
    if ((engine) != Engine::Sqlite && !serverOf(engine))                                                     \
    GTEST_SKIP() << ((engine) == Engine::MySql ? MariaDbServer::notInstalled : PostgresServer::notInstalled)

inline std::string nameOf(Engine engine) {
    return engine == Engine::Sqlite ? "Sqlite" : engine == Engine::MySql ? "MariaDb" : "PostgreSql";
}

} // namespace lumora::tests
