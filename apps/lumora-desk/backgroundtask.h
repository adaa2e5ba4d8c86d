// Work that the window does not wait for.
#pragma once

#include <QObject>
#include <QString>

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>

namespace lumora::desk {

// Runs one piece of work at a time on a thread of the global pool, and tells how it ended. A task that is
// cancelled, or goes away, is done with at once: what its work still says is not heard, and the thread ends
// in its own time.
class BackgroundTask : public QObject {
    Q_OBJECT

public:
    // What the work is given. All of it may be called on any thread.
    class Control : public std::enable_shared_from_this<Control> {
    public:
        explicit Control(BackgroundTask& task) : task_(&task) {}

        bool isCancelled() const { return cancelled_; }
        // Runs the action on the task's thread, after those posted before; not at all once it is cancelled.
        void post(std::function<void()> action);
        // What stops the engine while the work waits for it; it may block, and is called on a thread of its
        // own. Empty: no longer. Not to be called by the action itself.
        void setInterruption(std::function<void()> interruption);

    private:
        friend class BackgroundTask;

        void cancel();
        void interrupt();

        std::atomic<bool> cancelled_ = false;
        std::mutex taskMutex_;
        BackgroundTask* task_; // none when nobody listens any more
        std::mutex interruptionMutex_;
        std::function<void()> interruption_;
    };

    // Owns what it needs; what it raises becomes failed().
    using Work = std::function<void(Control& control)>;

    using QObject::QObject;
    ~BackgroundTask() override { abandon(); }

    // Cancels, without a word, what runs.
    void start(Work work);
    void cancel();
    bool isRunning() const { return control_ != nullptr; }

signals:
    // One of these for each start that is not followed by another.
    void finished();
    void failed(const QString& message);
    void cancelled();

private:
    void abandon();

    std::shared_ptr<Control> control_;
};

} // namespace lumora::desk
