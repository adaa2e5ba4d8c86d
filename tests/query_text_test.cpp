#include "lumora/platform/formats.h"
#include "lumora/titles/default_titles.h"
#include "tests/fixtures.h"

#include <gtest/gtest.h>

#include <random>

using namespace lumora;
using namespace lumora::tests;

namespace {

std::string Saved(TVQueryPanel& panel) {
    TStringList lines;
    panel.SaveToStrings(lines);
    return lines.GetText();
}

void Load(TVQueryPanel& panel, std::string_view text) {
    panel.LoadFromStrings(TStringList(text));
}

// A query with one of everything; the titles are left out.
void FillQuery(TShop& shop) {
    shop.Model.AddCondition(8, "Placed after @", "orders.placed > '@1'")->Values[0].SetDataType(ftDateTime);
    const int sub = shop.Model.AddOperator("InSub", "is in", "@f in (@1)", "", LmUsedTypes);
    shop.Model.GetOperator(sub)->ValueKind = vkSubQuery;
    shop.Panel.SetSaveTitles(false);
    shop.Panel.SetQueryName("One = [two]");
    shop.Panel.SetDescription(TStringList("first\n\nlast\n\n"));
    shop.Panel.SetUserData(TStringList("k=v\n"));
    shop.Select("orders.amount", "Total")->SetSorting(stDescending);
    shop.Root().SetLinkType(fltNotAll);
    shop.Where("customers.since", "Between", "2001-03-05", "")->SetCaption(1, "in March");
    TFilterBracket& bracket = *shop.Panel.AddBracket(shop.Root());
    bracket.SetLinkType(fltAny);
    shop.Where("customers.company", "Contains", "x", "", &bracket)->SetValueIsParam(1, true);
    shop.Panel.GetQResult().GetParam(0)->Name = "Word";
    shop.Panel.GetQResult().GetParam(0)->ValueFormat = "%@v%";
    shop.Where("orders.placed", "Between", "2001-03-05 14:30:00", "2001-03-06", &bracket)->SetEnabled(false);
    shop.Where("lines.at", "InList", "14:30:00,09:00:00", "", &bracket);
    shop.Panel.AddCustomCondition(bracket, *shop.Model.ConditionByID(8))->SetValue(1, "2001-03-05");
    TSimpleCond* const in = shop.Where("orders.amount", "InSub", "select amount from orders");
    in->SetHint("select amount\nfrom orders");
    in->SetSubQuery(TStringList("[Main]\nQueryName=a \"b\", c\n\n"));
    in->SetSubQueryOptions({soSelectDistinct, soBracketJoins});
}

} // namespace

TEST(QueryText, DoesNotGrowWhenItIsReadAndWritten) {
    TShop shop;
    const std::string fresh = Saved(shop.Panel);
    EXPECT_NE(fresh.find("ttlAVERAGECaption=AVERAGE\n\n[Main]"), std::string::npos);
    Load(shop.Panel, fresh);
    EXPECT_EQ(Saved(shop.Panel), fresh);
    shop.Panel.SetTitles(TStringList());
    EXPECT_EQ(Saved(shop.Panel), fresh);
    EXPECT_EQ(shop.Panel.GetTitles(), shop.Panel.GetDefTitles());
}

