#include "lumora/qtsql/boundedqueries.h"

#include "lumora/qtsql/databaseerror.h"
#include "lumora/qtsql/queryrunner.h"

namespace lumora {

BoundedQueries::BoundedQueries(const DatabaseConnection& connection, std::chrono::milliseconds limit)
    : connection_(connection), canceller_(connection) {
    watch_ = std::thread([this, limit] {
        std::unique_lock lock(mutex_);
        if (!done_.wait_for(lock, limit, [this] { return isDone_; }))
            canceller_.cancel();
    });
}

BoundedQueries::~BoundedQueries() {
    {
        const std::lock_guard lock(mutex_);
        isDone_ = true;
    }
    done_.notify_all();
    watch_.join();
}

std::optional<BoundedQueries::Rows> BoundedQueries::ask(const QString& statement) {
    Rows rows;
    try {
        runQuery(connection_.connection(), statement, {},
                 {[](const QSqlRecord&) {}, [&rows](const QList<QVariant>& row) { rows.push_back(row); }},
                 {.canceller = &canceller_});
    } catch (const DatabaseError&) {
        return std::nullopt;
    }
    return rows;
}

} // namespace lumora
