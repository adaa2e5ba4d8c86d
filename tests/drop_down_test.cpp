#include "lumora/controls/drop_down_label.h"
#include "lumora/platform/errors.h"

#include <gtest/gtest.h>

using namespace lumora;

namespace {

TDropDownContent ListOf(std::initializer_list<const char*> captions, TDropDownKind kind = ddList) {
    TDropDownContent content;
    content.Kind = kind;
    for (const char* const caption : captions) {
        TDropDownItem item;
        item.Caption = caption;
        content.Items.push_back(item);
    }
    return content;
}

TDropDownContent TextOf(TDropDownKind kind, const char* text) {
    TDropDownContent content;
    content.Kind = kind;
    content.Text = text;
    return content;
}

// What comes out when the text is typed: itself, or why it will not do after a "!".
std::string Typed(TDropDownKind kind, const char* text) {
    TDropDownEditor editor(TextOf(kind, "before"));
    editor.SetText(text);
    const auto result = editor.Accept();
    return result ? result->Text : "!" + editor.GetError();
}

} // namespace

TEST(DropDown, FindsWhatIsTyped) {
    TDropDownEditor editor(ListOf({"Order date", "Shipping order", "Border", "Customer", "order number"}));
    editor.SetSearch("ORDER");
    EXPECT_EQ(editor.GetShown(), (std::vector<int>{0, 4, 1, 2})); // begins, a word begins, inside
    EXPECT_EQ(editor.GetCurrentItem(), 0);
    editor.MoveCurrent(100);
    EXPECT_EQ(editor.GetCurrentItem(), 2);
    EXPECT_EQ(editor.Accept()->Item, 2);
    editor.SetSearch("none such");
    EXPECT_FALSE(editor.Accept());
    editor.SetSearch("");
    EXPECT_EQ(editor.GetShown().size(), 5U);
    editor.MoveCurrent(-1); // from nowhere: the last
    EXPECT_EQ(editor.Accept()->Text, "order number");
}

TEST(DropDown, HasASearchBoxFromTenItemsOnOrWhereCaptionsBeginAlike) {
    TDropDownContent content = ListOf({"1", "2", "3", "4", "5", "6", "7", "8", "9"});
    EXPECT_FALSE(TDropDownEditor(content).ShowsSearchBox());
    content.IsOpenList = true; // where one must be able to type
    EXPECT_TRUE(TDropDownEditor(content).ShowsSearchBox());
    content.IsOpenList = false;
    content.Items.back().Caption = "1 and more"; // letters alone would stop at "1"
    EXPECT_TRUE(TDropDownEditor(content).ShowsSearchBox());
    content.Items.back().Caption = "9";
    content.Items.push_back({"10", "", "", -1, false});
    EXPECT_TRUE(TDropDownEditor(content).ShowsSearchBox());
    for (const TDropDownKind kind : {ddList, ddTree, ddCheckList, ddMenu, ddText, ddNumber, ddDate}) {
        content.Kind = kind;
        EXPECT_EQ(TDropDownEditor(content).ShowsSearchBox(),
                  kind == ddList || kind == ddTree || kind == ddCheckList)
            << kind;
    }
}

TEST(DropDown, TakesATypedTextInAnOpenListOnly) {
    TDropDownContent content = ListOf({"Oslo", "Bergen"});
    content.Text = "Bodo";
    content.IsOpenList = true;
    TDropDownEditor open(content);
    EXPECT_FALSE(open.IsChanged());
    open.SetCurrentItem(1);
    EXPECT_TRUE(open.IsChanged());
    open.SetCurrentItem(2); // there is none
    EXPECT_FALSE(open.IsChanged());
    EXPECT_EQ(open.Accept()->Text, "Bodo"); // as it was
    open.SetSearch("Bodo");
    EXPECT_FALSE(open.IsChanged());
    open.SetSearch("os");
    EXPECT_TRUE(open.IsChanged());
    EXPECT_EQ(open.Accept()->Text, "os");
    open.SetSearch("oslo");
    EXPECT_EQ(open.Accept()->Answer, daItem);
    open.SetSearch("");
    open.SetCurrentItem(-1);
    EXPECT_EQ(open.Accept()->Text, "");
    content.IsOpenList = false;
    TDropDownEditor closed(content);
    EXPECT_FALSE(closed.Accept());
    closed.SetSearch("os");
    EXPECT_EQ(closed.Accept()->Item, 0);
}

