// What a query's dialect changes in its statement.
#include "lumora/platform/string_list.h"
#include "lumora/query/strict_checks.h"
#include "lumora/statement/dialects/dialect.h"
#include "lumora/statement/sql_printer.h"
#include "tests/strict_shop.h"

#include <gtest/gtest.h>

using namespace lumora;
using namespace lumora::tests;

namespace {

class Dialect : public StrictShop {};

} // namespace

TEST_F(Dialect, WritesDatesAndTruthValues) {
    shop_.Model.GetSQLFormats().SetDate("mm/dd/yyyy");
    const auto date = [&] { return Text("customers.since", "Equal", "2001-03-05"); };
    const auto moment = [&] { return Text("orders.placed", "Equal", "2001-03-05 14:30:00.250"); };
    const auto truth = [&] { return Text("customers.active", "InList", "true,0"); };
    shop_.Model.GetSQLFormats().SetDateTime("yyyy-mm-dd hh:nn:ss");
    EXPECT_EQ(date(), "customers.since = '03-05-2001'\n");
    EXPECT_EQ(truth(), "customers.active in ('true','0')\n");
    shop_.Panel.SetDialect(sdSQLite);
    EXPECT_EQ(date(), "customers.since = '03-05-2001'\n"); // as the model says that it is stored
    EXPECT_EQ(truth(), "customers.active in (1,0)\n");
    shop_.Panel.SetDialect(sdPostgreSQL);
    EXPECT_EQ(date(), "customers.since = '2001-03-05'\n");
    EXPECT_EQ(moment(), "orders.placed = '2001-03-05 14:30:00.250'\n");
    EXPECT_EQ(truth(), "customers.active in (TRUE,FALSE)\n");
    EXPECT_EQ(shop_.Panel.ProcessDateValue(ftDateTime, "2001-03-05", true), "2001-03-05 00:00:00");
    shop_.Panel.SetDialect(sdOracle);
    for (const bool strict : {true, false}) {
        shop_.Panel.SetStrict(strict);
        EXPECT_EQ(date(), "customers.since = TO_DATE('05-03-2001', 'dd-mm-yyyy')\n");
        EXPECT_EQ(truth(), "customers.active in (1,0)\n");
        EXPECT_EQ(Text("lines.qty", "InList", "1,2"), "lines.qty in (1,2)\n");
    }
}

TEST_F(Dialect, QuotesNamesAsTheEngineTakesThem) {
    TDSField& amount = *shop_.Field("orders.amount");
    amount.SetFieldName("a]b");
    amount.SetQuoted(true);
    shop_.Model.GetTable(1)->SetName("\"s\".\"or\"\"ders\"");
    shop_.Model.GetTable(1)->SetAlias("o");
    shop_.Model.GetTable(1)->SetQuoted(true);
    shop_.Model.GetSQLFormats().SetQuoteSymbol1('[');
    shop_.Model.GetSQLFormats().SetQuoteSymbol2(']');
    shop_.Panel.GetQResult().GetResultFields().Add("@1", {&amount}, "x")->SetAlias("a \\ b");
    const auto sql = [&](TSQLDialect dialect) {
        shop_.Panel.SetDialect(dialect);
        return shop_.SQL();
    };
    const std::string bracketed = "SELECT o.[a]]b] as [a \\ b]\nFROM \"s\".\"or\"\"ders\" o\n";
    EXPECT_EQ(sql(sdStandard), bracketed);
    EXPECT_EQ(sql(sdSQLite), bracketed); // it takes them
    EXPECT_EQ(sql(sdPostgreSQL), "SELECT o.\"a]b\" as \"a \\ b\"\nFROM \"s\".\"or\"\"ders\" o\n");
    EXPECT_EQ(sql(sdMySQL), "SELECT o.`a]b` as `a \\ b`\nFROM `s`.`or\"ders` o\n");
    shop_.Model.GetTable(1)->SetAlias("\"o\"");
    EXPECT_EQ(sql(sdMySQL), "SELECT `o`.`a]b` as `a \\ b`\nFROM `s`.`or\"ders` `o`\n");
    amount.SetFieldName("a`\"b");
    EXPECT_EQ(TStringList(sql(sdMySQL))[0], "SELECT `o`.`a``\"b` as `a \\ b`");
    EXPECT_EQ(TStringList(sql(sdPostgreSQL))[0], "SELECT \"o\".\"a`\"\"b\" as \"a \\ b\"");
    // An aggregate's name within a name calls nothing.
    shop_.Panel.SetDialect(sdMySQL);
    amount.SetFieldName("sum(x)");
    EXPECT_FALSE(shop_.Panel.GetQResult().GetResultFields().GetRField(0)->GetAgregate());
}

