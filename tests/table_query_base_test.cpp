#include "lumora/qtsql/tablequerybase.h"

#include "lumora/lumora.h"
#include "lumora/qtsql/catalogues.h"
#include "lumora/qtsql/databaseconnection.h"
#include "lumora/qtsql/databaseerror.h"
#include "tests/cli_process.h"
#include "tests/message_of.h"
#include "tests/test_application.h"
#include "tests/test_engines.h"

#include <gtest/gtest.h>

#include <functional>
#include <latch>
#include <string>
#include <thread>
#include <vector>

using namespace lumora;
using namespace lumora::tests;

namespace {

using Access = DatabaseConnection::Access;

struct Person {
    explicit Person(const DatabaseParameters& parameters)
        : database(parameters, Access::Create), base(database.connection()) {}

    TVStoredQueryItem& item(std::string_view name) {
        return dynamic_cast<TVStoredQueryItem&>(*base.GetQuery(base.IndexByName(name)));
    }

    DatabaseConnection database;
    TableQueryBase base;
};

std::string conflictOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const EVQueryBaseError& error) {
        EXPECT_EQ(error.Code, qbeConflict) << error.what();
        return error.what();
    }
    return {};
}

TStringList textOf(const std::string& description) {
    return TStringList("[Main]\nQueryName=x\nVersion=3.5\n\n[Description]\n" + description + "\n\n");
}

// Two people who look at one table.
class TableBase : public testing::TestWithParam<Engine> {
protected:
    void SetUp() override { LUMORA_NEED_ENGINE(GetParam()); }

    void TearDown() override {
        const DatabaseConnection connection(parameters, Access::ReadWrite);
        for (const char* const table : {"lumora_queries", "odd", "\"odd; \"\"name\"\".x\""})
            execute(connection.connection(),
                    QStringLiteral("drop table if exists %1").arg(QLatin1StringView(table)));
    }

    std::string database() const {
        const PrivateServer* const server = serverOf(GetParam());
        return server ? server->url() : folder / "queries.sqlite";
    }
    // As when the server or the network goes away.
    void endOtherConnections(const QSqlDatabase& mine) const {
        if (GetParam() == Engine::PostgreSql) {
            execute(mine, QStringLiteral("select pg_terminate_backend(pid) from pg_stat_activity"
                                         " where usename = current_user and pid <> pg_backend_pid()"));
            return;
        }
        QSqlQuery others = execute(mine, QStringLiteral("select id from information_schema.processlist"
                                                        " where id <> connection_id()"));
        while (nextRow(others))
            execute(mine, QStringLiteral("kill ") + others.value(0).toString());
    }

    std::string storedText(const QString& name) {
        QSqlQuery rows = execute(ann.database.connection(),
                                 QStringLiteral("select content from lumora_queries where name = ?"), {name});
        return nextRow(rows) ? lumora::textOf(rows, 0) : "none";
    }

private:
    const TestApplication application_;

protected:
    TemporaryFolder folder;
    DatabaseParameters parameters = parseDatabase(database());
    Person ann{parameters}, bob{parameters};
};

} // namespace

