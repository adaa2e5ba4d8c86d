// PostgreSQL: the tables of its system catalogue.

#include "lumora/qtsql/catalogues.h"
#include "lumora/qtsql/checkchoices.h"
#include "lumora/qtsql/tablename.h"
#include "lumora/support/string_helpers.h"

#include <algorithm>
#include <map>
#include <unordered_set>

namespace lumora {

namespace {

using namespace Qt::StringLiterals;

struct KnownType {
    std::string_view name;
    TFieldType type;
};

constexpr KnownType knownTypes[] = {
    {"int2", ftSmallint},
    {"int4", ftInteger},
    {"int8", ftLargeint},
    {"oid", ftLargeint},
    {"float4", ftFloat},
    {"float8", ftFloat},
    {"money", ftCurrency},
    {"bool", ftBoolean},
    {"date", ftDate},
    {"time", ftTime},
    {"timetz", ftTime},
    {"timestamp", ftDateTime},
    {"timestamptz", ftDateTime},
    {"bytea", ftBlob},
    {"uuid", ftGuid},
    {"bpchar", ftFixedChar},
    {"varchar", ftString},
    {"text", ftString},
    {"name", ftString},
    {"citext", ftString},
};

// What the catalogue says of a column, domains resolved.
struct CatalogueColumn {
    std::string name;
    std::string typeName;
    std::string category; // one letter; "S" are texts, "A" arrays
    int modifier = -1;
    bool isOrdered = false; // the type has an order of its own
    bool isRequired = false;
    std::string labels; // of an enumeration, each with "\001" behind it
    std::string checks; // that concern the column alone, likewise
};

std::vector<std::string> choicesOf(const CatalogueColumn& from) {
    std::vector<std::string> choices;
    for (const std::string_view label : SplitText(from.labels, '\001'))
        if (!label.empty())
            choices.emplace_back(label);
    for (const std::string_view check : SplitText(from.checks, '\001'))
        if (choices.empty())
            choices = choicesOfCheck(check.substr(std::min(check.find('('), check.size()))).choices;
    return choices;
}

// The modifier holds the length in characters and 4, or a numeric type's precision and scale.
ColumnInfo describe(const CatalogueColumn& from) {
    ColumnInfo column;
    column.name = from.name;
    column.comparison = from.category == "S" ? Comparison::Text
                        : from.isOrdered     ? Comparison::Value
                                             : Comparison::None;
    column.nullable = !from.isRequired;
    column.choices = choicesOf(from);
    const int length = from.modifier < 4 ? 0 : from.modifier - 4;
    if (from.typeName == "numeric") {
        const int precision = length >> 16 & 0xffff;
        column.size = ((length & 0x7ff) ^ 0x400) - 0x400; // 11 bits with a sign
        column.type = numericType(precision, column.size);
        column.size = column.type == ftBCD ? column.size : 0;
        return column;
    }
    for (const KnownType& known : knownTypes)
        if (known.name == from.typeName)
            column.type = known.type;
    if (from.typeName == "float4")
        column.size = 4; // single precision: compared as that
    if (column.type == ftBlob)
        column.comparison = Comparison::None;
    if (column.type == ftString || column.type == ftFixedChar)
        column.size = length;
    return column;
}

class PostgresCatalogue : public Catalogue {
public:
    explicit PostgresCatalogue(const QSqlDatabase& database) : database_(database) {}

    std::vector<std::string> tables(bool systemTables) override {
        std::vector<std::string> names;
        for (Relation& relation : relations(systemTables))
            names.push_back(std::move(relation.modelName));
        return names;
    }

