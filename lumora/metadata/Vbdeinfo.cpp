#include "lumora/metadata/Vbdeinfo.h"

#include "lumora/platform/properties.h"

namespace lumora {

TVBDEInfo::TVBDEInfo(TComponent* owner) : TVDBInfo(owner), session_(&TSession::Default()) {}

std::span<const TPropertyInfo> TVBDEInfo::PublishedProperties() const {
    static const std::vector<TPropertyInfo> properties = ExtendProperties(
        TVDBInfo::PublishedProperties(),
        {Property<TVBDEInfo>("DatabaseName", &TVBDEInfo::GetDatabaseName, &TVBDEInfo::SetDatabaseName, "")});
    return properties;
}

void TVBDEInfo::SetSession(TSession& session) {
    if (&session == session_)
        return;
    session_ = &session;
    ConnectionChanged();
}

void TVBDEInfo::SetDatabaseName(const std::string& name) {
    if (name == databaseName_)
        return;
    databaseName_ = name;
    ConnectionChanged();
}

void TVBDEInfo::GetDatabaseNames(TStringList& names) {
    session_->GetDatabaseNames(names);
}

void TVBDEInfo::TablesByDatabase(TStringList& tables) {
    session_->GetTableNames(databaseName_, "*.*", false, false, tables);
}

// The second attempt is made whatever the database is: it lets tables that are files be named without their
// extension.
void TVBDEInfo::FieldsByTable(const std::string& name, TDBFieldList& fields) {
    const std::unique_ptr<TTable> table = session_->NewTable();
    table->DatabaseName = databaseName_;
    table->TableName = name;
    try {
        table->UpdateFieldDefs();
    } catch (...) {
        table->TableName = name + ".dbf";
        table->UpdateFieldDefs();
    }
    fields.Clear();
    for (TDBFieldInfo& def : table->FieldDefs) {
        if (def.DataType == ftUnknown)
            def.DataType = ftString;
        fields.Add(std::move(def));
    }
}

namespace {

class TBusyCursor {
public:
    explicit TBusyCursor(TSession& session) : session_(session) { session_.SetBusyCursor(true); }
    ~TBusyCursor() { session_.SetBusyCursor(false); }
    TBusyCursor(const TBusyCursor&) = delete;
    TBusyCursor& operator=(const TBusyCursor&) = delete;

private:
    TSession& session_;
};

} // namespace

void TVBDEInfo::GetSQLValues(std::string_view sql, TStringList& first, TStringList& second) {
    first.Clear();
    second.Clear();
    lastError_.clear();
    const std::unique_ptr<TQuery> query = session_->NewQuery();
    const TBusyCursor busy(*session_);
    query->DatabaseName = databaseName_;
    query->SQL = sql;
    try {
        ReadValues(*query, first, second);
    } catch (const std::exception& error) {
        lastError_ = error.what();
    } catch (...) { // a platform raises what it likes
        lastError_ = "Unknown error";
    }
}

void TVBDEInfo::ReadValues(TQuery& query, TStringList& first, TStringList& second) const {
    query.Open();
    if (query.GetFieldCount() < 2)
        throw EVDBInfoError("Field count must be >= 2");
    for (; !query.GetEof(); query.Next()) {
        first.Add(query.GetFieldText(0));
        second.Add(query.GetFieldText(1));
    }
}

bool TVBDEInfo::GetConnected() const {
    const TDatabase* const database = session_->FindDatabase(databaseName_);
    return !database || database->GetConnected();
}

void TVBDEInfo::SaveInfo(TStringList& settings) {
    TVDBInfo::SaveInfo(settings);
    settings.Add("DatabaseName=" + databaseName_);
}

// The base class would empty the list.
void TVBDEInfo::LoadInfo(TStringList& settings) {
    if (const std::string_view name = settings.Value("DatabaseName"); !name.empty())
        SetDatabaseName(std::string(name));
}

} // namespace lumora
