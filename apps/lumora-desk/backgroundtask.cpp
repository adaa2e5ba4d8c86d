#include "apps/lumora-desk/backgroundtask.h"

#include <QThreadPool>

#include <algorithm>
#include <exception>

namespace lumora::desk {

namespace {

// Work that was given up may wait long for a server that does not answer; it must not keep other work
// waiting.
QThreadPool& pool() {
    QThreadPool& threads = *QThreadPool::globalInstance();
    threads.setMaxThreadCount(std::max(threads.maxThreadCount(), 32));
    return threads;
}

} // namespace

void BackgroundTask::Control::post(std::function<void()> action) {
    const std::lock_guard lock(taskMutex_);
    if (task_)
        QMetaObject::invokeMethod(
            task_,
            [self = shared_from_this(), act = std::move(action)] {
                if (!self->isCancelled())
                    act();
            },
            Qt::QueuedConnection);
}

void BackgroundTask::Control::setInterruption(std::function<void()> interruption) {
    const std::lock_guard lock(interruptionMutex_);
    interruption_ = std::move(interruption);
}

void BackgroundTask::Control::cancel() {
    cancelled_ = true;
    {
        const std::lock_guard lock(taskMutex_);
        task_ = nullptr;
    }
    pool().start([self = shared_from_this()] { self->interrupt(); });
}

void BackgroundTask::Control::interrupt() {
    const std::lock_guard lock(interruptionMutex_);
    if (interruption_)
        interruption_();
}

void BackgroundTask::start(Work work) {
    abandon();
    control_ = std::make_shared<Control>(*this);
    pool().start([this, control = control_, run = std::move(work)] {
        // `this` is only touched by what is posted, which a task that has gone does not get.
        try {
            run(*control);
            control->post([this] {
                control_.reset();
                emit finished();
            });
        } catch (const std::exception& error) {
            control->post([this, message = QString::fromUtf8(error.what())] {
                control_.reset();
                emit failed(message);
            });
        }
    });
}

void BackgroundTask::cancel() {
    if (!isRunning())
        return;
    abandon();
    emit cancelled();
}

void BackgroundTask::abandon() {
    if (control_)
        control_->cancel();
    control_.reset();
}

} // namespace lumora::desk
