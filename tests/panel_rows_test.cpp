#include "lumora/screen/layout.h"
#include "tests/fixtures.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

using namespace lumora;
using namespace lumora::tests;

namespace {

// Seven pixels a character, and a count of what was measured.
class TFakeMeasurer : public TTextMeasurer {
public:
    TSize TextExtent(const TFont&, std::string_view text) const override {
        ++Count;
        return {static_cast<int>(text.size()) * 7, 16};
    }

    mutable int Count = 0;
};

class TFakeView : public TQueryPanelView {
public:
    void RepaintRow(TFilterRow& row) override { Repainted.push_back(&row); }
    void PlaceAllRows() override { Told += "place "; }
    void Repaint() override { Told += "repaint "; }
    void ShowHeader(bool shown) override { Told += shown ? "header " : "no header "; }
    void ShowRow(TFilterRow&) override { Told += "row "; }
    void ScrollToEnd() override { Told += "end "; }
    void UpdateMenus() override { Told += "menus "; }
    void DropDownWord(TFilterRow& row, int word) override { DroppedDown = {&row, word}; }
    void ShowRowMenu(TFilterRow&, int, TPopupMenu& menu) override { Shown = &menu; }
    void ShowValueMenu(TFilterRow&, int, TPopupMenu& menu) override { Shown = &menu; }

    std::vector<TFilterRow*> Repainted;
    std::pair<TFilterRow*, int> DroppedDown{nullptr, -1};
    TPopupMenu* Shown = nullptr;
    std::string Told;
};

std::string Captions(const std::vector<TScreenWord>& words) {
    std::string text;
    for (const TScreenWord& word : words)
        text.append(&word == &words.front() ? "" : "|").append(word.IsPrompt ? "?" : "").append(word.Caption);
    return text;
}

class PanelRows : public testing::Test {
protected:
    PanelRows() : Layout(Shop.Panel.GetScreen(), Measurer) { Shop.Panel.SetView(&View); }
    ~PanelRows() override { Shop.Panel.SetView(nullptr); }

    void Option(TQPAppearanceOption option, bool on = true) {
        TQPAppearanceOptions options = Shop.Panel.GetAppearance().GetOptions();
        on ? options.Include(option) : options.Exclude(option);
        Shop.Panel.GetAppearance().SetOptions(options);
    }
    // What the view is told while something is done.
    template <typename TAct>
    std::string Told(TAct act) {
        View.Told.clear();
        act();
        return View.Told;
    }
    bool Key(int key, TShiftState shift = {}) { return Shop.Panel.KeyDown(key, shift); }
    void Command(int command) {
        Shop.Panel.VPopup(Shop.Panel.GetMenus().GetConditionMenu());
        for (const TMenuItem& item : TPopupMenu(Shop.Panel.GetMenus().GetConditionMenu()).Items)
            if (item.Command == command)
                Shop.Panel.MenuItemClick(item);
    }
    // The tree as text: conditions by their first value, brackets around their rows.
    std::string Tree(const TFilterRow& row) {
        if (row.GetRowType() != frtBracket)
            return static_cast<const TFilterCond&>(row).GetValue(1);
        std::string text = "(";
        const auto& bracket = static_cast<const TFilterBracket&>(row);
        for (int i = 0; i < bracket.GetRowCount(); ++i)
            text += Tree(*bracket.GetRow(i));
        return text + ")";
    }
    std::string Tree() { return Tree(Shop.Root()); }
    TSimpleCond* Text(const char* value, TFilterBracket* bracket = nullptr) {
        return Shop.Where("customers.company", "Equal", value, {}, bracket);
    }

    TShop Shop;
    TFakeView View;
    TFakeMeasurer Measurer;
    TScreenLayout Layout;
};

} // namespace

