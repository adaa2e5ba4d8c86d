// Ctrl-C: SIGINT, and SIGTERM, which asks for the same.
#pragma once

#include "lumora/platform/errors.h"

#include <atomic>
#include <csignal>
#include <functional>
#include <thread>

namespace lumora::cli {

// What the command ends with when the user stopped it; the exit status is 130.
class Interrupted : public Exception {
public:
    Interrupted() : Exception(message) {}

    static constexpr const char* message = "Cancelled";
    static constexpr int exitStatus = 130;
};

// While it lives, Ctrl-C ends the process at once with a message and Interrupted's status, and not by the
// signal. Signals that are ignored stay so. One at a time.
class QuickInterruption {
public:
    QuickInterruption();
    ~QuickInterruption();
    QuickInterruption(const QuickInterruption&) = delete;
    QuickInterruption& operator=(const QuickInterruption&) = delete;

private:
    struct sigaction before_[2];
};

// While it lives, the first Ctrl-C calls `onInterrupt`, and `onTick` is called a few times a second until
// then; both on a thread of their own. Signals do not reach the thread that makes it, nor those that it
// starts. A second Ctrl-C does what the handlers of signals say: there has to be a QuickInterruption.
class InterruptionWatch {
public:
    InterruptionWatch(std::function<void()> onInterrupt, std::function<void()> onTick);
    ~InterruptionWatch(); // waits for the calls to return
    InterruptionWatch(const InterruptionWatch&) = delete;
    InterruptionWatch& operator=(const InterruptionWatch&) = delete;

    bool isInterrupted() const { return interrupted_; }

private:
    void watch(const std::function<void()>& onInterrupt, const std::function<void()>& onTick);

    sigset_t signals_;
    sigset_t maskBefore_;
    std::atomic<bool> interrupted_ = false;
    std::atomic<bool> ended_ = false;
    std::thread thread_;
};

} // namespace lumora::cli
