#include "lumora/platform/form_text.h"
#include "lumora/platform/properties.h"
#include "tests/fixtures.h"

#include <gtest/gtest.h>

using namespace lumora;
using namespace lumora::tests;

namespace {

class TCountingLink : public TVQueryPanelLink {
public:
    void QueryPanelChanged() override { ++Changes; }
    void QueryParamsChanged() override { ++ParamChanges; }

    int Changes = 0;
    int ParamChanges = 0;
};

class TMemoryItem : public TVQueryItem {
public:
    void LoadContent(TStringList& content) override { content = Content; }
    void SaveContent(const TStringList& content) override { Content = content; }

    TStringList Content;
};

} // namespace

TEST(Panel, NeedsAModel) {
    TVQueryPanel panel;
    EXPECT_EQ(MessageOf<EVQueryPanelError>([&] { panel.Activate(); }), "DBStructure is not specified");
    EXPECT_FALSE(panel.GetActive());
    EXPECT_EQ(panel.GetRootBracket(), nullptr);
    EXPECT_EQ(panel.GetQueryText(), "");
    TShop shop;
    shop.Panel.SetTitle("ttlFilter", "no place for the word");
    shop.Panel.Deactivate();
    EXPECT_EQ(MessageOf<EVQueryPanelError>([&] { shop.Panel.Activate(); }), "Invalid filter title");
    EXPECT_FALSE(shop.Panel.GetActive());
    TQPAppearance& looks = shop.Panel.GetAppearance();
    looks.SetStyle(psAndOr);
    shop.Panel.Activate();
    EXPECT_TRUE(shop.Panel.GetActive());
    // A header cannot appear later either.
    EXPECT_EQ(MessageOf<EVQueryPanelError>([&] { looks.SetStyle(psGroups); }), "Invalid filter title");
    EXPECT_EQ(looks.GetStyle(), psAndOr);
    shop.Panel.SetTitle("ttlFilter", "@");
    looks.SetStyle(psGroups);
    EXPECT_EQ(shop.Panel.GetQueryText(), " all\n");
}

TEST(Panel, RefusesBadIndexes) {
    TShop shop;
    shop.Where("orders.amount", "Equal", "1");
    TCountingLink link;
    link.SetQueryPanel(&shop.Panel);
    TVQueryPanelLinkList links;
    links.Add(&link);
    for (const int index : {-1, 1}) {
        const std::string message = "Invalid index " + std::to_string(index);
        EXPECT_EQ(MessageOf<EVQueryPanelError>([&] { shop.Root().GetRow(index); }), message);
        EXPECT_EQ(MessageOf<EVQueryPanelError>([&] { shop.Root().DeleteRow(index); }), message);
        EXPECT_EQ(MessageOf<EVQueryPanelError>([&] { links.GetItem(index); }), message);
    }
    EXPECT_EQ(shop.Root().GetRowCount(), 1);
    EXPECT_EQ(links.GetItem(0), &link);
}

TEST(Panel, TellsOfChangesOnce) {
    TShop shop;
    TCountingLink link;
    link.SetQueryPanel(&shop.Panel);
    std::string order;
    shop.Panel.OnChange = [&](TVQueryPanel&) { order += std::to_string(link.Changes); };
    shop.Panel.SetQueryName("a");
    shop.Panel.SetQueryName("a");
    EXPECT_EQ(order, "1");
    shop.Panel.BeginUpdate();
    shop.Panel.BeginUpdate();
    TSimpleCond* const condition = shop.Where("orders.amount", "Equal", "1");
    shop.Panel.EndUpdate();
    EXPECT_EQ(order, "1");
    shop.Panel.EndUpdate();
    EXPECT_EQ(order, "12");
    condition->SetValue(1, "2");
    condition->SetEnabled(false);
    EXPECT_GT(link.Changes, 2);
    EXPECT_TRUE(shop.Panel.GetModified());
    condition->SetValueIsParam(1, true);
    EXPECT_EQ(link.ParamChanges, 1);
    shop.Panel.ClearAll();
    EXPECT_FALSE(shop.Panel.GetModified());
    EXPECT_TRUE(shop.Panel.GetEmpty());
    link.SetQueryPanel(nullptr);
    const int changes = link.Changes;
    shop.Panel.SetQueryName("b");
    EXPECT_EQ(link.Changes, changes);
}

