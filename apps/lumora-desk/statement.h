// A statement that can run.
#pragma once

#include "lumora/qtsql/databaseparameters.h"

#include <QString>
#include <QStringList>
#include <QVariantMap>

namespace lumora::desk {

struct Statement {
    DatabaseParameters database;
    QString sql;
    QVariantMap values;
    QStringList captions; // of the columns; empty: the database's names
};

} // namespace lumora::desk
