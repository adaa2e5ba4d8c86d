// Questions that people ask of databases nobody prepared, by keyboard alone; what comes is what SQL written by hand
// gives.

#include "apps/lumora-desk/mainwindow.h"
#include "apps/lumora-desk/querypane.h"
#include "apps/lumora-desk/resultpane.h"
#include "lumora/platform/text_file.h"
#include "tests/desk/desk_fixture.h"

#include <QTableView>

using namespace lumora;
using namespace lumora::desk;
using namespace lumora::tests;

namespace {

class Scenarios : public testing::TestWithParam<const char*> {
protected:
    // Makes the database that the script tells, and opens it as a person does who has nothing but the file.
    void open(const std::string& name) {
        databaseFile_ = folder_ / (name + ".sqlite");
        const DatabaseConnection connection(parseDatabase(databaseFile_), DatabaseConnection::Access::Create);
        QSqlQuery query(connection.connection());
        query.exec(QStringLiteral("begin"));
        const QString script = QString::fromStdString(ReadTextFile(LUMORA_SCENARIOS "/" + name + ".sql"));
        for (const QString& statement : script.split(QStringLiteral(";\n"), Qt::SkipEmptyParts))
            ASSERT_TRUE(query.exec(statement)) << statement.toStdString();
        query.exec(QStringLiteral("commit"));

        OpenRequest request;
        request.database = parseDatabase(databaseFile_);
        request.queries.name = QString::fromStdString(folder_ / "queries");
        window_.show();
        window_.open(request);
        ASSERT_TRUE(QTest::qWaitFor([this] { return window_.document().isOpen(); }, 20'000));
        window_.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window_));
    }
    ~Scenarios() override {
        if (window_.document().isModified())
            window_.document().revert();
        window_.close();
    }

    static void key(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(QApplication::focusWidget(), key, modifiers);
    }
    static void type(const QString& text) { QTest::keyClicks(QApplication::focusWidget(), text); }

    // A new row: what is typed into each word, Tab between them. Words of a list of several are checked.
    void addRow(const QString& field, const QString& op, const QStringList& values = {}) {
        window_.query().conditions().setFocus();
        key(Qt::Key_Insert);
        key(Qt::Key_Return);
        settle();
        type(field);
        key(Qt::Key_Tab);
        settle();
        type(op);
        key(values.isEmpty() ? Qt::Key_Return : Qt::Key_Tab);
        for (const QString& value : values) {
            settle();
            type(value);
            key(value == values.back() ? Qt::Key_Return : Qt::Key_Tab);
        }
        settle();
    }
    static void settle() { QTest::qWait(20); }
    QString words() { return window_.document().panel().GetQueryText().c_str(); }

    int run() {
        QTest::keyClick(&window_, Qt::Key_F5);
        EXPECT_TRUE(QTest::qWaitFor([this] { return !window_.result().isBusy(); }, 20'000));
        return window_.result().model().rowCount();
    }
    int byHand(const QString& sql) const {
        const DatabaseConnection connection(parseDatabase(databaseFile_));
        QSqlQuery query(connection.connection());
        EXPECT_TRUE(query.exec(sql) && query.next()) << sql.toStdString();
        return query.value(0).toInt();
    }

    TemporaryFolder folder_;
    std::string databaseFile_;
    MainWindow window_;
};

} // namespace

TEST_F(Scenarios, TracksLongerThanFiveMinutesInOneOfTwoGenres) {
    open("music");
    addRow("Milliseconds", "is greater than", {"300000"});
    std::cout << words().toStdString();
    EXPECT_EQ(run(), byHand("select count(*) from Track where Milliseconds > 300000"));
}
