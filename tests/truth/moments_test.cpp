// Columns that keep days and moments in every way there is, compared with random days and moments: what the
// engine gives is what a plain reckoning gives, and the statement read back gives it again.
#include "lumora/platform/formats.h"
#include "lumora/query/errors.h"
#include "lumora/query/moment_column.h"
#include "lumora/support/string_helpers.h"
#include "tests/fixtures.h"
#include "tests/postgres_server.h"
#include "tests/test_application.h"

#include <gtest/gtest.h>

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

#include <algorithm>
#include <map>
#include <optional>
#include <random>
#include <set>

using namespace lumora;
using namespace lumora::tests;

namespace {

constexpr std::int64_t day = MillisecondsADay;

enum class Kept { Days, Seconds, Milliseconds };

struct Column {
    const char* name;
    TDateStorage storage;
    Kept kept;
    bool meansWholeSeconds; // a moment to the second stands for all of it
    const char* sql;        // the value from the text "1996-07-08 12:34:56.789", %1
};

constexpr Column columns[] = {
    {"as_type", dsAsType, Kept::Seconds, false, "'%1'"},
    {"days", dsDay, Kept::Days, false, "'%1'"},
    {"moments", dsMoment, Kept::Seconds, false, "'%1'"},
    {"fractions", dsMomentFraction, Kept::Milliseconds, true, "'%1'"},
    {"with_t", dsMomentT, Kept::Seconds, true, "replace('%1', ' ', 'T')"},
    {"mixed", dsMixedText, Kept::Milliseconds, true, "'%1'"},
    {"seconds", dsEpochSeconds, Kept::Seconds, true, "cast(strftime('%s', '%1') as integer)"},
    {"milliseconds", dsEpochMilliseconds, Kept::Milliseconds, true,
     "cast(round((julianday('%1') - 2440587.5) * 86400000) as integer)"},
    {"julian", dsJulianDay, Kept::Milliseconds, true, "julianday('%1')"}};
constexpr Column timestamps{"stamps", dsAsType, Kept::Milliseconds, false, "timestamp '%1'"};

std::string textOf(std::int64_t moment, Kept kept) {
    const char* const masks[] = {"yyyy-mm-dd", "yyyy-mm-dd hh:nn:ss", "yyyy-mm-dd hh:nn:ss.zzz"};
    return FormatDateTime(masks[static_cast<int>(kept)], OfMilliseconds(moment), IsoFormatSettings());
}

// A value as a person enters it, and the milliseconds from `start` on that it means.
struct Given {
    std::string text;
    std::int64_t start;
    std::int64_t length;
};

class Moments : public testing::Test {
protected:
    Moments() {
        info_.Tables = {{"m", {{"id", 0, ftInteger}, {"d", 0, ftDateTime}}}};
        model_.SetDatabaseInfo(&info_);
        model_.RetriveDataModelInfo();
        model_.GetSQLFormats().SetDateTime("yyyy-mm-dd hh:nn:ss");
        model_.AddOperator("Other", "", "(@f <> '@1' or @f is null)", "", LmUsedTypes);
        model_
            .GetOperator(model_.AddOperator("NoneOf", "", "(@f not in (@1) or @f is null)", "", LmUsedTypes))
            ->ValueKind = vkList;
        panel_.SetDbStruct(&model_);
        panel_.SetStrict(true);
        panel_.SetSQLOptions({});
        panel_.Activate();
        TDSField& field = *model_.FieldByName(fnSQLExpr, "m.d");
        for (int i = 0; i < model_.GetOperatCount(); ++i)
            field.AddOperator(model_.GetOperator(i));
    }

    std::int64_t randomMoment(Kept kept) {
        const std::int64_t first = 35250 * day; // 1996-07-04
        const std::int64_t ofDay[] = {0, 1000, 12 * 3600000, 45296000, 45296789, day - 1000, day - 1};
        const std::int64_t moment = first + pick(6) * day + ofDay[pick(7)];
        const std::int64_t unit = kept == Kept::Days ? day : kept == Kept::Seconds ? 1000 : 1;
        return moment - moment % unit;
    }
    std::int64_t pick(int count) { return std::uniform_int_distribution<int>(0, count - 1)(random_); }

    void fill(const QSqlDatabase& database, const Column& column, const char* type);
    Given randomValue(const Column& column);
    std::set<int> meant(const std::string& op, const std::vector<Given>& values) const;
    std::set<int> given(const QSqlDatabase& database, const std::string& sql) const;
    void compareAll(const QSqlDatabase& database, const Column& column);

