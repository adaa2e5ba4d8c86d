#include "apps/lumora-desk/databaseopening.h"

#include "apps/lumora-desk/sampledatabase.h"

namespace lumora::desk {

DatabaseOpening::DatabaseOpening(QObject* parent) : QObject(parent) {
    connect(&task_, &BackgroundTask::finished, this, [this] {
        emit opened();
        result_.reset();
    });
    connect(&task_, &BackgroundTask::failed, this, &DatabaseOpening::failed);
    connect(&task_, &BackgroundTask::cancelled, this, &DatabaseOpening::cancelled);
}

void DatabaseOpening::start(const OpenRequest& request) {
    run([request] { return openDatabase(request); });
}

void DatabaseOpening::startSample() {
    run([from = sampleFolder(), to = sampleHome()] { return openDatabase(makeSample(from, to)); });
}

void DatabaseOpening::run(std::function<OpenedDatabase()> open) {
    task_.start([this, open = std::move(open)](BackgroundTask::Control& control) {
        const auto result = std::make_shared<OpenedDatabase>(open());
        control.post([this, result] { result_ = result; }); // `this` is only touched here
    });
}

} // namespace lumora::desk
