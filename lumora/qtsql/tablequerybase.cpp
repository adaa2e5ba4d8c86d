#include "lumora/qtsql/tablequerybase.h"

#include "lumora/platform/ascii.h"
#include "lumora/qtsql/catalogues.h"
#include "lumora/qtsql/databaseerror.h"
#include "lumora/support/string_helpers.h"

#include <QDateTime>
#include <QRandomGenerator>

#include <algorithm>
#include <limits>

namespace lumora {

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype maxNameLength = 200;
const QString updateStatement =
    u"update %1 set name = ?, description = ?, content = ?, version = ?, changed = ? where name = ?"_s;
constexpr std::string_view columnNames[] = {"name", "description", "content", "version", "changed"};

// MySQL takes double quotes only when told to, and the connection is the host's.
QString quoted(const QSqlDatabase& database, const std::string& name) {
    const char quote = engineOf(database) == Engine::MySql ? '`' : '"';
    std::string text(1, quote);
    AppendDoubled(text, name, quote);
    return QString::fromStdString(text += quote);
}

QString quoted(const QSqlDatabase& database, const TableName& table) {
    const QString name = quoted(database, table.name);
    return table.schema.empty() ? name : quoted(database, table.schema) + '.'_L1 + name;
}

// Databases keep characters, and would keep something else instead of what is none.
QString decoded(std::string_view text, const std::string& queryName) {
    const QUtf8StringView view(text.data(), static_cast<qsizetype>(text.size()));
    if (!view.isValidUtf8() || text.find('\0') != std::string_view::npos)
        throw DatabaseError(DatabaseError::Kind::Invalid,
                            u"Query \"%1\" holds characters that a database cannot keep"_s.arg(
                                QString::fromStdString(queryName)));
    return view.toString();
}

// Long texts have a type of their own in MySQL, and it takes all characters only when told to.
QString tableDefinition(Engine engine) {
    const bool isMySql = engine == Engine::MySql;
    return u"(name varchar(%1) not null primary key, description %2, content %2, version integer not null,"
           " changed varchar(30))%3"_s.arg(
               QString::number(maxNameLength), isMySql ? u"longtext"_s : u"text"_s,
               isMySql ? u" default character set utf8mb4 collate utf8mb4_bin"_s : QString());
}

} // namespace

// What a query is stored as.
struct TableQueryBase::Row {
    Row(const TStoredQuery& query, const TStringList& content)
        : name(decoded(query.Name, query.Name)),
          description(decoded(query.Description, query.Name)),
          text(decoded(content.GetText(), query.Name)),
          version(QRandomGenerator::global()->bounded(1, std::numeric_limits<int>::max())),
          changed(QDateTime::currentDateTimeUtc().toString(Qt::ISODate)) {
        if (name.toUcs4().size() > maxNameLength)
            throw EVQueryBaseError(qbeBadName, Message(msgQueryNameTooLong), {query.Name});
    }

    QVariantList values() const { return {name, description, text, version, changed}; }

    QString name;
    QString description;
    QString text;
    int version; // a number of chance: a query that was erased and made anew is not taken for the old one
    QString changed;
};

TableQueryBase::TableQueryBase(const QSqlDatabase& database, const QString& table, TComponent* owner)
    : TVStoredQueryBase(owner),
      connectionName_(database.connectionName()),
      table_(fromModelName(table.toStdString())),
      quotedTable_(quoted(database, table_)) {}

QSqlDatabase TableQueryBase::connection() const {
    const QSqlDatabase database = QSqlDatabase::database(connectionName_, false);
    if (!database.isOpen())
        throw DatabaseError(DatabaseError::Kind::ConnectionLost,
                            u"The connection to the database is not open"_s);
    return database;
}

// --- The table.

bool TableQueryBase::hasTable() {
    if (tableKnown_)
        return true;
    const QSqlDatabase database = connection();
    const std::vector<ColumnInfo> columns =
        openCatalogue(database)->columns(toModelName(engineOf(database), table_));
    if (columns.empty()) {
        if (engineOf(database) ==
            Engine::MySql) // whose driver tells nothing, too, when the connection is gone
            execute(database, u"select 1"_s);
        return false;
    }
    for (const std::string_view name : columnNames)
        if (std::none_of(columns.begin(), columns.end(),
                         [&](const ColumnInfo& column) { return SameText(column.name, name); }))
            throw DatabaseError(DatabaseError::Kind::NotFound,
                                u"The table %1 is not made for queries: it has no column \"%2\""_s.arg(
                                    quotedTable_, QString::fromUtf8(name)));
    return tableKnown_ = true;
}

