// Questions that people ask of databases nobody prepared, by keyboard alone; what comes is what SQL written
// by hand gives.

#include "apps/lumora-desk/mainwindow.h"
#include "apps/lumora-desk/querypane.h"
#include "apps/lumora-desk/resultpane.h"
#include "apps/lumora-desk/statementpane.h"
#include "lumora/platform/text_file.h"
#include "tests/desk/desk_fixture.h"

#include <QSqlRecord>
#include <QTableView>

using namespace lumora;
using namespace lumora::desk;
using namespace lumora::tests;

namespace {

class Scenarios : public testing::Test {
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
    // Each letter goes to whatever has the keyboard by then.
    static void type(const QString& text) {
        for (const QChar c : text)
            QTest::keyClicks(QApplication::focusWidget(), c);
    }

    // A new row, in which each word opens with what was typed before; Tab goes from one to the next.
    void beginRow(const QString& field, const QString& op) {
        window_.query().conditions().setFocus();
        key(Qt::Key_Insert);
        key(Qt::Key_Return);
        settle();
        type(field);
        key(Qt::Key_Tab);
        settle();
        type(op);
    }
    void addRow(const QString& field, const QString& op, const QString& value) {
        beginRow(field, op);
        key(Qt::Key_Tab);
        settle();
        type(value);
        key(Qt::Key_Return);
        settle();
    }
    void addRow(const QString& field, const QString& op) {
        beginRow(field, op);
        key(Qt::Key_Return);
        settle();
    }
    // Each value is looked for and checked with a blank.
    void addRowOfSeveral(const QString& field, const QString& op, const QStringList& values) {
        beginRow(field, op);
        key(Qt::Key_Tab);
        settle();
        for (const QString& value : values)
            type(value + QLatin1Char(' '));
        key(Qt::Key_Return);
        settle();
    }
    void addColumn(const QString& caption) {
        window_.query().columns().setFocus();
        key(Qt::Key_Insert);
        settle();
        type(caption);
        key(Qt::Key_Return);
        key(Qt::Key_Escape);
        settle();
    }
    static void settle() { QTest::qWait(20); }
    QString words() { return window_.document().panel().GetQueryText().c_str(); }

    // The rows that F5 brings, as texts, sorted.
    QStringList run() {
        QTest::keyClick(&window_, Qt::Key_F5);
        EXPECT_TRUE(QTest::qWaitFor([this] { return !window_.result().isBusy(); }, 20'000));
        const ResultTableModel& model = window_.result().model();
        QStringList rows;
        for (int row = 0; row < model.rowCount(); ++row) {
            QStringList cells;
            for (int column = 0; column < model.columnCount(); ++column)
                cells.append(model.index(row, column).data().toString());
            rows.append(cells.join(QLatin1Char('|')));
        }
        rows.sort();
        return rows;
    }
    QStringList byHand(const QString& sql) const {
        const DatabaseConnection connection(parseDatabase(databaseFile_));
        QSqlQuery query(connection.connection());
        EXPECT_TRUE(query.exec(sql)) << sql.toStdString();
        QStringList rows;
        while (query.next()) {
            QStringList cells;
            for (int column = 0; column < query.record().count(); ++column)
                cells.append(query.value(column).toString());
            rows.append(cells.join(QLatin1Char('|')));
        }
        rows.sort();
        return rows;
    }
    // The query gives what the statement gives, and that is something.
    void expectRowsOf(const char* sql) {
        const QStringList wanted = byHand(QString::fromUtf8(sql));
        EXPECT_FALSE(wanted.isEmpty());
        EXPECT_EQ(run(), wanted) << words().toStdString() << window_.statement().sql().toStdString()
                                 << window_.statement().problem().toStdString();
    }

    TemporaryFolder folder_;
    std::string databaseFile_;
    MainWindow window_;
};

} // namespace

TEST_F(Scenarios, TracksLongerThanFiveMinutesInOneOfTwoGenres) {
    open("music");
    addRow("Milliseconds", "is greater than", "300000");
    addRowOfSeveral("Genre", "is one of", {"Jazz", "Kids' songs"});
    addColumn("Track ID");
    expectRowsOf("select TrackId from Track where Milliseconds > 300000 and GenreId in (2, 4)");
}

TEST_F(Scenarios, CustomersWhoseSupportEmployeeIsJane) {
    open("music");
    addColumn("Customer ID");
    addColumn("Last name (Customer)");
    addRow("First name (Employee)", "is", "Jane");
    expectRowsOf("select CustomerId, LastName from Customer where SupportRepId in (3, 5)");
}

TEST_F(Scenarios, CustomersWithoutCompanyOutsideTwoCountries) {
    open("music");
    addColumn("Customer ID");
    addRow("Company", "is empty");
    addRowOfSeveral("Country", "is none of", {"Norway", "Brazil"});
    expectRowsOf("select CustomerId from Customer where (Company is null or Company = '') and "
                 "(Country is null or Country not in ('Norway', 'Brazil'))");
}

TEST_F(Scenarios, InvoicesOfAYearInCitiesPickedFromAList) {
    open("music");
    addColumn("Invoice ID");
    addRow("Invoice date", "is in the year", "2021");
    addRowOfSeveral("Billing city", "is one of", {"Paris", "L'Aquila", "Prague", "Berlin", "Lund"});
    expectRowsOf(
        "select InvoiceId from Invoice where InvoiceDate between '2021-01-01' and '2021-12-31 23:59:59' and "
        "BillingCity in ('Paris', 'L''Aquila', 'Prague', 'Berlin', 'Lund')");
}

TEST_F(Scenarios, OrdersOfOneDayInADatabaseThatStoresTimes) {
    open("wholesale");
    addColumn("Order ID");
    addRow("Order date", "is on", "1996-07-08");
    expectRowsOf("select OrderID from Orders where OrderDate like '1996-07-08%'");
}

TEST_F(Scenarios, FlightsByArrivalAirport) {
    open("flights");
    addColumn("Flight no");
    addRow("Airport name (Airports, dest)", "is", "Phillips");
    expectRowsOf("select FlightNo from flights where DestAirport = 'APG'");
}
