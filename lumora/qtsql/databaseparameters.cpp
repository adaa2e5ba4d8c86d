#include "lumora/qtsql/databaseparameters.h"

#include "lumora/qtsql/databaseerror.h"

#include <QRegularExpression>
#include <QStringList>
#include <QUrl>
#include <QUrlQuery>

#include <algorithm>

namespace lumora {

namespace {

struct Scheme {
    QLatin1StringView name;
    QLatin1StringView driver;
};

using namespace Qt::StringLiterals;

const Scheme schemes[] = {{"postgresql"_L1, "QPSQL"_L1},
                          {"postgres"_L1, "QPSQL"_L1},
                          {"mysql"_L1, "QMYSQL"_L1},
                          {"mariadb"_L1, "QMYSQL"_L1}};
constexpr auto odbcPrefix = "odbc:"_L1;
constexpr auto filePrefix = "file:"_L1;
constexpr auto immutableEnd = "?immutable=1"_L1;

// The one form of SQLite's own addresses that says more than a path does.
bool isImmutableFile(const QString& text) {
    return text.startsWith(filePrefix) && text.endsWith(immutableEnd);
}

// The text before "://"; empty when that is no name of a scheme.
QString schemeOf(const QString& text) {
    const QString scheme = text.left(std::max<qsizetype>(text.indexOf("://"_L1), 0));
    const bool isName = std::all_of(scheme.begin(), scheme.end(),
                                    [](QChar c) { return c.isLetterOrNumber() || u"+-."_s.contains(c); });
    return isName ? scheme.toLower() : QString();
}

// The driver would split a value that it is not shielded from.
QString connectOption(const QString& name, const QString& value) {
    QString quoted = value;
    return name + "='"_L1 + quoted.replace('\\'_L1, "\\\\"_L1).replace('\''_L1, "\\'"_L1) + '\''_L1;
}

void readQuery(const QUrl& url, DatabaseParameters& parameters) {
    QStringList options;
    for (const auto& [name, value] : QUrlQuery(url).queryItems(QUrl::FullyDecoded)) {
        if (name == "host"_L1)
            parameters.hostName = value;
        else if (name == "port"_L1)
            parameters.port = value.toInt();
        else if (parameters.driver == "QPSQL"_L1)
            options.append(connectOption(name, value));
        else
            options.append(name + '='_L1 + value);
    }
    parameters.connectOptions = options.join(';'_L1);
}

DatabaseParameters parseUrl(const QString& text, const QString& driver) {
    const QUrl url(text, QUrl::StrictMode);
    if (!url.isValid()) // the text may hold a password
        throw DatabaseError(
            DatabaseError::Kind::Invalid,
            u"The address of the database cannot be read: %1"_s.arg(url.errorString().section(';'_L1, 0, 0)));
    DatabaseParameters parameters;
    parameters.driver = driver;
    parameters.hostName = url.host(QUrl::FullyDecoded);
    parameters.port = url.port();
    parameters.userName = url.userName(QUrl::FullyDecoded);
    parameters.password = url.password(QUrl::FullyDecoded);
    parameters.databaseName = url.path(QUrl::FullyDecoded).mid(1);
    readQuery(url, parameters);
    return parameters;
}

} // namespace

namespace {

QString withoutPassword(const QString& connectionString) {
    static const QRegularExpression password(
        u"(^|;)\\s*(pwd|password)\\s*=\\s*(\\{([^}]|\\}\\})*\\}|[^;]*)"_s,
        QRegularExpression::CaseInsensitiveOption);
    return QString(connectionString).remove(password);
}

} // namespace

QString DatabaseParameters::label() const {
    if (driver == "QSQLITE"_L1)
        return databaseName;
    if (driver == "QODBC"_L1)
        return withoutPassword(databaseName);
    QString text = databaseName;
    if (!hostName.isEmpty())
        text += " on "_L1 + hostName;
    if (port >= 0)
        text += ':'_L1 + QString::number(port);
    return text;
}

bool isDatabaseUrl(const std::string& text) {
    const QString url = QString::fromStdString(text);
    return !schemeOf(url).isEmpty() || url.startsWith(odbcPrefix) || isImmutableFile(url);
}

DatabaseParameters parseDatabase(const std::string& pathOrUrl) {
    const QString text = QString::fromStdString(pathOrUrl);
    DatabaseParameters parameters;
    if (text.startsWith(odbcPrefix)) {
        parameters.driver = u"QODBC"_s;
        parameters.databaseName = text.mid(odbcPrefix.size());
        return parameters;
    }
    if (isImmutableFile(text)) {
        parameters.driver = u"QSQLITE"_s;
        parameters.databaseName = text.mid(filePrefix.size()).chopped(immutableEnd.size());
        parameters.immutable = true;
        return parameters;
    }
    const QString scheme = schemeOf(text);
    if (scheme.isEmpty()) {
        parameters.driver = u"QSQLITE"_s;
        parameters.databaseName = text;
        return parameters;
    }
    for (const Scheme& known : schemes)
        if (scheme == known.name)
            return parseUrl(text, QString(known.driver));
    throw DatabaseError(
        DatabaseError::Kind::Invalid,
        u"There is no kind of database \"%1\", only postgresql, mysql and odbc"_s.arg(scheme));
}

} // namespace lumora
