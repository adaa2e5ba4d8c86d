// The document: a database, a query and the base of saved ones.

#include "apps/lumora-desk/querylistmodel.h"
#include "tests/desk/desk_fixture.h"
#include "tests/message_of.h"

#include <QSignalSpy>

#include <filesystem>

using namespace lumora;
using namespace lumora::desk;
using namespace lumora::tests;

namespace {

class Documents : public DeskTest {
protected:
    Documents() { document.adopt(openDatabase(request())); }

    QString names() const {
        QStringList texts;
        for (int i = 0; i < document.queries()->GetCount(); ++i)
            texts.append(QString::fromStdString(document.queries()->GetQuery(i)->GetQueryName()) +
                         (i == document.currentIndex() ? "*" : ""));
        return texts.join(u' ');
    }
    std::string path(const std::string& file) const { return queryFolder + "/" + file; }
    void makeQuery(const char* name, const char* city) {
        document.newQuery();
        addCondition(document, "City", city);
        document.saveAs(name);
    }
    // The same folder as somebody else has it open.
    std::unique_ptr<DeskDocument> colleague() const {
        auto other = std::make_unique<DeskDocument>();
        other->adopt(openDatabase(request()));
        return other;
    }

    DeskDocument document;
};

TEST_F(Documents, BeginWithAnEmptyQueryThatIsNotYetOneToSave) {
    EXPECT_EQ(names(), "Query 1*");
    EXPECT_FALSE(document.isModified());
    EXPECT_FALSE(document.isStored(0));
    const BuiltStatement statement = document.build();
    EXPECT_EQ(statement.sql, "");
    EXPECT_TRUE(statement.problem.contains("choose a column")) << statement.problem.toStdString();
}

TEST_F(Documents, AChangeThatIsTakenBackIsNone) {
    QSignalSpy modified(&document, &DeskDocument::modifiedChanged);
    addCondition(document, "City", "Oslo");
    EXPECT_TRUE(document.isModified());
    EXPECT_EQ(document.build().problem, "");
    document.panel().GetRootBracket()->DeleteRow(0);
    document.panel().QueryChanged();
    EXPECT_FALSE(document.isModified());
    EXPECT_EQ(modified.size(), 2);
    document.setDescription("For Ann");
    EXPECT_TRUE(document.isModified());
}

TEST_F(Documents, WhatIsNotFinishedIsSaidInWords) {
    addCondition(document, "Customer", "");
    EXPECT_EQ(document.build().problem, "\"Customer\" has no value yet.");
    addCondition(document, "Since", "soon");
    EXPECT_TRUE(document.isModified());
    EXPECT_NE(document.build().problem, "");
}

TEST_F(Documents, SavedQueriesComeBackWithAllThatTheyHold) {
    document.panel().GetQResult().GetResultFields().Add("count(@1)", {&field(document, "Name")}, "How many");
    addCondition(document, "City", "Oslo");
    document.setDistinct(false);
    document.setDescription("Everybody\n[in] Oslo\n[Row]");
    document.saveAs("In Oslo");
    EXPECT_FALSE(document.isModified());
    const QString sql = document.build().sql;

    const std::unique_ptr<DeskDocument> again = colleague();
    EXPECT_EQ(again->queryName(), "In Oslo");
    EXPECT_EQ(again->build().sql, sql);
    EXPECT_FALSE(again->isDistinct());
    EXPECT_TRUE(again->description().startsWith("Everybody\n[in] Oslo"));
    EXPECT_FALSE(again->isModified());
}

TEST_F(Documents, ANewQueryInheritsNothing) {
    makeQuery("One", "Oslo");
    document.panel().SetUserData(TStringList("secret\n"));
    document.setDistinct(false);
    document.save();
    document.newQuery();
    EXPECT_TRUE(document.isDistinct());
    EXPECT_EQ(document.panel().GetUserData().Count(), 0);
    EXPECT_TRUE(document.panel().GetEmpty());
    EXPECT_EQ(document.description(), "");
}

TEST_F(Documents, QueriesAreCopiedRenamedAndErased) {
    makeQuery("One", "Oslo");
    makeQuery("Two", "Bergen");
    EXPECT_EQ(names(), "One Two*");
    document.duplicate(0);
    EXPECT_EQ(names(), "One Two One (copy)*");
    document.rename("Three");
    EXPECT_EQ(names(), "One Two Three*");
    EXPECT_TRUE(std::filesystem::exists(path("Three.qry")));
    EXPECT_FALSE(std::filesystem::exists(path("One (copy).qry")));
    EXPECT_TRUE(document.build().sql.contains("Oslo"));
    document.erase(2);
    EXPECT_EQ(names(), "One Two*");
    EXPECT_TRUE(document.build().sql.contains("Bergen")) << "the panel shows the query that is current";
    document.erase(0);
    EXPECT_EQ(names(), "Two*");
    document.erase(0);
    EXPECT_EQ(names(), "Query 1*");
}

TEST_F(Documents, ARenameThatFailsKeepsTheName) {
    makeQuery("One", "Oslo");
    makeQuery("Two", "Bergen");
    EXPECT_NE(MessageOf<EVQueryBaseError>([&] { document.rename("one"); }), "");
    EXPECT_NE(MessageOf<EVQueryBaseError>([&] { document.rename(" "); }), "");
    EXPECT_EQ(document.queryName(), "Two");
    EXPECT_FALSE(document.isModified());
}

TEST_F(Documents, WhatSomebodyElseSavedIsNotOverwrittenWithoutForce) {
    makeQuery("One", "Oslo");
    const std::unique_ptr<DeskDocument> other = colleague();
    addCondition(*other, "Name", "Eve");
    other->save();
    addCondition(document, "Name", "Ann");
    EXPECT_NE(MessageOf<EVQueryBaseError>([&] { document.save(); }), "");
    EXPECT_TRUE(document.isModified());
    EXPECT_TRUE(readFile(path("One.qry")).find("Eve") != std::string::npos);
    document.save(true);
    EXPECT_FALSE(document.isModified());
    EXPECT_TRUE(readFile(path("One.qry")).find("Ann") != std::string::npos);

    addCondition(*other, "City", "Bergen");
    EXPECT_NE(MessageOf<EVQueryBaseError>([&] { other->erase(0); }), "");
    EXPECT_EQ(other->queryName(), "One");
    other->erase(0, true);
    EXPECT_FALSE(std::filesystem::exists(path("One.qry")));
}

TEST_F(Documents, AQueryThatCannotBeReadKeepsTheOneThatIsShown) {
    makeQuery("One", "Oslo");
    makeQuery("Two", "Bergen");
    writeFile(path("One.qry"), "[Main]\nVersion=3.5\n[Row]\nRowType=nonsense\n");
    EXPECT_NE(MessageOf<Exception>([&] { document.selectQuery(0); }), "");
    EXPECT_EQ(document.queryName(), "Two");
    EXPECT_TRUE(document.build().sql.contains("Bergen"));
    EXPECT_FALSE(document.isModified());
    document.erase(1);
    EXPECT_EQ(names(), "One Query 1*") << "what is left cannot be shown";
}

TEST_F(Documents, AnotherDatabaseThatCannotBeTakenLeavesEverything) {
    makeQuery("One", "Oslo");
    addCondition(document, "Name", "Ann");
    OpenRequest bad = request();
    bad.queries.name = QString::fromStdString(databaseFile + "/below a file");
    OpenedDatabase opened = openDatabase(bad);
    EXPECT_NE(MessageOf<Exception>([&] { document.adopt(std::move(opened)); }), "");
    EXPECT_EQ(document.queryName(), "One");
    EXPECT_TRUE(document.isModified());
    EXPECT_TRUE(document.build().sql.contains("Ann"));

    bad.modelFile = QString::fromStdString(folder / "bad.model");
    writeFile(bad.modelFile.toStdString(), "no model at all\n");
    EXPECT_NE(MessageOf<Exception>([&] { openDatabase(bad); }).find("bad.model"), std::string::npos);
}

TEST_F(Documents, AnotherDatabaseBeginsAnew) {
    makeQuery("One", "Oslo");
    const std::unique_ptr<DeskDocument> other = colleague();
    document.adopt(openDatabase(request()));
    EXPECT_EQ(document.queryName(), "One");
    document.close();
    EXPECT_FALSE(document.isOpen());
    EXPECT_FALSE(document.isModified());
    document.adopt(openDatabase(request()));
    EXPECT_TRUE(document.build().sql.contains("Oslo"));
    EXPECT_TRUE(other->build().sql.contains("Oslo"));
}

TEST_F(Documents, SqlBecomesRowsOrNothingChanges) {
    addCondition(document, "City", "Oslo");
    const QString before = document.build().sql;
    EXPECT_NE(MessageOf<Exception>([&] { document.readSql("delete from customers"); }), "");
    EXPECT_NE(MessageOf<Exception>([&] { document.readSql("select name from nowhere"); }), "");
    EXPECT_EQ(document.build().sql, before);
    document.readSql("select customers.name as who from customers "
                     "where customers.city = 'Bergen' and customers.since >= '2020-01-01'");
    EXPECT_EQ(document.panel().GetRootBracket()->GetRowCount(), 2);
    EXPECT_TRUE(document.build().sql.contains("Bergen"));
    EXPECT_FALSE(document.isDistinct());
    EXPECT_TRUE(document.isModified());
}

TEST_F(Documents, ParametersAreAskedForOnceAndBound) {
    document.panel().GetQResult().GetResultFields().Add("@1", {&field(document, "Name")}, "Who is it");
    addCondition(document, "City", "Oslo");
    addCondition(document, "Customer", "1");
    for (int i = 0; i < 2; ++i) {
        auto& condition = dynamic_cast<TFilterCond&>(*document.panel().GetRootBracket()->GetRow(i));
        condition.SetValueIsParam(1, true);
        condition.GetParam(1)->Name = i == 0 ? "Town" : "Number";
    }
    const std::vector<AskedParameter> asked = document.parameters();
    ASSERT_EQ(asked.size(), 2U);
    EXPECT_EQ(asked[0].name, "Town");
    EXPECT_TRUE(asked[1].caption.contains("Customer"));
    EXPECT_NE(MessageOf<Exception>([&] { document.statement({{"Town", "Oslo"}, {"Number", "one"}}); }), "");
    const Statement statement = document.statement({{"Town", "Oslo"}, {"Number", "1"}});
    EXPECT_EQ(statement.values.size(), 2);
    EXPECT_FALSE(statement.sql.contains("Oslo"));
    EXPECT_EQ(statement.captions, QStringList{"Who is it"});
    EXPECT_EQ(document.parameters()[0].name, "Town") << "running renames nothing";
}

TEST_F(Documents, TheListFollows) {
    QueryListModel list(document);
    makeQuery("One", "Oslo");
    makeQuery("Two", "Bergen");
    document.setDescription("About Bergen");
    ASSERT_EQ(list.rowCount(), 2);
    EXPECT_EQ(list.index(1).data().toString(), "Two *");
    document.save();
    EXPECT_EQ(list.index(1).data().toString(), "Two");
    EXPECT_EQ(list.index(1).data(Qt::ToolTipRole).toString(), "About Bergen");
    QSignalSpy wanted(&list, &QueryListModel::renameWanted);
    EXPECT_FALSE(list.setData(list.index(1), "  ", Qt::EditRole));
    EXPECT_FALSE(list.setData(list.index(1), "Two ", Qt::EditRole));
    EXPECT_TRUE(list.setData(list.index(1), "Three", Qt::EditRole));
    ASSERT_EQ(wanted.size(), 1);
    EXPECT_EQ(wanted[0][1].toString(), "Three");
}

TEST_F(Documents, QueriesCanBeKeptInTheDatabaseItself) {
    OpenRequest inTable = request();
    inTable.queries = {QueryPlace::Kind::Table, {}};
    document.adopt(openDatabase(inTable));
    makeQuery("One", "Oslo");
    document.adopt(openDatabase(inTable));
    EXPECT_EQ(names(), "One*");
    EXPECT_TRUE(document.build().sql.contains("Oslo"));
}

} // namespace
