// The window, driven as a person would.

#include "apps/lumora-desk/mainwindow.h"
#include "apps/lumora-desk/opendatabasedialog.h"
#include "apps/lumora-desk/parametersdialog.h"
#include "apps/lumora-desk/querylistpane.h"
#include "apps/lumora-desk/querypane.h"
#include "apps/lumora-desk/readsqldialog.h"
#include "apps/lumora-desk/resultpane.h"
#include "apps/lumora-desk/sampledatabase.h"
#include "apps/lumora-desk/sqlview.h"
#include "apps/lumora-desk/statementpane.h"
#include "tests/desk/desk_fixture.h"

#include <QAction>
#include <QClipboard>
#include <QGuiApplication>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMessageBox>
#include <QPushButton>
#include <QTableView>
#include <QTimer>
#include <QToolButton>

using namespace lumora;
using namespace lumora::desk;
using namespace lumora::tests;

namespace {

// Does something with the dialog that opens next; fails when none does.
template <typename TDialog>
class WhenDialogOpens {
public:
    explicit WhenDialogOpens(std::function<void(TDialog& dialog)> act) : act_(std::move(act)) {
        timer_.setInterval(20);
        QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] {
            if (auto* const dialog = qobject_cast<TDialog*>(QApplication::activeModalWidget())) {
                timer_.stop();
                seen_ = true;
                act_(*dialog);
            }
        });
        timer_.start();
    }
    ~WhenDialogOpens() { EXPECT_TRUE(seen_) << "no dialog opened"; }

private:
    const std::function<void(TDialog& dialog)> act_;
    QTimer timer_;
    bool seen_ = false;
};

