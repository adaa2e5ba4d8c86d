#include "apps/lumora-desk/recentdatabases.h"

namespace lumora::desk {

using namespace Qt::StringLiterals;

namespace {

bool isSame(const OpenRequest& a, const OpenRequest& b) {
    const DatabaseParameters one = withoutPassword(a.database);
    const DatabaseParameters other = withoutPassword(b.database);
    return one.driver == other.driver && one.databaseName == other.databaseName &&
           one.hostName == other.hostName && one.port == other.port && one.userName == other.userName &&
           one.connectOptions == other.connectOptions && a.modelFile == b.modelFile;
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

QList<OpenRequest> RecentDatabases::list() const {
    QList<OpenRequest> requests;
    const int count = settings_.beginReadArray("recentDatabases");
    for (int i = 0; i < count && requests.size() < most; ++i) {
        settings_.setArrayIndex(i);
        OpenRequest request = readRequest(settings_);
        if (!request.database.driver.isEmpty())
            requests.append(request);
    }
    settings_.endArray();
    return requests;
}

void RecentDatabases::add(const OpenRequest& request) {
    QList<OpenRequest> requests = list();
    requests.removeIf([&](const OpenRequest& other) { return isSame(other, request); });
    requests.prepend(request);
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
