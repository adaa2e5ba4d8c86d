// A line on the terminal that tells how far a query is.
#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <string_view>

namespace lumora::cli {

// Writes to standard error, and only when that is a terminal: from the second second on, a line that is
// overwritten as the query goes on. It is gone before this object is.
class Progress {
public:
    Progress();
    ~Progress() { end(); }
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void countRow() { rows_.fetch_add(1, std::memory_order_relaxed); }
    void update(); // on any thread
    void end();    // wipes the line for good
    // The same when standard output is the same terminal: to be called before something is written there.
    void outputBegins();

private:
    void replace(std::string_view text);

    const std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
    std::atomic<std::int64_t> rows_ = 0;
    std::mutex mutex_;
    bool shows_;
    std::size_t width_ = 0; // of what stands there
};

} // namespace lumora::cli
