// Running queries on a connection: streaming, cancelling, and what comes out.
#include "lumora/qtsql/catalogues.h"
#include "lumora/qtsql/databaseerror.h"
#include "lumora/qtsql/querycanceller.h"
#include "lumora/qtsql/queryrunner.h"
#include "tests/message_of.h"
#include "tests/test_application.h"
#include "tests/test_engines.h"

#include <gtest/gtest.h>

#include <QSqlQuery>

#include <chrono>
#include <memory>
#include <optional>
#include <thread>

namespace lumora::tests {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using Kind = DatabaseError::Kind;

template <typename TAction>
std::optional<Kind> KindOf(TAction action) {
    try {
        action();
    } catch (const DatabaseError& error) {
        return error.kind();
    }
    return std::nullopt;
}

// The same tests for each engine.
class QueryRunner : public testing::TestWithParam<Engine> {
protected:
    void SetUp() override {
        if (GetParam() == Engine::Sqlite) {
            connection_ = std::make_unique<DatabaseConnection>(parseDatabase(folder_ / "x.sqlite"),
                                                               DatabaseConnection::Access::Create);
            execute(connection_->connection(),
                    "create table any_table (x integer)"); // an empty file is refused
            return;
        }
        LUMORA_NEED_ENGINE(GetParam());
        connection_ = std::make_unique<DatabaseConnection>(parseDatabase(serverOf(GetParam())->url()));
    }

    bool isPostgres() const { return GetParam() == Engine::PostgreSql; }
    bool isMariaDb() const { return GetParam() == Engine::MySql; }

    // Numbers from 1, as they come and without end, and a statement that gives no row for as long. Qt's
    // driver for MariaDB gives no row before it has all of them.
    QString endlessRows() const {
        return isPostgres() ? "select generate_series(1, 1000000000000)"
               : isMariaDb()
                   ? "select seq from seq_1_to_1000000"
                   : "with recursive n(i) as (select 1 union all select i + 1 from n) select i from n";
    }
    QString endlessWork() const {
        return isPostgres()  ? "select pg_sleep(600)"
               : isMariaDb() ? "select sum(a.seq * b.seq) from seq_1_to_1000000 a, seq_1_to_1000000 b"
                             : "with recursive n(i) as (select 1 union all select i + 1 from n)"
                               " select count(*) from n";
    }

    static RowReceiver ignore() {
        return {[](const QSqlRecord&) {}, [](const QList<QVariant>&) {}};
    }
    qint64 run(const QString& statement, const RowReceiver& receiver, QueryCanceller* canceller) {
        return runQuery(connection_->connection(), statement, {}, receiver, {-1, false, canceller});
    }
    void expectUsable() { EXPECT_EQ(run("select 1 union all select 2", ignore(), nullptr), 2); }

