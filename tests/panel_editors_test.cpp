#include "lumora/lumora.h"
#include "lumora/query/value_text.h"
#include "lumora/screen/value_lists.h"
#include "lumora/screen/word_editors.h"
#include "tests/fixtures.h"

#include <gtest/gtest.h>

#include <functional>

using namespace lumora;
using namespace lumora::tests;

namespace {

// A provider that ends a reading without a word.
class TSilentInfo : public TMemoryInfo {
public:
    void GetSQLValues(std::string_view sql, TStringList& first, TStringList& second) override {
        TMemoryInfo::GetSQLValues(sql, first, second);
        ++Queries;
    }
    std::string GetLastError() const override { return Error; }

    std::string Error;
    int Queries = 0;
};

class TDialogView : public TQueryPanelView {
public:
    bool RunSubQueryDialog(TdlgSubQuery& dialog) override { return Run(dialog); }
    bool EditResultFields(TVQueryPanel&, int, int) override { return Confirm; }

    std::function<bool(TdlgSubQuery&)> Run;
    bool Confirm = true;
};

std::string Captions(const TDropDownContent& content) {
    std::string text;
    for (const TDropDownItem& item : content.Items)
        text.append(item.Group.empty() ? "" : item.Group + ".")
            .append(item.Caption)
            .append(item.Checked ? "! " : " ");
    return text;
}

class PanelEditors : public testing::Test {
protected:
    TWordEditor Editor(TFilterRow& row, TWordRole role, int value = 1) {
        return TWordEditor(Shop.Panel.GetScreen(), row, role, value);
    }
    std::string Offered(TFilterRow& row, TWordRole role, int value = 1) {
        return Captions(Editor(row, role, value).GetContent());
    }
    TDropDownKind Kind(TFilterRow& row, TWordRole role = wrValue) {
        return Editor(row, role).GetContent().Kind;
    }
    void Option(TQPAppearanceOption option) {
        Shop.Panel.GetAppearance().SetOptions(Shop.Panel.GetAppearance().GetOptions() +
                                              TQPAppearanceOptions{option});
    }
    TDSListEditor& MakeList(TDSField& field) {
        field.SetEditType(etList);
        auto& list = static_cast<TDSListEditor&>(*field.GetValueEditor());
        list.Values.SetText("S\nN\nA,B\n");
        list.Items.SetText("Sweden\nnorway\n\n");
        return list;
    }

    TShop Shop;
};

} // namespace

TEST_F(PanelEditors, OfferLinkWords) {
    TVQueryPanel& panel = Shop.Panel;
    EXPECT_EQ(Offered(Shop.Root(), wrLinkWord), "all! any none not all ");
    panel.GetAppearance().SetLinkTypes({fltAny, fltNone});
    EXPECT_EQ(Offered(Shop.Root(), wrLinkWord), "any none ");
    EXPECT_EQ(Editor(Shop.Root(), wrLinkWord).AcceptText("NONE"), "");
    EXPECT_EQ(Shop.Root().GetLinkType(), fltNone);
    EXPECT_EQ(Editor(Shop.Root(), wrLinkWord).AcceptText("all"), "\"all\" is not in the list");
    panel.GetAppearance().SetLinkTypes(AllLinkTypes);
    Shop.Where("orders.amount", "Equal", "1");
    TFilterRow& second = *Shop.Where("orders.amount", "Equal", "2");
    TWordEditor editor = Editor(second, wrAndOr);
    const auto choose = [&](TFilterLinkType link, std::size_t item) {
        Shop.Root().SetLinkType(link);
        editor.AcceptItem(editor.GetContent().Items.at(item));
        return Shop.Root().GetLinkType();
    };
    EXPECT_EQ(Captions(editor.GetContent()), "and or! ");
    EXPECT_EQ(choose(fltNone, 0), fltNotAll); // still negated
    EXPECT_EQ(choose(fltNotAll, 1), fltNone);
    EXPECT_EQ(choose(fltAny, 0), fltAll);
    EXPECT_EQ(choose(fltAll, 1), fltAny);
    panel.GetAppearance().SetLinkTypes({fltAny, fltNotAll});
    EXPECT_EQ(Offered(second, wrAndOr), "or! ");
}