class Windows : public DeskTest {
protected:
    Windows() {
        window.show();
        window.open(request());
        EXPECT_TRUE(QTest::qWaitFor([this] { return window.document().isOpen(); }, 10'000));
    }
    ~Windows() override {
        if (window.document().isModified())
            window.document().revert();
        window.close();
    }

    void run() {
        window.activateWindow(); // shortcuts are for the active window
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
        QTest::keyClick(&window, Qt::Key_F5);
        EXPECT_TRUE(QTest::qWaitFor([this] { return !window.result().isBusy(); }, 10'000));
    }
    void settle() { QTest::qWait(20); }
    int rows() { return window.result().model().rowCount(); }
    void press(QMessageBox::StandardButton button, QMessageBox& box) { box.button(button)->click(); }
    // What a person chooses in the menu of that text.
    void choose(const QString& text) {
        for (QAction* const action : window.findChildren<QAction*>())
            if (action->text().remove(u'&') == text && action->parent() == &window) {
                EXPECT_TRUE(action->isEnabled()) << text.toStdString();
                return action->trigger();
            }
        FAIL() << "no action " << text.toStdString();
    }
    bool isOffered(const QString& text) const {
        for (const QAction* const action : window.findChildren<QAction*>())
            if (action->text().remove(u'&') == text && action->parent() == &window)
                return action->isEnabled();
        return false;
    }
    void makeQuery(const char* name, const char* city) {
        window.document().newQuery();
        addCondition(window.document(), "City", city);
        window.document().saveAs(name);
    }
    QString sql() { return window.document().build().sql; }
    // Types a name into the list, as F2 and Enter do.
    void rename(const QString& name) {
        QListView& list = window.findChild<QueryListPane*>()->list();
        list.model()->setData(list.currentIndex(), name);
        settle();
    }

    MainWindow window;
};

TEST_F(Windows, AColumnIsAddedTheQueryRunSavedAndOpenedAgain) {
    ASSERT_TRUE(window.document().isOpen());
    EXPECT_EQ(window.focusWidget(), &window.query().conditions());
    EXPECT_TRUE(window.screen()->availableGeometry().contains(QRect(QPoint(), window.size())));
    addCondition(window.document(), "City", "Oslo");
    settle();
    EXPECT_TRUE(window.statement().sql().contains("Oslo"));
    window.query().columns().addSuggested();
    EXPECT_EQ(window.query().columns().columns().rowCount(), 3) << "name, city, since; no key";
    run();
    EXPECT_EQ(rows(), 2);
    EXPECT_TRUE(window.result().summary().startsWith("2 rows in")) << window.result().summary().toStdString();

    window.result().view().selectRow(0);
    window.result().copyWithNames();
    EXPECT_TRUE(QGuiApplication::clipboard()->text().startsWith("Name\tCity\tSince\n"))
        << QGuiApplication::clipboard()->text().toStdString();
    {
        const WhenDialogOpens<QInputDialog> name([](QInputDialog& dialog) {
            dialog.setTextValue("In Oslo");
            dialog.accept();
        });
        QTest::keySequence(&window, QKeySequence::Save);
    }
    EXPECT_FALSE(window.document().isModified());
    EXPECT_EQ(rows(), 2) << "saving for the first time leaves the rows";
    EXPECT_TRUE(window.windowTitle().startsWith("In Oslo"));

    MainWindow second;
    second.open(request());
    ASSERT_TRUE(QTest::qWaitFor([&] { return second.document().isOpen(); }, 10'000));
    settle();
    EXPECT_EQ(second.document().queryName(), "In Oslo");
    EXPECT_EQ(second.statement().sql(), window.statement().sql());
    EXPECT_EQ(second.statement().words(), window.statement().words());
    EXPECT_TRUE(second.statement().words().startsWith("Show Name, City and Since, each different row once."));
}

TEST_F(Windows, AQueryThatIsNotFinishedSaysSoWhereItsSqlWouldBe) {
    addCondition(window.document(), "Customer", "");
    settle();
    EXPECT_EQ(window.statement().sql(), "");
    EXPECT_TRUE(window.statement().problem().contains("Customer"));
    run();
    EXPECT_EQ(rows(), 0);
    EXPECT_FALSE(window.result().hasRows());
}

TEST_F(Windows, UnsavedChangesAreAskedAbout) {
    addCondition(window.document(), "City", "Oslo");
    {
        const WhenDialogOpens<QMessageBox> no([this](QMessageBox& box) { press(QMessageBox::Cancel, box); });
        EXPECT_FALSE(window.close());
    }
    EXPECT_TRUE(window.isVisible());
    {
        const WhenDialogOpens<QMessageBox> no([this](QMessageBox& box) { press(QMessageBox::Cancel, box); });
        window.newQuery();
    }
    EXPECT_TRUE(window.document().isModified());
    {
        const WhenDialogOpens<QMessageBox> no([this](QMessageBox& box) { press(QMessageBox::Cancel, box); });
        window.open(request());
    }
    EXPECT_TRUE(window.document().isModified());
    {
        const WhenDialogOpens<QMessageBox> yes(
            [this](QMessageBox& box) { press(QMessageBox::Discard, box); });
        window.newQuery();
    }
    EXPECT_FALSE(window.document().isModified());
    EXPECT_TRUE(window.document().panel().GetEmpty());
}

TEST_F(Windows, ADatabaseThatCannotBeOpenedIsToldInTheDialogAndTheOldOneStays) {
    window.document().saveAs("Kept");
    OpenRequest bad = request();
    bad.database.databaseName = QString::fromStdString(folder / "none.sqlite");
    QString problem;
    QString again;
    {
        const WhenDialogOpens<OpenDatabaseDialog> dialog([&](OpenDatabaseDialog& shown) {
            problem = shown.problem();
            shown.accept();
            EXPECT_TRUE(QTest::qWaitFor([&] { return !shown.problem().isEmpty(); }, 5000));
            again = shown.problem();
            shown.reject();
        });
        window.open(bad);
        QTest::qWait(500);
    }
    EXPECT_TRUE(problem.contains("none.sqlite")) << problem.toStdString();
    EXPECT_EQ(again, problem);
    EXPECT_EQ(window.document().queryName(), "Kept");
}

TEST_F(Windows, AnErrorOfTheDatabaseStandsWhereTheRowsWould) {
    window.query().columns().columns().addField(field(window.document(), "Name"));
    run();
    EXPECT_EQ(rows(), 3);
    {
        const DatabaseConnection connection(parseDatabase(databaseFile),
                                            DatabaseConnection::Access::ReadWrite);
        QSqlQuery(connection.connection()).exec("alter table customers rename to clients");
    }
    run();
    EXPECT_FALSE(window.result().hasRows());
    bool told = false;
    for (const QLabel* const label : window.result().findChildren<QLabel*>())
        told = told || (label->isVisible() && label->text().contains("customers"));
    EXPECT_TRUE(told);
}

TEST_F(Windows, SqlIsReadOrTheDialogSaysWhyNot) {
    const WhenDialogOpens<ReadSqlDialog> dialog([](ReadSqlDialog& shown) {
        shown.text().setPlainText(
            QStringLiteral("select name\nfrom customers\nwhere city = 'Tromsø' and nme = 1"));
        shown.accept();
        EXPECT_TRUE(shown.isVisible());
        EXPECT_TRUE(shown.problem().contains(QLatin1String("nme")));
        EXPECT_EQ(shown.text().textCursor().selectedText(), QLatin1String("nme = 1"));
        shown.text().setPlainText("select customers.name from customers where customers.city = 'Bergen'");
        shown.accept();
        EXPECT_FALSE(shown.isVisible());
    });
    QTest::keySequence(&window, QKeySequence("Ctrl+L"));
    run();
    EXPECT_EQ(rows(), 1);
    EXPECT_EQ(window.result().model().index(0, 0).data().toString(), "Bob");
}

TEST_F(Windows, TheListPutsItsSelectionRightWhenTheQueryIsKept) {
    window.document().saveAs("A");
    window.document().newQuery();
    window.document().saveAs("B");
    addCondition(window.document(), "City", "Oslo");
    QListView& list = window.findChild<QueryListPane*>()->list();
    {
        const WhenDialogOpens<QMessageBox> no([this](QMessageBox& box) { press(QMessageBox::Cancel, box); });
        list.setCurrentIndex(list.model()->index(0, 0));
        settle();
    }
    EXPECT_EQ(list.currentIndex().row(), 1);
    EXPECT_EQ(window.document().queryName(), "B");
    {
        const WhenDialogOpens<QMessageBox> yes([this](QMessageBox& box) { press(QMessageBox::Save, box); });
        list.setCurrentIndex(list.model()->index(0, 0));
        settle();
    }
    EXPECT_EQ(window.document().queryName(), "A");
    EXPECT_TRUE(readFile(queryFolder + "/B.qry").find("Oslo") != std::string::npos);
}

TEST_F(Windows, ParametersAreAskedForUntilTheyWillDoAndRemembered) {
    window.query().columns().columns().addField(field(window.document(), "Name"));
    addCondition(window.document(), "Customer", "1");
    auto& condition = dynamic_cast<TFilterCond&>(*window.document().panel().GetRootBracket()->GetRow(0));
    condition.SetValueIsParam(1, true);
    condition.GetParam(1)->Name = "Number";
    condition.GetParam(1)->Caption = "R&D <b>number";
    const auto lineOf = [](ParametersDialog& dialog) { return dialog.findChild<QLineEdit*>(); };
    {
        const WhenDialogOpens<ParametersDialog> asked([&](ParametersDialog& dialog) {
            const QLabel* label = nullptr;
            for (const QLabel* const each : dialog.findChildren<QLabel*>())
                if (each->text().contains("number"))
                    label = each;
            ASSERT_TRUE(label);
            EXPECT_TRUE(label->text().startsWith("R&D <b>number")) << label->text().toStdString();
            EXPECT_EQ(label->textFormat(), Qt::PlainText);
            EXPECT_FALSE(label->buddy()) << "its & would be a shortcut";
            EXPECT_EQ(lineOf(dialog)->text(), "");
            lineOf(dialog)->setText("one");
            dialog.accept();
            EXPECT_TRUE(dialog.isVisible());
            bool isTold = false;
            for (const QLabel* const each : dialog.findChildren<QLabel*>())
                isTold = isTold || (each->isVisible() && each->text().contains("one"));
            EXPECT_TRUE(isTold);
            lineOf(dialog)->setText("3");
            dialog.accept();
            EXPECT_FALSE(dialog.isVisible());
        });
        run();
    }
    ASSERT_EQ(rows(), 1);
    EXPECT_EQ(window.result().model().index(0, 0).data().toString(), "Eve");
    {
        const WhenDialogOpens<ParametersDialog> again([&](ParametersDialog& dialog) {
            EXPECT_EQ(lineOf(dialog)->text(), "3");
            lineOf(dialog)->setText("1");
            dialog.reject();
        });
        run();
    }
    EXPECT_EQ(rows(), 1) << "a run that was given up leaves the rows";
    {
        const WhenDialogOpens<ParametersDialog> third([&](ParametersDialog& dialog) {
            EXPECT_EQ(lineOf(dialog)->text(), "3") << "what was given up is not remembered";
            dialog.reject();
        });
        run();
    }
}

TEST_F(Windows, QueriesAreRenamedCopiedAndDeletedFromTheMenu) {
    makeQuery("One", "Oslo");
    makeQuery("Two", "Bergen");
    settle();
    choose("Duplicate");
    EXPECT_EQ(window.document().queryName(), "Two (copy)");
    EXPECT_TRUE(sql().contains("Bergen"));
    rename("Three");
    EXPECT_EQ(window.document().queryName(), "Three");
    EXPECT_TRUE(window.windowTitle().startsWith("Three"));
    {
        QString told;
        const WhenDialogOpens<QMessageBox> taken([&](QMessageBox& box) {
            told = box.text();
            EXPECT_EQ(box.textFormat(), Qt::PlainText);
            box.accept();
        });
        rename("One");
        EXPECT_TRUE(told.contains("One")) << told.toStdString();
    }
    EXPECT_EQ(window.document().queryName(), "Three");
    {
        const WhenDialogOpens<QMessageBox> no([&](QMessageBox& box) {
            EXPECT_TRUE(box.text().contains("\"Three\"")) << box.text().toStdString();
            EXPECT_EQ(box.defaultButton(), box.button(QMessageBox::Cancel));
            press(QMessageBox::Cancel, box);
        });
        choose("Delete");
    }
    EXPECT_EQ(window.document().queryName(), "Three");
    {
        const WhenDialogOpens<QMessageBox> yes([&](QMessageBox& box) { press(QMessageBox::Yes, box); });
        choose("Delete");
    }
    EXPECT_EQ(window.document().queries()->IndexByName("Three"), -1);
    EXPECT_EQ(window.document().queryName(), "Two");
    EXPECT_TRUE(sql().contains("Bergen")) << "the statement is that of the query that is shown";

    // Changes are not renamed, copied or lost without a word.
    addCondition(window.document(), "Name", "Ann");
    {
        const WhenDialogOpens<QMessageBox> no([&](QMessageBox& box) { press(QMessageBox::Cancel, box); });
        rename("Four");
    }
    EXPECT_EQ(window.document().queryName(), "Two");
    EXPECT_TRUE(window.document().isModified());
    {
        const WhenDialogOpens<QMessageBox> no([&](QMessageBox& box) { press(QMessageBox::Cancel, box); });
        choose("Duplicate");
    }
    EXPECT_EQ(window.document().queries()->GetCount(), 2);
    {
        const WhenDialogOpens<QMessageBox> discard(
            [&](QMessageBox& box) { press(QMessageBox::Discard, box); });
        rename("Four");
    }
    EXPECT_EQ(window.document().queryName(), "Four");
    EXPECT_FALSE(sql().contains("Ann"));
    EXPECT_EQ(readFile(queryFolder + "/Four.qry").find("Ann"), std::string::npos);
}

TEST_F(Windows, RevertBringsBackWhatWasSaved) {
    makeQuery("One", "Oslo");
    settle();
    EXPECT_FALSE(isOffered("Revert to Saved"));
    EXPECT_FALSE(isOffered("Save"));
    addCondition(window.document(), "Name", "Ann");
    EXPECT_TRUE(isOffered("Save"));
    {
        const WhenDialogOpens<QMessageBox> no([&](QMessageBox& box) { press(QMessageBox::Cancel, box); });
        choose("Revert to Saved");
    }
    EXPECT_TRUE(sql().contains("Ann"));
    {
        const WhenDialogOpens<QMessageBox> yes([&](QMessageBox& box) { press(QMessageBox::Yes, box); });
        choose("Revert to Saved");
    }
    EXPECT_FALSE(sql().contains("Ann"));
    EXPECT_TRUE(sql().contains("Oslo"));
    EXPECT_FALSE(isOffered("Revert to Saved"));

    // What somebody else has saved meanwhile is asked about.
    DeskDocument other;
    other.adopt(openDatabase(request()));
    addCondition(other, "Name", "Eve");
    other.save();
    addCondition(window.document(), "Name", "Ann");
    {
        const WhenDialogOpens<QMessageBox> no([&](QMessageBox& box) {
            EXPECT_TRUE(box.text().contains("stored as \"One\"")) << box.text().toStdString();
            press(QMessageBox::Cancel, box);
        });
        choose("Save");
    }
    EXPECT_NE(readFile(queryFolder + "/One.qry").find("Eve"), std::string::npos);
    {
        const WhenDialogOpens<QMessageBox> yes([&](QMessageBox& box) {
            for (QAbstractButton* const button : box.buttons())
                if (box.buttonRole(button) == QMessageBox::DestructiveRole)
                    return button->click();
        });
        choose("Save");
    }
    EXPECT_NE(readFile(queryFolder + "/One.qry").find("Ann"), std::string::npos);
}

TEST_F(Windows, RowsAreExportedAsTheyAreShownAndSaidSo) {
    EXPECT_FALSE(isOffered("Export Rows to CSV..."));
    window.query().columns().columns().addField(field(window.document(), "Name"));
    run();
    EXPECT_TRUE(isOffered("Export Rows to CSV..."));
    const auto infoText = [&] {
        for (const QLabel* const label : window.result().findChildren<QLabel*>())
            if (label->accessibleName() == "Number of rows and time")
                return label->text();
        return QString();
    };
    const auto exportTo = [&](const std::string& name) {
        window.result().exportTo(QString::fromStdString(name));
        EXPECT_FALSE(isOffered("Export Rows to CSV...")) << "while one is written";
        EXPECT_TRUE(QTest::qWaitFor([&] { return !window.result().isBusy(); }, 10'000));
        settle();
    };
    exportTo(folder / "rows.csv");
    EXPECT_EQ(readFile(folder / "rows.csv"), "\xEF\xBB\xBFName\r\nAnn\r\nBob\r\nEve\r\n");
    EXPECT_TRUE(infoText().endsWith("3 rows exported")) << infoText().toStdString();
    addCondition(window.document(), "City", "Oslo"); // not run yet
    settle();
    EXPECT_TRUE(infoText().contains("has changed since"));
    exportTo(folder / "again.csv");
    EXPECT_EQ(readFile(folder / "again.csv"), readFile(folder / "rows.csv"));
    exportTo(folder / "no/folder.csv");
    EXPECT_TRUE(infoText().contains("Export failed")) << infoText().toStdString();
    EXPECT_EQ(rows(), 3) << "the rows stay";
    run();
    EXPECT_EQ(rows(), 2);
    EXPECT_FALSE(infoText().contains("xport")) << "that was about other rows";
}

TEST(OpenDialog, GivesBackTheRequestThatItWasGiven) {
    for (const char* const url : {"/data/a b.sqlite", "postgresql://ann@db.example:5433/shop",
                                  "mysql://ann@db.example:3307/shop", "odbc:Driver=X;Database=shop"}) {
        OpenDatabaseDialog dialog({});
        const OpenRequest given{parseDatabase(url), "my.model", {QueryPlace::Kind::Table, "saved"}};
        dialog.setRequest(given);
        const OpenRequest back = dialog.request();
        EXPECT_EQ(back.database.driver, given.database.driver) << url;
        EXPECT_EQ(back.database.databaseName, given.database.databaseName) << url;
        EXPECT_EQ(back.database.hostName, given.database.hostName) << url;
        EXPECT_EQ(back.database.port, given.database.port) << url;
        EXPECT_EQ(back.database.userName, given.database.userName) << url;
        EXPECT_EQ(back.modelFile, given.modelFile);
        EXPECT_EQ(back.queries, given.queries);
    }
}

TEST(Sample, IsMadeOnceAndOpensWithItsQueries) {
    const TemporaryFolder home;
    const QString to = QString::fromStdString(home / "sample");
    const OpenRequest request = makeSample(QStringLiteral(LUMORA_SAMPLES), to);
    DeskDocument document;
    document.adopt(openDatabase(request));
    EXPECT_EQ(document.queries()->GetCount(), 12);
    EXPECT_GE(document.queries()->IndexByName("Customers in Norway"), 0);
    for (int i = 0; i < document.queries()->GetCount(); ++i) {
        document.selectQuery(i);
        EXPECT_EQ(document.build().problem, "") << document.queryName().toStdString();
        EXPECT_FALSE(document.isModified());
    }
    document.erase(0);
    makeSample(QStringLiteral(LUMORA_SAMPLES), to);
    DeskDocument again;
    again.adopt(openDatabase(request));
    EXPECT_EQ(again.queries()->GetCount(), 11) << "what was deleted does not come back";
}

} // namespace
