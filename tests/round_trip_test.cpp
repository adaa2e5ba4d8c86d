// Random queries on the sample model: strict SQL, read back and written again, means the same.
#include "qtsql/queryrunner.h"
#include "qtsql/sqlitedatabase.h"
#include "support/Vstrings.h"
#include "tests/cli_process.h"
#include "tests/fixtures.h"

#include <gtest/gtest.h>

#include <QCoreApplication>

#include <algorithm>
#include <random>

using namespace lumora;
using namespace lumora::tests;

namespace {

// Makes a panel's query at random.
class TRandomQuery {
public:
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
            formulas[Number(6)], {&Field()}, "Column " + std::to_string(Number(3)));
        if (Chance(3))
            field.SetSorting(Chance(2) ? stAscending : stDescending);
    }

    void FillBracket(TFilterBracket& bracket, int depth) {
        bracket.SetLinkType(static_cast<TFilterLinkType>(Number(4)));
        for (int rows = Number(4); rows > 0; --rows) {
            if (depth > 0 && Chance(3))
                FillBracket(*bracket.AddNewBracket(), depth - 1);
            else if (Chance(6))
                FillValues(*bracket.AddCustomCond(model_.GetCondition(Number(model_.GetConditionCount()))));
            else
                AddCondition(bracket);
            if (Chance(8))
                bracket.GetRow(bracket.GetRowCount() - 1)->SetEnabled(false);
        }
    }

    void AddCondition(TFilterBracket& bracket) {
        TDSField& field = Field();
        if (field.GetOperatCount() == 0)
            return;
        TSimpleCond& condition = *bracket.AddCond();
        condition.SetField(&field);
        condition.SetOperator(field.GetOperator(Number(field.GetOperatCount())));
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

std::vector<std::string> Rows(const SqliteDatabase& database, const std::string& sql) {
    std::vector<std::string> rows;
    runQuery(database.connection(), QString::fromStdString(sql), {},
             {[](const QStringList&) {},
              [&](const QList<QVariant>& values) {
                  std::string row;
                  for (const QVariant& value : values)
                      row += value.isNull() ? "NULL|" : value.toString().toStdString() + "|";
                  rows.push_back(row);
              }});
    std::sort(rows.begin(), rows.end());
    return rows;
}

void Prepare(TVQueryPanel& panel, TVDBStructure& model, TSQLSyntax syntax) {
    panel.SetDbStruct(&model);
    panel.SetStrict(true);
    panel.SetSQLSyntax(syntax);
    panel.Activate();
}

std::string SQLOf(TVQueryPanel& panel) {
    panel.BuildQuery();
    std::string sql = panel.GetQResult().GetSQL().GetText();
    sql.pop_back();
    return sql;
}

} // namespace

TEST(RoundTrip, KeepsTheMeaningOfRandomQueries) {
    int argumentCount = 1;
    char name[] = "test";
    char* arguments[] = {name, nullptr};
    const QCoreApplication application(argumentCount, arguments);
    const TemporaryFolder folder;
    const std::string file = folder / "orders.sqlite";
    ASSERT_EQ(std::system(("python3 " LUMORA_SAMPLES "/make_orders_db.py " + file).c_str()), 0);
    const SqliteDatabase database(file);
    TVDBStructure model;
    model.LoadFromFile(LUMORA_SAMPLES "/orders.model");
    model.GetSQLFormats().SetTime("hh:nn:ss");
    model.GetSQLFormats().SetDateTime("yyyy-mm-dd hh:nn:ss");
    model.SetQuotedTypes(model.GetQuotedTypes() - TQuotedTypes{ftBoolean});

    const char* const wanted = std::getenv("LUMORA_ROUND_TRIPS");
    const unsigned count = wanted ? static_cast<unsigned>(std::atoi(wanted)) : 600;
    int built = 0, withRows = 0;
    for (unsigned seed = 1; seed <= count; ++seed) {
        const auto syntax = static_cast<TSQLSyntax>(seed % 3);
        TVQueryPanel panel;
        Prepare(panel, model, syntax);
        TRandomQuery(panel, seed).Make();
        std::string sql;
        ASSERT_EQ(MessageOf<EVLumoraError>([&] { sql = SQLOf(panel); }), "") << panel.GetQueryText();
        ++built;
        TVQueryPanel copy;
        Prepare(copy, model, syntax);
        copy.SetSQLOptions(panel.GetSQLOptions());
        ASSERT_EQ(MessageOf<EVLumoraError>([&] { copy.ParseSQL(TStringList(sql)); }), "")
            << "seed " << seed << "\n"
            << sql;
        const std::string second = SQLOf(copy);
        if (syntax != ssOracle && second != sql) {
            const std::vector<std::string> rows = Rows(database, sql);
            ASSERT_EQ(Rows(database, second), rows) << "seed " << seed << "\n" << sql << "\n" << second;
            withRows += rows.empty() ? 0 : 1;
        }
        copy.ParseSQL(TStringList(second));
        ASSERT_EQ(SQLOf(copy), second) << "seed " << seed << "\n" << sql;
    }
    EXPECT_EQ(built, static_cast<int>(count));
    EXPECT_GT(withRows, 20);
}
