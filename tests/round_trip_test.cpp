// Random queries on the sample model: strict SQL, read back and written again, means the same.
#include "lumora/qtsql/databaseconnection.h"
#include "lumora/qtsql/queryrunner.h"
#include "lumora/support/Vstrings.h"
#include "tests/cli_process.h"
#include "tests/fixtures.h"
#include "tests/test_application.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

using namespace lumora;
using namespace lumora::tests;

namespace {

// Makes a panel's query at random.
class TRandomQuery {
public:
    // Plain queries have only what a plain panel can say and read.
    TRandomQuery(TVQueryPanel& panel, unsigned seed)
        : panel_(panel), model_(*panel.GetDbStruct()), random_(seed) {}

    void Make() {
        TSQLOptions options;
        for (int i = 0; i < EnumCount<TSQLOption>; ++i)
            if (Chance(2))
                options.Include(static_cast<TSQLOption>(i));
        panel_.SetSQLOptions(options);
        const int fields = 1 + Number(3);
        for (int i = 0; i < fields; ++i)
            AddField();
        FillBracket(*panel_.GetRootBracket(), 3);
    }
    int Number(int below) { return static_cast<int>(random_() % static_cast<unsigned>(below)); }

private:
    bool Chance(int in) { return Number(in) == 0; }
    TDSField& Field() { return *model_.GetField(Number(model_.GetFieldCount())); }

    void AddField() {
        static const char* const formulas[] = {"@1", "@1", "@1", "count(@1)", "max(@1)", "@1 || ' Ab, (c) '"};
        TResultField& field = *panel_.GetQResult().GetResultFields().Add(
            formulas[Number(panel_.GetStrict() ? 6 : 5)], {&Field()}, "Column " + std::to_string(Number(3)));
        if (Chance(3))
            field.SetSorting(Chance(2) ? stAscending : stDescending);
    }

    void FillBracket(TFilterBracket& bracket, int depth) {
        bracket.SetLinkType(static_cast<TFilterLinkType>(Number(panel_.GetStrict() ? 4 : 2)));
        for (int rows = Number(4); rows > 0; --rows) {
            if (depth > 0 && Chance(3))
                FillBracket(*bracket.AddNewBracket(), depth - 1);
            else if (panel_.GetStrict() && Chance(6))
                FillValues(*bracket.AddCustomCond(model_.GetCondition(Number(model_.GetConditionCount()))));
            else
                AddCondition(bracket);
            if (bracket.GetRowCount() > 0 && Chance(8))
                bracket.GetRow(bracket.GetRowCount() - 1)->SetEnabled(false);
        }
    }

    void AddCondition(TFilterBracket& bracket) {
        TDSField& field = Field();
        if (field.GetOperatCount() == 0)
            return;
        TDSOperator& op = *field.GetOperator(Number(field.GetOperatCount()));
        const bool barePlace = op.GetSQLName().find('\'') == std::string::npos && op.GetParamCount() > 0;
        if (!panel_.GetStrict() &&
            (barePlace || !op.GetPattern().Head().starts_with("not(") != op.GetPattern().Head().empty()))
            return; // numbers without quotes around their place, and functions around the field
        TSimpleCond& condition = *bracket.AddCond();
        condition.SetField(&field);
        condition.SetOperator(&op);
        FillValues(condition);
    }

    void FillValues(TFilterCond& condition) {
        for (int value = 1; value <= std::min(2, condition.GetValueCount()); ++value) {
            if (condition.GetValueKind(value) == vkSubQuery) {
                condition.SetValue(
                    value, "SELECT customers.customer_id FROM customers WHERE customers.city = 'Oslo'");
                continue;
            }
            std::string text = Value(condition.GetValueType(value));
            if (condition.GetValueKind(value) == vkList)
                text = "\"" + ReplaceText(text, "\"", "\"\"") + "\", " +
                       QuoteText(Value(condition.GetValueType(value)), '"', '"');
            condition.SetValue(value, text);
        }
    }

    std::string Value(TFieldType type) {
        static const char* const texts[] = {"Norway",     "O'Hara", "a",      "50%x",
                                            "Oslo \"x\"", "sh, ip", "Ålesund"};
        switch (type) {
        case ftDate:
            return "2023-0" + std::to_string(1 + Number(9)) + "-15";
        case ftDateTime:
            return "2022-11-0" + std::to_string(1 + Number(9)) + (Chance(2) ? " 14:30:15" : "");
        case ftTime:
            return "1" + std::to_string(Number(9)) + ":30:05";
        case ftBoolean:
            return Chance(2) ? "true" : "0";
        case ftSmallint:
        case ftInteger:
        case ftWord:
        case ftAutoInc:
        case ftLargeint:
            return std::to_string(Number(40));
        case ftFloat:
        case ftCurrency:
        case ftBCD:
            return std::to_string(Number(300)) + ".5";
        default:
            return texts[Number(7)];
        }
    }

