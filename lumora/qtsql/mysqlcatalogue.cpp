// MySQL and MariaDB: the information schema.

#include "lumora/platform/ascii.h"
#include "lumora/qtsql/catalogues.h"
#include "lumora/qtsql/checkchoices.h"
#include "lumora/qtsql/databaseerror.h"
#include "lumora/qtsql/tablename.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <unordered_set>

namespace lumora {

namespace {

using namespace Qt::StringLiterals;

struct MySqlType {
    std::string_view name;
    TFieldType type;
    Comparison comparison;
};

constexpr MySqlType mySqlTypes[] = {
    {"tinyint", ftSmallint, Comparison::Value},  {"smallint", ftSmallint, Comparison::Value},
    {"mediumint", ftInteger, Comparison::Value}, {"int", ftInteger, Comparison::Value},
    {"bigint", ftLargeint, Comparison::Value},   {"year", ftSmallint, Comparison::Value},
    {"bit", ftLargeint, Comparison::Value},      {"decimal", ftBCD, Comparison::Value},
    {"float", ftFloat, Comparison::Value},       {"double", ftFloat, Comparison::Value},
    {"date", ftDate, Comparison::Value},         {"time", ftTime, Comparison::Value},
    {"datetime", ftDateTime, Comparison::Value}, {"timestamp", ftDateTime, Comparison::Value},
    {"char", ftFixedChar, Comparison::Text},     {"varchar", ftString, Comparison::Text},
    {"tinytext", ftString, Comparison::Text},    {"text", ftString, Comparison::Text},
    {"mediumtext", ftString, Comparison::Text},  {"longtext", ftString, Comparison::Text},
    {"enum", ftString, Comparison::Text},        {"set", ftString, Comparison::Text},
    {"uuid", ftGuid, Comparison::Value},         {"inet4", ftUnknown, Comparison::Value},
    {"inet6", ftUnknown, Comparison::Value},     {"binary", ftBlob, Comparison::None},
    {"varbinary", ftBlob, Comparison::None},     {"tinyblob", ftBlob, Comparison::None},
    {"blob", ftBlob, Comparison::None},          {"mediumblob", ftBlob, Comparison::None},
    {"longblob", ftBlob, Comparison::None},
};

// What the information schema says of a column.
struct MySqlColumn {
    std::string name;
    std::string typeName;    // "int"
    std::string declaration; // "int(10) unsigned", "enum('a','b')"
    int length = 0;
    int precision = 0;
    int scale = 0;
    bool nullable = true;
};

// The values of "enum('a','it''s')".
std::vector<std::string> choicesOf(std::string_view declaration) {
    std::vector<std::string> choices;
    std::size_t at = declaration.find('\'');
    while (at < declaration.size()) {
        std::string& choice = choices.emplace_back();
        for (++at; at < declaration.size(); ++at) {
            if (declaration[at] == '\'' && (at + 1 == declaration.size() || declaration[++at] != '\''))
                break;
            choice += declaration[at];
        }
        at = declaration.find('\'', at);
    }
    return choices;
}

TFieldType unsignedType(TFieldType type, std::string_view name) {
    if (type == ftSmallint && name == "smallint")
        return ftWord;
    return name == "int" ? ftLargeint : name == "bigint" ? ftBCD : type;
}

ColumnInfo describe(const MySqlColumn& from) {
    ColumnInfo column;
    column.name = from.name;
    column.nullable = from.nullable;
    column.comparison = Comparison::None; // json, points and other shapes
    for (const MySqlType& known : mySqlTypes)
        if (known.name == from.typeName) {
            column.type = known.type;
            column.comparison = known.comparison;
        }
    if (from.declaration.starts_with("tinyint(1)") || from.declaration == "bit(1)")
        column.type = ftBoolean;
    else if (from.declaration.find(" unsigned") != std::string::npos)
        column.type = unsignedType(column.type, from.typeName);
    if (from.typeName == "decimal")
        column.type = numericType(from.precision, from.scale);
    if (column.type == ftBCD)
        column.size = from.scale;
    if (from.typeName == "char" || from.typeName == "varchar")
        column.size = from.length;
    if (from.typeName == "float") // of single precision
        column.size = 4;
    if (from.typeName == "enum")
        column.choices = choicesOf(from.declaration);
    return column;
}

// In the schema that is named, or in the one that the connection is for. Names may differ in case alone, and
// the information schema does not mind case.
const QString ofTable = u" where table_schema = coalesce(nullif(?, ''), database()) and table_name = ?"
                        " and cast(table_name as binary) = cast(? as binary)"_s;

QVariantList bind(const TableName& table) {
    const QString name = QString::fromStdString(table.name);
    return {QString::fromStdString(table.schema), name, name};
}

class MySqlCatalogue : public Catalogue {
public:
    explicit MySqlCatalogue(const QSqlDatabase& database) : database_(database) {}

