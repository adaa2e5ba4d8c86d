// Running and exporting beside the window.

#include "apps/lumora-desk/csvfile.h"
#include "apps/lumora-desk/exporttask.h"
#include "apps/lumora-desk/querytask.h"
#include "tests/desk/desk_fixture.h"
#include "tests/message_of.h"

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QThreadPool>

#include <sys/resource.h>

#include <csignal>

using namespace lumora;
using namespace lumora::desk;
using namespace lumora::tests;

namespace {

// Collects what a task says, and that it says it on this thread.
class TaskRecord {
public:
    explicit TaskRecord(QueryTask& task)
        : finished(&task, &QueryTask::finished),
          failed(&task, &QueryTask::failed),
          cancelled(&task, &QueryTask::cancelled) {
        QObject::connect(&task, &QueryTask::columnsReady, [this](const QList<ResultColumn>& came) {
            columns = came;
            onThread = onThread && QThread::currentThread() == thread;
        });
        QObject::connect(&task, &QueryTask::rowsReady, [this](const ResultRows& came) {
            rows.append(came);
            ++chunks;
            onThread = onThread && QThread::currentThread() == thread;
        });
    }
    bool ended() const { return finished.size() + failed.size() + cancelled.size() > 0; }
    bool wait(int ms = 20'000) const {
        return QTest::qWaitFor([this] { return ended(); }, ms);
    }

    QList<ResultColumn> columns;
    ResultRows rows;
    int chunks = 0;
    bool onThread = true;
    QThread* const thread = QThread::currentThread();
    QSignalSpy finished, failed, cancelled;
};

class Tasks : public DeskTest {
protected:
    ~Tasks() override { QThreadPool::globalInstance()->waitForDone(); }

