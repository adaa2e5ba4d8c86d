#include "lumora/support/Vstrings.h"
#include "tests/fixtures.h"

#include <gtest/gtest.h>

using namespace lumora;
using namespace lumora::tests;

namespace {

class SQLReader : public testing::Test {
protected:
    void Parse(const std::string& sql) { shop_.Panel.ParseSQL(TStringList(sql)); }
    std::string Refusal(const std::string& sql) {
        return MessageOf<EVLumoraError>([&] { Parse(sql); });
    }
    void ParseWhere(const std::string& where) { Parse("select orders.amount from orders where " + where); }
    TSimpleCond& Row(int i) { return static_cast<TSimpleCond&>(*shop_.Root().GetRow(i)); }

    TShop shop_;
};

class StrictSQLReader : public SQLReader {
protected:
    StrictSQLReader() { shop_.Panel.SetStrict(true); }
    // What the panel makes of a statement that it read.
    std::string Again(const std::string& sql) {
        Parse(sql);
        return shop_.SQL();
    }
};

} // namespace

TEST_F(SQLReader, MapsOntoTheModel) {
    int changes = 0;
    shop_.Panel.OnChange = [&](TVQueryPanel&) { ++changes; };
    Parse("select customers.company as Firm, SUM(orders.amount) from customers, orders\n"
          "where (orders.amount != 5 or not(customers.company = 'x')) and customers.since >= '2001-03-05'\n"
          "order by 2 desc");
    EXPECT_EQ(changes, 0);
    EXPECT_TRUE(shop_.Panel.GetActive());
    EXPECT_EQ(shop_.Panel.GetState(), stIdle);
    const TRFieldList& fields = shop_.Panel.GetQResult().GetResultFields();
    EXPECT_EQ(fields.GetRField(0)->GetSelectExpr(), "customers.company as Firm");
    EXPECT_EQ(fields.GetRField(1)->GetCaption(), "amount");
    EXPECT_EQ(fields.GetRField(1)->GetSelectExpr(), "sum(orders.amount)");
    EXPECT_EQ(fields.GetRField(1)->GetSorting(), stDescending);
    EXPECT_FALSE(fields.JustSorting);
    EXPECT_EQ(shop_.Panel.GetQueryText(), " Choose records where all of the following apply\n"
                                          "   any of the following apply\n"
                                          "     amount is not equal to 5\n     company is not equal to x\n"
                                          "   since is greater than or equal to 2001-03-05\n");
    Parse("select distinct * from orders order by orders.amount");
    EXPECT_TRUE(fields.JustSorting);
    EXPECT_TRUE(fields.Distinct);
    EXPECT_EQ(fields.GetRField(0)->GetSQLExpr(), "orders.amount");
}

TEST_F(SQLReader, FindsParametersAndOperators) {
    ParseWhere("orders.amount >= :Low and customers.company like :Word and customers.since = '00/00/00'");
    EXPECT_EQ(shop_.Panel.GetQResult().GetParam(0)->Name, "Low");
    EXPECT_TRUE(Row(1).GetValueIsParam(1));
    EXPECT_EQ(Row(2).GetValue(1), "");
    std::string value1, value2;
    TStringList subQuery;
    TVSQLParser parser;
    parser.SetSQLText("select * from t where orders.amount between 3 and 4");
    parser.Parse();
    const auto& condition = static_cast<TSQLCondition&>(*parser.GetResult().RootBracket->GetFirst());
    EXPECT_EQ(shop_.Panel.OperatorBySQLCond(condition, value1, value2, subQuery)->GetName(), "Between");
    EXPECT_EQ(value1 + value2, "34");
}

