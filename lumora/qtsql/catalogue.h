// What a database says of itself: its tables, their columns, its foreign keys.
#pragma once

#include "lumora/platform/field_types.h"

#include <QSqlDatabase>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace lumora {

// How the values of a column can be compared with what people enter.
enum class Comparison : std::uint8_t {
    Text,  // as texts, patterns included
    Value, // equal, and in the type's own order; the value is written as a text where the type is no number
    None   // not at all (json, points, pictures)
};

struct ColumnInfo {
    std::string name;
    // ftUnknown for a type that has no counterpart, a text to all appearances.
    TFieldType type = ftUnknown;
    // Texts: the most characters, 0 for no bound; numeric: digits behind the point; otherwise 0.
    int size = 0;
    Comparison comparison = Comparison::Text;
    bool nullable = true;
    // False where the engine names no type, as SQLite does not for the expressions of a view; `type` then
    // says nothing.
    bool hasType = true;
    // The only values that the column takes, as an enumeration or a check names them; empty: any.
    std::vector<std::string> choices;
};

enum class TableKind : std::uint8_t { Table, View };

struct TableInfo {
    TableKind kind = TableKind::Table;
    // About how many; -1 when that is not known without counting, as of a view.
    std::int64_t rowCount = -1;
    std::vector<std::string> primaryKey; // its columns in order; empty when there is none
    // The columns of each key by which two rows are never alike and none is null, the primary key among them.
    std::vector<std::vector<std::string>> uniqueKeys;
    std::vector<std::string> indexedColumns; // those with which an index begins that holds every row
};

// Column i refers to referencedColumns[i]. Tables by their model names.
struct ForeignKey {
    std::string table;
    std::string referencedTable;
    std::vector<std::string> columns;
    std::vector<std::string> referencedColumns;
};

// All operations raise DatabaseError with the engine's words when it refuses.
class Catalogue {
public:
    virtual ~Catalogue() = default;
    // Tables and views by their model names (see tablename.h): those of the default schema first, then by
    // schema and name.
    virtual std::vector<std::string> tables(bool systemTables) = 0;
    // In their order; empty when there is no such table.
    virtual std::vector<ColumnInfo> columns(const std::string& table) = 0;
    // Of a table that `tables` lists; a catalogue that knows nothing of it says so by the defaults.
    virtual TableInfo tableInfo(const std::string& /*table*/) { return {}; }
    // Between tables that `tables` lists, in its order, then in the order in which they were made.
    virtual std::vector<ForeignKey> foreignKeys() = 0;
};

// For an open connection. SQLite, PostgreSQL, MySQL and MariaDB are read in full, over ODBC too; of other
// databases what their driver tells, and foreign keys where they have the standard's information schema.
std::unique_ptr<Catalogue> openCatalogue(const QSqlDatabase& database);

// The type of a numeric column with that many digits, of which `scale` stand behind the point; 0 digits: any
// number.
TFieldType numericType(int precision, int scale);

} // namespace lumora
