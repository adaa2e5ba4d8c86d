#include "lumora/qtsql/databasesession.h"

#include "lumora/platform/ascii.h"
#include "lumora/qtsql/catalogues.h"
#include "lumora/qtsql/databaseerror.h"
#include "lumora/qtsql/queryrunner.h"
#include "lumora/qtsql/serverstatement.h"

#include <QDateTime>
#include <QRegularExpression>
#include <QSqlRecord>

#include <optional>

namespace lumora {

using namespace Qt::StringLiterals;

class DatabaseSession::Database : public TDatabase {
public:
    bool GetConnected() const override { return connection && connection->connection().isOpen(); }

    std::string name;
    DatabaseParameters parameters;
    DatabaseConnection::Access access;
    std::unique_ptr<DatabaseConnection> connection;
};

namespace {

// Runs a piece of work on an open database, and has the connection looked at when it fails.
template <typename Work>
auto guarded(DatabaseSession& session, const std::string& database, const Work& work) {
    try {
        return work(session.open(database).connection());
    } catch (const DatabaseError&) {
        session.checkConnection(database);
        throw;
    }
}

class SessionTable : public TTable {
public:
    explicit SessionTable(DatabaseSession& session) : session_(session) {}

    void UpdateFieldDefs() override {
        FieldDefs.clear();
        const std::vector<ColumnInfo> columns =
            guarded(session_, DatabaseName, [this](const QSqlDatabase& connection) {
                return openCatalogue(connection)->columns(TableName);
            });
        if (columns.empty())
            fail();
        for (const ColumnInfo& column : columns)
            FieldDefs.push_back({column.name, column.size, column.type});
    }

private:
    // A table that a provider could not find it asks for by another name; the first is the one that was
    // meant.
    [[noreturn]] void fail() {
        if (missing_.empty())
            missing_ = TableName;
        throw DatabaseError(DatabaseError::Kind::NotFound,
                            u"There is no table \"%1\" in database \"%2\""_s.arg(
                                QString::fromStdString(missing_), QString::fromStdString(DatabaseName)));
    }

    DatabaseSession& session_;
    std::string missing_;
};

// SQLite's dates are texts, and those of servers come as texts too; other drivers have types of Qt's for
// them.
QString fieldText(const QVariant& value) {
    if (value.typeId() != QMetaType::QDateTime)
        return value.toString();
    const QDateTime moment = value.toDateTime();
    return moment.toString(moment.time().msec() == 0 ? u"yyyy-MM-dd HH:mm:ss"_s
                                                     : u"yyyy-MM-dd HH:mm:ss.zzz"_s);
}

class SessionQuery : public TQuery {
public:
    explicit SessionQuery(DatabaseSession& session) : session_(session) {}

    void Open() override {
        checkStatement(SQL);
        guarded(session_, DatabaseName, [this](const QSqlDatabase& connection) {
            QSqlQuery query(connection);
            executePositional(query, connection, {QString::fromStdString(SQL), {}}, -1, true);
            eof_ = !nextRow(query);
            query_ = std::move(query);
        });
    }
    int GetFieldCount() const override { return query_ ? query_->record().count() : 0; }
    std::string GetFieldText(int field) const override {
        return fieldText(query_->value(field)).toStdString();
    }
    bool GetEof() const override { return eof_; }
    void Next() override { eof_ = !nextRow(*query_); }

private:
    DatabaseSession& session_;
    std::optional<QSqlQuery> query_;
    bool eof_ = true;
};

} // namespace

DatabaseSession::DatabaseSession() {
    SetDefault(this);
}

DatabaseSession::~DatabaseSession() = default;

DatabaseSession::Database* DatabaseSession::find(const std::string& name) const {
    for (const auto& database : databases_)
        if (SameText(database->name, name))
            return database.get();
    return nullptr;
}

void DatabaseSession::registerDatabase(const std::string& name, const DatabaseParameters& parameters,
                                       DatabaseConnection::Access access) {
    unregisterDatabase(name);
    auto database = std::make_unique<Database>();
    database->name = name;
    database->parameters = parameters;
    database->access = access;
    databases_.push_back(std::move(database));
}

void DatabaseSession::unregisterDatabase(const std::string& name) {
    std::erase_if(databases_, [&](const auto& database) { return SameText(database->name, name); });
}

DatabaseConnection& DatabaseSession::open(const std::string& name) {
    Database* const database = find(name);
    if (!database)
        throw DatabaseError(DatabaseError::Kind::NotFound,
                            u"There is no database \"%1\""_s.arg(QString::fromStdString(name)));
    if (!database->connection)
        database->connection = std::make_unique<DatabaseConnection>(database->parameters, database->access);
    return *database->connection;
}

void DatabaseSession::close(const std::string& name) {
    if (Database* const database = find(name))
        database->connection.reset();
}

void DatabaseSession::checkConnection(const std::string& name) {
    const Database* const database = find(name);
    if (!database || !database->connection)
        return;
    try {
        if (database->GetConnected())
            execute(database->connection->connection(), u"select 1"_s);
        else
            close(name);
    } catch (const DatabaseError&) {
        close(name);
    }
}

void DatabaseSession::GetDatabaseNames(TStringList& names) {
    names.Clear();
    for (const auto& database : databases_)
        names.Add(database->name);
}

void DatabaseSession::GetTableNames(const std::string& database, std::string_view pattern, bool,
                                    bool systemTables, TStringList& names) {
    const std::vector<std::string> tables = guarded(*this, database, [&](const QSqlDatabase& connection) {
        return openCatalogue(connection)->tables(systemTables);
    });
    const auto wildcard = // "*.*" is any name, with an extension or without
        QRegularExpression::fromWildcard(pattern == "*.*" ? u"*"_s : QString::fromUtf8(pattern),
                                         Qt::CaseInsensitive);
    names.Clear();
    for (const std::string& table : tables)
        if (wildcard.match(QString::fromStdString(table)).hasMatch())
            names.Add(table);
}

TDatabase* DatabaseSession::FindDatabase(const std::string& name) {
    Database* const database = find(name);
    return database && database->connection ? database : nullptr;
}

std::unique_ptr<TTable> DatabaseSession::NewTable() {
    return std::make_unique<SessionTable>(*this);
}

std::unique_ptr<TQuery> DatabaseSession::NewQuery() {
    return std::make_unique<SessionQuery>(*this);
}

void DatabaseSession::SetBusyCursor(bool busy) {
    if (onBusy)
        onBusy(busy);
}

} // namespace lumora