TEST_F(PanelEditors, OfferFieldsAndKeepWhatFits) {
    TVQueryPanel& panel = Shop.Panel;
    TSimpleCond& condition = *Shop.Where("orders.amount", "Between", "12", "13");
    Shop.Model.GetFieldGroups().AddGroup("People", Shop.Field("customers.company"));
    const TDropDownContent fields = Editor(condition, wrField).GetContent();
    EXPECT_EQ(fields.Kind, ddTree);
    EXPECT_EQ(fields.Items.front().Group, "People");
    EXPECT_EQ(fields.Items[static_cast<std::size_t>(fields.CurrentItem)].Caption, "amount");
    Shop.Model.RootFieldsFirst = true;
    panel.OnGetItemImageIndex = [](TVQueryPanel&, const TDSField&, int& image) { image = 4; };
    panel.OnGetGroupImageIndex = [](TVQueryPanel&, const TDSFieldGroup&, int& image) { image = 5; };
    Option(aoPopupField);
    panel.SetMaxPopupItemCount(6);
    TDropDownContent menu = Editor(condition, wrField).GetContent();
    EXPECT_EQ(menu.Kind, ddMenu);
    EXPECT_EQ(menu.MaxMenuItems, 6);
    EXPECT_EQ(menu.Items.back().Group, "People");
    EXPECT_EQ(menu.Items.back().ImageIndex, 4);
    EXPECT_EQ(menu.Items.back().GroupImageIndex, 5);

    int changes = 0;
    panel.OnChange = [&](TVQueryPanel&) { ++changes; };
    EXPECT_EQ(Editor(condition, wrField).AcceptText("qty"), ""); // a number, too
    EXPECT_EQ(condition.GetField(), Shop.Field("lines.qty"));
    EXPECT_EQ(condition.GetOperator()->GetName(), "Between");
    EXPECT_EQ(condition.GetValue(1) + condition.GetValue(2), "1213");
    EXPECT_EQ(changes, 1);
    condition.SetValue(1, "1.5");
    EXPECT_EQ(Editor(condition, wrField).AcceptText("since"), ""); // a date
    EXPECT_EQ(condition.GetValue(1) + condition.GetValue(2), "");

    // From one value to a list and back.
    MakeList(*Shop.Field("customers.company"));
    EXPECT_EQ(Editor(condition, wrField).AcceptText("company"), "");
    EXPECT_EQ(Editor(condition, wrOperator).AcceptText("is equal to"), "");
    EXPECT_EQ(Editor(condition, wrValue).AcceptText("A,B"), "");
    EXPECT_EQ(Editor(condition, wrOperator).AcceptText("is in list"), "");
    EXPECT_EQ(condition.GetValue(1), "\"A,B\"");
    EXPECT_EQ(Offered(condition, wrValue), "Sweden norway A,B! ");
    condition.SetValue(1, "\"A,B\",X,N");
    EXPECT_EQ(Offered(condition, wrValue), "Sweden norway! A,B! X! "); // nothing is lost
    EXPECT_EQ(Editor(condition, wrOperator).AcceptText("is equal to"), "");
    EXPECT_EQ(condition.GetValue(1), "A,B");

    Shop.Field("customers.custno")->SetEditType(etEdit);
    static_cast<TDSTextEditor*>(Shop.Field("customers.custno")->GetValueEditor())->DefValue = "7";
    TDropDownItem item;
    item.Value = std::to_string(Shop.Field("customers.custno")->GetID());
    Editor(condition, wrField).AcceptItem(item);
    EXPECT_EQ(condition.GetValue(1), "7");
}

TEST_F(PanelEditors, OfferNoFieldsThatNothingCanBeAskedOf) {
    Shop.Panel.GetAppearance().SetOptions({aoPopupField});
    const auto forget = [&](std::string_view field) {
        TDSField& forgotten = *Shop.Field(field);
        while (forgotten.GetOperatCount() > 0)
            forgotten.DelOperator(0);
    };
    forget("customers.custno");
    forget("lines.qty");
    TSimpleCond& condition = *Shop.Panel.AddCondition(Shop.Root());
    EXPECT_EQ(condition.GetField(), Shop.Field("customers.company")); // the first that is offered
    EXPECT_EQ(Offered(condition, wrField), "company! since active custno amount placed orderno at ");
    EXPECT_EQ(Editor(condition, wrField).AcceptText("qty"), "\"qty\" is not in the list");
    forget("customers.company"); // it stays where it is in use
    EXPECT_EQ(Offered(condition, wrField), "company! since active custno amount placed orderno at ");
    EXPECT_EQ(Kind(condition, wrOperator), ddNone);
    Shop.Model.RootFieldsFirst = false;
    Shop.Model.GetFieldGroups().AddGroup("Times", Shop.Field("lines.at"));
    Shop.Model.GetFieldGroups().AddGroup("Dates", Shop.Field("customers.since"));
    Shop.Panel.GetAppearance().SetOptions({});
    EXPECT_EQ(Kind(condition, wrField), ddList);
    EXPECT_EQ(Offered(condition, wrField), "at since company! active custno amount placed orderno ");
    Option(aoShowGroupName);
    EXPECT_EQ(Kind(condition, wrField), ddTree);
    EXPECT_FALSE(Editor(condition, wrField).RunDialog()); // there is none
    EXPECT_EQ(Offered(condition, wrField),
              "Times.at Dates.since company! active custno amount placed orderno ");
    Shop.Model.RootFieldsFirst = true;
    EXPECT_EQ(Offered(condition, wrField),
              "company! active custno amount placed orderno Times.at Dates.since ");
}

