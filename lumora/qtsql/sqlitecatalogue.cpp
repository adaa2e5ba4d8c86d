// SQLite: the pragma functions, and types by the words that they were declared with.

#include "lumora/qtsql/catalogues.h"
#include "lumora/qtsql/checkchoices.h"
#include "lumora/qtsql/databaseerror.h"
#include "lumora/qtsql/tablename.h"
#include "lumora/support/string_helpers.h"

#include <algorithm>
#include <map>
#include <set>

namespace lumora {

namespace {

using namespace Qt::StringLiterals;

// "DECIMAL(10,2)": the words in lower case, and the numbers between the parentheses.
struct DeclaredType {
    explicit DeclaredType(std::string_view text) {
        const std::size_t open = std::min(text.find('('), text.size());
        words = LowerAscii(Trim(text.substr(0, open)));
        if (open == text.size())
            return;
        int* const numbers[] = {&precision, &scale};
        std::size_t i = 0;
        for (const std::string_view number : SplitText(text.substr(open + 1), ','))
            if (i < 2)
                *numbers[i++] = XStrToInt(Trim(number.substr(0, number.find(')'))));
    }
    bool has(std::string_view word) const { return words.find(word) != std::string::npos; }

    std::string words;
    int precision = 0;
    int scale = 0;
};

struct DeclaredName {
    std::string_view part;
    TFieldType type;
};

// The first part that occurs decides. "int" and everything behind it follow the rules by which SQLite finds a
// column's affinity.
constexpr DeclaredName declaredNames[] = {
    {"bool", ftBoolean},      {"timestamp", ftDateTime}, {"datetime", ftDateTime}, {"date", ftDate},
    {"time", ftTime},         {"money", ftCurrency},     {"currency", ftCurrency}, {"uuid", ftGuid},
    {"guid", ftGuid},         {"uniqueid", ftGuid},      {"json", ftString},       {"tinyint", ftSmallint},
    {"smallint", ftSmallint}, {"int2", ftSmallint},      {"bigint", ftLargeint},   {"int8", ftLargeint},
    {"big int", ftLargeint},  {"point", ftUnknown},      {"int", ftInteger},       {"nchar", ftFixedChar},
    {"varchar", ftString},    {"char", ftFixedChar},     {"clob", ftString},       {"text", ftString},
    {"string", ftString},     {"binary", ftBlob},        {"blob", ftBlob},         {"image", ftBlob},
    {"real", ftFloat},        {"floa", ftFloat},         {"doub", ftFloat},
};

TFieldType typeOf(const DeclaredType& declared) {
    if (declared.has("varying"))
        return ftString;
    for (const DeclaredName& name : declaredNames)
        if (declared.has(name.part))
            return name.type;
    if (declared.has("num") || declared.has("dec"))
        return numericType(declared.precision, declared.scale);
    return ftUnknown;
}

ColumnInfo describe(std::string name, std::string_view declaration) {
    const DeclaredType declared(declaration);
    ColumnInfo column;
    column.name = std::move(name);
    column.hasType = !declared.words.empty();
    column.type = typeOf(declared);
    switch (column.type) {
    case ftString:
    case ftFixedChar:
        column.size = declared.precision;
        break;
    case ftUnknown:
        break;
    case ftBlob:
        column.comparison = Comparison::None;
        break;
    case ftBCD:
        column.size = declared.scale;
        column.comparison = Comparison::Value;
        break;
    default:
        column.comparison = Comparison::Value;
    }
    return column;
}

class SqliteCatalogue : public Catalogue {
public:
    explicit SqliteCatalogue(const QSqlDatabase& database) : database_(database) {}

    std::vector<std::string> tables(bool systemTables) override {
        QSqlQuery query = execute(database_, u"select schema, name, type from pragma_table_list "
                                             "where type <> 'shadow' and schema <> 'temp' "
                                             "order by schema <> 'main', schema, name collate nocase"_s);
        std::vector<std::string> names;
        while (nextRow(query)) {
            TableName table = {textOf(query, 0), textOf(query, 1)};
            if (table.name.starts_with("sqlite_") && !systemTables)
                continue;
            if (textOf(query, 2) == "view" && !isReadable(table))
                continue;
            if (table.schema == "main")
                table.schema.clear();
            names.push_back(toModelName(Engine::Sqlite, table));
        }
        return names;
    }

