// Datasets, the model that makes itself from one, and filters over rows.
#include "lumora/lumora.h"
#include "lumora/metadata/Vdsstruc.h"
#include "lumora/platform/filter_expression.h"
#include "lumora/platform/form_text.h"
#include "tests/memory_dataset.h"
#include "tests/message_of.h"

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <random>

using namespace lumora;
using namespace lumora::tests;

namespace {

// --- The model of a dataset.

std::string Templates(const TVDatasetStructure& model) {
    std::string text;
    for (const char* const name : {"StartsWith", "NotStartsWith", "Contains", "NotContains", "Between",
                                   "NotBetween", "InList", "NotInList"})
        if (const TDSOperator* const op = model.OperatorByName(name))
            text.append(op->GetSQLName()) += '\n';
    return text;
}

TEST(DatasetModel, HasTheVisibleDataAndLookUpFields) {
    TOrders orders;
    TVDatasetStructure model;
    model.SetDataSet(&orders.DataSet);
    model.SetDataSetName("Orders 1");
    model.SetActive(true);

    ASSERT_EQ(model.GetTableCount(), 1);
    const TDSTable& table = *model.GetTable(0);
    EXPECT_EQ(table.GetName() + "|" + table.GetDisplayName() + "|" + table.GetAlias(), "Orders 1|Orders 1|");
    EXPECT_EQ(model.GetDefaultMainTable(), &table);
    std::string fields;
    for (int i = 0; i < model.GetFieldCount(); ++i) {
        const TDSField& field = *model.GetField(i);
        fields += std::to_string(field.GetID()) + ' ' + field.GetSQLExpr() + ' ' + field.GetDisplayName() +
                  ' ' + std::string(EnumName(field.FieldType)) + ' ' + std::to_string(field.FieldSize) + ' ' +
                  std::string(EnumName(field.GetEditType())) + ' ' + (field.UIR ? "1" : "0") + ' ' +
                  std::to_string(field.GetOperatCount()) + '\n';
    }
    EXPECT_EQ(fields, "1 orderno Number ftInteger 0 etAuto 1 11\n"
                      "3 \"Order Date\" Order Date ftDate 0 etAuto 1 11\n"
                      "5 \"custno\" the customer ftLargeint 0 etList 1 11\n"
                      "6 picture picture ftBlob 0 etAuto 0 0\n"
                      "7 note note ftString 20 etAuto 1 15\n");
    EXPECT_EQ(model.GetRootGroup().Fields.size(), 5u);
}

TEST(DatasetModel, LeavesBinaryColumnsToNobody) {
    TMemoryDataSet rows;
    std::string binary;
    for (int type = 0; type < EnumCount<TFieldType>; ++type)
        rows.AddField(std::string(EnumName(static_cast<TFieldType>(type))), static_cast<TFieldType>(type));
    TVDatasetStructure model;
    model.SetDataSet(&rows);
    model.SetActive(true);
    ASSERT_EQ(model.GetFieldCount(), EnumCount<TFieldType>);
    for (int i = 0; i < model.GetFieldCount(); ++i)
        if (!model.GetField(i)->UIR)
            binary += model.GetField(i)->GetFieldText() + " ";
    EXPECT_EQ(binary, "ftVarBytes ftBlob ftTypedBinary ");
}

TEST(DatasetModel, ChangesFiveTemplatesWithTheSyntax) {
    TOrders orders;
    TVDatasetStructure model;
    model.SetDataSet(&orders.DataSet);
    model.SetActive(true);
    const std::string rest = "NOT (@f between '@1' and '@2')\n@f in (@1)\nNOT (@f in (@1))\n";
    const std::string standard = "@f = '@1*'\n@f <> '@1*'\n@f = '*@1*'\n@f <> '*@1*'\n"
                                 "@f >= '@1' and @f <= '@2'\n" +
                                 rest;
    EXPECT_EQ(Templates(model), standard);
    model.OperatorByName("Contains")->DisplayName = "holds";
    model.SetFilterSyntax(fsSQLLike);
    EXPECT_EQ(Templates(model), "@f LIKE '@1%'\n@f NOT LIKE '@1%'\n@f LIKE '%@1%'\n@f NOT LIKE '%@1%'\n"
                                "@f BETWEEN '@1' and '@2'\n" +
                                    rest);
    EXPECT_EQ(model.OperatorByName("Contains")->DisplayName, "holds");
    model.SetFilterSyntax(fsStandard);
    model.SetExOperators({xoBetween, xoStartsWith});
    EXPECT_EQ(Templates(model), "@f = '@1*'\n@f <> '@1*'\n@f >= '@1' and @f <= '@2'\n"
                                "NOT (@f between '@1' and '@2')\n");
    model.SetExOperators(AllExOperators); // makes operators anew
    EXPECT_EQ(Templates(model), standard);
}

TEST(DatasetModel, IsFilledFromAnOpenDatasetOnly) {
    TVDatasetStructure model;
    const auto fill = [&] { model.SetActive(true); };
    EXPECT_EQ(MessageOf<EVDatasetStructureError>(fill), "DataSet is not specified");
    EXPECT_FALSE(model.GetActive());
    {
        TOrders orders;
        model.SetDataSet(&orders.DataSet);
        model.SetActive(true);
        orders.DataSet.Open = false;
        try {
            model.FillStructure();
            FAIL();
        } catch (const EVDatasetStructureError& error) {
            EXPECT_EQ(error.Code, dsseDataSetNotOpened);
            EXPECT_STREQ(error.what(), "DataSet is not opened");
        }
        EXPECT_FALSE(model.GetActive());
        EXPECT_EQ(model.GetFieldCount(), 5);
    }
    EXPECT_EQ(model.GetDataSet(), nullptr); // its end clears the reference and leaves the model
    EXPECT_EQ(model.GetFieldCount(), 5);
    model.FieldByID(5)->GetValueEditor()->Refresh(); // its field has gone
}

TEST(DatasetModel, TellsOfItsContentAfterAFill) {
    TOrders orders;
    TVDatasetStructure model;
    model.SetDataSet(&orders.DataSet);
    std::string notices;
    model.OnChange = [&](TVCustomDBStructure&) { notices += std::to_string(model.GetFieldCount()) + ' '; };
    model.SetActive(true);
    orders.DataSet.AddField("more", ftString);
    model.ReloadStructure();
    EXPECT_EQ(notices, "5 6 ");
    EXPECT_TRUE(model.GetActive());
    model.SetActive(false);
    EXPECT_EQ(model.GetTableCount(), 0);
    EXPECT_EQ(std::exchange(notices, {}), "5 6 0 ");

    TField& odd = orders.DataSet.AddField("odd", ftString);
    odd.FieldKind = fkLookup;
    odd.KeyFields = "nowhere";
    EXPECT_EQ(MessageOf<EDatabaseError>([&] { model.FillStructure(); }), "Field 'nowhere' not found");
    EXPECT_TRUE(model.IsUpdating()) << "the update has not ended";
    EXPECT_EQ(notices, "");
    odd.KeyFields = "note";
    model.SetActive(true); // ends it
    EXPECT_FALSE(model.IsUpdating());
    EXPECT_EQ(std::exchange(notices, {}), "7 ");
    model.BeginUpdate(); // the host's own goes on
    model.FillStructure();
    EXPECT_TRUE(model.IsUpdating());
    model.EndUpdate();
    EXPECT_FALSE(model.IsUpdating());
    orders.DataSet.Open = false;
    EXPECT_THROW(model.ReloadStructure(), EVDatasetStructureError);
    EXPECT_EQ(notices, "0 ") << "what was cleared before";
}

TEST(DatasetModel, KeepsTheRowsOfPanels) {
    TOrders orders;
    TVDatasetStructure model;
    model.SetDataSet(&orders.DataSet);
    model.SetActive(true);
    TVQueryPanel panel;
    panel.SetDbStruct(&model);
    panel.SetSQLOptions({});
    panel.Activate();
    panel.ManualAddCond(*panel.GetRootBracket(), model.FieldByID(7), model.OperatorByName("StartsWith"), "x");
    panel.ManualAddCond(*panel.GetRootBracket(), model.FieldByID(5), model.OperatorByName("Equal"), "7");
    const auto filter = [&] {
        panel.BuildQuery();
        return panel.GetQResult().Conditions().GetText();
    };
    const std::string expected = " (\nnote = 'x*' AND\n\"custno\" = 7\n)\n";
    EXPECT_EQ(filter(), expected);
    model.FillStructure();
    EXPECT_EQ(filter(), expected);
    model.ReloadStructure();
    EXPECT_EQ(filter(), expected);
    model.SetFilterSyntax(fsSQLLike);
    panel.SetStrict(true);
    EXPECT_EQ(filter(), " (\nnote LIKE 'x%' AND\n\"custno\" = 7\n)\n");
}

TEST(DatasetModel, IsReadFromAFormAndFilledWhenAllIsThere) {
    RegisterComponentClass("TVDatasetStructure",
                           [](TComponent* owner) -> TComponent* { return new TVDatasetStructure(owner); });
    RegisterComponentClass("TMemoryDataSet", [](TComponent* owner) -> TComponent* {
        auto* const made = new TMemoryDataSet(owner);
        made->AddField("note", ftString, 20);
        return made;
    });
    const std::string text = "object Form: TComponent\n"
                             "  object Model: TVDatasetStructure\n"
                             "    Active = True\n"
                             "    FilterSyntax = fsSQLLike\n"
                             "    DataSet = Rows\n"
                             "    DataSetName = 'Notes'\n"
                             "  end\n"
                             "  object Rows: TMemoryDataSet\n"
                             "  end\n"
                             "end\n";
    TComponent form;
    ReadFormText(text, form);
    auto& model = dynamic_cast<TVDatasetStructure&>(*form.FindComponent("Model"));
    EXPECT_TRUE(model.GetActive());
    EXPECT_EQ(model.GetTable(0)->GetName(), "Notes");
    EXPECT_EQ(model.OperatorByName("Contains")->GetSQLName(), "@f LIKE '%@1%'");
    EXPECT_EQ(WriteFormText(form), text);
    delete form.FindComponent("Rows");
    EXPECT_EQ(model.GetDataSet(), nullptr);
    EXPECT_EQ(model.GetFieldCount(), 1);
}

TEST(LookupEditor, OffersTheKeysAndLeavesTheRow) {
    TOrders orders;
    TVDatasetStructure model;
    model.SetDataSet(&orders.DataSet);
    model.SetActive(true);
    auto& editor = dynamic_cast<TDSLookupFieldEditor&>(*model.FieldByID(5)->GetValueEditor());
    editor.Items.Add("old");
    editor.Refresh();
    EXPECT_EQ(editor.Items.GetText() + editor.Values.GetText(), "Ada\nBob\n7\n9\n");
    EXPECT_EQ(orders.Customers.Row, 1u);

    orders.Customers.BadRow = 1;
    EXPECT_EQ(MessageOf<EDatabaseError>([&] { editor.Refresh(); }), "The row cannot be read");
    EXPECT_EQ(orders.Customers.Row, 1u);
    editor.GetField()->SetLookupDataSet(nullptr);
    EXPECT_EQ(MessageOf<EDatabaseError>([&] { editor.Refresh(); }),
              "Field 'the customer' has no look-up dataset");
    orders.DataSet.ClearFields();
    EXPECT_EQ(editor.GetField(), nullptr);
    editor.Refresh();
}

TEST(DataSet, ForgetsALookUpDatasetThatGoes) {
    TMemoryDataSet dataSet;
    TField& field = dataSet.AddField("a", ftString);
    {
        TMemoryDataSet other;
        field.SetLookupDataSet(&other);
    }
    EXPECT_EQ(field.GetLookupDataSet(), nullptr);
    EXPECT_EQ(dataSet.FindField("A"), &field);
    EXPECT_EQ(MessageOf<EListError>([&] { dataSet.GetField(1); }), "Field index out of bounds (1)");
    dataSet.Open = false;
    EXPECT_EQ(MessageOf<EDatabaseError>([&] { field.GetAsString(); }), "The dataset is not open");
    dataSet.SetName("Rows");
    EXPECT_EQ(MessageOf<EDatabaseError>([&] { field.GetAsString(); }), "The dataset Rows is not open");
    EXPECT_EQ(dataSet.FindField("b"), nullptr);
}

TEST(DataSet, PassesNoticesOnToWhatItOwnsAsOthersDo) {
    struct TOwned : TComponent {
        using TComponent::TComponent;
        void Notification(TComponent*, TOperation operation) override {
            Notices += operation == opRemove ? '-' : '+';
        }
        std::string Notices;
    };
    TComponent form;
    std::vector<TOwned*> owned;
    for (TComponent* const owner : std::initializer_list<TComponent*>{
             new TMemoryDataSet(&form), new TVDatasetStructure(&form), new TVQueryPanel(&form)})
        owned.push_back(new TOwned(owner));
    delete new TComponent(&form);
    for (std::size_t i = 0; i < owned.size(); ++i)
        EXPECT_EQ(owned[i]->Notices, "-") << i;
}

// --- Filters.

class TRow : public TFilterValueSource {
public:
    TFilterValue Value(int column) const override { return Values.at(static_cast<std::size_t>(column)); }

