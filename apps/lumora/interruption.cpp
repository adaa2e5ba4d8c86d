#include "apps/lumora/interruption.h"

#include <unistd.h>

#include <ctime>
#include <iterator>
#include <string_view>
#include <utility>

namespace lumora::cli {

namespace {

constexpr int interruptions[] = {SIGINT, SIGTERM};
constexpr int wakeUp = SIGUSR1; // ends the watch
constexpr timespec tick = {0, 250'000'000};

bool isIgnored(int signal) {
    struct sigaction action = {};
    sigaction(signal, nullptr, &action);
    return action.sa_handler == SIG_IGN;
}

// On this thread; the signal that wakes it up stays blocked.
void letHandlersRun() {
    sigset_t signalSet;
    sigemptyset(&signalSet);
    for (const int signal : interruptions)
        sigaddset(&signalSet, signal);
    pthread_sigmask(SIG_UNBLOCK, &signalSet, nullptr);
}

// Nothing but what a handler may do.
extern "C" void endAtOnce(int) {
    constexpr std::string_view text = "lumora: Cancelled\n";
    static_cast<void>(!write(STDERR_FILENO, text.data(), text.size()));
    _exit(Interrupted::exitStatus);
}

} // namespace

QuickInterruption::QuickInterruption() {
    struct sigaction action = {};
    action.sa_handler = endAtOnce;
    for (std::size_t i = 0; i < std::size(interruptions); ++i) {
        sigaction(interruptions[i], nullptr, &before_[i]);
        if (before_[i].sa_handler != SIG_IGN)
            sigaction(interruptions[i], &action, nullptr);
    }
}

QuickInterruption::~QuickInterruption() {
    for (std::size_t i = 0; i < std::size(interruptions); ++i)
        sigaction(interruptions[i], &before_[i], nullptr);
}

// A signal that is blocked waits for us even when it is ignored, so those are left out.
InterruptionWatch::InterruptionWatch(std::function<void()> onInterrupt, std::function<void()> onTick) {
    sigemptyset(&signals_);
    sigaddset(&signals_, wakeUp);
    for (const int signal : interruptions)
        if (!isIgnored(signal))
            sigaddset(&signals_, signal);
    pthread_sigmask(SIG_BLOCK, &signals_, &maskBefore_);
    thread_ = std::thread([this, interrupt = std::move(onInterrupt), advance = std::move(onTick)] {
        watch(interrupt, advance);
    });
}

InterruptionWatch::~InterruptionWatch() {
    ended_ = true;
    pthread_kill(thread_.native_handle(), wakeUp);
    thread_.join();
    pthread_sigmask(SIG_SETMASK, &maskBefore_, nullptr);
}

void InterruptionWatch::watch(const std::function<void()>& onInterrupt, const std::function<void()>& onTick) {
    while (!ended_) {
        const int signal = sigtimedwait(&signals_, nullptr, &tick);
        if (signal == SIGINT || signal == SIGTERM) {
            interrupted_ = true;
            letHandlersRun(); // this call may wait for the server
            onInterrupt();
            return;
        }
        if (signal == -1)
            onTick();
    }
}

} // namespace lumora::cli
