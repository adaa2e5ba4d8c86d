// Choosing and arranging the columns of a query.

#include "lumora/panel/Vquerdlg.h"
#include "lumora/widgets/fieldchooser.h"
#include "lumora/widgets/resultcolumnswidget.h"
#include "tests/fixtures.h"

#include <gtest/gtest.h>

#include <algorithm>

#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTableView>
#include <QTest>
#include <QTreeView>

using namespace lumora;
using namespace lumora::tests;

namespace {

class ResultColumns : public testing::Test {
protected:
    using Model = ResultColumnsModel;

    ResultColumns() { widget.setPanel(&shop.Panel); }
    ~ResultColumns() override { widget.setPanel(nullptr); }

    Model& columns() { return widget.columns(); }
    TDSField& field(const char* sql) { return *shop.Field(sql); }
    // The columns as "caption=formula", with the place in the sorting.
    std::string state() {
        std::string text;
        const TRFieldList& fields = shop.Panel.GetQResult().GetResultFields();
        for (int i = 0; i < fields.Count(); ++i) {
            const TResultField& column = *fields.GetRField(i);
            text += column.GetCaption() + "=" + column.GetFormula();
            if (const int rank = columns().sortRank(i))
                text += (column.GetSorting() == stAscending ? " +" : " -") + std::to_string(rank);
            text += "; ";
        }
        return text;
    }
    QVariant cell(int row, Model::Column column) { return columns().index(row, column).data(); }

