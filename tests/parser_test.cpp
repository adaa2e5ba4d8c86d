#include "lumora/sqlparse/Vsqlpars.h"
#include "lumora/sqlparse/parse_tree_text.h"
#include "tests/fixtures.h"

#include <gtest/gtest.h>

using namespace lumora;
using namespace lumora::tests;

namespace {

std::string Tree(std::string_view sql, bool strict = false) {
    TVSQLParser parser;
    parser.SetStrict(strict);
    parser.SetSQLText(sql);
    parser.Parse();
    TStringList lines;
    ParseTreeToStrings(parser.GetResult(), lines);
    return lines.GetText();
}

// The lines of the WHERE tree of a condition text.
std::string Where(const std::string& condition) {
    const std::string tree = Tree("select * from t where " + condition);
    return tree.substr(tree.find("bracket"));
}

std::string Error(std::string_view sql, bool strict = false) {
    return MessageOf<ESQLParserError>([&] { Tree(sql, strict); });
}

} // namespace

TEST(Parser, ReadsAllClauses) {
    EXPECT_EQ(
        Tree("SELECT DISTINCT o.amount AS Total, f(a.b, 'x,y')\n\t* -- twice\n 2, \"a b\".c as \"My "
             "\"\"Alias\" "
             "from (orders o\n LEFT OUTER JOIN s.\"Order Lines\" AS l ON o.id = l.id and (l.x = 1)) "
             "inner join t on 1=1, other where o.amount > 5 group by o.amount, a.b order by 2 desc, 1;"),
        "distinct=1\nall=0\n"
        "field expr=<o.amount> name=<amount> alias=<Total> sorting=1 order=2\n"
        "field expr=<f(a.b, 'x,y') * 2> name=<f(a.b, 'x,y') * 2> alias=<> sorting=2 order=1\n"
        "field expr=<\"a b\".c> name=<c> alias=<My \"Alias> sorting=0 order=0\n"
        "table name=<orders> alias=<o>\ntable name=<s.Order Lines> alias=<l>\n"
        "table name=<t> alias=<t>\ntable name=<other> alias=<other>\n"
        "bracket and\n  cond neg=0 sub=0 left=<o.amount> op=<>> value=<5>\n");
    EXPECT_EQ(Tree("select * from t order by name, x.y desc"),
              "distinct=0\nall=1\nfield expr=<name> name=<name> alias=<> sorting=1 order=1\n"
              "field expr=<x.y> name=<y> alias=<> sorting=2 order=2\ntable name=<t> alias=<t>\nbracket \n");
    // The expression that is sorted by may be written with other blanks; what is no clause ends the
    // statement.
    EXPECT_NE(Tree("select a . b, left(x,1) from t order by A.B limit 3")
                  .find("expr=<a . b> name=< b> alias=<> sorting=1"),
              std::string::npos);
    EXPECT_EQ(Tree("select a b from t x union select 1 from u").find("distinct=0\nall=0\nfield expr=<a b>"),
              0u);
}