TEST_F(PanelEditors, ChooseByTypeAndCheckWhatIsTyped) {
    EXPECT_EQ(Kind(*Shop.Where("orders.amount", "Equal", "")), ddNumber);
    EXPECT_EQ(Kind(*Shop.Where("customers.since", "Equal", "")), ddDate);
    EXPECT_EQ(Kind(*Shop.Where("orders.placed", "Equal", "")), ddDateTime);
    EXPECT_EQ(Kind(*Shop.Where("lines.at", "Equal", "")), ddTime);
    EXPECT_EQ(Kind(*Shop.Where("customers.company", "Equal", "")), ddText);
    TSimpleCond& list = *Shop.Where("lines.qty", "InList", "1");
    EXPECT_EQ(Kind(list), ddText);
    EXPECT_EQ(Editor(list, wrValue).GetContent().Check("1, two"), "Invalid value \"two\" for \"qty\"");
    EXPECT_EQ(Editor(list, wrValue).AcceptText("1, two"), "Invalid value \"two\" for \"qty\"");
    EXPECT_EQ(list.GetValue(1), "1");
    EXPECT_EQ(Editor(list, wrValue).AcceptText(" 1,2 "), "");
    EXPECT_EQ(list.GetValue(1), "1,2");

    TSimpleCond& active = *Shop.Where("customers.active", "Equal", "1");
    EXPECT_EQ(Offered(active, wrValue), "Yes! No ");
    int set = 0;
    Shop.Panel.OnSetValue = [&](TVQueryPanel&, TFilterCond&, int value) { set = value; };
    EXPECT_EQ(Editor(active, wrValue).AcceptText("no"), "");
    EXPECT_EQ(active.GetValue(1), "False");
    EXPECT_EQ(active.GetCaption(1), "No");
    EXPECT_EQ(set, 1);
    EXPECT_EQ(Editor(active, wrValue).AcceptText("yes"), "");
    EXPECT_EQ(active.GetValue(1) + active.GetCaption(1), "TrueYes");
    EXPECT_EQ(Editor(active, wrOperator).AcceptText("is in list"), "");
    EXPECT_EQ(active.GetValue(1) + active.GetCaption(1), "TrueYes");
    EXPECT_EQ(Editor(active, wrValue).AcceptText("1,False"), "");
    EXPECT_EQ(active.GetValue(1) + active.GetCaption(1), "1,FalseYes, No");

    TDSField& company = *Shop.Field("customers.company");
    company.SetEditType(etEdit);
    auto& text = static_cast<TDSTextEditor&>(*company.GetValueEditor());
    text.EditKind = tekMask;
    text.EditMask = "00-00;1;_";
    TSimpleCond& masked = *Shop.Where("customers.company", "Equal", " x ");
    EXPECT_EQ(Kind(masked), ddMask);
    EXPECT_EQ(Editor(masked, wrValue).GetContent().EditMask, "00-00;1;_");
    EXPECT_EQ(Editor(masked, wrValue).AcceptText(" y "), "");
    EXPECT_EQ(masked.GetValue(1), " y "); // blanks count in a text
    masked.SetValueIsParam(1, true);
    EXPECT_EQ(Kind(masked), ddNone);

    company.SetEditType(etCustom);
    masked.SetValueIsParam(1, false);
    EXPECT_EQ(Kind(masked), ddText);
    Shop.Panel.OnCustomEdit = [](TVQueryPanel&, TFilterCond& edited) { edited.SetValue(1, "host"); };
    EXPECT_EQ(Kind(masked), ddDialog);
    EXPECT_TRUE(Editor(masked, wrValue).RunDialog());
    EXPECT_EQ(masked.GetValue(1), "host");
}

