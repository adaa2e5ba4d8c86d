// What a host made of Qt sees of a query panel: signals, properties, images and the windows it did not give.
#include "lumora/widgets/dropdownlabel.h"
#include "lumora/widgets/iconlist.h"
#include "lumora/widgets/querypanelwidget.h"
#include "lumora/widgets/subquerydialog.h"
#include "tests/fixtures.h"

#include <gtest/gtest.h>

#include <QAbstractItemView>
#include <QApplication>
#include <QLabel>
#include <QMetaProperty>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

namespace lumora::tests {

namespace {

using W = QueryPanelWidget;

QPixmap square(Qt::GlobalColor color) {
    QPixmap pixmap(16, 16);
    pixmap.fill(color);
    return pixmap;
}
QColor colorOf(const QIcon& icon) {
    return icon.isNull() ? QColor() : icon.pixmap(16, 16).toImage().pixelColor(8, 8);
}

class QueryPanelSignals : public testing::Test {
protected:
    QueryPanelSignals() {
        Widget.setPanel(&Shop.Panel);
        Widget.resize(500, 300);
        Widget.show();
        QCoreApplication::processEvents();
    }

    void Click(int line, TWordRole role) {
        const TPlacedLine placed = Widget.line(line);
        for (std::size_t i = 0; i < placed.Words.size(); ++i)
            if (placed.Words[i].Word.Role == role)
                return Widget.clickWord(line, static_cast<int>(i));
        FAIL() << "no such word";
    }
    // Opens the sub-query of the row in line 1, does something in its window and confirms.
    void InSubQuery(const std::function<void(SubQueryDialog& window)>& act) {
        bool wasOpen = false;
        QTimer::singleShot(0, &Widget, [&] {
            auto* const window = qobject_cast<SubQueryDialog*>(QApplication::activeModalWidget());
            ASSERT_TRUE(window);
            wasOpen = true;
            act(*window);
            window->accept();
        });
        Click(1, wrValue);
        EXPECT_TRUE(wasOpen);
    }

