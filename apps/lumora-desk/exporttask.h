// Writing rows to a CSV file without the window waiting.
#pragma once

#include "apps/lumora-desk/backgroundtask.h"
#include "apps/lumora-desk/resultrows.h"
#include "apps/lumora-desk/statement.h"

namespace lumora::desk {

class ExportTask : public QObject {
    Q_OBJECT

public:
    explicit ExportTask(QObject* parent = nullptr);

    // Rows that are there already.
    void start(const QString& fileName, const QList<ResultColumn>& columns, const ResultRows& rows);
    // All rows of a statement, which go to the file as they come.
    void start(const QString& fileName, const Statement& statement);
    void cancel() { task_.cancel(); }
    bool isRunning() const { return task_.isRunning(); }

signals:
    void progressed(qint64 rows); // a few times a second
    void finished(qint64 rows);
    void failed(const QString& message); // the file is as it was
    void cancelled();                    // the same

private:
    BackgroundTask task_;
    qint64 count_ = 0;
};

} // namespace lumora::desk
