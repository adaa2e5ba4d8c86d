// Stopping a query from another thread.
#pragma once

#include "lumora/qtsql/databaseconnection.h"

#include <atomic>
#include <condition_variable>
#include <functional>
#include <mutex>

namespace lumora {

// Goes with one query: make it, hand it to runQuery, and call cancel() from wherever. SQLite is interrupted,
// servers are told over a second connection; with other engines, and where that fails, the query ends at its
// next row.
class QueryCanceller {
public:
    // On the connection's thread, before the query. The connection must live as long as this. DatabaseError
    // when the connection does not answer.
    explicit QueryCanceller(const DatabaseConnection& connection);
    QueryCanceller(const QueryCanceller&) = delete;
    QueryCanceller& operator=(const QueryCanceller&) = delete;

    // On any thread. Returns when the query has ended, which may take as long as a server does not answer; at
    // once when none runs, and then the one to come does not start.
    void cancel();
    bool isCancelled() const noexcept { return cancelled_; }

    // For runQuery: while one of these lives, the query runs. Null is taken for no canceller.
    class Running {
    public:
        explicit Running(QueryCanceller* canceller);
        ~Running();
        Running(const Running&) = delete;
        Running& operator=(const Running&) = delete;

        void check() const; // DatabaseError, Cancelled, when it was
        // Tells the engine to stop, on the query's own thread, unless cancel() does: nobody wants the rows to
        // come.
        void stopEngine() const noexcept;

    private:
        QueryCanceller* const canceller_;
    };

private:
    void interrupt() const noexcept;

    const std::function<void()> interrupt_;
    std::atomic<bool> cancelled_ = false;
    std::mutex mutex_; // held while the engine is told, so that no later statement is hit
    std::condition_variable ended_;
    bool running_ = false;
};

} // namespace lumora
