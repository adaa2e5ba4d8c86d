#include "lumora/query/strict_checks.h"
#include "lumora/support/string_helpers.h"
#include "tests/strict_shop.h"

#include <gtest/gtest.h>

using namespace lumora;
using namespace lumora::tests;

namespace {

class Strict : public StrictShop {};

} // namespace

TEST_F(Strict, ReplacesBarePlaceholdersAlone) {
    EXPECT_EQ(Text("orders.amount", "InList", " 1, 2.5 "), "orders.amount in (1,2.5)\n");
    EXPECT_EQ(Text("customers.company", "NotInList", "a,b"), "NOT (customers.company in ('a','b'))\n");
    shop_.Model.AddOperator("Bare", "", "@f = @1", "", LmUsedTypes);
    EXPECT_EQ(Text("customers.company", "Bare", "x' or '1'='1"), "customers.company = 'x'' or ''1''=''1'\n");
    EXPECT_EQ(Text("customers.since", "Bare", "2001-03-05"), "customers.since = '2001-03-05'\n");
    EXPECT_EQ(Text("orders.amount", "Bare", "-1.5e3"), "orders.amount = -1.5e3\n");
    EXPECT_EQ(Text("orders.amount", "GreaterThan", " 7 "), "orders.amount >7\n");

    shop_.Model.AddOperator("OrNull", "", "@f = '@1' or @f is null", "", LmUsedTypes);
    EXPECT_EQ(Text("lines.qty", "OrNull", "1"), "(lines.qty = 1 or lines.qty is null)\n");
    shop_.Panel.ClearRows();

    TSimpleCond* const condition = shop_.Where("customers.company", "InList", "");
    condition->SetValueIsParam(1, true);
    EXPECT_EQ(shop_.Conditions(), "customers.company in (:Param1)\n");
    EXPECT_EQ(shop_.Panel.GetQResult().GetParam(0)->ValueFormat, "@v");
    shop_.Panel.GetQResult().GetParam(0)->Name = "p) or (1=1";
    EXPECT_EQ(MessageOf<EVQueryPanelError>([&] { shop_.SQL(); }),
              "Invalid value \"p) or (1=1\" for \"company\"");
}

TEST_F(Strict, ChecksValuesByType) {
    EXPECT_EQ(Refusal("orders.amount", "Equal", "1 or 1=1"), "Invalid value \"1 or 1=1\" for \"amount\"");
    EXPECT_EQ(Refusal("lines.qty", "Equal", "1.5"), "Invalid value \"1.5\" for \"qty\"");
    EXPECT_EQ(Refusal("lines.qty", "InList", "1,x;drop table t"),
              "Invalid value \"x;drop table t\" for \"qty\"");
    EXPECT_EQ(Refusal("lines.qty", "InList", "1,,2"), "Invalid value \"\" for \"qty\"");
    EXPECT_EQ(Refusal("customers.company", "InList", "  "), "Invalid value \"  \" for \"company\"");
    EXPECT_EQ(Refusal("customers.active", "Equal", "maybe"), "Invalid value \"maybe\" for \"active\"");
    EXPECT_EQ(Refusal("customers.since", "Equal", ""), "Invalid value \"\" for \"since\"");
    EXPECT_EQ(Refusal("customers.since", "Equal", "14:30"), "Invalid value \"14:30\" for \"since\"");
    EXPECT_EQ(Refusal("lines.at", "Equal", "25:00"), "Invalid value \"25:00\" for \"at\"");
    EXPECT_EQ(Text("customers.active", "Equal", "TRUE"), "customers.active = 'TRUE'\n");
    for (const char* const number : {"", "+", "0x10", "1e", "inf", "nan", "1 2", "--1", "1,5"})
        EXPECT_FALSE(IsValidValue(ftFloat, number)) << number;
    // A type that is neither checked nor quoted by the model is quoted all the same.
    shop_.Field("customers.company")->FieldType = ftGuid;
    shop_.Field("customers.company")->AddOperatorByName("Equal");
    EXPECT_EQ(Text("customers.company", "Equal", "1 or 1=1"), "customers.company = '1 or 1=1'\n");

    shop_.Model.AddCondition(1, "Company is @", "customers.company = '@1' and @f")
        ->Values[0]
        .SetDataType(ftInteger);
    shop_.Panel.ClearRows();
    shop_.Panel.AddCustomCondition(shop_.Root(), *shop_.Model.ConditionByID(1))->SetValue(1, "x");
    EXPECT_EQ(MessageOf<EVQueryPanelError>([&] { shop_.SQL(); }), "Invalid value \"x\" for \"Company is \"");
}

