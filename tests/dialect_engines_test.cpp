// What the dialects' expressions mean to the engines that they are for.
#include "lumora/qtsql/databaseconnection.h"
#include "lumora/statement/dialects/dialect.h"
#include "tests/test_application.h"
#include "tests/test_engines.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QStringList>
#include <QVariant>

#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

using namespace lumora;
using namespace lumora::tests;

namespace {

class DialectEngines : public testing::TestWithParam<Engine> {
protected:
    void SetUp() override {
        LUMORA_NEED_ENGINE(GetParam());
        const PrivateServer* const server = serverOf(GetParam());
        connection_ = std::make_unique<DatabaseConnection>(
            parseDatabase(server ? server->url() : folder_ / "dialects.sqlite"),
            DatabaseConnection::Access::Create);
    }

    bool IsSqlite() const { return GetParam() == Engine::Sqlite; }
    const TDialect& Dialect() const {
        return IsSqlite() ? SQLiteDialect : GetParam() == Engine::MySql ? MySQLDialect : PostgreSQLDialect;
    }

    // The first row, its columns as text with "|" between them, a null as "-".
    std::string Answer(const std::string& sql) const {
        QSqlQuery query(connection_->connection());
        if (!query.exec(QString::fromStdString(sql)) || !query.next())
            return query.lastError().text().toStdString() + " in " + sql;
        QStringList row;
        for (int i = 0; i < query.record().count(); ++i)
            row.append(query.isNull(i) ? QStringLiteral("-") : query.value(i).toString());
        return row.join(u'|').toStdString();
    }
    std::string Value(std::string_view pattern, std::initializer_list<std::string_view> operands) const {
        return Answer("SELECT " + FillPattern(pattern, operands));
    }
    // Whether a condition holds, does not, or is unknown.
    std::string Holds(const std::string& condition) const {
        return Answer("SELECT CASE WHEN " + condition + " THEN 'yes' WHEN NOT (" + condition +
                      ") THEN 'no' ELSE 'unknown' END");
    }
    // As text, the moment without a time zone.
    std::string Text(const std::string& expression) const {
        return IsSqlite()                    ? expression
               : GetParam() == Engine::MySql ? "cast(" + expression + " as char)"
                                             : "to_char(" + expression + ", 'YYYY-MM-DD HH24:MI:SS')";
    }

    const TestApplication application_;
    TemporaryFolder folder_;
    std::unique_ptr<DatabaseConnection> connection_;
};

std::string Iso(std::chrono::sys_days day) {
    const std::chrono::year_month_day date(day);
    char text[16];
    std::snprintf(text, sizeof text, "%04d-%02u-%02u", static_cast<int>(date.year()),
                  static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()));
    return text;
}

} // namespace

TEST_P(DialectEngines, TakeDatesApart) {
    using namespace std::chrono;
    const TDatePatterns& part = Dialect().Part;
    const TDatePatterns& whole = Dialect().Truncate;
    const std::vector<std::string_view> numbers = {part.Year, part.Quarter, part.Month,
                                                   part.Week, part.Day,     part.Hour};
    const std::vector<std::string_view> days = {whole.Year, whole.Quarter, whole.Month, whole.Week,
                                                whole.Day};
    for (const int year : {1999, 2000, 2004, 2009, 2020}) {
        const sys_days first = sys_days{std::chrono::year{year} / 12 / 1};
        for (sys_days day = first - std::chrono::days{310}; day < first + std::chrono::days{40};
             day += std::chrono::days{1}) {
            const year_month_day date(day);
            const unsigned quarter = (static_cast<unsigned>(date.month()) + 2) / 3;
            const sys_days monday = day - (weekday{day} - Monday);
            const year_month_day thursday(monday + std::chrono::days{3}); // its year is the week's
            const auto week = (sys_days{thursday} - sys_days{thursday.year() / 1 / 1}).count() / 7 + 1;
            const std::string expected =
                std::to_string(static_cast<int>(date.year())) + "|" + std::to_string(quarter) + "|" +
                std::to_string(static_cast<unsigned>(date.month())) + "|" + std::to_string(week) + "|" +
                std::to_string(static_cast<unsigned>(date.day())) + "|23|" + Iso(date.year() / 1 / 1) + "|" +
                Iso(date.year() / month{quarter * 3 - 2} / 1) + "|" + Iso(date.year() / date.month() / 1) +
                "|" + Iso(monday) + "|" + Iso(day) + "|" + Iso(day) + " 23:00:00";
            std::string sql = "SELECT ";
            for (const std::string_view pattern : numbers)
                sql += FillPattern(pattern, {"t.d"}) + ", ";
            for (const std::string_view pattern : days)
                sql += FillPattern(pattern, {"t.d"}) + ", ";
            sql += Text(FillPattern(whole.Hour, {"t.d"})) + " FROM (SELECT ";
            sql += std::string(IsSqlite() ? "" : "TIMESTAMP ") + "'" + Iso(day) + " 23:59:07' AS d) t";
            ASSERT_EQ(Answer(sql), expected) << Iso(day);
        }
    }
}

