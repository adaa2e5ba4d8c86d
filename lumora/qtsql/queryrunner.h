// Running one reading statement on a Qt SQL connection.
#pragma once

#include <QList>
#include <QSqlDatabase>
#include <QSqlRecord>
#include <QString>
#include <QVariant>
#include <QVariantMap>

#include <functional>
#include <string_view>

namespace lumora {

// DatabaseError when the text is not one statement that only reads, to all appearances.
void checkStatement(std::string_view sql);

// What takes the rows of a query, one after the other; none is kept.
struct RowReceiver {
    std::function<void(const QSqlRecord& columns)> columns; // called once, before the first row
    std::function<void(const QList<QVariant>& values)> row;
};

class QueryCanceller;

// A parameter whose type the engine is told: it stands as "cast(? as TYPE)".
struct TypedText {
    QString text;
    QString type;
};

struct RunSettings {
    qint64 limit = -1; // stop after so many rows, unless it is negative
    // Dates and times that Qt's types would cut (microseconds, zones, infinity) come as the engine writes
    // them.
    bool timesAsText = false;
    QueryCanceller* canceller = nullptr;
};

// Runs one statement and hands its columns and rows to the receiver as they come. Each ":name" of the
// statement that has a value in `parameters` (names without regard to case) becomes that value, bound, never
// pasted. Decimal numbers come as text, in columns of the type double, so that no digit is lost. Returns the
// number of rows. DatabaseError: Cancelled when the canceller was used, Invalid for a text that is not one
// reading statement and for a placeholder without a value, and whatever the engine refuses. Rows may have
// been received by then. When the receiver raises, the query ends; on a server without the rows to come only
// when there is a canceller.
qint64 runQuery(const QSqlDatabase& database, const QString& statement, const QVariantMap& parameters,
                const RowReceiver& receiver, const RunSettings& settings = {});

} // namespace lumora

Q_DECLARE_METATYPE(lumora::TypedText)
