#include "lumora/platform/errors.h"
#include "lumora/widgets/dropdownlabel.h"
#include "lumora/widgets/inputmask.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QApplication>
#include <QCalendarWidget>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPointer>
#include <QSignalSpy>
#include <QTest>
#include <QTimeEdit>
#include <QTreeView>

#include <string>

using namespace lumora;

namespace {

TDropDownContent TextOf(TDropDownKind kind, const char* text) {
    TDropDownContent content;
    content.Kind = kind;
    content.Text = text;
    return content;
}

TDropDownContent Items(TDropDownKind kind, int count) {
    TDropDownContent content;
    content.Kind = kind;
    for (int i = 0; i < count; ++i)
        content.Items.push_back({"item " + std::to_string(i), {}, {}, -1, false});
    return content;
}

// Opens popups over a window and writes down what they answer.
class DropDownPopups : public testing::Test {
protected:
    DropDownPopups() {
        window.resize(300, 100);
        window.show();
        window.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    }
    ~DropDownPopups() override { delete popup; }

    void Open(TDropDownContent content) {
        if (popup)
            popup->cancel();
        answer.clear();
        popup = DropDownPopup::open(&window, QRect(window.mapToGlobal(QPoint(10, 10)), QSize(80, 20)),
                                    std::move(content));
        ASSERT_NE(popup, nullptr);
        QObject::connect(popup, &DropDownPopup::acceptedText, &window,
                         [this](const QString& text) { answer += "text " + text; });
        QObject::connect(popup, &DropDownPopup::acceptedItem, &window,
                         [this](int index) { answer += "item " + QString::number(index); });
        QObject::connect(popup, &DropDownPopup::acceptedChecks, &window, [this](const QList<int>& indexes) {
            answer += "checks";
            for (const int index : indexes)
                answer += " " + QString::number(index);
        });
        QObject::connect(popup, &DropDownPopup::cancelled, &window, [this] { answer += "cancelled"; });
        QObject::connect(popup, &DropDownPopup::tabbed, &window,
                         [this](bool forward) { answer += forward ? " tab" : " backtab"; });
        QObject::connect(popup, &DropDownPopup::finished, &window, [this] { answer += "."; });
    }
    void Key(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(QApplication::focusWidget(), key, modifiers);
    }
    void Type(const QString& text) { QTest::keyClicks(QApplication::focusWidget(), text); }
    void ClickElsewhere() { QTest::mouseClick(popup, Qt::LeftButton, {}, QPoint(-20, -40)); }
    template <typename T>
    T* Part() {
        return popup->findChild<T*>();
    }
    QString Message() {
        for (const QLabel* const label : popup->findChildren<QLabel*>(Qt::FindDirectChildrenOnly))
            if (label->isVisible())
                return label->text();
        return {};
    }

    QWidget window;
    QPointer<DropDownPopup> popup;
    QString answer;
};

} // namespace