bool TableQueryBase::isMadeForQueries(const std::vector<ColumnInfo>& columns) {
    return columns.size() == std::size(columnNames) && columns.front().size == maxNameLength &&
           std::equal(columns.begin(), columns.end(), std::begin(columnNames),
                      [](const ColumnInfo& column, std::string_view name) { return column.name == name; });
}

void TableQueryBase::makeTable() {
    if (hasTable())
        return;
    const QSqlDatabase database = connection();
    try {
        execute(database, u"create table %1 %2"_s.arg(quotedTable_, tableDefinition(engineOf(database))));
    } catch (const DatabaseError&) {
        if (!hasTable()) // someone else may have made it just now
            throw;
    }
}

// --- Reading.

std::vector<TStoredQuery> TableQueryBase::ListStored() {
    tableKnown_ = false;
    std::vector<TStoredQuery> queries;
    if (!hasTable())
        return queries;
    QSqlQuery rows = execute(connection(), u"select name, description, version from %1"_s.arg(quotedTable_));
    while (nextRow(rows))
        queries.push_back(
            {.Name = textOf(rows, 0), .Description = textOf(rows, 1), .Stamp = textOf(rows, 2)});
    return queries;
}

void TableQueryBase::ReadStored(TStoredQuery& query, TStringList& content) {
    QSqlQuery rows = execute(
        connection(), u"select content, description, version from %1 where name = ?"_s.arg(quotedTable_),
        {QString::fromStdString(query.Name)});
    if (!nextRow(rows))
        FailMissing(query.Name);
    content.SetText(textOf(rows, 0));
    query.Description = textOf(rows, 1);
    query.Stamp = textOf(rows, 2);
}

std::optional<std::string> TableQueryBase::presentStamp(const std::string& name) const {
    QSqlQuery rows = execute(connection(), u"select version from %1 where name = ?"_s.arg(quotedTable_),
                             {QString::fromStdString(name)});
    return nextRow(rows) ? std::optional(textOf(rows, 0)) : std::nullopt;
}

// --- Writing. Each statement does all or nothing, so it needs no transaction.

int TableQueryBase::change(const QString& statement, const QVariantList& values) const {
    return execute(connection(), statement.arg(quotedTable_), values).numRowsAffected();
}

bool TableQueryBase::update(const Row& row, const std::string& name) const {
    return change(updateStatement, row.values() << QString::fromStdString(name)) > 0;
}

void TableQueryBase::insert(const Row& row) const {
    change(u"insert into %1 (name, description, content, version, changed) values (?, ?, ?, ?, ?)"_s,
           row.values());
}

void TableQueryBase::insertNew(const Row& row) const {
    try {
        insert(row);
    } catch (const DatabaseError&) {
        if (presentStamp(row.name.toStdString()))
            FailExists(row.name.toStdString());
        throw;
    }
}

void TableQueryBase::updateUnchanged(const Row& row, const TStoredQuery& old) const {
    try {
        if (change(updateStatement + u" and version = ?"_s,
                   row.values() << QString::fromStdString(old.Name)
                                << QString::fromStdString(old.Stamp).toLongLong()) > 0)
            return;
    } catch (const DatabaseError&) {
        const std::string name = row.name.toStdString();
        if (name != old.Name && presentStamp(name))
            FailExists(name);
        throw;
    }
    FailChanged(old, presentStamp(old.Name));
}

bool TableQueryBase::eraseUnchanged(const TStoredQuery& query) const {
    return change(u"delete from %1 where name = ? and version = ?"_s,
                  {QString::fromStdString(query.Name), QString::fromStdString(query.Stamp).toLongLong()}) > 0;
}

void TableQueryBase::WriteStored(TStoredQuery& query, const TStoredQuery* old, const TStringList& content,
                                 bool force) {
    const Row row(query, content);
    makeTable();
    if (!force && old) {
        updateUnchanged(row, *old);
    } else if (!force) {
        insertNew(row);
    } else {
        if (!update(row, query.Name))
            insert(row);
        if (old && old->Name != query.Name)
            eraseUnchanged(*old);
    }
    query.Stamp = std::to_string(row.version);
}

void TableQueryBase::EraseStored(const TStoredQuery& query, bool force) {
    if (force)
        change(u"delete from %1 where name = ?"_s, {QString::fromStdString(query.Name)});
    else if (!eraseUnchanged(query))
        FailChanged(query, presentStamp(query.Name));
}

} // namespace lumora