TEST_F(PanelEditors, ShowCaptionsAndStoreValues) {
    MakeList(*Shop.Field("customers.company"));
    Option(aoSortListData);
    TSimpleCond& condition = *Shop.Where("customers.company", "InList", "N");
    TDropDownContent content = Editor(condition, wrValue).GetContent();
    EXPECT_EQ(content.Kind, ddCheckList);
    EXPECT_EQ(Captions(content), "A,B norway! Sweden ");
    content.Items[0].Checked = content.Items[2].Checked = true;
    EXPECT_EQ(Editor(condition, wrValue).AcceptChecked(content.Items), "");
    EXPECT_EQ(condition.GetValue(1), "\"A,B\",N,S");
    EXPECT_EQ(condition.GetCaption(1), "A,B, norway, Sweden");
    const std::vector<std::string> awkward = {"a\"b", "\"q\"", " c", "", "d, e", "f"};
    EXPECT_EQ(SplitListValue(JoinListValue(awkward)), awkward);
    EXPECT_EQ(SplitListValue(JoinListValue({""})), std::vector<std::string>{""});

    TSimpleCond& one = *Shop.Where("customers.company", "Equal", "");
    EXPECT_EQ(Editor(one, wrValue).AcceptText("xyz"), "\"xyz\" is not in the list");
    EXPECT_EQ(Editor(one, wrValue).AcceptText("NORWAY"), "");
    EXPECT_EQ(one.GetValue(1) + one.GetCaption(1), "Nnorway");
    content = Editor(one, wrValue).GetContent();
    EXPECT_EQ(content.Kind, ddList);
    EXPECT_EQ(content.Text, "norway"); // its caption, or the value where it has none
    one.SetCaption(1, "");
    EXPECT_EQ(Editor(one, wrValue).GetContent().Text, "N");
    EXPECT_EQ(Editor(one, wrField).GetContent().Prompt + Editor(one, wrOperator).GetContent().Prompt +
                  content.Prompt,
              "<field><operator><value>");
    Option(aoPopupValue);
    EXPECT_EQ(Kind(one), ddMenu);
    TSimpleCond& part = *Shop.Where("customers.company", "StartsWith", "");
    EXPECT_TRUE(Editor(part, wrValue).GetContent().IsOpenList);
    EXPECT_EQ(Editor(part, wrValue).AcceptText("xyz"), "");
    EXPECT_EQ(part.GetValue(1), "xyz");
}

TEST_F(PanelEditors, ReadListsWhenTheyAreOpened) {
    TSilentInfo info;
    TDSField& amount = *Shop.Field("orders.amount");
    amount.SetEditType(etSQL);
    auto& query = static_cast<TDSSQLEditor&>(*amount.GetValueEditor());
    query.SQL.SetText("select a, b from t where c = :company");
    TSimpleCond& company = *Shop.Where("customers.company", "Equal", "N");
    TSimpleCond& condition = *Shop.Where("orders.amount", "Equal", "");
    TWordEditor editor = Editor(condition, wrValue);
    condition.SetValue(1, "3"); // fits as long as nobody knows the list
    EXPECT_EQ(Editor(condition, wrOperator).AcceptText("is in list"), "");
    EXPECT_EQ(condition.GetValue(1), "3");
    TDropDownContent content = editor.GetContent();
    EXPECT_EQ(Shop.Info.LastSQL, "");          // not yet
    EXPECT_EQ(content.LoadItems().size(), 3u); // "3" is kept
    EXPECT_EQ(Shop.Info.LastSQL, "select a, b from t where c = 'N'\n");

    EXPECT_EQ(Editor(condition, wrOperator).AcceptText("is equal to"), "");
    EXPECT_EQ(condition.GetValue(1), ""); // now they do
    Shop.Model.SetDatabaseInfo(&info);
    EXPECT_FALSE(editor.GetContent().LoadItems); // the same list
    company.SetValue(1, "S");
    info.Error = "connection lost";
    content = editor.GetContent();
    ASSERT_TRUE(content.LoadItems);
    EXPECT_THROW(content.LoadItems(), EVDBInfoError);
    EXPECT_EQ(editor.AcceptText("Norway"), "connection lost");
    EXPECT_EQ(query.Values.Count(), 0);
    info.Error.clear();
    EXPECT_EQ(content.LoadItems().size(), 2u);
    EXPECT_EQ(info.Queries, 3);
    Shop.Where("customers.active", "Equal", "True"); // the query does not ask for it
    EXPECT_FALSE(editor.GetContent().LoadItems);
    Shop.Root().DeleteRow(condition.GetIndex());
    EXPECT_TRUE(content.LoadItems().empty());
    EXPECT_EQ(editor.AcceptText("Norway"), "");
    EXPECT_EQ(editor.GetContent().Kind, ddNone);
    Shop.Model.SetDatabaseInfo(nullptr);
}