TEST_P(DialectEngines, CompareAndJoinTexts) {
    const TDialect& dialect = Dialect();
    EXPECT_EQ(Value(dialect.Concat, {"'a'", "'b'"}), "ab");
    EXPECT_EQ(Holds(FillPattern(dialect.CaseBlindEqual, {"'aB'", "'Ab'"})), "yes");
    EXPECT_EQ(Holds(FillPattern(dialect.CaseBlindLike, {"'xaBx'", "'%Ab%'"})), "yes");
    EXPECT_EQ(Holds(FillPattern(dialect.NullSafeEqual, {"NULL", "NULL"})), "yes");
    EXPECT_EQ(Holds(FillPattern(dialect.NullSafeEqual, {"1", "NULL"})), "no");
    EXPECT_EQ(Holds(FillPattern(dialect.NullSafeEqual, {"1", "1"})), "yes");
    for (const char* const text : {"50%", "a_b", "a\\b", "a!b", "O'Hara", "%\\_!%"}) {
        std::string pattern = "%";
        AppendEscapedPattern(pattern, dialect, text);
        std::string whole, other, wanted;
        AppendTextLiteral(whole, dialect, std::string("before ") + text + " behind");
        AppendTextLiteral(other, dialect, "50x axb aXb a!!b O''Hara");
        AppendTextLiteral(wanted, dialect, pattern + "%");
        const std::string clause(dialect.PatternClause);
        EXPECT_EQ(Holds(FillPattern(dialect.CaseBlindLike, {whole, wanted}) + clause), "yes") << text;
        EXPECT_EQ(Holds(FillPattern(dialect.CaseBlindLike, {other, wanted}) + clause), "no") << text;
    }
}

TEST_P(DialectEngines, LimitRowsAndKnowTruth) {
    const TDialect& dialect = Dialect();
    EXPECT_EQ(Answer("SELECT count(*) FROM (SELECT 1 AS one UNION ALL SELECT 2 UNION ALL SELECT 3 " +
                     FillPattern(dialect.Limit, {"2"}) + ") t"),
              "2");
    const std::string table = "FROM (SELECT (1 = 1) AS yes, (1 = 0) AS no) t";
    EXPECT_EQ(Answer("SELECT count(*) " + table + " WHERE yes = " + std::string(dialect.True) +
                     " AND no = " + std::string(dialect.False)),
              "1");
    std::string name;
    TQuoteSymbols{'[', ']'}.Append(name, "a\" ]`b", QuotingOf(dialect, true));
    EXPECT_EQ(Answer("SELECT x." + (IsSqlite() ? "\"a\"" : name) + " FROM (SELECT 7 AS " +
                     (IsSqlite() ? "\"a\"" : name) + ") x"),
              "7");
}

INSTANTIATE_TEST_SUITE_P(Engines, DialectEngines,
                         testing::Values(Engine::Sqlite, Engine::PostgreSql, Engine::MySql),
                         [](const auto& engine) { return nameOf(engine.param); });
