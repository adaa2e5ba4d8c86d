#include "lumora/qtsql/querycanceller.h"

#include "lumora/qtsql/databaseerror.h"

#include <QSqlDriver>
#include <QSqlQuery>
#include <QVariant>

#include <sqlite3.h>

#include <algorithm>
#include <chrono>
#include <exception>

namespace lumora {

namespace {

using namespace Qt::StringLiterals;

QVariant valueOf(const QSqlDatabase& database, const QString& statement) {
    QSqlQuery query(database);
    if (!query.exec(statement) || !query.next())
        throw DatabaseError(query);
    return query.value(0);
}

// Qt may have been built with a copy of SQLite of its own, which must not get our calls.
std::function<void()> sqliteInterrupter(const QSqlDatabase& database) {
    const QVariant handle = database.driver()->handle();
    if (qstrcmp(handle.typeName(), "sqlite3*") != 0 ||
        valueOf(database, u"select sqlite_source_id()"_s).toString() != QLatin1StringView(sqlite3_sourceid()))
        return {};
    return [sqlite = *static_cast<sqlite3* const*>(handle.constData())] { sqlite3_interrupt(sqlite); };
}

// Tells a server over a connection that lives no longer than that takes.
std::function<void()> serverInterrupter(const DatabaseConnection& connection, const QString& ownNumber,
                                        const QString& statement) {
    const QString number = valueOf(connection.connection(), ownNumber).toString();
    return [parameters = connection.parameters(), text = statement.arg(number)] {
        const DatabaseConnection second(parameters);
        QSqlQuery(second.connection()).exec(text);
    };
}

std::function<void()> makeInterrupter(const DatabaseConnection& connection) {
    switch (connection.engine()) {
    case Engine::Sqlite:
        return sqliteInterrupter(connection.connection());
    case Engine::PostgreSql:
        return serverInterrupter(connection, u"select pg_backend_pid()"_s, u"select pg_cancel_backend(%1)"_s);
    case Engine::MySql:
        return serverInterrupter(connection, u"select connection_id()"_s, u"kill query %1"_s);
    case Engine::Other:
        break;
    }
    return {};
}

} // namespace

QueryCanceller::QueryCanceller(const DatabaseConnection& connection)
    : interrupt_(makeInterrupter(connection)) {}

// What cannot be told now is told again.
void QueryCanceller::interrupt() const noexcept {
    try {
        if (interrupt_)
            interrupt_();
    } catch (const std::exception&) {
    }
}

// Once would not do: the statement may be about to start.
void QueryCanceller::cancel() {
    using namespace std::chrono_literals;
    cancelled_ = true;
    std::unique_lock lock(mutex_);
    for (std::chrono::milliseconds pause = 50ms; running_;
         pause = std::min<std::chrono::milliseconds>(pause * 2, 2s)) {
        interrupt();
        ended_.wait_for(lock, pause, [this] { return !running_; });
    }
}

QueryCanceller::Running::Running(QueryCanceller* canceller) : canceller_(canceller) {
    if (!canceller_)
        return;
    const std::lock_guard lock(canceller_->mutex_);
    canceller_->running_ = true;
}

QueryCanceller::Running::~Running() {
    if (!canceller_)
        return;
    const std::lock_guard lock(canceller_->mutex_);
    canceller_->running_ = false;
    canceller_->ended_.notify_all();
}

void QueryCanceller::Running::check() const {
    if (canceller_ && canceller_->isCancelled())
        throw DatabaseError(DatabaseError::Kind::Cancelled, u"The query was cancelled"_s);
}

void QueryCanceller::Running::stopEngine() const noexcept {
    if (canceller_ && !canceller_->isCancelled())
        canceller_->interrupt();
}

} // namespace lumora
