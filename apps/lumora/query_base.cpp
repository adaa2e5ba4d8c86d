#include "apps/lumora/query_base.h"

#include "lumora/platform/ascii.h"
#include "lumora/qtsql/tablequerybase.h"
#include "lumora/querybase/folder_base.h"

#include <filesystem>
#include <iostream>
#include <system_error>

namespace lumora::cli {

namespace fs = std::filesystem;

namespace {

bool isDatabaseFileName(const std::string& name) {
    const std::string extension = fs::path(name).extension().string();
    return SameText(extension, ".sqlite") || SameText(extension, ".sqlite3") || SameText(extension, ".db");
}

void makeFolder(const std::string& name) {
    std::error_code error;
    fs::create_directory(name, error);
    if (error)
        throw EFileError("Cannot make folder \"" + name + "\": " + error.message());
}

} // namespace

QueryBase::QueryBase(const std::string& name, Access access) {
    std::error_code error;
    const fs::file_status status = fs::status(name, error);
    if (isDatabaseUrl(name)) {
        openDatabase(name, access);
    } else if (fs::is_directory(status)) {
        openFolder(name);
    } else if (fs::exists(status) || (access == Access::Create && isDatabaseFileName(name))) {
        openDatabase(name, access);
    } else if (access == Access::Create) {
        makeFolder(name);
        openFolder(name);
    } else {
        throw EFileError("Cannot open query base \"" + name +
                         "\": " + (error ? error.message() : "No such file or directory"));
    }
    base_->Open();
}

void QueryBase::openFolder(const std::string& folder) {
    auto base = std::make_unique<TVFolderQueryBase>();
    base->SetFolder(folder);
    base->OnStaleLock = [folder](const std::string& owner) {
        std::cerr << "lumora: Took over the lock of folder \"" << folder << "\", which was left behind by "
                  << owner << '\n';
    };
    base_ = std::move(base);
}

void QueryBase::openDatabase(const std::string& pathOrUrl, Access access) {
    const DatabaseParameters parameters = parseDatabase(pathOrUrl);
    application_.emplace();
    connection_.emplace(parameters, access);
    base_ = std::make_unique<TableQueryBase>(connection_->connection());
}

int QueryBase::find(const std::string& queryName) const {
    for (int i = 0; i < base_->GetCount(); ++i)
        if (base_->GetQuery(i)->GetQueryName() == queryName)
            return i;
    return base_->IndexByName(queryName);
}

TVStoredQueryItem& QueryBase::query(const std::string& queryName) const {
    const int index = find(queryName);
    if (index < 0)
        throw EVQueryBaseError(qbeNoSuchQuery, Message(msgNoSuchQuery), {queryName});
    return dynamic_cast<TVStoredQueryItem&>(*base_->GetQuery(index));
}

} // namespace lumora::cli