TEST_F(DropDownPopups, LinesAreAcceptedCancelledAndPassedOn) {
    Open(TextOf(ddText, "old"));
    Type("new");
    Key(Qt::Key_Return);
    EXPECT_EQ(answer, "text new.");
    Open(TextOf(ddText, "old"));
    Type("new");
    Key(Qt::Key_Escape);
    EXPECT_EQ(answer, "cancelled.");
    Open(TextOf(ddText, "old"));
    Type("new");
    Key(Qt::Key_Tab);
    EXPECT_EQ(answer, "text new tab.");
    Open(TextOf(ddText, "old"));
    Key(Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(answer, "text old backtab.");
    EXPECT_TRUE(QTest::qWaitFor([&] { return popup.isNull(); })); // it freed itself
    EXPECT_EQ(DropDownPopup::open(&window, {}, TextOf(ddDialog, "")), nullptr);
}

TEST_F(DropDownPopups, AClickElsewhereKeepsWhatWillDo) {
    Open(TextOf(ddNumber, "1"));
    ClickElsewhere();
    EXPECT_EQ(answer, "cancelled.");
    Open(TextOf(ddNumber, "1"));
    Type("2");
    ClickElsewhere();
    EXPECT_EQ(answer, "text 2.");
    Open(TextOf(ddNumber, "1"));
    Type("x");
    ClickElsewhere();
    EXPECT_EQ(answer, "cancelled.");
    Open(Items(ddList, 3));
    Key(Qt::Key_Down);
    ClickElsewhere();
    EXPECT_EQ(answer, "cancelled.");
    Open(Items(ddCheckList, 3));
    Key(Qt::Key_Down);
    Key(Qt::Key_Space);
    ClickElsewhere();
    EXPECT_EQ(answer, "checks 1.");
}

TEST_F(DropDownPopups, RefuseInPlaceWhatIsNoNumber) {
    Open(TextOf(ddNumber, ""));
    Type("1x");
    Key(Qt::Key_Tab);
    EXPECT_EQ(answer, "");
    EXPECT_EQ(Message(), "\"1x\" is not a number");
    Key(Qt::Key_Backspace);
    EXPECT_EQ(Message(), "");
    Key(Qt::Key_Enter);
    EXPECT_EQ(answer, "text 1.");
}

TEST_F(DropDownPopups, MasksHoldTheTextInShape) {
    TDropDownContent content = TextOf(ddMask, "");
    content.EditMask = "!(999) 000\\-00;0;_";
    Open(content);
    Type("1");
    Key(Qt::Key_Return);
    EXPECT_EQ(answer, "");
    EXPECT_TRUE(Message().startsWith("Something is missing")) << Message().toStdString();
    Key(Qt::Key_Home);
    Type("12345678");
    Key(Qt::Key_Return);
    EXPECT_EQ(answer, "text 12345678.");
    content.EditMask = "00/00;1; ";
    Open(content);
    Type("1234");
    Key(Qt::Key_Return);
    EXPECT_EQ(answer, "text 12-34.");
    Open(content);
    Key(Qt::Key_Return); // nothing is a value, too
    EXPECT_EQ(answer, "text .");
}

TEST(InputMask, IsTranslated) {
    EXPECT_EQ(toInputMask("!>L<l<>Aa;1;*").mask, ">A<a!Nn;*");
    EXPECT_EQ(toInputMask("Cc09#_N\\0").mask, "Xx90#\\ \\N\\0;_");
    EXPECT_EQ(toInputMask("90:00\\;0;0").mask, "09\\:99\\;9;_");
    EXPECT_FALSE(toInputMask("90:00\\;0;0").keepsLiterals);
    EXPECT_EQ(toInputMask("--").mask, ""); // nothing to fill
    EXPECT_EQ(toInputMask("\\").mask, "");
    EXPECT_EQ(toInputMask("").mask, "");
}

TEST_F(DropDownPopups, ListsAreSearchedAndMovedThrough) {
    Open(Items(ddList, 30));
    Type("m 2");
    EXPECT_EQ(Part<QListView>()->model()->rowCount(), 11);
    Key(Qt::Key_Down);
    Key(Qt::Key_PageDown);
    Key(Qt::Key_Up);
    Key(Qt::Key_Return);
    EXPECT_EQ(answer, "item 28.");
    Open(Items(ddList, 30));
    Key(Qt::Key_End);
    Key(Qt::Key_Home);
    Key(Qt::Key_Return);
    EXPECT_EQ(answer, "item 0.");
    Open(Items(ddList, 30));
    Type("nothing like it");
    Key(Qt::Key_Return);
    EXPECT_EQ(answer, "");
}

TEST_F(DropDownPopups, ShortListsTakeTheKeyboardAndTheMouse) {
    Open(Items(ddList, 3));
    EXPECT_EQ(Part<QLineEdit>(), nullptr);
    Key(Qt::Key_Down);
    Key(Qt::Key_Down);
    Key(Qt::Key_Space);
    EXPECT_EQ(answer, "item 1.");
    Open(Items(ddList, 3));
    auto* const view = Part<QListView>();
    const QPoint last = view->visualRect(view->model()->index(2, 0)).center();
    QTest::mouseMove(view->viewport(), last);
    EXPECT_EQ(view->currentIndex().row(), 2);
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, last);
    EXPECT_EQ(answer, "item 2.");
}

TEST_F(DropDownPopups, OpenListsTakeTypedTexts) {
    TDropDownContent content = Items(ddList, 3);
    content.IsOpenList = true;
    content.Text = "mine";
    Open(content);
    EXPECT_EQ(Part<QLineEdit>()->text(), "mine");
    Type("my own");
    Key(Qt::Key_Return);
    EXPECT_EQ(answer, "text my own.");
    Open(content);
    Type("item");
    Key(Qt::Key_Down);
    Key(Qt::Key_Return);
    EXPECT_EQ(answer, "item 0.");
}

TEST_F(DropDownPopups, TreesShowTheirGroups) {
    TDropDownContent content = Items(ddTree, 12);
    for (std::size_t i = 0; i < content.Items.size(); ++i)
        content.Items[i].Group = i % 2 == 0 ? "even" : "odd";
    content.CurrentItem = 3;
    Open(content);
    EXPECT_EQ(Part<QTreeView>()->model()->rowCount(), 2);
    EXPECT_EQ(Part<QTreeView>()->currentIndex().data(), "item 3");
    Key(Qt::Key_Up);
    Key(Qt::Key_Up); // the group, which is no value
    Key(Qt::Key_Return);
    EXPECT_EQ(answer, "");
    Type("11");
    Key(Qt::Key_Return);
    EXPECT_EQ(answer, "item 11.");
}

