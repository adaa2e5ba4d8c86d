// A statement as it is sent: values apart from the text, and in the form in which no driver loses anything.
#pragma once

#include <QList>
#include <QSqlQuery>
#include <QString>
#include <QVariant>

namespace lumora {

// A statement with "?" for its values, which every driver takes.
struct PositionalStatement {
    QString text;
    QList<QVariant> values;
};

// Executes the statement, of which at most `limit` rows are wanted (negative: all). With `timesAsText`, dates
// and times that Qt's types would cut or lose come as the engine writes them: PostgreSQL's and MariaDB's
// microseconds, zones, infinity, times of more than a day. DatabaseError when the engine refuses.
void executePositional(QSqlQuery& query, const QSqlDatabase& database, PositionalStatement statement,
                       qint64 limit, bool timesAsText);

} // namespace lumora