    TVQueryPanel& panel_;
    TVCustomDBStructure& model_;
    std::mt19937 random_;
};

std::vector<std::string> Rows(const DatabaseConnection& database, const std::string& sql) {
    std::vector<std::string> rows;
    runQuery(database.connection(), QString::fromStdString(sql), {},
             {[](const QSqlRecord&) {},
              [&](const QList<QVariant>& values) {
                  std::string row;
                  for (const QVariant& value : values)
                      row += value.isNull() ? "NULL|" : value.toString().toStdString() + "|";
                  rows.push_back(row);
              }});
    std::sort(rows.begin(), rows.end());
    return rows;
}

std::string SQLOf(TVQueryPanel& panel) {
    panel.BuildQuery();
    std::string sql = panel.GetQResult().GetSQL().GetText();
    sql.pop_back();
    return sql;
}

} // namespace

namespace {

// The sample database, and the sample model as SQLite needs it.
class RoundTrip : public testing::Test {
protected:
    RoundTrip() {
        const std::string file = folder_ / "orders.sqlite";
        if (std::system(("python3 " LUMORA_SAMPLES "/make_orders_db.py " + file).c_str()) != 0)
            throw std::runtime_error("cannot make the sample database");
        database_ = std::make_unique<DatabaseConnection>(parseDatabase(file));
        model_.LoadFromFile(LUMORA_SAMPLES "/orders.model");
        model_.GetSQLFormats().SetTime("hh:nn:ss");
        model_.GetSQLFormats().SetDateTime("yyyy-mm-dd hh:nn:ss");
        model_.SetQuotedTypes(model_.GetQuotedTypes() - TQuotedTypes{ftBoolean});
    }

    // The number of rounds; an environment variable asks for more.
    static unsigned Rounds() {
        const char* const wanted = std::getenv("LUMORA_ROUND_TRIPS");
        return wanted ? static_cast<unsigned>(std::atoi(wanted)) : 600;
    }
    void Prepare(TVQueryPanel& panel, TSQLSyntax syntax, bool strict) {
        panel.SetDbStruct(&model_);
        panel.SetStrict(strict);
        panel.SetSQLSyntax(syntax);
        panel.Activate();
    }

    const TestApplication application_;
    TemporaryFolder folder_;
    std::unique_ptr<DatabaseConnection> database_;
    TVDBStructure model_;
};

} // namespace

TEST_F(RoundTrip, KeepsTheMeaningOfRandomQueries) {
    int withRows = 0;
    for (unsigned seed = 1; seed <= Rounds(); ++seed) {
        const auto syntax = static_cast<TSQLSyntax>(seed % 3);
        TVQueryPanel panel;
        Prepare(panel, syntax, true);
        TRandomQuery(panel, seed).Make();
        std::string sql;
        ASSERT_EQ(MessageOf<EVLumoraError>([&] { sql = SQLOf(panel); }), "") << panel.GetQueryText();
        TVQueryPanel copy;
        Prepare(copy, syntax, true);
        copy.SetSQLOptions(panel.GetSQLOptions());
        ASSERT_EQ(MessageOf<EVLumoraError>([&] { copy.ParseSQL(TStringList(sql)); }), "")
            << "seed " << seed << "\n"
            << sql;
        const std::string second = SQLOf(copy);
        if (syntax != ssOracle && second != sql) {
            const std::vector<std::string> rows = Rows(*database_, sql);
            ASSERT_EQ(Rows(*database_, second), rows) << "seed " << seed << "\n" << sql << "\n" << second;
            withRows += rows.empty() ? 0 : 1;
        }
        copy.ParseSQL(TStringList(second));
        ASSERT_EQ(SQLOf(copy), second) << "seed " << seed << "\n" << sql;
    }
    EXPECT_GT(withRows, 20);
}

// Statements that the database refuses, which plain rules can make, are left out.
TEST_F(RoundTrip, KeepsWhatPlainQueriesCanSay) {
    int compared = 0;
    for (unsigned seed = 1; seed <= Rounds(); ++seed) {
        TVQueryPanel panel;
        Prepare(panel, seed % 2 ? ssSQL2 : ssSQL1, false);
        TRandomQuery(panel, seed).Make();
        std::string sql;
        std::vector<std::string> rows;
        if (!MessageOf<EVLumoraError>([&] { sql = SQLOf(panel); }).empty())
            continue; // two aliases of one table
        if (panel.GetSQLSyntax() == ssSQL1 && panel.GetQResult().GetResultTables().Count() > 1)
            continue; // joins in WHERE are read as rows
        if (!MessageOf<Exception>([&] { rows = Rows(*database_, sql); }).empty())
            continue;
        TVQueryPanel copy;
        Prepare(copy, panel.GetSQLSyntax(), false);
        copy.SetSQLOptions(panel.GetSQLOptions());
        const std::string error = MessageOf<EVLumoraError>([&] { copy.ParseSQL(TStringList(sql)); });
        if (error.find("Wrong SQL statement") == 0)
            continue; // GROUP BY and ORDER BY of more than columns
        ASSERT_EQ(error, "") << sql;
        ASSERT_EQ(Rows(*database_, SQLOf(copy)), rows) << "seed " << seed << "\n"
                                                       << sql << "\n"
                                                       << SQLOf(copy);
        ++compared;
    }
    EXPECT_GT(compared, 100);
}
