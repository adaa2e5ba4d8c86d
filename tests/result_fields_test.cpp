#include "lumora/support/string_helpers.h"
#include "tests/fixtures.h"

#include <gtest/gtest.h>

#include <random>

using namespace lumora;
using namespace lumora::tests;

namespace {

class ResultFields : public testing::Test {
protected:
    TRFieldList& Fields() { return shop_.Panel.GetQResult().GetResultFields(); }

    TShop shop_;
};

} // namespace

TEST_F(ResultFields, AreFoundInFormulasAsIfEachFieldWereTried) {
    constexpr const char* pieces[] = {"orders",    "amount", "custno", ".", "1", "2",
                                      "@",         "a",      "b1",     "x", "+", " ",
                                      "\"",        "(",      ")",      "é", "_", "orders.amount",
                                      "lines.qty", "count(", "12"};
    std::mt19937 random(20260714);
    const auto text = [&](std::size_t most) {
        std::string made;
        for (auto i = 1 + random() % most; i > 0; --i)
            made += pieces[random() % std::size(pieces)];
        return made;
    };
    for (int i = 0; i < 400; ++i)
        shop_.Model.AddField(vfkVirtual, text(3), "f" + std::to_string(i), nullptr);
    for (const bool strict : {false, true}) {
        shop_.Field("orders.custno")->SetQuoted(strict);
        shop_.Panel.SetStrict(strict);
        for (int i = 0; i < 2000; ++i) {
            const std::string sql = "/" + text(7);
            std::string formula = LowerAscii(sql);
            TDSFieldList fields;
            for (const TFieldNameMode mode : {fnSQLExpr, fnFullName}) {
                if (!fields.empty())
                    break;
                for (int f = 0; f < shop_.Model.GetFieldCount(); ++f) {
                    TDSField* const field = shop_.Model.GetField(f);
                    const std::string name =
                        LowerAscii(mode == fnSQLExpr ? field->GetSQLExpr(strict ? nqStrict : nqPlain)
                                                     : field->GetFullName());
                    std::size_t at = FindWholeWord(formula, name);
                    if (at != std::string::npos)
                        fields.push_back(field);
                    const std::string placeholder = "@" + std::to_string(fields.size());
                    for (; at != std::string::npos;
                         at = FindWholeWord(formula, name, at + placeholder.size()))
                        formula.replace(at, name.size(), placeholder);
                }
            }
            if (fields.empty()) {
                fields = {shop_.Model.GetUnrecognizedField()};
                formula = "@1";
            }
            Fields().Clear();
            const TResultField& found = *Fields().AddBySQLExpr("c", sql, stNoSort, 0);
            ASSERT_EQ(found.GetFormula(), formula) << sql;
            ASSERT_EQ(found.GetFields(), fields) << sql;
        }
    }
}

TEST_F(ResultFields, MakeUniqueAliases) {
    shop_.Panel.SetSQLOptions({soASCIIRFields});
    EXPECT_EQ(shop_.Select("orders.amount", "amount")->GetAlias(), ""); // the column's own name
    EXPECT_EQ(shop_.Select("orders.amount", "Total sum")->GetAlias(), "Totalsum");
    EXPECT_EQ(shop_.Select("orders.amount", "1st")->GetAlias(), "st");
    EXPECT_EQ(shop_.Select("orders.amount", "Größe")->GetAlias(), "Gre");
    EXPECT_EQ(shop_.Select("orders.amount", "_AZ az-[`{@09/:")->GetAlias(), "_AZaz09");
    Fields().Delete(4);
    for (const char* const alias : {"Name", "Name1", "Name2"})
        EXPECT_EQ(shop_.Select("customers.company", "Name")->GetAlias(), alias);
    Fields().GetRField(4)->SetAlias("NAME"); // its own alias counts too
    EXPECT_EQ(Fields().GetRField(4)->GetAlias(), "NAME3");
    shop_.Panel.SetSQLOptions({});
    Fields().GetRField(1)->GenerateAlias();
    EXPECT_EQ(Fields().GetRField(1)->GetAlias(), "Total_sum");
    shop_.Panel.SetSQLOptions({soQuoteAliases});
    Fields().RegenerateAliases();
    EXPECT_EQ(Fields().GetRField(3)->GetSelectExpr(), "orders.amount as \"Größe\"");
    Fields().AutoAliases = false;
    Fields().RegenerateAliases();
    EXPECT_EQ(Fields().GetRField(3)->GetSelectExpr(), "orders.amount");
    EXPECT_EQ(Fields().GetUniqCaption("name"), "name1");
}