TEST_F(Strict, KeepsSubQueriesAndFormulasInTheirPlace) {
    const int index = shop_.Model.AddOperator("InSub", "", "@f in (@1)", "", LmUsedTypes);
    shop_.Model.GetOperator(index)->ValueKind = vkSubQuery;
    EXPECT_EQ(Text("orders.amount", "InSub", "SELECT ')' from t"), "orders.amount in (SELECT ')' from t)\n");
    for (const char* const value : {"", "1", "select 1) or (1=1", "select 1; drop table t", "select 1 --",
                                    "select '", "select /* 1", "selected"})
        EXPECT_NE(Refusal("orders.amount", "InSub", value), "") << value;
    shop_.Panel.ClearRows();
    for (const char* const formula : {"@1) from t --", "@1; drop", "'", "(@1", "@1 from t union select x",
                                      "@1,2", "E'\'' ; drop --'", "$$'$$ @1", "@1 # x", "@1 /* x */"}) {
        shop_.Panel.GetQResult().GetResultFields().Clear();
        shop_.Panel.GetQResult().GetResultFields().Add(formula, {shop_.Field("orders.amount")}, "x");
        EXPECT_NE(MessageOf<EVQueryPanelError>([&] { shop_.SQL(); }), "") << formula;
        shop_.Panel.GetQResult().GetResultFields().JustSorting = true; // it would stand in ORDER BY
        shop_.Panel.GetQResult().GetResultFields().GetRField(0)->SetSorting(stAscending);
        EXPECT_NE(MessageOf<EVQueryPanelError>([&] { shop_.SQL(); }), "") << formula;
    }
    shop_.Panel.GetQResult().GetResultFields().Clear();
    shop_.Panel.GetQResult().GetResultFields().Add("sum(@1, (select 1 from t)) || ','",
                                                   {shop_.Field("orders.amount")}, "x");
    EXPECT_EQ(MessageOf<Exception>([&] { shop_.SQL(); }), "");
}

TEST_F(Strict, KnowsAggregatesByTheirCall) {
    shop_.Select("customers.company");
    TRFieldList& fields = shop_.Panel.GetQResult().GetResultFields();
    fields.Add("count (@1)", {shop_.Field("customers.custno")}, "n");
    fields.Add("@1 || ' sum('", {shop_.Field("customers.company")}, "text");
    fields.Add("checksum(@1)", {shop_.Field("customers.since")}, "check");
    shop_.SQL();
    EXPECT_EQ(shop_.Panel.GetQResult().GroupBy, "customers.company, customers.company, customers.since");
    shop_.Panel.SetStrict(false);
    shop_.SQL();
    EXPECT_EQ(shop_.Panel.GetQResult().GroupBy, "customers.company, customers.custno");
}

// As a number in ORDER BY it would be a position.
TEST_F(Strict, SortsConstantsByTheirPosition) {
    shop_.Panel.SetSQLOptions({soSortByNames});
    shop_.Select("customers.company")->SetSorting(stAscending);
    shop_.Panel.GetQResult().GetResultFields().Add("7", {}, "seven")->SetSorting(stDescending);
    shop_.SQL();
    EXPECT_EQ(shop_.Panel.GetQResult().OrderBy, "customers.company ASC, 2 DESC");
    shop_.Panel.SetStrict(false);
    shop_.SQL();
    EXPECT_EQ(shop_.Panel.GetQResult().OrderBy, "customers.company ASC, 7 DESC");
}