// A backslash in quotes escapes or not, as the server's mode has it.
TEST_F(Dialect, HoldsTextsWithBackslashesUnderMySQL) {
    shop_.Panel.SetDialect(sdMySQL);
    EXPECT_EQ(Text("customers.company", "Equal", "O'Hara"), "customers.company = 'O''Hara'\n");
    EXPECT_EQ(Text("customers.company", "Equal", "\\' OR 1=1 -- "),
              "customers.company = _utf8mb4 X'5C27204F5220313D31202D2D20'\n");
    EXPECT_EQ(Text("customers.company", "Between", "a", "\\"),
              "customers.company between 'a' and _utf8mb4 X'5C'\n");
    EXPECT_EQ(Text("customers.company", "InList", "a,\\"), "customers.company in ('a',_utf8mb4 X'5C')\n");
    EXPECT_EQ(Text("customers.company", "StartsWith", "\\'%"),
              "customers.company like _utf8mb4 X'5C27212525' ESCAPE '!'\n");
    const auto refusalOf = [&](const std::string& sql, const std::string& value) {
        const int index = shop_.Model.AddOperator("Op", "", sql, "", LmUsedTypes);
        const std::string message = Refusal("customers.company", "Op", value);
        shop_.Panel.ClearRows();
        shop_.Model.DelOperator(index);
        return message;
    };
    EXPECT_EQ(refusalOf("@f = @1", "\\"), "");
    for (const char* const sql : {"@f = 'a''@1'", "@f = '@1''b'", "@f = N'@1'", "@f = '@1", "@f = '@1 '"})
        EXPECT_NE(refusalOf(sql, "\\"), "") << sql;

    TRFieldList& fields = shop_.Panel.GetQResult().GetResultFields();
    const auto formula = [&](const std::string& text) {
        fields.Clear();
        fields.Add(text, {shop_.Field("orders.amount")}, "x");
        return MessageOf<EVQueryPanelError>([&] { shop_.SQL(); });
    };
    for (const char* const good : {"concat(@1, _utf8mb4 X'5C')", "`a\\``'b`", "@1 || \"a\""})
        EXPECT_EQ(formula(good), "") << good;
    for (const char* const bad : {"'\\'", "\"\\\"", "`a", "@1#", "a#b", "_utf8mb4 X'5C\\''", "X'5'", "@1\\"})
        EXPECT_NE(formula(bad), "") << bad;
    fields.Clear();

    const int sub = shop_.Model.AddOperator("InSub", "", "@f in ('@1')", "", LmUsedTypes);
    shop_.Model.GetOperator(sub)->ValueKind = vkSubQuery;
    EXPECT_EQ(Refusal("customers.company", "InSub", "select '\\' or ' from t"),
              "Invalid value \"select '\\' or ' from t\" for \"company\"");

    shop_.Panel.ClearRows();
    shop_.Model.AddOperator("Near", "near", "near(@f, '~\\@1~', @v)", "", LmUsedTypes);
    TSimpleCond* const near = shop_.Where("customers.company", "Near", "");
    near->SetValueIsParam(1, true);
    EXPECT_EQ(shop_.Conditions(), "near(customers.company, :Param1, _utf8mb4 X'7E5C40767E')\n");
}

