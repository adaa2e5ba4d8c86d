// lumora-desk DATABASE [MODEL] [--queries BASE]
#pragma once

#include "apps/lumora-desk/databaseopener.h"

#include <QStringList>

#include <optional>

namespace lumora::desk {

struct CommandLine {
    std::optional<OpenRequest> open; // none: the program starts with the sample
    QString output;                  // to be printed instead of starting: help, the version
    QString error;                   // what is wrong with the arguments
};

CommandLine parseCommandLine(const QStringList& arguments);

} // namespace lumora::desk