TEST_F(Strict, NeverTakesAColumnForAPosition) {
    TDSField& one = *shop_.Model.GetField(shop_.Model.AddField(vfkVirtual, " -(1)", "One", nullptr));
    shop_.Panel.SetMainTableName("customers");
    shop_.Select("customers.company");
    TRFieldList& fields = shop_.Panel.GetQResult().GetResultFields();
    fields.Add("@1", {&one}, "One")->SetSorting(stAscending);
    shop_.Panel.SetSQLOptions({soSortByNames});
    shop_.SQL();
    EXPECT_EQ(shop_.Panel.GetQResult().OrderBy, "2 ASC");
    one.SetSQLExpr("1 + 1"); // no position
    shop_.SQL();
    EXPECT_EQ(shop_.Panel.GetQResult().OrderBy, "1 + 1 ASC");
    one.SetSQLExpr("1");
    fields.JustSorting = true; // "*" has no position for it, and nothing is sorted by it
    EXPECT_EQ(shop_.SQL(), "SELECT *\nFROM customers\n");
    shop_.Panel.SetStrict(false);
    shop_.SQL();
    EXPECT_EQ(shop_.Panel.GetQResult().OrderBy, "1 ASC");
}

TEST_F(Strict, RefusesToLoseRecords) {
    TRFieldList& fields = shop_.Panel.GetQResult().GetResultFields();
    fields.Add("sum(@1)", {shop_.Field("orders.amount")}, "Total")->SetSorting(stAscending);
    shop_.Select("orders.custno");
    EXPECT_EQ(MessageOf<EVQueryPanelError>([&] { shop_.SQL(); }), "");
    fields.JustSorting = true;
    EXPECT_EQ(MessageOf<EVQueryPanelError>([&] { shop_.SQL(); }),
              "Whole records can not be sorted by the total \"Total\"");
    fields.Clear();
    shop_.Select("customers.company");
    shop_.Select("orders.amount");
    shop_.Model.GetLink(0)->Fields1.Clear();
    EXPECT_EQ(MessageOf<EVQueryPanelError>([&] { shop_.SQL(); }),
              "The link between \"customers\" and \"orders\" joins no fields");
    shop_.Panel.SetStrict(false);
    EXPECT_EQ(TStringList(shop_.SQL())[2], "     LEFT OUTER JOIN orders ON ");
}

TEST_F(Strict, PutsListsInThePlaceOfTheirQuotesOrRefuses) {
    const auto built = [this](const char* sql) {
        TDSOperator& op = *shop_.Operator("InList");
        op.SetSQLName(sql);
        shop_.Panel.ClearRows();
        shop_.Where("customers.company", "InList", "x') or 1=1 --,y");
        return MessageOf<EVQueryPanelError>([&] { shop_.SQL(); });
    };
    EXPECT_EQ(built("@f in ('@1')"), "");
    EXPECT_EQ(shop_.Conditions(), "customers.company in ('x'') or 1=1 --','y')\n");
    EXPECT_EQ(built("@f like '%@1'"), "Invalid value \"@f like '%@1'\" for \"company\"");
    EXPECT_EQ(built("it's @f in (@1)"), "Invalid value \"it's @f in (@1)\" for \"company\"");
}

