// Small questions about the rows of a database, all together within a time.
#pragma once

#include "lumora/qtsql/querycanceller.h"

#include <QList>
#include <QString>
#include <QVariant>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

namespace lumora {

class BoundedQueries {
public:
    // The connection must live as long as this, and asks nothing else meanwhile.
    BoundedQueries(const DatabaseConnection& connection, std::chrono::milliseconds limit);
    ~BoundedQueries();
    BoundedQueries(const BoundedQueries&) = delete;
    BoundedQueries& operator=(const BoundedQueries&) = delete;

    using Rows = std::vector<QList<QVariant>>;
    // Nothing when the database refuses or the time is up.
    std::optional<Rows> ask(const QString& statement);
    bool isTimeUp() const { return canceller_.isCancelled(); }

private:
    const DatabaseConnection& connection_;
    QueryCanceller canceller_;
    std::mutex mutex_;
    std::condition_variable done_;
    bool isDone_ = false;
    std::thread watch_;
};

} // namespace lumora