TEST_F(PanelRows, SayWhatIsThereAndAskForWhatIsNot) {
    TVQueryPanel& panel = Shop.Panel;
    TSimpleCond* const condition = Shop.Where("orders.amount", "Between", "5", "");
    panel.GetAppearance().SetValueColor({7});
    Option(aoShowCheckBoxes);
    const std::string text = panel.GetQueryText();
    const std::vector<TScreenWord> words = ScreenWords(panel.GetScreen(), *condition);
    EXPECT_EQ(Captions(words), "||amount|is between|5|and|?<value>");
    EXPECT_EQ(words[4].Color, TColor{7});
    EXPECT_EQ(words[5].Action, waNone);
    EXPECT_EQ(words[6].Problem, "\"amount\" has no value yet");
    EXPECT_EQ(words[6].State, rsUnfinished);
    EXPECT_EQ(words[6].Name, "Value: <value>");
    EXPECT_EQ(text, panel.GetQueryText());
    EXPECT_EQ(text.find("<value>"), std::string::npos);
    EXPECT_EQ(Captions(ScreenWords(panel.GetScreen(), Shop.Root())),
              "||Choose records where|all|of the following apply");

    EXPECT_EQ(RowRemark(*condition), "");
    condition->SetValue(2, "3"); // it will do, but finds nothing
    EXPECT_FALSE(RowProblem(panel.GetScreen(), *condition));
    EXPECT_EQ(RowName(panel.GetScreen(), *condition),
              "amount is between 5 and 3. The first value is greater than the second");
    condition->SetValue(2, " "); // no number at all
    EXPECT_EQ(RowProblem(panel.GetScreen(), *condition).State, rsUnfinished);
    condition->SetValue(2, "many");
    EXPECT_EQ(RowProblem(panel.GetScreen(), *condition).State, rsWrong);
    EXPECT_EQ(RowName(panel.GetScreen(), *condition),
              "amount is between 5 and many. Invalid value \"many\" for \"amount\"");
    condition->SetValueIsParam(2, true);
    EXPECT_FALSE(RowProblem(panel.GetScreen(), *condition));
    EXPECT_EQ(ScreenWords(panel.GetScreen(), *condition)[6].Action, waValueMenu);

    TSimpleCond* const list = Shop.Where("orders.custno", "InList", "1, x");
    EXPECT_EQ(RowProblem(panel.GetScreen(), *list).Text, "Invalid value \"x\" for \"custno\"");
    list->SetValue(1, std::string(300, 'x') + "\nlast");
    EXPECT_EQ(ScreenWords(panel.GetScreen(), *list)[4].Caption.size(), MaxScreenCaption + 3u);
    EXPECT_EQ(WordHint(*list, ScreenWords(panel.GetScreen(), *list)[4]),
              RowProblem(panel.GetScreen(), *list).Text);
    TFilterBracket* const bracket = panel.AddBracket(Shop.Root());
    TSimpleCond* const inner = Shop.Where("customers.company", "Equal", "", {}, bracket);
    EXPECT_EQ(RowProblem(panel.GetScreen(), *inner).State, rsUnfinished);
    inner->SetValue(1, " "); // a blank is a text
    EXPECT_FALSE(RowProblem(panel.GetScreen(), *inner));
    inner->SetField(Shop.Model.GetUnrecognizedField());
    EXPECT_EQ(PanelProblems(panel.GetScreen()).size(), 2u);
    bracket->SetEnabled(false);
    EXPECT_FALSE(ScreenWords(panel.GetScreen(), *inner)[2].Enabled);
    ASSERT_EQ(PanelProblems(panel.GetScreen()).size(), 1u);
    EXPECT_EQ(PanelProblems(panel.GetScreen())[0].Row, list);
}