TEST(Panel, NumbersRowsAndKeepsTheCurrentOne) {
    TShop shop;
    TSimpleCond* const first = shop.Panel.AddCondition(shop.Root());
    TFilterBracket* const bracket = shop.Panel.AddBracket(shop.Root());
    TSimpleCond* const inner = shop.Panel.AddCondition(*bracket);
    TSimpleCond* const last = shop.Panel.AddCondition(shop.Root());
    EXPECT_EQ(first->GetField(), shop.Model.GetField(0));
    EXPECT_EQ(first->GetOperator()->GetName(), "Equal");
    EXPECT_EQ(inner->GetRowID(), "2.1.");
    EXPECT_EQ(inner->GetRowLevel(), 2);
    EXPECT_EQ(bracket->RowByID("2.1."), inner);
    EXPECT_EQ(bracket->RowByID("1."), nullptr);
    EXPECT_EQ(last->GetRowNum(), 4);
    EXPECT_EQ(bracket->IndexForNewRow(9), 1);
    EXPECT_EQ(shop.Root().IndexForNewRow(0), 0);
    TSimpleCond* const inserted = shop.Panel.AddConditionNum(shop.Root(), 2);
    EXPECT_EQ(bracket->GetRowID(), "3.");
    EXPECT_EQ(shop.Panel.GetCurrentRow(), inserted);
    EXPECT_EQ(shop.Panel.GetRowByNum(4), inner);
    shop.Panel.SetCurrentRowNum(5);
    EXPECT_EQ(shop.Panel.GetCurrentRow(), last);
    shop.Panel.IncCurRow();
    EXPECT_EQ(shop.Panel.GetCurrentRow(), last);
    shop.Panel.DecCurRow();
    EXPECT_EQ(shop.Panel.GetCurrentRow(), inner);
    EXPECT_EQ(shop.Panel.GetCurrentBracket(), bracket);

    shop.Root().DeleteRow(bracket->GetIndex()); // takes the current row with it
    EXPECT_EQ(shop.Panel.GetCurrentRow(), last);
    shop.Root().DeleteRow(last->GetIndex());
    EXPECT_EQ(shop.Panel.GetCurrentRow(), inserted);
    shop.Panel.ClearRows();
    TFilterBracket* const only = shop.Panel.AddBracket(shop.Root());
    TSimpleCond* const left = shop.Panel.AddCondition(*only);
    TSimpleCond* const right = shop.Panel.AddCondition(*only);
    shop.Panel.SetCurrentRow(left);
    only->DeleteRow(0);
    EXPECT_EQ(shop.Panel.GetCurrentRow(), right);
    only->DeleteRow(0);
    EXPECT_EQ(shop.Panel.GetCurrentRow(), only);
    shop.Root().DeleteRow(0);
    EXPECT_EQ(shop.Panel.GetCurrentRow(), nullptr);
    shop.Panel.AddCondition(shop.Root());
    shop.Panel.AddCondition(shop.Root());
    shop.Panel.GetAppearance().SetOptions({aoNonEmptyBrackets});
    TFilterBracket* const outer = shop.Panel.AddBracket(shop.Root());
    shop.Panel.AddCondition(*shop.Panel.AddBracket(*outer));
    static_cast<TFilterBracket*>(outer->GetRow(0))->DeleteRow(0);
    EXPECT_EQ(shop.Root().GetRowCount(), 2);
    EXPECT_EQ(shop.Panel.GetRowByNum(99), nullptr);
}

TEST(Panel, RefusesBracketsWithoutEnd) {
    TShop shop;
    TFilterBracket* bracket = &shop.Root();
    for (int level = 1; level <= MaxRowLevel; ++level)
        bracket = bracket->AddNewBracket();
    EXPECT_THROW(bracket->AddNewBracket(), EVQueryPanelError);
    EXPECT_EQ(bracket->GetRowLevel(), MaxRowLevel);
    EXPECT_EQ(bracket->GetRowCount(), 0);
    shop.Select("orders.amount");
    EXPECT_EQ(shop.SQL(), "SELECT orders.amount\nFROM orders\n");
}