TEST(QueryText, ReadsBackWhole) {
    TShop shop;
    FillQuery(shop);
    const std::string text = Saved(shop.Panel);
    const std::string sql = shop.SQL();
    int changes = 0, paramChanges = 0;
    shop.Panel.OnChange = [&](TVQueryPanel&) { ++changes; };
    shop.Panel.OnParamListChange = [&](TVQueryPanel&) { ++paramChanges; };
    Load(shop.Panel, text);
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(paramChanges, 1);
    EXPECT_TRUE(shop.Panel.GetActive());
    EXPECT_EQ(Saved(shop.Panel), text);
    EXPECT_EQ(shop.SQL(), sql);
    const auto value = [&](const char* id, int k) {
        return static_cast<TFilterCond*>(shop.Root().RowByID(id))->GetValue(k);
    };
    EXPECT_EQ(value("2.2.", 1), "2001-03-05 14:30:00");
    EXPECT_EQ(value("2.2.", 2), "2001-03-06");
    EXPECT_EQ(value("2.3.", 1), "14:30:00,09:00:00");
    EXPECT_EQ(value("1.", 2), "");
    EXPECT_EQ(static_cast<TFilterCond*>(shop.Root().RowByID("3."))->GetHint(), "select amount\nfrom orders");
    EXPECT_EQ(shop.Root().RowByID("2.9."), nullptr);
    TFilterCond& between = *static_cast<TFilterCond*>(shop.Root().RowByID("2.2."));
    std::string value1, value2;
    shop.Panel.SaveValues(between, value1, value2);
    EXPECT_EQ(value1.substr(0, 8) + "|" + value2, "36955.60|36956");
    shop.Panel.LoadValues("36957", "36958.25", between);
    EXPECT_EQ(between.GetValue(1) + "|" + between.GetValue(2), "2001-03-07|2001-03-08 06:00:00");
    FormatSettings().ShortDateFormat = "d mmmm yyyy";
    Load(shop.Panel, text);
    EXPECT_EQ(value("1.", 1), "5 03 2001");
    FormatSettings().ShortDateFormat = "yyyy-mm-dd";
}

TEST(QueryText, KeepsEnabledAsWritten) {
    TShop shop;
    Load(shop.Panel, "[Main]\nVersion=3.5\n[Row]\nEnabled=0\nRowType=1\nLinkType=0\nRowCount=1\n"
                     "[Row1.]\nEnabled=1\nRowType=1\nLinkType=0\nRowCount=1\n"
                     "[Row1.1.]\nRowType=0\nEnabled=0\nFieldID=1\nOperator=Equal\nValue1=1\n");
    EXPECT_FALSE(shop.Root().GetEnabled());
    EXPECT_TRUE(shop.Root().GetRow(0)->GetEnabled());
    EXPECT_FALSE(shop.Root().RowByID("1.1.")->GetEnabled());
}

TEST(QueryText, CarriesTitlesAndOptions) {
    TShop shop;
    EXPECT_EQ(Saved(shop.Panel).find("[Query Panel]\nttlFilter=Choose records where @"), 0u);
    EXPECT_EQ(DefaultTitles().Count(), 52);
    EXPECT_EQ(shop.Panel.GetTitles(), DefaultTitles());
    shop.Panel.SetTitle("ttlAll", "alle");
    shop.Panel.SetTitle("ttlUnknown", "x");
    shop.Panel.SetSaveSQLOptions(true);
    shop.Panel.SetSQLOptions(
        {soSelectDistinct, soQuoteAliases, soBracketConditions, soSortByNames, soASCIIRFields});
    const std::string text = Saved(shop.Panel);
    EXPECT_NE(text.find("\nOptions=42\n"), std::string::npos);
    shop.Panel.SetSQLOptions({soBracketJoins});
    shop.Panel.SetTitle("ttlAll", "tous");
    Load(shop.Panel, text);
    EXPECT_EQ(shop.Panel.GetTitle("ttlAll"), "alle");
    EXPECT_EQ(shop.Panel.GetTitle("ttlUnknown"), "");
    EXPECT_EQ(shop.Panel.GetSQLOptions(),
              (TSQLOptions{soSelectDistinct, soQuoteAliases, soBracketConditions}));
    const std::string again = Saved(shop.Panel);
    Load(shop.Panel, again);
    EXPECT_EQ(Saved(shop.Panel), again);
    Load(shop.Panel,
         "[Main]\nVersion=3.5\nOptions=\n"); // empty: the options stay, the titles are the defaults
    EXPECT_EQ(shop.Panel.GetSQLOptions(),
              (TSQLOptions{soSelectDistinct, soQuoteAliases, soBracketConditions}));
    EXPECT_EQ(shop.Panel.GetTitle("ttlAll"), "all");
    // Titles that cannot head an active panel do not hide the error that ended the reading.
    EXPECT_THROW(
        Load(shop.Panel, "[Query Panel]\nttlFilter=no place\n[Main]\nVersion=3.5\n[Row]\nRowType=x\n"),
        EConvertError);
    EXPECT_FALSE(shop.Panel.GetActive());
}