    const tests::TestApplication application_;
    TMemoryInfo info_;
    TVDBStructure model_;
    TVQueryPanel panel_;
    std::mt19937 random_{4711};
    std::map<int, std::optional<std::int64_t>> rows_;
};

void Moments::fill(const QSqlDatabase& database, const Column& column, const char* type) {
    QSqlQuery query(database);
    query.exec("drop table if exists m");
    ASSERT_TRUE(query.exec(QStringLiteral("create table m (id integer, d %1)").arg(type)));
    rows_.clear();
    for (int id = 0; id < 40; ++id) {
        rows_[id] = id % 13 == 0 ? std::nullopt : std::optional(randomMoment(column.kept));
        std::string text = rows_[id] ? textOf(*rows_[id], column.kept) : "";
        if (column.storage == dsMixedText && rows_[id]) {
            if (*rows_[id] % day == 0 && pick(2))
                text.resize(10);
            else if (*rows_[id] % 60000 == 0 && pick(2))
                text.resize(16);
            text = ReplaceText(text, " ", pick(2) ? "T" : " ");
        }
        const std::string value = rows_[id] ? ReplaceText(column.sql, "%1", text) : "null";
        ASSERT_TRUE(query.exec(
            QString::fromStdString("insert into m values (" + std::to_string(id) + ", " + value + ")")))
            << query.lastError().text().toStdString();
    }
}

Given Moments::randomValue(const Column& column) {
    const std::int64_t moment = randomMoment(column.kept);
    const auto said = static_cast<Kept>(pick(static_cast<int>(column.kept) + 1));
    const std::int64_t unit = said == Kept::Days ? day : said == Kept::Seconds ? 1000 : 1;
    const bool isPoint = said != Kept::Days && !column.meansWholeSeconds;
    return {textOf(moment, said), moment - moment % unit, isPoint ? 1 : unit};
}

std::set<int> Moments::meant(const std::string& op, const std::vector<Given>& values) const {
    std::set<int> ids;
    const Given &first = values.front(), &last = values.back();
    for (const auto& [id, moment] : rows_) {
        const bool takesNull = op == "Other" || op == "NoneOf" || op == "IsNull";
        if (!moment || op == "IsNull") {
            if (!moment && takesNull)
                ids.insert(id);
            continue;
        }
        const bool isBefore = *moment < first.start, isUpTo = *moment < first.start + first.length;
        const bool isIn = std::any_of(values.begin(), values.end(), [at = *moment](const Given& value) {
            return at >= value.start && at < value.start + value.length;
        });
        const bool isBetween = !isBefore && *moment < last.start + last.length;
        const std::map<std::string, bool> holds = {{"Equal", isIn},          {"InList", isIn},
                                                   {"NotEqual", !isIn},      {"Other", !isIn},
                                                   {"NotInList", !isIn},     {"NoneOf", !isIn},
                                                   {"LessThan", isBefore},   {"LessOrEqual", isUpTo},
                                                   {"GreaterThan", !isUpTo}, {"GreaterOrEqual", !isBefore},
                                                   {"Between", isBetween},   {"NotBetween", !isBetween}};
        if (holds.at(op))
            ids.insert(id);
    }
    return ids;
}

std::set<int> Moments::given(const QSqlDatabase& database, const std::string& sql) const {
    QSqlQuery query(database);
    EXPECT_TRUE(query.exec(QString::fromStdString(sql))) << query.lastError().text().toStdString() << sql;
    std::set<int> ids;
    while (query.next())
        ids.insert(query.value(0).toInt());
    return ids;
}

void Moments::compareAll(const QSqlDatabase& database, const Column& column) {
    TDSField& field = *model_.FieldByName(fnSQLExpr, "m.d");
    field.Storage = column.storage;
    const char* const operators[] = {"Equal",       "NotEqual",       "Other",   "LessThan",   "LessOrEqual",
                                     "GreaterThan", "GreaterOrEqual", "Between", "NotBetween", "InList",
                                     "NotInList",   "NoneOf",         "IsNull"};
    int readBack = 0, asked = 0;
    for (int i = 0; i < 200 && !HasFailure(); ++i) {
        const std::string op = operators[pick(13)];
        std::vector<Given> values(op == "Between" || op == "NotBetween" ? 2
                                  : op == "InList" || op == "NotInList" || op == "NoneOf"
                                      ? static_cast<std::size_t>(1 + pick(3))
                                      : 1);
        for (Given& value : values)
            value = randomValue(column);
        panel_.ClearAll();
        panel_.GetQResult().GetResultFields().Add("@1", {model_.FieldByName(fnSQLExpr, "m.id")}, "id");
        std::string list;
        for (const Given& value : values)
            list += (list.empty() ? "" : ",") + value.text;
        const bool isList = model_.OperatorByName(op)->ValueKind == vkList;
        TSimpleCond* const condition = panel_.ManualAddCond(
            *panel_.GetRootBracket(), &field, model_.OperatorByName(op), isList ? list : values[0].text);
        condition->SetValue(2, values.back().text);
        panel_.BuildQuery();
        const std::string sql = panel_.GetQResult().GetSQL().GetText();
        const std::set<int> wanted = meant(op, values);
        EXPECT_EQ(given(database, sql), wanted) << column.name << " " << op << " " << list << "\n" << sql;
        ++asked;
        try {
            panel_.ParseSQL(TStringList(sql));
        } catch (const EVLumoraError& error) {
            EXPECT_EQ(column.storage, dsMixedText) << error.what() << "\n" << sql; // it compares replace(...)
            continue;
        }
        ++readBack;
        panel_.BuildQuery();
        const std::string again = panel_.GetQResult().GetSQL().GetText();
        EXPECT_EQ(given(database, again), wanted) << column.name << "\n" << sql << again;
    }
    EXPECT_GT(readBack, asked / 4) << column.name;
}

TEST_F(Moments, CompareInSqliteAsTheyAreKept) {
    QSqlDatabase database = QSqlDatabase::addDatabase("QSQLITE", "moments");
    database.setDatabaseName(":memory:");
    ASSERT_TRUE(database.open());
    panel_.SetDialect(sdSQLite);
    for (const Column& column : columns)
        for (const char* const type : {"", "datetime", "text"}) {
            if (IsNumberStorage(column.storage) && std::string(type) == "text")
                continue; // a column of texts keeps no numbers
            fill(database, column, type);
            compareAll(database, column);
        }
    database = {};
    QSqlDatabase::removeDatabase("moments");
}

TEST_F(Moments, CompareInPostgresAsTimestamps) {
    const PostgresServer* const server = PostgresServer::get();
    if (!server)
        GTEST_SKIP() << PostgresServer::notInstalled;
    const PostgresConnection postgres(*server);
    panel_.SetDialect(sdPostgreSQL);
    fill(postgres.connection(), timestamps, "timestamp");
    compareAll(postgres.connection(), timestamps);
    postgres.execute("drop table m");
}

} // namespace