TEST(Panel, SaysItsQueryInWords) {
    TShop shop;
    shop.Model.AddCondition(1, "placed before @ (any year)", "orders.placed < '@1'");
    shop.Where("customers.company", "Equal", "N")->SetCaption(1, "Norway");
    TFilterBracket& bracket = *shop.Panel.AddBracket(shop.Root());
    bracket.SetLinkType(fltNotAll);
    shop.Where("orders.amount", "Between", "1", "2", &bracket);
    shop.Where("orders.amount", "IsNull", "", "", &bracket)->SetEnabled(false);
    shop.Panel.AddCustomCondition(bracket, *shop.Model.ConditionByID(1))->SetValueIsParam(1, true);
    EXPECT_EQ(shop.Panel.GetQueryText(), " Choose records where all of the following apply\n"
                                         "   company is equal to Norway\n"
                                         "   not all of the following apply\n"
                                         "     amount is between 1 and 2\n"
                                         "     placed before placed before param (any year)\n");
    shop.Panel.GetAppearance().SetStyle(psAndOr);
    bracket.SetLinkType(fltAny);
    EXPECT_EQ(shop.Panel.GetQueryText(), "   company is equal to Norway\n"
                                         "     amount is between 1 and 2\n"
                                         "     or placed before placed before param (any year)\n");
    EXPECT_EQ(shop.Panel.GetSQLParams().GetText(), "company='N'\n");
}

TEST(Panel, RefreshesItsRows) {
    TShop shop;
    shop.Where("orders.amount", "Equal", "1");
    int active = 0;
    shop.Panel.OnActive = [&](TVQueryPanel&) { ++active; };
    const std::string text = shop.Panel.GetQueryText();
    shop.Panel.RefreshPanel();
    EXPECT_GE(active, 2); // off and on
    EXPECT_EQ(shop.Panel.GetQueryText(), text);
    EXPECT_TRUE(shop.Panel.GetActive());
    shop.Panel.Deactivate();
    active = 0;
    shop.Panel.RefreshPanel();
    EXPECT_EQ(active, 0);
    EXPECT_EQ(shop.Root().GetRowCount(), 1);
}

// Columns wait for a model that has their fields.
TEST(Panel, KeepsItsColumnsForTheNextModel) {
    TShop shop;
    shop.Select("orders.amount", "Total");
    TVDBStructure copy;
    copy.SetStructString(shop.Model.GetStructString());
    shop.Panel.SetDbStruct(nullptr);
    EXPECT_EQ(shop.Panel.GetQResult().GetResultFields().Count(), 0);
    shop.Panel.SetDbStruct(&copy);
    ASSERT_EQ(shop.Panel.GetQResult().GetResultFields().Count(), 1);
    EXPECT_EQ(shop.SQL(), "SELECT orders.amount as Total\nFROM orders\n");
    shop.Panel.GetQResult().GetResultFields().Clear();
    shop.Panel.SetDbStruct(nullptr);
    shop.Panel.SetDbStruct(&shop.Model);
    EXPECT_EQ(shop.Panel.GetQResult().GetResultFields().Count(), 0);
}