// 14.4 in a column of single precision is less than 14.4 in all its digits.
TEST_F(Dialect, ComparesSinglePrecisionAsSuch) {
    shop_.Field("orders.amount")->FieldSize = 4;
    EXPECT_EQ(Text("orders.amount", "Equal", "14.4"), "orders.amount = 14.4\n");
    shop_.Panel.SetDialect(sdPostgreSQL);
    EXPECT_EQ(Text("orders.amount", "InList", "14.4,2"),
              "orders.amount in (CAST(14.4 AS REAL),CAST(2 AS REAL))\n");
    const std::string sql = shop_.SQL();
    shop_.Panel.ParseSQL(TStringList(sql));
    EXPECT_EQ(shop_.SQL(), sql);
    const auto refusal = [&](const std::string& value) {
        return MessageOf<EVLumoraError>([&] {
            shop_.Panel.ParseSQL(
                TStringList("select orders.amount from orders where orders.amount < " + value));
        });
    };
    EXPECT_EQ(refusal("14.5"), "");
    EXPECT_NE(refusal("14.4"), ""); // it would find other rows
    shop_.Panel.SetStrict(false);
    EXPECT_EQ(Text("orders.amount", "Equal", "14.4"), "orders.amount = 14.4\n");
}

TEST_F(Dialect, ReadsBackWhatItWrites) {
    for (const TSQLDialect dialect : {sdSQLite, sdPostgreSQL, sdMySQL}) {
        shop_.Panel.SetDialect(dialect);
        Text("customers.active", "Equal", "true");
        shop_.Where("orders.placed", "InList", "2001-03-05 14:30,2001-03-06 00:00");
        const std::string sql = shop_.SQL();
        shop_.Panel.ParseSQL(TStringList(sql));
        EXPECT_EQ(shop_.SQL(), sql);
    }
}

// Quotes of a template around a list or a sub-query are no place for quotes inside.
TEST_F(Dialect, LetsNoListLeaveTheQuotesAroundIt) {
    const int list = shop_.Model.AddOperator("List", "", "@f in ('@1')", "", LmUsedTypes);
    shop_.Model.GetOperator(list)->ValueKind = vkList;
    EXPECT_EQ(Text("customers.company", "List", ") or 1=1 --,b"),
              "customers.company in (') or 1=1 --','b')\n");
}

TEST(Statement, PrintsWhatNoQueryMakesYet) {
    TShop shop;
    TStatement statement;
    TJoinedTable* const table = statement.Nodes.New<TJoinedTable>();
    table->Table = shop.Model.GetTable(1);
    statement.Select.Tables.Add(table);
    TPredicate* const having = statement.NewBracket(true, true);
    having->Members.Add(statement.NewLeaf("count(*) > 1"));
    TPredicate* const inner = statement.NewBracket(false, false);
    inner->Members.Add(statement.NewLeaf("sum(amount) < 2"));
    inner->Members.Last->Parenthesized = true;
    having->Members.Add(inner);
    statement.Select.Having = having;
    statement.Select.Limit = 10;
    TPrintOptions options;
    options.Limit = PostgreSQLDialect.Limit;
    TStringList lines;
    TSQLPrinter(statement, options).Print(lines, {});
    EXPECT_EQ(lines.GetText(),
              "SELECT *\nFROM orders\nHAVING\n NOT (\ncount(*) > 1 OR\n (\n(sum(amount) < 2)\n)\n)\n"
              "LIMIT 10\n");
}

TEST(Statement, KnowsTheTablesAndValuesOfALeaf) {
    TShop shop;
    shop.Where("orders.amount", "Between", "1.5", "2")->SetValueIsParam(2, true);
    shop.Panel.BuildQuery();
    const TStatement& statement = shop.Panel.GetQResult().GetStatement();
    const TPredicate& leaf = *statement.Select.Where->Members.First;
    EXPECT_EQ(statement.View(leaf.Text), "orders.amount between 1.5 and :Param1");
    EXPECT_EQ(leaf.Tables->front()->GetName(), "orders");
    const TLeafValue& least = *leaf.Values.First;
    EXPECT_EQ(statement.View(least.Text), "1.5");
    EXPECT_EQ(least.Type, ftFloat);
    ASSERT_EQ(least.Next, leaf.Values.Last);
    EXPECT_EQ(statement.View(least.Next->Text), ":Param1");
    EXPECT_TRUE(least.Next->IsParam);
}
