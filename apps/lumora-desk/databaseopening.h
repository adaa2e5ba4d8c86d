// Opening a database without the window waiting.
#pragma once

#include "apps/lumora-desk/backgroundtask.h"
#include "apps/lumora-desk/databaseopener.h"

#include <functional>
#include <memory>

namespace lumora::desk {

class DatabaseOpening : public QObject {
    Q_OBJECT

public:
    explicit DatabaseOpening(QObject* parent = nullptr);

    // Gives up what is under way.
    void start(const OpenRequest& request);
    // The same with the sample, which is made first.
    void startSample();
    void cancel() { task_.cancel(); }
    bool isRunning() const { return task_.isRunning(); }
    // The database that was opened last; to be taken in the slot of opened().
    OpenedDatabase take() { return std::move(*result_); }

signals:
    void opened();
    void failed(const QString& message);
    void cancelled();

private:
    void run(std::function<OpenedDatabase()> open);

    BackgroundTask task_;
    std::shared_ptr<OpenedDatabase> result_;
};

} // namespace lumora::desk