    std::vector<ColumnInfo> columns(const std::string& table) override {
        const TableName name = fromModelName(table);
        const QString schema = QString::fromStdString(name.schema);
        QSqlQuery query = execute(
            database_,
            u"with recursive found as ("
            " select c.oid from pg_class c join pg_namespace n on n.oid = c.relnamespace"
            " where c.relname = ? and c.relkind in ('r', 'v', 'm', 'f', 'p')"
            " and case when ? = '' then pg_table_is_visible(c.oid) else n.nspname = ? end"
            "), col as ("
            " select a.attnum, a.attname, a.atttypid as type, a.atttypmod as modifier,"
            "  a.attnotnull as required, (select string_agg(pg_get_constraintdef(k.oid), chr(1) order by "
            "k.oid)"
            "   from pg_constraint k where k.conrelid = a.attrelid and k.contype = 'c'"
            "   and k.conkey = array[a.attnum]) as checks"
            " from pg_attribute a join found on a.attrelid = found.oid"
            " where a.attnum > 0 and not a.attisdropped"
            " union all"
            " select col.attnum, col.attname, t.typbasetype, greatest(t.typtypmod, col.modifier),"
            "  col.required or t.typnotnull, coalesce(col.checks,"
            "   (select string_agg(pg_get_constraintdef(k.oid), chr(1) order by k.oid)"
            "    from pg_constraint k where k.contypid = t.oid and k.contype = 'c'))"
            " from col join pg_type t on t.oid = col.type where t.typtype = 'd'"
            ") select col.attname, t.typname, t.typcategory, col.modifier,"
            " t.typtype = 'e' or exists (select from pg_opclass o join pg_am m on m.oid = o.opcmethod"
            "  where m.amname = 'btree' and o.opcdefault and o.opcintype = t.oid), col.required,"
            " (select string_agg(e.enumlabel, chr(1) order by e.enumsortorder) from pg_enum e"
            "  where e.enumtypid = t.oid), col.checks"
            " from col join pg_type t on t.oid = col.type where t.typtype <> 'd' order by col.attnum"_s,
            {QString::fromStdString(name.name), schema, schema});
        std::vector<ColumnInfo> columns;
        while (nextRow(query))
            columns.push_back(describe({textOf(query, 0), textOf(query, 1), textOf(query, 2),
                                        query.value(3).toInt(), query.value(4).toBool(),
                                        query.value(5).toBool(), textOf(query, 6), textOf(query, 7)}));
        return columns;
    }

    TableInfo tableInfo(const std::string& table) override {
        TableInfo info;
        const std::string number = numberOf(table);
        if (number.empty())
            return info;
        QSqlQuery query = execute(database_, u"select relkind in ('v', 'm'), reltuples::bigint,"
                                             " relkind in ('r', 'm', 'p') from pg_class where oid = %1"_s.arg(
                                                 QString::fromStdString(number)));
        if (!nextRow(query))
            return info;
        info.kind = query.value(0).toBool() ? TableKind::View : TableKind::Table;
        info.rowCount = query.value(2).toBool() ? query.value(1).toLongLong() : -1;
        readIndexes(number, info);
        return info;
    }

    std::vector<ForeignKey> foreignKeys() override {
        std::map<qlonglong, std::string> modelNames; // by the number of the relation
        std::vector<qlonglong> order;
        for (Relation& relation : relations(false)) {
            order.push_back(relation.number);
            modelNames[relation.number] = std::move(relation.modelName);
        }
        std::map<qlonglong, std::vector<ForeignKey>> keysOf;
        readForeignKeys(modelNames, keysOf);
        std::vector<ForeignKey> keys;
        for (const qlonglong number : order)
            for (ForeignKey& key : keysOf[number])
                keys.push_back(std::move(key));
        return keys;
    }

private:
    // The number of a relation; empty when there is none of the name.
    std::string numberOf(const std::string& table) const {
        const TableName name = fromModelName(table);
        const QString schema = QString::fromStdString(name.schema);
        QSqlQuery query =
            execute(database_,
                    u"select c.oid::bigint from pg_class c join pg_namespace n on n.oid = c.relnamespace"
                    " where c.relname = ? and c.relkind in ('r', 'v', 'm', 'f', 'p')"
                    " and case when ? = '' then pg_table_is_visible(c.oid) else n.nspname = ? end"_s,
                    {QString::fromStdString(name.name), schema, schema});
        return nextRow(query) ? textOf(query, 0) : std::string();
    }