TEST_F(SQLReader, UnfoldsSubQueries) {
    const int index = shop_.Model.AddOperator("InSub", "is one of", "@f in (@1)", "", LmUsedTypes);
    shop_.Model.GetOperator(index)->ValueKind = vkSubQuery;
    shop_.Panel.SetSaveTitles(false);
    ParseWhere(
        "orders.amount in (select orders.amount from orders where orders.amount > 5) and orders.amount in "
        "(1)");
    EXPECT_EQ(Row(0).GetOperator()->GetName(), "InSub");
    EXPECT_EQ(Row(1).GetOperator()->GetName(), "InList");
    EXPECT_EQ(Row(0).GetValue(1), "select orders.amount from orders where orders.amount > 5");
    EXPECT_EQ(
        XStrToInt(TSectionLines(Row(0).GetSubQuery(), 0, Row(0).GetSubQuery().Count()).Value("RowCount")), 1);
    std::string deep = "orders.amount > 5";
    for (int level = 0; level < 300; ++level)
        deep = "orders.amount in (select orders.amount from orders where " + deep + ")";
    ParseWhere(deep);
    EXPECT_LT(Row(0).GetSubQuery().GetText().size(), 200'000u);
}

TEST_F(SQLReader, FailsWithAnIdlePanel) {
    EXPECT_EQ(Refusal("select x"), "Wrong SQL statement\r\nLine:1");
    EXPECT_EQ(shop_.Panel.GetState(), stIdle);
    EXPECT_TRUE(shop_.Panel.GetActive());
    TVQueryPanel panel;
    EXPECT_EQ(MessageOf<EVQueryPanelError>([&] { panel.ParseSQL(TStringList("select x from t")); }),
              "DBStructure is not specified");
}

TEST_F(StrictSQLReader, ReadsBackWhatTheGeneratorWrites) {
    shop_.Model.AddCondition(1, "Big", "orders.amount * 2 > '@1'")->Values.resize(1);
    shop_.Model.ConditionByID(1)->Values[0].SetDataType(ftFloat);
    shop_.Model.GetTable(1)->SetHints("(NOLOCK)");
    shop_.Select("customers.company", "Firm");
    shop_.Panel.GetQResult().GetResultFields().Add("sum(@1) || ' Ab'", {shop_.Field("orders.amount")}, "Sum");
    shop_.Panel.GetQResult().GetResultFields().GetRField(1)->SetSorting(stDescending);
    shop_.Where("customers.company", "InList", "\"O'Hara, Ltd\",b");
    TFilterBracket& none = *shop_.Panel.AddBracket(shop_.Root());
    none.SetLinkType(fltNone);
    shop_.Where("customers.since", "Between", "2001-03-05", "2002-01-01", &none);
    shop_.Where("customers.company", "NotContains", "100%s", "", &none);
    TFilterBracket& notAll = *shop_.Panel.AddBracket(none);
    notAll.SetLinkType(fltNotAll);
    shop_.Where("orders.placed", "GreaterThan", "2001-03-05 14:30", "", &notAll);
    shop_.Where("lines.at", "LessThan", "09:00", "", &notAll)->SetEnabled(true);
    shop_.Panel.AddCustomCondition(shop_.Root(), *shop_.Model.ConditionByID(1))->SetValue(1, "7");
    shop_.Where("orders.amount", "Equal", "1")->SetValueIsParam(1, true);
    const TSQLOptions sets[] = {{},
                                {soSelectDistinct, soBracketJoins},
                                {soBracketConditions, soSortByNames},
                                {soQuoteAliases, soASCIIRFields, soBracketConditions}};
    for (const TSQLSyntax syntax : {ssSQL1, ssSQL2, ssOracle})
        for (const TSQLOptions options : sets) {
            shop_.Panel.SetSQLSyntax(syntax);
            shop_.Panel.SetSQLOptions(options);
            const std::string sql = shop_.SQL();
            EXPECT_EQ(Again(sql), sql);
        }
}

// Names with quotes in them come out quoted and doubled, and are found again.
TEST_F(StrictSQLReader, ReadsBackQuotedNames) {
    TDSTable& table = *shop_.Model.GetTable(1);
    TDSField& amount = *shop_.Field("orders.amount");
    amount.SetFieldName("in\"ch");
    amount.SetQuoted(true);
    shop_.Panel.GetQResult().GetResultFields().Add("@1", {&amount}, "in\"ch")->SetSorting(stAscending);
    shop_.Select("customers.company")->SetSorting(stDescending);
    shop_.Panel.ManualAddCond(shop_.Root(), &amount, shop_.Operator("LessThan"), "2.5");
    const auto comesBack = [&](const std::string& name, bool quoted, const std::string& alias) {
        table.SetName(name);
        table.SetQuoted(quoted);
        table.SetAlias(alias);
        for (const TSQLSyntax syntax : {ssSQL1, ssSQL2, ssOracle}) {
            shop_.Panel.SetSQLSyntax(syntax);
            const std::string sql = shop_.SQL();
            EXPECT_NE(sql.find("FROM \"Ta\"\"b\""), std::string::npos) << sql;
            EXPECT_NE(sql.find(alias + ".\"in"), std::string::npos) << sql;
            EXPECT_EQ(Again(sql), sql);
        }
    };
    comesBack("Ta\"b", true, "T");
    table.SetAlias("Ta\"b"); // that is no alias
    EXPECT_NE(MessageOf<EVQueryPanelError>([&] { shop_.SQL(); }), "");
    table.SetAlias("T");
    EXPECT_EQ(TStringList(Again("select T.\"in\"\"ch\", customers.company from \"Ta\"\"b\" T, customers "
                                "where customers.custno = T.custno (+) "
                                "order by T.\"in\"\"ch\" asc, 2 desc"))
                  .Last(),
              "ORDER BY 1 ASC, 2 DESC");
    amount.SetFieldName("inch");
    shop_.Panel.ManualAddCond(shop_.Root(), &amount, shop_.Operator("LessThan"), "2.5");
    comesBack("\"Ta\"\"b\"", false, "\"Ta\"\"b\"");
}

TEST_F(StrictSQLReader, TurnsPredicatesIntoTheirOpposite) {
    const auto reads = [&](const std::string& where, bool opposite, const std::string& words) {
        ParseWhere(where);
        EXPECT_EQ(shop_.Panel.GetQueryText(),
                  " Choose records where all of the following apply\n" +
                      (opposite ? "   none of the following apply\n     " + words : "   " + words) + "\n")
            << where;
    };
    reads("orders.amount is null", false, "amount is null");
    reads("orders.amount is not null", true, "amount is null");
    reads("not (orders.amount is null)", true, "amount is null");
    reads("not (orders.amount is not null)", false, "amount is null");
    EXPECT_NE(Refusal("select orders.amount from orders where orders.amount is unknown"), "");
    TDSCondition& condition = *shop_.Model.AddCondition(1, "small for @", "");
    condition.SetSQLExpr("orders.amount * 2 > '@1'");
    condition.Values.at(0).SetDataType(ftFloat);
    reads("orders.amount * 2 > 7", false, "small for 7");
    reads("not (orders.amount * 2 > 7)", true, "small for 7");
    for (const char* const sql : {"not(orders.amount * 2 > '@1')", "not orders.amount * 2 > '@1'"}) {
        condition.SetSQLExpr(sql);
        reads("orders.amount * 2 > 7", true, "small for 7");
        reads("not (orders.amount * 2 > 7)", false, "small for 7");
        reads("not orders.amount * 2 > 7", false, "small for 7");
    }
}

TEST_F(StrictSQLReader, TakesOnlyOperatorsThatTheFieldOffers) {
    const std::string sql = "select orders.amount from orders where orders.amount > 5";
    EXPECT_EQ(Refusal(sql), "");
    shop_.Field("orders.amount")->RemoveOperator(shop_.Operator("GreaterThan"));
    EXPECT_EQ(Again(sql).substr(Again(sql).find("WHERE")),
              "WHERE\n (\n NOT (\norders.amount <= 5\n)\n)\n"); // another one of its own
    shop_.Field("orders.amount")->RemoveOperator(shop_.Operator("LessOrEqual"));
    EXPECT_EQ(Refusal(sql), "Unrecognized operator \"orders.amount > 5\"\r\nLine:1");
}

TEST_F(StrictSQLReader, TellsTheOffendingPlace) {
    const auto place = [this](const std::string& sql) {
        TTextPlace found;
        try {
            Parse(sql);
        } catch (const ESQLParserError& error) {
            found = error.Place;
        } catch (const EVQueryPanelError& error) {
            found = error.Place;
        }
        return std::to_string(found.Line) + ":" +
               sql.substr(static_cast<std::size_t>(found.Position), static_cast<std::size_t>(found.Length));
    };
    EXPECT_EQ(place("select amount,\n nothing + 1 from orders"), "2:nothing + 1");
    EXPECT_EQ(place("select amount from orders\nwhere amount = 1\n and not nothing > 2 or 1 = 1"),
              "3:nothing > 2");
    EXPECT_EQ(place("select amount\nfrom nobody x"), "2:nobody");
    EXPECT_EQ(place("select amount from orders\norder by nothing desc"), "2:nothing");
    EXPECT_EQ(place("select amount from\nwhere amount = 1"), "2:where");
    EXPECT_EQ(place("select amount from orders having 1 = 1"), "1:having");
}

// A text that says more than older readers know names it, and only then.
TEST_F(StrictSQLReader, KeepsMainTableAndShownTablesInTheText) {
    shop_.Panel.SetSaveTitles(false);
    const auto main = [this] {
        TStringList lines;
        shop_.Panel.SaveToStrings(lines);
        const std::string text = lines.GetText();
        return text.substr(text.find("Options="), text.find("\n\n") - text.find("Options="));
    };
    Parse("select amount from orders"); // it begins with that table anyway
    EXPECT_EQ(main(), "Options=");
    Parse("select * from orders");
    EXPECT_EQ(main(), "Options=\nNeeds=MainTable\nMainTable=orders");
    shop_.Model.SetDefaultMainTable(shop_.Model.TableByName(tnName, "orders"));
    EXPECT_EQ(main(), "Options=");
    shop_.Model.SetDefaultMainTable(nullptr);
    Parse("select o.amount from orders o join customers on customers.custno = o.custno");
    EXPECT_EQ(main(), "Options=\nNeeds=MainTable,Tables\nMainTable=orders\n"
                      "Tables=\"customers inner orders:custno=custno\"");
    const std::string sql = shop_.SQL();
    EXPECT_NE(sql.find("FROM orders\n     INNER JOIN customers ON (customers.custno=orders.custno)"),
              std::string::npos)
        << sql;
    TStringList lines;
    shop_.Panel.SaveToStrings(lines);
    for (const bool strict : {true, false}) {
        TVQueryPanel copy;
        copy.SetDbStruct(&shop_.Model);
        copy.SetStrict(strict);
        copy.SetSQLOptions({});
        copy.SetSaveTitles(false);
        copy.Activate();
        copy.LoadFromStrings(lines);
        copy.BuildQuery();
        EXPECT_EQ(copy.GetQResult().GetSQL().GetText(), sql);
        TStringList again;
        copy.SaveToStrings(again);
        EXPECT_EQ(again.GetText(), lines.GetText());
    }
    shop_.Model.DelLink(0);
    EXPECT_EQ(MessageOf<EVQueryPanelError>([&] { shop_.SQL(); }),
              "The data model does not join \"customers\" any more as the query does");
    EXPECT_EQ(MessageOf<EVLumoraError>([&] {
                  shop_.Panel.LoadFromStrings(TStringList("[Main]\nVersion=3.5\nNeeds=Tables,Wings\n"));
              }),
              "The text needs \"Wings\", which this version does not know");
}
