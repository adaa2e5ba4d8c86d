// SQLite files as they are found: empty, in use, left behind by a program that was killed, in a folder that
// cannot be written.
#include "lumora/qtsql/catalogues.h"
#include "lumora/qtsql/databaseconnection.h"
#include "lumora/qtsql/databaseerror.h"
#include "tests/cli_process.h"
#include "tests/message_of.h"
#include "tests/test_application.h"

#include <gtest/gtest.h>

using namespace lumora;
using namespace lumora::tests;

namespace {

namespace fs = std::filesystem;
using Access = DatabaseConnection::Access;

class SqliteFiles : public testing::Test {
protected:
    SqliteFiles() {
        fs::permissions(folder_ / "", fs::perms(0755));
        for (const char* const name : {"live", "killed", "clean"})
            fs::create_directory(folder_ / name);
    }
    ~SqliteFiles() override {
        for (const auto& entry : fs::directory_iterator(folder_ / ""))
            fs::permissions(entry.path(), fs::perms(0755));
    }

    // A table of three rows, of which the last one is in the log alone.
    void makeLogged(const DatabaseConnection& live) const {
        execute(live.connection(), "pragma journal_mode=wal");
        execute(live.connection(), "create table t (id integer)");
        execute(live.connection(), "insert into t values (1), (2)");
        execute(live.connection(), "pragma wal_checkpoint(truncate)");
        fs::copy(file("live"), file("clean"));
        execute(live.connection(), "insert into t values (3)");
        for (const char* const end : {"", "-wal"}) // the third file is gone, as after a crash of the machine
            fs::copy(file("live") + end, file("killed") + end);
        for (const char* const name : {"killed", "clean"})
            fs::permissions(folder_ / name, fs::perms(0555));
    }

    std::string file(const std::string& name) const { return folder_ / name + "/x.sqlite"; }

    static std::string rowsOf(const std::string& database) {
        return MessageOf<DatabaseError>([&] {
            const DatabaseConnection connection(parseDatabase(database));
            QSqlQuery query = execute(connection.connection(), "select count(*) from t");
            nextRow(query);
            throw DatabaseError(DatabaseError::Kind::Invalid, query.value(0).toString());
        });
    }
    // What "lumora fill" says as somebody whom permissions bind.
    static std::string errorOf(const std::string& database) {
        std::vector<std::string> command = {LUMORA_PROGRAM, "fill", database};
        if (geteuid() == 0)
            command.insert(command.begin(), {"setpriv", "--reuid=65534", "--regid=65534", "--clear-groups"});
        return runProcess(command).err;
    }
    static bool canBeSomebody() {
        return geteuid() != 0 || runProcess({"setpriv", "--reuid=65534", "--regid=65534", "--clear-groups",
                                             LUMORA_PROGRAM, "--help"})
                                         .status == 0;
    }

    const TestApplication application_;
    TemporaryFolder folder_;
};

} // namespace

TEST_F(SqliteFiles, WithALogAreReadOrSayHow) {
    const DatabaseConnection live(parseDatabase(file("live")), Access::Create);
    makeLogged(live);
    EXPECT_EQ(rowsOf(file("live")), "3");
    EXPECT_EQ(rowsOf("file:" + file("clean") + "?immutable=1"), "2");
    EXPECT_EQ(rowsOf("file:" + file("killed") + "?immutable=1"),
              "Cannot open database \"" + file("killed") + "\": the changes in " + file("killed") +
                  "-wal would be missed; open it without \"immutable\"");
    EXPECT_EQ(MessageOf<DatabaseError>([&] {
                  const DatabaseConnection writing(parseDatabase("file:" + file("clean") + "?immutable=1"),
                                                   Access::ReadWrite);
              }),
              "Cannot open database \"" + file("clean") +
                  "\": a file that is said to be immutable can only be read");

    if (!canBeSomebody())
        GTEST_SKIP() << "nobody else can run " LUMORA_PROGRAM;
    EXPECT_EQ(errorOf(file("live")), "");
    const std::string clean = errorOf(file("clean")), killed = errorOf(file("killed"));
    EXPECT_NE(clean.find("open it as file:" + file("clean") + "?immutable=1\n"), std::string::npos) << clean;
    EXPECT_NE(killed.find("Copy it into one together with its -wal file"), std::string::npos) << killed;
    EXPECT_EQ(killed.find("immutable"), std::string::npos) << killed;
    EXPECT_EQ(errorOf("file:" + file("clean") + "?immutable=1"), "");
    fs::permissions(folder_ / "killed", fs::perms(0777)); // SQLite makes what it needs
    fs::permissions(file("killed"), fs::perms(0666));
    fs::permissions(file("killed") + "-wal", fs::perms(0666));
    EXPECT_EQ(errorOf(file("killed")), "");
    EXPECT_EQ(rowsOf(file("killed")), "3") << "of a writer that was killed nothing is missed";
}

TEST_F(SqliteFiles, ThatAreEmptyHoldNothingToRead) {
    writeFile(file("clean"), "");
    EXPECT_EQ(rowsOf(file("clean")), "Cannot open database \"" + file("clean") + "\": the file is empty");
    const DatabaseConnection made(parseDatabase(file("clean")), Access::ReadWrite);
    execute(made.connection(), "create table t (id integer)");
    EXPECT_EQ(rowsOf(file("clean")), "0");
}
