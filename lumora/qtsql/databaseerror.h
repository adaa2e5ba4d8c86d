// Failures of databases and of statements that run on them.
#pragma once

#include "lumora/platform/errors.h"

#include <QSqlError>
#include <QString>

namespace lumora {

class DatabaseError : public Exception {
public:
    explicit DatabaseError(const QString& message) : Exception(message.toStdString()) {}
};

// The engine's own words where it has any, in one line, without its pointers into the statement; never empty.
QString reasonOf(const QSqlError& error);

} // namespace lumora
