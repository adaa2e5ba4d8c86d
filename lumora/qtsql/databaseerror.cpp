#include "lumora/qtsql/databaseerror.h"

#include <QRegularExpression>
#include <QStringList>

namespace lumora {

namespace {

using namespace Qt::StringLiterals;

bool isHint(const QString& line) {
    return line.startsWith("DETAIL:"_L1) || line.startsWith("HINT:"_L1);
}

// PostgreSQL says "ERROR:  MESSAGE", then in lines of their own "LINE 1: STATEMENT" with a mark below,
// "DETAIL:", "HINT:", "CONTEXT:" and its code in brackets. The message may itself have several lines.
QString postgresReason(const QString& text) {
    QString reason;
    bool wanted = true;
    for (const QString& line : text.split('\n'_L1)) {
        const QString words = line.trimmed();
        if (line.startsWith("LINE "_L1) || line.startsWith("CONTEXT:"_L1) || line.startsWith("QUERY:"_L1))
            wanted = false;
        else if (isHint(line))
            wanted = true;
        if (wanted && !words.isEmpty() && !reason.isEmpty())
            reason += isHint(line) ? "; "_L1 : " "_L1;
        if (wanted)
            reason += words;
    }
    for (const QLatin1StringView level : {"ERROR:  "_L1, "FATAL:  "_L1, "PANIC:  "_L1}) {
        const qsizetype position = reason.indexOf(level); // a connection's failure says first what failed
        if (position == 0 || (position > 0 && reason.startsWith("connection to server"_L1)))
            reason.remove(position, level.size());
    }
    return reason;
}

// The driver adds the code, if there is one, when it is no connection that failed.
QString withoutCode(const QString& text) {
    static const QRegularExpression code(u"\\n\\((\\w{5})?\\)$"_s);
    return QString(text).remove(code);
}

} // namespace

QString reasonOf(const QSqlError& error) {
    QString text = withoutCode(error.databaseText().trimmed());
    if (text.isEmpty())
        text = error.driverText().trimmed();
    if (text.isEmpty())
        return u"the database gives no reason; the connection may be lost"_s;
    return postgresReason(text);
}

} // namespace lumora
