// Databases behind ODBC are read and asked as through the driver of their own.
#include "lumora/qtsql/catalogues.h"
#include "lumora/qtsql/databaseconnection.h"
#include "lumora/qtsql/databaseerror.h"
#include "lumora/qtsql/queryrunner.h"
#include "tests/message_of.h"
#include "tests/test_application.h"
#include "tests/test_engines.h"

#include <gtest/gtest.h>

#include <QCoreApplication>

using namespace lumora;
using namespace lumora::tests;

namespace {

const char* const schema[] = {
    "create table countries (code char(2) primary key, name varchar(40) not null unique)",
    "create table people (id integer primary key, name varchar(20) not null, country char(2) not null"
    " references countries, boss integer references people (id), born date, seen timestamp, active boolean,"
    " pay numeric(10,2), rate double precision, size smallint, points bigint)",
    "create table trips (house integer, no integer, primary key (house, no))",
    "create table nights (house integer, no integer, n integer, foreign key (house, no) references trips "
    "(house, no))",
    "create view bosses as select name, pay from people where boss is null",
    "insert into countries values ('DE', 'Größe'), ('NO', 'Ærø')",
    "insert into people values (1, 'O''Hara', 'DE', null, '2024-02-29', '2024-02-29 12:30:01.25', '1', "
    "12.50, "
    "0.5, 1,"
    " 9007199254740993), (2, 'Ærlig', 'NO', 1, null, null, null, null, null, null, null)",
};

std::string show(const std::vector<std::string>& names) {
    std::string text;
    for (const std::string& name : names)
        text += name + ' ';
    return text;
}

// All that a catalogue tells.
std::string show(Catalogue& catalogue) {
    std::string text;
    for (const std::string& table : catalogue.tables(false)) {
        const TableInfo info = catalogue.tableInfo(table);
        text += table + (info.kind == TableKind::View ? " view" : " table") + " key " +
                show(info.primaryKey) + "\n";
        for (const std::vector<std::string>& key : info.uniqueKeys)
            text += " unique " + show(key) + "\n";
        for (const ColumnInfo& column : catalogue.columns(table))
            text += "  " + column.name + " " + std::to_string(column.type) + " " +
                    std::to_string(column.size) + (column.nullable ? " null" : "") + "\n";
    }
    for (const ForeignKey& key : catalogue.foreignKeys())
        text += key.table + " (" + show(key.columns) + ") to " + key.referencedTable + " (" +
                show(key.referencedColumns) + ")\n";
    return text;
}

class Odbc : public testing::TestWithParam<Engine> {
protected:
    void SetUp() override {
        LUMORA_NEED_ENGINE(GetParam());
        if (!QSqlDatabase::isDriverAvailable("QODBC") && !std::getenv("LUMORA_REQUIRE_ODBC"))
            GTEST_SKIP() << "Qt's driver for ODBC is not installed";
        const PrivateServer* const server = serverOf(GetParam());
        own_ = std::make_unique<DatabaseConnection>(
            parseDatabase(server ? server->url() : folder_ / "x.sqlite"), DatabaseConnection::Access::Create);
        for (const char* const statement : schema)
            execute(own_->connection(), statement);
        parameters_ = parseDatabase("odbc:" + source());
        odbc_ = std::make_unique<DatabaseConnection>(parameters_);
    }
    void TearDown() override {
        odbc_.reset();
        for (const char* const name :
             {"view bosses", "table nights", "table trips", "table people", "table countries"})
            if (own_)
                execute(own_->connection(), QString("drop %1").arg(name));
    }

    std::string source() const {
        if (GetParam() == Engine::Sqlite)
            return "Driver=SQLite3;Database=" + folder_ / "x.sqlite";
        const PrivateServer& server = *serverOf(GetParam());
        return "Driver=PostgreSQL Unicode;Server=" + server.host() +
               ";Port=" + std::to_string(server.port()) + ";Database=" + server.database() +
               ";UID=" + server.user() + ";PWD={" + server.password() + "}";
    }

    static std::string rowsOf(const DatabaseConnection& connection, const QString& sql,
                              const QVariantMap& values) {
        std::string text;
        runQuery(connection.connection(), sql, values,
                 {[](const QSqlRecord&) {},
                  [&](const QList<QVariant>& row) {
                      for (const QVariant& value : row)
                          text += (value.isNull() ? "NULL" : value.toString().toStdString()) + "|";
                      text += "\n";
                  }},
                 {-1, true, nullptr});
        return text;
    }

    const TestApplication application_;
    TemporaryFolder folder_;
    DatabaseParameters parameters_;
    std::unique_ptr<DatabaseConnection> own_, odbc_;
};

} // namespace

TEST_P(Odbc, TellsWhatTheDriverOfTheEngineTells) {
    EXPECT_EQ(odbc_->engine(), GetParam());
    const std::string told = show(*openCatalogue(odbc_->connection()));
    EXPECT_EQ(told, show(*openCatalogue(own_->connection())));
    EXPECT_NE(told.find("people (boss ) to people (id )"), std::string::npos) << told;

    const QString sql = "select p.name, c.name, p.born, p.seen, p.pay, p.points from people p"
                        " join countries c on c.code = p.country where p.id < :most order by p.id desc";
    for (const int most : {2, 3})
        EXPECT_EQ(rowsOf(*odbc_, sql, {{"most", most}}), rowsOf(*own_, sql, {{"most", most}}));
    EXPECT_EQ(rowsOf(*odbc_, sql, {{"most", 3}}).find("Ærlig|Ærø|NULL"), 0u);
    EXPECT_THROW(execute(odbc_->connection(), "delete from people"), DatabaseError)
        << "only reading is allowed";
    EXPECT_FALSE(parameters_.label().contains("same@1")) << "a password";
}

INSTANTIATE_TEST_SUITE_P(Engines, Odbc, testing::Values(Engine::Sqlite, Engine::PostgreSql),
                         [](const auto& engine) { return nameOf(engine.param); });

// An engine that nobody knows has the standard's information schema, or has no keys.
TEST(OtherEngines, TellKeysByTheInformationSchema) {
    int argumentCount = 1;
    char name[] = "test";
    char* arguments[] = {name, nullptr};
    const QCoreApplication application(argumentCount, arguments);
    const TemporaryFolder folder;
    const DatabaseConnection lite(parseDatabase(folder / "x.sqlite"), DatabaseConnection::Access::Create);
    execute(lite.connection(), "create table t (id integer primary key, t integer references t)");
    EXPECT_TRUE(openGenericCatalogue(lite.connection())->foreignKeys().empty());
    if (!PostgresServer::get())
        GTEST_SKIP() << PostgresServer::notInstalled;
    const PostgresConnection postgres(*PostgresServer::get());
    postgres.execute("set client_min_messages = error");
    postgres.execute("drop schema public cascade");
    postgres.execute("create schema public");
    for (int i = 0; i < 4; ++i)
        postgres.execute(schema[i]);
    std::string keys;
    for (const ForeignKey& key : openGenericCatalogue(postgres.connection())->foreignKeys())
        keys += key.table + ":" + show(key.columns) + "-" + key.referencedTable + ":" +
                show(key.referencedColumns) + "\n";
    EXPECT_EQ(keys, "nights:house no -trips:house no \n"
                    "people:boss -people:id \n"
                    "people:country -countries:code \n");
    postgres.execute("drop table nights, trips, people, countries");
}