TEST(DropDown, StandsOnThePresentValue) {
    TDropDownContent content = ListOf({"one", "two", "three"});
    content.Items[2].Value = "3";
    content.Text = "3";
    EXPECT_EQ(TDropDownEditor(content).GetCurrentItem(), 2);
    content.CurrentItem = 7; // there is none
    EXPECT_EQ(TDropDownEditor(content).GetCurrentItem(), -1);
}

TEST(DropDown, KeepsGroupsTogether) {
    TDropDownContent content = ListOf({"Name", "Date", "Total", "Free"}, ddTree);
    content.Items[0].Group = content.Items[2].Group = "Orders";
    content.Items[1].Group = "Dates";
    TDropDownEditor editor(content);
    std::string rows;
    for (const TDropDownRow& row : editor.GetRows())
        rows += std::string(row.Caption) + std::to_string(row.Items.size()) + " ";
    EXPECT_EQ(rows, "Orders2 Dates1 Free0 ");
    editor.SetSearch("t"); // in order, although the last begins with it
    EXPECT_EQ(editor.GetShown(), (std::vector<int>{1, 2}));
    EXPECT_EQ(editor.Accept()->Item, 2);
}

TEST(DropDown, GivesTheCheckedItems) {
    TDropDownContent content = ListOf({"a", "b", "ab"}, ddCheckList);
    content.Items[1].Checked = true;
    TDropDownEditor editor(content);
    EXPECT_FALSE(editor.IsChanged());
    editor.SetSearch("a");
    editor.CheckShown(true);
    editor.SetChecked(1, false);
    editor.SetChecked(99, true);
    EXPECT_TRUE(editor.IsChanged());
    const auto result = editor.Accept();
    EXPECT_EQ(result->Checks, (std::vector<int>{0, 2}));
    EXPECT_EQ(result->Text, "a, ab");
    EXPECT_TRUE(editor.IsChecked(0));
    EXPECT_FALSE(editor.IsChecked(-1) || editor.IsChecked(1) || editor.IsChecked(3));
}

TEST(DropDown, SplitsMenusIntoColumns) {
    TDropDownContent content = ListOf({"1", "2", "3", "4", "5"}, ddMenu);
    EXPECT_EQ(TDropDownEditor(content).GetColumnCount(), 1);
    content.MaxMenuItems = 2;
    EXPECT_EQ(TDropDownEditor(content).GetColumnCount(), 3);
    EXPECT_EQ(TDropDownEditor(content).GetItemsInColumn(), 2);
    content.Items.clear();
    EXPECT_EQ(TDropDownEditor(content).GetColumnCount(), 0);
}

TEST(DropDown, RefusesWhatWillNotDo) {
    EXPECT_EQ(Typed(ddNumber, "-1.5"), "-1.5");
    EXPECT_EQ(Typed(ddNumber, "1x"), "!\"1x\" is not a number");
    EXPECT_EQ(Typed(ddNumber, ""), "");
    EXPECT_EQ(Typed(ddDate, "2023-02-29"), "!\"2023-02-29\" is not a date");
    EXPECT_EQ(Typed(ddDate, "2024-02-29"), "2024-02-29");
    EXPECT_EQ(Typed(ddTime, "12:30"), "12:30");
    EXPECT_EQ(Typed(ddTime, "2024-02-29"), "!\"2024-02-29\" is not a time");
    EXPECT_EQ(Typed(ddDateTime, "2024-02-29 12:30"), "2024-02-29 12:30");
    EXPECT_EQ(Typed(ddText, "soon"), "soon");
    EXPECT_EQ(Typed(ddDateTime, "soon"), "!\"soon\" is not a date and time");
    const std::string message = Typed(ddNumber, std::string(59, 'x').append(1000, '\xC3').c_str());
    EXPECT_LT(message.size(), 100U);

    TDropDownContent content = TextOf(ddNumber, "1");
    content.Check = [](std::string_view text) -> std::string {
        if (text == "0")
            throw EConvertError("nought fails");
        return text == "7" ? "not seven" : "";
    };
    TDropDownEditor editor(content);
    editor.SetText("7");
    EXPECT_FALSE(editor.Accept());
    EXPECT_EQ(editor.GetError(), "not seven");
    editor.SetText("0");
    EXPECT_EQ(editor.GetError(), "");
    EXPECT_EQ(editor.Refusal(), "nought fails");
    editor.SetText("8");
    EXPECT_EQ(editor.Accept()->Text, "8");
}