    // Models do not tell names apart by their case, so the second table of a name is called by its schema
    // too.
    std::vector<std::string> tables(bool systemTables) override {
        QSqlQuery query =
            execute(database_,
                    u"select t.table_schema, t.table_name, t.table_schema = database()"
                    " from information_schema.tables t where (t.table_schema = database() or ?)"
                    " and t.table_type <> 'SEQUENCE' and (t.table_type <> 'VIEW' or exists (select 1"
                    "  from information_schema.columns c where c.table_schema = t.table_schema"
                    "  and c.table_name = t.table_name)) order by 3 desc, 1, lower(t.table_name),"
                    " cast(t.table_name as binary) <> cast(lower(t.table_name) as binary), 2"_s,
                    {systemTables});
        std::vector<std::string> names;
        std::unordered_set<std::string> taken;
        while (nextRow(query)) {
            TableName table = {textOf(query, 0), textOf(query, 1)};
            if (query.value(2).toBool() && taken.insert(LowerAscii(table.name)).second)
                table.schema.clear();
            names.push_back(toModelName(Engine::MySql, table));
        }
        return names;
    }

    std::vector<ColumnInfo> columns(const std::string& table) override {
        QSqlQuery query = execute(database_,
                                  u"select column_name, data_type, column_type, character_maximum_length,"
                                  " numeric_precision, numeric_scale, is_nullable"
                                  " from information_schema.columns"_s +
                                      ofTable + u" order by ordinal_position"_s,
                                  bind(fromModelName(table)));
        std::vector<ColumnInfo> columns;
        while (nextRow(query))
            columns.push_back(
                describe({textOf(query, 0), textOf(query, 1), textOf(query, 2), query.value(3).toInt(),
                          query.value(4).toInt(), query.value(5).toInt(), textOf(query, 6) == "YES"}));
        addChoices(fromModelName(table), columns);
        return columns;
    }

    TableInfo tableInfo(const std::string& table) override {
        const TableName name = fromModelName(table);
        TableInfo info;
        QSqlQuery query =
            execute(database_, u"select table_type, table_rows from information_schema.tables"_s + ofTable,
                    bind(name));
        if (nextRow(query)) {
            info.kind = textOf(query, 0).ends_with("VIEW") ? TableKind::View : TableKind::Table;
            if (info.kind == TableKind::Table && !query.value(1).isNull())
                info.rowCount = query.value(1).toLongLong();
        }
        for (const Index& index : indexes(name))
            addIndex(info, index);
        return info;
    }

