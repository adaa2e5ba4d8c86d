// A query base that keeps its queries in a table of a database.
#pragma once

#include "lumora/qtsql/catalogue.h"
#include "lumora/qtsql/tablename.h"
#include "lumora/querybase/stored_base.h"

#include <QSqlDatabase>
#include <QString>

#include <vector>

namespace lumora {

// Each query is a row: name (the key), description, content, version (another number after every save),
// changed (when that was, in UTC). The table is made when the first query is saved. DatabaseError with the
// engine's words when it refuses, when the connection is gone, and for a table with other columns. The
// connection is looked up by its name each time, so it may be closed, opened again and removed; a transaction
// on it is the host's.
class TableQueryBase : public TVStoredQueryBase {
public:
    inline static const QString defaultTable = QStringLiteral("lumora_queries");

    // The table's name may be qualified ("office.queries"); a part in double quotes may hold anything.
    explicit TableQueryBase(const QSqlDatabase& database, const QString& table = defaultTable,
                            TComponent* owner = nullptr);

    std::string_view ClassName() const override { return "TableQueryBase"; }

    // Whether the columns are those of a table that this class has made.
    static bool isMadeForQueries(const std::vector<ColumnInfo>& columns);

protected:
    std::vector<TStoredQuery> ListStored() override;
    void ReadStored(TStoredQuery& query, TStringList& content) override;
    void WriteStored(TStoredQuery& query, const TStoredQuery* old, const TStringList& content,
                     bool force) override;
    void EraseStored(const TStoredQuery& query, bool force) override;

private:
    struct Row;

    QSqlDatabase connection() const;
    bool hasTable();
    void makeTable();
    std::optional<std::string> presentStamp(const std::string& name) const;
    int change(const QString& statement, const QVariantList& values) const;
    bool update(const Row& row, const std::string& name) const;
    void insert(const Row& row) const;
    void insertNew(const Row& row) const;
    void updateUnchanged(const Row& row, const TStoredQuery& old) const;
    bool eraseUnchanged(const TStoredQuery& query) const;

    const QString connectionName_;
    const TableName table_;
    QString quotedTable_; // as it stands in statements
    bool tableKnown_ = false;
};

} // namespace lumora