TEST(QueryText, KeepsFourOptionsAsBits) {
    for (int bits = 0; bits < 128; ++bits)
        EXPECT_EQ(SQLOptionsToInt(IntToSQLOptions(bits)), bits & (2 | 8 | 16 | 32)) << bits;
    EXPECT_EQ(IntToSQLOptions(2), TSQLOptions{soSelectDistinct});
    EXPECT_EQ(IntToSQLOptions(8), TSQLOptions{soQuoteAliases});
    EXPECT_EQ(IntToSQLOptions(16), TSQLOptions{soBracketJoins});
    EXPECT_EQ(IntToSQLOptions(32), TSQLOptions{soBracketConditions});
    EXPECT_EQ(SQLOptionsToInt({soASCIIRFields, soSortByNames}), 0);
}

TEST(QueryText, OfOlderVersions) {
    TShop shop;
    shop.Panel.SetUserData(TStringList("kept\n"));
    Load(shop.Panel, "[Main]\nQueryName=old\n");
    EXPECT_EQ(shop.Panel.GetVersion(), 1.1);
    EXPECT_EQ(shop.Panel.GetUserData().GetText(), "kept\n");
    // The text after an old one is asked for the old form of titles, whatever its own version.
    Load(shop.Panel, "[Titles]\nTitle2=tous\nTitle20= \n[Main]\nVersion=3.5\n");
    EXPECT_EQ(shop.Panel.GetTitle("ttlAll"), "tous");
    // From 2.2 on titles have keys.
    Load(shop.Panel, "[Titles]\nTitle1= \nTitle2=alle\n[Main]\nVersion=2.1\n");
    Load(shop.Panel, "[Titles]\nTitle1= \nTitle2=todos\n[Query Panel]\nttlAll=alle\n[Main]\nVersion=2.2\n");
    EXPECT_EQ(shop.Panel.GetTitle("ttlAll"), "todos");
    Load(shop.Panel, "[Titles]\nTitle1= \nTitle2=tutti\n[PanelTitles]\nttlAll=alle\n[Main]\nVersion=2.2\n");
    EXPECT_EQ(shop.Panel.GetTitle("ttlAll"), "alle");
    shop.Panel.SetSaveTitles(false); // the text keeps its own
    Load(shop.Panel, "[Query Panel]\nttlAll=todos\n[Main]\nVersion=2.2\n");
    EXPECT_EQ(shop.Panel.GetTitle("ttlAll"), "alle");
}

// Old titles stand in an order of their own; four of them mean nothing any more, nor do those behind.
TEST(QueryText, TakesOldTitlesByTheirPlace) {
    const std::string keys[] = {"ttlFilter",
                                "ttlBracket",
                                "ttlAll",
                                "ttlAny",
                                "ttlNone",
                                "ttlNotAll",
                                "ttlAddBracket",
                                "ttlAddCond",
                                "ttlDelRow",
                                "ttlFields",
                                "ttlResFields",
                                "ttlMakeFldHint",
                                "ttlDelFldHint",
                                "",
                                "ttlNotSorted",
                                "ttlAscending",
                                "ttlDescending",
                                "ttlSortCaption",
                                "",
                                "",
                                "",
                                "",
                                ""};
    TStringList positional, numbered, wanted(DefaultTitles());
    for (std::size_t i = 0; i < std::size(keys); ++i) {
        const std::string number = std::to_string(i);
        positional.Add(i == 3 ? "  " : " @" + number + " ");
        numbered.Add("Title" + number + "= " + (i == 3 ? "" : "@" + number));
        if (const int line = wanted.IndexOfName(keys[i]); !keys[i].empty() && i != 3)
            wanted.Put(line, keys[i] + "=@" + number);
    }
    TVQueryPanel panel;
    panel.MergeDFMTitles(positional);
    EXPECT_EQ(panel.GetTitles().GetText(), wanted.GetText());
    panel.SetTitles({});
    panel.LoadOldTitlesFromStrings(numbered);
    EXPECT_EQ(panel.GetTitles().GetText(), wanted.GetText());
    // The number of lines counts, not how the last of them is called.
    panel.SetTitles({});
    panel.LoadOldTitlesFromStrings(TStringList("Title2=tous\nTitle3=rien\n"));
    EXPECT_EQ(panel.GetTitle("ttlAll") + panel.GetTitle("ttlAny"), "tousany");
}