    std::vector<ForeignKey> foreignKeys() override {
        std::map<std::string, std::string> modelNames; // by the name in the connection's own schema
        const std::vector<std::string> names = tables(false);
        for (const std::string& name : names)
            modelNames[fromModelName(name).name] = name;
        std::map<std::string, std::vector<ForeignKey>> keysOf = readForeignKeys(modelNames);
        std::vector<ForeignKey> keys;
        for (const std::string& name : names) {
            std::vector<ForeignKey>& keysHere = keysOf[name];
            if (keysHere.size() > 1)
                sortByColumns(keysHere, columns(name));
            std::move(keysHere.begin(), keysHere.end(), std::back_inserter(keys));
        }
        return keys;
    }

private:
    // MySQL's schema does not tell which table a check belongs to.
    void addChoices(const TableName& table, std::vector<ColumnInfo>& columns) const {
        try {
            QSqlQuery query =
                execute(database_,
                        u"select check_clause from information_schema.check_constraints"
                        " where constraint_schema = coalesce(nullif(?, ''), database())"
                        " and table_name = ? and cast(table_name as binary) = cast(? as binary)"_s,
                        bind(table));
            while (nextRow(query)) // quotes in texts stand behind a backslash there
                takeChoices(columns, choicesOfCheck(
                                         query.value(0).toString().replace(u"\\'"_s, u"''"_s).toStdString()));
        } catch (const DatabaseError&) {
            return;
        }
    }

    struct Index {
        std::string name;
        bool isUnique = false;
        std::vector<std::string> columns;
    };

    static void addIndex(TableInfo& info, const Index& index) {
        if (index.name == "PRIMARY")
            info.primaryKey = index.columns;
        if (index.isUnique)
            info.uniqueKeys.push_back(index.columns);
        info.indexedColumns.push_back(index.columns.front());
    }

    // Those that are sorted by whole columns. A column that may be null makes no row unlike all others.
    std::vector<Index> indexes(const TableName& table) const {
        QSqlQuery query = execute(database_,
                                  u"select index_name, non_unique = 0, column_name, nullable = 'YES'"
                                  " from information_schema.statistics"_s +
                                      ofTable +
                                      u" and index_type = 'BTREE' and index_name not in (select index_name"
                                      " from information_schema.statistics"_s +
                                      ofTable +
                                      u" and (sub_part is not null or column_name is null))"
                                      " order by index_name <> 'PRIMARY', index_name, seq_in_index"_s,
                                  bind(table) + bind(table));
        std::vector<Index> indexes;
        while (nextRow(query)) {
            const std::string name = textOf(query, 0);
            if (indexes.empty() || indexes.back().name != name)
                indexes.push_back({name, query.value(1).toBool(), {}});
            indexes.back().columns.push_back(textOf(query, 2));
            indexes.back().isUnique = indexes.back().isUnique && !query.value(3).toBool();
        }
        return indexes;
    }

    // The schema knows keys by their names alone; people who made them wrote them column by column.
    static void sortByColumns(std::vector<ForeignKey>& keys, const std::vector<ColumnInfo>& columns) {
        const auto position = [&](const ForeignKey& key) {
            return std::find_if(columns.begin(), columns.end(),
                                [&](const ColumnInfo& column) { return column.name == key.columns.front(); });
        };
        std::stable_sort(keys.begin(), keys.end(),
                         [&](const ForeignKey& a, const ForeignKey& b) { return position(a) < position(b); });
    }

    // By the name of the table in the model.
    std::map<std::string, std::vector<ForeignKey>>
    readForeignKeys(const std::map<std::string, std::string>& modelNames) const {
        QSqlQuery query =
            execute(database_, u"select table_name, referenced_table_name, ordinal_position = 1, column_name,"
                               " referenced_column_name from information_schema.key_column_usage"
                               " where table_schema = database() and referenced_table_schema = database()"
                               " order by cast(table_name as binary), constraint_name, ordinal_position"_s);
        std::map<std::string, std::vector<ForeignKey>> keysOf;
        while (nextRow(query)) {
            const auto table = modelNames.find(textOf(query, 0));
            const auto referenced = modelNames.find(textOf(query, 1));
            if (table != modelNames.end() && referenced != modelNames.end())
                addKeyColumn(keysOf[table->second], query.value(2).toBool(), table->second,
                             referenced->second, textOf(query, 3), textOf(query, 4));
        }
        return keysOf;
    }

    const QSqlDatabase database_;
};

} // namespace

std::unique_ptr<Catalogue> openMySqlCatalogue(const QSqlDatabase& database) {
    return std::make_unique<MySqlCatalogue>(database);
}

} // namespace lumora