TEST_F(ResultFields, KeepFormulaAndFieldsInStep) {
    TResultField& field =
        *Fields().Add("@1*@2-@1", {shop_.Field("orders.amount"), shop_.Field("lines.qty")}, "Sum");
    EXPECT_FALSE(Fields().JustSorting);
    EXPECT_EQ(field.GetSQLExpr(), "orders.amount*lines.qty-orders.amount");
    EXPECT_EQ(field.GetExpression(), "{amount}*{qty}-{amount}");
    field.SetFormula("@2");
    EXPECT_EQ(field.GetFormula(), "@1");
    EXPECT_EQ(field.GetSQLExpr(), "lines.qty");
    EXPECT_FALSE(field.GetAgregate());
    field.SetFormula("COUNT(@1)");
    EXPECT_TRUE(field.GetAgregate());
    EXPECT_EQ(field.GenerateCaption(), "qty");

    // What was put in is not looked into, and @10 is hit by @1.
    TDSField& odd = *shop_.Model.GetField(shop_.Model.AddField(vfkVirtual, "'@2'", "odd", nullptr));
    EXPECT_EQ(Fields().Add("@1+@2+@10", {&odd, shop_.Field("lines.qty")}, "x")->GetSQLExpr(),
              "'@2'+lines.qty+'@2'0");
}

TEST_F(ResultFields, ReadExpressions) {
    TResultField& field =
        *Fields().AddByExpression("Twice", "{AMOUNT} + {amount} + {nothing} }{", stDescending, 7);
    EXPECT_EQ(field.GetFormula(), "@1 + @2 + @3 }{");
    EXPECT_EQ(field.GetFields()[0], field.GetFields()[1]);
    EXPECT_EQ(field.GetFields()[2], shop_.Model.GetUnrecognizedField());
    EXPECT_EQ(field.GetSortOrder(), 7);

    EXPECT_EQ(Fields().AddBySQLExpr("a", " ORDERS.Amount ", stNoSort, 0)->GetFormula(), "@1");
    TResultField& sum =
        *Fields().AddBySQLExpr("b", "SUM(Orders.Amount)*lines.qty + orders.amount2", stNoSort, 0);
    EXPECT_EQ(sum.GetFormula(), "sum(@1)*@2 + orders.amount2");
    EXPECT_EQ(Fields().AddBySQLExpr("c", "now()", stNoSort, 0)->GetFields()[0],
              shop_.Model.GetUnrecognizedField());
    shop_.Model.GetTable(1)->SetAlias("o"); // by full name where the SQL expression is another
    EXPECT_EQ(Fields().AddBySQLExpr("d", "max(orders.amount)", stNoSort, 0)->GetSQLExpr(), "max(o.amount)");
}

TEST_F(ResultFields, OrderTheirSorting) {
    TResultField& first = *shop_.Select("orders.amount", "A");
    TResultField& second = *shop_.Select("orders.placed", "B");
    first.SetSorting(stAscending);
    second.SetSorting(stDescending);
    EXPECT_EQ(second.GetSortOrder(), 2);
    first.SetSorting(stNoSort);
    EXPECT_EQ(first.GetSortOrder(), 1);
    EXPECT_EQ(Fields().GetSortCount(), 1);
    Fields().GenerateNumbers();
    EXPECT_EQ(first.GetOrderName(), "A");
    first.SetAlias("");
    EXPECT_EQ(first.GetOrderName(), "1");
}