TEST_F(PanelEditors, LiveThroughHostsThatDeleteRows) {
    TSimpleCond& condition = *Shop.Where("orders.amount", "Equal", "1");
    Shop.Panel.OnConditionChange = [&](TVQueryPanel& panel, TFilterCond&, TConditionChange) {
        panel.OnConditionChange = nullptr;
        panel.GetRootBracket()->DeleteRow(0);
    };
    EXPECT_EQ(Editor(condition, wrField).AcceptText("since"), "");
    EXPECT_TRUE(Shop.Panel.GetEmpty());
    TSimpleCond& next = *Shop.Where("orders.amount", "Equal", "1");
    Shop.Panel.OnChangeValue = [](TVQueryPanel& panel, TFilterCond&, int) {
        panel.OnChangeValue = nullptr;
        panel.OnConditionChange = [](TVQueryPanel& inner, TFilterCond&, TConditionChange) {
            inner.OnConditionChange = nullptr;
            inner.GetRootBracket()->DeleteRow(0);
        };
    };
    EXPECT_EQ(Editor(next, wrValue).AcceptText("2"), "");
    EXPECT_TRUE(Shop.Panel.GetEmpty());
}

TEST_F(PanelEditors, KeepEmptyItemsOfLists) {
    TSimpleCond& active = *Shop.Where("customers.active", "InList", ",1");
    EXPECT_EQ(Offered(active, wrValue), "Yes! No "); // an empty item is neither
    active.SetValue(1, "False,");
    EXPECT_EQ(Offered(active, wrValue), "Yes No! ");
    const TDropDownContent content = Editor(active, wrValue).GetContent();
    EXPECT_EQ(Editor(active, wrValue).AcceptChecked({}), "");
    EXPECT_EQ(active.GetValue(1), "");
    EXPECT_EQ(Editor(active, wrValue).AcceptChecked(content.Items), "");
    EXPECT_EQ(active.GetValue(1) + active.GetCaption(1), "FalseNo");
}

// A list of the field's values serves only where values of the field's own type are asked for.
TEST_F(PanelEditors, OfferListsForTheFieldsOwnType) {
    TDSField& company = *Shop.Field("customers.company");
    MakeList(company);
    const int index =
        Shop.Model.AddOperator("Length", "has the length", "length(@f) = '@1'", "", LmUsedTypes);
    Shop.Model.GetOperator(index)->ExprType = ftInteger;
    company.AddOperatorByName("Length");
    TSimpleCond& condition = *Shop.Where("customers.company", "Equal", "N");
    EXPECT_EQ(Kind(condition), ddList);
    EXPECT_EQ(Editor(condition, wrOperator).AcceptText("has the length"), "");
    EXPECT_EQ(Kind(condition), ddNumber);
    EXPECT_EQ(condition.GetValue(1) + condition.GetCaption(1), ""); // "N" is no number
    EXPECT_EQ(Editor(condition, wrValue).AcceptText("five"), "Invalid value \"five\" for \"company\"");
    EXPECT_EQ(Editor(condition, wrValue).AcceptText(" 5 "), "");
    EXPECT_EQ(condition.GetValue(1), "5");
    EXPECT_EQ(Editor(condition, wrOperator).AcceptText("is equal to"), "");
    EXPECT_EQ(condition.GetValue(1), ""); // and "5" not in the list
    condition.SetValue(1, "N");
    EXPECT_EQ(Editor(condition, wrOperator).AcceptText("is in list"), "");
    EXPECT_EQ(condition.GetValue(1) + condition.GetCaption(1), "N");
    EXPECT_EQ(Editor(condition, wrField).AcceptText("since"), "");
    EXPECT_EQ(condition.GetValue(1) + condition.GetCaption(1), "");
}

