// What the database provider needs of a platform: a session that knows databases by name, field definitions
// of tables, and queries whose rows are walked.
#pragma once

#include "lumora/metadata/Vdbinfo.h"
#include "lumora/platform/string_list.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace lumora {

// An open database.
class TDatabase {
public:
    virtual ~TDatabase() = default;
    virtual bool GetConnected() const = 0;
};

// One table, which is not opened for its field definitions.
class TTable {
public:
    virtual ~TTable() = default;
    // Reads FieldDefs; raises when there is no such table.
    virtual void UpdateFieldDefs() = 0;

    std::string DatabaseName;
    std::string TableName;
    std::vector<TDBFieldInfo> FieldDefs; // an unknown type is ftUnknown here
};

// A SELECT and its current row.
class TQuery {
public:
    virtual ~TQuery() = default;
    virtual void Open() = 0; // on the first row, if there is one
    virtual int GetFieldCount() const = 0;
    virtual std::string GetFieldText(int field) const = 0;
    virtual bool GetEof() const = 0;
    virtual void Next() = 0;

    std::string DatabaseName;
    std::string SQL;
};

// The databases that a program can reach. Every operation may raise the platform's own exceptions.
class TSession {
public:
    virtual ~TSession();

    // All replace what the list holds.
    virtual void GetDatabaseNames(TStringList& names) = 0;
    // Tables whose names match the pattern ("*.*": all).
    virtual void GetTableNames(const std::string& database, std::string_view pattern, bool extensions,
                               bool systemTables, TStringList& names) = 0;
    // The database of that name when it has been opened; null otherwise.
    virtual TDatabase* FindDatabase(const std::string& database) = 0;
    virtual std::unique_ptr<TTable> NewTable() = 0;
    virtual std::unique_ptr<TQuery> NewQuery() = 0;
    // Shows, or no longer shows, that the program is busy.
    virtual void SetBusyCursor(bool) {}

    // The session that providers take; until a platform sets one, it knows no database. A session that goes
    // away stops being the default. Providers keep the one that they took and must not outlive it.
    static TSession& Default();
    static void SetDefault(TSession* session);
};

} // namespace lumora
