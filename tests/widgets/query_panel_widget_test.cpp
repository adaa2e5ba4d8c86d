// The query panel on the screen: what the mouse, the keyboard and assistive technology do with it.
#include "lumora/widgets/dropdownlabel.h"
#include "lumora/widgets/querypanelwidget.h"
#include "lumora/widgets/subquerydialog.h"
#include "tests/fixtures.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QApplication>
#include <QCheckBox>
#include <QContextMenuEvent>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QScrollBar>
#include <QTest>
#include <QTimer>

namespace lumora::tests {

namespace {

class QueryPanelWidgetTest : public testing::Test {
protected:
    QueryPanelWidgetTest() {
        Widget.setPanel(&Shop.Panel);
        Widget.resize(500, 300);
    }

    void Show() {
        Widget.show();
        Widget.activateWindow();
        Widget.setFocus();
        QCoreApplication::processEvents();
    }
    int WordOf(int line, TWordRole role, int value = 0) const {
        const TPlacedLine placed = Widget.line(line);
        for (std::size_t i = 0; i < placed.Words.size(); ++i)
            if (placed.Words[i].Word.Role == role && (value == 0 || placed.Words[i].Word.Value == value))
                return static_cast<int>(i);
        return -1;
    }
    void Click(int line, TWordRole role, int value = 0) {
        const QPoint centre = Widget.wordRect(line, WordOf(line, role, value)).center();
        QTest::mouseClick(Widget.viewport(), Qt::LeftButton, Qt::NoModifier, centre);
    }
    void Key(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::keyClick(&Widget, static_cast<Qt::Key>(key), modifiers);
    }
    // Into whatever of the popup has the keyboard.
    void TypeInPopup(const QString& text) {
        ASSERT_TRUE(Widget.popup());
        QWidget* const input = Widget.popup()->focusWidget();
        ASSERT_TRUE(input);
        QTest::keyClicks(input, text);
    }
    void KeyInPopup(Qt::Key key) {
        ASSERT_TRUE(Widget.popup());
        QWidget* const input = Widget.popup()->focusWidget();
        QTest::keyClick(input ? input : Widget.popup(), key);
    }
    QString Row(int line) const {
        QString text;
        for (const TPlacedWord& word : Widget.line(line).Words)
            if (!word.Word.Caption.empty())
                text += (text.isEmpty() ? "" : " ") + QString::fromStdString(word.Word.Caption);
        return text;
    }
    void Choose(const QString& caption) {
        ASSERT_TRUE(Widget.menu());
        for (QAction* const action : Widget.menu()->actions())
            if (action->text().remove('&').contains(caption)) {
                action->trigger();
                Widget.menu()->close();
                return;
            }
        FAIL() << "no menu item " << caption.toStdString();
    }

