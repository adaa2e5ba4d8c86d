// Handlers that do away with what they are told of. The address sanitizer finds every use of what is gone.
#include "tests/fixtures.h"

#include "lumora/screen/condition_changes.h"

#include <gtest/gtest.h>

#include <functional>
#include <utility>

namespace lumora::tests {
namespace {

// A panel with a condition and a bracket that holds another, which is a value's parameter too.
struct TRows {
    TRows() {
        TQPAppearance& looks = Shop.Panel.GetAppearance();
        looks.SetOptions(AllAppearanceOptions);
        Shop.Where("customers.company", "Equal", "a");
        Bracket = Shop.Panel.AddBracket(Shop.Root());
        Inner = Shop.Where("customers.company", "Equal", "b", {}, Bracket);
        Param = Shop.Where("orders.amount", "Between", "1", "2");
        Param->SetValueIsParam(2, true);
    }

    TShop Shop;
    TFilterBracket* Bracket = nullptr;
    TSimpleCond* Inner = nullptr;
    TSimpleCond* Param = nullptr;
};

using TAct = std::function<void(TRows&)>;
struct TNamedAct {
    const char* Name;
    TAct Act;
};

// What a host may do with the rows while it is told of one.
const std::vector<TNamedAct>& Removals() {
    static const std::vector<TNamedAct> all = {
        {"clears the rows", [](TRows& rows) { rows.Shop.Panel.ClearRows(); }},
        {"loads another query", [](TRows& rows) { rows.Shop.Panel.LoadFromStrings({}); }},
        {"reads a statement",
         [](TRows& rows) { rows.Shop.Panel.ParseSQL(TStringList("select * from orders")); }},
        {"takes the model away", [](TRows& rows) { rows.Shop.Panel.SetDbStruct(nullptr); }},
        {"deletes row by row",
         [](TRows& rows) {
             for (TFilterBracket& root = rows.Shop.Root(); root.GetRowCount() > 0;)
                 root.DeleteRow(0);
         }},
    };
    return all;
}

// Lets an event run the given act once.
using TArm = std::function<void(TVQueryPanel&, const std::function<void()>&)>;
const std::vector<std::pair<const char*, TArm>>& Events() {
    static const std::vector<std::pair<const char*, TArm>> all = {
        {"OnChange", [](auto& panel, const auto& act) { panel.OnChange = [act](auto&) { act(); }; }},
        {"OnChangeValue",
         [](auto& panel, const auto& act) { panel.OnChangeValue = [act](auto&, auto&, int) { act(); }; }},
        {"OnConditionChange",
         [](auto& panel, const auto& act) {
             panel.OnConditionChange = [act](auto&, auto&, TConditionChange) { act(); };
         }},
        {"OnParamListChange",
         [](auto& panel, const auto& act) { panel.OnParamListChange = [act](auto&) { act(); }; }},
        {"OnSetValue",
         [](auto& panel, const auto& act) { panel.OnSetValue = [act](auto&, auto&, int) { act(); }; }},
        {"OnActive", [](auto& panel, const auto& act) { panel.OnActive = [act](auto&) { act(); }; }},
    };
    return all;
}

void ClickCheckBox(TRows& rows) {
    const std::vector<TScreenWord> words = ScreenWords(rows.Shop.Panel.GetScreen(), *rows.Inner);
    for (std::size_t i = 0; i < words.size(); ++i)
        if (words[i].Action == waToggle)
            return rows.Shop.Panel.ClickWord(*rows.Inner, static_cast<int>(i));
}

void MenuClick(TRows& rows, int command) {
    TMenuItem item;
    item.Command = command;
    rows.Shop.Panel.SetCurrentRow(rows.Inner);
    rows.Shop.Panel.MenuItemClick(item);
}

// What tells the host of a row.
const std::vector<TNamedAct>& Changes() {
    static const std::vector<TNamedAct> all = {
        {"value", [](TRows& rows) { rows.Inner->SetValue(1, "c"); }},
        {"field", [](TRows& rows) { rows.Inner->SetField(rows.Shop.Field("orders.amount")); }},
        {"operator", [](TRows& rows) { rows.Inner->SetOperator(rows.Shop.Operator("NotEqual")); }},
        {"enabled", [](TRows& rows) { rows.Inner->SetEnabled(false); }},
        {"parameter", [](TRows& rows) { rows.Inner->SetValueIsParam(1, true); }},
        {"no parameter", [](TRows& rows) { rows.Param->SetValueIsParam(2, false); }},
        {"link type", [](TRows& rows) { rows.Bracket->SetLinkType(fltAny); }},
        {"delete", [](TRows& rows) { rows.Bracket->DeleteRow(0); }},
        {"delete a parameter", [](TRows& rows) { rows.Shop.Root().DeleteRow(2); }},
        {"clear", [](TRows& rows) { rows.Bracket->ClearRows(); }},
        {"insert", [](TRows& rows) { rows.Bracket->AddCond(); }},
        {"add", [](TRows& rows) { rows.Shop.Panel.AddCondition(*rows.Bracket); }},
        {"add a bracket", [](TRows& rows) { rows.Shop.Panel.AddBracketNum(*rows.Bracket, 1); }},
        {"add by hand",
         [](TRows& rows) {
             rows.Shop.Panel.ManualAddCond(*rows.Bracket, rows.Shop.Field("lines.qty"),
                                           rows.Shop.Operator("Between"), "1");
         }},
        {"move",
         [](TRows& rows) {
             rows.Shop.Panel.SetCurrentRow(rows.Inner);
             rows.Shop.Panel.MoveCurRowLeft();
         }},
        {"choose a field",
         [](TRows& rows) {
             ChangeField(rows.Shop.Panel.GetScreen(), *rows.Inner, *rows.Shop.Field("lines.qty"));
         }},
        {"choose an operator",
         [](TRows& rows) {
             ChangeOperator(rows.Shop.Panel.GetScreen(), *rows.Inner, *rows.Shop.Operator("InList"));
         }},
        {"enter a value",
         [](TRows& rows) { ChangeValue(rows.Shop.Panel.GetScreen(), *rows.Inner, 1, "d", "the fourth"); }},
        {"insert key", [](TRows& rows) { rows.Shop.Panel.KeyDown(keyInsert, {}); }},
        {"delete key",
         [](TRows& rows) {
             rows.Shop.Panel.SetCurrentRow(rows.Inner);
             rows.Shop.Panel.KeyDown(keyDelete, {ssCtrl});
         }},
        {"check box", ClickCheckBox},
        {"menu: delete", [](TRows& rows) { MenuClick(rows, pcDeleteRow); }},
        {"menu: disable", [](TRows& rows) { MenuClick(rows, pcEnableDisable); }},
        {"model: a field goes", [](TRows& rows) { rows.Shop.Model.DelField(1); }},
        {"model: an operator goes", [](TRows& rows) { rows.Shop.Model.DeleteOperatorByName("Equal"); }},
        {"model: all goes", [](TRows& rows) { rows.Shop.Model.ClearStructure(); }},
        {"deactivate", [](TRows& rows) { rows.Shop.Panel.Deactivate(); }},
        {"clear all", [](TRows& rows) { rows.Shop.Panel.ClearAll(); }},
    };
    return all;
}

TEST(Handlers, MayRemoveWhatTheyAreToldOf) {
    int ran = 0;
    for (const TNamedAct& change : Changes())
        for (const auto& [event, arm] : Events())
            for (const TNamedAct& removal : Removals()) {
                SCOPED_TRACE(std::string(change.Name) + ", " + event + " " + removal.Name);
                TRows rows;
                bool done = false;
                arm(rows.Shop.Panel, [&] {
                    if (!std::exchange(done, true))
                        removal.Act(rows);
                });
                change.Act(rows);
                ran += done ? 1 : 0;
                TVQueryPanel& panel = rows.Shop.Panel;
                EXPECT_EQ(panel.GetState(), stIdle);
                if (done && panel.GetDbStruct()) {
                    EXPECT_FALSE(panel.HasRow(rows.Inner));
                    EXPECT_TRUE(!panel.GetCurrentRow() || panel.HasRow(panel.GetCurrentRow()));
                    EXPECT_EQ(panel.GetQResult().GetParamCount(), 0);
                }
            }
    EXPECT_GT(ran, 150); // most changes fire OnChange, and each with every removal
}

TEST(Handlers, InsertingSaysWhenTheRowIsGoneAgain) {
    for (const bool byPanel : {false, true}) {
        TShop shop;
        shop.Panel.OnChange = [](TVQueryPanel& panel) { panel.ClearRows(); };
        EXPECT_EQ(byPanel ? shop.Panel.AddCondition(shop.Root()) : shop.Root().AddCond(), nullptr);
        EXPECT_EQ(byPanel ? shop.Panel.AddBracket(shop.Root()) : shop.Root().AddNewBracket(), nullptr);
        EXPECT_EQ(shop.Panel.ManualAddCond(shop.Root(), shop.Field("lines.qty"), nullptr, "1"), nullptr);
        shop.Panel.OnChange = nullptr;
        EXPECT_NE(shop.Panel.AddCondition(shop.Root()), nullptr);
    }
}

TEST(Handlers, MayNotChangeRowsWhileTheyAreBuilt) {
    TRows rows;
    TVQueryPanel& panel = rows.Shop.Panel;
    panel.OnBuildSQL = [](TVQueryPanel& sender, TFilterCond&, std::string&) { sender.ClearRows(); };
    EXPECT_EQ(MessageOf<EVQueryPanelError>([&] { panel.BuildQuery(); }),
              "The query was changed while it was being built");
    EXPECT_EQ(panel.GetState(), stIdle);
    EXPECT_TRUE(panel.GetEmpty());
}

TEST(Handlers, HearOfOneEditOnce) {
    TRows rows;
    int changes = 0;
    int paramChanges = 0;
    rows.Shop.Panel.OnChange = [&](TVQueryPanel&) { ++changes; };
    rows.Shop.Panel.OnParamListChange = [&](TVQueryPanel&) { ++paramChanges; };
    const auto told = [&](const TAct& act) {
        changes = 0;
        paramChanges = 0;
        act(rows);
        return std::to_string(changes) + "/" + std::to_string(paramChanges);
    };
    TVQueryPanel& panel = rows.Shop.Panel;
    EXPECT_EQ(told([&](TRows&) { panel.AddCondition(*rows.Bracket); }), "1/0");
    EXPECT_EQ(told([&](TRows&) { rows.Inner->SetEnabled(false); }), "1/0");
    EXPECT_EQ(told([&](TRows&) { rows.Bracket->GetRow(1)->SetEnabled(false); }), "1/0"); // its bracket too
    EXPECT_FALSE(rows.Bracket->GetEnabled());
    EXPECT_EQ(told([&](TRows&) { rows.Bracket->ClearRows(); }), "1/0");
    EXPECT_EQ(told([&](TRows&) { rows.Shop.Root().DeleteRow(rows.Param->GetIndex()); }), "1/1");
    EXPECT_EQ(told([&](TRows&) { panel.GetQResult().GetResultFields().Clear(); }), "0/0"); // there are none
    rows.Shop.Where("lines.qty", "Equal", "1", {}, rows.Bracket);
    EXPECT_EQ(told([&](TRows&) { rows.Bracket->DeleteRow(0); }), "1/0"); // the empty bracket goes with it
    EXPECT_EQ(rows.Shop.Root().GetRowCount(), 1);
    EXPECT_EQ(told([&](TRows&) { panel.ClearAll(); }), "1/1");
}

TEST(Handlers, QueryWithoutAPanelFollowsItsModel) {
    TVQuery query;
    {
        TShop shop;
        query.SetDbStruct(&shop.Model);
        query.ManualAddCond(*query.GetRootBracket(), shop.Field("lines.qty"), shop.Operator("Equal"), "1");
        shop.Model.DelField(shop.Model.GetFieldCount() - 2); // lines.qty
        EXPECT_EQ(static_cast<TSimpleCond*>(query.GetRowByNum(1))->GetField(),
                  shop.Model.GetUnrecognizedField());
    }
    EXPECT_EQ(query.GetDbStruct(), nullptr);
    EXPECT_EQ(query.GetRootBracket(), nullptr);
    EXPECT_THROW(query.BuildQuery(), EVQueryPanelError);
}

} // namespace
} // namespace lumora::tests