TEST(Parser, BuildsTheWhereTree) {
    EXPECT_EQ(Where("(a = 1)"), "bracket and\n  cond neg=0 sub=0 left=<a> op=<=> value=<1>\n");
    EXPECT_EQ(Where("a=1 and (b <> 2 or (c like 'x%'))"),
              "bracket and\n  cond neg=0 sub=0 left=<a> op=<=> value=<1>\n  bracket or\n"
              "    cond neg=0 sub=0 left=<b> op=<<>> value=<2>\n    cond neg=0 sub=0 left=<c> op=<like> "
              "value=<'x%'>\n");
    EXPECT_EQ(
        Where("a = 1 or b = 2 and c = 3"),
        "bracket or\n  cond neg=0 sub=0 left=<a> op=<=> value=<1>\n  bracket and\n"
        "    cond neg=0 sub=0 left=<b> op=<=> value=<2>\n    cond neg=0 sub=0 left=<c> op=<=> value=<3>\n");
    for (const char* const sql :
         {"not a like 'x%'", "a not like 'x%'", "not not a NOT Like 'x%'", "not (a like 'x%')"})
        EXPECT_EQ(Where(sql), "bracket and\n  cond neg=1 sub=0 left=<a> op=<like> value=<'x%'>\n") << sql;
    EXPECT_EQ(Where("not a not like 'x'"),
              "bracket and\n  cond neg=0 sub=0 left=<a> op=<like> value=<'x'>\n");
    EXPECT_EQ(Where("(a + b) * 2 BETWEEN f(1,2) AND \"x\""),
              "bracket and\n  cond neg=0 sub=0 left=<(a + b) * 2> op=<between> value=<f(1,2) and 'x'>\n");
    EXPECT_EQ(Where("a is not null and b in (1, 'it''s') or c in (select x from y where z = 1) limit 7"),
              "bracket or\n  bracket and\n    cond neg=0 sub=0 left=<a> op=<is> value=<not null>\n"
              "    cond neg=0 sub=0 left=<b> op=<in> value=<(1, 'it''s')>\n"
              "  cond neg=0 sub=1 left=<c> op=<in> value=<(select x from y where z = 1)>\n");
    EXPECT_EQ(Where("case when a = 1 then 'and' else b end <= left(c, 2) and t.order != 1 group by a.b"),
              "bracket and\n"
              "  cond neg=0 sub=0 left=<case when a = 1 then 'and' else b end> op=<<=> value=<left(c, 2)>\n"
              "  cond neg=0 sub=0 left=<t.order> op=<!=> value=<1>\n");
}

// What closes before a comparison begins no group, but a left side, and any word then is its operator.
TEST(Parser, TakesParenthesesWithoutAComparisonAsAValue) {
    EXPECT_EQ(Where("(a) and b = 1"), "bracket and\n  cond neg=0 sub=0 left=<(a)> op=<and> value=<b>\n");
    EXPECT_EQ(Where("(a) <= 1"), "bracket and\n  cond neg=0 sub=0 left=<(a)> op=<<=> value=<1>\n");
}

TEST(Parser, BracketsOfOneNodeCanBeTakenOut) {
    TSQLBracket root, outer, inner, pair;
    TSQLCondition one, two, three;
    root.AddNode(&outer);
    outer.AddNode(&inner);
    inner.AddNode(&one);
    root.AddNode(&pair);
    pair.AddNode(&two);
    pair.AddNode(&three);
    root.DeleteEmptyBrackets();
    EXPECT_EQ(root.GetFirst(), &one);
    EXPECT_EQ(one.GetParent(), &root);
    EXPECT_EQ(one.GetNext(), &pair);
    EXPECT_EQ(pair.GetCount(), 2);
}

TEST(Parser, KeepsMoreWhenStrict) {
    EXPECT_EQ(
        Tree("select * from t where not (a = 1 and b = 2)", true),
        "distinct=0\nall=1\ntable name=<t> alias=<t>\nbracket and\n  not bracket and\n"
        "    cond neg=0 sub=0 left=<a> op=<=> value=<1>\n    cond neg=0 sub=0 left=<b> op=<=> value=<2>\n");
    TVSQLParser parser;
    parser.SetStrict(true);
    parser.SetSQLText(
        "select a.x, sum(b.y) as s from a WITH NOLOCK left outer join b with (x, y) on (a.i=b.i)\n"
        "where not (not (a.x = 1 or a.x = 2)) group by a.x order by SUM(b.y) desc, a.x;");
    parser.Parse();
    const TVParserResult& result = parser.GetResult();
    ASSERT_EQ(result.Joins.size(), 1u);
    EXPECT_EQ(result.Joins[0].Kind, swLeft);
    EXPECT_EQ(static_cast<TSQLCondition*>(result.Joins[0].Condition->GetFirst())->Left, "a.i");
    EXPECT_EQ(result.GroupBy[0].Text, "a.x");
    ASSERT_EQ(result.OrderBy.size(), 2u);
    EXPECT_EQ(result.OrderBy[0].Text, "SUM(b.y)");
    EXPECT_TRUE(result.OrderBy[0].Descending);
    EXPECT_EQ(result.OrderBy[1].Place.Line, 2);
    EXPECT_EQ(result.RootBracket->Operator, "or"); // twice negated is not negated
    EXPECT_FALSE(result.RootBracket->Negated);
    parser.SetSQLText("select a.x from a group by a.x, left(a.y, 2) , a.z + 1;");
    parser.Parse();
    ASSERT_EQ(result.GroupBy.size(), 3u);
    EXPECT_EQ(result.GroupBy[1].Text, "left(a.y, 2)");
    EXPECT_EQ(Error("select a.x from a\nwhere a.x = 1\nhaving 1 = 1", true),
              "\"having\" can not be kept in a query\r\nLine:3");
    EXPECT_EQ(Error("with q as (select 1) select * from q", true),
              "\"with\" can not be kept in a query\r\nLine:1");
    EXPECT_EQ(Error("select rank() over (order by x) from a", true),
              "\"over\" can not be kept in a query\r\nLine:1");
    EXPECT_EQ(Error("select * from a where x = 1 union select * from b", true),
              "\"union\" can not be kept in a query\r\nLine:1");
}

