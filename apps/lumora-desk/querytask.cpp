#include "apps/lumora-desk/querytask.h"

#include "apps/lumora-desk/statementrunner.h"

#include <QElapsedTimer>
#include <QSemaphore>

#include <chrono>

namespace lumora::desk {

namespace {

constexpr qsizetype rowsOfAChunk = 1000;
constexpr qint64 patienceMs = 100; // rows do not wait longer for a chunk to be full
constexpr int chunksUnderWay = 4;

// Roughly what a row takes in memory.
qint64 sizeOf(const ResultRow& row) {
    qint64 size = static_cast<qint64>(sizeof(ResultRow));
    for (const QVariant& value : row) {
        size += static_cast<qint64>(sizeof(QVariant));
        if (value.typeId() == QMetaType::QString)
            size += 24 + 2 * value.toString().size();
        else if (value.typeId() == QMetaType::QByteArray)
            size += 24 + value.toByteArray().size();
    }
    return size;
}

// Collects rows into chunks on the work's thread.
class Chunks {
public:
    using Give = std::function<void(const ResultRows& rows)>;

    Chunks(BackgroundTask::Control& control, const RowLimits& limits, Give give)
        : control_(control), limits_(limits), give_(std::move(give)) {
        sinceLast_.start();
    }

    // False when the row is one too many.
    bool add(const ResultRow& row) {
        bytes_ += sizeOf(row);
        if (count_ == limits_.rows || bytes_ > limits_.bytes) {
            complete_ = false;
            return false;
        }
        ++count_;
        rows_.append(row);
        return (rows_.size() < rowsOfAChunk && sinceLast_.elapsed() < patienceMs) || flush();
    }

    // False when the work is cancelled.
    bool flush() {
        while (!free_->tryAcquire(1, std::chrono::milliseconds(50)))
            if (control_.isCancelled())
                return false;
        control_.post([give = give_, rows = rows_, free = free_] {
            free->release();
            give(rows);
        });
        rows_.clear();
        sinceLast_.restart();
        return true;
    }

    bool isComplete() const { return complete_; }

private:
    BackgroundTask::Control& control_;
    const RowLimits limits_;
    const Give give_;
    const std::shared_ptr<QSemaphore> free_ = std::make_shared<QSemaphore>(chunksUnderWay);
    ResultRows rows_;
    QElapsedTimer sinceLast_;
    qint64 count_ = 0;
    qint64 bytes_ = 0;
    bool complete_ = true;
};

} // namespace

QueryTask::QueryTask(QObject* parent) : QObject(parent) {
    connect(&task_, &BackgroundTask::finished, this, [this] { emit finished(complete_); });
    connect(&task_, &BackgroundTask::failed, this, &QueryTask::failed);
    connect(&task_, &BackgroundTask::cancelled, this, &QueryTask::cancelled);
}

void QueryTask::start(const Statement& statement, const RowLimits& limits) {
    complete_ = true;
    task_.start([this, statement, limits](BackgroundTask::Control& control) {
        // `this` is only touched by what is posted.
        Chunks chunks(control, limits, [this](const ResultRows& rows) { emit rowsReady(rows); });
        runStatement(statement, control,
                     {[&](const QList<ResultColumn>& columns) {
                          control.post([this, columns] { emit columnsReady(columns); });
                      },
                      [&](const ResultRow& row) { return chunks.add(row); }});
        chunks.flush();
        control.post([this, complete = chunks.isComplete()] { complete_ = complete; });
    });
}

} // namespace lumora::desk
