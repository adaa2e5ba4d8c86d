#include "apps/lumora-desk/recentdatabases.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace lumora::desk {

using namespace Qt::StringLiterals;

namespace {

// Where it is, wherever the program is started next, and however it was written.
QString settledPath(const QString& path) {
    if (path.startsWith(u':') || path.startsWith("file:"_L1))
        return path; // no path
    const QFileInfo file(path);
    const QString canonical = file.canonicalFilePath(); // of what is there
    return canonical.isEmpty() ? QDir::cleanPath(file.absoluteFilePath()) : canonical;
}

int usualPort(const QString& driver) {
    return driver == "QPSQL"_L1 ? 5432 : driver == "QMYSQL"_L1 || driver == "QMARIADB"_L1 ? 3306 : -1;
}

OpenRequest settled(OpenRequest request) {
    if (request.database.driver == "QSQLITE"_L1)
        request.database.databaseName = settledPath(request.database.databaseName);
    if (!request.modelFile.isEmpty())
        request.modelFile = settledPath(request.modelFile);
    if (request.queries.kind == QueryPlace::Kind::Folder && !request.queries.name.isEmpty())
        request.queries.name = settledPath(request.queries.name);
    return request;
}

bool isSame(const OpenRequest& a, const OpenRequest& b) {
    const OpenRequest first = settled(a);
    const OpenRequest second = settled(b);
    const DatabaseParameters one = withoutPassword(first.database);
    const DatabaseParameters other = withoutPassword(second.database);
    const auto port = [](const DatabaseParameters& database) {
        return database.port < 0 ? usualPort(database.driver) : database.port;
    };
    return one.driver == other.driver && one.databaseName == other.databaseName &&
           one.hostName.compare(other.hostName, Qt::CaseInsensitive) == 0 && port(one) == port(other) &&
           one.userName == other.userName && one.connectOptions == other.connectOptions &&
           first.modelFile == second.modelFile;
}

OpenRequest readRequest(const QSettings& settings) {
    OpenRequest request;
    request.database.driver = settings.value("driver").toString();
    request.database.databaseName = settings.value("database").toString();
    request.database.hostName = settings.value("host").toString();
    request.database.port = settings.value("port", -1).toInt();
    request.database.userName = settings.value("user").toString();
    request.database.connectOptions = settings.value("options").toString();
    request.modelFile = settings.value("model").toString();
    request.queries.kind =
        settings.value("queriesInTable").toBool() ? QueryPlace::Kind::Table : QueryPlace::Kind::Folder;
    request.queries.name = settings.value("queries").toString();
    return request;
}

void writeRequest(QSettings& settings, const OpenRequest& request) {
    const DatabaseParameters database = withoutPassword(request.database);
    settings.setValue("driver", database.driver);
    settings.setValue("database", database.databaseName);
    settings.setValue("host", database.hostName);
    settings.setValue("port", database.port);
    settings.setValue("user", database.userName);
    settings.setValue("options", database.connectOptions);
    settings.setValue("model", request.modelFile);
    settings.setValue("queriesInTable", request.queries.kind == QueryPlace::Kind::Table);
    settings.setValue("queries", request.queries.name);
}

// Between the ";" that stand outside quotes; a backslash takes the next character's meaning.
QStringList splitOptions(const QString& options) {
    QStringList parts(QString{});
    bool quoted = false;
    for (qsizetype i = 0; i < options.size(); ++i) {
        const QChar c = options[i];
        if (c == u';' && !quoted) {
            parts.append(QString());
            continue;
        }
        parts.last() += c;
        if (c == u'\\' && i + 1 < options.size())
            parts.last() += options[++i];
        else if (c == u'\'')
            quoted = !quoted;
    }
    parts.removeAll(QString());
    return parts;
}

} // namespace

DatabaseParameters withoutPassword(const DatabaseParameters& database) {
    DatabaseParameters safe = database;
    safe.password.clear();
    QStringList options = splitOptions(safe.connectOptions);
    options.removeIf([](const QString& option) {
        const QString name = option.section(u'=', 0, 0).trimmed();
        return name.contains("password"_L1, Qt::CaseInsensitive) ||
               name.compare("pwd"_L1, Qt::CaseInsensitive) == 0;
    });
    safe.connectOptions = options.join(u';');
    // An ODBC connection string stands where the database's name does.
    if (safe.databaseName.contains("pwd="_L1, Qt::CaseInsensitive) ||
        safe.databaseName.contains("password="_L1, Qt::CaseInsensitive)) {
        QStringList parts = safe.databaseName.split(u';');
        parts.removeIf([](const QString& part) {
            const QString name = part.section(u'=', 0, 0).trimmed().toLower();
            return part.contains(u'=') && (name == "pwd"_L1 || name == "password"_L1);
        });
        safe.databaseName = parts.join(u';');
    }
    return safe;
}

QString recentLabel(const OpenRequest& request) {
    const QString label = request.database.label();
    return request.modelFile.isEmpty()
               ? label
               : QStringLiteral("%1 (%2)").arg(label, QFileInfo(request.modelFile).fileName());
}

QList<OpenRequest> RecentDatabases::list() const {
    QList<OpenRequest> requests;
    const int count = settings_.beginReadArray("recentDatabases");
    for (int i = 0; i < count && requests.size() < most; ++i) {
        settings_.setArrayIndex(i);
        const OpenRequest request = readRequest(settings_);
        const bool isKnown = std::any_of(requests.cbegin(), requests.cend(),
                                         [&](const OpenRequest& other) { return isSame(other, request); });
        if (!request.database.driver.isEmpty() && !isKnown)
            requests.append(request);
    }
    settings_.endArray();
    return requests;
}

void RecentDatabases::add(const OpenRequest& request) {
    QList<OpenRequest> requests = list();
    requests.removeIf([&](const OpenRequest& other) { return isSame(other, request); });
    requests.prepend(settled(request));
    write(requests.mid(0, most));
}

void RecentDatabases::remove(const OpenRequest& request) {
    QList<OpenRequest> requests = list();
    requests.removeIf([&](const OpenRequest& other) { return isSame(other, request); });
    write(requests);
}

void RecentDatabases::write(const QList<OpenRequest>& requests) {
    settings_.remove("recentDatabases");
    settings_.beginWriteArray("recentDatabases", static_cast<int>(requests.size()));
    for (int i = 0; i < requests.size(); ++i) {
        settings_.setArrayIndex(i);
        writeRequest(settings_, requests[i]);
    }
    settings_.endArray();
}

} // namespace lumora::desk
