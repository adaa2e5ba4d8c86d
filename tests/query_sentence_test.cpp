// The query in words, and the captions of totals.
#include "lumora/query/column_total.h"
#include "lumora/screen/query_sentence.h"
#include "tests/fixtures.h"

#include <gtest/gtest.h>

namespace lumora::tests {

namespace {

class QuerySentenceTest : public testing::Test {
protected:
    QuerySentenceTest() {
        shop_.Panel.SetStrict(true);
        for (const char* const name : {"customers", "orders", "lines"})
            shop_.Model.TableByName(tnName, name)
                ->SetDisplayName(std::string(1, LowerAscii(name[0]) - 32) + (name + 1));
    }

    TResultField* Add(const std::string& formula, std::string_view field, const std::string& caption) {
        return Columns().Add(formula, {shop_.Field(field)}, caption);
    }
    TRFieldList& Columns() { return shop_.Panel.GetQResult().GetResultFields(); }
    // What is said of the columns once the query was built.
    std::string Shown() {
        shop_.Panel.BuildQuery();
        const std::string all = QuerySentence(shop_.Panel.GetScreen());
        return all.substr(0, all.find(". Choose"));
    }
    void Distinct() { shop_.Panel.SetSQLOptions({soSelectDistinct}); }

    TShop shop_;
};

TEST_F(QuerySentenceTest, TellsTotalsAndWhatTheyAreFor) {
    Add("sum(@1)", "orders.amount", "Sum of amount");
    EXPECT_EQ(Shown(), "Show the sum of amount");
    Add("@1", "orders.placed", "Placed");
    Add("COUNT(@1)", "orders.custno", "Turnover");
    EXPECT_EQ(Shown(),
              "Show the sum of amount and the number of values of custno (Turnover) for each Placed");
    Columns().Clear();
    Add("count(distinct @1)", "customers.company", "Number of different values of company");
    Add("max(@1)", "orders.amount", "amount")->SetSorting(stDescending);
    Add("avg(@1)", "lines.qty", "Average of qty")->SetSorting(stAscending);
    shop_.Model.FieldByName(fnSQLExpr, "customers.custno")->FieldType = ftAutoInc;
    Add("count(@1)", "customers.custno", "Number of Customers");
    EXPECT_EQ(Shown(), "Show the number of different values of company, the greatest amount, the average of "
                       "qty and the number of Customers, only Customers with Orders and Lines, sorted by the "
                       "greatest amount descending and the average of qty");
    // A formula says how it counts, and groups are made by the fields that it holds.
    Columns().Clear();
    Add("round(sum(@1), 2)", "orders.amount", "Worth");
    Add("year(@1)", "orders.placed", "Year");
    Distinct();
    EXPECT_EQ(Shown(),
              "Show Worth (round(sum(amount), 2)) and Year for each placed, each different row once");
    // A group that is not shown may give equal rows; a column that is not grouped by shows any one record.
    Columns().Clear();
    Add("year(@1)", "orders.placed", "Year")->SetGrouping(cgKey);
    EXPECT_EQ(Shown(), "Show Year");
    Add("sum(@1)", "orders.amount", "Sum of amount");
    EXPECT_EQ(Shown(), "Show the sum of amount for each Year");
    Columns().GetRField(0)->SetHidden(true);
    Add("@1", "orders.custno", "Number")->SetGrouping(cgAny);
    EXPECT_EQ(Shown(), "Show the sum of amount and any one Number for each Year, each different row once");
    shop_.Panel.SetSQLOptions({});
    // Fields of one caption are told apart.
    Columns().Clear();
    Add("max(@1)", "customers.custno", "A");
    Add("min(@1)", "orders.custno", "B");
    EXPECT_EQ(Shown(), "Show the greatest custno of Customers (A) and the least custno of Orders (B)");
}

TEST_F(QuerySentenceTest, TellsRowsThatAreLeftOut) {
    Distinct();
    Add("@1", "customers.company", "Name");
    EXPECT_EQ(Shown(), "Show Name, each different row once");
    Add("sum(@1)", "orders.amount", "Sum of amount");
    EXPECT_EQ(Shown(), "Show the sum of amount for each Name") << "groups come once by themselves";
    shop_.Panel.SetSQLOptions({});

    // customers -left- orders -inner- lines: a line is needed, and so the order that has it.
    Columns().Clear();
    Add("@1", "customers.company", "Name");
    shop_.Where("lines.qty", "GreaterThan", "3");
    EXPECT_EQ(Shown(), "Show Name, only Customers with Orders and Lines");
    shop_.Panel.SetMainTableName("orders"); // the left link the other way round
    EXPECT_EQ(Shown(), "Show Name, only Orders with Lines and Customers, also Customers without Orders");
    shop_.Model.GetLink(0)->LinkType = ltOuterFull;
    EXPECT_EQ(Shown(), "Show Name, only Orders with Lines");
    shop_.Model.GetLink(0)->LinkType = ltInner;
    EXPECT_EQ(Shown(), "Show Name, only Orders with Lines and Customers");

    // Whole records name their tables; of a query that was not built nobody knows them.
    Columns().Clear();
    Columns().JustSorting = true;
    EXPECT_EQ(Shown(), "Show all fields of Orders and Lines, only Orders with Lines");
    shop_.Where("customers.company", "Equal", "");
    EXPECT_EQ(QuerySentence(shop_.Panel.GetScreen()).substr(0, 16), "Show all fields.");
}

TEST_F(QuerySentenceTest, PutsBracketsAroundTheirRows) {
    EXPECT_EQ(QuerySentence(shop_.Panel.GetScreen()), "");
    TFilterBracket& any = *shop_.Panel.AddBracket(shop_.Root());
    any.SetLinkType(fltAny);
    shop_.Where("orders.amount", "GreaterThan", "1", "", &any);
    TFilterBracket& none = *shop_.Panel.AddBracket(any);
    none.SetLinkType(fltNone);
    shop_.Where("lines.qty", "GreaterThan", "2", "", &none);
    shop_.Where("lines.qty", "GreaterThan", "9", "", &none)->SetEnabled(false);
    shop_.Panel.AddBracket(shop_.Root());
    shop_.Where("lines.qty", "GreaterThan", "");
    EXPECT_EQ(
        ConditionSentence(shop_.Panel.GetScreen()),
        "Choose records where all of the following apply: any of the following apply (amount is greater "
        "than 1; none of the following apply (qty is greater than 2)); qty is greater than <value>.");
    shop_.Panel.ClearRows();
    Add("@1", "orders.placed", "Placed");
    EXPECT_EQ(QuerySentence(shop_.Panel.GetScreen()), "Show Placed. Choose all records.");
}

TEST_F(QuerySentenceTest, CaptionsOfTotalsFollowUntilOneIsTyped) {
    TResultField& column = *Add("@1", "orders.amount", "amount");
    SetTotal(column, ctSum);
    EXPECT_EQ(column.GetCaption() + "|" + column.GetAlias(), "Sum of amount|Sum_of_amount");
    SetTotal(*Add("@1", "orders.amount", "amount"), ctSum);
    EXPECT_EQ(Columns().GetRField(1)->GetCaption(), "Sum of amount1");
    SetTotal(*Columns().GetRField(1), ctCount);
    EXPECT_EQ(Columns().GetRField(1)->GetCaption(), "Number of values of amount");
    SetTotal(column, ctValue);
    EXPECT_EQ(column.GetCaption(), "amount");
    column.SetCaption("Turnover");
    SetTotal(column, ctGreatest);
    EXPECT_EQ(column.GetCaption() + "=" + column.GetFormula(), "Turnover=max(@1)");
    // A stored caption stays, and its heading does not pass for the values themselves.
    TResultField& stored = *Add("avg(@1)", "lines.qty", "qty");
    EXPECT_EQ(ColumnHeading(stored) + "|" + stored.GetCaption(), "Average of qty|qty");
    EXPECT_EQ(ColumnHeading(column), "Turnover");
}

TEST_F(QuerySentenceTest, TablesThatNothingJoinsAreNamed) {
    shop_.Model.DelLink(1);
    Add("@1", "orders.placed", "Placed");
    Add("@1", "lines.qty", "Qty");
    EXPECT_EQ(MessageOf<EVQueryPanelError>([&] { shop_.SQL(); }),
              "No links of the data model lead from \"Orders\" to \"Lines\"");
}

} // namespace

} // namespace lumora::tests