TEST_F(PanelRows, StandWhereTheirWordsAre) {
    TSimpleCond* const first = Text("a");
    TFilterBracket* const bracket = Shop.Panel.AddBracket(Shop.Root());
    TSimpleCond* const inner = Text("b", bracket);
    TSimpleCond* const last = Text("c");
    ASSERT_EQ(Layout.GetLineCount(), 6);
    EXPECT_TRUE(Layout.IsAddLine(5));
    const int step = Layout.GetLineTop(1) - Layout.GetLineTop(0);
    EXPECT_EQ(step, Layout.GetLineHeight() + 3);
    EXPECT_EQ(Layout.LineAt(4), -1);
    EXPECT_EQ(Layout.LineAt(5 + 3 * step), 3);
    EXPECT_EQ(Layout.LineAt(5 + 6 * step), -1);
    EXPECT_EQ(Layout.LineOfRow(inner), 3);
    // Two tabs, the button, "company", "is equal to", "b".
    const TPlacedLine line = Layout.PlaceLine(3);
    EXPECT_EQ(line.Bounds.Left, 5 + 2 * 20);
    const TRect value = Layout.WordBounds(3, 3);
    EXPECT_EQ(value.Left, 45 + Layout.GetLineHeight() + 5 + 7 * 7 + 5 + 11 * 7 + 5);
    EXPECT_EQ(Layout.WordAt(value.Left, value.Top).Word, 3);
    EXPECT_EQ(Layout.WordAt(value.Left - 1, value.Top).Word, -1);
    EXPECT_EQ(Layout.GetContentSize().Width, value.Right + 5);
    EXPECT_EQ(Layout.GetContentSize().Height, 5 + 5 * step + Layout.GetLineHeight() + 5);

    std::vector<TGuideLine> guides = Layout.GuideLines(0, 1000);
    ASSERT_EQ(guides.size(), 2u);
    EXPECT_EQ(guides[0].Bottom, Layout.GetLineTop(4) + Layout.GetLineHeight() / 2);
    EXPECT_EQ(guides[1].Bracket, bracket);
    guides = Layout.GuideLines(Layout.GetLineTop(3), Layout.GetLineTop(3) + 2);
    ASSERT_EQ(guides.size(), 2u); // those around the lines in view
    EXPECT_EQ(guides[0].Bottom - guides[0].Top, 2);

    bracket->SetHidden(true);
    EXPECT_EQ(Layout.GetLineCount(), 4);
    EXPECT_EQ(Layout.RowOfLine(2), last);
    EXPECT_EQ(Layout.LineOfRow(inner), -1);
    Shop.Panel.SetCurrentRow(first);
    Shop.Panel.IncCurRow();
    EXPECT_EQ(Shop.Panel.GetCurrentRow(), last);
    bracket->SetHidden(false);
    Shop.Panel.GetAppearance().SetStyle(psAndOr);
    EXPECT_EQ(Layout.RowOfLine(0), first);
    EXPECT_EQ(Layout.PlaceLine(0).Bounds.Left, 5);
    EXPECT_EQ(Captions(ScreenWords(Shop.Panel.GetScreen(), *last)), "|and|company|is equal to|c");
    Shop.Panel.SetCurrentRow(first);
    Shop.Panel.DecCurRow(); // the root has no line
    EXPECT_EQ(Shop.Panel.GetCurrentRow(), first);
    Shop.Panel.Deactivate();
    EXPECT_EQ(Layout.GetLineCount(), 0);
    EXPECT_TRUE(Layout.PlaceLines(0, 1000).empty());
}

TEST_F(PanelRows, StandAsTheLayoutPropertiesSay) {
    TVQueryPanel& panel = Shop.Panel;
    TFilterBracket* const bracket = panel.AddBracket(Shop.Root());
    Text("a", bracket);
    const auto sets = [&](void (TVQueryPanel::*set)(int), int value) {
        EXPECT_EQ(Told([&] { (panel.*set)(value); }), "place ");
        EXPECT_EQ(Told([&] { (panel.*set)(value); }), "");
    };
    sets(&TVQueryPanel::SetRowSpace, 7);
    sets(&TVQueryPanel::SetTabSpace, 11);
    sets(&TVQueryPanel::SetElemSpace, 2);
    sets(&TVQueryPanel::SetHeaderLeft, 30);
    sets(&TVQueryPanel::SetHeaderTop, 40);
    const int height = Layout.GetLineHeight();
    EXPECT_EQ(height, 20); // the text's, and two pixels above and below
    const int step = height + 7;
    EXPECT_EQ(Layout.LineAt(39), -1);
    EXPECT_EQ(Layout.LineAt(40 + step - 1), 0); // what is between two lines belongs to the upper one
    EXPECT_EQ(Layout.LineAt(40 + step), 1);
    EXPECT_EQ(Layout.WordAt(31, 40 + height).Word, -1);
    EXPECT_EQ(Layout.WordAt(31, 40 + height - 1).Word, 0);
    const TPlacedLine line = Layout.PlaceLine(2);
    EXPECT_EQ(line.Bounds.Left, 30 + 2 * 11);
    EXPECT_EQ(line.Bounds.Top, 40 + 2 * step);
    EXPECT_EQ(line.Bounds.Right, line.Words.back().Bounds.Right);
    EXPECT_EQ(line.Bounds.Bottom, 40 + 2 * step + height);
    for (std::size_t i = 1; i < line.Words.size(); ++i)
        EXPECT_EQ(line.Words[i].Bounds.Left, line.Words[i - 1].Bounds.Right + 2);
    EXPECT_EQ(Layout.PlaceLine(3).Bounds.Left, 30 + 11); // the line that adds a condition
    EXPECT_EQ(Layout.GetContentSize().Height, 40 + 3 * step + height + 40);
    const std::vector<TPlacedLine> seen = Layout.PlaceLines(40 + step, 40 + 2 * step + 1);
    ASSERT_EQ(seen.size(), 2u);
    EXPECT_EQ(seen[0].Row, bracket);

    Option(aoShowCheckBoxes);
    const TRect box = Layout.WordBounds(2, 1);
    EXPECT_EQ(box.Right - box.Left, 13);
    Option(aoShowCheckBoxes, false);

    // Guide lines begin under the bracket's button and end in the middle of its last row.
    std::vector<TGuideLine> guides = Layout.GuideLines(0, 1000);
    ASSERT_EQ(guides.size(), 2u);
    EXPECT_EQ(guides[1].X, 30 + 11 + height / 2);
    EXPECT_EQ(guides[1].Top, 40 + step + height);
    EXPECT_EQ(guides[1].Bottom, 40 + 2 * step + height / 2);
    EXPECT_TRUE(Layout.GuideLines(1000, 2000).empty());
    bracket->GetRow(0)->SetHidden(true);
    EXPECT_EQ(Layout.GuideLines(0, 1000).size(), 1u); // an empty one has none
    bracket->GetRow(0)->SetHidden(false);

    // A dragged row's mark stands in the space between two lines.
    const TDropTarget drop = Layout.DropTargetAt(*bracket->GetRow(0), 0, 40 + step);
    EXPECT_EQ(drop.Target.Bracket, &Shop.Root());
    EXPECT_EQ(drop.Target.Index, 0);
    EXPECT_EQ(drop.Mark.Left, 30 + 11);
    EXPECT_EQ(drop.Mark.Top, 40 + step - (7 + 2) / 2);
    EXPECT_EQ(drop.Mark.Bottom - drop.Mark.Top, 2);
    EXPECT_GE(drop.Mark.Right, Layout.GetContentSize().Width);

    panel.SetTabSpace(0); // every level at the same place: far right is as deep as it goes
    Text("c");
    EXPECT_EQ(Layout.DropTargetAt(*Shop.Root().GetRow(1), 0, 40 + 3 * step).Target.Bracket, bracket);
    panel.SetRowSpace(-100);
    EXPECT_EQ(Layout.GetLineTop(1), 41); // lines never stand in one place
}