    std::vector<ColumnInfo> columns(const std::string& table) override {
        const TableName name = fromModelName(table);
        std::vector<ColumnInfo> columns;
        if (!hasSchema(name.schema))
            return columns;
        QSqlQuery query = columnQuery(name);
        while (nextRow(query)) {
            columns.push_back(describe(textOf(query, 0), textOf(query, 1)));
            columns.back().nullable = !query.value(2).toBool();
        }
        if (const std::string rowID = rowIDOf(name); !rowID.empty())
            for (ColumnInfo& column : columns)
                column.nullable = column.nullable && column.name != rowID;
        addChoices(name, columns);
        return columns;
    }

    TableInfo tableInfo(const std::string& table) override {
        const TableName name = fromModelName(table);
        TableInfo info;
        if (!hasSchema(name.schema))
            return info;
        info.kind = isView(name) ? TableKind::View : TableKind::Table;
        info.primaryKey = primaryKeyOf(name);
        if (info.kind == TableKind::View)
            return info;
        info.rowCount = spanOfRows(name);
        std::set<std::string> required;
        for (const ColumnInfo& column : columns(table))
            if (!column.nullable)
                required.insert(column.name);
        addKey(info, info.primaryKey, required);
        readIndexes(name, info, required);
        return info;
    }

    // A key refers to a table of its own schema, spelled in any case. Keys are listed last one first.
    std::vector<ForeignKey> foreignKeys() override {
        const std::vector<std::string> names = tables(false);
        std::map<std::string, std::string> modelNames; // by schema and name in lower case
        for (const std::string& name : names)
            modelNames[keyOf(fromModelName(name))] = name;
        std::vector<ForeignKey> keys;
        for (const std::string& name : names)
            addForeignKeys(keys, name, modelNames);
        return keys;
    }

private:
    static std::string keyOf(const TableName& table) {
        return LowerAscii(table.schema) + '\n' + LowerAscii(table.name);
    }

    static QVariantList bind(const TableName& table) {
        return {QString::fromStdString(table.name),
                table.schema.empty() ? u"main"_s : QString::fromStdString(table.schema)};
    }

    bool hasSchema(const std::string& name) const {
        QSqlQuery query =
            execute(database_, u"select 1 from pragma_database_list where name = ? collate nocase"_s,
                    {name.empty() ? u"main"_s : QString::fromStdString(name)});
        return nextRow(query);
    }

    QSqlQuery columnQuery(const TableName& table) const {
        return execute(database_,
                       u"select name, type, \"notnull\" from pragma_table_xinfo(?, ?)"
                       " where hidden <> 1 order by cid"_s,
                       bind(table));
    }

    static QString sqlOf(const TableName& table) {
        return QString::fromStdString(quotedName(table.schema.empty() ? "main" : table.schema) + '.' +
                                      quotedName(table.name));
    }

    bool isView(const TableName& table) const {
        QSqlQuery query = execute(
            database_, u"select type from pragma_table_list where name = ? collate nocase and schema = ?"_s,
            bind(table));
        return nextRow(query) && textOf(query, 0) == "view";
    }

    // The column that is the row's number, which is never null; empty when there is none.
    std::string rowIDOf(const TableName& table) const {
        QSqlQuery query = execute(database_,
                                  u"select name, type, (select wr from pragma_table_list"
                                  "  where name = ? collate nocase and schema = ?)"
                                  " from pragma_table_info(?, ?) where pk > 0"_s,
                                  bind(table) + bind(table));
        std::string name;
        for (int columns = 0; nextRow(query); ++columns)
            name = columns == 0 && LowerAscii(textOf(query, 1)) == "integer" && !query.value(2).toBool()
                       ? textOf(query, 0)
                       : std::string();
        return name;
    }

    // At most as many rows as that are there; -1 for a table without row numbers.
    std::int64_t spanOfRows(const TableName& table) const {
        try {
            QSqlQuery query = execute(database_, u"select (select max(rowid) from %1) -"
                                                 " (select min(rowid) from %1) + 1"_s.arg(sqlOf(table)));
            return nextRow(query) ? query.value(0).toLongLong() : -1; // null of an empty one is 0
        } catch (const DatabaseError&) {
            return -1;
        }
    }

