// Running a statement for the screen.
#pragma once

#include "apps/lumora-desk/backgroundtask.h"
#include "apps/lumora-desk/resultrows.h"
#include "apps/lumora-desk/statement.h"

namespace lumora::desk {

// Runs one statement on a connection of its own, which lives on the thread of the work, and hands its rows
// over in chunks; the work waits when the window is behind. Signals come on the task's own thread.
class QueryTask : public QObject {
    Q_OBJECT

public:
    explicit QueryTask(QObject* parent = nullptr);

    void start(const Statement& statement, const RowLimits& limits = {});
    void cancel() { task_.cancel(); }
    bool isRunning() const { return task_.isRunning(); }

signals:
    void columnsReady(const QList<lumora::desk::ResultColumn>& columns);
    void rowsReady(const lumora::desk::ResultRows& rows);
    // `complete`: there were no more rows than fit the limits.
    void finished(bool complete);
    void failed(const QString& message);
    void cancelled();

private:
    BackgroundTask task_;
    bool complete_ = true;
};

} // namespace lumora::desk
