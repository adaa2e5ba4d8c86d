#include "lumora/sqlparse/Vscanner.h"
#include "lumora/support/Vstrings.h"
#include "lumora/titles/titles_merge.h"

#include <gtest/gtest.h>

using namespace lumora;

TEST(SectionReader, ReadsForwardAndKeepsItsPlace) {
    const TStringList lines("[A]\nx=1\n\n [b] \ny=2\ny=3\n \n[A]\nx=9\n");
    TStringList values;
    int at = XReadSLSectionValues(0, lines, "a", values);
    EXPECT_EQ(at, 3);
    EXPECT_EQ(values.GetText(), "x=1\n");
    EXPECT_EQ(XReadSLSectionValues(at, lines, "C", values), at);
    EXPECT_TRUE(values.Empty());
    EXPECT_EQ(XReadSLSectionValues(at, lines, "B", values), 7);
    EXPECT_EQ(XReadSLSectionValues(at, lines, "A", values), 9);

    const TSectionIndex sections(lines);
    int position = 0;
    EXPECT_EQ(sections.Read("B", position).Value("Y"), "2"); // the first of two lines with one key
    EXPECT_EQ(position, 2);
    EXPECT_EQ(sections.Read("A", position).Value("x"), "9");
    EXPECT_TRUE(sections.Read("A", position).Empty());
    EXPECT_EQ(sections.Read("A").Value("x"), "1");
}

TEST(Strings, AreReadTolerantly) {
    EXPECT_EQ(XStrToInt(" 12abc"), 12);
    EXPECT_EQ(XStrToInt("abc", 7), 7);
    EXPECT_EQ(XStrToInt("99999999999"), 2147483647);
    EXPECT_EQ(XStrToFloat("3.5"), 3.5);
    EXPECT_EQ(XStrToFloat("3,5", 1.1), 1.1);
    EXPECT_TRUE(XStrToBool("True"));
    EXPECT_FALSE(XStrToBool("0"));
    EXPECT_EQ(ReplaceTextNoCase("aXbxc", "x", "--"), "a--b--c");
    EXPECT_EQ(QuoteText("a]b", '[', ']'), "[a]]b]");
    EXPECT_EQ(FindWholeWord("sum(o.price2)+o.price", "o.price"), 14u);
    EXPECT_EQ(FoldBlanks(" A .\tb"), "a.b");
}

TEST(Scanner, SplitsSQLIntoTokens) {
    TVScanner scanner("Select a.\"b \"\"c\", 'it''s' || 1.5e-3--x\n/* y\n */<>@p");
    std::string tokens;
    for (; !scanner.AtEnd(); scanner.Next())
        tokens.append(scanner.Token().Text).append("|");
    EXPECT_EQ(tokens, "Select|a|.|\"b \"\"c\"|,|'it''s'||||1.5e-3|<>|@p|");
    EXPECT_EQ(scanner.Token().Line, 3);
    EXPECT_EQ(TVScanner("'open").Token().Kind, tkUnclosed);
    EXPECT_EQ(TVScanner("/* open").Token().Kind, tkUnclosed);
    EXPECT_EQ(TVScanner("").Token().Kind, tkEnd);
}

TEST(TitlesMerge, LaysTextsOverDefaults) {
    const TStringList defaults(
        "[Query Panel]\nttlAll=all\nttlAny=any\n\n[Result Fields Editor]\nttlAll=everything\n");
    TStringList result;
    LoadTitlesFromStrings(
        defaults, result,
        TStringList("[RFETitles]\nttlAll=alles\n[Other]\nx=y\n[PanelTitles]\nttlAny=\nttlAll=tous\n"
                    "ttlNew=1\n"));
    EXPECT_EQ(result.GetText(),
              "[Query Panel]\nttlAll=tous\nttlAny=any\n\n[Result Fields Editor]\nttlAll=alles\n\n");
    LoadTitlesFromStrings(TStringList("a=1\nb=2\n"), result, TStringList("[S]\nb=zwei\nc=3\n"));
    EXPECT_EQ(result.GetText(), "a=1\nb=zwei\n");
}