    const TestApplication application_;
    TemporaryFolder folder_;
    std::unique_ptr<DatabaseConnection> connection_;
};

TEST_P(QueryRunner, IsCancelledWhileTheEngineWorks) {
    for (const std::chrono::microseconds delay : {0us, 100us, 500us, 2000us, 10000us, 200000us}) {
        QueryCanceller canceller(*connection_);
        const auto start = Clock::now();
        std::thread other([&] {
            std::this_thread::sleep_for(delay); // from before the statement starts to the middle of it
            canceller.cancel();
        });
        EXPECT_EQ(KindOf([&] { run(endlessWork(), ignore(), &canceller); }), Kind::Cancelled);
        other.join();
        EXPECT_LT(Clock::now() - start, 10s);
        EXPECT_TRUE(canceller.isCancelled());
        expectUsable();
    }
}

TEST_P(QueryRunner, IsCancelledBetweenRows) {
    QueryCanceller canceller(*connection_);
    std::thread other;
    qint64 count = 0;
    const RowReceiver receiver = {[](const QSqlRecord&) {},
                                  [&](const QList<QVariant>& row) {
                                      ASSERT_EQ(row[0].toLongLong(), ++count);
                                      if (count == 1000)
                                          other = std::thread([&] { canceller.cancel(); });
                                  }};
    EXPECT_EQ(KindOf([&] { run(endlessRows(), receiver, &canceller); }), Kind::Cancelled);
    other.join();
    EXPECT_GE(count, 1000);
    expectUsable();
    EXPECT_EQ(KindOf([&] { run("select 1", ignore(), &canceller); }), Kind::Cancelled) << "it stays so";
    QueryCanceller idle(*connection_);
    idle.cancel(); // nothing runs, nothing is waited for
    expectUsable();
}

TEST_P(QueryRunner, EndsWithItsReceiver) {
    QueryCanceller canceller(*connection_);
    const auto start = Clock::now();
    const RowReceiver receiver = {[](const QSqlRecord&) {},
                                  [](const QList<QVariant>&) { throw EFileError("full"); }};
    EXPECT_EQ(MessageOf<EFileError>([&] { run(endlessRows(), receiver, &canceller); }), "full");
    EXPECT_FALSE(canceller.isCancelled());
    EXPECT_EQ(runQuery(connection_->connection(), endlessRows() + "; -- all", {}, ignore(), {5}), 5);
    EXPECT_LT(Clock::now() - start, 10s);
    expectUsable();
}

// A host chooses what to do by the kind, so each engine's codes must come out as the same ones.
TEST_P(QueryRunner, FailuresAreToldApart) {
    const auto failureOf = [&](const char* statement) {
        return KindOf([&] { run(statement, ignore(), nullptr); });
    };
    EXPECT_EQ(failureOf("select * from nowhere"), Kind::NotFound);
    EXPECT_EQ(failureOf("select missing from (select 1 as one) t"), Kind::NotFound);
    EXPECT_EQ(failureOf("select nofunc(1)"), Kind::Refused);
    EXPECT_EQ(failureOf("select from where"), Kind::Refused);
    EXPECT_EQ(failureOf("delete from nowhere"), Kind::Invalid);
    EXPECT_EQ(failureOf("select 1; select 2"), Kind::Invalid);
    EXPECT_EQ(failureOf("select :value"), Kind::Invalid);
    expectUsable();

    const DatabaseConnection reading(connection_->parameters());
    EXPECT_EQ(KindOf([&] { execute(reading.connection(), "create table lumora_written (x integer)"); }),
              Kind::ReadOnly);
    DatabaseParameters wrong = connection_->parameters();
    wrong.databaseName += "_of_nobody";
    EXPECT_EQ(KindOf([&] { const DatabaseConnection none(wrong); }), Kind::CannotConnect);
    wrong.driver = "QNONE";
    EXPECT_EQ(KindOf([&] { const DatabaseConnection none(wrong); }), Kind::CannotConnect);
    if (isPostgres()) {
        execute(connection_->connection(), "set statement_timeout = 50");
        EXPECT_EQ(failureOf("select pg_sleep(600)"), Kind::Cancelled) << "by the server";
        EXPECT_EQ(failureOf("select pg_terminate_backend(pg_backend_pid())"), Kind::ConnectionLost);
        EXPECT_EQ(failureOf("select 1"), Kind::ConnectionLost);
    }
    if (isMariaDb()) {
        execute(connection_->connection(), "set max_statement_time = 0.05");
        EXPECT_EQ(failureOf(endlessWork().toUtf8().constData()), Kind::Cancelled) << "by the server";
        execute(connection_->connection(), "set max_statement_time = 0");
        QSqlQuery(connection_->connection()).exec("kill connection_id()");
        EXPECT_EQ(failureOf("select 1"), Kind::ConnectionLost);
    }
}

INSTANTIATE_TEST_SUITE_P(Engines, QueryRunner,
                         testing::Values(Engine::Sqlite, Engine::PostgreSql, Engine::MySql),
                         [](const auto& engine) { return nameOf(engine.param); });

class ServerRunner : public QueryRunner {
protected:
    std::string only(const QString& expression, const QVariantMap& parameters = {}) {
        std::string text;
        runQuery(connection_->connection(), "select " + expression, parameters,
                 {[](const QSqlRecord&) {},
                  [&](const QList<QVariant>& row) {
                      text = row[0].isNull() ? "NULL" : row[0].toString().toStdString();
                  }},
                 {-1, true, nullptr});
        return text;
    }
};

class PostgresRunner : public ServerRunner {};
class MariaDbRunner : public ServerRunner {};

INSTANTIATE_TEST_SUITE_P(Engines, MariaDbRunner, testing::Values(Engine::MySql));
INSTANTIATE_TEST_SUITE_P(Engines, PostgresRunner, testing::Values(Engine::PostgreSql));

TEST_P(PostgresRunner, LosesNothingOfAValue) {
    const std::pair<const char*, const char*> cases[] = {
        {"123456789012345678901234567890.10::numeric(32,2)", "123456789012345678901234567890.10"},
        {"9223372036854775807::bigint", "9223372036854775807"},
        {"'-9223372036854775808'::bigint", "-9223372036854775808"},
        {"'12:30:01.123456'::time", "12:30:01.123456"},
        {"'12:30:01+02'::timetz", "12:30:01+02"},
        {"'2024-01-02 03:04:05.123456'::timestamp", "2024-01-02 03:04:05.123456"},
        {"'infinity'::timestamp", "infinity"},
        {"'0044-03-15 BC'::date", "0044-03-15 BC"},
        {"(timestamptz '2024-01-02 03:04:05.5+02' at time zone 'utc')", "2024-01-02 01:04:05.5"},
        {"'1 day 2 hours'::interval", "1 day 02:00:00"},
        {"'a0eebc99-9c0b-4ef8-bb6d-6bb9bd380a11'::uuid", "a0eebc99-9c0b-4ef8-bb6d-6bb9bd380a11"},
        {"'{\"a\": [1, null]}'::json", "{\"a\": [1, null]}"},
        {"array['a b', null]", "{\"a b\",NULL}"},
        {"null::timetz", "NULL"},
        {"'{\"a\": 1}'::jsonb ? 'a'", "true"}, // no placeholder
        {"5 -- a comment", "5"}};
    for (const auto& [expression, text] : cases)
        EXPECT_EQ(only(expression), text) << expression;
    EXPECT_EQ(only(":a::date + 1", {{"A", "2024-02-28"}}), "2024-02-29");

    QStringList names;
    runQuery(connection_->connection(), "select 1 as a, date '2024-01-02' as \"a\"\"b\", 2 as a", {},
             {[&](const QSqlRecord& columns) {
                  for (int i = 0; i < columns.count(); ++i)
                      names.append(columns.fieldName(i));
              },
              [](const QList<QVariant>& row) { EXPECT_EQ(row[1].toString(), "2024-01-02"); }},
             {1, true, nullptr});
    EXPECT_EQ(names, QStringList({"a", "a\"b", "a"}));
}

// Qt's types would cut the times, and take texts that are compared by their bytes for bytes.
TEST_P(MariaDbRunner, LosesNothingOfAValue) {
    const std::pair<const char*, const char*> cases[] = {
        {"cast('123456789012345678901234567890.10' as decimal(32,2))", "123456789012345678901234567890.10"},
        {"cast(18446744073709551615 as unsigned)", "18446744073709551615"},
        {"timestamp '2024-01-02 03:04:05.123456'", "2024-01-02 03:04:05.123456"},
        {"cast('-838:59:59.999999' as time(6))", "-838:59:59.999999"},
        {"cast(null as time)", "NULL"},
        {"date '0044-03-15'", "0044-03-15"},
        {"'gr\xC3\xB6\xC3\x9F' collate utf8mb4_bin", "gr\xC3\xB6\xC3\x9F"},
        {"json_extract('{\"a\": [1, null]}', '$.a')", "[1, null]"},
        {"'a' || 'b\\n'", "ab\\n"}};
    for (const auto& [expression, text] : cases)
        EXPECT_EQ(only(expression), text) << expression;
    EXPECT_EQ(only("date_add(cast(:a as date), interval 1 day)", {{"A", "2024-02-28"}}), "2024-02-29");

    QStringList rows;
    const RowReceiver receiver = {[&](const QSqlRecord& columns) { rows.append(columns.fieldName(2)); },
                                  [&](const QList<QVariant>& row) { rows.append(row[0].toString()); }};
    const QString times = "select time '01:00:00' + interval seq second as a, 1 as a, seq as \"b\"\"c\""
                          " from seq_1_to_9 order by seq desc";
    EXPECT_EQ(runQuery(connection_->connection(), times, {}, receiver, {2, true, nullptr}), 2);
    EXPECT_EQ(runQuery(connection_->connection(), times + " limit 1", {}, receiver, {5, true, nullptr}), 1);
    EXPECT_EQ(rows, QStringList({"b\"c", "01:00:09", "01:00:08", "b\"c", "01:00:09"}));
    EXPECT_EQ(run("select seq from seq_1_to_9", ignore(), nullptr), 9) << "the limit was for one statement";
}

TEST_P(PostgresRunner, SaysWhyInOneLine) {
    const auto reason = [&](const QString& expression) {
        return MessageOf<DatabaseError>([&] { only(expression); });
    };
    EXPECT_EQ(reason("nothing"), "column \"nothing\" does not exist");
    EXPECT_EQ(reason("distinct 1 order by 2"), "ORDER BY position 2 is not in select list");
    EXPECT_EQ(reason("1 / (10 - i) from generate_series(1, 20) i"), "division by zero");
    EXPECT_EQ(reason("nofunc(1)"),
              "function nofunc(integer) does not exist; HINT:  No function matches the given "
              "name and argument types. You might need to add explicit type casts.");
    EXPECT_EQ(reason("pg_terminate_backend(pg_backend_pid())"),
              "terminating connection due to administrator command");
    EXPECT_EQ(reason("1"), "the database gives no reason; the connection may be lost");
}

} // namespace
} // namespace lumora::tests