TEST_F(Strict, RefusesWhatIsUnrecognizedOrWouldBeCut) {
    shop_.Where("orders.amount", "Equal", "1")->SetOperator(shop_.Model.GetUnrecognizedOperator());
    EXPECT_EQ(MessageOf<EVQueryPanelError>([&] { shop_.SQL(); }), "Unrecognized operator \"row 1.\"");
    shop_.Panel.ClearRows();
    shop_.Where("orders.amount", "Equal", "1")->SetField(shop_.Model.GetUnrecognizedField());
    EXPECT_EQ(MessageOf<EVQueryPanelError>([&] { shop_.SQL(); }), "Unrecognized field \"row 1.\"");
    EXPECT_EQ(Refusal("lines.at", "Equal", "09:00:45"), "Invalid value \"09:00:45\" for \"at\"");
    shop_.Model.GetSQLFormats().SetTime("hh:nn:ss");
    EXPECT_EQ(Text("lines.at", "Equal", "09:00:45"), "lines.at = '09:00:45'\n");
    EXPECT_EQ(Refusal("lines.at", "Equal", "09:00:45.5"), "Invalid value \"09:00:45.5\" for \"at\"");
    shop_.Panel.SetDialect(sdPostgreSQL);
    EXPECT_EQ(Text("lines.at", "Equal", "09:00:45.5"), "lines.at = '09:00:45.500'\n");
    EXPECT_EQ(Refusal("orders.placed", "LessThan", "2001-03-05 12:34:56.123456"),
              "Invalid value \"2001-03-05 12:34:56.123456\" for \"placed\"");
}