    // An index over expressions has columns without a number, a partial one not every row.
    void readIndexes(const std::string& number, TableInfo& info) const {
        QSqlQuery query = execute(
            database_,
            u"select i.indisprimary, i.indisunique, k.position = 1, a.attname,"
            " (select bool_and(c.attnotnull) from pg_attribute c"
            "  where c.attrelid = i.indrelid and c.attnum = any (i.indkey))"
            " from pg_index i cross join lateral unnest(i.indkey::int2[]) with ordinality as k(col, position)"
            " join pg_attribute a on a.attrelid = i.indrelid and a.attnum = k.col"
            " where i.indrelid = %1 and i.indisvalid and i.indpred is null and i.indexprs is null"
            " and k.position <= i.indnkeyatts"
            " order by not i.indisprimary, i.indexrelid, k.position"_s.arg(QString::fromStdString(number)));
        bool isKey = false;
        while (nextRow(query)) {
            const std::string column = textOf(query, 3);
            if (query.value(2).toBool()) {
                isKey = query.value(1).toBool() && query.value(4).toBool();
                if (isKey)
                    info.uniqueKeys.emplace_back();
                info.indexedColumns.push_back(column);
            }
            if (query.value(0).toBool())
                info.primaryKey.push_back(column);
            if (isKey)
                info.uniqueKeys.back().push_back(column);
        }
    }

    struct Relation {
        qlonglong number = 0;
        std::string modelName;
    };

    // Partitions stand in their table. Models do not tell names apart by their case, so the second table of a
    // name is called by its schema too.
    std::vector<Relation> relations(bool systemTables) const {
        QSqlQuery query =
            execute(database_,
                    u"select c.oid::bigint, n.nspname, c.relname, pg_table_is_visible(c.oid) as visible"
                    " from pg_class c join pg_namespace n on n.oid = c.relnamespace"
                    " where c.relkind in ('r', 'v', 'm', 'f', 'p') and not c.relispartition"
                    " and (n.nspname !~ '^pg_' and n.nspname <> 'information_schema' or ?)"
                    " and has_schema_privilege(n.oid, 'usage') and has_any_column_privilege(c.oid, 'select')"
                    " order by 4 desc, 2, lower(c.relname), c.relname <> lower(c.relname), 3"_s,
                    {systemTables});
        std::vector<Relation> relations;
        std::unordered_set<std::string> taken;
        while (nextRow(query)) {
            TableName table = {textOf(query, 1), textOf(query, 2)};
            if (query.value(3).toBool() && taken.insert(LowerAscii(table.name)).second)
                table.schema.clear();
            relations.push_back({query.value(0).toLongLong(), toModelName(Engine::PostgreSql, table)});
        }
        return relations;
    }

    void readForeignKeys(const std::map<qlonglong, std::string>& modelNames,
                         std::map<qlonglong, std::vector<ForeignKey>>& keysOf) const {
        QSqlQuery query = execute(
            database_,
            u"select con.conrelid::bigint, con.confrelid::bigint, k.position = 1, a.attname, r.attname"
            " from pg_constraint con"
            " cross join lateral unnest(con.conkey, con.confkey) with ordinality as k(col, ref, position)"
            " join pg_attribute a on a.attrelid = con.conrelid and a.attnum = k.col"
            " join pg_attribute r on r.attrelid = con.confrelid and r.attnum = k.ref"
            " where con.contype = 'f' and con.conparentid = 0 order by con.oid, k.position"_s);
        while (nextRow(query)) {
            const auto table = modelNames.find(query.value(0).toLongLong());
            const auto referenced = modelNames.find(query.value(1).toLongLong());
            if (table != modelNames.end() && referenced != modelNames.end())
                addKeyColumn(keysOf[table->first], query.value(2).toBool(), table->second, referenced->second,
                             textOf(query, 3), textOf(query, 4));
        }
    }

    const QSqlDatabase database_;
};

} // namespace

std::unique_ptr<Catalogue> openPostgresCatalogue(const QSqlDatabase& database) {
    return std::make_unique<PostgresCatalogue>(database);
}

} // namespace lumora