    QueryTask task;
    TaskRecord record{task};
};

TEST_F(Tasks, RowsComeInOrderAndInChunksOnTheThreadOfTheTask) {
    task.start(statement(
        QStringLiteral("with recursive n(i) as (select 1 union all select i + 1 from n where i < 12345) "
                       "select i, i * 2 as double from n")));
    EXPECT_TRUE(task.isRunning());
    ASSERT_TRUE(record.wait());
    ASSERT_EQ(record.finished.size(), 1);
    EXPECT_TRUE(record.finished[0][0].toBool());
    EXPECT_FALSE(task.isRunning());
    EXPECT_TRUE(record.onThread);
    ASSERT_EQ(record.columns.size(), 2);
    EXPECT_EQ(record.columns[1].name, "double");
    ASSERT_EQ(record.rows.size(), 12345);
    EXPECT_GE(record.chunks, 12);
    for (qsizetype i = 0; i < record.rows.size(); ++i)
        ASSERT_EQ(record.rows[i][1].toLongLong(), 2 * (i + 1));
}

TEST_F(Tasks, LimitsOfRowsAndOfBytesCutOffAndSaySo) {
    task.start(statement(endless().arg("i")), {.rows = 2500, .bytes = 1 << 30});
    ASSERT_TRUE(record.wait());
    ASSERT_EQ(record.finished.size(), 1);
    EXPECT_FALSE(record.finished[0][0].toBool());
    EXPECT_EQ(record.rows.size(), 2500);

    QueryTask wide;
    TaskRecord wideRecord(wide);
    wide.start(statement(endless().arg("hex(zeroblob(50000))")), {.rows = 1'000'000, .bytes = 4 << 20});
    ASSERT_TRUE(wideRecord.wait());
    EXPECT_FALSE(wideRecord.finished[0][0].toBool());
    EXPECT_GT(wideRecord.rows.size(), 5);
    EXPECT_LT(wideRecord.rows.size(), 50);

    QueryTask exact;
    TaskRecord exactRecord(exact);
    exact.start(statement("select * from customers"), {.rows = 3, .bytes = 1 << 20});
    ASSERT_TRUE(exactRecord.wait());
    EXPECT_TRUE(exactRecord.finished[0][0].toBool()) << "there are no more than fit";
}

TEST_F(Tasks, CancellingStopsTheEngineAndIsHeardAtOnce) {
    task.start(statement(endless().arg("max(i)"))); // gives no row, so only the engine can be stopped
    QTest::qWait(200);
    QElapsedTimer clock;
    clock.start();
    task.cancel();
    EXPECT_EQ(record.cancelled.size(), 1);
    EXPECT_FALSE(task.isRunning());
    EXPECT_TRUE(QThreadPool::globalInstance()->waitForDone(5000)) << "the statement goes on";
    EXPECT_LT(clock.elapsed(), 5000);
    QTest::qWait(50);
    EXPECT_EQ(record.finished.size() + record.failed.size(), 0) << "what was cancelled says nothing more";
}

TEST_F(Tasks, ARunThatIsReplacedMixesNoRowsIn) {
    task.start(statement(endless().arg("'old'")));
    ASSERT_TRUE(QTest::qWaitFor([this] { return record.chunks > 2; }, 10'000));
    record.rows.clear();
    task.start(statement("select 'new'"));
    ASSERT_TRUE(record.wait());
    ASSERT_EQ(record.rows.size(), 1);
    EXPECT_EQ(record.rows[0][0].toString(), "new");
}

TEST_F(Tasks, ATaskThatGoesAwayLeavesNothingRunning) {
    {
        QueryTask gone;
        gone.start(statement(endless().arg("i")));
        QTest::qWait(50);
    }
    EXPECT_TRUE(QThreadPool::globalInstance()->waitForDone(5000));
}

TEST_F(Tasks, ErrorsAreTheEnginesWords) {
    task.start(statement("select name from nowhere"));
    ASSERT_TRUE(record.wait());
    ASSERT_EQ(record.failed.size(), 1);
    EXPECT_TRUE(record.failed[0][0].toString().contains("nowhere"))
        << record.failed[0][0].toString().toStdString();

    Statement elsewhere = statement("select 1");
    elsewhere.database.databaseName = QString::fromStdString(folder / "gone.sqlite");
    QueryTask second;
    TaskRecord secondRecord(second);
    second.start(elsewhere);
    ASSERT_TRUE(secondRecord.wait());
    ASSERT_EQ(secondRecord.failed.size(), 1);
    EXPECT_TRUE(secondRecord.failed[0][0].toString().contains("gone.sqlite"));
}

// --- CSV files.

class Exports : public Tasks {
protected:
    Exports() : finished(&exporting, &ExportTask::finished), failed(&exporting, &ExportTask::failed) {}

    bool wait() {
        return QTest::qWaitFor(
            [this] { return !exporting.isRunning() && finished.size() + failed.size() > 0; }, 20'000);
    }

    const std::string file = folder / "rows.csv";
    ExportTask exporting;
    QSignalSpy finished, failed;
};

TEST_F(Exports, RowsAreWrittenSoThatSpreadsheetsReadThem) {
    exporting.start(QString::fromStdString(file), {{"Name"}, {"Quoted, \"so\""}, {"Size", true}},
                    {{"Zoë", "a \"b\"\nc", "12.50"}, {QVariant(), "", 1e21}});
    ASSERT_TRUE(wait());
    ASSERT_EQ(failed.size(), 0) << failed.value(0).value(0).toString().toStdString();
    EXPECT_EQ(finished[0][0].toInt(), 2);
    EXPECT_EQ(readFile(file), "\xEF\xBB\xBFName,\"Quoted, \"\"so\"\"\",Size\r\n"
                              "Zoë,\"a \"\"b\"\"\nc\",12.50\r\n,\"\",1e+21\r\n");
}

TEST_F(Exports, AStatementGoesToTheFileWithoutBeingKept) {
    exporting.start(
        QString::fromStdString(file),
        statement("with recursive n(i) as (select 1 union all select i + 1 from n where i < 300000) "
                  "select i from n"));
    ASSERT_TRUE(wait());
    ASSERT_EQ(finished.size(), 1);
    EXPECT_EQ(finished[0][0].toInt(), 300'000);
    const std::string text = readFile(file);
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 300'001);
    EXPECT_EQ(text.substr(text.size() - 9), "\n300000\r\n");
}

TEST_F(Exports, WhatFailsOrIsCancelledLeavesTheOldFile) {
    writeFile(file, "precious");
    exporting.start(QString::fromStdString(file), statement("select * from nowhere"));
    ASSERT_TRUE(wait());
    EXPECT_EQ(failed.size(), 1);
    EXPECT_EQ(readFile(file), "precious");

    exporting.start(QString::fromStdString(file), statement(endless().arg("i")));
    QTest::qWait(100);
    exporting.cancel();
    EXPECT_TRUE(QThreadPool::globalInstance()->waitForDone(5000));
    EXPECT_EQ(readFile(file), "precious");

    exporting.start(QString::fromStdString(folder / "no/such/folder.csv"), statement("select 1"));
    ASSERT_TRUE(QTest::qWaitFor([this] { return failed.size() == 2; }, 5000));
    EXPECT_TRUE(failed[1][0].toString().contains("folder.csv"));
}

// A bound on the size of files fails writes as a full disk does.
TEST_F(Exports, AFullDiskIsTold) {
    writeFile(file, "precious");
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit before = {};
    getrlimit(RLIMIT_FSIZE, &before);
    rlimit small = before;
    small.rlim_cur = 100'000;
    setrlimit(RLIMIT_FSIZE, &small);
    const std::string message = MessageOf<EFileError>([&] {
        CsvFile csv(QString::fromStdString(file));
        for (int i = 0; i < 100'000; ++i)
            csv.row({QStringLiteral("something or other")});
        csv.finish();
    });
    setrlimit(RLIMIT_FSIZE, &before);
    EXPECT_NE(message.find("rows.csv"), std::string::npos) << message;
    EXPECT_EQ(readFile(file), "precious");
}

} // namespace