TEST(Parser, ReadsStatementsOfAnySizeOneAfterTheOther) {
    // Longer than what a parser holds without allocating, and with texts that must be put together.
    std::string long_ = "select a.b from t where a.b = 0";
    std::string tree = "bracket and\n  cond neg=0 sub=0 left=<a.b> op=<=> value=<0>\n";
    for (int i = 1; i < 300; ++i) {
        const std::string number = std::to_string(i);
        long_ += " AND a\t. b  BETWEEN " + number + "\nAND \"x\"";
        tree += "  cond neg=0 sub=0 left=<a . b> op=<between> value=<" + number + " and 'x'>\n";
    }
    TVSQLParser parser;
    const auto where = [&parser](const std::string& sql) {
        parser.SetSQLText(sql);
        parser.Parse();
        TStringList lines;
        ParseTreeToStrings(parser.GetResult(), lines);
        return lines.GetText().substr(lines.GetText().find("bracket"));
    };
    const std::string small = "bracket and\n  cond neg=0 sub=0 left=<c> op=<like> value=<1>\n";
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(where("select * from t where c LIKE 1"), small);
        EXPECT_EQ(where(long_), tree);
    }
}

TEST(Parser, KnowsItsWords) {
    for (int word = swNone + 1; word < static_cast<int>(SQLWordCount); ++word) {
        std::string text(SQLWordText(static_cast<TSQLWord>(word)));
        EXPECT_EQ(SQLWordOf(text), word) << text;
        text.front() = static_cast<char>(text.front() - 'a' + 'A');
        EXPECT_EQ(SQLWordOf(text), word) << text;
        EXPECT_EQ(SQLWordOf(text + "s"), swNone) << text;
        text.back() = '_';
        EXPECT_EQ(SQLWordOf(text), swNone) << text;
    }
    for (const char* const other : {"intersecu", "intersec", "a", "customers", "or_", "\xC3\xA9t\xC3\xA9"})
        EXPECT_EQ(SQLWordOf(other), swNone) << other;
}

TEST(Parser, NamesTheLineOfAnError) {
    const std::string wrong = "Wrong SQL statement\r\nLine:";
    EXPECT_EQ(Error(""), wrong + "1");
    EXPECT_EQ(Error("update t\nset x = 1"), wrong + "1");
    EXPECT_EQ(Error("select a\n\n"), wrong + "1"); // the last token's line
    EXPECT_EQ(Error("select a,\n from t"), wrong + "2");
    EXPECT_EQ(Error("select a) from t"), wrong + "1");
    EXPECT_EQ(Error("select * from t\nwhere a"), wrong + "2");
    EXPECT_EQ(Error("select * from t\nwhere a order by a"), wrong + "2");
    EXPECT_EQ(Error("select * from t\nwhere a =\n"), wrong + "2");
    EXPECT_EQ(Error("select * from t where a between 1 or 2"), wrong + "1");
    EXPECT_EQ(Error("select a from t order by 2"), wrong + "1");
    EXPECT_EQ(Error("select a from t order by 1, a"), wrong + "1");
    EXPECT_EQ(Error("select a from t order by b"), wrong + "1");
    EXPECT_EQ(Error("select a from t group by a"), wrong + "1");
    EXPECT_EQ(Error("select a from t left join u"), wrong + "1");
    for (const char* const unclosed : {"'x", "\"x", "b /* x"})
        EXPECT_EQ(Error("select * from t\nwhere a = " + std::string(unclosed)), wrong + "2") << unclosed;
    EXPECT_EQ(Error("select * from t where\n(a = 1\nor b = 2"), "Lost bracket\r\nLine:3");
    EXPECT_EQ(Error("select * from t where not (a = 1 and b = 2)"), "Lost bracket\r\nLine:1");
    EXPECT_EQ(Error("select * from t where a in (select 1"), "Lost bracket\r\nLine:1");

    const auto nested = [](int depth) {
        return "select * from t where\n" + std::string(static_cast<std::size_t>(depth), '(') + "a = 1" +
               std::string(static_cast<std::size_t>(depth), ')');
    };
    EXPECT_EQ(Error(nested(MaxSQLNesting)), "");
    EXPECT_EQ(Error(nested(MaxSQLNesting + 1)), wrong + "2");
    EXPECT_EQ(Error(nested(1'000'000)), wrong + "2");
}

