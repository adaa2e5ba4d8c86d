#include "tests/fixtures.h"

#include <gtest/gtest.h>

using namespace lumora;
using namespace lumora::tests;

TEST(SQLGeneration, LeavesOutWhatIsOff) {
    TShop shop;
    shop.Select("customers.company");
    shop.Where("orders.amount", "GreaterThan", "100");
    shop.Panel.SetSQLSyntax(ssOracle);
    shop.Panel.SetSQLOptions({soBracketConditions});
    shop.SQL();
    EXPECT_EQ(shop.Panel.GetQResult().GetJoinConditions(), "   ((customers.custno=orders.custno (+) ))");
    EXPECT_EQ(shop.Panel.GetQResult().AdjustCondition("a = 1"), "(a = 1)");
    shop.Select("orders.amount");
    shop.Root().GetRow(0)->SetEnabled(false);
    EXPECT_EQ(TStringList(shop.SQL())[4], "   ((customers.custno=orders.custno (+) ))");
    shop.Panel.Deactivate();
    EXPECT_EQ(TStringList(shop.SQL()).Count(), 5);
}

TEST(SQLGeneration, JoinsEveryTableOnTheWay) {
    TShop shop;
    shop.Select("lines.qty");
    shop.Select("customers.company");
    shop.Panel.SetMainTableName("customers");
    // A new table stands right behind the one it is joined to.
    shop.Model.AddTable("region", "");
    shop.Model.AddLinkByExpr("customers-region:r=r");
    TDSField& region =
        *shop.Model.GetField(shop.Model.AddField(vfkVirtual, "region.name", "Region", nullptr));
    shop.Panel.GetQResult().GetResultFields().Add("@1", {&region}, "Region");
    const TRTableList& tables = shop.Panel.GetQResult().GetResultTables();
    shop.SQL();
    EXPECT_EQ(tables.GetItem(1).Table->GetName(), "region");
    EXPECT_EQ(tables.IndexOf(shop.Model.GetTable(2)), 3);
    shop.Model.DelLink(0);
    EXPECT_EQ(MessageOf<EVDBStructError>([&] { shop.SQL(); }), "Can not find path between tables");
    TRTableList list;
    EXPECT_EQ(MessageOf<EVQueryPanelError>([&] { list.Add(region.GetTable(), shop.Model.GetLink(0)); }),
              "Can't add result table: wrong link");
}

TEST(SQLGeneration, GroupsAndSorts) {
    TShop shop;
    EXPECT_EQ(MessageOf<EVQueryPanelError>([&] { shop.SQL(); }), "No enough information for building query");
    shop.Panel.Deactivate();
    shop.Panel.BuildQuery();
    EXPECT_EQ(MessageOf<EVQueryPanelError>([&] { shop.Panel.GetQResult().GetSQL(); }),
              "Query was not built properly");
    shop.Panel.Activate();

    TRFieldList& fields = shop.Panel.GetQResult().GetResultFields();
    TDSField& both = *shop.Model.GetField(
        shop.Model.AddField(vfkVirtual, "orders.amount+customers.custno", "Both", nullptr));
    shop.Select("customers.company")->SetSorting(stDescending);
    fields.Add("@1", {&both}, "Both");
    fields.Add("sum(@1)", {shop.Field("orders.amount")}, "Sum")->SetSorting(stAscending);
    fields.GetRField(2)->SetSortOrder(1);
    fields.GetRField(0)->SetSortOrder(2);
    TStringList lines(shop.SQL());
    EXPECT_EQ(lines[3], "GROUP BY customers.company, orders.amount,customers.custno");
    EXPECT_EQ(lines[4], "ORDER BY 3 ASC, 1 DESC");
    fields.JustSorting = true;
    lines.SetText(shop.SQL());
    EXPECT_EQ(lines[0], "SELECT *");
    EXPECT_EQ(lines[4], "ORDER BY orders.amount ASC, customers.company DESC");

    fields.Clear();
    shop.Panel.SetSQLOptions({soASCIIRFields, soSelectDistinct});
    shop.Select("orders.amount", "x")->SetAlias("Größe");
    EXPECT_EQ(TStringList(shop.SQL())[0], "SELECT DISTINCT orders.amount as C1");
}

