// The query panel on the screen: what the mouse, the keyboard and assistive technology do with it.
#include "tests/fixtures.h"
#include "widgets/dropdownlabel.h"
#include "widgets/querypanelwidget.h"
#include "widgets/subquerydialog.h"

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

} // namespace lumora::tests