TEST_F(Strict, ComparesDaysWithAllTheirMoments) {
    TDSField& placed = *shop_.Field("orders.placed");
    shop_.Model.AddOperator("Other", "", "(@f <> '@1' or @f is null)", "", LmUsedTypes);
    shop_.Model.AddOperator("Within", "", "x < all (@f, '@1')", "", LmUsedTypes);
    const auto text = [&](TDateStorage storage, const char* op, const char* v1, const char* v2 = "") {
        placed.Storage = storage;
        return ReplaceText(Text("orders.placed", op, v1, v2), "orders.placed", "f");
    };
    shop_.Panel.SetDialect(sdSQLite);
    const char* const day = "1996-07-08";
    EXPECT_EQ(text(dsMoment, "Equal", day), "(f >= '1996-07-08' AND f < '1996-07-09')\n");
    EXPECT_EQ(text(dsMoment, "NotEqual", day), "(f < '1996-07-08' OR f >= '1996-07-09')\n");
    EXPECT_EQ(text(dsMoment, "Other", day), "((f < '1996-07-08' OR f >= '1996-07-09') or f is null)\n");
    EXPECT_EQ(text(dsMoment, "LessThan", day), "f < '1996-07-08'\n");
    EXPECT_EQ(text(dsMoment, "LessOrEqual", day), "f < '1996-07-09'\n");
    EXPECT_EQ(text(dsMoment, "GreaterThan", day), "f >= '1996-07-09'\n");
    EXPECT_EQ(text(dsMoment, "GreaterOrEqual", day), "f >= '1996-07-08'\n");
    EXPECT_EQ(text(dsMoment, "Between", day, "1996-07-10 12:30"),
              "(f >= '1996-07-08' AND f <= '1996-07-10 12:30:00')\n");
    EXPECT_EQ(text(dsMoment, "NotBetween", day, day), "NOT ((f >= '1996-07-08' AND f < '1996-07-09'))\n");
    EXPECT_EQ(text(dsMoment, "NotInList", "1996-07-08, 1996-07-10 12:30"),
              "NOT (((f >= '1996-07-08' AND f < '1996-07-09') OR f = '1996-07-10 12:30:00'))\n");
    EXPECT_EQ(text(dsMoment, "Equal", "9999-12-31"),
              "(f >= '9999-12-31' AND f <= '9999-12-31 23:59:59.999')\n");
    EXPECT_EQ(text(dsMoment, "Within", day), "x < all (f, '1996-07-08 00:00:00')\n"); // no comparison

    const char* const moment = "1996-07-08 12:30:15";
    EXPECT_EQ(text(dsMoment, "Equal", moment), "f = '1996-07-08 12:30:15'\n");
    EXPECT_EQ(text(dsMoment, "Equal", "1996-07-08 00:00"), "f = '1996-07-08 00:00:00'\n");
    EXPECT_EQ(text(dsMomentFraction, "Equal", moment),
              "(f >= '1996-07-08 12:30:15.000' AND f < '1996-07-08 12:30:16.000')\n");
    EXPECT_EQ(text(dsMomentT, "LessOrEqual", moment), "f < '1996-07-08T12:30:16'\n");
    EXPECT_EQ(text(dsMixedText, "GreaterOrEqual", "1996-07-08 12:30"),
              "replace(f, 'T', ' ') >= '1996-07-08 12:30'\n");
    EXPECT_EQ(text(dsEpochSeconds, "Equal", day), "(f >= 836784000 AND f < 836870400)\n");
    EXPECT_EQ(text(dsEpochSeconds, "Within", "1969-12-31 23:59:59.500"), "x < all (f, -0.5)\n");
    EXPECT_EQ(text(dsEpochMilliseconds, "GreaterThan", "1996-07-08 12:30:15.250"), "f >= 836829015251\n");
    EXPECT_EQ(text(dsJulianDay, "LessThan", day), "f < 2450272.499999994\n");
    EXPECT_EQ(text(dsDay, "Equal", day), "f = '1996-07-08'\n");
    placed.Storage = dsDay;
    EXPECT_EQ(Refusal("orders.placed", "Equal", moment),
              "Invalid value \"1996-07-08 12:30:15\" for \"placed\"");
    EXPECT_EQ(Refusal("customers.since", "Equal", moment),
              "Invalid value \"1996-07-08 12:30:15\" for \"since\"");
    EXPECT_EQ(Refusal("orders.placed", "LessThan", ""), "Invalid value \"\" for \"placed\"");

    // Texts of another order can only be equal; an engine with moments of its own compares them all the same.
    shop_.Model.GetSQLFormats().SetDateTime("dd.mm.yyyy hh:nn:ss");
    EXPECT_EQ(text(dsAsType, "LessOrEqual", day), "f <= '08.07.1996 00:00:00'\n");
    shop_.Panel.SetDialect(sdPostgreSQL);
    EXPECT_EQ(text(dsAsType, "LessOrEqual", day), "f < '1996-07-09 00:00:00'\n");
    EXPECT_EQ(text(dsAsType, "Equal", moment), "f = '1996-07-08 12:30:15'\n");
    shop_.Where("orders.placed", "Equal", day)->SetValueIsParam(1, true);
    EXPECT_TRUE(shop_.Conditions().ends_with("orders.placed = :Param1\n"));
    shop_.Panel.SetDialect(sdOracle);
    EXPECT_EQ(text(dsAsType, "GreaterThan", day),
              "f >= TO_DATE('09-07-1996 00:00:00', 'dd-mm-yyyy hh24:mi:ss')\n");
    shop_.Panel.SetStrict(false);
    shop_.Panel.SetDialect(sdSQLite);
    EXPECT_EQ(text(dsEpochSeconds, "Equal", day), "f = '08.07.1996 00:00:00'\n");
}

