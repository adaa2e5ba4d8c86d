// SQLite: the pragma functions, and types by the words that they were declared with.

#include "lumora/qtsql/catalogues.h"
#include "lumora/qtsql/databaseerror.h"
#include "lumora/qtsql/tablename.h"
#include "lumora/support/string_helpers.h"

#include <algorithm>
#include <map>

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
        while (nextRow(query))
            columns.push_back(describe(textOf(query, 0), textOf(query, 1)));
        return columns;
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
                       u"select name, type from pragma_table_xinfo(?, ?) where hidden <> 1 order by cid"_s,
                       bind(table));
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
