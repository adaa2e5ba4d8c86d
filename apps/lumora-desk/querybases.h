// The base in which the queries of a database are kept.
#pragma once

#include "apps/lumora-desk/databaseopener.h"
#include "lumora/qtsql/databaseconnection.h"
#include "lumora/querybase/stored_base.h"

#include <memory>
#include <optional>

namespace lumora::desk {

// A base and, when it is a table, the connection to it.
class OpenQueryBase {
public:
    // Opens it; none of its queries is current. EFileError, DatabaseError.
    explicit OpenQueryBase(const OpenRequest& request);

    TVStoredQueryBase& operator*() const { return *base_; }
    TVStoredQueryBase* operator->() const { return base_.get(); }
    TVStoredQueryBase* get() const { return base_.get(); }

private:
    std::optional<DatabaseConnection> connection_; // outlives the base
    std::unique_ptr<TVStoredQueryBase> base_;
};

// The folder for the queries of a database when none is chosen: one for each database, in the user's own
// data.
QString defaultQueryFolder(const DatabaseParameters& database);

} // namespace lumora::desk