TEST(SQLGeneration, WritesDatesInTheModelsFormat) {
    TShop shop;
    const auto text = [&](const std::string& value) {
        shop.Panel.ClearRows();
        shop.Where("customers.since", "Equal", value);
        return shop.Conditions();
    };
    EXPECT_THROW(text("soon"), EConvertError);
    shop.Model.GetSQLFormats().SetDate("mm/dd/yyyy");
    EXPECT_EQ(text("2001-03-05"), "customers.since = '03-05-2001'\n");
    shop.Panel.SetSQLSyntax(ssOracle);
    EXPECT_EQ(text("2001-03-05"), "customers.since = 'TO_DATE(\"05-03-2001\", \"dd-mm-yyyy\")'\n");
    EXPECT_EQ(shop.Panel.ProcessDateValue(ftDate, "12/31/2001", false), "2001-12-31");
}

TEST(SQLGeneration, FillsTemplates) {
    TShop shop;
    const auto text = [&](const std::string& sql, std::string_view field = "orders.amount") {
        shop.Panel.ClearRows();
        const int index = shop.Model.AddOperator("Op", "op", sql, "", LmUsedTypes);
        TSimpleCond* const condition =
            shop.Panel.ManualAddCond(shop.Root(), shop.Field(field), shop.Model.GetOperator(index), "5");
        condition->SetValue(2, "6");
        const std::string result = shop.Conditions();
        shop.Panel.ClearRows();
        shop.Model.DelOperator(index);
        return result;
    };
    shop.Panel.SetMainTableName("customers");
    EXPECT_EQ(text("@f='@1' or '@1'=@f @t @m @v"),
              "orders.amount=5 or 5=orders.amount orders customers @v\n");
    EXPECT_EQ(text("f('a@1b', '@2')"), "f(5, 6)\n");
    EXPECT_EQ(text("x @1 y '@2' z"), "6 z\n"); // from the start to the quote behind, twice
    EXPECT_EQ(text("@1@2'", "customers.company"), "56'\n");

    shop.Model.AddCondition(1, "Big: @ and @", "orders.amount > '@1' and @f < '@2'")
        ->Values[0]
        .SetDataType(ftFloat);
    TCustomCond* const custom = shop.Panel.AddCustomCondition(shop.Root(), *shop.Model.ConditionByID(1));
    custom->SetValue(1, "7");
    custom->SetValue(2, "x");
    EXPECT_EQ(custom->GetValueType(3), ftUnknown);
    EXPECT_EQ(shop.Conditions(), "orders.amount > 7 and @f < 'x'\n");
    shop.Panel.OnBuildSQL = [](TVQueryPanel&, TFilterCond&, std::string& sql) { sql = "/*" + sql + "*/"; };
    shop.Panel.SetSQLOptions({soBracketConditions});
    EXPECT_EQ(shop.Conditions(), "(/*orders.amount > 7 and @f < 'x'*/)\n");
}

TEST(SQLGeneration, LeavesParametersOpen) {
    TShop shop;
    int notices = 0;
    shop.Panel.OnParamListChange = [&](TVQueryPanel&) { ++notices; };
    TSimpleCond* const contains = shop.Where("customers.company", "Contains", "x");
    contains->SetValueIsParam(1, true);
    contains->SetValue(1, "ignored");
    TSimpleCond* const between = shop.Where("orders.amount", "Between", "1", "2");
    between->SetValueIsParam(2, true);
    between->SetValueIsParam(1, true);
    EXPECT_EQ(notices, 3);
    EXPECT_EQ(shop.Conditions(),
              "customers.company like :Param1 AND\norders.amount between :Param3 and :Param2\n");
    TQueryResult& result = shop.Panel.GetQResult();
    result.FindParameter("PARAM1")->Value = "O'Hara";
    EXPECT_EQ(result.FindParameter("param1")->GetFullValue(), "%O'Hara%");
    EXPECT_EQ(result.GetParam(1)->Caption, "amount param 2");
    EXPECT_EQ(result.GetParam(2)->Caption, "amount param 1");
    EXPECT_EQ(result.GetParam(1)->GetDataType(), ftFloat);
    EXPECT_EQ(contains->GetValue(1), "x");

    shop.Model.AddOperator("Near", "near", "near(@f, '~@1~', @v)", "", LmUsedTypes);
    contains->SetOperator(shop.Operator("Near"));
    EXPECT_EQ(TStringList(shop.Conditions())[0], "near(customers.company, :Param1, '~@v~') AND");
    contains->SetOperator(shop.Operator("InList")); // without quotes the stretch is the whole template
    EXPECT_EQ(TStringList(shop.Conditions())[0], ":Param1 AND");
    EXPECT_EQ(result.GetParam(0)->GetFullValue(), "customers.company in (O'Hara)");

    notices = 0;
    result.DeleteParameter(nullptr);
    EXPECT_EQ(notices, 1);
    shop.Root().DeleteRow(1);
    EXPECT_EQ(result.GetParamCount(), 1);
    result.ClearParams();
    EXPECT_FALSE(contains->GetValueIsParam(1));
}