    TShop Shop;
    QueryPanelWidget Widget;
};

} // namespace

TEST_F(QueryPanelSignals, TellOfEveryEventAndLeaveTheHostsHandlersAlone) {
    QStringList told;
    const auto note = [&](const char* name) { return [&told, name] { told.append(name); }; };
    QObject::connect(&Widget, &W::activeChanged, note("active"));
    QObject::connect(&Widget, &W::queryChanged, note("query"));
    QObject::connect(&Widget, &W::parametersChanged, note("params"));
    QObject::connect(&Widget, &W::valueChanged, note("changed"));
    QObject::connect(&Widget, &W::valueSet, note("set"));
    QObject::connect(&Widget, &W::conditionChanged, [&](TFilterCond&, TConditionChange change) {
        told.append("condition " + QString::number(change));
    });
    QObject::connect(&Widget, &W::valueDoubleClicked, note("double"));
    QObject::connect(&Widget, &W::resultFieldsHelpRequested, note("help"));
    const auto takeTold = [&] { return std::exchange(told, {}).join(' '); };
    int handled = 0;
    Shop.Panel.OnChange = [&](TVQueryPanel&) { ++handled; };
    Shop.Panel.OnChangeValue = [&](TVQueryPanel&, TFilterCond&, int) { ++handled; };

    TSimpleCond* const condition = Shop.Where("customers.company", "EqualTo", "Acme");
    takeTold();
    handled = 0;
    condition->SetValue(1, "Bell");
    EXPECT_EQ(takeTold(), "changed condition 3 query");
    EXPECT_EQ(handled, 2) << "the host's handlers go on being called";
    Shop.Panel.OnRFEHelpClick(Shop.Panel);
    Shop.Panel.Deactivate();
    EXPECT_EQ(takeTold(), "help active");
    Shop.Panel.Activate();
    takeTold();
    Click(1, wrValue);
    QTest::keyClicks(Widget.popup()->focusWidget(), "C");
    QTest::keyClick(Widget.popup()->focusWidget(), Qt::Key_Return);
    EXPECT_TRUE(takeTold().endsWith("set"));
    const QRect word = Widget.wordRect(1, Widget.currentPlace().Word);
    QTest::mouseDClick(Widget.viewport(), Qt::LeftButton, Qt::NoModifier, word.center());
    if (Widget.popup())
        Widget.popup()->cancel();
    EXPECT_TRUE(takeTold().contains("double"));
    condition->SetValueIsParam(1, true);
    EXPECT_TRUE(takeTold().contains("params"));

    Widget.setPanel(nullptr);
    condition->SetValueIsParam(1, false);
    EXPECT_EQ(told, QStringList()) << "a panel that is not shown here any more";
    handled = 0;
    condition->SetValue(1, "Dell");
    EXPECT_EQ(handled, 2);
}

TEST_F(QueryPanelSignals, MayChangeTheSqlOfACondition) {
    Shop.Where("customers.company", "EqualTo", "Acme");
    Shop.Select("customers.company");
    Shop.Panel.OnBuildSQL = [](TVQueryPanel&, TFilterCond&, std::string& text) { text += " /* host */"; };
    const auto sql = [&] {
        Shop.Panel.BuildQuery();
        return QString::fromStdString(Shop.Panel.GetQResult().GetSQL().GetText());
    };
    EXPECT_TRUE(sql().contains("/* host */"));
    const auto connection = QObject::connect(&Widget, &W::buildingSql, [](TFilterCond&, QString& text) {
        EXPECT_TRUE(text.endsWith("/* host */")) << text.toStdString();
        text = "1 = 1 /* ä */";
    });
    EXPECT_TRUE(sql().contains("1 = 1 /* ä */"));
    QObject::disconnect(connection);
    EXPECT_TRUE(sql().contains("/* host */"));
}

// Whether the host has an editor of its own decides what a click on a value opens.
TEST_F(QueryPanelSignals, CustomEditorsAreTheHostsWhereASignalIsConnected) {
    TSimpleCond* const condition = Shop.Where("customers.company", "EqualTo", "Acme");
    Shop.Field("customers.company")->SetEditType(etCustom);
    Click(1, wrValue);
    ASSERT_TRUE(Widget.popup());
    Widget.popup()->cancel();
    const auto connection = QObject::connect(&Widget, &W::customEditRequested,
                                             [](TFilterCond& edited) { edited.SetValue(1, "Bell"); });
    Click(1, wrValue);
    EXPECT_FALSE(Widget.popup());
    EXPECT_EQ(condition->GetValue(1), "Bell");
    QObject::disconnect(connection);
    Click(1, wrValue);
    EXPECT_TRUE(Widget.popup());
    Widget.popup()->cancel();
}

TEST_F(QueryPanelSignals, AreNotToldOfARowThatAHandlerFreed) {
    TSimpleCond* const condition = Shop.Where("customers.company", "EqualTo", "Acme");
    int told = 0;
    QObject::connect(&Widget, &W::valueDoubleClicked, [&] { ++told; });
    Shop.Panel.OnValueDblClick = [&](TVQueryPanel& panel, TFilterCond&, int) {
        panel.OnValueDblClick = nullptr; // the handler that runs
        panel.GetRootBracket()->DeleteRow(0);
    };
    Shop.Panel.OnValueDblClick(Shop.Panel, *condition, 1);
    EXPECT_EQ(told, 0);
    EXPECT_EQ(Shop.Root().GetRowCount(), 0);

    auto widget = std::make_unique<QueryPanelWidget>();
    widget->setPanel(&Shop.Panel);
    QObject::connect(widget.get(), &W::activeChanged, [&] { widget.reset(); });
    Shop.Panel.Deactivate();
    EXPECT_FALSE(widget);
    auto panel = std::make_unique<TVQueryPanel>();
    panel->SetDbStruct(&Shop.Model);
    Widget.setPanel(panel.get());
    panel->OnParamListChange = [&](TVQueryPanel&) { panel.reset(); };
    QObject::connect(&Widget, &W::parametersChanged, [&] { ++told; });
    panel->OnParamListChange(*panel);
    EXPECT_EQ(told, 0);
    EXPECT_EQ(Widget.panel(), nullptr);
}

TEST_F(QueryPanelSignals, ComeFromSubQueriesToo) {
    Shop.Operator("InList")->ValueKind = vkSubQuery;
    Shop.Where("customers.custno", "InList", "");
    QStringList built;
    int values = 0;
    QObject::connect(&Widget, &W::valueChanged, [&] { ++values; });
    QSignalSpy queries(&Widget, &W::queryChanged);
    QObject::connect(&Widget, &W::buildingSql, [&](TFilterCond&, QString& text) {
        text += " and 7 = 7";
        built.append(text);
    });
    InSubQuery([&](SubQueryDialog& window) {
        TVQueryPanel& inner = *window.queryPanel()->panel();
        inner.ManualAddCond(*inner.GetRootBracket(), Shop.Field("orders.amount"), Shop.Operator("EqualTo"),
                            "5");
        queries.clear();
        values = 0;
        static_cast<TSimpleCond*>(inner.GetRootBracket()->GetFirstCondition())->SetValue(1, "6");
        EXPECT_EQ(values, 1);
        EXPECT_EQ(queries.size(), 0) << "this query has not changed yet";
    });
    ASSERT_FALSE(built.empty());
    EXPECT_TRUE(built.front().contains('6'));
    auto& condition = static_cast<TSimpleCond&>(*Shop.Root().GetRow(0));
    EXPECT_NE(condition.GetValue(1).find("7 = 7"), std::string::npos) << condition.GetValue(1);
}

TEST_F(QueryPanelSignals, PropertiesAreThoseOfThePanel) {
    QSignalSpy settings(&Widget, &W::settingsChanged);
    // Each property gets another value, which must come back, and be told once; setting it again is no
    // change.
    const QMap<QByteArray, QVariant> values = {
        {"queryName", "Norway"},
        {"description", QStringList({"One", "Two"})},
        {"mainTableName", "orders"},
        {"sqlSyntax", QVariant::fromValue(W::OracleSql)},
        {"sqlOptions", QVariant::fromValue(W::SqlOptions(W::QuoteAliases | W::SortByNames))},
        {"saveSqlOptions", true},
        {"strict", true},
        {"saveTitles", false},
        {"panelStyle", QVariant::fromValue(W::AndOr)},
        {"panelOptions", QVariant::fromValue(W::PanelOptions(W::ShowCheckBoxes | W::AllowKeyboard))},
        {"linkTypes", QVariant::fromValue(W::LinkTypes(W::LinkAny | W::LinkNotAll))},
        {"helpFileName", "help.html"}};
    const QMetaObject& meta = W::staticMetaObject;
    int count = 0;
    for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i, ++count) {
        const QMetaProperty property = meta.property(i);
        const QByteArray name = property.name();
        if (name == "active" || name == "titles")
            continue;
        const QVariant value = values.contains(name)                    ? values[name]
                               : property.typeId() == QMetaType::QColor ? QVariant(QColor(1, 2, i))
                                                                        : QVariant(100 + i);
        settings.clear();
        EXPECT_TRUE(property.write(&Widget, value)) << name.data();
        EXPECT_EQ(property.read(&Widget).toString(), value.toString()) << name.data();
        EXPECT_EQ(property.read(&Widget).toInt(), value.toInt()) << name.data();
        EXPECT_EQ(settings.size(), 1) << name.data();
        property.write(&Widget, value);
        EXPECT_EQ(settings.size(), 1) << name.data();
    }
    EXPECT_EQ(count, 28);
    // What they are in the panel: one of each kind, and those that one could mix up.
    const TVQueryPanel& panel = Shop.Panel;
    const TQPAppearance& looks = panel.GetAppearance();
    EXPECT_EQ(panel.GetQueryName(), "Norway");
    EXPECT_EQ(panel.GetDescription().GetText(), "One\nTwo\n");
    EXPECT_EQ(panel.GetMainTableName(), "orders");
    EXPECT_EQ(panel.GetSQLSyntax(), ssOracle);
    EXPECT_EQ(panel.GetSQLOptions(), TSQLOptions({soQuoteAliases, soSortByNames}));
    EXPECT_EQ(looks.GetStyle(), psAndOr);
    EXPECT_EQ(looks.GetOptions(), TQPAppearanceOptions({aoShowCheckBoxes, aoAllowKeyboard}));
    EXPECT_EQ(looks.GetLinkTypes(), TFilterLinkTypes({fltAny, fltNotAll}));
    const auto number = [&](const char* name) { return Widget.property(name).toInt(); };
    EXPECT_EQ(number("rowSpace"), panel.GetRowSpace());
    EXPECT_EQ(number("tabSpace"), panel.GetTabSpace());
    EXPECT_EQ(number("elemSpace"), panel.GetElemSpace());
    EXPECT_EQ(number("headerLeft"), panel.GetHeaderLeft());
    EXPECT_EQ(number("headerTop"), panel.GetHeaderTop());
    EXPECT_EQ(number("maxPopupItemCount"), panel.GetMaxPopupItemCount());
    EXPECT_EQ(number("helpContext"), panel.GetRFEHelpContext());
    Shop.Panel.GetAppearance().SetFieldColor(clNone);
    EXPECT_FALSE(Widget.fieldColor().isValid());

