// What MariaDB's catalogue tells, and a model that is filled from it.
#include "lumora/lumora.h"
#include "lumora/qtsql/catalogues.h"
#include "lumora/qtsql/databaseerror.h"
#include "lumora/qtsql/modelfiller.h"
#include "lumora/qtsql/queryrunner.h"
#include "tests/test_application.h"
#include "tests/test_engines.h"

#include <map>

using namespace lumora;
using namespace lumora::tests;

namespace {

const char* const statements[] = {
    "drop database shop",
    "create database shop character set utf8mb4",
    "use shop",
    R"(create table kinds (flag tinyint(1) not null, bits bit(3), tiny tinyint, medium mediumint, whole decimal(7,0),
        big bigint unsigned, word smallint unsigned, number int unsigned, built year, exact decimal(20,4),
        single float, wide double, day date, at datetime(6), kept timestamp null, during time(3),
        mood enum('sad','it''s, glad') not null, marks set('a','b'), doc json, raw varbinary(10), spot point,
        code char(4), name varchar(40) collate utf8mb4_bin, notes longtext, uid uuid, addr inet6))",
    R"(insert into kinds values (1, b'101', 1, 1, 1, 18446744073709551615, 1, 1, 2024, 1.5, 14.4, 0.5, '2024-02-29',
        '2024-02-29 12:30:00.123456', '2024-02-29 12:30:00', '-100:00:00.5', 'sad', 'a,b', '{}', 'x', point(1, 1),
        'abcd', 'groß', 'x', 'a0eebc99-9c0b-4ef8-bb6d-6bb9bd380a11', '::1'))",
    R"(create table "Order" ("Group" integer primary key, "Größe" varchar(20) unique, "a""b" integer not null,
        "lines" integer, unique ("lines", "Group"), unique ("a""b"), key half ("Größe"(3))))",
    R"(create table trips (id integer primary key, "to" integer, "from" integer, boss integer,
        constraint z foreign key ("to") references "Order" ("Group"),
        constraint a foreign key ("from") references "Order" ("Group"), foreign key (boss) references trips (id)))",
    R"(create table rooms (house integer, no integer, primary key (house, no)))",
    R"(create table stays ("House" integer, no integer, foreign key ("House", no) references rooms (house, no)))",
    "create table \"Rooms\" (other integer)",
    "create table gone (x integer)",
    "create view broken as select x from gone",
    "drop table gone",
    "create view rich as select \"Group\", \"lines\" from \"Order\"",
    "insert into \"Order\" values (7, 'groß', 1, 70)",
    "insert into trips values (1, 7, 7, null)",
    "analyze table \"Order\"",
};

const char* nameOf(Comparison comparison) {
    return comparison == Comparison::Text ? "text" : comparison == Comparison::Value ? "value" : "none";
}

std::string join(const std::vector<std::string>& names) {
    std::string text;
    for (const std::string& name : names)
        text += (text.empty() ? "" : "|") + name;
    return text;
}

class MariaDbModel : public testing::Test {
protected:
    void SetUp() override {
        LUMORA_NEED_ENGINE(Engine::MySql);
        const DatabaseParameters parameters = parseDatabase(MariaDbServer::get()->url());
        const DatabaseConnection writing(parameters, DatabaseConnection::Access::ReadWrite);
        for (const char* const statement : statements)
            execute(writing.connection(), statement);
        session_.registerDatabase("shop", parameters);
    }
    QSqlDatabase shop() { return session_.open("shop").connection(); }

    const TestApplication application_;
    DatabaseSession session_;
};

} // namespace