TEST(QueryText, NeedsNoPanel) {
    TShop shop;
    TVQuery query;
    query.SetDbStruct(&shop.Model);
    query.SetSQLOptions({});
    ReadSQL(query, TStringList("select customers.company as Firm from customers "
                               "where customers.since > '2001-03-05' or customers.company in ('a','b')"));
    const std::string sql = "SELECT customers.company as Firm\nFROM customers\nWHERE\n (\n"
                            "customers.since >'2001-03-05' OR\ncustomers.company in ('a','b')\n)\n";
    query.BuildQuery();
    EXPECT_EQ(query.GetQResult().GetSQL().GetText(), sql);
    EXPECT_EQ(query.GetRootBracket()->GetLinkType(), fltAny);
    query.SetQueryName("alone");
    TStringList text, again;
    WriteQueryText(query, text);
    EXPECT_EQ(text[0], "[Main]"); // it knows no titles
    EXPECT_FALSE(query.GetModified());
    TVQuery copy(shop.Model);
    copy.SetSQLOptions({});
    ReadQueryText(copy, text);
    EXPECT_EQ(copy.GetQueryName(), "alone");
    WriteQueryText(copy, again);
    EXPECT_EQ(again.GetText(), text.GetText());
    copy.BuildQuery();
    EXPECT_EQ(copy.GetQResult().GetSQL().GetText(), sql);
    // The panel reads the same.
    shop.Panel.LoadFromStrings(text);
    EXPECT_EQ(shop.SQL(), sql);
}

TEST(QueryText, FailsWithAnErrorAndAnIdlePanel) {
    TShop shop;
    int changes = 0;
    shop.Panel.OnChange = [&](TVQueryPanel&) { ++changes; };
    const auto refusal = [&](const std::string& rows) {
        return MessageOf<Exception>([&] { Load(shop.Panel, "[Main]\nVersion=3.5\n" + rows); });
    };
    EXPECT_EQ(refusal("[Row]\nRowType=one\n"), "\"one\" is not a valid integer value");
    const std::string root = "[Row]\nRowType=1\nLinkType=0\nRowCount=2000000000\n";
    EXPECT_EQ(refusal(root + "[Row1.]\nRowType=2\nCondID=99\n"), "Unrecognized condition 99");
    EXPECT_EQ(refusal(root + "[Row1.]\nRowType=0\nFieldID=x\n"), "\"x\" is not a valid integer value");
    EXPECT_EQ(shop.Panel.GetState(), stIdle);
    EXPECT_TRUE(shop.Panel.GetActive());
    EXPECT_EQ(changes, 0);
    EXPECT_EQ(refusal(root + "[Row7.]\nRowType=0\nFieldID=1\nOperator=Equal\n"),
              ""); // missing rows are no rows
    EXPECT_EQ(shop.Root().GetRowCount(), 1);
    shop.Where("customers.since", "Equal", "soon");
    EXPECT_THROW(Saved(shop.Panel), EConvertError);
    EXPECT_EQ(shop.Panel.GetState(), stIdle);

    std::string deep, name;
    for (int level = 0; level < 10'000; ++level) {
        if (level < 3000)
            deep += "[Row" + name + "]\nRowType=1\nLinkType=0\nRowCount=1\n";
        name += "1.";
    }
    EXPECT_EQ(refusal(deep), "Brackets are nested too deep (more than 2000 levels)");
    shop.Select("orders.amount");
    EXPECT_EQ(shop.SQL(), "SELECT orders.amount\nFROM orders\n");
    Load(shop.Panel, "");
    EXPECT_TRUE(shop.Panel.GetEmpty());
    shop.Panel.SetDbStruct(nullptr);
    EXPECT_EQ(refusal(""), "DBStructure is not specified");
}

