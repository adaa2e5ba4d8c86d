#include "apps/lumora-desk/querybases.h"

#include "apps/lumora-desk/recentdatabases.h"
#include "lumora/qtsql/tablequerybase.h"
#include "lumora/querybase/folder_base.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

namespace lumora::desk {

namespace {

std::unique_ptr<TVStoredQueryBase> folderBase(const OpenRequest& request) {
    const QString folder =
        request.queries.name.isEmpty() ? defaultQueryFolder(request.database) : request.queries.name;
    if (!QDir().mkpath(folder))
        throw EFileError("Cannot make the folder \"" + folder.toStdString() + "\" for queries");
    auto base = std::make_unique<TVFolderQueryBase>();
    base->SetFolder(folder.toStdString());
    return base;
}

} // namespace

OpenQueryBase::OpenQueryBase(const OpenRequest& request) {
    if (request.queries.kind == QueryPlace::Kind::Table) {
        connection_.emplace(request.database, DatabaseConnection::Access::ReadWrite);
        const QString& table = request.queries.name;
        base_ = std::make_unique<TableQueryBase>(connection_->connection(),
                                                 table.isEmpty() ? TableQueryBase::defaultTable : table);
    } else {
        base_ = folderBase(request);
    }
    base_->Open();
    base_->SetItemIndex(-1);
}

QString defaultQueryFolder(const DatabaseParameters& database) {
    DatabaseParameters named = withoutPassword(database);
    if (named.driver == QLatin1StringView("QSQLITE"))
        named.databaseName = QFileInfo(named.databaseName).absoluteFilePath();
    const QString identity =
        QStringList{named.driver, named.databaseName, named.hostName, QString::number(named.port)}.join(
            u'\n');
    const QByteArray hash = QCryptographicHash::hash(identity.toUtf8(), QCryptographicHash::Sha1).toHex();
    QString name = QFileInfo(named.databaseName).completeBaseName();
    for (QChar& c : name)
        if (!c.isLetterOrNumber() && c != u'-' && c != u'_')
            c = u'_';
    return QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation) +
           QStringLiteral("/queries/%1-%2").arg(name.left(40), QString::fromLatin1(hash.left(8)));
}

} // namespace lumora::desk