TEST_F(PanelRows, TellTheViewWhatToDraw) {
    TVQueryPanel& panel = Shop.Panel;
    EXPECT_EQ(Told([&] { panel.Deactivate(); }), "no header repaint repaint ");
    EXPECT_EQ(Told([&] { panel.Activate(); }), "menus header repaint place repaint ");
    EXPECT_EQ(Told([&] { panel.Activate(); }), "");
    EXPECT_EQ(Told([&] { panel.GetAppearance().SetStyle(psAndOr); }), "no header place repaint ");
    panel.Deactivate();
    EXPECT_EQ(Told([&] { panel.Activate(); }), "menus no header repaint place repaint ");
    EXPECT_EQ(Told([&] { panel.GetAppearance().SetStyle(psGroups); }), "header place repaint ");
    EXPECT_EQ(Told([&] { panel.AddCondition(Shop.Root()); }), "place row end ");
    panel.SetCurrentRow(&Shop.Root());
    EXPECT_EQ(Told([&] { panel.RecreateRootBracket(); }), "repaint place place ");
    // What a host wants to hear of the looks does not keep the panel from drawing them.
    int told = 0;
    panel.GetAppearance().OnChange = [&] { ++told; };
    EXPECT_EQ(Told([&] { panel.GetAppearance().SetFieldColor({3}); }), "header place repaint ");
    EXPECT_EQ(Told([&] { panel.GetAppearance().SetFieldColor({3}); }), "");
    EXPECT_EQ(told, 1);
    panel.GetAppearance().BeginUpdate();
    panel.GetAppearance().SetFieldColor({4});
    panel.GetAppearance().SetValueColor({4});
    EXPECT_EQ(told, 1);
    EXPECT_EQ(Told([&] { panel.GetAppearance().EndUpdate(); }), "header place repaint ");
    EXPECT_EQ(told, 2);
}

