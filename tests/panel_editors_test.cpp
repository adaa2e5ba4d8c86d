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
    bool EditResultFields(TVQueryPanel&, int, int) override { return true; }

    std::function<bool(TdlgSubQuery&)> Run;
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
    EXPECT_EQ(Captions(editor.GetContent()), "and or! ");
    editor.AcceptItem(editor.GetContent().Items[0]);
    EXPECT_EQ(Shop.Root().GetLinkType(), fltNotAll); // still negated
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
    TDropDownContent content = editor.GetContent();
    EXPECT_EQ(Shop.Info.LastSQL, ""); // not yet
    EXPECT_EQ(content.LoadItems().size(), 2u);
    EXPECT_EQ(Shop.Info.LastSQL, "select a, b from t where c = 'N'\n");

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