TEST_F(ResultFields, TellOfEachChangeOnce) {
    int changes = 0;
    shop_.Panel.OnChange = [&](TVQueryPanel&) { ++changes; };
    const auto tells = [&](auto change) {
        changes = 0;
        change();
        return changes;
    };
    EXPECT_EQ(tells([&] { shop_.Select("orders.amount", "A"); }), 1);
    EXPECT_EQ(tells([&] { Fields().AddByExpression("B", "{amount}", stAscending, 1); }), 1);
    EXPECT_EQ(tells([&] { Fields().AddBySQLExpr("C", "orders.amount", stAscending, 1); }), 1);
    TResultField& field = *Fields().GetRField(0);
    EXPECT_EQ(tells([&] { field.SetCaption("Alpha"); }), 1); // the alias changes too
    EXPECT_EQ(tells([&] { field.SetAlias("x"); }), 1);
    EXPECT_EQ(tells([&] { field.SetAlias("x"); }), 0);
    EXPECT_EQ(tells([&] { field.SetSortOrder(4); }), 1);
    EXPECT_EQ(tells([&] { field.SetSortOrder(4); }), 0);
    EXPECT_EQ(tells([&] { Fields().RegenerateAliases(); }), 1);
    EXPECT_EQ(tells([&] { Fields().RegenerateAliases(); }), 0);
    EXPECT_EQ(tells([&] { Fields().Clear(); }), 1);
    EXPECT_EQ(tells([&] { Fields().Clear(); }), 0);
    // Making a statement gives aliases their final form and tells nobody.
    shop_.Panel.SetSQLOptions({soASCIIRFields});
    shop_.Select("orders.amount", "x")->SetAlias("Größe");
    shop_.Panel.BuildQuery();
    EXPECT_EQ(tells([&] { shop_.Panel.GetQResult().GetSQL(); }), 0);
    EXPECT_EQ(Fields().GetRField(0)->GetAlias(), "C1");
}

TEST_F(ResultFields, RefuseBadIndexes) {
    shop_.Select("orders.amount", "A");
    TResultField& field = *Fields().GetRField(0);
    TRTableList tables;
    TSQLParamList params;
    const auto refused = [](auto use) {
        EXPECT_EQ(MessageOf<EVQueryPanelError>([&] { use(-1); }), "Invalid index -1");
        EXPECT_EQ(MessageOf<EVQueryPanelError>([&] { use(2); }), "Invalid index 2");
    };
    refused([&](int i) { Fields().GetRField(i); });
    refused([&](int i) { Fields().Delete(i); });
    refused([&](int i) { Fields().Move(i, 0); });
    refused([&](int i) { Fields().Move(0, i); });
    refused([&](int i) { Fields().Insert(i, "@1", {}, "x"); });
    refused([&](int i) { field.DelDSField(i); });
    refused([&](int i) { field.SetDSField(i, nullptr); });
    refused([&](int i) { tables.GetItem(i); });
    refused([&](int i) { tables.Delete(i); });
    refused([&](int i) { params.GetItem(i); });
    refused([&](int i) { params.Delete(i); });
    EXPECT_EQ(Fields().Count(), 1);
    EXPECT_EQ(field.GetFields().size(), 1U);
}

TEST_F(ResultFields, ReadBackTheirText) {
    shop_.Select("orders.amount", "Größe")->SetSorting(stDescending);
    Fields().Add("@1/@2", {shop_.Field("orders.amount"), shop_.Field("lines.qty")}, "Size")->SetAlias("Size");
    TStringList lines;
    Fields().SaveToStrings(lines);
    EXPECT_EQ(lines.GetText(),
              "[RFields]\nCount=2\nVersion=3.5\nJustSorting=0\n"
              "[RField1]\nFormula=@1\nFields=6\nAlias=Größe\nCaption=Größe\nSorting=2\nSortOrder=1\n"
              "[RField2]\nFormula=@1/@2\nFields=6,9\nAlias=Size\nCaption=Size\nSorting=0\nSortOrder=0\n");
    TRFieldList copy(&shop_.Model, nullptr);
    copy.LoadFromStrings(lines);
    TStringList again;
    copy.SaveToStrings(again);
    EXPECT_EQ(again.GetText(), lines.GetText());

    copy.LoadFromStrings(
        TStringList("[RFields]\nCount=900000000\n[RField1]\nName=AMOUNT\nCaption=c\nAlias=a\n"
                    "[RField2]\nFormula=@1\nFields=77\nAlias=a\n"));
    ASSERT_EQ(copy.Count(), 2);
    EXPECT_EQ(copy.GetRField(0)->GetSelectExpr(), "orders.amount as a");
    EXPECT_EQ(copy.GetRField(1)->GetFields()[0], shop_.Model.GetUnrecognizedField());
    EXPECT_EQ(copy.GetRField(1)->GetAlias(), "a"); // kept as it was read
    EXPECT_FALSE(copy.JustSorting);
}