// Each word's role, colour, action and name.
TEST_F(PanelRows, TellWordsApart) {
    TQPAppearance& looks = Shop.Panel.GetAppearance();
    looks.SetControlBorderColor({1});
    looks.SetFieldColor({2});
    looks.SetOperatorColor({3});
    looks.SetValueColor({4});
    looks.SetBoolOpColor({5});
    looks.SetAddRowColor({6});
    looks.SetStyle(psAndOr);
    Option(aoShowCheckBoxes);
    const auto told = [](const std::vector<TScreenWord>& words) {
        std::string text;
        for (const TScreenWord& word : words)
            text += std::string(EnumName(word.Role)) +
                    (word.Color == clNone ? " -" : " " + std::to_string(word.Color.Value)) +
                    (word.IsClickable() ? " clickable " : " ") + word.Name + "\n";
        return text;
    };
    Text("a");
    TSimpleCond& condition = *Shop.Where("orders.amount", "Between", "1", "2");
    EXPECT_EQ(told(ScreenWords(Shop.Panel.GetScreen(), condition)),
              "wrButton 1 clickable Menu of the row\nwrCheckBox 1 clickable Row enabled\n"
              "wrAndOr 5 clickable Joined by: and\nwrField 2 clickable Field: amount\n"
              "wrOperator 3 clickable Operator: is between\nwrValue 4 clickable Value: 1\n"
              "wrText - and\nwrValue 4 clickable Value: 2\n");
    looks.SetStyle(psGroups);
    EXPECT_EQ(told(ScreenWords(Shop.Panel.GetScreen(), Shop.Root())),
              "wrButton 1 clickable Menu of the row\nwrCheckBox 1 clickable Row enabled\n"
              "wrText - Choose records where\nwrLinkWord 5 clickable Joined by: all\n"
              "wrText - of the following apply\n");
    EXPECT_EQ(told(AddRowWords(Shop.Panel.GetScreen())),
              "wrAddRow 6 clickable Click here to add new condition\n");
    condition.SetEnabled(false);
    EXPECT_EQ(RowName(Shop.Panel.GetScreen(), condition), "amount is between 1 and 2 (disabled)");
}

TEST_F(PanelRows, AreMeasuredOnlyInView) {
    Shop.Panel.BeginUpdate();
    for (int i = 0; i < 2000; ++i)
        Text("x");
    Shop.Panel.EndUpdate();
    Measurer.Count = 0;
    const int top = Layout.GetLineTop(1000);
    const std::size_t lines = Layout.PlaceLines(top, top + 400).size();
    EXPECT_LE(lines, 25u);
    EXPECT_LE(Measurer.Count, 100);
}

TEST_F(PanelRows, AreDroppedWhereTheMarkIs) {
    TSimpleCond* const a = Text("a");
    TFilterBracket* const bracket = Shop.Panel.AddBracket(Shop.Root());
    TSimpleCond* const b = Text("b", bracket);
    TSimpleCond* const c = Text("c");
    Shop.Panel.SetCurrentRow(b);
    const auto drop = [&](TFilterRow& row, int line, int x) {
        const TDropTarget target = Layout.DropTargetAt(row, x, Layout.GetLineTop(line));
        return target.Target.Bracket && MoveRow(Shop.Panel.GetQuery(), row, target.Target);
    };
    EXPECT_TRUE(drop(*a, 3, 0)); // between the bracket and its first row
    EXPECT_EQ(Tree(), "((ab)c)");
    EXPECT_EQ(Shop.Panel.GetCurrentRow(), b);
    EXPECT_TRUE(drop(*c, 4, 100)); // behind the last row: far right, into the bracket
    EXPECT_EQ(Tree(), "((abc))");
    EXPECT_TRUE(drop(*c, 5, 0)); // and far left, out of it
    EXPECT_EQ(Tree(), "((ab)c)");
    EXPECT_FALSE(drop(*bracket, 3, 100)); // not into itself
    EXPECT_TRUE(drop(*bracket, 9, 100));
    EXPECT_EQ(Tree(), "(c(ab))");
    EXPECT_FALSE(drop(Shop.Root(), 2, 0));
    EXPECT_FALSE(drop(*c, 1, 0)); // where it is
    EXPECT_FALSE(MoveRow(Shop.Panel.GetQuery(), *bracket, {bracket, 0}));

    Shop.Panel.GetAppearance().SetStyle(psAndOr); // no line for the root: (c(ab))
    EXPECT_TRUE(drop(*b, 1, 0));
    EXPECT_EQ(Tree(), "(cb(a))");
    EXPECT_TRUE(drop(*b, 0, 100));
    EXPECT_EQ(Tree(), "(bc(a))");
    EXPECT_TRUE(drop(*b, 3, 100));
    EXPECT_EQ(Tree(), "(c(ba))");
    EXPECT_TRUE(drop(*b, 4, 100));
    EXPECT_EQ(Tree(), "(c(ab))");
    Shop.Panel.GetAppearance().SetStyle(psGroups);

    Option(aoNonEmptyBrackets);
    EXPECT_TRUE(MoveRow(Shop.Panel.GetQuery(), *a, {&Shop.Root(), 0}));
    TFilterBracket* const outer = Shop.Panel.AddBracket(Shop.Root());
    EXPECT_TRUE(MoveRow(Shop.Panel.GetQuery(), *bracket, {outer, 0}));
    EXPECT_TRUE(MoveRow(Shop.Panel.GetQuery(), *b,
                        {outer, 0})); // the emptied bracket goes, the one it stood in stays
    EXPECT_EQ(Tree(), "(ac(b))");

    TFilterBracket* deep = outer;
    while (deep->GetRowLevel() < MaxRowLevel - 1)
        deep = deep->AddNewBracket();
    TFilterBracket* const two = Shop.Panel.AddBracket(Shop.Root());
    Text("d", two);
    const std::string before = Tree();
    EXPECT_THROW(MoveRow(Shop.Panel.GetQuery(), *two, {deep, 0}), EVQueryPanelError);
    EXPECT_EQ(Tree(), before);
    EXPECT_EQ(two->GetParent(), &Shop.Root());
}