TEST(QueryText, DamagedTextsGiveAResultOrAnError) {
    TShop shop;
    FillQuery(shop);
    const std::string text = Saved(shop.Panel);
    std::mt19937 random(5);
    for (int round = 0; round < 400; ++round) {
        std::string damaged = text;
        for (auto changes = random() % 12; changes > 0; --changes) {
            const std::size_t at = random() % damaged.size();
            if (random() % 3)
                damaged[at] = static_cast<char>(random());
            else
                damaged.erase(at, random() % 30);
        }
        if (!MessageOf<Exception>([&] { Load(shop.Panel, damaged); }).empty())
            continue;
        std::string once;
        if (MessageOf<Exception>([&] { once = Saved(shop.Panel); }).empty()) {
            Load(shop.Panel, once);
            EXPECT_EQ(Saved(shop.Panel), once) << damaged;
        }
    }
}

TEST(QueryText, KeepsOfAStrictQueryHowExactlyMomentsAreSaid) {
    TShop shop;
    shop.Panel.SetStrict(true);
    const char* const moments[] = {"2001-03-05", "2001-03-05 00:00:00", "2001-03-05 14:30:15.250"};
    for (const char* const moment : moments)
        shop.Where("orders.placed", "LessOrEqual", moment);
    shop.Where("orders.placed", "InList", std::string(moments[1]) + "," + moments[2]);
    shop.Where("lines.at", "Equal", "09:00:00.125");
    const std::string text = Saved(shop.Panel);
    EXPECT_NE(text.find("Value1=36955\n"), std::string::npos);
    EXPECT_NE(text.find("Value1=36955.0\n"), std::string::npos);
    Load(shop.Panel, text);
    for (int i = 0; i < 5; ++i) {
        const std::string values[] = {moments[0], moments[1], moments[2],
                                      std::string(moments[1]) + "," + moments[2], "09:00:00.125"};
        EXPECT_EQ(static_cast<TSimpleCond*>(shop.Root().GetRow(i))->GetValue(1), values[i]);
    }
    shop.Panel.SetStrict(false); // a plain one writes and shows what it always did
    EXPECT_EQ(Saved(shop.Panel).find("36955.0\n"), std::string::npos);
    Load(shop.Panel, text);
    EXPECT_EQ(static_cast<TSimpleCond*>(shop.Root().GetRow(1))->GetValue(1), "2001-03-05");
}

TEST(QueryText, KeepsBreaksAndBlanksOfAStrictQuerysValues) {
    TShop shop;
    const std::string odd = " two\\n\nlines\r\n ";
    shop.Where("customers.company", "Between", odd, "b");
    EXPECT_EQ(Saved(shop.Panel).find("Needs="), std::string::npos); // a plain one has blanks for them
    shop.Panel.SetStrict(true);
    const std::string text = Saved(shop.Panel);
    EXPECT_NE(text.find("Needs=Breaks\n"), std::string::npos);
    Load(shop.Panel, text);
    EXPECT_EQ(static_cast<TSimpleCond*>(shop.Root().GetRow(0))->GetValue(1), odd);
    EXPECT_EQ(static_cast<TSimpleCond*>(shop.Root().GetRow(0))->GetValue(2), "b");
    EXPECT_EQ(Saved(shop.Panel), text);
}