    settings.clear();
    Shop.Panel.SetQueryName("Sweden");
    EXPECT_EQ(settings.size(), 1) << "the panel tells of this itself";
    Widget.setProperty("active", false);
    EXPECT_FALSE(Shop.Panel.GetActive());
    EXPECT_EQ(settings.size(), 2);
    QStringList titles = Widget.titles();
    titles.replaceInStrings("Choose records", "Show what is there");
    Widget.setTitles(titles);
    EXPECT_EQ(Shop.Panel.GetTitle("ttlFilter").substr(0, 4), "Show");
}

TEST_F(QueryPanelSignals, WhatCannotBeDoneIsRefusedWithAReason) {
    QSignalSpy refused(&Widget, &W::refused);
    EXPECT_FALSE(Shop.Panel.EditQResult());
    EXPECT_FALSE(Shop.Panel.EditTitles());
    ASSERT_EQ(refused.size(), 2);
    EXPECT_TRUE(refused[0][0].toString().contains("result fields"));
    EXPECT_TRUE(refused[1][0].toString().contains("titles"));
    int edited = 0;
    Widget.setDialogs({[&](QWidget*, TVQueryPanel&, int, int) { return ++edited > 0; },
                       [&](QWidget*, TVQueryPanel&) { return ++edited > 0; }});
    EXPECT_TRUE(Shop.Panel.EditQResult() && Shop.Panel.EditTitles());
    EXPECT_EQ(edited, 2);
    EXPECT_EQ(refused.size(), 2);

    TVQueryPanel idle;
    Widget.setPanel(&idle);
    Widget.setActive(true);
    ASSERT_EQ(refused.size(), 3);
    EXPECT_EQ(refused[2][0].toString(), "DBStructure is not specified");
    EXPECT_FALSE(Widget.isActive());
    Widget.setPanel(nullptr);
    EXPECT_EQ(Widget.tabSpace(), 20) << "as a new panel has it";
    Widget.setTabSpace(40);
    EXPECT_EQ(refused.size(), 4);
    EXPECT_EQ(Widget.tabSpace(), 20);
}