// What a dialog shows that no panel owns.
TEST_F(PanelEditors, HaveASubQueryDialogOfItsOwn) {
    TdlgSubQuery dialog;
    TVQueryPanel& panel = dialog.QPanel;
    EXPECT_EQ(panel.GetAppearance().GetOptions(), AllAppearanceOptions - TQPAppearanceOptions{aoAllowParams});
    EXPECT_EQ(panel.GetAppearance().GetLinkTypes(), AllLinkTypes);
    EXPECT_EQ(panel.GetAppearance().GetStyle(), psGroups);
    EXPECT_EQ(panel.GetSQLOptions(), (TSQLOptions{soASCIIRFields, soSelectDistinct}));
    EXPECT_EQ(panel.GetSQLSyntax(), ssSQL2);
    EXPECT_EQ(panel.GetTitles(), TVQueryPanel().GetTitles());
    EXPECT_FALSE(panel.GetSaveTitles());
    EXPECT_EQ(dialog.DistinctCaption + dialog.btOK, "DistinctOK");
    EXPECT_EQ(dialog.ResultFieldContent().Kind, ddNone); // without a model
    panel.SetDbStruct(&Shop.Model);
    Shop.Field("orders.amount")->UIR = false;
    dialog.LoadQuery({});
    EXPECT_EQ(dialog.ddlResultField, "custno");
    dialog.FormShow();
    EXPECT_TRUE(dialog.cbDistinct && panel.GetActive());
    const TDropDownContent content = dialog.ResultFieldContent();
    EXPECT_EQ(content.Kind, ddList);
    EXPECT_EQ(Captions(content), "custno company since active custno placed orderno qty at ");
    EXPECT_EQ(content.CurrentItem, 0);
    dialog.AcceptResultField(content.Items[1]);
    EXPECT_EQ(dialog.ddlResultField, "company");
    EXPECT_EQ(dialog.ResultFieldContent().CurrentItem, 1);
    TStringList lines;
    std::string sql;
    dialog.SaveQuery(lines, sql);
    EXPECT_EQ(sql, "SELECT DISTINCT customers.company\nFROM customers\n");
    EXPECT_EQ(lines[0], "[Main]");
    dialog.cbDistinctClick(false);
    dialog.SaveQuery(lines, sql);
    EXPECT_EQ(sql, "SELECT customers.company\nFROM customers\n");
    dialog.cbDistinctClick(true);
    EXPECT_TRUE(dialog.cbDistinct && panel.GetSQLOptions().Contains(soSelectDistinct));

    // Only the editor's confirmation takes the alias away; what it did is shown in any case.
    TDialogView view;
    panel.SetView(&view);
    TRFieldList& fields = panel.GetQResult().GetResultFields();
    fields.GetRField(0)->SetAlias("a");
    view.Confirm = false;
    dialog.ddlResultFieldCustomDropDown();
    EXPECT_EQ(fields.GetRField(0)->GetAlias(), "a");
    fields.Add("@1", {Shop.Field("lines.qty")}, "Number");
    view.Confirm = true;
    dialog.ddlResultFieldCustomDropDown();
    EXPECT_EQ(fields.GetRField(0)->GetAlias(), "");
    EXPECT_EQ(dialog.ddlResultField, "company, Number");
    EXPECT_EQ(dialog.ResultFieldContent().CurrentItem, -1); // two are no plain field
    fields.Clear();
    dialog.ddlResultFieldCustomDropDown();
    EXPECT_EQ(dialog.ddlResultField, "");
    panel.Deactivate();
    EXPECT_EQ(dialog.CheckQuery(), "Query was not built properly");
    panel.SetView(nullptr);
}