TEST_F(Strict, FindsTextsInPatternsAsTheyStand) {
    const auto text = [&](const char* sql, const char* value) {
        TDSOperator& op = *shop_.Operator("Contains");
        op.SetSQLName(sql);
        const std::string line =
            ReplaceText(Text("customers.company", "Contains", value), "customers.company", "f");
        return line.substr(0, line.size() - 1);
    };
    EXPECT_EQ(text("@f like '%@1%'", "it's!"), "f like '%it''s!%'"); // nothing in it means anything else
    EXPECT_EQ(text("@f like '%@1%'", "50%!"), "f like '%50!%!!%' ESCAPE '!'");
    EXPECT_EQ(text("not(@f ILIKE '@1%')", "a_\\"), "not(f ILIKE 'a!_\\%' ESCAPE '!')");
    EXPECT_EQ(text("(not (@f like '%@1' Escape  '!') or @f is null)", "it's!"),
              "(not (f like '%it''s!!' Escape  '!') or f is null)");
    EXPECT_EQ(text("lower(@f) like lower( '%@1%' ) and 1=1", "a_"),
              "lower(f) like lower( '%a!_%' ) ESCAPE '!' and 1=1");
    EXPECT_EQ(text("@f like '@1'", "a_%"), "f like 'a_%'"); // it is the pattern
    EXPECT_EQ(text("@f like '%@1%' escape '#'", "a_%"), "f like '%a_%%' escape '#'");
    EXPECT_EQ(text("@f like '%@1%' || 'x'", "a_"), "f like '%a_%' || 'x'");
    EXPECT_EQ(text("@f = 'x@1'", "a_"), "f = 'xa_'");
    shop_.Panel.SetDialect(sdMySQL);
    EXPECT_EQ(text("@f like '%@1%'", "\\"), "f like _utf8mb4 X'255C25' ESCAPE '!'");
    shop_.Panel.SetDialect(sdSQLite);
    for (const char* const value : {"50%", "%", "a!_!", "!"}) {
        text("@f like '%@1%' escape '!'", value);
        const std::string sql = shop_.SQL();
        shop_.Panel.ParseSQL(TStringList(sql));
        EXPECT_EQ(static_cast<TSimpleCond*>(shop_.Root().GetRow(0))->GetValue(1), value);
        EXPECT_EQ(shop_.SQL(), sql);
    }
    const auto refusal = [&](const char* where) {
        return MessageOf<EVLumoraError>([&] {
            shop_.Panel.ParseSQL(
                TStringList(std::string("select customers.custno from customers where ") + where));
        });
    };
    EXPECT_NE(refusal("customers.company like '%a_b%' escape '!'"), ""); // the row would find less
    EXPECT_EQ(refusal("customers.company like '%a!_b%' escape '!'"), "");
    text("@f like '%@1%'", "x");
    EXPECT_NE(refusal("customers.company like '%a_b%'"), "");
    shop_.Panel.SetStrict(false);
    EXPECT_EQ(text("@f like '%@1%'", "50%"), "f like '%50%%'");
}

TEST_F(Strict, DoublesClosingQuotesInNames) {
    TDSField& amount = *shop_.Field("orders.amount");
    amount.SetFieldName("a\"; drop");
    amount.SetQuoted(true);
    shop_.Model.GetTable(1)->SetName("or\"ders");
    shop_.Model.GetTable(1)->SetAlias("orders");
    shop_.Model.GetTable(1)->SetQuoted(true);
    TRFieldList& fields = shop_.Panel.GetQResult().GetResultFields();
    fields.Add("@1", {&amount}, "x")->SetAlias("A\" from x; --");
    fields.Add("@1", {&amount}, "y")->SetAlias("select");
    fields.Add("@1", {&amount}, "z")->SetAlias("Total1");
    EXPECT_EQ(shop_.SQL(), "SELECT orders.\"a\"\"; drop\" as \"A\"\" from x; --\", orders.\"a\"\"; drop\" as "
                           "\"select\", orders.\"a\"\"; drop\" as Total1\nFROM \"or\"\"ders\" orders\n");
}

TEST(StrictNames, AreOfLettersAndDigits) {
    for (const char* const name : {"a", "Z_z", "az09AZ", "Größe", "_", "9"})
        EXPECT_TRUE(IsParamName(name)) << name;
    for (const char* const name : {"", " ", "a b", "a-b", "a`", "a{", "a[", "a@", "a/", "a:", "a'"})
        EXPECT_FALSE(IsParamName(name)) << name;
    EXPECT_TRUE(IsPlainName("a9"));
    EXPECT_FALSE(IsPlainName("9a"));
    EXPECT_FALSE(IsPlainName("Select"));
}
