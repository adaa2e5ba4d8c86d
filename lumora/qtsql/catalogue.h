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
    // Between tables that `tables` lists, in its order, then in the order in which they were made.
    virtual std::vector<ForeignKey> foreignKeys() = 0;
};

// For an open connection. SQLite and PostgreSQL are read in full; of other databases what their driver tells,
// without foreign keys.
std::unique_ptr<Catalogue> openCatalogue(const QSqlDatabase& database);

// The type of a numeric column with that many digits, of which `scale` stand behind the point; 0 digits: any
// number.
TFieldType numericType(int precision, int scale);

} // namespace lumora