TEST(SQLGeneration, TellsTwoParametersOfAConditionApart) {
    TShop shop;
    shop.Model.AddCondition(1, "From @ to @", "orders.amount between '@1' and '@2'");
    TCustomCond& condition = *shop.Panel.AddCustomCondition(shop.Root(), *shop.Model.ConditionByID(1));
    TQueryResult& result = shop.Panel.GetQResult();
    condition.SetValueIsParam(1, true);
    EXPECT_EQ(result.GetParam(0)->Caption, "From param");
    condition.SetValueIsParam(2, true);
    EXPECT_EQ(result.GetParam(0)->Caption, "From param 1");
    EXPECT_EQ(result.GetParam(1)->Caption, "to param 2");
}

TEST(SQLGeneration, BuildsAgainWhatHasChanged) {
    TShop shop;
    TQueryResult& result = shop.Panel.GetQResult();
    shop.Select("orders.amount");
    const std::string first = shop.SQL();
    EXPECT_EQ(result.GetSQL().GetText(), first);
    shop.Select("customers.company");
    EXPECT_EQ(result.GetSQL().GetText(),
              "SELECT orders.amount, customers.company\nFROM orders\n"
              "     RIGHT OUTER JOIN customers ON (customers.custno=orders.custno)\n");
    shop.Panel.BeginUpdate(); // nobody else is told yet
    shop.Where("lines.qty", "Equal", "1");
    EXPECT_EQ(result.GetSQL().Count(), 8);
    shop.Panel.EndUpdate();
    result.GetResultFields().GetRField(0)->SetDSField(0, shop.Field("orders.placed"));
    EXPECT_EQ(result.GetSQL()[0], "SELECT orders.placed, customers.company");
    result.GetResultFields().JustSorting = true;
    EXPECT_EQ(result.GetSQL()[0], "SELECT *");
    shop.Where("orders.placed", "Equal", "soon");
    EXPECT_THROW(result.GetSQL(), EConvertError);
    EXPECT_THROW(result.GetSQL(), EConvertError); // what is left of a failed build is no statement
    shop.Root().DeleteRow(1);
    EXPECT_EQ(result.GetSQL()[0], "SELECT *");

    // While it is being built a handler gets what there is.
    shop.Panel.OnBuildSQL = [&](TVQueryPanel& panel, TFilterCond&, std::string&) {
        panel.QueryChanged();
        EXPECT_EQ(result.GetSQL()[0], "SELECT *");
    };
    EXPECT_EQ(TStringList(shop.SQL()).Count(), 8);
}

TEST(SQLGeneration, TakesWhatTheHostPutsIn) {
    TShop shop;
    TQueryResult& result = shop.Panel.GetQResult();
    result.GetResultTables().Add(shop.Model.GetTable(1), nullptr);
    result.AddCondition("1=1");
    result.OrderBy = "1";
    EXPECT_EQ(result.GetSQL().GetText(), "SELECT *\nFROM orders\nWHERE\n1=1\nORDER BY 1\n");
    shop.Select("orders.amount");
    result.GroupBy = "orders.amount"; // never built: it stays as it is
    EXPECT_EQ(result.GetSQL().GetText(),
              "SELECT orders.amount\nFROM orders\nWHERE\n1=1\nGROUP BY orders.amount\nORDER BY 1\n");

    // What was built may be changed before it is asked for.
    result.GetResultFields().GetRField(0)->SetSorting(stAscending);
    shop.Where("orders.amount", "Equal", "1");
    shop.Panel.BuildQuery();
    result.AddCondition("and 2=2");
    result.OrderBy += ", 2 DESC";
    EXPECT_EQ(result.GetSQL().GetText(),
              "SELECT orders.amount\nFROM orders\nWHERE\n (\norders.amount = 1\n)\n"
              "and 2=2\nORDER BY 1 ASC, 2 DESC\n");
    result.OrderBy = "1 ASC";
    EXPECT_EQ(result.GetSQL().Last(), "ORDER BY 1 ASC");
    result.OrderBy.clear();
    EXPECT_EQ(result.GetSQL().Last(), "and 2=2");
}