TEST(DropDown, ReadsItemsWhenTheyAreFirstShown) {
    int reads = 0;
    TDropDownContent content = TextOf(ddList, "b");
    content.LoadItems = [&] {
        if (++reads == 1)
            throw EFileError("no connection");
        return ListOf({"a", "b"}).Items;
    };
    TDropDownLabel label;
    label.SetContent(content);
    EXPECT_TRUE(label.Open()->NeedsLoading());
    EXPECT_FALSE(label.GetEditor()->Load());
    EXPECT_EQ(label.GetEditor()->GetError(), "no connection");
    EXPECT_FALSE(label.Accept());
    label.Cancel();
    EXPECT_TRUE(label.Open()->Load());
    EXPECT_EQ(label.GetEditor()->GetCurrentItem(), 1);
    EXPECT_TRUE(label.Accept());
    EXPECT_FALSE(label.Open()->NeedsLoading()); // they are kept
    EXPECT_EQ(reads, 2);
}

TEST(DropDown, LabelShowsWhatWasAcceptedAndKeepsWhatWasNot) {
    TDropDownLabel label;
    std::string told;
    label.OnAccept = [&](const TDropDownResult& result) { told += result.Text + "."; };
    label.OnCancel = [&] { told += "cancelled."; };
    label.SetContent(TextOf(ddText, "old"));
    EXPECT_EQ(label.GetShownText(), "...");
    label.SetCaption("old");
    label.Open()->SetText("new");
    label.Cancel();
    EXPECT_EQ(label.Open()->GetText(), "old");
    label.GetEditor()->SetText("new");
    EXPECT_TRUE(label.Accept());
    EXPECT_EQ(label.GetCaption(), "new");
    EXPECT_EQ(told, "cancelled.new.");
    EXPECT_EQ(label.Open()->GetText(), "new");
    label.Cancel();
    label.Cancel(); // nothing is open
    EXPECT_EQ(told, "cancelled.new.cancelled.");
    label.Open();
    label.SetEnabled(false);
    EXPECT_FALSE(label.IsOpen());
    EXPECT_EQ(label.Open(), nullptr);
}

TEST(DropDown, LabelStandsOutWhenItIsUsed) {
    TDropDownLabel label;
    int repaints = 0;
    label.OnInvalidate = [&] { ++repaints; };
    label.SetHovered(true);
    label.SetHovered(true);
    EXPECT_TRUE(label.IsHot());
    EXPECT_EQ(repaints, 1);
    label.SetHovered(false);
    EXPECT_FALSE(label.IsHot());
    EXPECT_FALSE(label.CanOpen()); // nothing to open
    repaints = 0;
    label.SetContent(TextOf(ddDialog, ""));
    EXPECT_EQ(repaints, 1);
    EXPECT_TRUE(label.CanOpen());
    EXPECT_EQ(label.Open(), nullptr); // the host's affair
    label.SetContent(ListOf({"a"}, ddCheckList));
    label.Open()->SetChecked(0, true);
    EXPECT_TRUE(label.IsHot());
    EXPECT_TRUE(label.Accept());
    EXPECT_TRUE(label.GetContent().Items[0].Checked);
}
