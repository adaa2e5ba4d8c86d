// Operations that hosts call and the program itself does not.
#include "tests/fixtures.h"

#include <gtest/gtest.h>

using namespace lumora;
using namespace lumora::tests;

namespace {

class TFixedPitch : public TTextMeasurer {
public:
    TSize TextExtent(const TFont& font, std::string_view text) const override {
        return {static_cast<int>(text.size()) * font.PointSize, 2 * font.PointSize};
    }
};

} // namespace

TEST(Operations, MeasureText) {
    const TFont font{"Any", 5};
    EXPECT_EQ(lmTextWidth(TFixedPitch(), font, "four"), 20);
    EXPECT_EQ(lmTextHeight(TFixedPitch(), font, "four"), 10);
}

TEST(Operations, ListWhatAModelHas) {
    TShop shop;
    shop.Model.AddCondition(1, "Big", "orders.amount > 1");
    TStringList names;
    shop.Model.GetTableNames(tnCompoundName, names);
    EXPECT_EQ(names[1], "orders - orders");
    shop.Model.GetFieldNames(fnFullName, names);
    EXPECT_EQ(names[5], "orders.amount");
    shop.Model.GetOperatorNames(names);
    EXPECT_EQ(names[14], "NotBetween");
    shop.Model.GetConditionCaptions(names);
    EXPECT_EQ(names.GetText(), "Big\n");
    shop.Model.ClearTables();
    EXPECT_EQ(shop.Model.GetFieldCount() + shop.Model.GetLinkCount() + shop.Model.GetTableCount(), 0);
    EXPECT_EQ(shop.Model.GetConditionCount(), 1);
    EXPECT_TRUE(shop.Model.GetCondition(0)->GetTables().empty());
}

TEST(Operations, ArrangeResultFields) {
    TShop shop;
    TQueryResult& result = shop.Panel.GetQResult();
    TRFieldList& fields = result.GetResultFields();
    shop.Select("orders.amount", "B")->SetSorting(stDescending);
    fields.Insert(0, "@1", {shop.Field("lines.qty")}, "A");
    fields.InsertBySQLExpr(1, "C", "customers.company", stAscending, 4);
    TStringList captions;
    result.GetResFieldCaptions(captions);
    EXPECT_EQ(captions.GetCommaText(), "A,C,B");
    fields.Move(2, 0);
    fields.Delete(1);
    result.GetResFieldCaptions(captions);
    EXPECT_EQ(captions.GetCommaText(), "B,C");
    EXPECT_EQ(fields.GetRField(1)->GetSortOrder(), 4);

    TShop other;
    int changes = 0;
    other.Panel.OnChange = [&](TVQueryPanel&) { ++changes; };
    other.Panel.GetQResult().SetResultFields(fields);
    const TRFieldList& copy = other.Panel.GetQResult().GetResultFields();
    EXPECT_EQ(copy.GetRField(0)->GetSelectExpr(), "orders.amount as B");
    EXPECT_EQ(copy.GetRField(0)->GetSorting(), stDescending);
    EXPECT_FALSE(copy.JustSorting);
    EXPECT_EQ(changes, 1);
}

TEST(Operations, PlaceAndMoveRows) {
    TShop shop;
    TDSCondition* const big = shop.Model.AddCondition(1, "Big", "orders.amount > 1");
    TSimpleCond* const first = shop.Where("orders.amount", "Equal", "1");
    TSimpleCond* const second = shop.Where("orders.amount", "Equal", "2");
    TFilterBracket* const bracket = shop.Root().InsertNewBracketByNum(2); // before row 2
    bracket->InsertCustomCondByNum(9, big);
    EXPECT_EQ(second->GetRowID(), "3.");
    EXPECT_EQ(shop.Root().GetFirstCondition(), first);
    bracket->InsertRow(0, shop.Root().ExtractRow(0)); // moved, not freed
    EXPECT_EQ(first->GetRowID(), "1.1.");
    EXPECT_EQ(first->GetRowLevel(), 2);
    EXPECT_EQ(first->GetParent(), bracket);
    EXPECT_EQ(shop.Conditions(), " (\norders.amount = 1 AND\norders.amount > 1\n) AND\norders.amount = 2\n");
    bracket->BeginUpdate();
    first->SetEnabled(false);
    bracket->GetRow(1)->SetEnabled(false);
    EXPECT_TRUE(bracket->GetEnabled());
    bracket->EndUpdate();
    EXPECT_FALSE(bracket->GetEnabled());
    first->SetEnabled(true);
    EXPECT_TRUE(bracket->GetEnabled());
}

TEST(Operations, ShowAPanelAnew) {
    TShop shop;
    TDSField& company = *shop.Field("customers.company");
    company.SetEditType(etCustom);
    dynamic_cast<TDSCustomEditor&>(*company.GetValueEditor()).CustomData.SetText("own\n");
    EXPECT_EQ(shop.Where("customers.company", "Equal", "x")->GetCustomData()->GetText(), "own\n");
    EXPECT_EQ(shop.Where("orders.amount", "Equal", "1")->GetCustomData(), nullptr);
    const std::string sql = shop.SQL();
    const TFilterBracket* const oldRoot = &shop.Root();
    int active = 0;
    shop.Panel.OnActive = [&](TVQueryPanel&) { ++active; };
    shop.Panel.RefreshPanel();
    EXPECT_NE(active, 0);
    EXPECT_NE(static_cast<const void*>(shop.Root().GetRow(0)), static_cast<const void*>(oldRoot));
    EXPECT_EQ(shop.SQL(), sql);
    EXPECT_EQ(shop.Panel.ExtractValue(static_cast<TFilterCond&>(*shop.Root().GetRow(0)), 1), "x");
}

TEST(Operations, KeepAFailedReadingsError) {
    TShop shop;
    shop.Panel.SetTitle("ttlFilter", "no place for the word");
    EXPECT_EQ(MessageOf<EVLumoraError>([&] { shop.Panel.ParseSQL(TStringList("select")); }),
              "Wrong SQL statement\r\nLine:1");
    EXPECT_FALSE(shop.Panel.GetActive());
    EXPECT_EQ(shop.Panel.GetState(), stIdle);
}
