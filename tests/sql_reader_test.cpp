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
    // The words of the query that comes back, without the header's and without indentation.
    std::string Words(const std::string& where) {
        Parse("select orders.amount from orders" + (where.empty() ? where : " where " + where));
        TStringList lines(shop_.Panel.GetQueryText());
        std::string text;
        for (int i = 1; i < lines.Count(); ++i)
            text.append(Trim(lines[i])).append(i + 1 < lines.Count() ? "; " : "");
        return text;
    }
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

TEST_F(SQLReader, MatchesOperators) {
    EXPECT_EQ(Words("customers.company LIKE 'O''H%' or customers.company not like '%x_y%'"),
              "company starts with O'H; company does not contain x_y");
    EXPECT_EQ(Words("orders.amount between 1 and 2.5 and not (orders.amount in (1, 2))"),
              "amount is between 1 and 2.5; amount is not in list 1, 2");
    EXPECT_EQ(Words("customers.company in ('a b','it''s') and customers.company is null"),
              "company is in list \"a b\",\"it\"\"s\"; company is null");
    EXPECT_EQ(Words("customers.company like 'x' or customers.company like '%a%b'"),
              "company contains x; company contains a%b");
    EXPECT_EQ(Words("customers . Company = \"x\""), "company is equal to x");
    EXPECT_EQ(Words("orders.nothing = 5 or orders.amount is not null"),
              "Unrecognized field is equal to 5; amount Unrecognized operator");
    Words("orders.amount >= :Low and customers.company like :Word and customers.since = '00/00/00'");
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
    Words("orders.amount in (select orders.amount from orders where orders.amount > 5) and orders.amount in "
          "(1)");
    EXPECT_EQ(Row(0).GetOperator()->GetName(), "InSub");
    EXPECT_EQ(Row(1).GetOperator()->GetName(), "InList");
    EXPECT_EQ(Row(0).GetValue(1), "select orders.amount from orders where orders.amount > 5");
    EXPECT_EQ(
        XStrToInt(TSectionLines(Row(0).GetSubQuery(), 0, Row(0).GetSubQuery().Count()).Value("RowCount")), 1);
    std::string deep = "orders.amount > 5";
    for (int level = 0; level < 300; ++level)
        deep = "orders.amount in (select orders.amount from orders where " + deep + ")";
    Words(deep);
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

TEST_F(StrictSQLReader, KeepsNegations) {
    const std::string select = "SELECT orders.amount\nFROM orders\nWHERE\n (\n";
    EXPECT_EQ(Again("select orders.amount from orders where not orders.amount < 5"),
              select + "orders.amount >= 5\n)\n");
    EXPECT_EQ(Again("select orders.amount from orders where orders.amount is not null"),
              select + " NOT (\norders.amount is null\n)\n)\n");
    EXPECT_EQ(
        Again("select orders.amount from orders where not (orders.amount = 1 and not (orders.amount = 2 or "
              "orders.amount = 3))"),
        select + " NOT (\norders.amount = 1 AND\n NOT (\norders.amount = 2 OR\norders.amount = 3\n)\n)\n)\n");
}

TEST_F(StrictSQLReader, RefusesWhatItCannotKeep) {
    const auto where = [&](const std::string& condition) {
        return Refusal("select orders.amount\nfrom orders\nwhere " + condition);
    };
    EXPECT_EQ(where("orders.x = 1"), "Unrecognized field \"orders.x\"\r\nLine:3");
    EXPECT_EQ(where("orders.amount = orders.custno"),
              "\"orders.amount = orders.custno\" can not be kept in a query\r\nLine:3");
    EXPECT_EQ(where("orders.amount = 1 + 1"),
              "\"orders.amount = 1 + 1\" can not be kept in a query\r\nLine:3");
    EXPECT_EQ(
        where("orders.placed > '2001-03-05 14:30:15'"),
        "\"orders.placed > '2001-03-05 14:30:15'\" can not be kept in a query\r\nLine:3"); // the mask has no
                                                                                           // seconds
    EXPECT_NE(where("customers.company like :p"), "");
    EXPECT_NE(where("customers.company like 'a_c'"), "");
    EXPECT_NE(where("orders.amount in (1, orders.custno)"), "");
    EXPECT_NE(where("customers.company = \"orders\""), "");
    EXPECT_NE(where("orders.amount = 1 limit 5"), "");
    EXPECT_EQ(Refusal("select orders.amount from nowhere"), "No such table nowhere\r\nLine:1");
    EXPECT_EQ(Refusal("select orders.amount + orders.x\nfrom orders, lines where orders.amount = 1"),
              "\"lines\" is not joined as the data model joins it\r\nLine:2");
    const auto join = [&](const std::string& from) {
        return Refusal("select customers.company, orders.amount from " + from);
    };
    EXPECT_EQ(join("customers left outer join orders on customers.custno = orders.custno"), "");
    EXPECT_EQ(join("orders right join customers on (customers.custno=orders.custno)"), "");
    EXPECT_NE(join("customers inner join orders on (customers.custno=orders.custno)"), "");
    EXPECT_NE(join("orders left join customers on (customers.custno=orders.custno)"), "");
    EXPECT_NE(join("customers left join orders on (customers.custno=orders.amount)"), "");
    EXPECT_NE(join("customers left join orders on (customers.custno=orders.custno or 1=1)"), "");
    EXPECT_NE(join("customers left join orders on (customers.custno=orders.custno) inner join lines on "
                   "(orders.orderno=lines.orderno)"),
              ""); // the query would not need the lines
    EXPECT_EQ(
        Refusal(
            "select customers.company, count(customers.since)\nfrom customers group by customers.company"),
        "");
    EXPECT_EQ(
        Refusal("select customers.company, count(customers.since)\nfrom customers\ngroup by customers.since"),
        "\"GROUP BY\" can not be kept in a query\r\nLine:3");
    EXPECT_NE(Refusal("select customers.company from customers group by customers.company"), "");
}
