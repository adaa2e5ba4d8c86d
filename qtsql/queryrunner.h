// Running one reading statement on a Qt SQL connection.
#pragma once

#include <QList>
#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVariantMap>

#include <functional>
#include <string_view>

namespace lumora {

// DatabaseError when the text is not one statement that only reads, to all appearances.
void checkStatement(std::string_view sql);

// What takes the rows of a query, one after the other; none is kept.
struct RowReceiver {
    std::function<void(const QStringList& names)> columns; // called once, before the first row
    std::function<void(const QList<QVariant>& values)> row;
};

// Runs one statement and hands its columns and rows to the receiver. Each ":name" of the statement that has a
// value in `parameters` (names without regard to case) becomes that value, bound, never pasted. Stops after
// `limit` rows unless that is negative. Returns the number of rows. DatabaseError for a text that is not one
// reading statement, for a placeholder without a value, and for whatever the engine refuses; rows may have
// been received by then.
qint64 runQuery(const QSqlDatabase& database, const QString& statement, const QVariantMap& parameters,
                const RowReceiver& receiver, qint64 limit = -1);

} // namespace lumora