TEST_F(DropDownPopups, ChecksAreToggledByKeyAndClick) {
    Open(Items(ddCheckList, 12));
    auto* const view = Part<QListView>();
    Key(Qt::Key_Down);
    Key(Qt::Key_Space);
    const QRect third = view->visualRect(view->model()->index(2, 0));
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, third.center());
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, third.center());
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, third.center());
    Type("11"); // goes into the search box
    EXPECT_EQ(view->model()->rowCount(), 1);
    Key(Qt::Key_Down);
    Key(Qt::Key_Space);
    Key(Qt::Key_Return);
    EXPECT_EQ(answer, "checks 1 2 11.");
    Open(Items(ddCheckList, 12));
    Type("7"); // a blank behind a search goes on with it, or checks what it found
    Key(Qt::Key_Space);
    Type("item");
    Key(Qt::Key_Space);
    Type("9");
    Key(Qt::Key_Space);
    Key(Qt::Key_Return);
    EXPECT_EQ(answer, "checks 7 9.");
    TDropDownContent genres = Items(ddCheckList, 3);
    genres.Items[1].Caption = genres.Items[0].Caption + " and more";
    Open(genres);
    Type(QString::fromStdString(genres.Items[0].Caption)); // the shorter one, down to it, checked
    Key(Qt::Key_Down);
    Key(Qt::Key_Space);
    Type("Item 2");
    Key(Qt::Key_Space);
    Key(Qt::Key_Return);
    EXPECT_EQ(answer, "checks 0 2.");
    Open(Items(ddCheckList, 3));
    Key(Qt::Key_A, Qt::ControlModifier);
    Key(Qt::Key_Return);
    EXPECT_EQ(answer, "checks 0 1 2.");
}

TEST_F(DropDownPopups, MenusStandInColumns) {
    TDropDownContent content = Items(ddMenu, 7);
    content.MaxMenuItems = 3;
    Open(content);
    auto* const view = Part<QListView>();
    const auto rectOf = [&](int row) { return view->visualRect(view->model()->index(row, 0)); };
    EXPECT_EQ(rectOf(2).left(), rectOf(0).left());
    EXPECT_EQ(rectOf(3).top(), rectOf(0).top());
    EXPECT_GT(rectOf(6).left(), rectOf(3).left());
    EXPECT_TRUE(view->rect().contains(rectOf(6)));
    Key(Qt::Key_Down);
    Key(Qt::Key_Right);
    Key(Qt::Key_Return);
    EXPECT_EQ(answer, "item 3.");
}

TEST_F(DropDownPopups, DatesAreTypedOrPointedAt) {
    Open(TextOf(ddDate, "2024-02-28"));
    auto* const calendar = Part<QCalendarWidget>();
    EXPECT_EQ(calendar->selectedDate(), QDate(2024, 2, 28));
    Key(Qt::Key_Down); // into the calendar
    Key(Qt::Key_Right);
    Key(Qt::Key_Return);
    EXPECT_EQ(answer, "text 2024-02-29.");
    Open(TextOf(ddDate, ""));
    Type("2023-02-29");
    Key(Qt::Key_Return);
    EXPECT_EQ(Message(), "\"2023-02-29\" is not a date");
    Key(Qt::Key_Backspace);
    Type("8");
    EXPECT_EQ(Part<QCalendarWidget>()->selectedDate(), QDate(2023, 2, 28));
    Key(Qt::Key_Return);
    EXPECT_EQ(answer, "text 2023-02-28.");
}

TEST_F(DropDownPopups, TimesAreSetByTheClock) {
    Open(TextOf(ddTime, "14:30"));
    Key(Qt::Key_Return);
    EXPECT_EQ(answer, "text 14:30.");
    Open(TextOf(ddTime, ""));
    Key(Qt::Key_Up);
    Key(Qt::Key_Return);
    EXPECT_EQ(answer, "text 01:00.");
    Open(TextOf(ddDateTime, "2024-02-28 14:30:15"));
    Part<QTimeEdit>()->setTime(QTime(8, 5, 1));
    Key(Qt::Key_Return);
    EXPECT_EQ(answer, "text 2024-02-28 08:05:01.");
}

