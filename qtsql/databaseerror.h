// Failures of databases and of statements that run on them.
#pragma once

#include "platform/errors.h"

#include <QSqlError>
#include <QString>

namespace lumora {

class DatabaseError : public Exception {
public:
    explicit DatabaseError(const QString& message) : Exception(message.toStdString()) {}
};

// The engine's own words where it has any.
inline QString reasonOf(const QSqlError& error) {
    const QString text = error.databaseText().trimmed();
    return text.isEmpty() ? error.driverText().trimmed() : text;
}

} // namespace lumora