TEST_F(PanelRows, ObeyTheKeyboard) {
    TVQueryPanel& panel = Shop.Panel;
    TSimpleCond* const a = Text("a");
    TFilterBracket* const bracket = panel.AddBracket(Shop.Root());
    panel.SetCurrentRow(a);
    EXPECT_TRUE(Key(keyInsert));
    TFilterRow* const added = panel.GetCurrentRow();
    EXPECT_EQ(added->GetIndex(), 1);
    static_cast<TSimpleCond*>(added)->SetValue(1, "n");
    EXPECT_TRUE(Key(keyDown));
    EXPECT_EQ(panel.GetCurrentRow(), bracket);
    EXPECT_TRUE(Key(keyInsert, {ssCtrl}));
    EXPECT_EQ(panel.GetCurrentRow()->GetParent(), bracket);
    static_cast<TSimpleCond*>(panel.GetCurrentRow())->SetValue(1, "i");
    EXPECT_EQ(Tree(), "(an(i))");
    EXPECT_TRUE(Key(keyLeft, {ssCtrl}));
    EXPECT_EQ(Tree(), "(an()i)");
    EXPECT_TRUE(Key(keyUp, {ssCtrl}));
    EXPECT_TRUE(Key(keyUp, {ssCtrl, ssShift}));
    EXPECT_EQ(Tree(), "(ain())");
    EXPECT_TRUE(Key(keyDown, {ssCtrl}));
    EXPECT_TRUE(Key(keyDown, {ssCtrl}));
    EXPECT_TRUE(Key(keyRight, {ssCtrl}));
    EXPECT_EQ(Tree(), "(an(i))");
    EXPECT_EQ(panel.GetCurrentRowNum(), 4);

    // Words: field, operator, value.
    EXPECT_TRUE(Key(keyEnter));
    EXPECT_EQ(View.DroppedDown, std::make_pair(panel.GetCurrentRow(), 1));
    View.Repainted.clear();
    EXPECT_TRUE(Key(keyLeft));
    EXPECT_TRUE(View.Repainted.empty());
    for (int i = 0; i < 4; ++i)
        EXPECT_TRUE(Key(keyRight));
    EXPECT_EQ(View.Repainted.size(), 2u);
    EXPECT_EQ(panel.GetKeyboard().GetCurControl(), 3);
    for (const int word : {2, 1, 1}) {
        EXPECT_TRUE(Key(keyLeft));
        EXPECT_EQ(panel.GetKeyboard().GetCurControl(), word);
    }
    EXPECT_EQ(View.Repainted.size(), 4u);
    panel.ClickWord(*panel.GetCurrentRow(), 2); // the word clicked is the current one
    EXPECT_EQ(panel.GetKeyboard().GetCurControl(), 2);
    EXPECT_TRUE(Key(keyInsert, {ssAlt}));
    EXPECT_EQ(View.DroppedDown.second, 1);
    EXPECT_EQ(Tree(), "(an(i))");

    EXPECT_FALSE(Key(keyDelete));
    EXPECT_FALSE(Key(keyEnter, {ssShift}));
    EXPECT_FALSE(Key(keyInsert, {ssShift}));
    EXPECT_FALSE(Key('A'));
    EXPECT_TRUE(Key(keyDelete, {ssCtrl}));
    EXPECT_EQ(Tree(), "(an())");
    Option(aoNonEmptyBrackets);
    panel.SetCurrentRow(bracket);
    Key(keyInsert);
    Key(keyDelete, {ssCtrl}); // takes the bracket along
    EXPECT_EQ(Tree(), "(an)");
    EXPECT_EQ(panel.GetCurrentRow(), added);
    Key(keyDelete, {ssCtrl});
    Key(keyDelete, {ssCtrl});
    EXPECT_EQ(panel.GetCurrentRow(), nullptr);
    EXPECT_TRUE(Key(keyInsert)); // one can go on
    EXPECT_TRUE(Key(keyInsert));
    TFilterRow* const first = Shop.Root().GetRow(0);
    panel.SetCurrentRow(&Shop.Root());
    Key(keyDelete, {ssCtrl});
    EXPECT_EQ(Shop.Root().GetRowCount(), 2);
    Option(aoAllowKeyboard, false);
    EXPECT_FALSE(Key(keyInsert));
    Option(aoAllowKeyboard);
    first->SetHidden(true);
    panel.SetCurrentRow(first);
    EXPECT_FALSE(Key(keyDelete, {ssCtrl}));
    first->SetHidden(false);
    panel.OnChange = [](TVQueryPanel& sender) { sender.ClearRows(); };
    View.Repainted.clear();
    panel.MoveCurRowDown();
    EXPECT_EQ(std::count(View.Repainted.begin(), View.Repainted.end(), nullptr), 0);
    EXPECT_TRUE(panel.GetEmpty());
    panel.OnChange = nullptr;
    panel.Deactivate();
    EXPECT_FALSE(Key(keyInsert));
    TVQueryPanel empty;
    EXPECT_FALSE(empty.KeyDown(keyInsert, {}));
}