    static const std::vector<TFilterColumn>& Columns() {
        static const std::vector<TFilterColumn> columns = {
            {"name", ftString},   {"age", ftInteger}, {"paid", ftBoolean},     {"born", ftDate},
            {"seen", ftDateTime}, {"at", ftTime},     {"Unit Price", ftFloat}, {"any", ftUnknown},
            {"gone", ftString},   {"day", ftDate}};
        return columns;
    }
    std::vector<TFilterValue> Values = {TFilterValue::OfText("Über*mut"),
                                        TFilterValue::OfInteger(9007199254740993),
                                        TFilterValue::OfBoolean(true),
                                        TFilterValue::OfDate(36955), // 2001-03-05
                                        TFilterValue::OfDateTime(36955, 37800000),
                                        TFilterValue::OfTime(37800000),
                                        TFilterValue::OfNumber(2.5),
                                        TFilterValue::OfText("12"),
                                        TFilterValue(),
                                        TFilterValue::OfText("2001-03-05")};
};

// "t", "f" or "u".
std::string Truth(const std::string& text, const TFilterOptions& options = {}) {
    try {
        TFilterExpression filter(text, options);
        filter.Bind(TRow::Columns());
        return std::string(1, "fut"[filter.Evaluate(TRow())]);
    } catch (const EFilterError& error) {
        return error.what();
    }
}

TEST(Filter, ComparesByTheColumnsType) {
    const std::map<std::string, std::string> truths = {
        {"name = 'Über*mut'", "t"},
        {"NAME <> 'x'", "t"},
        {"[name] > 'U'", "t"},
        {"\"Unit Price\" = '2.50'", "t"},
        {"[Unit Price] >= 2.5e0", "t"},
        {"-3 < [unit price]", "t"},
        {"age = 9007199254740993", "t"},
        {"age = '9007199254740992'", "f"},
        {"paid = 'True'", "t"},
        {"paid <> 1", "f"},
        {"paid = false", "f"},
        {"paid = 'FALSE' or paid = '0' or paid <> ' 1 '", "f"},
        {"born = '2001-03-05'", "t"},
        {"born = '2001-03-05 01:00'", "f"},
        {"seen > '2001-03-05'", "t"},
        {"seen = '2001-03-05 10:30'", "t"},
        {"at = '10:30'", "t"},
        {"at between '09:00' and '10:29'", "f"},
        {"born < seen", "t"},
        {"day = born", "t"},
        {"any < name", "t"},
        {"any > 9", "t"},
        {"any > '9'", "f"},
        {"any = '1*'", "t"},
        {"people.name = 'Ü*'", "t"},
        {"age in (1, '9007199254740993')", "t"},
        {"name not in ('a', 'b')", "t"},
        {"name in ('a', null)", "u"},
        {"age like '9007%3'", "t"},
        {"any = 'x' or any > 'x'", "f"},
        {"born = at", "u"},
        {"born > age", "u"},
        {"paid < born", "u"},
        {"  ", "t"},
        {"'1' = 1", "t"},
        {"age <= 9007199254740993 and age >= 9007199254740993 and 3 < age and 3 <= age and 3 != age", "t"},
        {"age < 9007199254740993 or age > 9007199254740993 or 3 > age or 3 >= age or 3 = age", "f"},
        {"'it''s' > 'it' and 'it''s' < 'it('", "t"},
        {"age > true and paid = 2 and not name = true", "t"},
        {"born like '2001-03-05' and seen like '%-05 10:30:00' and at like '10:30%'", "t"},
        {"paid like 'T%' and [Unit Price] like '2.5' and age like '%93'", "t"},
    };
    for (const auto& [text, truth] : truths)
        EXPECT_EQ(Truth(text), truth) << text;
}

TEST(Filter, KnowsThreeTruths) {
    const std::map<std::string, std::string> truths = {
        {"gone is null", "t"},
        {"gone is not null", "f"},
        {"name is not null", "t"},
        {"gone = ''", "u"},
        {"not gone = 'a*'", "u"},
        {"gone = null or age > 1", "t"},
        {"gone = 'x' and age < 1", "f"},
        {"age > 1 and gone like '%'", "u"},
        {"gone not between 'a' and 'b'", "u"},
        {"not not not age > 1", "f"},
        {"age < 1 and gone = 'x' or age > 1", "t"},
        {"age > 1 or age > 1 and age < 1", "t"},
        {"not (age > 1 or\r\n age < 1) or (((paid = 1)))", "t"},
        {"not age < 1 and not age < 1", "t"},
    };
    for (const auto& [text, truth] : truths)
        EXPECT_EQ(Truth(text), truth) << text;
}

TEST(Filter, MatchesWildcardsWhereTheyHaveAMeaning) {
    const std::map<std::string, std::string> truths = {{"name = 'Ü*'", "t"},
                                                       {"name = '*mut'", "t"},
                                                       {"name = '*ber*m*'", "t"},
                                                       {"name <> '*x*'", "t"},
                                                       {"name = 'x*'", "f"},
                                                       {"name = '*'", "t"},
                                                       {"name = 'Über*mut*'", "t"},
                                                       {"name = 'über*'", "f"},
                                                       {"name in ('Ü*')", "f"},
                                                       {"name in ('Über*mut')", "t"},
                                                       {"name like 'Über*m__'", "t"},
                                                       {"name like '_ber%'", "t"},
                                                       {"name like '___er%'", "f"},
                                                       {"name not like '%*%'", "f"},
                                                       {"name like 'Über!*%' escape '!'", "t"},
                                                       {"name like '%!%' escape '!'", "f"}};
    for (const auto& [text, truth] : truths)
        EXPECT_EQ(Truth(text), truth) << text;
    TFilterOptions options;
    options.CaseInsensitive = true;
    EXPECT_EQ(Truth("name = 'ÜBER*MU*'", options), "t");
    EXPECT_EQ(Truth("name > 'ÜBER*MUS'", options), "t");
    EXPECT_EQ(Truth("name in ('ÜBER*MUT')", options), "t");
    EXPECT_EQ(Truth("name > 'ÜBER*MU' and name < 'ÜBER*MUT!'", options), "t");
    options.NoPartialCompare = true;
    EXPECT_EQ(Truth("name = 'ÜBER*MU*'", options), "f");
    EXPECT_EQ(Truth("name = 'ÜBER*MUT'", options), "t");
}

TEST(Filter, ReadsDatesByItsMasks) {
    TFilterOptions options;
    options.DateMask = "dd.mm.yyyy";
    EXPECT_EQ(Truth("born = '05.03.2001'", options), "t");
    EXPECT_EQ(Truth("born = '10:30'", options),
              "\"10:30\" is not a date, as the column \"born\" has it, at position 8");
}

TEST(Filter, KnowsTimesBeforeTheFirstDay) {
    TFilterExpression filter(
        "seen = '1899-12-29 06:00' and seen like '1899-12-29 06:00%' and at = '06:00' and "
        "born < '1899-12-30' and born > '1899-12-28'");
    filter.Bind(TRow::Columns());
    TRow row;
    row.Values[4] = row.Values[5] = TFilterValue::OfDateTime(-1, 21600000);
    row.Values[3] = TFilterValue::OfDate(-1);
    EXPECT_TRUE(filter.Accepts(row));
}

TEST(Filter, SaysWhatIsWrongAndWhere) {
    const std::map<std::string, std::string> errors = {
        {"", "t"},
        {"name", "A comparison is expected at the end, at position 5"},
        {"näme = 'a'", "Unknown column \"näme\" at position 1"},
        {"name = 'ä' and age = 'x1'", "\"x1\" is not a number, as the column \"age\" has it, at position 22"},
        {"age = '1*'", "\"1*\" is not a number, as the column \"age\" has it, at position 7"},
        {"paid = 'maybe'", "\"maybe\" is not a boolean, as the column \"paid\" has it, at position 8"},
        {"age = 1 age = 2", "\"and\" or \"or\" is expected, not age, at position 9"},
        {"(age = 1", "( is not closed, at position 1"},
        {"age = 1)", ") has no (, at position 8"},
        {"name = 'abc", "' is not closed, at position 8"},
        {"[name = 'abc'", "[ is not closed, at position 1"},
        {"age = 12abc", "\"12abc\" is not a number, at position 7"},
        {"age = :Param1", "A filter has no parameters, but there is one at position 7"},
        {"age in ()", "A value is expected, not ), at position 9"},
        {"age not = 1", "\"in\", \"between\" or \"like\" is expected, not =, at position 9"},
        {"age = ; 1", "\";\" does not belong into a filter, at position 7"},
        {"name like age", "A pattern in quotes is expected, not age, at position 11"},
        {"and", "A condition is expected, not and, at position 1"},
        {"name is 5", "\"null\" is expected, not 5, at position 9"},
        {"age between 1 or 2", "\"and\" is expected, not or, at position 15"},
        {"age in 1", "\"(\" is expected, not 1, at position 8"},
        {"age in (1 2)", "\",\" or \")\" is expected, not 2, at position 11"},
        {"age = -x", "A number is expected, not x, at position 8"},
        {"name like 'a' escape 'bb'", "One character in quotes is expected, not 'bb', at position 22"},
        {"age " + std::string(41, 'x'),
         "A comparison is expected, not " + std::string(40, 'x') + "..., at position 5"},
    };
    for (const auto& [text, message] : errors)
        EXPECT_EQ(Truth(text), message) << text;
    EXPECT_EQ(MessageOf<EFilterError>([] { TFilterExpression("a = 1").Evaluate(TRow()); }),
              "The filter has not been bound to columns, among them \"a\" at position 1");
}

TEST(Filter, KnowsWhichNamesNeedNoQuotes) {
    for (const char* const name : {"a", "_1", "$x", "#2", "\xC3\xA4", "Order9", "android"})
        EXPECT_TRUE(IsFilterName(name)) << name;
    for (const char* const name : {"", "1a", "AND", "like", "a b", "a.b", "a-b", "[a]", "a'"})
        EXPECT_FALSE(IsFilterName(name)) << name;
}

TEST(Filter, KeepsItsBindingWhenAnotherFails) {
    TFilterExpression filter("age > 1");
    filter.Bind(TRow::Columns());
    EXPECT_THROW(filter.Bind({}), EFilterError);
    EXPECT_TRUE(filter.Accepts(TRow()));
}

TEST(Filter, IsNotWornDownByItsText) {
    const std::string open(MaxFilterNesting, '(');
    const std::string close(MaxFilterNesting, ')');
    EXPECT_EQ(Truth(open + "age > 1" + close), "t");
    EXPECT_EQ(Truth("(" + open + "age > 1" + close + ")"),
              "The filter nests too deep, at position " + std::to_string(MaxFilterNesting + 1));
    std::string list = "age in (0";
    for (int i = 1; i < 50000; ++i)
        list += "," + std::to_string(i);
    EXPECT_EQ(Truth(list + ")"), "f");

    std::string pattern;
    for (int i = 0; i < 2000; ++i)
        pattern += "*a";
    TFilterExpression filter("name = '" + pattern + "*b'");
    filter.Bind(TRow::Columns());
    TRow row;
    row.Values[0] = TFilterValue::OfText(std::string(20000, 'a'));
    EXPECT_FALSE(filter.Accepts(row));
}

// A pattern, tried in every way.
bool MatchesSlowly(std::string_view pattern, std::string_view text) {
    if (pattern.empty())
        return text.empty();
    if (pattern[0] == '%')
        return MatchesSlowly(pattern.substr(1), text) ||
               (!text.empty() && MatchesSlowly(pattern, text.substr(1)));
    return !text.empty() && (pattern[0] == '_' || pattern[0] == text[0]) &&
           MatchesSlowly(pattern.substr(1), text.substr(1));
}

TEST(Filter, MatchesAnyPatternAsTryingEveryWayDoes) {
    std::mt19937 random(7);
    const auto text = [&](std::string_view letters, unsigned length) {
        std::string made;
        for (auto i = random() % length; i > 0; --i)
            made += letters[random() % letters.size()];
        return made;
    };
    int matches = 0;
    for (int i = 0; i < 20000; ++i) {
        const std::string pattern = text("ab%_%", 8);
        const std::string subject = text("ab", 10);
        const bool expected = MatchesSlowly(pattern, subject);
        matches += expected;
        ASSERT_EQ(TFilterPattern::OfLike(pattern, 0, false).Matches(subject), expected)
            << pattern << " " << subject;
    }
    EXPECT_GT(matches, 1000);
}

} // namespace
