// The database provider over a session in memory.
#include "lumora/metadata/Vbdeinfo.h"
#include "lumora/model/Vdbstruc.h"
#include "tests/message_of.h"

#include <gtest/gtest.h>

#include <map>
#include <utility>

using namespace lumora;
using namespace lumora::tests;

namespace {

// One database, "shop", and what was asked of it.
class TMemorySession : public TSession {
public:
    TMemorySession() { SetDefault(this); }

    void GetDatabaseNames(TStringList& names) override { names.SetText("shop\n"); }
    void GetTableNames(const std::string& database, std::string_view pattern, bool extensions,
                       bool systemTables, TStringList& names) override {
        Asked.append(database).append(" ").append(pattern).append(extensions || systemTables ? " more\n"
                                                                                             : "\n");
        names.Clear();
        for (const auto& [name, fields] : Tables)
            names.Add(name);
    }
    TDatabase* FindDatabase(const std::string& name) override {
        return name == "shop" && Opened ? &Database : nullptr;
    }
    std::unique_ptr<TTable> NewTable() override {
        struct TMemoryTable : TTable {
            explicit TMemoryTable(TMemorySession& session) : Session(session) {}
            void UpdateFieldDefs() override {
                Session.Asked += DatabaseName + "/" + TableName + "\n";
                const auto found = Session.Tables.find(TableName);
                if (found == Session.Tables.end())
                    throw Exception("no table " + TableName);
                FieldDefs = found->second;
            }
            TMemorySession& Session;
        };
        return std::make_unique<TMemoryTable>(*this);
    }
    std::unique_ptr<TQuery> NewQuery() override {
        struct TMemoryQuery : TQuery {
            explicit TMemoryQuery(TMemorySession& session) : Session(session) {}
            void Open() override {
                EXPECT_TRUE(Session.Busy);
                Session.Asked += DatabaseName + ": " + SQL + "\n";
                if (SQL.empty())
                    throw Exception("empty query");
                if (SQL == "throw 7")
                    throw 7;
            }
            int GetFieldCount() const override { return Session.ColumnCount; }
            std::string GetFieldText(int field) const override {
                if (Row == Session.FailingRow && field == 1)
                    throw Exception("connection lost");
                return std::to_string(Row) + "." + std::to_string(field);
            }
            bool GetEof() const override { return Row == 3; }
            void Next() override { ++Row; }
            TMemorySession& Session;
            int Row = 0;
        };
        return std::make_unique<TMemoryQuery>(*this);
    }
    void SetBusyCursor(bool busy) override { Busy = busy; }

    struct TMemoryDatabase : TDatabase {
        bool GetConnected() const override { return Connected; }
        bool Connected = true;
    } Database;
    std::map<std::string, std::vector<TDBFieldInfo>> Tables = {
        {"customers", {{"custno", 0, ftInteger}, {"place", 8, ftUnknown}}},
        {"old.dbf", {{"x", 4, ftString}}}};
    std::string Asked;
    int ColumnCount = 3;
    int FailingRow = -1;
    bool Opened = false;
    bool Busy = false;
};

std::string TakeAsked(TMemorySession& session) {
    return std::exchange(session.Asked, {});
}

} // namespace

TEST(DatabaseProvider, WithoutASessionItReachesNothingAndSaysSo) {
    TVBDEInfo info;
    info.SetDatabaseName("shop");
    TStringList names("kept\n");
    EXPECT_THROW(info.GetTableNames(names), EVDBInfoError);
    info.GetDatabaseNames(names);
    EXPECT_TRUE(names.Empty());
    EXPECT_TRUE(info.GetConnected());
}

TEST(DatabaseProvider, ReadsTablesAndKeepsTheFieldsOfTheLastOne) {
    TMemorySession session;
    TVBDEInfo info;
    info.SetDatabaseName("shop");
    TStringList names;
    info.GetTableNames(names);
    EXPECT_EQ(names.GetText(), "customers\nold.dbf\n");
    EXPECT_EQ(TakeAsked(session), "shop *.*\n");

    const TDBFieldList& fields = info.GetFieldList("customers");
    ASSERT_EQ(fields.Count(), 2);
    EXPECT_EQ(fields.FindByName("CUSTNO")->DataType, ftInteger);
    EXPECT_EQ(fields.GetItem(1).DataType, ftString); // a type that nobody knows
    EXPECT_EQ(fields.GetItem(1).Size, 8);
    info.SetDatabaseName("shop");
    info.GetFieldList("customers");
    EXPECT_EQ(TakeAsked(session), "shop/customers\n");
    info.SetDatabaseName("Shop");
    info.GetFieldList("customers");
    EXPECT_EQ(TakeAsked(session), "Shop/customers\n");

    EXPECT_EQ(info.GetFieldList("old").Count(), 1);
    EXPECT_EQ(TakeAsked(session), "Shop/old\nShop/old.dbf\n");
    EXPECT_EQ(MessageOf<Exception>([&] { info.GetFieldList("gone"); }), "no table gone.dbf");
    EXPECT_EQ(info.GetFieldList("gone").Count(), 0); // asked for once is known to be empty
    info.Update();
    EXPECT_THROW(info.GetFieldList("gone"), Exception);
}