TEST_F(QueryPanelSignals, FieldsAndGroupsHaveImages) {
    for (const char* const name : {"customers.company", "customers.since"})
        Shop.Model.GetFieldGroups().AddGroup("People", Shop.Field(name));
    Shop.Where("customers.company", "EqualTo", "Acme");
    auto icons = std::make_unique<IconList>(QList<QIcon>{square(Qt::red), square(Qt::blue)});
    Shop.Panel.SetImages(icons.get());
    Shop.Panel.OnGetGroupImageIndex = [](TVQueryPanel&, const TDSFieldGroup&, int& index) { index = 0; };
    QObject::connect(&Widget, &W::itemImageNeeded, [](const TDSField& field, int& index) {
        index = field.GetFieldText() == "since" ? 5 : 1;
    });

    Click(1, wrField);
    ASSERT_TRUE(Widget.popup());
    const QAbstractItemModel& tree = *Widget.popup()->findChild<QAbstractItemView*>()->model();
    int groups = 0;
    for (int i = 0; i < tree.rowCount(); ++i) {
        const QModelIndex top = tree.index(i, 0);
        if (tree.rowCount(top) == 0)
            continue;
        ++groups;
        EXPECT_EQ(top.data().toString(), "People");
        EXPECT_EQ(colorOf(top.data(Qt::DecorationRole).value<QIcon>()), QColor(Qt::red));
        EXPECT_EQ(colorOf(tree.index(0, 0, top).data(Qt::DecorationRole).value<QIcon>()), QColor(Qt::blue));
        EXPECT_FALSE(tree.index(1, 0, top).data(Qt::DecorationRole).isValid()) << "there is no image 5";
    }
    EXPECT_EQ(groups, 1);
    Widget.popup()->cancel();

    // The same from a menu, where groups are submenus.
    Widget.setPanelOptions(Widget.panelOptions() | W::PopupField);
    Click(1, wrField);
    EXPECT_FALSE(Widget.popup());
    ASSERT_TRUE(Widget.menu());
    QAction* people = nullptr;
    for (QAction* const action : Widget.menu()->actions())
        if (action->menu())
            people = action;
    ASSERT_TRUE(people);
    EXPECT_EQ(people->text(), "People");
    EXPECT_EQ(colorOf(people->icon()), QColor(Qt::red));
    EXPECT_EQ(Widget.menu()->activeAction(), people) << "where the present field is";
    const QList<QAction*> fields = people->menu()->actions();
    ASSERT_EQ(fields.size(), 2);
    EXPECT_TRUE(fields[0]->isChecked());
    EXPECT_EQ(colorOf(fields[0]->icon()), QColor(Qt::blue));
    EXPECT_GT(Widget.menu()->actions().size(), 5) << "the other fields stand beside the group";
    fields[1]->trigger();
    Widget.menu()->close();
    EXPECT_EQ(static_cast<TSimpleCond&>(*Shop.Root().GetRow(0)).GetField(), Shop.Field("customers.since"));

    icons.reset();
    EXPECT_EQ(Shop.Panel.GetImages(), nullptr);
    Click(1, wrField);
    ASSERT_TRUE(Widget.menu());
    EXPECT_TRUE(Widget.menu()->actions().front()->icon().isNull());
    Widget.menu()->close();
}

TEST_F(QueryPanelSignals, SubQueryStripsAreAsHighAsTheyAreMeantToBe) {
    Shop.Operator("InList")->ValueKind = vkSubQuery;
    Shop.Where("customers.custno", "InList", "");
    InSubQuery([&](SubQueryDialog& window) {
        const auto heights = [&] {
            QTest::qWait(50);
            return QSize(window.queryPanel()->y(),
                         window.height() - window.queryPanel()->geometry().bottom() - 1);
        };
        QFont font = window.font();
        font.setPixelSize(11);
        window.setFont(font);
        EXPECT_EQ(heights(), QSize(25, 35)) << "above and below the panel";
        const QLabel& label = *window.resultField()->parentWidget()->findChild<QLabel*>();
        EXPECT_EQ(window.resultField()->geometry().left() - label.geometry().right() - 1, 4);
        font.setPixelSize(40);
        window.setFont(font);
        const QSize large = heights();
        EXPECT_GE(large.width(), window.resultField()->sizeHint().height());
        EXPECT_GE(large.height(), window.findChild<QPushButton*>()->sizeHint().height());
        EXPECT_GE(window.resultField()->height(), window.resultField()->sizeHint().height());
    });
}

} // namespace lumora::tests