    static void addKey(TableInfo& info, const std::vector<std::string>& columns,
                       const std::set<std::string>& required) {
        if (!columns.empty() && std::all_of(columns.begin(), columns.end(), [&](const std::string& column) {
                return required.count(column) > 0;
            }))
            info.uniqueKeys.push_back(columns);
    }

    // An index over expressions has columns without a name, a partial one not every row.
    void readIndexes(const TableName& table, TableInfo& info, const std::set<std::string>& required) const {
        if (const std::string rowID = rowIDOf(table); !rowID.empty())
            info.indexedColumns.push_back(rowID);
        QSqlQuery query =
            execute(database_,
                    u"select i.name, i.\"unique\", c.seqno, c.name from pragma_index_list(?, ?) i,"
                    " pragma_index_info(i.name, ?) c where i.partial = 0 and i.origin <> 'pk'"
                    " order by i.seq, c.seqno"_s,
                    bind(table) + QVariantList{bind(table).back()});
        std::vector<std::string> columns;
        bool isUnique = false;
        while (nextRow(query)) {
            if (query.value(2).toInt() == 0) {
                addKey(info, isUnique ? columns : std::vector<std::string>(), required);
                columns.clear();
                isUnique = query.value(1).toBool();
                info.indexedColumns.push_back(textOf(query, 3));
            }
            columns.push_back(textOf(query, 3));
        }
        addKey(info, isUnique ? columns : std::vector<std::string>(), required);
        if (!info.primaryKey.empty())
            info.indexedColumns.push_back(info.primaryKey.front());
    }

    void addChoices(const TableName& table, std::vector<ColumnInfo>& columns) const {
        QSqlQuery query = execute(
            database_,
            u"select sql from %1.sqlite_master where type = 'table' and name = ? collate nocase"_s.arg(
                QString::fromStdString(quotedName(table.schema.empty() ? "main" : table.schema))),
            {QString::fromStdString(table.name)});
        const std::string definition = nextRow(query) ? textOf(query, 0) : std::string();
        for (const std::string_view check : checksOf(definition))
            takeChoices(columns, choicesOfCheck(check));
    }

    // A view outlives the tables that it reads.
    bool isReadable(const TableName& view) const {
        try {
            QSqlQuery query = columnQuery(view);
            return nextRow(query);
        } catch (const DatabaseError&) {
            return false;
        }
    }

    void addForeignKeys(std::vector<ForeignKey>& keys, const std::string& name,
                        const std::map<std::string, std::string>& modelNames) const {
        const TableName table = fromModelName(name);
        QSqlQuery query = execute(database_,
                                  u"select id, seq, \"table\", \"from\", \"to\" "
                                  "from pragma_foreign_key_list(?, ?) order by id desc, seq"_s,
                                  bind(table));
        std::vector<std::string> primaryKey;
        while (nextRow(query)) {
            const TableName referenced = {table.schema, textOf(query, 2)};
            const auto found = modelNames.find(keyOf(referenced));
            if (found == modelNames.end())
                continue;
            const int position = query.value(1).toInt();
            std::string referencedColumn = textOf(query, 4);
            if (query.value(4).isNull()) { // the primary key is meant
                if (position == 0)
                    primaryKey = primaryKeyOf(referenced);
                if (position >= static_cast<int>(primaryKey.size()))
                    continue;
                referencedColumn = primaryKey[static_cast<std::size_t>(position)];
            }
            addKeyColumn(keys, position == 0, name, found->second, textOf(query, 3), referencedColumn);
        }
    }

    std::vector<std::string> primaryKeyOf(const TableName& table) const {
        QSqlQuery query = execute(
            database_, u"select name from pragma_table_info(?, ?) where pk > 0 order by pk"_s, bind(table));
        std::vector<std::string> columns;
        while (nextRow(query))
            columns.push_back(textOf(query, 0));
        return columns;
    }

    const QSqlDatabase database_;
};

} // namespace

std::unique_ptr<Catalogue> openSqliteCatalogue(const QSqlDatabase& database) {
    return std::make_unique<SqliteCatalogue>(database);
}

} // namespace lumora
