#include "lumora/widgets/linkcolor.h"
#include "lumora/widgets/roundbuttonwidget.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QApplication>
#include <QHBoxLayout>
#include <QImage>
#include <QSignalSpy>
#include <QTest>

#include <memory>

using namespace lumora;

namespace {

class RoundButtonWidgets : public testing::Test {
protected:
    RoundButtonWidgets() {
        auto* const layout = new QHBoxLayout(&window);
        button = new RoundButtonWidget("&Add", &window);
        other = new RoundButtonWidget("other", &window);
        layout->addWidget(button);
        layout->addWidget(other);
        window.show();
        window.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    }
    QColor FillOf(QWidget* widget) { return widget->grab().toImage().pixelColor(3, widget->height() / 2); }

    QWidget window;
    RoundButtonWidget* button;
    RoundButtonWidget* other;
};

} // namespace

TEST_F(RoundButtonWidgets, IsClickedWithMouseKeyboardAndAccelerator) {
    QSignalSpy clicked(button, &RoundButtonWidget::clicked);
    QTest::mouseClick(button, Qt::LeftButton);
    EXPECT_EQ(clicked.count(), 1);
    QTest::mouseClick(button, Qt::RightButton);
    QTest::mousePress(button, Qt::LeftButton);
    EXPECT_TRUE(button->isDown());
    QTest::mouseRelease(button, Qt::LeftButton, {}, QPoint(-5, 3));
    EXPECT_EQ(clicked.count(), 1);

    other->setFocus();
    QTest::keyClick(other, Qt::Key_Backtab);
    ASSERT_TRUE(button->hasFocus());
    QTest::keyPress(button, Qt::Key_Space);
    EXPECT_TRUE(button->isDown());
    EXPECT_EQ(clicked.count(), 1);
    QTest::keyRelease(button, Qt::Key_Space);
    EXPECT_EQ(clicked.count(), 2);
    QTest::keyPress(button, Qt::Key_Space);
    other->setFocus(); // a held key that loses the keyboard does not click
    EXPECT_FALSE(button->isDown());
    EXPECT_EQ(clicked.count(), 2);

    QTest::keyClick(other, Qt::Key_A, Qt::AltModifier);
    EXPECT_EQ(clicked.count(), 3);
    button->setEnabled(false);
    QTest::keyClick(other, Qt::Key_A, Qt::AltModifier);
    button->click();
    EXPECT_EQ(clicked.count(), 3);
}

TEST_F(RoundButtonWidgets, LeavesTheKeyboardAloneWhenToldTo) {
    button->setFocusPolicy(Qt::NoFocus);
    other->setFocus();
    QTest::mouseClick(button, Qt::LeftButton);
    EXPECT_TRUE(other->hasFocus());
}

TEST_F(RoundButtonWidgets, SaysWhatItIs) {
    QAccessibleInterface* const accessible = QAccessible::queryAccessibleInterface(button);
    ASSERT_NE(accessible, nullptr);
    EXPECT_EQ(accessible->role(), QAccessible::PushButton);
    EXPECT_EQ(accessible->text(QAccessible::Name), "Add");
    QSignalSpy clicked(button, &RoundButtonWidget::clicked);
    accessible->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(clicked.count(), 1);
    button->setAccessibleName("Add a condition");
    EXPECT_EQ(accessible->text(QAccessible::Name), "Add a condition");
}

TEST_F(RoundButtonWidgets, TakesItsColoursFromThePalette) {
    window.setFocus();
    EXPECT_EQ(FillOf(button), window.palette().color(QPalette::Window));
    QPalette dark = window.palette();
    dark.setColor(QPalette::Window, QColor(40, 40, 40));
    dark.setColor(QPalette::WindowText, Qt::white);
    window.setPalette(dark);
    EXPECT_EQ(FillOf(button), QColor(40, 40, 40));
    QTest::mousePress(button, Qt::LeftButton);
    EXPECT_EQ(FillOf(button), QColor(Qt::black));
    button->setPressedColor(Qt::red);
    EXPECT_EQ(FillOf(button), QColor(Qt::red));
    QTest::mouseRelease(button, Qt::LeftButton);
}

TEST_F(RoundButtonWidgets, ShowsThatItHasTheKeyboard) {
    button->setFocus();
    const QImage focused = button->grab().toImage();
    other->setFocus();
    EXPECT_NE(focused, button->grab().toImage());
}

TEST_F(RoundButtonWidgets, FollowsItsCaption) {
    button->setAutoSize(true);
    button->setText("a longer caption");
    EXPECT_EQ(button->width(), button->fontMetrics().horizontalAdvance("a longer caption") + 10);
    EXPECT_EQ(button->sizeHint(), button->size());
}

TEST(RoundButtonWidget, MayBeDeletedByItsClick) {
    auto button = std::make_unique<RoundButtonWidget>("x");
    button->show();
    QObject::connect(button.get(), &RoundButtonWidget::clicked, [&] { button.reset(); });
    QTest::mouseClick(button.get(), Qt::LeftButton);
    EXPECT_EQ(button, nullptr);
}

TEST(LinkColor, GivesWayOnADarkGround) {
    QPalette light(QColor(240, 240, 240));
    QPalette dark(QColor(40, 40, 40));
    dark.setColor(QPalette::Link, QColor(100, 180, 255));
    EXPECT_EQ(linkColor(clBlue, light), QColor(Qt::blue));
    EXPECT_EQ(linkColor(clBlue, dark), QColor(100, 180, 255));
    dark.setColor(QPalette::Link, Qt::darkBlue);
    EXPECT_GT(linkColor(clBlue, dark).lightness(), 128);
    EXPECT_EQ(linkColor(TColor{0x0000FF}, dark), QColor(Qt::red)); // chosen
    EXPECT_EQ(linkColor(clNone, dark), dark.color(QPalette::WindowText));
}