TEST(DatabaseProvider, IsConnectedUnlessAnOpenDatabaseSaysNo) {
    TMemorySession session;
    TVBDEInfo info;
    info.SetDatabaseName("shop");
    EXPECT_TRUE(info.GetConnected());
    session.Opened = true;
    EXPECT_TRUE(info.GetConnected());
    session.Database.Connected = false;
    EXPECT_FALSE(info.GetConnected());
}

TEST(DatabaseProvider, ValueListsEndQuietlyAtAFailure) {
    TMemorySession session;
    TVBDEInfo info;
    info.SetDatabaseName("shop");
    TStringList values("old\n"), captions;
    info.GetSQLValues("select a\nfrom b", values, captions);
    EXPECT_EQ(TakeAsked(session), "shop: select a\nfrom b\n");
    EXPECT_EQ(values.GetText(), "0.0\n1.0\n2.0\n");
    EXPECT_EQ(captions.GetText(), "0.1\n1.1\n2.1\n");
    EXPECT_EQ(info.GetLastError(), "");

    session.FailingRow = 1; // between the two texts of a row
    info.GetSQLValues("select", values, captions);
    EXPECT_EQ(values.GetText(), "0.0\n1.0\n");
    EXPECT_EQ(captions.GetText(), "0.1\n");
    EXPECT_EQ(info.GetLastError(), "connection lost");

    session.ColumnCount = 1;
    info.GetSQLValues("select", values, captions);
    EXPECT_TRUE(values.Empty() && captions.Empty());
    EXPECT_EQ(info.GetLastError(), "Field count must be >= 2");
    info.GetSQLValues("throw 7", values, captions); // not even an exception's class is known
    EXPECT_EQ(info.GetLastError(), "Unknown error");
    info.GetSQLValues("", values, captions);
    EXPECT_EQ(info.GetLastError(), "empty query");
    EXPECT_FALSE(session.Busy);
}

TEST(DatabaseProvider, ItsSettingsTravelWithTheModel) {
    TMemorySession session;
    TVBDEInfo info;
    info.SetDatabaseName("shop");
    TStringList settings("Other=1\n");
    info.SaveInfo(settings);
    EXPECT_EQ(settings.GetText(), "Other=1\nDatabaseName=shop\n");
    for (const char* const nothing : {"", "DatabaseName=\n", "Database=x\n"}) {
        TStringList lines(nothing);
        info.LoadInfo(lines);
        EXPECT_EQ(info.GetDatabaseName(), "shop");
        EXPECT_EQ(lines.GetText(), nothing);
    }

    TVDBStructure model;
    model.SetDatabaseInfo(&info);
    TStringList text;
    model.SaveToStrings(text);
    TVBDEInfo other;
    TVDBStructure copy;
    copy.LoadFromStrings(text);
    copy.SetDatabaseInfo(&other);
    EXPECT_EQ(other.GetDatabaseName(), "shop");
    other.SetDatabaseName("elsewhere");
    copy.SetDatabaseInfo(&other); // it is this one already, so what it was told since stays
    EXPECT_EQ(other.GetDatabaseName(), "elsewhere");
}

TEST(DatabaseProvider, GivesAModelItsTablesThenLinksThenFields) {
    TMemorySession session;
    session.Tables.erase("old.dbf");
    session.Tables["orders"] = {{"custno", 0, ftInteger}};
    TVBDEInfo info;
    info.SetDatabaseName("shop");
    info.OnLinksRequest = [&](TVDBInfo& sender, TStringList& links) {
        EXPECT_EQ(&sender, &info);
        session.Asked += "links\n";
        links.SetText("orders-customers:custno=custno\n");
    };
    TVDBStructure model;
    model.SetDatabaseInfo(&info);
    model.RetriveDataModelInfo();
    EXPECT_EQ(session.Asked, "shop *.*\nlinks\nshop/customers\nshop/orders\n");
    ASSERT_EQ(model.GetLinkCount(), 1);
    EXPECT_EQ(model.GetLink(0)->GetDisplayName(), "orders.custno->customers.custno");
    ASSERT_EQ(model.GetFieldCount(), 3);
    EXPECT_EQ(model.GetField(2)->GetFullName(), "orders.custno");
}
