// The rows of a query, as they go from thread to thread.
#pragma once

#include <QList>
#include <QString>
#include <QVariant>

namespace lumora::desk {

struct ResultColumn {
    QString name;
    bool decimal = false; // its texts are numbers, digit by digit
};

using ResultRow = QList<QVariant>;
using ResultRows = QList<ResultRow>;

// What a table on the screen holds at most; whichever bound is met first.
struct RowLimits {
    qint64 rows = 200'000;
    qint64 bytes = 256 << 20; // roughly
};

} // namespace lumora::desk
