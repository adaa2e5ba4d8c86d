// The metadata provider over a platform's databases.
#pragma once

#include "lumora/metadata/Vdbinfo.h"
#include "lumora/metadata/session.h"

#include <string>
#include <string_view>

namespace lumora {

// Reads the database that its session knows by DatabaseName. It has no links of its own; OnLinksRequest gives
// them.
class TVBDEInfo : public TVDBInfo {
public:
    explicit TVBDEInfo(TComponent* owner = nullptr);
    ~TVBDEInfo() override { BeginDestruction(); }

    std::string_view ClassName() const override { return "TVBDEInfo"; }
    std::span<const TPropertyInfo> PublishedProperties() const override;

    // The session through which everything is read: at first the default one of the moment in which the
    // provider was made. Another one must outlive the provider.
    TSession& GetSession() const { return *session_; }
    void SetSession(TSession& session);

    const std::string& GetDatabaseName() const { return databaseName_; }
    void SetDatabaseName(const std::string& name);

    void GetDatabaseNames(TStringList& names) override;
    void TablesByDatabase(TStringList& tables) override;
    // A table that is not there is looked for as NAME.dbf before the platform's failure is passed on.
    void FieldsByTable(const std::string& table, TDBFieldList& fields) override;
    // Every failure ends the reading without a word; see GetLastError.
    void GetSQLValues(std::string_view sql, TStringList& first, TStringList& second) override;
    // True for a database that nothing has opened yet.
    bool GetConnected() const override;
    // The settings are one line, "DatabaseName=...".
    void SaveInfo(TStringList& settings) override;
    void LoadInfo(TStringList& settings) override;

    std::string GetLastError() const override { return lastError_; }

private:
    void ReadValues(TQuery& query, TStringList& first, TStringList& second) const;

    TSession* session_;
    std::string databaseName_;
    std::string lastError_;
};

} // namespace lumora