TEST(Panel, LivesThroughChangesOfItsModel) {
    TShop shop;
    shop.Select("orders.amount", "Total");
    TSimpleCond* const condition = shop.Where("orders.amount", "Equal", "1");
    shop.Model.AddCondition(4, "x", "orders.amount > 0");
    shop.Panel.AddCustomCondition(shop.Root(), *shop.Model.ConditionByID(4));
    const std::string sql = shop.SQL();
    shop.Model.SetStructString(shop.Model.GetStructString()); // every item is another one now
    EXPECT_EQ(shop.SQL(), sql);
    shop.Model.DelCondition(0);
    EXPECT_EQ(shop.Root().GetRowCount(), 1);
    shop.Model.DeleteOperatorByName("Equal");
    EXPECT_EQ(condition->GetOperator(), shop.Model.GetUnrecognizedOperator());
    TDSField* const amount = shop.Field("orders.amount");
    for (int i = 0; i < shop.Model.GetFieldCount(); ++i)
        if (shop.Model.GetField(i) == amount)
            shop.Model.DelField(i);
    EXPECT_EQ(condition->GetField(), shop.Model.GetUnrecognizedField());
    EXPECT_EQ(shop.Panel.GetQResult().GetResultFields().GetRField(0)->GetSQLExpr(), "Unrecognized field");
    shop.Panel.SetMainTableName("orders");
    shop.Model.DelTable(1);
    EXPECT_EQ(shop.Panel.GetMainTable(), nullptr);
    shop.Model.ClearStructure();
    EXPECT_EQ(condition->GetValue(1), "1");

    auto other = std::make_unique<TVDBStructure>();
    shop.Panel.SetDbStruct(other.get());
    EXPECT_TRUE(shop.Panel.GetEmpty());
    shop.Panel.Activate();
    other.reset();
    EXPECT_EQ(shop.Panel.GetDbStruct(), nullptr);
    EXPECT_EQ(shop.Panel.GetRootBracket(), nullptr);
    EXPECT_FALSE(shop.Panel.GetActive());

    auto images = std::make_unique<TComponent>();
    auto others = std::make_unique<TComponent>();
    shop.Panel.SetImages(images.get());
    shop.Panel.SetImages(others.get());
    images.reset();
    EXPECT_EQ(shop.Panel.GetImages(), others.get());
    others.reset();
    EXPECT_EQ(shop.Panel.GetImages(), nullptr);
}

TEST(Panel, FollowsAQueryBase) {
    TShop shop;
    shop.Panel.SetSaveTitles(false);
    shop.Where("orders.amount", "Equal", "5");
    TVQueryBase base;
    shop.Panel.SetQueryBase(&base);
    auto item = std::make_unique<TMemoryItem>();
    TMemoryItem& stored = *item;
    EXPECT_THROW(stored.Save(), EVQueryBaseError);
    stored.SetQueryName("Fives");
    base.AddItem(std::move(item));
    stored.Save();
    base.AddItem(std::make_unique<TMemoryItem>());
    shop.Panel.ClearAll();
    base.SetItemIndex(0);
    EXPECT_EQ(shop.Root().GetRowCount(), 1);
    EXPECT_EQ(shop.Panel.GetQueryName(), "Fives");
    EXPECT_FALSE(shop.Panel.GetModified());
    stored.SetDescription("all of them");
    EXPECT_EQ(shop.Panel.GetDescription().GetText(), "all of them\n");
    base.SetItemIndex(1);
    EXPECT_TRUE(shop.Panel.GetEmpty());
    shop.Where("orders.amount", "Equal", "6");
    EXPECT_EQ(base.IndexByName("FIVES"), 0);
    stored.SetDescription("another's"); // of a query that is not the current one
    EXPECT_EQ(shop.Panel.GetDescription().GetText(), "");
    base.AddItem(std::make_unique<TMemoryItem>());
    base.DeleteQuery(2);
    EXPECT_EQ(shop.Root().GetRowCount(), 1);
    base.DeleteQuery(1);
    EXPECT_EQ(base.GetItemIndex(), 0);
    EXPECT_EQ(static_cast<TFilterCond*>(shop.Root().GetRow(0))->GetValue(1), "5");
    EXPECT_THROW(base.GetQuery(1), EListError);
    shop.Panel.SetQueryBase(nullptr);
    shop.Panel.LoadCurBaseQuery(); // there is none
    EXPECT_EQ(shop.Root().GetRowCount(), 1);
}

