// The query base that a command line names.
#pragma once

#include "apps/lumora/qt_application.h"
#include "lumora/qtsql/databaseconnection.h"
#include "lumora/querybase/stored_base.h"

#include <memory>
#include <optional>
#include <string>

namespace lumora::cli {

// A folder of query files, or a table in an SQLite file or in another database (by its URL).
class QueryBase {
public:
    using Access = DatabaseConnection::Access;

    // EFileError or DatabaseError when it cannot be opened. With Access::Create what does not exist is made:
    // an SQLite file for a name that ends in ".sqlite", ".sqlite3" or ".db", otherwise a folder.
    QueryBase(const std::string& name, Access access);

    TVStoredQueryBase& operator*() const { return *base_; }
    TVStoredQueryBase* operator->() const { return base_.get(); }
    // The query of the name; the one that differs in letter case when there is no other; -1 without either.
    int find(const std::string& queryName) const;
    // EVQueryBaseError when there is no such query.
    TVStoredQueryItem& query(const std::string& queryName) const;

private:
    void openFolder(const std::string& folder);
    void openDatabase(const std::string& pathOrUrl, Access access);

    std::optional<QtApplication> application_;
    std::optional<DatabaseConnection> connection_;
    std::unique_ptr<TVStoredQueryBase> base_;
};

} // namespace lumora::cli