TEST_F(PanelRows, HaveMenus) {
    TVQueryPanel& panel = Shop.Panel;
    TSimpleCond* const condition = Text("a");
    panel.ClickWord(Shop.Root(), 0);
    ASSERT_EQ(View.Shown, &panel.GetMenus().GetBracketMenu());
    const std::vector<TMenuItem>& items = View.Shown->Items;
    ASSERT_EQ(items.size(), 6u);
    EXPECT_EQ(items[0].Caption, "Add &Condition");
    EXPECT_TRUE(items[2].IsSubMenu && items[2].Items.empty() && !items[2].Enabled);
    EXPECT_TRUE(items[0].Enabled && items[1].Enabled);
    EXPECT_FALSE(items[3].Enabled); // the root stays
    EXPECT_TRUE(items[4].IsSeparator());
    Shop.Model.AddCondition(9, "100% of @", "orders.amount > '@1'");
    panel.ClickWord(*condition, 0);
    ASSERT_EQ(View.Shown, &panel.GetMenus().GetConditionMenu());
    EXPECT_EQ(View.Shown->Items[2].Items.at(0).Caption, "&1. 100% of ");
    EXPECT_TRUE(View.Shown->Items[3].Enabled);
    panel.MenuItemClick(TMenuItem(View.Shown->Items[2].Items[0]));
    ASSERT_EQ(panel.GetCurrentRow()->GetRowType(), frtCustomCondition);
    auto& custom = static_cast<TFilterCond&>(*panel.GetCurrentRow());

    panel.ContextMenu(custom, 2);
    ASSERT_EQ(View.Shown, &panel.GetMenus().GetValueMenu());
    EXPECT_TRUE(View.Shown->Items[0].Checked);
    panel.ValueMenuItemClick(View.Shown->Items[1], custom, 1);
    EXPECT_TRUE(custom.GetValueIsParam(1));
    Option(aoAllowParams, false);
    panel.ClickWord(custom, 2); // back is always possible, and what is chosen stays so
    EXPECT_TRUE(View.Shown->Items[0].Enabled && View.Shown->Items[1].Enabled);
    panel.ValueMenuItemClick(View.Shown->Items[0], custom, 1);
    panel.ContextMenu(custom, 2); // nothing to choose from: the row's menu
    EXPECT_EQ(View.Shown, &panel.GetMenus().GetConditionMenu());
    panel.ValueMenuItemClick(View.Shown->Items[1], custom, 1);
    EXPECT_FALSE(custom.GetValueIsParam(1));

    Command(pcEnableDisable);
    EXPECT_FALSE(custom.GetEnabled());
    Command(pcDeleteRow);
    TMenuItem none;
    none.Command = pcCustomCondition;
    for (none.Index = -1; none.Index < 3; none.Index += 2) // there is one of them, 0
        panel.MenuItemClick(none);
    EXPECT_EQ(Tree(), "(a)");
    const auto captions = [](const TPopupMenu& menu) {
        std::string text;
        for (const TMenuItem& item : menu.Items)
            text += item.Caption + "|";
        return text;
    };
    EXPECT_EQ(captions(panel.GetMenus().GetBracketMenu()),
              "Add &Condition|Add &Bracket|Add custom condition|&Delete Current Row|-|&Enable/Disable Row|");
    EXPECT_EQ(captions(panel.GetMenus().GetConditionMenu()), captions(panel.GetMenus().GetBracketMenu()));
    EXPECT_EQ(captions(panel.GetMenus().GetValueMenu()), "Constant value|Parameter|");
    EXPECT_EQ(
        Told([&] { panel.SetTitles(TStringList("[Query Panel]\nttlAddCond=Neu\nttlParameter=Frage\n")); }),
        "menus place ");
    EXPECT_EQ(captions(panel.GetMenus().GetBracketMenu()),
              "Neu|Add &Bracket|Add custom condition|&Delete Current Row|-|&Enable/Disable Row|");
    EXPECT_EQ(captions(panel.GetMenus().GetValueMenu()), "Constant value|Frage|");
    panel.SetTitle("ttlAddBracket", "Klammer");
    panel.UpdateMenus();
    EXPECT_EQ(panel.GetMenus().GetConditionMenu().Items[1].Caption, "Klammer");
    Option(aoShowCheckBoxes);
    panel.ClickWord(*condition, 1);
    EXPECT_FALSE(condition->GetEnabled());
    panel.AddRowLabelMouseDown();
    EXPECT_EQ(Shop.Root().GetRowCount(), 2);
    Command(pcAddBracket);
    Command(pcAddCondition); // in the bracket, which is current now
    EXPECT_EQ(Tree(), "(a())");
    panel.Deactivate();
    panel.AddRowLabelMouseDown();
    panel.ClickWord(*condition, 1);
    EXPECT_EQ(panel.GetCurrentRow(), nullptr);
    EXPECT_EQ(Shop.Root().GetRowCount(), 3);
    TVQueryPanel empty;
    empty.MenuItemClick(items[0]);
    empty.AddCustomConditionClick(0);
}

