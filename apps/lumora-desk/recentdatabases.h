// The databases that were opened last.
#pragma once

#include "apps/lumora-desk/databaseopener.h"

#include <QList>
#include <QSettings>

namespace lumora::desk {

// Kept in the settings, without passwords; the newest first.
class RecentDatabases {
public:
    static constexpr qsizetype most = 8;

    explicit RecentDatabases(QSettings& settings) : settings_(settings) {}

    QList<OpenRequest> list() const;
    // To the front. A database stands there once, however its path or address was written; with another model
    // it is another entry.
    void add(const OpenRequest& request);
    void remove(const OpenRequest& request);
    void clear() { write({}); }

private:
    void write(const QList<OpenRequest>& requests);

    QSettings& settings_;
};

// The database, and the model's file when it has one.
QString recentLabel(const OpenRequest& request);

// Without what must not be written down: the password, and connect options that look like one.
DatabaseParameters withoutPassword(const DatabaseParameters& database);

} // namespace lumora::desk