// Each gives a tree (nothing) or an error, plainly and strictly.
TEST(Parser, TakesStatementsAsPeopleWriteThem) {
    struct TCase {
        const char* SQL;
        const char* Plain;
        const char* Strict;
    };
    static const TCase cases[] = {
        {"SELECT\n*\nFROM\nCustomers\nWHERE\nCity='Oslo'\n;", "", ""},
        {"select c.name n, c.id from main.customers as c", "", ""},
        {"select \"First name\", [x] from \"my table\" t where t.\"First name\" <> ''", "", ""},
        {"select count(*), max(a.b)+1, case when a.x>1 then 'y' else 'n' end as z from a", "", ""},
        {"select coalesce(nullif(trim(a.b), ''), 'none') as b from a -- why\n/* and\nhow */ where a.c in "
         "(1,2,3)",
         "", ""},
        {"select a.b from a where a.c in (select x from y where not exists (select 1 from z))", "", ""},
        {"select a.b from a where not exists (select 1 from z)", "Wrong SQL statement 1", ""},
        {"select a.b from a where not a.c is null and not (a.d between 1 and 2)", "", ""},
        {"select a.b from a where not (not (a.c = 1)) or not a.d in (1)", "", ""},
        {"select a.b from a where (a.c = 1 and (a.d = 2 or (a.e = 3 and a.f = 4)))", "", ""},
        {"select a.b from a left join b on a.x = b.x and a.y = b.y\nright outer join c on b.z=c.z", "", ""},
        {"select a.b from a cross join b", "Wrong SQL statement 1", ""},
        {"select a.b from a join b using (x)", "Wrong SQL statement 1",
         "\"using\" can not be kept in a query 1"},
        {"select a.b from (select x from y) q", "Wrong SQL statement 1",
         "Expected a table name before \"select\" 1"},
        {"select a.b from a group by a.b\nhaving count(*) > 1", "",
         "\"having\" can not be kept in a query 2"},
        {"select a.b from a where a.c = 1\nunion all\nselect 1 from b", "",
         "\"union\" can not be kept in a query 2"},
        {"select a.b from a order by a.b desc\nlimit 10", "", "\"limit\" can not be kept in a query 2"},
        {"select a.b from a; delete from a", "", "\"delete\" can not be kept in a query 1"},
        {"select top 5 a.b from a", "", ""},
        {"select a.b from a where a.c == 1", "Wrong SQL statement 1", ""},
        {"select a.b from a where", "Wrong SQL statement 1", "Expected a condition at the end 1"},
        {"insert into a values (1)", "Wrong SQL statement 1", "Expected SELECT before \"insert\" 1"},
    };
    const auto shown = [](std::string error) {
        const std::size_t line = error.find("\r\nLine:");
        return line == std::string::npos ? error : error.replace(line, 7, " ");
    };
    for (const TCase& statement : cases) {
        EXPECT_EQ(shown(Error(statement.SQL)), statement.Plain) << statement.SQL;
        EXPECT_EQ(shown(Error(statement.SQL, true)), statement.Strict) << statement.SQL;
    }
}