TEST_F(PanelEditors, EditSubQueriesAsTheirPanelDoes) {
    TVQueryPanel& panel = Shop.Panel;
    std::string events;
    panel.OnActive = [&](TVQueryPanel&) { events += "active "; };
    panel.OnChange = [&](TVQueryPanel&) { events += "change "; };
    panel.OnCustomEdit = [&](TVQueryPanel&, TFilterCond&) { events += "edit "; };
    panel.OnCustomValue = [&](TVQueryPanel&, TFilterCond&, int) { events += "custom "; };
    panel.OnChangeValue = [&](TVQueryPanel&, TFilterCond&, int) { events += "value "; };
    panel.OnSetValue = [&](TVQueryPanel&, TFilterCond&, int) { events += "set "; };
    panel.OnValueDblClick = [&](TVQueryPanel&, TFilterCond&, int value) {
        events += "double click " + std::to_string(value) + " ";
    };
    panel.OnConditionChange = [&](TVQueryPanel&, TFilterCond&, TConditionChange) { events += "condition "; };
    panel.OnBuildSQL = [](TVQueryPanel&, TFilterCond&, std::string& sql) { sql = "/* mine */ " + sql; };
    panel.OnGetItemImageIndex = [](TVQueryPanel&, const TDSField&, int& image) { image = 8; };
    panel.SetSQLSyntax(ssOracle);
    panel.SetStrict(true);
    panel.SetDialect(sdOracle);
    panel.SetMaxPopupItemCount(9);
    panel.SetTitles(
        TStringList("[Query Panel]\nttlResultField=Spalte\nttlAll=alle\nttlSubQueryCaption=Innen\n"
                    "[Result Fields Editor]\nttlCancelBtnCaption=Nein\n"));
    Shop.Model.AddCondition(1, "Big @", "orders.amount > '@1'");
    TDialogView view;
    panel.SetView(&view);
    view.Run = [&](TdlgSubQuery& dialog) {
        EXPECT_EQ(dialog.GetParentQPanel(), &panel);
        EXPECT_EQ(dialog.Caption + dialog.ResultFieldLabel + dialog.btCancel, "InnenSpalte:Nein");
        TVQueryPanel& inner = dialog.QPanel;
        EXPECT_EQ(inner.GetTitle("ttlAll"), "alle");
        EXPECT_TRUE(inner.GetStrict());
        EXPECT_EQ(inner.GetSQLSyntax(), ssOracle);
        EXPECT_EQ(inner.GetDialect(), sdOracle);
        EXPECT_EQ(inner.GetMaxPopupItemCount(), 9);
        EXPECT_EQ(events.substr(events.size() - 14), "change active "); // loaded and shown
        events.clear();
        TFilterBracket& root = *inner.GetRootBracket();
        TSimpleCond& condition = *inner.AddCondition(root);
        EXPECT_EQ(events, "condition change ");
        events.clear();
        TWordEditor value(inner.GetScreen(), condition, wrValue, 1);
        EXPECT_EQ(TWordEditor(inner.GetScreen(), condition, wrField).GetContent().Items[0].ImageIndex, 8);
        EXPECT_EQ(value.AcceptText("7"), "");
        EXPECT_EQ(events, "value condition change set ");
        events.clear();
        inner.DblClickWord(condition, 3);
        inner.DblClickWord(condition, 2); // the operator has no such event
        EXPECT_EQ(events, "double click 1 ");
        events.clear();
        TCustomCond& custom = *inner.AddCustomCondition(root, *Shop.Model.ConditionByID(1));
        events.clear();
        EXPECT_TRUE(TWordEditor(inner.GetScreen(), custom, wrValue, 1).RunDialog());
        condition.GetField()->SetEditType(etCustom);
        EXPECT_TRUE(value.RunDialog());
        EXPECT_EQ(events, "custom edit ");
        root.DeleteRow(1);
        return true;
    };
    TStringList lines;
    std::string sql;
    TSQLOptions options{soQuoteAliases}; // of no query yet
    EXPECT_TRUE(panel.EditSubQuery(lines, sql, options));
    EXPECT_EQ(sql,
              "SELECT customers.custno\nFROM customers\nWHERE\n (\n/* mine */ customers.custno = 7\n)\n");
    EXPECT_EQ(options, panel.GetSQLOptions());
    panel.SetView(nullptr);
}

TEST_F(PanelEditors, DropSubQueriesWithTheirOperator) {
    for (const char* const name : {"InSub", "NotInSub"}) {
        const int index = Shop.Model.AddOperator(name, name, "@f in (@1)", "", LmUsedTypes);
        Shop.Model.GetOperator(index)->ValueKind = vkSubQuery;
        Shop.Field("orders.custno")->AddOperatorByName(name);
    }
    TSimpleCond& condition = *Shop.Where("orders.custno", "Equal", "5");
    const auto choose = [&](const char* op) {
        EXPECT_EQ(Editor(condition, wrOperator).AcceptText(op), "");
        return condition.GetValue(1) + "|" + condition.GetCaption(1) + "|" + condition.GetHint() + "|" +
               condition.GetSubQuery().GetText() + (condition.GetSubQueryOptions().Empty() ? "" : "|options");
    };
    EXPECT_EQ(choose("InSub"), "|||"); // 5 is no statement
    condition.SetValue(1, "select 1");
    condition.SetCaption(1, "Sub-query");
    condition.SetHint("select\n1");
    condition.SetSubQuery(TStringList("[Main]\n"));
    condition.SetSubQueryOptions({soSelectDistinct});
    EXPECT_EQ(choose("NotInSub"), "select 1|Sub-query|select\n1|[Main]\n|options");
    EXPECT_EQ(choose("is equal to"), "|||");
}