TEST_P(TableBase, KeepsQueries) {
    ann.base.Open();
    EXPECT_EQ(ann.base.GetCount(), 0);
    const std::string awkward = "O'Hara; \"x\" -- %1 ? :name \\ \xF0\x9F\x98\x80\t\n.";
    ann.base.AddQuery("b", textOf(awkward));
    ann.base.AddQuery(awkward, TStringList());
    ann.base.AddQuery("A", textOf("second\nline"));
    bob.base.Open();
    ASSERT_EQ(bob.base.GetCount(), 3);
    EXPECT_EQ(bob.base.GetQuery(0)->GetQueryName(), "A");
    EXPECT_EQ(bob.base.GetQuery(0)->GetDescription(), "second\nline");
    EXPECT_EQ(bob.base.GetQuery(2)->GetQueryName(), awkward);
    EXPECT_EQ(bob.base.GetQuery(2)->GetDescription(), "");
    TStringList content;
    bob.item("B").LoadContent(content);
    EXPECT_EQ(content.GetText(), textOf(awkward).GetText());

    const std::string name(200, 'x');
    bob.item("b").SetQueryName(name);
    bob.item(name).SaveContent(content);
    EXPECT_EQ(storedText("b"), "none");
    EXPECT_EQ(storedText(QString::fromStdString(name)), content.GetText());
    bob.base.EraseQuery(bob.base.IndexByName(name));
    EXPECT_EQ(storedText(QString::fromStdString(name)), "none");
    EXPECT_THROW(bob.base.AddQuery(name + "x", content), EVQueryBaseError);
    EXPECT_THROW(bob.base.AddQuery("cut \xC3", content), DatabaseError);
    EXPECT_THROW(bob.base.AddQuery("zero", TStringList(std::string("a\0b", 3))), DatabaseError);
    EXPECT_EQ(bob.base.GetCount(), 2);
}

TEST_P(TableBase, WhatSomeoneElseChangedIsNotOverwritten) {
    const TStringList mine = textOf("ann"), theirs = textOf("bob");
    ann.base.Open();
    for (const char* const name : {"changed", "deleted", "anew"})
        ann.base.AddQuery(name, textOf("old"));
    bob.base.Open();
    bob.item("changed").SaveContent(theirs);
    bob.base.EraseQuery(bob.base.IndexByName("deleted"));
    bob.base.EraseQuery(bob.base.IndexByName("anew"));
    bob.base.AddQuery("anew", theirs);
    bob.base.AddQuery("new", theirs);

    const std::string message = "Query \"changed\" was changed by someone else since it was read";
    TVStoredQueryItem& changed = ann.item("changed");
    EXPECT_EQ(conflictOf([&] { changed.SaveContent(mine); }), message);
    EXPECT_EQ(conflictOf([&] { ann.base.EraseQuery(ann.base.IndexByName("changed")); }), message);
    EXPECT_EQ(conflictOf([&] { ann.item("anew").SaveContent(mine); }),
              "Query \"anew\" was changed by someone else since it was read");
    EXPECT_EQ(conflictOf([&] { ann.item("deleted").SaveContent(mine); }),
              "Query \"deleted\" was deleted by someone else");
    EXPECT_EQ(conflictOf([&] { ann.base.AddQuery("new", mine); }), "There is a query \"new\" already");
    EXPECT_EQ(storedText("changed"), theirs.GetText());
    EXPECT_EQ(storedText("new"), theirs.GetText());
    EXPECT_EQ(storedText("anew"), theirs.GetText());

    TStringList seen;
    changed.LoadContent(seen);
    EXPECT_EQ(seen.GetText(), theirs.GetText());
    changed.SetQueryName("new");
    EXPECT_EQ(conflictOf([&] { changed.SaveContent(mine); }), "There is a query \"new\" already");
    changed.ForceSaveContent(mine);
    EXPECT_EQ(storedText("new"), mine.GetText());
    EXPECT_EQ(storedText("changed"), "none");
    changed.SaveContent(theirs);
    ann.item("deleted").ForceSaveContent(mine);
    EXPECT_EQ(storedText("deleted"), mine.GetText());
    EXPECT_THROW(bob.item("changed").LoadContent(seen), EVQueryBaseError);
    ann.base.ForceEraseQuery(ann.base.IndexByName("anew"));
    EXPECT_EQ(storedText("anew"), "none");
}

