#include "apps/lumora-desk/exporttask.h"

#include "apps/lumora-desk/csvfile.h"
#include "apps/lumora-desk/statementrunner.h"

#include <QElapsedTimer>

namespace lumora::desk {

namespace {

// Counts rows on the work's thread and tells of them now and then.
class RowCounter {
public:
    RowCounter(BackgroundTask::Control& control, std::function<void(qint64)> tell)
        : control_(control), tell_(std::move(tell)) {
        sinceLast_.start();
    }

    // False when the work is cancelled.
    bool add() {
        if (++count_ % 256 == 0 && sinceLast_.elapsed() > 200)
            post();
        return !control_.isCancelled();
    }
    void post() {
        control_.post([tell = tell_, count = count_] { tell(count); });
        sinceLast_.restart();
    }

private:
    BackgroundTask::Control& control_;
    const std::function<void(qint64)> tell_;
    QElapsedTimer sinceLast_;
    qint64 count_ = 0;
};

} // namespace

ExportTask::ExportTask(QObject* parent) : QObject(parent) {
    connect(&task_, &BackgroundTask::finished, this, [this] { emit finished(count_); });
    connect(&task_, &BackgroundTask::failed, this, &ExportTask::failed);
    connect(&task_, &BackgroundTask::cancelled, this, &ExportTask::cancelled);
}

void ExportTask::start(const QString& fileName, const QList<ResultColumn>& columns, const ResultRows& rows) {
    task_.start([this, fileName, columns, rows](BackgroundTask::Control& control) {
        // `this` is only touched by what is posted.
        RowCounter counter(control, [this](qint64 count) { emit progressed(count_ = count); });
        CsvFile file(fileName);
        file.header(columns);
        for (const ResultRow& row : rows) {
            file.row(row);
            if (!counter.add())
                return;
        }
        file.finish();
        counter.post();
    });
}

void ExportTask::start(const QString& fileName, const Statement& statement) {
    task_.start([this, fileName, statement](BackgroundTask::Control& control) {
        RowCounter counter(control, [this](qint64 count) { emit progressed(count_ = count); });
        CsvFile file(fileName);
        runStatement(statement, control,
                     {[&](const QList<ResultColumn>& columns) { file.header(columns); },
                      [&](const ResultRow& row) {
                          file.row(row);
                          return counter.add();
                      }});
        if (control.isCancelled())
            return;
        file.finish();
        counter.post();
    });
}

} // namespace lumora::desk
