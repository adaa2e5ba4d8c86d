#include "apps/lumora-desk/sampledatabase.h"

#include "lumora/platform/errors.h"
#include "lumora/platform/string_list.h"
#include "lumora/platform/text_file.h"
#include "lumora/querybase/query_file_name.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>

namespace lumora::desk {

namespace {

const QString databaseScript = QStringLiteral("make_orders_db.py");
const QString modelName = QStringLiteral("orders.model");

bool isSampleFolder(const QString& folder) {
    return QFileInfo::exists(folder + u'/' + databaseScript) && QFileInfo::exists(folder + u'/' + modelName);
}

[[noreturn]] void fail(const QString& reason) {
    throw Exception("The sample cannot be made: " + reason.toStdString());
}

// The script writes beside the file and moves it over when it is complete.
void makeDatabase(const QString& script, const QString& file) {
    QProcess python;
    python.setProcessChannelMode(QProcess::MergedChannels);
    python.start(QStringLiteral("python3"), {script, file});
    if (!python.waitForStarted())
        fail(QStringLiteral("python3 is needed for that (%1)").arg(python.errorString()));
    if (!python.waitForFinished(60'000) || python.exitCode() != 0 ||
        python.exitStatus() != QProcess::NormalExit)
        fail(QString::fromUtf8(python.readAll()).trimmed());
}

void copy(const QString& from, const QString& to) {
    if (!QFileInfo::exists(to) && !QFile::copy(from, to))
        fail(QStringLiteral("%1 cannot be copied to %2").arg(from, to));
    QFile::setPermissions(to, QFile::permissions(to) | QFile::WriteOwner);
}

// In a folder of queries, files are called as their queries are.
QString namedFile(const QString& file) {
    for (const std::string_view line : TStringList(ReadTextFile(file.toStdString())))
        if (constexpr std::string_view key = "QueryName="; line.substr(0, key.size()) == key)
            return QString::fromStdString(QueryFileName(line.substr(key.size())));
    return QFileInfo(file).fileName();
}

} // namespace

QString sampleFolder() {
    const QString program = QCoreApplication::applicationDirPath();
    for (const QString& folder :
         {program + QStringLiteral("/samples"), program + QStringLiteral("/../share/lumora/samples"),
          QStringLiteral(LUMORA_DESK_SAMPLES)})
        if (isSampleFolder(folder))
            return QDir::cleanPath(folder);
    return {};
}

QString sampleHome() {
    return QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation) + QStringLiteral("/sample");
}

OpenRequest makeSample(const QString& from, const QString& to) {
    const QString queries = to + QStringLiteral("/queries");
    const bool isFirst = !QFileInfo::exists(queries);
    if (!QDir().mkpath(queries))
        fail(QStringLiteral("the folder %1 cannot be made").arg(queries));
    if (isFirst) // a query that was deleted is not to come back
        for (const QFileInfo& query :
             QDir(from + QStringLiteral("/queries")).entryInfoList({QStringLiteral("*.qry")}))
            copy(query.filePath(), queries + u'/' + namedFile(query.filePath()));
    copy(from + u'/' + modelName, to + u'/' + modelName);
    const QString database = to + QStringLiteral("/orders.sqlite");
    if (!QFileInfo::exists(database))
        makeDatabase(from + u'/' + databaseScript, database);
    OpenRequest request;
    request.database = parseDatabase(database.toStdString());
    request.modelFile = to + u'/' + modelName;
    request.queries.name = queries;
    return request;
}

} // namespace lumora::desk
