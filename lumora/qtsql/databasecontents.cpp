#include "lumora/qtsql/databasecontents.h"

#include "lumora/platform/ascii.h"
#include "lumora/qtsql/databaseerror.h"
#include "lumora/qtsql/tablename.h"
#include "lumora/qtsql/tablequerybase.h"
#include "lumora/support/string_helpers.h"

#include <algorithm>

namespace lumora {

namespace {

bool isControl(char c) {
    return static_cast<unsigned char>(c) < ' ' || c == '\x7f';
}

// Models are texts of lines, in which a name stands as it is.
bool canBeNamed(std::string_view name) {
    return !Trim(name).empty() && std::none_of(name.begin(), name.end(), isControl);
}

std::string shown(std::string name) {
    std::replace_if(name.begin(), name.end(), isControl, ' ');
    return '"' + name + '"';
}

class ContentsReader {
public:
    ContentsReader(Catalogue& catalogue, Engine engine) : catalogue_(catalogue) { contents_.engine = engine; }

    DatabaseContents read() {
        for (const std::string& name : catalogue_.tables(false))
            addTable(name);
        std::stable_partition(contents_.tables.begin(), contents_.tables.end(),
                              [](const SourceTable& table) { return table.info.kind == TableKind::Table; });
        for (std::size_t i = 0; i < contents_.tables.size(); ++i)
            contents_.places.emplace(contents_.tables[i].name, i);
        for (ForeignKey& key : catalogue_.foreignKeys())
            (isWhole(key) ? contents_.keys : contents_.lostKeys).push_back(std::move(key));
        for (int i = static_cast<int>(contents_.keys.size()) - 1; i >= 0; --i)
            markColumn(i);
        return std::move(contents_);
    }

private:
    void addTable(const std::string& name) {
        const TableName parts = fromModelName(name);
        if (!canBeNamed(name) || !canBeNamed(parts.name))
            return leaveOut("table " + shown(name), "its name cannot stand in a model");
        SourceTable table;
        table.name = name;
        try {
            table.info = catalogue_.tableInfo(name);
            for (ColumnInfo& column : catalogue_.columns(name))
                addColumn(table, std::move(column));
        } catch (const DatabaseError& error) {
            if (error.kind() == DatabaseError::Kind::ConnectionLost)
                throw;
            return leaveOut("table " + shown(name), error.what());
        }
        if (table.columns.empty())
            return leaveOut("table " + shown(name), "it has no columns");
        if (TableQueryBase::isMadeForQueries({table.columns.begin(), table.columns.end()}))
            return leaveOut("table " + shown(name), "queries are kept in it");
        contents_.tables.push_back(std::move(table));
    }

    void addColumn(SourceTable& table, ColumnInfo column) {
        if (!canBeNamed(column.name))
            return leaveOut("column " + shown(column.name) + " of table " + shown(table.name),
                            "its name cannot stand in a model");
        table.columns.emplace_back();
        static_cast<ColumnInfo&>(table.columns.back()) = std::move(column);
    }

    void leaveOut(std::string what, const std::string& why) {
        what[0] = what[0] == 't' ? 'T' : 'C';
        contents_.remarks.push_back(what + " was left out: " + why);
    }

    bool isWhole(const ForeignKey& key) const {
        const auto hasAll = [this](const std::string& name, const std::vector<std::string>& columns) {
            const SourceTable* const table = contents_.table(name);
            return table && std::all_of(columns.begin(), columns.end(),
                                        [table](const std::string& column) { return table->column(column); });
        };
        return hasAll(key.table, key.columns) && hasAll(key.referencedTable, key.referencedColumns);
    }

    void markColumn(int number) {
        const ForeignKey& key = contents_.keys[static_cast<std::size_t>(number)];
        if (key.columns.size() == 1)
            for (SourceColumn& column : contents_.tables[contents_.places.at(key.table)].columns)
                if (SameText(column.name, key.columns[0]))
                    column.key = number;
    }

    Catalogue& catalogue_;
    DatabaseContents contents_;
};

} // namespace

const SourceColumn* SourceTable::column(std::string_view columnName) const {
    const auto exact = std::find_if(columns.begin(), columns.end(),
                                    [&](const SourceColumn& column) { return column.name == columnName; });
    if (exact != columns.end())
        return &*exact;
    const auto found = std::find_if(columns.begin(), columns.end(), [&](const SourceColumn& column) {
        return SameText(column.name, columnName);
    });
    return found == columns.end() ? nullptr : &*found;
}

bool SourceTable::isInPrimaryKey(std::string_view columnName) const {
    return std::any_of(info.primaryKey.begin(), info.primaryKey.end(),
                       [&](const std::string& column) { return SameText(column, columnName); });
}

const SourceTable* DatabaseContents::table(const std::string& name) const {
    const auto found = places.find(name);
    return found == places.end() ? nullptr : &tables[found->second];
}

const ForeignKey* DatabaseContents::keyOf(const SourceColumn& column) const {
    return column.key < 0 ? nullptr : &keys[static_cast<std::size_t>(column.key)];
}

DatabaseContents readContents(Catalogue& catalogue, Engine engine) {
    return ContentsReader(catalogue, engine).read();
}

// A name with a schema is quoted already where it needs that.
std::string nameInStatement(Engine engine, const SourceTable& table) {
    const TableName parts = fromModelName(table.name);
    const bool isBare = parts.schema.empty() && parts.name == table.name;
    return isBare && needsQuotes(engine, table.name) ? quotedName(table.name) : table.name;
}

std::string nameInStatement(Engine engine, const SourceColumn& column) {
    return needsQuotes(engine, column.name) ? quotedName(column.name) : column.name;
}

} // namespace lumora