    TShop Shop;
    QueryPanelWidget Widget;
};

} // namespace

TEST_F(QueryPanelWidgetTest, MouseChoosesFieldOperatorAndValue) {
    Show();
    Click(1, wrAddRow);
    ASSERT_EQ(Widget.lineCount(), 3);
    Click(1, wrField);
    TypeInPopup("company");
    KeyInPopup(Qt::Key_Return);
    auto& condition = static_cast<TSimpleCond&>(*Shop.Root().GetRow(0));
    EXPECT_EQ(condition.GetField(), Shop.Field("customers.company"));
    Click(1, wrOperator);
    TypeInPopup("starts");
    KeyInPopup(Qt::Key_Return);
    EXPECT_NE(condition.GetOperator()->DisplayName.find("start"), std::string::npos);
    Click(1, wrValue);
    TypeInPopup("Acme");
    KeyInPopup(Qt::Key_Return);
    EXPECT_EQ(condition.GetValue(1), "Acme");
    EXPECT_TRUE(Widget.hasFocus());
}

TEST_F(QueryPanelWidgetTest, KeyboardBuildsAWholeCondition) {
    Show();
    Key(Qt::Key_Insert);
    ASSERT_EQ(Shop.Root().GetRowCount(), 1);
    auto& condition = static_cast<TSimpleCond&>(*Shop.Root().GetRow(0));
    Key(Qt::Key_Return);
    TypeInPopup("company");
    KeyInPopup(Qt::Key_Tab); // accepts, and opens the operator
    TypeInPopup("starts");
    KeyInPopup(Qt::Key_Tab); // and the value
    TypeInPopup("Ac");
    KeyInPopup(Qt::Key_Tab); // there is no word behind it
    EXPECT_EQ(condition.GetField(), Shop.Field("customers.company"));
    EXPECT_EQ(condition.GetValue(1), "Ac");
    EXPECT_FALSE(Widget.popup());
    EXPECT_EQ(Widget.currentPlace().Word, WordOf(1, wrValue));
    Key(Qt::Key_Left);
    EXPECT_EQ(Widget.currentPlace().Word, WordOf(1, wrOperator));
    Key(Qt::Key_Up);
    EXPECT_EQ(Widget.currentPlace().Line, 0);
    Key(Qt::Key_End);
    Key(Qt::Key_Delete, Qt::ControlModifier);
    EXPECT_TRUE(Shop.Panel.GetEmpty());
}

TEST_F(QueryPanelWidgetTest, OnlyALeftClickThatEndsWhereItBeganOpensAnEditor) {
    Shop.Where("customers.company", "EqualTo", "Acme");
    Shop.Where("customers.company", "EqualTo", "Bell");
    Show();
    const QPoint field = Widget.wordRect(1, WordOf(1, wrField)).center();
    const QPoint op = Widget.wordRect(1, WordOf(1, wrOperator)).center();
    QWidget* const viewport = Widget.viewport();
    for (const QPoint& end : {op, Widget.wordRect(2, WordOf(2, wrField)).center(), QPoint(490, field.y())}) {
        QTest::mousePress(viewport, Qt::LeftButton, Qt::NoModifier, field);
        QTest::mouseRelease(viewport, Qt::LeftButton, Qt::NoModifier, end);
        EXPECT_FALSE(Widget.popup());
    }
    for (const Qt::MouseButton other : {Qt::RightButton, Qt::MiddleButton}) {
        QTest::mousePress(viewport, other, Qt::NoModifier, field);
        QTest::mouseRelease(viewport, Qt::LeftButton, Qt::NoModifier, field);
        EXPECT_FALSE(Widget.popup());
        QTest::mousePress(viewport, Qt::LeftButton, Qt::NoModifier, field);
        QTest::mouseRelease(viewport, other, Qt::NoModifier, field);
        EXPECT_FALSE(Widget.popup());
        QTest::mouseRelease(viewport, Qt::LeftButton, Qt::NoModifier, op);
    }
    QTest::mouseClick(viewport, Qt::LeftButton, Qt::NoModifier, op);
    ASSERT_TRUE(Widget.popup());
    Widget.popup()->cancel();
    Key(Qt::Key_Insert, Qt::AltModifier); // the first word's editor, whichever word is current
    ASSERT_TRUE(Widget.popup());
    EXPECT_EQ(Widget.currentPlace().Word, WordOf(1, wrField));
    EXPECT_EQ(Shop.Root().GetRowCount(), 2);
    Widget.popup()->cancel();
}

// What is drawn stands where clicks find it, and says where the keyboard is.
TEST_F(QueryPanelWidgetTest, WordsAreDrawnInTheirPlacesAndTheCurrentRowStandsOut) {
    Shop.Where("customers.company", "EqualTo", "Acme");
    Shop.Where("customers.company", "EqualTo", "Bell");
    Show();
    Widget.makeCurrent(2);
    QCoreApplication::processEvents();
    const auto isBlue = [](const QColor& color) { return color.blue() > color.red() + 100; };
    const auto blueIn = [&](const QImage& image, const QRect& area) {
        int count = 0;
        for (int y = area.top(); y <= area.bottom(); ++y)
            for (int x = area.left(); x <= area.right(); ++x)
                count += isBlue(image.pixelColor(x, y)) ? 1 : 0;
        return count;
    };
    const auto groundOf = [&](const QImage& image, int line) {
        return image.pixelColor(Widget.viewport()->width() - 5, Widget.lineRect(line).center().y());
    };
    const QImage focused = Widget.viewport()->grab().toImage();
    int inWords = 0;
    for (const TWordRole role : {wrField, wrOperator, wrValue}) {
        const int count = blueIn(focused, Widget.wordRect(1, WordOf(1, role)));
        EXPECT_GT(count, 20) << role;
        inWords += count;
    }
    EXPECT_EQ(blueIn(focused, Widget.lineRect(1).adjusted(0, 0, -1, 0)), inWords) << "and nowhere else";
    const QColor plain = Widget.palette().color(QPalette::Base);
    EXPECT_EQ(groundOf(focused, 1), plain);
    EXPECT_NE(groundOf(focused, 2), plain);
    Widget.clearFocus();
    const QImage unfocused = Widget.viewport()->grab().toImage();
    EXPECT_NE(groundOf(unfocused, 2), plain);
    EXPECT_NE(groundOf(unfocused, 2), groundOf(focused, 2)) << "the keyboard is elsewhere";
}

TEST_F(QueryPanelWidgetTest, LinesBeginAtTheRightWhereOneReadsFromThere) {
    Shop.Where("customers.company", "EqualTo", std::string(200, 'x')); // wider than the widget
    Shop.Panel.AddBracket(Shop.Root());
    Show();
    const auto places = [this] {
        std::vector<QRect> rects;
        for (int line = 0; line < Widget.lineCount(); ++line)
            for (std::size_t word = 0; word < Widget.line(line).Words.size(); ++word)
                rects.push_back(Widget.wordRect(line, static_cast<int>(word)));
        return rects;
    };
    const std::vector<QRect> before = places();
    Widget.setLayoutDirection(Qt::RightToLeft);
    QCoreApplication::processEvents();
    const std::vector<QRect> after = places();
    ASSERT_EQ(after.size(), before.size());
    const int width = Widget.viewport()->width();
    for (std::size_t i = 0; i < after.size(); ++i) {
        EXPECT_EQ(after[i].left(), width - 1 - before[i].right());
        EXPECT_EQ(after[i].size(), before[i].size());
    }
    // What is drawn, clicked and scrolled to is where the places say.
    const QImage image = Widget.viewport()->grab().toImage();
    const QRect button = Widget.wordRect(0, 0);
    EXPECT_NE(image.pixel(button.center()),
              image.pixel(width - 1 - button.center().x(), button.center().y()));
    const int field = WordOf(1, wrField);
    const QPoint centre = Widget.wordRect(1, field).center();
    EXPECT_EQ(Widget.placeAt(centre).Word, field);
    Widget.makeCurrent(1, field);
    Key(Qt::Key_Left);
    EXPECT_EQ(Widget.currentPlace().Word, WordOf(1, wrOperator)) << "the next word is at the left";
    Key(Qt::Key_Left);
    QCoreApplication::processEvents();
    EXPECT_GT(Widget.horizontalScrollBar()->value(), 0);
    const QRect value = Widget.wordRect(1, WordOf(1, wrValue));
    EXPECT_TRUE(value.intersects(Widget.viewport()->rect()));
    EXPECT_EQ(Widget.placeAt(QPoint(value.right(), value.center().y())).Word, WordOf(1, wrValue));
}

TEST_F(QueryPanelWidgetTest, EscapeGivesBackTheOldValue) {
    TSimpleCond* const condition = Shop.Where("customers.custno", "EqualTo", "7");
    Show();
    Click(1, wrValue);
    TypeInPopup("8");
    KeyInPopup(Qt::Key_Escape);
    EXPECT_FALSE(Widget.popup());
    EXPECT_EQ(condition->GetValue(1), "7");
    EXPECT_TRUE(Widget.hasFocus());
}

TEST_F(QueryPanelWidgetTest, ValueThatWillNotDoIsRefusedAndMarked) {
    TSimpleCond* const condition = Shop.Where("customers.custno", "EqualTo", "7");
    Show();
    Click(1, wrValue);
    TypeInPopup("x");
    KeyInPopup(Qt::Key_Return);
    EXPECT_TRUE(Widget.popup()) << "a number field takes no letters";
    KeyInPopup(Qt::Key_Escape);
    const QImage sound = Widget.grab().toImage();
    condition->SetValue(1, "x");
    EXPECT_NE(Widget.grab().toImage(), sound);
    const TPlacedLine line = Widget.line(1);
    EXPECT_EQ(line.Words[static_cast<std::size_t>(WordOf(1, wrValue))].Word.State, rsWrong);
}

TEST_F(QueryPanelWidgetTest, ValuesAreCheckedInAList) {
    Shop.Field("customers.company")->SetEditType(etList);
    auto& list = static_cast<TDSListEditor&>(*Shop.Field("customers.company")->GetValueEditor());
    list.Items.SetText("Norway\nSweden\nFinland\n");
    list.Values.SetText("N\nS\nF\n");
    TSimpleCond* const condition = Shop.Where("customers.company", "InList", "S");
    Show();
    Click(1, wrValue);
    ASSERT_TRUE(Widget.popup());
    DropDownPopup& popup = *Widget.popup();
    ASSERT_EQ(popup.content().Kind, ddCheckList);
    popup.editor().SetChecked(0, true);
    ASSERT_TRUE(popup.accept());
    EXPECT_EQ(condition->GetValue(1), "N,S");
    EXPECT_TRUE(Row(1).endsWith("Norway, Sweden")) << Row(1).toStdString();
}

TEST_F(QueryPanelWidgetTest, ContextMenusChangeRows) {
    Shop.Where("customers.company", "EqualTo", "Acme");
    Show();
    const QPoint field = Widget.wordRect(1, WordOf(1, wrField)).center();
    QContextMenuEvent right(QContextMenuEvent::Mouse, field, Widget.viewport()->mapToGlobal(field));
    QCoreApplication::sendEvent(Widget.viewport(), &right);
    Choose("Add Bracket");
    ASSERT_EQ(Shop.Root().GetRowCount(), 2);
    EXPECT_EQ(Shop.Root().GetRow(1)->GetRowType(), frtBracket);
    QContextMenuEvent menuKey(QContextMenuEvent::Keyboard, {}, {});
    QCoreApplication::sendEvent(&Widget, &menuKey);
    Choose("Enable");
    EXPECT_FALSE(Shop.Root().GetRow(1)->GetEnabled());
    QTest::keyClick(&Widget, Qt::Key_F10, Qt::ShiftModifier);
    Choose("Enable");
    EXPECT_TRUE(Shop.Root().GetRow(1)->GetEnabled());
    // A value may become a parameter; the word then shows its menu rather than an editor.
    Widget.showMenu(1, WordOf(1, wrValue));
    Choose("Parameter");
    EXPECT_TRUE(static_cast<TSimpleCond*>(Shop.Root().GetRow(0))->GetValueIsParam(1));
    // A menu whose row has gone changes nothing.
    Widget.showMenu(1, -1);
    const QPointer<QMenu> menu = Widget.menu();
    Shop.Root().DeleteRow(0);
    QCoreApplication::processEvents();
    EXPECT_FALSE(Widget.menu());
}

TEST_F(QueryPanelWidgetTest, SpaceTogglesTheCheckBoxOrOpensTheMenu) {
    TSimpleCond* const condition = Shop.Where("customers.company", "EqualTo", "Acme");
    Show();
    Key(Qt::Key_End);
    Key(Qt::Key_Space);
    ASSERT_TRUE(Widget.menu());
    Widget.menu()->close();
    Shop.Panel.GetAppearance().SetOptions(Shop.Panel.GetAppearance().GetOptions() +
                                          TQPAppearanceOptions{aoShowCheckBoxes});
    Key(Qt::Key_Space);
    EXPECT_FALSE(condition->GetEnabled());
    Click(1, wrCheckBox);
    EXPECT_TRUE(condition->GetEnabled());
    const QPoint box = Widget.wordRect(1, WordOf(1, wrCheckBox)).center();
    QMouseEvent second(QEvent::MouseButtonDblClick, box, Widget.viewport()->mapToGlobal(box), Qt::LeftButton,
                       Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(Widget.viewport(), &second);
    QTest::mouseRelease(Widget.viewport(), Qt::LeftButton, Qt::NoModifier, box);
    EXPECT_FALSE(condition->GetEnabled()) << "the second of two fast clicks counts as well";
    // Without the keyboard map the keys are the window's.
    Shop.Panel.GetAppearance().SetOptions({});
    Key(Qt::Key_Space);
    Key(Qt::Key_Insert);
    EXPECT_FALSE(Widget.menu());
    EXPECT_EQ(Shop.Root().GetRowCount(), 1);
}

TEST_F(QueryPanelWidgetTest, RowsAreDraggedIntoBrackets) {
    TFilterBracket* const bracket = Shop.Panel.AddBracket(Shop.Root());
    Shop.Where("customers.company", "EqualTo", "in it", {}, bracket);
    TFilterRow* const dragged = Shop.Where("customers.company", "EqualTo", "moved");
    Show();
    const QPoint from = Widget.wordRect(3, WordOf(3, wrButton)).center();
    const QPoint to(Widget.wordRect(2, WordOf(2, wrButton)).center().x(), Widget.lineRect(3).top());
    const auto press = [&] {
        QTest::mousePress(Widget.viewport(), Qt::LeftButton, Qt::NoModifier, from);
        QTest::mouseMove(Widget.viewport(), from + QPoint(0, QApplication::startDragDistance()));
        QMouseEvent move(QEvent::MouseMove, to, Widget.viewport()->mapToGlobal(to), Qt::NoButton,
                         Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(Widget.viewport(), &move);
        QCoreApplication::sendEvent(Widget.viewport(), &move);
        ASSERT_TRUE(Widget.isDragging());
    };
    press();
    Key(Qt::Key_Escape);
    EXPECT_FALSE(Widget.isDragging());
    QTest::mouseRelease(Widget.viewport(), Qt::LeftButton, Qt::NoModifier, to);
    EXPECT_EQ(dragged->GetParent(), &Shop.Root());
    press();
    QTest::mouseRelease(Widget.viewport(), Qt::LeftButton, Qt::NoModifier, to);
    EXPECT_EQ(dragged->GetParent(), bracket);
    EXPECT_EQ(Shop.Panel.GetCurrentRow(), dragged);
    EXPECT_FALSE(Widget.menu()) << "the button was dragged, not clicked";
}

TEST_F(QueryPanelWidgetTest, DragEndsWhenItsRowGoes) {
    Shop.Where("customers.company", "EqualTo", "a");
    Shop.Where("customers.company", "EqualTo", "b");
    Show();
    const QPoint from = Widget.wordRect(1, WordOf(1, wrButton)).center();
    const QPoint to = from + QPoint(0, 60);
    QTest::mousePress(Widget.viewport(), Qt::LeftButton, Qt::NoModifier, from);
    QMouseEvent move(QEvent::MouseMove, to, Widget.viewport()->mapToGlobal(to), Qt::NoButton, Qt::LeftButton,
                     Qt::NoModifier);
    QCoreApplication::sendEvent(Widget.viewport(), &move);
    ASSERT_TRUE(Widget.isDragging());
    Shop.Root().DeleteRow(0);
    Widget.grab();
    QTest::mouseRelease(Widget.viewport(), Qt::LeftButton, Qt::NoModifier, to);
    EXPECT_FALSE(Widget.isDragging());
    EXPECT_EQ(Shop.Root().GetRowCount(), 1);
}

TEST_F(QueryPanelWidgetTest, SubQueryWindowChangesTheConditionOnlyWithOk) {
    Shop.Operator("InList")->ValueKind = vkSubQuery;
    TSimpleCond* const condition = Shop.Where("customers.custno", "InList", "");
    Show();
    bool isConfirmed = false;
    const auto inWindow = [&] {
        auto* const window = qobject_cast<SubQueryDialog*>(QApplication::activeModalWidget());
        ASSERT_TRUE(window);
        EXPECT_EQ(window->size(), QSize(450, 293));
        window->resultField()->openEditor();
        ASSERT_TRUE(window->resultField()->popup());
        QTest::keyClicks(window->resultField()->popup()->focusWidget(), "amount");
        QTest::keyClick(window->resultField()->popup()->focusWidget(), Qt::Key_Return);
        window->findChild<QCheckBox*>()->setChecked(true);
        const auto buttons = window->findChildren<QPushButton*>();
        ASSERT_EQ(buttons.size(), 2);
        for (QPushButton* const button : buttons)
            if ((button->text() == "OK") == isConfirmed)
                button->click();
    };
    QTimer::singleShot(0, &Widget, inWindow);
    Click(1, wrValue);
    EXPECT_TRUE(condition->GetSubQuery().Empty());
    isConfirmed = true;
    QTimer::singleShot(0, &Widget, inWindow);
    Click(1, wrValue);
    EXPECT_NE(condition->GetSubQuery().GetText().find("amount"), std::string::npos);
    EXPECT_TRUE(condition->GetSubQueryOptions().Contains(soSelectDistinct));
    EXPECT_FALSE(Shop.Panel.GetSQLOptions().Contains(soSelectDistinct));
}

TEST_F(QueryPanelWidgetTest, AssistiveTechnologyReadsAndWorksRows) {
    Shop.Where("customers.custno", "EqualTo", "x");
    Shop.Where("customers.company", "EqualTo", "Acme")->SetEnabled(false);
    Show();
    QAccessibleInterface* const panel = QAccessible::queryAccessibleInterface(&Widget);
    ASSERT_TRUE(panel);
    ASSERT_EQ(panel->childCount(), 2);
    QAccessibleInterface* const header = panel->child(0);
    const int words = static_cast<int>(Widget.line(0).Words.size());
    ASSERT_EQ(header->childCount(), words + 2);
    QAccessibleInterface* const row = header->child(words);
    EXPECT_EQ(row->role(), QAccessible::TreeItem);
    EXPECT_EQ(header->indexOfChild(row), words);
    EXPECT_EQ(row->parent(), header);
    EXPECT_TRUE(row->state().invalid);
    EXPECT_TRUE(row->text(QAccessible::Name).contains("Invalid value"));
    EXPECT_TRUE(header->child(words + 1)->state().disabled);
    EXPECT_FALSE(header->child(words + 1)->state().invalid);
    QAccessibleInterface* const value = row->child(WordOf(1, wrValue));
    EXPECT_EQ(value->role(), QAccessible::ButtonMenu);
    EXPECT_TRUE(value->text(QAccessible::Name).contains("x"));
    EXPECT_TRUE(value->state().invalid);
    EXPECT_EQ(value->parent(), row);
    const QPoint centre = value->rect().center();
    EXPECT_EQ(panel->childAt(centre.x(), centre.y()), header);
    EXPECT_EQ(header->childAt(centre.x(), centre.y()), row);
    EXPECT_EQ(row->childAt(centre.x(), centre.y()), value);
    value->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    ASSERT_TRUE(Widget.popup());
    Widget.popup()->cancel();
    EXPECT_EQ(panel->focusChild(), value);
    EXPECT_TRUE(value->state().focused);
    Key(Qt::Key_Left);
    EXPECT_EQ(panel->focusChild(), row->child(WordOf(1, wrOperator)));
    panel->child(1)->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(Shop.Root().GetRowCount(), 3);
    Shop.Panel.ClearRows();
    QCoreApplication::processEvents();
    EXPECT_FALSE(row->isValid() && row->childCount() > 1)
        << "the line that adds a condition stands there now";
}

TEST_F(QueryPanelWidgetTest, RowsAreATreeThatTellsPlaces) {
    TFilterBracket& any = *Shop.Panel.AddBracket(Shop.Root());
    any.SetLinkType(fltAny);
    Shop.Where("customers.company", "EqualTo", "A", "", &any);
    Shop.Where("customers.company", "EqualTo", "hidden", "", &any)->SetHidden(true);
    Shop.Where("customers.company", "EqualTo", "B", "", &any);
    Shop.Where("customers.company", "EqualTo", "C");
    Show();
    QAccessibleInterface* const panel = QAccessible::queryAccessibleInterface(&Widget);
    EXPECT_EQ(panel->role(), QAccessible::Tree);
    // The tree as "(name|place ...)", each row below its bracket, and each knows the way back.
    const std::function<QString(QAccessibleInterface*)> tree = [&](QAccessibleInterface* item) {
        QString text;
        for (int i = 0; i < item->childCount(); ++i) {
            QAccessibleInterface* const child = item->child(i);
            EXPECT_EQ(child->parent(), item);
            EXPECT_EQ(item->indexOfChild(child), i);
            if (child->role() == QAccessible::TreeItem)
                text += QStringLiteral("(%1|%2%3)")
                            .arg(child->text(QAccessible::Name).section(u' ', -1),
                                 child->text(QAccessible::Description), tree(child));
        }
        return text;
    };
    const QString root = "Choose records where all of the following apply";
    const auto expected = [&](const QString& brackets) { return "(apply|" + brackets + ")(condition|)"; };
    EXPECT_EQ(tree(panel), expected("(apply|row 1 of 2, in: " + root +
                                    "(A|row 1 of 2, in: any of the following apply)"
                                    "(B|row 2 of 2, in: any of the following apply))"
                                    "(C|row 2 of 2, in: " +
                                    root + ")"));
    EXPECT_TRUE(panel->child(0)->state().expanded);

    // The row that moves stays the one that is read, and tells its new place.
    Widget.makeCurrent(4);
    Key(Qt::Key_Up, Qt::ControlModifier);
    QCoreApplication::processEvents();
    const QAccessibleInterface* const focus = panel->focusChild();
    ASSERT_TRUE(focus);
    const QAccessibleInterface* const moved =
        focus->role() == QAccessible::TreeItem ? focus : focus->parent();
    EXPECT_TRUE(moved->text(QAccessible::Name).endsWith("C"));
    EXPECT_EQ(moved->text(QAccessible::Description), "row 1 of 2, in: " + root);

    // A panel without a header has its rows at the top.
    Shop.Panel.GetAppearance().SetStyle(psAndOr);
    QCoreApplication::processEvents();
    EXPECT_EQ(panel->childCount(), 3);
    EXPECT_EQ(panel->indexOfChild(panel->child(1)), 1);
    EXPECT_EQ(panel->child(1)->parent(), panel);
}

TEST_F(QueryPanelWidgetTest, WhatItShowsMayGoAtAnyTime) {
    auto model = std::make_unique<TVDBStructure>();
    model->SetDatabaseInfo(&Shop.Info);
    model->RetriveDataModelInfo();
    auto panel = std::make_unique<TVQueryPanel>();
    panel->SetDbStruct(model.get());
    panel->Activate();
    panel->AddCondition(*panel->GetRootBracket());
    Widget.setPanel(panel.get());
    Show();
    Click(1, wrField);
    ASSERT_TRUE(Widget.popup());
    const QPointer<DropDownPopup> popup = Widget.popup();
    model.reset();
    QCoreApplication::processEvents();
    EXPECT_TRUE(!popup || !popup->isVisible());
    EXPECT_EQ(Widget.lineCount(), 0);
    Widget.grab();
    panel.reset();
    EXPECT_EQ(Widget.panel(), nullptr);
    Key(Qt::Key_Insert);
    Widget.grab();
    // And the other way round: a panel does without its widget.
    {
        QueryPanelWidget other;
        other.setPanel(&Shop.Panel);
    }
    Shop.Panel.AddCondition(Shop.Root());
    EXPECT_EQ(Shop.Root().GetRowCount(), 1);
}

TEST_F(QueryPanelWidgetTest, WhatIsRaisedIsToldAndKeepsTheKeyboardThere) {
    Shop.Where("customers.company", "Between", "a", "b");
    Shop.Panel.OnSetValue = [](TVQueryPanel&, TFilterCond&, int) { throw Exception("Not <today>"); };
    QString reason;
    QObject::connect(&Widget, &QueryPanelWidget::refused, [&](const QString& text) { reason = text; });
    Show();
    Click(1, wrValue, 1);
    TypeInPopup("c");
    KeyInPopup(Qt::Key_Tab);
    EXPECT_EQ(reason, "Not <today>");
    EXPECT_FALSE(Widget.popup());
    EXPECT_EQ(Widget.currentPlace().Word, WordOf(1, wrValue, 1));
    EXPECT_EQ(QAccessible::queryAccessibleInterface(&Widget)->text(QAccessible::Description), reason);
    Key(Qt::Key_Right);
    EXPECT_TRUE(Widget.refusal().isEmpty());
}

TEST_F(QueryPanelWidgetTest, PanelIsShownInOneWidgetAtATime) {
    QueryPanelWidget other;
    other.setPanel(&Shop.Panel);
    EXPECT_EQ(Widget.panel(), nullptr);
    Widget.setPanel(&Shop.Panel);
    EXPECT_EQ(other.panel(), nullptr);
    Shop.Panel.AddCondition(Shop.Root());
    EXPECT_EQ(Widget.lineCount(), 3);
}

TEST_F(QueryPanelWidgetTest, TenThousandRowsScroll) {
    for (int i = 0; i < 10000; ++i)
        Shop.Where("customers.company", "EqualTo", std::to_string(i));
    Show();
    EXPECT_GT(Widget.verticalScrollBar()->maximum(), 100000);
    Key(Qt::Key_End);
    QCoreApplication::processEvents();
    EXPECT_TRUE(Widget.viewport()->rect().contains(Widget.lineRect(10000)));
    EXPECT_EQ(Widget.currentPlace().Line, 10000);
    Key(Qt::Key_PageUp);
    QCoreApplication::processEvents();
    const int line = Widget.currentPlace().Line;
    EXPECT_LT(line, 10000);
    EXPECT_GT(line, 9900);
    QTest::mouseClick(Widget.viewport(), Qt::LeftButton, Qt::NoModifier,
                      Widget.wordRect(line, WordOf(line, wrValue)).center());
    EXPECT_TRUE(Widget.popup());
    Widget.popup()->cancel();
    Key(Qt::Key_Home);
    QCoreApplication::processEvents();
    EXPECT_EQ(Widget.verticalScrollBar()->value(), 0);
    QWheelEvent wheel({50, 50}, Widget.mapToGlobal(QPointF(50, 50)), {0, -35}, {0, -120}, Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(Widget.viewport(), &wheel);
    EXPECT_EQ(Widget.verticalScrollBar()->value(), 35);
    QAccessibleInterface* const header = QAccessible::queryAccessibleInterface(&Widget)->child(0);
    const int words = static_cast<int>(Widget.line(0).Words.size());
    EXPECT_EQ(header->child(words + 8999)->text(QAccessible::Name), Row(9000));
}

} // namespace lumora::tests