TEST(Panel, IsKeptInAForm) {
    RegisterComponentClass("TVDBStructure",
                           [](TComponent* owner) -> TComponent* { return new TVDBStructure(owner); });
    RegisterComponentClass("TVQueryPanel",
                           [](TComponent* owner) -> TComponent* { return new TVQueryPanel(owner); });
    TComponent form;
    form.SetName("Form1");
    auto* const panel = new TVQueryPanel(&form);
    panel->SetName("Panel1");
    auto* const model = new TVDBStructure(&form);
    model->SetName("Model1");
    TShop shop;
    model->SetStructString(shop.Model.GetStructString());
    model->SetDefOperators(TStringList("Equal=ist\n"));
    model->GetSQLFormats().SetQuoteSymbol1('[');
    panel->SetDbStruct(model);
    panel->SetStrict(true);
    panel->SetSQLOptions({soBracketJoins});
    panel->GetAppearance().SetStyle(psAndOr);
    panel->GetQResult().GetResultFields().Add("@1", {model->FieldByName(fnDisplayName, "amount")}, "Größe");
    panel->SetTitle("ttlAll", "alle");
    panel->SetMainTableName("orders");
    panel->SetQueryName("One");
    panel->SetDescription(TStringList("first\n"));
    panel->SetUserData(TStringList("mine\n"));
    panel->SetSaveTitles(false);
    panel->SetSaveSQLOptions(true);
    panel->SetSQLSyntax(ssOracle);
    panel->SetDialect(sdMySQL);
    panel->SetMaxPopupItemCount(6);
    panel->SetHelpFileName("help");
    panel->SetRFEHelpContext(7);
    panel->SetImages(model);
    const std::string text = WriteFormText(form);
    EXPECT_NE(text.find("    Strict = True\n"), std::string::npos) << text;
    EXPECT_NE(text.find("    DbStruct = Model1\n"), std::string::npos);
    EXPECT_NE(text.find("    SQLFormats.QuoteSymbol1 = '['\n"), std::string::npos);

    TComponent copy;
    ReadFormText(text, copy);
    auto& copiedPanel = dynamic_cast<TVQueryPanel&>(*copy.FindComponent("Panel1"));
    auto& copiedModel = dynamic_cast<TVDBStructure&>(*copy.FindComponent("Model1"));
    copy.SetName("Form1");
    const std::size_t panelText = text.find("  object Model1");
    EXPECT_EQ(WriteFormText(copy).substr(0, panelText), text.substr(0, panelText));
    EXPECT_EQ(copiedPanel.GetDbStruct(), &copiedModel);
    EXPECT_EQ(copiedModel.GetStructString(), model->GetStructString());
    EXPECT_EQ(copiedModel.GetDefOperator("IsNull"), "is null"); // merged in when loaded
    EXPECT_EQ(copiedPanel.GetQResult().GetResultFields().GetRField(0)->GetSelectExpr(),
              "orders.amount as Größe");
    EXPECT_EQ(copiedPanel.GetTitle("ttlAll"), "alle");
    EXPECT_EQ(copiedPanel.GetAppearance().GetStyle(), psAndOr);

    std::string names;
    for (const TPropertyInfo& property : panel->PublishedProperties())
        names.append(property.Name) += ' ';
    EXPECT_EQ(
        names,
        "Tag DbStruct MainTableName QResult QueryName Description UserData Titles SaveTitles SQLOptions "
        "SQLSyntax SaveSQLOptions Dialect Strict Appearance ViewOptions RowSpace TabSpace ElemSpace "
        "HeaderLeft HeaderTop MaxPopupItemCount HelpFileName RFEHelpContext Images QueryBase OnActive "
        "OnChange OnParamListChange OnCustomEdit OnChangeValue OnSetValue OnCustomValue OnValueDblClick "
        "OnConditionChange OnBuildSQL OnGetGroupImageIndex OnGetItemImageIndex OnRFEHelpClick ");
    panel->SetTitles(TStringList("no\nkeys\n")); // by position only in an old form
    EXPECT_EQ(panel->GetTitle("ttlAll"), "all");

    TVQueryPanel old;
    ReadFormText("object Old: TVQueryPanel\n  Titles.Strings = (\n    ''\n    ''\n    'alles')\n"
                 "  Options = [poOracleJoins, poNewJoinsStyle, poFlatButtons, poQuoteAliases]\nend\n",
                 old);
    EXPECT_EQ(old.GetTitle("ttlAll"), "alles");
    EXPECT_EQ(old.GetSQLSyntax(), ssOracle);
    EXPECT_TRUE(old.GetSQLOptions().Contains(soQuoteAliases));
    EXPECT_TRUE(old.GetAppearance().GetOptions().Contains(aoFlatButtons));
    EXPECT_EQ(
        MessageOf<EReadError>([&] { ReadFormText("object Old: TVQueryPanel\n  Options = 3\nend\n", old); }),
        "Line 2: The value of Options is not a set");
}