// Each round, several save what they have read and make a query of one name; of either, one may win.
TEST_P(TableBase, OfThoseWhoSaveAtOnceOneWins) {
    constexpr int people = 3;
    ann.base.AddQuery("old", textOf("0"));
    for (int round = 0; round < 5; ++round) {
        const std::string fresh = "new" + std::to_string(round);
        std::string saved[people], added[people];
        std::latch everybodyRead(people);
        std::vector<std::thread> threads;
        for (int i = 0; i < people; ++i)
            threads.emplace_back([&, i] {
                Person person(parameters);
                person.base.Open();
                const TStringList text = textOf(fresh + "/" + std::to_string(i));
                everybodyRead.arrive_and_wait();
                if (conflictOf([&] { person.item("old").SaveContent(text); }).empty())
                    saved[i] = text.GetText();
                if (conflictOf([&] { person.base.AddQuery(fresh, text); }).empty())
                    added[i] = text.GetText();
            });
        for (std::thread& thread : threads)
            thread.join();
        EXPECT_EQ(storedText(QStringLiteral("old")), saved[0] + saved[1] + saved[2]);
        EXPECT_EQ(storedText(QString::fromStdString(fresh)), added[0] + added[1] + added[2]);
    }
}

TEST_P(TableBase, LostConnectionsAndOddTablesAreTold) {
    ann.base.Open();
    ann.base.AddQuery("q", textOf("old"));
    const TStringList mine = textOf("mine");
    if (GetParam() == Engine::Sqlite)
        ann.database.connection().close();
    else
        endOtherConnections(bob.database.connection());
    EXPECT_THROW(ann.item("q").SaveContent(mine), DatabaseError);
    EXPECT_EQ(MessageOf<DatabaseError>([&] { ann.item("q").SaveContent(mine); }),
              GetParam() == Engine::MySql ? "Server has gone away"
                                          : "The connection to the database is not open");
    EXPECT_THROW(ann.base.EraseQuery(0), DatabaseError);
    EXPECT_THROW(ann.base.Open(), DatabaseError);
    EXPECT_EQ(ann.base.GetCount(), 1);
    ann.database.connection().open();
    ann.item("q").SaveContent(mine);
    EXPECT_EQ(storedText("q"), mine.GetText());

    execute(bob.database.connection(), QStringLiteral("create table odd (name varchar(200), content text)"));
    TableQueryBase odd(bob.database.connection(), QStringLiteral("odd"));
    const std::string message = std::string("The table ") +
                                (GetParam() == Engine::MySql ? "`odd`" : "\"odd\"") +
                                " is not made for queries: it has no column \"description\"";
    EXPECT_EQ(MessageOf<DatabaseError>([&] { odd.Open(); }), message);
    EXPECT_EQ(MessageOf<DatabaseError>([&] { odd.AddQuery("q", mine); }), message);
    TableQueryBase quoted(bob.database.connection(), QStringLiteral("\"odd; \"\"name\"\".x\""));
    quoted.AddQuery("q", mine);
    quoted.Open();
    EXPECT_EQ(quoted.GetCount(), 1);
    TableQueryBase nowhere(bob.database.connection(), QStringLiteral("nowhere.queries"));
    EXPECT_THROW(nowhere.AddQuery("q", mine), DatabaseError);
    EXPECT_THROW(TableQueryBase(QSqlDatabase()).Open(), DatabaseError);
}

TEST_P(TableBase, ListsWithoutWriting) {
    ann.base.AddQuery("q", textOf("old"));
    const DatabaseConnection reading(parameters);
    TableQueryBase base(reading.connection());
    base.Open();
    EXPECT_EQ(base.GetCount(), 1);
    EXPECT_THROW(base.AddQuery("new", textOf("")), DatabaseError);
    TableQueryBase none(reading.connection(), QStringLiteral("none_yet"));
    none.Open();
    EXPECT_EQ(none.GetCount(), 0);
}

INSTANTIATE_TEST_SUITE_P(Databases, TableBase,
                         testing::Values(Engine::Sqlite, Engine::PostgreSql, Engine::MySql),
                         [](const auto& engine) { return nameOf(engine.param); });