// Whatever is done, the tree holds together.
TEST_F(PanelRows, SurviveRandomOperations) {
    Shop.Model.AddCondition(1, "big @", "orders.amount > '@1'");
    std::mt19937 random(7);
    const auto pick = [&](int count) {
        return static_cast<int>(random() % static_cast<unsigned>(std::max(1, count)));
    };
    constexpr int keys[] = {keyEnter, keyLeft, keyUp, keyRight, keyDown, keyInsert, keyDelete};
    constexpr TQPAppearanceOption options[] = {aoNonEmptyBrackets, aoShowCheckBoxes, aoShowAddRow};
    for (int step = 0; step < 4000; ++step) {
        TVQueryPanel& panel = Shop.Panel;
        const int operation = pick(20);
        if (operation < 8) {
            Key(keys[pick(7)], TShiftState::FromBits(static_cast<std::uint64_t>(pick(2) * 4)));
        } else if (operation < 12) {
            Command(pick(3) == 0 ? pcAddBracket : 1 + pick(7));
        } else if (operation < 16) {
            TFilterRow* const row = Layout.RowOfLine(pick(Layout.GetLineCount()));
            const int y = pick(Layout.GetContentSize().Height + 20);
            if (row)
                MoveRow(panel.GetQuery(), *row, Layout.DropTargetAt(*row, pick(200), y).Target);
        } else if (operation < 18) {
            const TWordPlace at = Layout.WordAt(pick(300), pick(Layout.GetContentSize().Height));
            if (TFilterRow* const row = Layout.RowOfLine(at.Line))
                panel.ClickWord(*row, at.Word);
        } else if (operation == 18) {
            Option(options[pick(3)], pick(2) == 0);
        } else {
            panel.GetAppearance().SetStyle(pick(2) == 0 ? psGroups : psAndOr);
        }
        if (Shop.Root().GetLastRow()->GetRowNum() > 60)
            panel.ClearRows();

        // Numbers follow the order, rows know their places, and the current row is one of them.
        int number = 0;
        for (TFilterRow* row = panel.GetRowByNum(0); row; row = panel.GetRowByNum(++number)) {
            ASSERT_EQ(row->GetRowNum(), number);
            ASSERT_EQ(Shop.Root().RowByID(row->GetRowID()), row);
            if (const TFilterBracket* const parent = row->GetParent()) {
                ASSERT_EQ(parent->GetRow(row->GetIndex()), row);
                ASSERT_EQ(row->GetRowLevel(), parent->GetRowLevel() + 1);
            }
        }
        ASSERT_TRUE(!panel.GetCurrentRow() || panel.HasRow(panel.GetCurrentRow())) << step;
        const bool header = panel.GetAppearance().GetStyle() == psGroups;
        const bool addLine = panel.GetAppearance().GetOptions().Contains(aoShowAddRow);
        ASSERT_EQ(Layout.GetLineCount(), number - (header ? 0 : 1) + (addLine ? 1 : 0));
        ASSERT_EQ(panel.GetState(), stIdle);
    }
}