TEST_F(PanelEditors, EditSubQueries) {
    TVQueryPanel& panel = Shop.Panel;
    const int index = Shop.Model.AddOperator("InSub", "is among", "@f in (@1)", "", LmUsedTypes);
    Shop.Model.GetOperator(index)->ValueKind = vkSubQuery;
    Shop.Field("orders.custno")->AddOperatorByName("InSub");
    TSimpleCond& condition = *Shop.Where("orders.custno", "InSub", "");
    EXPECT_EQ(RowProblem(panel.GetScreen(), condition).Text, "\"custno\" has no sub-query yet");
    TDialogView view;
    panel.SetView(&view);
    panel.SetSQLOptions({soSelectDistinct});
    panel.GetAppearance().SetFieldColor({3});
    TWordEditor editor = Editor(condition, wrValue);
    EXPECT_EQ(editor.GetContent().Kind, ddDialog);
    view.Run = [&](TdlgSubQuery& dialog) {
        EXPECT_EQ(dialog.Caption + dialog.ResultFieldLabel + dialog.btCancel, "Sub-queryResult Field:Cancel");
        EXPECT_EQ(dialog.ddlResultField, "custno");
        EXPECT_TRUE(dialog.cbDistinct && dialog.QPanel.GetActive());
        EXPECT_FALSE(dialog.QPanel.GetAppearance().GetOptions().Contains(aoAllowParams));
        EXPECT_EQ(dialog.QPanel.GetAppearance().GetFieldColor(), TColor{3});
        return false;
    };
    EXPECT_FALSE(editor.RunDialog());
    EXPECT_TRUE(condition.GetValue(1).empty());

    view.Run = [&](TdlgSubQuery& dialog) {
        dialog.cbDistinctClick(false);
        dialog.QPanel.ManualAddCond(*dialog.QPanel.GetRootBracket(), Shop.Field("customers.company"),
                                    Shop.Operator("Equal"), "N");
        dialog.QPanel.SetStrict(true);
        static_cast<TFilterCond*>(dialog.QPanel.GetRootBracket()->GetRow(0))->SetValue(1, "ok");
        EXPECT_EQ(dialog.CheckQuery(), "");
        return true;
    };
    int changes = 0;
    panel.OnChange = [&](TVQueryPanel& sender) { changes += &sender == &panel; };
    EXPECT_TRUE(editor.RunDialog());
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(condition.GetHint().substr(0, 24), "SELECT customers.custno\n");
    EXPECT_EQ(condition.GetValue(1).find('\n'), std::string::npos);
    EXPECT_EQ(condition.GetCaption(1), "Sub-query");
    EXPECT_EQ(WordHint(condition, ScreenWords(panel.GetScreen(), condition).back()), condition.GetHint());
    EXPECT_FALSE(condition.GetSubQueryOptions().Contains(soSelectDistinct));
    EXPECT_TRUE(panel.GetSQLOptions().Contains(soSelectDistinct));
    EXPECT_FALSE(RowProblem(panel.GetScreen(), condition));
    TStringList saved;
    panel.SaveToStrings(saved);
    const std::string value = condition.GetValue(1);
    panel.LoadFromStrings(saved);
    EXPECT_EQ(static_cast<TFilterCond*>(Shop.Root().GetRow(0))->GetValue(1), value);

    view.Run = [](TdlgSubQuery& dialog) {
        EXPECT_EQ(dialog.QPanel.GetRootBracket()->GetRowCount(), 1);
        EXPECT_FALSE(dialog.cbDistinct);
        dialog.QPanel.GetQResult().GetResultFields().Clear();
        dialog.QPanel.ClearRows();
        EXPECT_EQ(dialog.CheckQuery(), "No enough information for building query");
        return false;
    };
    EXPECT_FALSE(Editor(*Shop.Root().GetRow(0), wrValue).RunDialog());
    panel.SetView(nullptr);
}