    TShop shop;
    ResultColumnsWidget widget;
};

TEST_F(ResultColumns, FollowThePanelAndTellIt) {
    int told = 0;
    shop.Panel.OnChange = [&](TVQueryPanel&) { ++told; };
    columns().addField(field("customers.company"));
    EXPECT_EQ(told, 1);
    columns().addField(field("customers.company"));
    ASSERT_EQ(columns().rowCount(), 2);
    EXPECT_NE(cell(0, Model::Caption), cell(1, Model::Caption)) << "captions tell columns apart";
    shop.Panel.BeginUpdate();
    shop.Panel.GetQResult().GetResultFields().Delete(0);
    shop.Panel.EndUpdate();
    EXPECT_EQ(columns().rowCount(), 1);
    // Rows that the panel dropped without a word are not asked for.
    shop.Panel.GetQResult().GetResultFields().Clear();
    EXPECT_EQ(columns().flags(columns().index(0, Model::Shown)) & Qt::ItemIsEditable, 0);
    EXPECT_FALSE(cell(0, Model::Caption).isValid());
    widget.refresh();
    EXPECT_EQ(columns().rowCount(), 0);
}

TEST_F(ResultColumns, OfferWhatTheFieldsTypeHasUseFor) {
    columns().addField(field("customers.company"));
    columns().addField(field("orders.amount"));
    columns().addField(field("customers.active"));
    EXPECT_EQ(columns().aggregates(0), (std::vector{Model::Value, Model::Count, Model::CountDifferent,
                                                    Model::Least, Model::Greatest}));
    EXPECT_EQ(columns().aggregates(1),
              (std::vector{Model::Value, Model::Count, Model::CountDifferent, Model::Sum, Model::Average,
                           Model::Least, Model::Greatest}));
    EXPECT_EQ(columns().aggregates(2), (std::vector{Model::Value, Model::Count, Model::CountDifferent}));
    columns().addField(field("orders.custno")); // a number that a link joins by: a sum of it means nothing
    const auto ofKey = columns().aggregates(3);
    EXPECT_EQ(std::count(ofKey.begin(), ofKey.end(), Model::Sum), 0);
    EXPECT_EQ(std::count(ofKey.begin(), ofKey.end(), Model::Greatest), 1);
    columns().removeRows({3});
    columns().setData(columns().index(1, Model::Shown), Model::Sum);
    EXPECT_EQ(shop.Panel.GetQResult().GetResultFields().GetRField(1)->GetSQLExpr(), "sum(orders.amount)");
    EXPECT_EQ(cell(1, Model::Shown).toString(), "sum");
    EXPECT_EQ(cell(1, Model::Caption).toString(), "Sum of amount");
    columns().setData(columns().index(1, Model::Caption), "Turnover");
    columns().setData(columns().index(1, Model::Shown), Model::CountDifferent);
    EXPECT_EQ(cell(1, Model::Caption).toString(), "Turnover") << "what was typed stays";
    // A stored column is named by what it is, and its text stays as it was.
    TResultField& stored =
        *shop.Panel.GetQResult().GetResultFields().Add("count(@1)", {&field("customers.company")}, "company");
    widget.refresh();
    EXPECT_EQ(cell(3, Model::Caption).toString(), "Number of values of company");
    columns().setData(columns().index(3, Model::Caption), "Number of values of company");
    EXPECT_EQ(stored.GetCaption(), "company");
}

TEST_F(ResultColumns, LeaveFormulasOfTheirOwnAlone) {
    shop.Panel.GetQResult().GetResultFields().Add("round(sum(@1), 2)", {&field("orders.amount")}, "Worth");
    widget.refresh();
    EXPECT_EQ(columns().aggregate(0), Model::Custom);
    EXPECT_FALSE(columns().flags(columns().index(0, Model::Shown)) & Qt::ItemIsEditable);
    columns().setAggregate(0, Model::Custom);
    EXPECT_EQ(state(), "Worth=round(sum(@1), 2); ");
    EXPECT_EQ(cell(0, Model::Shown).toString(), "round(sum(amount), 2)");
    shop.Panel.GetQResult().GetResultFields().GetRField(0)->SetHidden(true);
    EXPECT_EQ(cell(0, Model::Shown).toString(), "not shown");
}

TEST_F(ResultColumns, SortingHasAnOrderWithoutGaps) {
    for (const char* const name : {"customers.company", "customers.since", "orders.amount"})
        columns().addField(field(name));
    const auto sort = [this](int row, TSortingType sorting) {
        columns().setData(columns().index(row, Model::Sorting), sorting);
    };
    sort(2, stDescending);
    sort(0, stAscending);
    sort(1, stAscending);
    EXPECT_EQ(columns().sortRank(2), 1);
    EXPECT_EQ(columns().sortRank(1), 3);
    columns().setSortRank(1, 1);
    EXPECT_EQ(columns().sortRank(1), 1);
    EXPECT_EQ(columns().sortRank(0), 3);
    sort(2, stNoSort);
    sort(2, stAscending);
    EXPECT_EQ(columns().sortRank(2), 3) << "sorted anew, it stands behind the others";
    columns().setSortRank(2, 99);
    columns().setSortRank(2, -5);
    EXPECT_EQ(columns().sortRank(2), 1);
    EXPECT_EQ(cell(2, Model::Sorting).toString(), "1. ascending");
}

TEST_F(ResultColumns, TheKeyboardDoesAllThatTheMouseDoes) {
    for (const char* const name : {"customers.company", "customers.since", "orders.amount"})
        columns().addField(field(name));
    widget.show();
    QTableView& view = widget.view();
    view.selectRow(0);
    QTest::keyClick(&view, Qt::Key_Down, Qt::AltModifier);
    QTest::keyClick(&view, Qt::Key_Down, Qt::AltModifier);
    QTest::keyClick(&view, Qt::Key_Down, Qt::AltModifier);
    EXPECT_EQ(columns().index(2, Model::Caption).data().toString().toStdString(),
              field("customers.company").GetDisplayName());
    EXPECT_EQ(view.currentIndex().row(), 2) << "the moved column stays current";
    QTest::keyClick(&view, Qt::Key_Delete);
    EXPECT_EQ(columns().rowCount(), 2);
    QTest::keyClick(&view, Qt::Key_Delete);
    QTest::keyClick(&view, Qt::Key_Delete);
    QTest::keyClick(&view, Qt::Key_Delete);
    EXPECT_EQ(columns().rowCount(), 0);
    QTest::keyClick(widget.findChild<QPushButton*>(), Qt::Key_Insert); // the table is not there
    auto& chooser = *widget.findChild<FieldChooser*>();
    ASSERT_TRUE(chooser.isVisible());
    QTest::keyClicks(&chooser.searchLine(), "SINCE");
    QTest::keyClick(&chooser.searchLine(), Qt::Key_Return);
    EXPECT_EQ(columns().rowCount(), 1);
    EXPECT_TRUE(chooser.isVisible()) << "for the next one";
    QTest::keyClicks(&chooser.searchLine(), "no such field");
    QTest::keyClick(&chooser.searchLine(), Qt::Key_Return);
    EXPECT_EQ(columns().rowCount(), 1);
    chooser.close();
    EXPECT_EQ(widget.focusWidget(), &view);
}

TEST_F(ResultColumns, NamesKeepRoomAndAreFoundByTyping) {
    for (const char* const name : {"customers.company", "customers.since", "orders.amount"})
        columns().addField(field(name));
    shop.Panel.GetQResult().GetResultFields().Add(
        "case when sum(@1) > 1000 then round(sum(@1) / 1000, 2) else round(sum(@1), 4) end",
        {&field("orders.amount")}, "Worth");
    widget.refresh();
    widget.show();
    QTableView& view = widget.view();
    for (const int width : {180, 320, 700}) {
        widget.resize(width, 300);
        QCoreApplication::processEvents();
        const int name = view.columnWidth(Model::Caption);
        EXPECT_GE(name,
                  std::min(view.viewport()->width() * 2 / 5, view.fontMetrics().horizontalAdvance("since")))
            << width;
        EXPECT_GE(view.columnWidth(Model::Sorting), view.fontMetrics().horizontalAdvance("not sorted"))
            << width;
        const int all = name + view.columnWidth(Model::Shown) + view.columnWidth(Model::Sorting);
        EXPECT_EQ(all > view.viewport()->width(), width == 180) << "all of them are seen where they can be";
    }
    EXPECT_TRUE(
        columns().index(3, Model::Shown).data(Qt::ToolTipRole).toString().contains("round(sum(amount), 4)"))
        << "whole, though it is cut in the cell";
    view.setCurrentIndex(columns().index(0, Model::Sorting));
    QTest::keyClicks(&view, "am");
    EXPECT_EQ(view.currentIndex().row(), 2);
    EXPECT_EQ(view.findChild<QLineEdit*>(), nullptr) << "no name is edited";
    QTest::keyClick(&view, Qt::Key_F2);
    EXPECT_NE(view.findChild<QLineEdit*>(), nullptr);
}

TEST_F(ResultColumns, SortingAndPlacesStayWithinTheirBounds) {
    for (const char* const name : {"customers.company", "customers.since", "orders.amount"})
        columns().addField(field(name));
    widget.show();
    QTableView& view = widget.view();
    const std::string before = state();
    view.selectRow(0);
    for (const Qt::Key key : {Qt::Key_Plus, Qt::Key_Minus, Qt::Key_Up})
        QTest::keyClick(&view, key, Qt::AltModifier);
    EXPECT_EQ(state(), before) << "the first column, which is not sorted";
    EXPECT_EQ(view.currentIndex().row(), 0);
    for (const int row : {0, 1, 2})
        columns().setData(columns().index(row, Model::Sorting), stAscending, Qt::EditRole);
    view.selectRow(2);
    QTest::keyClick(&view, Qt::Key_Plus, Qt::AltModifier);
    EXPECT_EQ(cell(2, Model::Sorting).toString(), "2. ascending");
    EXPECT_EQ(cell(1, Model::Sorting).toString(), "3. ascending");
    for (int i = 0; i < 4; ++i)
        QTest::keyClick(&view, Qt::Key_Minus, Qt::AltModifier);
    EXPECT_EQ(cell(2, Model::Sorting).toString(), "3. ascending");
    QStringList headings;
    for (int column = 0; column < columns().columnCount(); ++column)
        headings.append(columns().headerData(column, Qt::Horizontal, Qt::DisplayRole).toString());
    EXPECT_EQ(headings.join(u'|'), "Column|Shows|Sorted");
    EXPECT_TRUE(view.isVisible());
    columns().removeRows({0, 1, 2});
    EXPECT_FALSE(view.isVisible()) << "a query without columns says so instead";
}

TEST_F(ResultColumns, AnEmptyQueryOffersTheFieldsOfItsFirstCondition) {
    widget.show();
    QPushButton* suggest = nullptr;
    for (QPushButton* const button : widget.findChildren<QPushButton*>())
        if (button->text().contains("main fields") || button->text().isEmpty())
            suggest = button;
    ASSERT_NE(suggest, nullptr);
    EXPECT_FALSE(suggest->isVisible());
    shop.Where("orders.amount", "Equal", "1");
    EXPECT_TRUE(suggest->isVisible());
    EXPECT_EQ(suggest->text(), "Show the main fields of orders");
    QTest::mouseClick(suggest, Qt::LeftButton);
    EXPECT_GT(columns().rowCount(), 0);
    for (int row = 0; row < columns().rowCount(); ++row)
        EXPECT_EQ(shop.Panel.GetQResult().GetResultFields().GetRField(row)->GetSQLExpr().find("orders."), 0U);
    EXPECT_FALSE(suggest->isVisible());
}

TEST_F(ResultColumns, OnlyFieldsThatMayBeColumnsAreOffered) {
    field("orders.amount").UIR = false;
    field("customers.active").UIR = false;
    shop.Model.GetFieldGroups().AddGroup("Hidden", &field("customers.active"));
    shop.Where("orders.amount", "EqualTo", "1"); // a condition may have it
    widget.show();
    QStringList offered;
    widget.chooseFields();
    const QAbstractItemModel& list = *widget.findChild<FieldChooser*>()->list().model();
    for (int i = 0; i < list.rowCount(); ++i)
        offered.append(list.index(i, 0).data().toString());
    widget.findChild<FieldChooser*>()->close();
    EXPECT_TRUE(offered.contains("company"));
    EXPECT_FALSE(offered.contains("amount"));
    EXPECT_FALSE(offered.contains("Hidden")) << "a group without fields";
    widget.addSuggested();
    for (int row = 0; row < columns().rowCount(); ++row)
        EXPECT_NE(cell(row, Model::Caption).toString(), "amount");

    widget.setPanel(nullptr);
    shop.Panel.ClearAll();
    field("orders.custno").UIR = field("orders.placed").UIR = false;
    shop.Where("orders.amount", "EqualTo", "1");
    widget.setPanel(&shop.Panel);
    widget.addSuggested();
    EXPECT_EQ(columns().rowCount(), 0) << "the table has nothing to show";

    TdlgSubQuery dialog;
    dialog.SetParentQPanel(shop.Panel);
    dialog.LoadQuery({});
    dialog.AcceptResultField(
        {.Caption = {}, .Value = std::to_string(field("lines.qty").GetID()), .Group = {}});
    const TDropDownContent content = dialog.ResultFieldContent();
    for (const TDropDownItem& item : content.Items)
        EXPECT_NE(item.Caption, "amount");
    EXPECT_EQ(content.Items.at(static_cast<std::size_t>(content.CurrentItem)).Caption, "qty");
}

} // namespace