TEST_F(DropDownPopups, SayThatItemsAreBeingReadAndWhyTheyCannotBe) {
    QString seen;
    TDropDownContent content = TextOf(ddList, "");
    content.LoadItems = [&] {
        seen = Message();
        return Items(ddList, 2).Items;
    };
    Open(content);
    EXPECT_EQ(seen, "");
    ASSERT_TRUE(QTest::qWaitFor([&] { return Part<QListView>() != nullptr; }));
    EXPECT_EQ(seen, "Reading the values...");
    EXPECT_EQ(Message(), "");
    Key(Qt::Key_Down);
    Key(Qt::Key_Return);
    EXPECT_EQ(answer, "item 0.");
    EXPECT_EQ(popup->content().Items.size(), 2U);

    content.LoadItems = []() -> std::vector<TDropDownItem> { throw EFileError("the server is gone"); };
    Open(content);
    ASSERT_TRUE(QTest::qWaitFor([&] { return Message() == "the server is gone"; }));
    Key(Qt::Key_Escape);
    EXPECT_EQ(answer, "cancelled.");
}

TEST_F(DropDownPopups, StayOnTheScreen) {
    const QRect screen = window.screen()->availableGeometry();
    TDropDownContent content = Items(ddList, 12);
    content.Items[3].Caption = std::string(3000, 'w');
    const QRect corner(screen.bottomRight() - QPoint(30, 20), QSize(30, 20));
    const QPointer<DropDownPopup> atCorner = DropDownPopup::open(&window, corner, content);
    EXPECT_TRUE(screen.contains(atCorner->geometry()));
    EXPECT_LE(atCorner->geometry().bottom(), corner.top());
    atCorner->cancel();
}

TEST_F(DropDownPopups, LabelsOpenByKeyAndClickAndShowTheAnswer) {
    DropDownLabel label("Country", Items(ddList, 3), &window);
    label.resize(label.sizeHint());
    label.show();
    QSignalSpy items(&label, &DropDownLabel::acceptedItem);
    QSignalSpy cancelled(&label, &DropDownLabel::cancelled);
    label.setFocus();
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Space, Qt::Key_Down, Qt::Key_F4}) {
        QTest::keyClick(&label, key);
        ASSERT_TRUE(label.isOpen());
        Key(Qt::Key_Escape);
        EXPECT_FALSE(label.isOpen());
    }
    EXPECT_EQ(cancelled.count(), 4);
    EXPECT_EQ(label.text(), "Country");
    QTest::mouseClick(&label, Qt::LeftButton);
    ASSERT_TRUE(label.isOpen());
    Key(Qt::Key_Down);
    Key(Qt::Key_Return);
    EXPECT_EQ(label.text(), "item 0");
    ASSERT_EQ(items.count(), 1);
    EXPECT_EQ(items[0][0], 0);
    EXPECT_EQ(label.content().CurrentItem, 0);
    EXPECT_TRUE(label.hasFocus());

    label.setContent(TextOf(ddDialog, ""));
    QSignalSpy dialogs(&label, &DropDownLabel::dialogRequested);
    QTest::mouseClick(&label, Qt::LeftButton);
    EXPECT_EQ(dialogs.count(), 1);
    label.setEnabled(false);
    QTest::mouseClick(&label, Qt::LeftButton);
    EXPECT_EQ(dialogs.count(), 1);
}

TEST_F(DropDownPopups, TabGoesFromLabelToLabel) {
    DropDownLabel first("first", TextOf(ddText, "a"), &window);
    DropDownLabel second("second", TextOf(ddText, "b"), &window);
    first.show();
    second.show();
    first.setFocus();
    first.openEditor();
    Type("changed");
    Key(Qt::Key_Tab);
    EXPECT_EQ(first.text(), "changed");
    EXPECT_TRUE(second.hasFocus());
}

TEST_F(DropDownPopups, LabelsSayWhatTheyAre) {
    DropDownLabel label(&window);
    label.setPrompt("enter a value");
    EXPECT_EQ(label.shownText(), "enter a value");
    label.setContent(TextOf(ddText, ""));
    QAccessibleInterface* const accessible = QAccessible::queryAccessibleInterface(&label);
    ASSERT_NE(accessible, nullptr);
    EXPECT_EQ(accessible->role(), QAccessible::ButtonMenu);
    EXPECT_EQ(accessible->text(QAccessible::Name), "enter a value");
    label.setText("12");
    EXPECT_EQ(accessible->text(QAccessible::Value), "12");
    label.show();
    accessible->actionInterface()->doAction(QAccessibleActionInterface::showMenuAction());
    EXPECT_TRUE(accessible->state().expanded);
    Key(Qt::Key_Escape);
}

TEST_F(DropDownPopups, MayGoWithTheirAnchor) {
    auto* const label = new DropDownLabel("x", TextOf(ddText, "x"), &window);
    label->show();
    label->openEditor();
    QObject::connect(label, &DropDownLabel::textChanged, label, [label] { delete label; });
    Type("y");
    const QPointer<DropDownLabel> left = label;
    Key(Qt::Key_Return);
    EXPECT_TRUE(left.isNull());
}