TEST_F(MariaDbModel, ItsCatalogueTellsTypesKeysAndSizes) {
    const std::unique_ptr<Catalogue> catalogue = openCatalogue(shop());
    EXPECT_EQ(join(catalogue->tables(false)), "kinds|Order|rich|rooms|shop.Rooms|stays|trips");
    std::string columns;
    for (const ColumnInfo& column : catalogue->columns("kinds"))
        columns += column.name + " " + std::string(FldTypeToStr(column.type)) + " " +
                   std::to_string(column.size) + " " + nameOf(column.comparison) +
                   (column.nullable ? "" : " not null") +
                   (column.choices.empty() ? "" : " " + join(column.choices)) + "\n";
    EXPECT_EQ(columns, "flag ftBoolean 0 value not null\n"
                       "bits ftLargeint 0 value\n"
                       "tiny ftSmallint 0 value\n"
                       "medium ftInteger 0 value\n"
                       "whole ftInteger 0 value\n"
                       "big ftBCD 0 value\n"
                       "word ftWord 0 value\n"
                       "number ftLargeint 0 value\n"
                       "built ftSmallint 0 value\n"
                       "exact ftBCD 4 value\n"
                       "single ftFloat 4 value\n"
                       "wide ftFloat 0 value\n"
                       "day ftDate 0 value\n"
                       "at ftDateTime 0 value\n"
                       "kept ftDateTime 0 value\n"
                       "during ftTime 0 value\n"
                       "mood ftString 0 text not null sad|it's, glad\n"
                       "marks ftString 0 text\n"
                       "doc ftString 0 text\n"
                       "raw ftBlob 0 none\n"
                       "spot ftUnknown 0 none\n"
                       "code ftFixedChar 4 text\n"
                       "name ftString 40 text\n"
                       "notes ftString 0 text\n"
                       "uid ftGuid 0 value\n"
                       "addr ftUnknown 0 value\n");

    const TableInfo order = catalogue->tableInfo("Order");
    EXPECT_EQ(order.rowCount, 1);
    EXPECT_EQ(join(order.primaryKey) + ";" + join(order.indexedColumns), "Group;Group|a\"b|Größe|lines");
    ASSERT_EQ(order.uniqueKeys.size(), 2u)
        << "a key with a column that may be null tells no row from another";
    EXPECT_EQ(join(order.uniqueKeys[1]), "a\"b");
    EXPECT_TRUE(catalogue->tableInfo("rich").kind == TableKind::View);
    EXPECT_EQ(catalogue->tableInfo("rich").rowCount, -1);
    EXPECT_EQ(join({catalogue->columns("rooms")[0].name, catalogue->columns("shop.Rooms")[0].name}),
              "house|other");

    std::string keys;
    for (const ForeignKey& key : catalogue->foreignKeys())
        keys += key.table + "(" + join(key.columns) + ")" + key.referencedTable + "(" +
                join(key.referencedColumns) + ") ";
    EXPECT_EQ(
        keys,
        "stays(House|no)rooms(house|no) trips(to)Order(Group) trips(from)Order(Group) trips(boss)trips(id) ");
}

TEST_F(MariaDbModel, EveryFieldTakesEveryOperatorItOffers) {
    static const std::map<TFieldType, std::string> samples = {
        {ftString, "O'Hara"},   {ftFixedChar, "a"},   {ftGuid, "a0eebc99-9c0b-4ef8-bb6d-6bb9bd380a11"},
        {ftDate, "2024-02-29"}, {ftTime, "12:30:00"}, {ftDateTime, "2024-02-29 12:30:00"},
        {ftBoolean, "true"},    {ftUnknown, "::1"}};
    TVBDEInfo info;
    info.SetDatabaseName("shop");
    offerForeignKeys(info, session_);
    TVDBStructure model;
    fillModel(model, info, session_);
    TVQueryPanel panel;
    panel.SetDbStruct(&model);
    panel.SetStrict(true);
    panel.SetDialect(sdMySQL);
    panel.Activate();
    int queries = 0;
    for (int i = 0; i < model.GetFieldCount(); ++i) {
        TDSField& field = *model.GetField(i);
        for (TDSOperator* const op : field.GetOperators()) {
            panel.ClearAll();
            panel.GetQResult().GetResultFields().Add("@1", {&field}, field.GetDisplayName());
            TSimpleCond* const condition = panel.ManualAddCond(*panel.GetRootBracket(), &field, op, "");
            const auto sample = samples.find(field.GetFieldText() == "addr" ? ftUnknown : field.FieldType);
            for (int value = 1; value <= op->GetParamCount(); ++value)
                condition->SetValue(
                    value, op->ExprType == ftInteger || sample == samples.end() ? "1" : sample->second);
            if (op->ValueKind == vkSubQuery)
                condition->SetValue(1, "select " + field.GetSQLExpr({true}) + " from " +
                                           field.GetTable()->GetSQLExpr());
            panel.BuildQuery();
            const std::string sql = panel.GetQResult().GetSQL().GetText();
            try {
                runQuery(shop(), QString::fromStdString(sql), {},
                         {[](const QSqlRecord&) {}, [](const QList<QVariant>&) {}}, {-1, true, nullptr});
                ++queries;
            } catch (const DatabaseError& error) {
                ADD_FAILURE() << error.what() << "\n" << sql;
            }
        }
    }
    EXPECT_GT(queries, 400);
}
