// Failures of databases and of statements that run on them.
#pragma once

#include "platform/errors.h"

#include <QString>

namespace lumora {

class DatabaseError : public Exception {
public:
    explicit DatabaseError(const QString& message) : Exception(message.toStdString()) {}
};

} // namespace lumora
