#include "lumora/qtsql/sqlitefile.h"

#include "lumora/qtsql/databaseerror.h"

#include <QUrl>

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <system_error>

namespace lumora {

namespace fs = std::filesystem;
using namespace Qt::StringLiterals;
using Access = DatabaseConnection::Access;

namespace {

fs::path wholePath(const DatabaseParameters& parameters) {
    std::error_code error;
    return fs::absolute(parameters.databaseName.toStdString(), error);
}

// Where changes wait for their place in the file.
bool hasWaitingLog(const fs::path& path) {
    std::error_code error;
    const std::uintmax_t size = fs::file_size(path.string() + "-wal", error);
    return !error && size > 0;
}

// The file says in two of its bytes how it was written last.
bool isInWalMode(const fs::path& path) {
    char head[20] = {};
    std::ifstream(path, std::ios::binary).read(head, sizeof head);
    return head[18] == 2 && head[19] == 2;
}

// The reason for which the file cannot be opened; none to all appearances.
QString faultOf(const DatabaseParameters& parameters, Access access) {
    const fs::path path = wholePath(parameters);
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    if (fs::is_directory(status))
        return u"it is a directory"_s;
    if (!fs::exists(status))
        return access == Access::Create ? QString()
               : error                  ? QString::fromStdString(error.message())
                                        : u"No such file or directory"_s;
    if (parameters.immutable && access != Access::ReadOnly)
        return u"a file that is said to be immutable can only be read"_s;
    if (parameters.immutable && hasWaitingLog(path))
        return u"the changes in %1-wal would be missed; open it without \"immutable\""_s.arg(
            QString::fromStdString(path.string()));
    if (access == Access::ReadOnly && fs::file_size(path, error) == 0 && !error && !hasWaitingLog(path))
        return u"the file is empty"_s;
    return {};
}

} // namespace

// SQLite takes some names (":memory:") for no file's: it gets the whole path.
SqliteFile::SqliteFile(const DatabaseParameters& parameters, Access access) {
    if (const QString fault = faultOf(parameters, access); !fault.isEmpty())
        throw DatabaseError(DatabaseError::Kind::CannotConnect,
                            u"Cannot open database \"%1\": %2"_s.arg(parameters.label(), fault));
    name = QString::fromStdString(wholePath(parameters).string());
    if (access == Access::ReadOnly)
        options = u"QSQLITE_OPEN_READONLY"_s;
    if (parameters.immutable) {
        name = "file:"_L1 + QString::fromLatin1(QUrl::toPercentEncoding(name, "/")) + "?immutable=1"_L1;
        options += ";QSQLITE_OPEN_URI"_L1;
    }
}

QString sqliteReason(const DatabaseParameters& parameters, const QString& reason) {
    const fs::path path = wholePath(parameters);
    if (!isInWalMode(path) || access(path.parent_path().c_str(), W_OK) == 0)
        return reason;
    const QString text = u"%1. It is in WAL mode, which takes a folder that can be written. "_s.arg(reason);
    if (hasWaitingLog(path))
        return text + "Copy it into one together with its -wal file, which holds changes"_L1;
    return text +
           u"Copy it into one, or, if nobody writes to it meanwhile, open it as file:%1?immutable=1"_s.arg(
               parameters.databaseName);
}

} // namespace lumora
