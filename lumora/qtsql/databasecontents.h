// What a model is filled from: the tables of a database and what was found out of them, step by step.
#pragma once

#include "lumora/model/date_storage.h"
#include "lumora/platform/ascii.h"
#include "lumora/qtsql/catalogue.h"
#include "lumora/qtsql/engine.h"

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace lumora {

struct SourceColumn : ColumnInfo {
    TDateStorage storage = dsAsType; // see columnsampling.h
    std::string caption;             // see filledcaptions.h
    std::string listSQL;             // of the values to choose from; see valuelists.h
    bool isReference = false;        // it refers to a record that is chosen from a list
    int key = -1;                    // the first foreign key that is this column alone; see keyOf
};

struct SourceTable {
    std::string name; // as the model has it
    TableInfo info;
    std::vector<SourceColumn> columns;

    const SourceColumn* column(std::string_view columnName) const; // letter case ignored; null: none
    bool isInPrimaryKey(std::string_view columnName) const;
};

struct DatabaseContents {
    Engine engine = Engine::Other;
    std::vector<SourceTable> tables;  // views behind tables
    std::vector<ForeignKey> keys;     // between these tables
    std::vector<ForeignKey> lostKeys; // from or to what was left out
    std::unordered_map<std::string, std::size_t, TNoCaseHash, TNoCaseEqual> places; // of tables, by name
    std::vector<std::string> remarks; // what was left out, and what people should know

    const SourceTable* table(const std::string& name) const;   // letter case ignored; null when there is none
    const ForeignKey* keyOf(const SourceColumn& column) const; // null when there is none
};

// Tables and columns that no model can hold (no columns, a name that is empty or has a line break), those
// that cannot be read, and tables in which this program keeps queries are left out with a remark.
// DatabaseError when nothing can be read.
DatabaseContents readContents(Catalogue& catalogue, Engine engine);

// As a statement names it.
std::string nameInStatement(Engine engine, const SourceTable& table);
std::string nameInStatement(Engine engine, const SourceColumn& column);

} // namespace lumora
