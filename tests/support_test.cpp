#include "lumora/model/Vdbstruc.h"
#include "lumora/platform/convert.h"
#include "lumora/platform/filter_expression.h"
#include "lumora/platform/form_text.h"
#include "lumora/platform/formats.h"
#include "lumora/platform/properties.h"
#include "lumora/platform/string_grid.h"
#include "lumora/platform/text_file.h"
#include "lumora/querybase/Vqrybase.h"
#include "lumora/sqlparse/Vscanner.h"
#include "lumora/sqlparse/Vsqlpars.h"
#include "lumora/support/Vstrings.h"
#include "lumora/titles/titles_merge.h"

#include <gtest/gtest.h>

#include <functional>
#include <vector>

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
    EXPECT_EQ(XStrToInt("-99999999999"), -2147483647 - 1);
    EXPECT_EQ(XStrToInt("+5") + XStrToInt("-3;"), 2);
    EXPECT_EQ(XStrToInt("-", 7), 7);
    EXPECT_EQ(XStrToFloat(" 3.5 "), 3.5);
    EXPECT_EQ(XStrToFloat("3,5", 1.1), 1.1);
    for (const char* const text : {"True", " YES ", "y", "t", "-1", "2x"})
        EXPECT_TRUE(XStrToBool(text)) << text;
    for (const char* const text : {"", "0", "no", "false", "truely", "x1"})
        EXPECT_FALSE(XStrToBool(text)) << text;
    EXPECT_EQ(ReplaceTextNoCase("aXbxc", "x", "--"), "a--b--c");
    EXPECT_EQ(QuoteText("a]b", '[', ']'), "[a]]b]");
    EXPECT_EQ(FindWholeWord("sum(o.price2)+o.price", "o.price"), 14u);
    EXPECT_EQ(FindWholeWord("a_x xb x9 \xC3\xA4x x", "x"), 14u);
    EXPECT_EQ(FindWholeWord("x", ""), std::string::npos);
    EXPECT_EQ(FoldBlanks(" A .\tb"), "a.b");
}

TEST(Scanner, SplitsSQLIntoTokens) {
    TVScanner scanner("Select a.\"b \"\"c\", 'it''s' || 1.5e-3--x\n/* y\n */<>@p");
    std::string tokens;
    for (; !scanner.AtEnd(); scanner.Next())
        tokens.append(scanner.Token().Text).append("|");
    EXPECT_EQ(tokens, "Select|a|.|\"b \"\"c\"|,|'it''s'||||1.5e-3|<>|@p|");
    EXPECT_EQ(scanner.Token().Line, 3);
    tokens.clear();
    for (TVScanner pairs("a=|b>|<=>=!=!<|||-/*"); !pairs.AtEnd(); pairs.Next())
        tokens.append(pairs.Token().Text).append(" ");
    EXPECT_EQ(tokens, "a = | b > | <= >= != ! < || | - /* ");
    EXPECT_EQ(TVScanner("'open").Token().Kind, tkUnclosed);
    EXPECT_EQ(TVScanner("/* open").Token().Kind, tkUnclosed);
    EXPECT_EQ(TVScanner("").Token().Kind, tkEnd);
}

TEST(Errors, HaveOneBase) {
    TStringGrid grid(2, 3);
    TStringList lines("a\n");
    TDBFieldList fields;
    TVParserResult parsed;
    TVDBStructure model;
    TVQueryBase base;
    const std::vector<std::function<void()>> failures = {
        [&] { grid.Cell(2, 0); },
        [&] { grid.Cell(0, 3); },
        [&] { grid.Cell(-1, 1); },
        [&] { static_cast<void>(lines[1]); },
        [&] { lines.Insert(2, ""); },
        [&] { static_cast<void>(TStringList().Last()); },
        [&] { fields.GetItem(0); },
        [&] { parsed.ResultFields.GetItem(0); },
        [&] { base.GetQuery(-1); },
        [&] { model.GetComponent(0); },
        [&] { model.GetField(0); },
        [&] { StrToInt("9999999999"); },
        [&] { StrToDateTime("soon"); },
        [&] { model.SetName("1"); },
        [&] { model.Assign(base); },
        [&] { model.FindProperty("ExOperators")->Write(model, std::string("xoBetween")); },
        [&] { model.SetStructString("[Main]\nVersion=3.5\nFieldCount=1\n[Field:1]\nFieldSize=1e9\n"); },
        [&] { ReadFormText("object", model); },
        [&] { ReadTextFile("/nowhere"); },
        [&] { TFilterExpression("a = = b"); },
    };
    for (std::size_t i = 0; i < failures.size(); ++i)
        EXPECT_THROW(failures[i](), Exception) << "failure " << i;
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
    TStringList again;
    LoadTitlesFromStrings(result, again, result);
    EXPECT_EQ(again, result);
    // Titles in place of the defaults have as many lines, so a query text does not grow.
    LayTitlesOver(defaults, result, TStringList("[RFETitles]\nttlAll=alles\n"));
    EXPECT_EQ(result.GetText(),
              "[Query Panel]\nttlAll=all\nttlAny=any\n\n[Result Fields Editor]\nttlAll=alles\n");
    LayTitlesOver(result, again, result);
    EXPECT_EQ(again, result);
    LoadTitlesFromStrings(TStringList("a=1\nb=2\n"), result, TStringList("[S]\nb=zwei\nc=3\n"));
    EXPECT_EQ(result.GetText(), "a=1\nb=zwei\n");
}
