// One model in many threads. Under the thread sanitizer (preset tsan) these tests find what only luck would
// show otherwise.
#include "tests/fixtures.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

using namespace lumora;
using namespace lumora::tests;

namespace {

// Runs the work in eight threads that start together. What one of them raises fails the test.
template <typename TWork>
void InThreads(TWork work) {
    constexpr int count = 8;
    std::atomic<int> waiting{count};
    std::vector<std::string> failures(count);
    std::vector<std::thread> threads;
    for (int number = 0; number < count; ++number)
        threads.emplace_back([&, number] {
            --waiting;
            while (waiting > 0)
                std::this_thread::yield();
            try {
                work(number);
            } catch (const std::exception& error) {
                failures[static_cast<std::size_t>(number)] = error.what();
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    for (const std::string& failure : failures)
        EXPECT_EQ(failure, "");
}

// What a thread expects of a panel, worked out alone beforehand.
struct TExpected {
    TExpected(const char* sql, bool strict) : SQL(sql), Strict(strict) {}

    std::string SQL;
    bool Strict;
    TStringList Query;
    std::string Built;
    std::string Words;
};

// A query's way there and back, on a panel of its own.
void ThereAndBack(TVCustomDBStructure& model, TExpected& result) {
    TVQueryPanel panel;
    panel.SetStrict(result.Strict);
    panel.SetSaveTitles(false);
    panel.SetDbStruct(&model);
    panel.ParseSQL(TStringList(result.SQL));
    panel.BuildQuery();
    result.Built = panel.GetQResult().GetSQL().GetText();
    panel.SaveToStrings(result.Query);
    TVQueryPanel again;
    again.SetStrict(result.Strict);
    again.SetDbStruct(&model);
    again.LoadFromStrings(result.Query);
    again.BuildQuery();
    result.Words = again.GetQueryText() + again.GetQResult().GetSQL().GetText();
}

std::vector<TExpected> Statements() {
    return {
        {"select customers.company as Firm, sum(orders.amount) as Total from customers left join orders on "
         "(customers.custno=orders.custno) where orders.amount between 1 and 2 group by customers.company",
         true},
        {"select orders.amount from customers, orders, lines where lines.qty in (1, 2) and "
         "customers.company like 'x%' and customers.nowhere = 1 order by 1",
         false},
        {"select lines.qty * 2 as Twice from lines where lines.orderno = 5 or lines.at is null", false},
        {"select lines.qty from orders join lines on (orders.orderno=lines.orderno) where not (lines.qty > "
         "3)",
         true}};
}

} // namespace

TEST(Threads, LookUpPathsAndOperatorsInOneModel) {
    for (int round = 0; round < 20; ++round) { // each on a model in which nothing has been looked up
        TShop shop;
        shop.Model.AddCondition(5, "Placed after @", "orders.placed > '@1'");
        shop.Model.GetTable(2)->SetAlias("L");
        const TVCustomDBStructure& model = shop.Model;
        const TDSField* const amount = model.GetField(5);
        InThreads([&](int) {
            EXPECT_EQ(model.FieldByName(fnFullName, "ORDERS.amount"), amount);
            EXPECT_EQ(model.FieldByName(fnSQLExpr, " orders . Amount"), amount);
            EXPECT_EQ(model.FieldByName(fnText, "amount"), amount);
            EXPECT_EQ(model.FieldByID(amount->GetID()), amount);
            EXPECT_EQ(model.TableByName(tnCompoundName, "lines - l"), model.GetTable(2));
            EXPECT_EQ(model.OperatorByName("equalto"), nullptr);
            EXPECT_NE(model.OperatorByName("EqualTo"), nullptr);
            EXPECT_EQ(model.ConditionByID(5), model.GetCondition(0));
            EXPECT_EQ(model.GetUnrecognizedField()->GetOperatCount(), 15);
            TDSPath path(nullptr);
            model.FindPath(*model.GetTable(0), *model.GetTable(2), path);
            EXPECT_EQ(path.GetTableCount(), 3);
            TPlanRequest request;
            request.HasField = true;
            TTemplatePlan spare;
            EXPECT_EQ(model.GetOperator(0)->GetTemplate().Plan(request, spare).Pieces.size(), 2u);
        });
    }
}

TEST(Threads, BuildAndReadQueriesOnOneModel) {
    std::vector<TExpected> expected = Statements();
    TShop alone;
    for (TExpected& one : expected)
        ThereAndBack(alone.Model, one);
    for (int round = 0; round < 3; ++round) {
        TShop shop;
        InThreads([&](int number) { // panels come and go
            for (int i = 0; i < 4; ++i) {
                const TExpected& one = expected[static_cast<std::size_t>(number + i) % expected.size()];
                TExpected mine(one.SQL.c_str(), one.Strict);
                ThereAndBack(shop.Model, mine);
                EXPECT_EQ(mine.Built, one.Built);
                EXPECT_EQ(mine.Query.GetText(), one.Query.GetText());
                EXPECT_EQ(mine.Words, one.Words);
            }
        });
    }
}

TEST(Threads, PanelsComeAndGo) {
    auto model = std::make_unique<TVDBStructure>();
    TVQueryPanel kept;
    kept.SetDbStruct(model.get());
    InThreads([&](int) {
        for (int i = 0; i < 100; ++i) {
            TVQueryPanel panel;
            panel.SetDbStruct(model.get());
            panel.SetDbStruct(i % 2 == 0 ? nullptr : model.get());
        }
    });
    model.reset();
    EXPECT_EQ(kept.GetDbStruct(), nullptr) << "who stayed is told";
}

TEST(Threads, AModelIsCopiedWhileOthersReadIt) {
    TShop shop;
    shop.Model.SetDatabaseInfo(nullptr);
    const std::string text = shop.Model.GetStructString();
    InThreads([&](int) {
        TVDBStructure copy;
        copy.Assign(shop.Model);
        EXPECT_EQ(copy.GetStructString(), text);
    });
}
