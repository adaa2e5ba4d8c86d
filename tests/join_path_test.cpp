#include "tests/fixtures.h"

#include <gtest/gtest.h>

#include <random>

using namespace lumora;
using namespace lumora::tests;

namespace {

std::string Names(const TDSPath& path) {
    std::string text;
    for (int i = 0; i < path.GetTableCount(); ++i)
        text += path.GetTable(i)->GetAlias();
    return text;
}

void AddTables(TVDBStructure& model, int count) {
    for (int i = 0; i < count; ++i)
        model.AddTable(std::string(1, static_cast<char>('A' + i)), "");
}

void Link(TVDBStructure& model, int from, int to) {
    model.AddLinkByRef(std::make_unique<TDSLink>(*model.GetTable(from), *model.GetTable(to)));
}

// The search path by path, as CheckPath steps through it; nothing when there is no chain.
std::string PathByPath(const TVDBStructure& model, int from, int to) {
    TDSTable* const target = model.GetTable(to);
    TDSPathList frontier;
    frontier.push_back(std::make_unique<TDSPath>(nullptr));
    frontier[0]->AddTable(model.GetTable(from));
    while (!frontier.empty()) {
        TDSPathList next;
        for (const auto& path : frontier)
            if (model.CheckPath(*path, target, next)) {
                path->AddTable(target);
                return Names(*path);
            }
        frontier = std::move(next);
    }
    return {};
}

} // namespace

TEST(JoinPath, EqualsTheSearchPathByPath) {
    std::mt19937 random(4711);
    int found = 0, missing = 0;
    for (int round = 0; round < 400; ++round) {
        TVDBStructure model;
        const int tables = 1 + static_cast<int>(random() % 7);
        AddTables(model, tables);
        const int links = static_cast<int>(random() % 12); // self-links, several links and loops included
        for (int i = 0; i < links; ++i)
            Link(model, static_cast<int>(random() % static_cast<unsigned>(tables)),
                 static_cast<int>(random() % static_cast<unsigned>(tables)));
        for (int from = 0; from < tables; ++from)
            for (int to = 0; to < tables; ++to) {
                const std::string expected = PathByPath(model, from, to);
                std::string actual;
                const std::string error = MessageOf<EVDBStructError>(
                    [&] { actual = Names(model.GetPath(*model.GetTable(from), *model.GetTable(to))); });
                ASSERT_EQ(actual, expected) << "from " << from << " to " << to << " in round " << round;
                ASSERT_EQ(error, expected.empty() ? "Can not find path between tables" : "");
                ++(expected.empty() ? missing : found);
            }
    }
    EXPECT_GT(found, 1000);
    EXPECT_GT(missing, 1000);
}

TEST(JoinPath, FollowsChangesOfTheModel) {
    TVDBStructure model;
    AddTables(model, 4);
    Link(model, 0, 1);
    Link(model, 1, 3);
    Link(model, 0, 2);
    Link(model, 2, 3);
    EXPECT_EQ(Names(model.GetPath("a", "D")), "ABD");
    EXPECT_EQ(Names(model.GetPath("A", "A")), "ABA");
    model.DelLink(1);
    EXPECT_EQ(Names(model.GetPath("A", "D")), "ACD");
    const TDSPath& path = model.GetPath("A", "D");
    EXPECT_EQ(MessageOf<EVDBStructError>([&] { static_cast<void>(model.GetPath("A", "X")); }),
              "No such table X");
    EXPECT_EQ(Names(path), "ACD"); // a failure leaves the path as it was
    EXPECT_THROW(path.GetTable(3), EVDBStructError);
    model.DelTable(2);
    EXPECT_THROW(static_cast<void>(model.GetPath("A", "D")), EVDBStructError);
}

TEST(Link, RendersItsCondition) {
    TVDBStructure model;
    model.AddTable("Orders", "");
    model.AddTable("Customer", "");
    model.GetTable(0)->SetAlias("O");
    model.GetTable(1)->SetAlias("C");
    model.AddLinkByExpr("Orders-Customer:CustNo=CustNo,Region=Region");
    TDSLink& link = *model.GetLink(0);
    EXPECT_EQ(link.GetSQLExpr(ssSQL2), "(O.CustNo=C.CustNo) and (O.Region=C.Region)");
    EXPECT_EQ(link.GetDisplayName(), "O.CustNo,Region->C.CustNo,Region");
    link.LinkType = ltOuterLeft;
    EXPECT_EQ(link.GetSQLExpr(ssOracle), "(O.CustNo=C.CustNo (+) ) and (O.Region=C.Region (+) )");
    EXPECT_EQ(link.GetSQLExpr(ssSQL1), "(O.CustNo=C.CustNo) and (O.Region=C.Region)");
    link.LinkType = ltOuterRight;
    link.QuoteFields = true;
    link.Fields1.SetText("a\"b\n");
    EXPECT_EQ(link.GetSQLExpr(ssOracle, nqStrict), "(O.\"a\"\"b\" (+) =C.\"CustNo\")");
    link.Fields1.Clear();
    EXPECT_EQ(link.GetSQLExpr(ssSQL2), "");
    EXPECT_EQ(model.GetTable(1)->LinkByTable(model.GetTable(0)), &link);
    EXPECT_EQ(model.GetTable(1)->LinkByTableAlias("o"), nullptr);
}
