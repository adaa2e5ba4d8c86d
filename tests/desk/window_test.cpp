// The window, driven as a person would.

#include "apps/lumora-desk/mainwindow.h"
#include "apps/lumora-desk/opendatabasedialog.h"
#include "apps/lumora-desk/querylistpane.h"
#include "apps/lumora-desk/querypane.h"
#include "apps/lumora-desk/readsqldialog.h"
#include "apps/lumora-desk/resultpane.h"
#include "apps/lumora-desk/sampledatabase.h"
#include "apps/lumora-desk/sqlview.h"
#include "apps/lumora-desk/statementpane.h"
#include "tests/desk/desk_fixture.h"

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

    MainWindow window;
};

TEST_F(Windows, AColumnIsAddedTheQueryRunSavedAndOpenedAgain) {
    ASSERT_TRUE(window.document().isOpen());
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

    MainWindow second;
    second.open(request());
    ASSERT_TRUE(QTest::qWaitFor([&] { return second.document().isOpen(); }, 10'000));
    settle();
    EXPECT_EQ(second.document().queryName(), "In Oslo");
    EXPECT_EQ(second.statement().sql(), window.statement().sql());
    EXPECT_EQ(second.statement().words(), window.statement().words());
    EXPECT_TRUE(second.statement().words().startsWith("Show Name, City and Since."));
}

TEST_F(Windows, AQueryThatIsNotFinishedSaysSoWhereItsSqlWouldBe) {
    addCondition(window.document(), "Customer ID", "");
    settle();
    EXPECT_EQ(window.statement().sql(), "");
    EXPECT_TRUE(window.statement().problem().contains("Customer ID"));
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
        shown.text().setPlainText("select name\nfrom customers\nwhere city like");
        shown.accept();
        EXPECT_TRUE(shown.isVisible());
        EXPECT_NE(shown.problem(), "");
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
