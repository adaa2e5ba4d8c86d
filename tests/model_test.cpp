#include "lumora/platform/properties.h"
#include "lumora/platform/string_grid.h"
#include "tests/fixtures.h"

#include <gtest/gtest.h>

#include <functional>
#include <set>
#include <utility>

using namespace lumora;
using namespace lumora::tests;

TEST(Messages, CarryCodeAndText) {
    TVDBStructure model;
    try {
        model.GetTable(7);
        FAIL();
    } catch (const EVDBStructError& error) {
        EXPECT_EQ(error.Code, dseInvalidTableIndex);
        EXPECT_STREQ(error.what(), "Invalid table index 7");
    }
    EXPECT_EQ(Message(static_cast<TMessageId>(65535)), "Invalid filter title");
    EXPECT_EQ(MessageRecordName(msgCantFindFieldInTbl), "_SDBSECantFindFieldInTbl");
    EXPECT_EQ(StrToFldType(FldTypeToStr(ftGuid)), 35);
    EXPECT_EQ(StrToFldType("ftNothing"), -1);
    SetMessage(msgNoTable, "Pas de table %s");
    EXPECT_EQ(MessageOf<EVDBStructError>([&] { static_cast<void>(model.GetPath("a", "b")); }),
              "Pas de table a");
    SetMessage(msgNoTable, "No such table %s");
}

// Who translates them finds them by number or name.
TEST(Messages, HaveTextsAndNamesOfTheirOwn) {
    std::set<std::string_view> names;
    int unnamed = 0;
    for (int id = msgDeleteGroup; id <= static_cast<int>(msgLinkName); ++id) {
        const auto message = static_cast<TMessageId>(id);
        if (id > 65490 && id < 65504)
            EXPECT_EQ(Message(message), "") << id << " is free";
        else
            EXPECT_NE(Message(message), "") << id;
        const std::string_view name = MessageRecordName(message);
        if (id > 65535 || name.empty())
            unnamed += id <= 65535 && Message(message) != "";
        else
            EXPECT_TRUE(name.starts_with("_S") && names.insert(name).second) << id;
    }
    EXPECT_EQ(unnamed, 4);
    EXPECT_EQ(Message(static_cast<TMessageId>(65520)), "and");
    EXPECT_EQ(FormatText("%s%d%x%", {"a", "b", "c"}), "ab%x%");
}

TEST(Tables, RenderTheirSQL) {
    TVDBStructure model;
    TDSTable& table = *model.GetTable(model.AddTable("Order Items", "Items"));
    EXPECT_EQ(table.GetAlias(), "Order_Items");
    EXPECT_EQ(table.GetSQLExpr(), "Order Items Order_Items");
    table.SetQuoted(true);
    table.SetAlias("OI");
    table.SetHints("NOLOCK");
    EXPECT_EQ(table.GetSQLExpr(), "\"Order Items\" OI WITH NOLOCK");
    model.GetSQLFormats().SetQuoteSymbol1('[');
    model.GetSQLFormats().SetQuoteSymbol2(']');
    table.SetName("a]b");
    table.SetHints("");
    EXPECT_EQ(table.GetSQLExpr(), "[a]b] OI");
    EXPECT_EQ(table.GetSQLExpr(nqStrict), "[a]]b] OI");
    // A name that begins with a double quote counts as quoted; strictly, only when it is quoted well.
    table.SetName("\"s\".\"t\"");
    EXPECT_EQ(table.GetSQLExpr(nqStrict), "\"s\".\"t\" OI");
    table.SetName("\"s\"\"x\"");
    EXPECT_EQ(table.GetSQLExpr(nqStrict), "\"s\"\"x\" OI");
    table.SetName("\"s\" x\"");
    EXPECT_EQ(table.GetSQLExpr(nqStrict), "[\"s\" x\"] OI");
    table.SetName("\"s; drop");
    EXPECT_EQ(table.GetSQLExpr(), "\"s; drop OI");
    EXPECT_EQ(table.GetSQLExpr(nqStrict), "[\"s; drop] OI");
}

TEST(Fields, KnowTheirTablesAndNames) {
    TShop shop;
    TDSField& field = *shop.Field("orders.amount");
    field.SetQuoted(true);
    EXPECT_EQ(field.GetSQLExpr(), "orders.\"amount\"");
    EXPECT_EQ(field.GetFullName(), "orders.amount");
    EXPECT_THROW(field.SetSQLExpr("1"), EVDBStructError);

    shop.Model.GetTable(0)->SetAlias("C");
    const int index =
        shop.Model.AddField(vfkVirtual, "orders.amount * 2 || 'lines.x' || c.Custno", "Twice", nullptr);
    TDSField& twice = *shop.Model.GetField(index);
    EXPECT_EQ(twice.GetTables(), (TDSTableList{shop.Model.GetTable(1), shop.Model.GetTable(0)}));
    EXPECT_EQ(twice.GetReferences(), (std::vector<std::string>{"orders.amount", "c.Custno"}));
    EXPECT_EQ(twice.GetGroupByFields(), "orders.amount,c.Custno");
    EXPECT_EQ(twice.FieldType, ftString);
    EXPECT_THROW(twice.SetFieldName("x"), EVDBStructError);

    shop.Model.GetFieldGroups().AddGroup("Money", &field);
    EXPECT_EQ(field.GetCompoundName(), "Money.amount");
    int at = 0;
    EXPECT_EQ(shop.Model.GetFieldGroups().FindByField(&field, at), field.GetGroup());
    EXPECT_EQ(at, 0);
    shop.Model.GetFieldGroups().Delete(0);
    EXPECT_EQ(shop.Model.GetRootGroup().Fields.back(), &field);
}

TEST(Fields, AreFoundThroughEveryChange) {
    TShop shop;
    TDSField* const amount = shop.Field("orders.amount");
    EXPECT_EQ(shop.Model.FieldByName(fnText, "AMOUNT"), amount);
    EXPECT_EQ(shop.Field("  ORDERS . Amount "), amount);
    shop.Model.GetTable(1)->SetAlias("o");
    EXPECT_EQ(shop.Field("orders.amount"), nullptr);
    EXPECT_EQ(shop.Field("o.amount"), amount);
    int quoteChanges = 0;
    shop.Model.GetSQLFormats().OnQuotesChange = [&] { ++quoteChanges; }; // the host's, not the model's
    amount->SetQuoted(true);
    EXPECT_EQ(shop.Field("o.\"amount\""), amount);
    shop.Model.GetSQLFormats().SetQuoteSymbol1('`');
    shop.Model.GetSQLFormats().SetQuoteSymbol1('`');
    EXPECT_EQ(shop.Field("o.`amount\""), amount);
    EXPECT_EQ(quoteChanges, 1);
    amount->SetFieldName("sum");
    EXPECT_EQ(shop.Model.FieldByName(fnText, "sum"), amount);
    EXPECT_EQ(shop.Model.FieldByName(fnText, "amount"), nullptr);
    amount->SetDisplayName("Total");
    EXPECT_EQ(shop.Model.FieldByName(fnDisplayName, "total"), amount);
    // The first of equal names is found, whichever came to the list when.
    EXPECT_EQ(shop.Model.FieldByName(fnText, "custno")->GetTable(), shop.Model.GetTable(0));
    shop.Model.DelField(0);
    EXPECT_EQ(shop.Model.FieldByName(fnText, "custno")->GetTable(), shop.Model.GetTable(1));
    EXPECT_EQ(shop.Model.FieldByID(1), nullptr);
}

TEST(Fields, TakeIDsTypesAndOperators) {
    TShop shop;
    const int last = shop.Model.GetFieldCount() - 1;
    const int lastID = shop.Model.GetField(last)->GetID();
    shop.Model.DelField(0);
    const int added = shop.Model.AddField(vfkData, "COMPANY", "Firm", shop.Model.GetTable(0));
    EXPECT_EQ(shop.Model.GetField(added)->GetID(), lastID + 1);
    EXPECT_EQ(shop.Model.GetField(added)->FieldSize, 40);
    EXPECT_EQ(shop.Model.GetField(added)->GetDisplayName(), "Firm");
    EXPECT_EQ(shop.Model.GetField(added)->GetFieldText(), "COMPANY");
    shop.Model.DelField(added);
    EXPECT_EQ(shop.Model.GetField(shop.Model.AddField(vfkVirtual, "1", "One", nullptr))->GetID(), lastID + 1);
    EXPECT_EQ(
        MessageOf<EVDBStructError>([&] { shop.Model.AddField(vfkData, "x", "", shop.Model.GetTable(0)); }),
        "Can not find field \"x\" in table \"customers\"");

    TDSField& active = *shop.Field("customers.active");
    EXPECT_EQ(active.GetOperatCount(), 5); // Equal, NotEqual, IsNull and the two lists
    EXPECT_EQ(MessageOf<EVDBStructError>([&] { active.AddOperatorByName("Near"); }),
              "Operator not found: Near");
    active.AddOperatorByName("EqualTo");
    EXPECT_EQ(active.GetOperatCount(), 5);
    active.MoveOperat(0, 4);
    EXPECT_EQ(active.GetOperator(4)->GetName(), "Equal");
    EXPECT_EQ(active.ValueAsString("it's"), "'it''s'");

    shop.Model.SetDatabaseInfo(nullptr);
    EXPECT_EQ(MessageOf<EVDBStructError>([&] { shop.Model.AddField(vfkVirtual, "1", "", nullptr); }),
              "DatabaseInfo is not specified");
}

TEST(Operators, FollowTheirGroups) {
    TVDBStructure model;
    ASSERT_EQ(model.GetOperatCount(), 15);
    EXPECT_EQ(model.OperatorByName("greaterthan")->GetSQLName(), "@f >'@1'");
    EXPECT_EQ(model.OperatorByName("NotInList")->ValueKind, vkList);
    EXPECT_EQ(model.OperatorByName("Between")->ValFormat, "and");
    EXPECT_EQ(model.OperatorByName("Between")->GetParamCount(), 2);
    EXPECT_EQ(model.OperatorByExpr("IN (")->GetName(), "InList");
    model.SetExOperators({xoInList, xoStartsWith, xoBetween});
    EXPECT_EQ(model.OperatorByName("Contains"), nullptr);
    EXPECT_EQ(model.OperatorByName("NotContains"), nullptr);
    model.SetExOperators(AllExOperators);
    EXPECT_EQ(model.GetOperator(14)->GetName(), "NotContains");
    EXPECT_EQ(model.OperatorByName("Contains")->DisplayName, "contains");

    TStringList captions("Equal=ist gleich\nInList=in Liste\nNotInList=nicht in Liste\n");
    model.SetDefOperators(captions);
    model.MergeDefOperators();
    model.UpdateDefOperators();
    EXPECT_EQ(model.OperatorByName("Equal")->DisplayName, "ist gleich");
    EXPECT_EQ(model.OperatorByName("InList")->DisplayName, "in Liste");
    EXPECT_EQ(model.OperatorByName("NotInList")->DisplayName, "is not in list"); // never refreshed here
    EXPECT_EQ(model.GetDefOperator("IsNull"), "is null");

    EXPECT_EQ(SaveAppliedTypes({ftInteger, ftString}), "ftString,ftInteger,");
    EXPECT_EQ(ReadAppliedTypes("ftString,ftInteger,"), (TAppliedTypes{ftInteger, ftString}));
    EXPECT_EQ(ReadAppliedTypes("1,3,40,99,", 1.9), (TAppliedTypes{ftInteger, ftString}));
    EXPECT_EQ(SaveAppliedTypes(ReadAppliedTypes("1,36,39,", 1.9)), "ftString,") << "these have no names";
}

TEST(Operators, OfGroupsThatAreOffGoByHalves) {
    TVDBStructure model;
    const auto names = [&] {
        TStringList list;
        model.GetOperatorNames(list);
        return list.GetCommaText();
    };
    model.SetExOperators({});
    EXPECT_EQ(names(), "Equal,NotEqual,LessThan,LessOrEqual,GreaterThan,GreaterOrEqual,IsNull");
    for (const char* const own : {"InList", "NotInList", "StartsWith", "NotStartsWith", "Contains",
                                  "NotContains", "Between", "NotBetween"})
        model.AddOperator(own, "own", "@f", "", {});
    model.UpdateDefOperators(); // some of the host's operators of these names stay
    EXPECT_TRUE(names().ends_with("IsNull,NotInList,StartsWith,NotStartsWith,NotBetween")) << names();
    EXPECT_EQ(model.OperatorByName("StartsWith")->DisplayName, "own");
    model.UpdateExOperators();
    EXPECT_TRUE(names().ends_with("IsNull")) << names();

    const int index = model.OperatorIndexByName("EQUAL");
    TDSOperator& equal = *model.GetOperator(index);
    equal.ExprType = ftInteger;
    equal.ValueKind = vkSubQuery;
    EXPECT_EQ(model.AddUpdateOperator(true, "equal", "same", "@f == '@1'", "v", {ftDate}), index);
    EXPECT_EQ(equal.GetName() + equal.DisplayName + equal.GetSQLName() + equal.ValFormat,
              "equalsame@f == '@1'v");
    EXPECT_EQ(equal.AppliedTypes, TAppliedTypes{ftDate});
    EXPECT_EQ(equal.ExprType, ftInteger) << "the types of the values stay";
    EXPECT_EQ(equal.ValueKind, vkSubQuery);
    const int added = model.AddUpdateOperator(false, "equal", "second", "", "", {});
    EXPECT_EQ(added, model.GetOperatCount() - 1);
    EXPECT_EQ(model.OperatorByName("Equal"), &equal) << "the first of a name";
    EXPECT_EQ(model.IndexOfOperator(model.GetOperator(added)), added);
    EXPECT_EQ(model.IndexOfOperator(nullptr), -1);
    EXPECT_EQ(model.OperatorByExpr("nowhere"), nullptr);
    TDSOperator fresh;
    EXPECT_EQ(fresh.ExprType, ftUnknown);
    EXPECT_EQ(fresh.AppliedTypes, LmUsedTypes);
}

TEST(Operators, ApplyToTheirTypes) {
    TVDBStructure model;
    const auto offered = [&](TFieldType type) {
        TDSField field(model, 1, vfkData);
        field.FieldType = type;
        field.AddAppliedOperators();
        std::string names;
        for (const TDSOperator* const op : field.GetOperators())
            names.append(op->GetName()).append(" ");
        return names;
    };
    const std::string ordered =
        "Equal NotEqual LessThan LessOrEqual GreaterThan GreaterOrEqual IsNull InList NotInList ";
    for (const TFieldType type : {ftSmallint, ftInteger, ftWord, ftFloat, ftCurrency, ftBCD, ftDate, ftTime,
                                  ftDateTime, ftAutoInc, ftLargeint})
        EXPECT_EQ(offered(type), ordered + "Between NotBetween ") << EnumName(type);
    EXPECT_EQ(offered(ftString),
              ordered + "StartsWith NotStartsWith Contains NotContains Between NotBetween ");
    EXPECT_EQ(offered(ftBoolean), "Equal NotEqual IsNull InList NotInList ");
    for (const TFieldType type : {ftMemo, ftFmtMemo})
        EXPECT_EQ(offered(type), "IsNull StartsWith NotStartsWith Contains NotContains ") << EnumName(type);
    EXPECT_EQ(offered(ftWideString), "StartsWith NotStartsWith Contains NotContains ");
    for (const TFieldType type : {ftUnknown, ftBlob, ftBytes, ftFixedChar})
        EXPECT_EQ(offered(type), "") << EnumName(type);
    TDSField text(model, 1, vfkData);
    for (const TFieldType type :
         {ftString, ftBoolean, ftDate, ftTime, ftDateTime, ftMemo, ftFmtMemo, ftFixedChar, ftWideString}) {
        text.FieldType = type;
        EXPECT_EQ(text.ValueAsString("a'b"), "'a''b'") << EnumName(type);
    }
    text.FieldType = ftInteger;
    EXPECT_EQ(text.ValueAsString("1"), "1");
}

TEST(Operators, LeaveFieldsWhenTheyGo) {
    TShop shop;
    TDSField& company = *shop.Field("customers.company");
    const int count = company.GetOperatCount();
    shop.Model.DeleteOperatorByName("Equal");
    EXPECT_EQ(company.GetOperatCount(), count - 1);
    shop.Model.SetExOperators({});
    EXPECT_EQ(company.GetOperatCount(), 6);
    EXPECT_EQ(shop.Model.GetUnrecognizedField()->GetOperatCount(), 6);
    TDSOperator op;
    op.SetSQLName("@f = @2");
    EXPECT_EQ(op.GetParamCount(), 0);
}

TEST(ValueEditors, HoldTheirSettings) {
    TShop shop;
    TDSField& field = *shop.Field("customers.company");
    field.SetEditType(etEdit);
    auto& text = dynamic_cast<TDSTextEditor&>(*field.GetValueEditor());
    text.SetOption(1 | 4, true);
    text.SetOption(2, true);
    EXPECT_EQ(text.GetOptions(), 2 | 4);
    EXPECT_FALSE(text.GetOption(1 | 2));
    EXPECT_TRUE(text.GetOption(2 | 4));
    text.SetOption(1, true);
    EXPECT_EQ(text.GetOptions(), 1 | 4);
    text.SetOption(1 | 2, true); // never both, however they are set
    EXPECT_EQ(text.GetOptions(), 2 | 4);
    text.SetOptions(1 | 2 | 8);
    EXPECT_EQ(text.GetOptions(), 2 | 8);
    text.SetOption(2, false);
    EXPECT_EQ(text.GetOptions(), 8);

    field.SetEditType(etSQL);
    auto& sql = dynamic_cast<TDSSQLEditor&>(*field.GetValueEditor());
    sql.SQL.SetText("select code, name from t\nwhere Region = :Region\n");
    sql.SetSQLParams(TStringList("Region=WEST\n"));
    EXPECT_TRUE(sql.HasParameter("Region"));
    sql.SetOpened(true);
    EXPECT_EQ(shop.Info.LastSQL, "select code, name from t\nwhere Region = WEST\n");
    EXPECT_EQ(sql.Values[1], "S");
    EXPECT_EQ(sql.Items[1], "Sweden");
    sql.SetSQLParams(TStringList("Region=EAST\n"));
    EXPECT_FALSE(sql.GetOpened());
    EXPECT_EQ(sql.Items.Count(), 0);
    shop.Model.SetDatabaseInfo(nullptr);
    EXPECT_THROW(sql.Refresh(), EVDBStructError);
    EXPECT_FALSE(sql.GetOpened());
}

TEST(Conditions, MakeValueSlotsFromTheirFormat) {
    TShop shop;
    TDSCondition& condition =
        *shop.Model.AddCondition(5, "Placed between @ and @ only", "orders.placed between '@1' and '@2'");
    ASSERT_EQ(condition.Values.size(), 2u);
    EXPECT_EQ(condition.Values[1].Text, " and ");
    EXPECT_EQ(condition.GetCaption(), "Placed between   and ");
    EXPECT_EQ(condition.GetTables(), TDSTableList{shop.Model.GetTable(1)});
    EXPECT_EQ(shop.Model.ConditionByID(5), &condition);
    EXPECT_EQ(shop.Model.ConditionIndexByID(6), -1);
    TStringList captions("old\n");
    shop.Model.GetConditionCaptions(captions);
    EXPECT_EQ(captions.GetText(), "Placed between   and \n");
    condition.SetID(6);
    EXPECT_EQ(shop.Model.ConditionByID(5), nullptr);
    EXPECT_EQ(shop.Model.ConditionIndexByID(6), 0);
    condition.Values[0].SetValueObject(std::make_shared<TDSValueObject>());
    TDSValue copy;
    copy.Assign(condition.Values[0]);
    EXPECT_EQ(copy.GetValueObject(), condition.Values[0].GetValueObject());
    copy.SetDataType(ftString);
    EXPECT_NE(copy.GetValueObject(), nullptr) << "the type was this one";
    copy.SetDataType(ftDate);
    EXPECT_EQ(copy.GetValueObject(), nullptr);
    condition.SetDisplayFormat("All of them");
    EXPECT_EQ(condition.GetCaption(), "All of them");
    EXPECT_TRUE(condition.Values.empty());
    shop.Model.DelTable(1);
    EXPECT_TRUE(condition.GetTables().empty());
}

TEST(Links, AreReadAndWrittenAsLines) {
    TVDBStructure model;
    for (const char* const name : {"a", "b", "a-b", "c:d", "e:"})
        model.AddTable(name, name);
    model.AddLinkByExpr("a-e::x=y,z>w, u <= v ,nonsense");
    model.GetLink(0)->Fields2.Delete(2);
    model.GetLink(0)->Operators.Delete(2);
    TStringList line;
    model.SaveLinksToStrings(line);
    EXPECT_EQ(line.GetText(), "a-e::x=y,z>w,u=\n");
    model.DelLink(0);
    model.AddLinkByExpr("a-b:x=y,z!=w");
    model.AddLinkByExpr("A-B-c:d:p>=q");
    EXPECT_EQ(model.GetLink(0)->Operators.GetCommaText(), "=,!=");
    EXPECT_EQ(model.GetLink(1)->Table1->GetName(), "a-b");
    EXPECT_EQ(model.GetLink(1)->Table2->GetName(), "c:d");
    TStringList lines;
    model.SaveLinksToStrings(lines);
    EXPECT_EQ(lines.GetText(), "a-b:x=y,z!=w\na-b-c:d:p>=q\n");
    EXPECT_EQ(MessageOf<EVDBStructError>([&] { model.AddLinkByExpr("a-q:x=y"); }), "No such table q");
    EXPECT_EQ(MessageOf<EVDBStructError>([&] { model.AddLinkByExpr("nonsense"); }), "No such table nonsense");
    EXPECT_THROW(model.AddLinkByExpr(std::string(1'000'000, '-')), EVDBStructError);
    EXPECT_EQ(model.GetLinkCount(), 2);
    EXPECT_EQ(model.FindLink("b", "a"), model.GetLink(0));
    EXPECT_EQ(model.FindLink("B", "a"), nullptr);
    model.DelTable(1);
    EXPECT_EQ(model.GetLinkCount(), 1);
    EXPECT_TRUE(model.GetTable(0)->GetLinks().empty());
}

TEST(Model, FillsItselfFromAProvider) {
    TShop shop;
    EXPECT_EQ(shop.Model.GetTableCount(), 3);
    EXPECT_EQ(shop.Model.GetFieldCount(), 10);
    int changes = 0;
    shop.Model.OnChange = [&](TVCustomDBStructure&) { ++changes; };
    shop.Info.Links.SetText("orders-lines:no=no\n");
    shop.Info.OnLinksRequest = [](TVDBInfo&, TStringList& links) {
        links.Add("customers-orders:custno=custno");
    };
    shop.Model.RetriveDataModelInfo();
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(shop.Model.GetLinkCount(), 2);
    EXPECT_EQ(shop.Model.GetFieldCount(), 10);
    shop.Model.SetAutoAddFields(false);
    shop.Model.RetriveDataModelInfo();
    EXPECT_EQ(std::exchange(changes, 1), 2);
    EXPECT_EQ(shop.Model.GetTableCount(), 3);
    EXPECT_EQ(shop.Model.GetFieldCount(), 0);
    for (const char* const name :
         {"StoreStruct", "AutoAddFields", "SQLFormats", "DatabaseInfo", "DefOperators", "ExOperators",
          "HelpFileName", "SEHelpContext", "InitialSEPath", "OnSEHelpClick", "OnChange"})
        EXPECT_NE(shop.Model.FindProperty(name), nullptr) << name;
    shop.Model.BeginUpdate();
    shop.Model.AddTable("x", "x");
    shop.Model.EndUpdate();
    EXPECT_EQ(changes, 1);

    TVDBStructure copy;
    copy.Assign(shop.Model);
    EXPECT_EQ(copy.GetStructString(), shop.Model.GetStructString());
    {
        TMemoryInfo other;
        shop.Model.SetDatabaseInfo(&other);
    }
    EXPECT_EQ(shop.Model.GetDatabaseInfo(), nullptr);
}

TEST(Model, TellsOnceOfEachChange) {
    TShop shop;
    int changes = 0;
    shop.Model.OnChange = [&](TVCustomDBStructure&) { ++changes; };
    const auto told = [&] { return std::exchange(changes, 0); };
    shop.Model.SetExOperators({});
    EXPECT_EQ(told(), 1);
    shop.Model.ClearOperators();
    EXPECT_EQ(told(), 1);
    shop.Model.ClearTables();
    EXPECT_EQ(told(), 1);
    shop.Model.ClearStructure();
    EXPECT_EQ(told(), 1);

    shop.Model.BeginUpdate();
    shop.Model.BeginUpdate();
    shop.Model.EndUpdate();
    shop.Model.AddTable("a", "a");
    EXPECT_EQ(told(), 0) << "the outer update goes on";
    shop.Model.EndUpdate();
    EXPECT_EQ(told(), 0) << "an end tells nothing by itself";
    shop.Model.EndUpdate(); // one too many
    shop.Model.BeginUpdate();
    shop.Model.AddTable("b", "b");
    EXPECT_EQ(told(), 0);
    shop.Model.EndUpdate();
    shop.Model.SetStructString(shop.Model.GetStructString());
    EXPECT_EQ(told(), 0);
    shop.Model.DelTable(0);
    EXPECT_EQ(told(), 1);
}

TEST(Model, ForgetsItsMainTableWhenItGoes) {
    TShop shop;
    const auto isForgotten = [&](const std::function<void()>& change) {
        shop.Model.RetriveDataModelInfo();
        shop.Model.SetDefaultMainTable(shop.Model.GetTable(1));
        change();
        return shop.Model.GetDefaultMainTable() == nullptr;
    };
    EXPECT_TRUE(isForgotten([&] { shop.Model.DelTable(1); }));
    EXPECT_FALSE(isForgotten([&] { shop.Model.DelTable(0); })) << "another one went";
    EXPECT_TRUE(isForgotten([&] { shop.Model.ClearTables(); }));
    EXPECT_TRUE(isForgotten([&] { shop.Model.ClearStructure(); }));
    EXPECT_TRUE(isForgotten([&] { shop.Model.RetriveDataModelInfo(); }));
    EXPECT_TRUE(isForgotten([&] { // by a text that names none, though a table has no name
        shop.Model.SetStructString("[Main]\nVersion=3.5\nTableCount=1\n[Table:1]\nAlias=x\n");
    }));
}

TEST(Tables, KeepTheirPlaceInADesigner) {
    TVDBStructure model;
    TDSTable& table = *model.GetTable(model.AddTable("t", "T"));
    EXPECT_EQ(table.GetDesignPositions(), "0,0,0,0");
    table.SetDesignPositions("1,-2,30,44,5");
    EXPECT_EQ(table.DesignRect.Left, 1);
    EXPECT_EQ(table.DesignRect.Top, -2);
    EXPECT_EQ(table.DesignRect.Right, 30);
    EXPECT_EQ(table.DesignRect.Bottom, 44);
    TVDBStructure copy;
    copy.SetStructString(model.GetStructString());
    EXPECT_EQ(copy.GetTable(0)->GetDesignPositions(), "1,-2,30,44");
    EXPECT_EQ(copy.IndexOfTable(copy.GetTable(0)), 0);
    EXPECT_EQ(copy.IndexOfTable(&table), -1);
    table.SetDesignPositions("7");
    EXPECT_EQ(table.GetDesignPositions(), "7,0,0,0");
    TDSPath path(nullptr);
    EXPECT_EQ(MessageOf<EVDBStructError>([&] { copy.FindPath(table, *copy.GetTable(0), path); }),
              "No such table t")
        << "of another model";
}

TEST(Fields, AreListedByEachName) {
    TShop shop;
    shop.Model.GetTable(1)->SetAlias("o");
    shop.Model.GetTable(1)->SetDisplayName("Orders made");
    TDSField& field = *shop.Field("o.amount");
    field.SetDisplayName("Total");
    field.SetQuoted(true);
    const auto line = [](const TStringList& names, int i) { return std::string(names[i]); };
    TStringList names;
    const char* const tables[] = {"orders", "o", "Orders made", "orders - o", "orders o"};
    for (const TTableNameMode mode : {tnName, tnAlias, tnDisplayName, tnCompoundName, tnSQLText}) {
        shop.Model.GetTableNames(mode, names);
        EXPECT_EQ(line(names, 1), tables[mode]);
        EXPECT_EQ(shop.Model.TableByName(mode, LowerAscii(tables[mode])), shop.Model.GetTable(1));
    }
    const char* const fields[] = {"amount", "Total", "orders.amount", "o.\"amount\""};
    for (const TFieldNameMode mode : {fnText, fnDisplayName, fnFullName, fnSQLExpr}) {
        shop.Model.GetFieldNames(mode, names);
        EXPECT_EQ(line(names, 5), fields[mode]);
        EXPECT_EQ(shop.Model.FieldByName(mode, LowerAscii(fields[mode])), &field);
        EXPECT_EQ(shop.Model.FieldByName(mode, std::string(fields[mode]) + "s"), nullptr);
    }
    EXPECT_EQ(shop.Model.FieldByName(fnFullName, "orders. amount"), nullptr) << "a blank counts here";

    shop.Model.RenumberFields(
        [](const TDSField& f) { return f.GetFieldText() == "custno" ? 5 : 2147483647; });
    EXPECT_EQ(shop.Model.FieldByID(5), shop.Model.GetField(0));
    EXPECT_EQ(shop.Model.FieldByID(6), shop.Model.FieldByName(fnSQLExpr, "o.custno"));
    EXPECT_EQ(shop.Model.FieldByID(2147483647), shop.Field("customers.company"));
    EXPECT_EQ(shop.Model.FieldByID(1), shop.Field("customers.since"))
        << "after the largest come the first free ones";
    const int added = shop.Model.AddField(vfkVirtual, "1", "One", nullptr);
    EXPECT_EQ(shop.Model.GetField(added)->FieldSize, 100);
    int id = 0;
    shop.Model.RenumberFields([&](const TDSField&) { return id += 3; });
    EXPECT_EQ(shop.Model.GetField(shop.Model.AddField(vfkVirtual, "2", "Two", nullptr))->GetID(), id + 1);
    EXPECT_EQ(shop.Model.FieldByID(shop.Model.GetField(added)->GetID()), shop.Model.GetField(added));
}

TEST(Model, RefusesBadIndexesByTheirKind) {
    TShop shop;
    TVDBStructure& model = shop.Model;
    TDSField& field = *model.GetField(0);
    TDSFieldGroupList& groups = model.GetFieldGroups();
    groups.AddGroup("G", &field);
    TDSPath path(&model);
    path.AddTable(model.GetTable(0));
    const std::string before = model.GetStructString();
    const std::vector<std::pair<std::string, std::function<void(int)>>> calls = {
        {"table", [&](int i) { model.GetTable(i + 3); }},
        {"table", [&](int i) { model.DelTable(i + 3); }},
        {"table", [&](int i) { path.GetTable(i + 1); }},
        {"table", [&](int i) { path.DelTable(i + 1); }},
        {"link", [&](int i) { model.GetLink(i + 2); }},
        {"link", [&](int i) { model.DelLink(i + 2); }},
        {"field", [&](int i) { model.GetField(i + 10); }},
        {"field", [&](int i) { model.DelField(i + 10); }},
        {"field group", [&](int i) { groups.GetGroup(i + 1); }},
        {"field group", [&](int i) { groups.Delete(i + 1); }},
        {"condition", [&](int i) { model.GetCondition(i); }},
        {"condition", [&](int i) { model.DelCondition(i); }},
        {"operator", [&](int i) { model.GetOperator(i + 15); }},
        {"operator", [&](int i) { model.DelOperator(i + 15); }},
        {"operator", [&](int i) { field.GetOperator(i + 11); }},
        {"operator", [&](int i) { field.DelOperator(i + 11); }},
        {"operator", [&](int i) { field.MoveOperat(i + 11, 0); }},
        {"operator", [&](int i) { field.MoveOperat(0, i + 11); }},
    };
    for (std::size_t i = 0; i < calls.size(); ++i)
        for (const int beyond : {0, -1000}) {
            const std::string message = MessageOf<EVDBStructError>([&] { calls[i].second(beyond); });
            EXPECT_TRUE(message.starts_with("Invalid " + calls[i].first + " index ")) << i << message;
        }
    EXPECT_EQ(model.GetStructString(), before);
}

namespace {

// A listener that does what a test wants.
struct TActingListener : TModelListener {
    explicit TActingListener(const TVCustomDBStructure& model) : Model(&model) { model.AddListener(*this); }
    ~TActingListener() override {
        if (Model)
            Model->RemoveListener(*this);
    }
    void FieldRemoved(TDSField& field) override { Act("field " + field.GetFullName()); }
    void OperatorRemoved(TDSOperator& op) override { Act("operator " + op.GetName()); }
    void TableRemoved(TDSTable& table) override { Act("table " + table.GetName()); }
    void ConditionRemoved(TDSCondition& condition) override { Act("condition " + condition.GetCaption()); }
    void ModelReplacing() override { Act("replacing"); }
    void ModelReplaced() override { Act("replaced"); }
    void Act(const std::string& notice) {
        Notes += notice + "; ";
        if (const auto act = std::exchange(OnNotice, nullptr))
            act();
    }

    const TVCustomDBStructure* Model;
    std::string Notes;
    std::function<void()> OnNotice; // once
};

} // namespace

TEST(ModelListeners, MayComeAndGoInANotice) {
    TShop shop;
    TActingListener first(shop.Model);
    auto second = std::make_unique<TActingListener>(shop.Model);
    auto panel = std::make_unique<TVQueryPanel>();
    panel->SetDbStruct(&shop.Model);
    TActingListener third(shop.Model);
    std::unique_ptr<TActingListener> late;
    first.OnNotice = [&] { // whoever has had its turn, whoever has not, and a new one
        shop.Model.RemoveListener(first);
        second.reset();
        panel.reset();
        late = std::make_unique<TActingListener>(shop.Model);
    };
    shop.Model.DelField(0);
    EXPECT_EQ(first.Notes, "field customers.custno; ");
    EXPECT_EQ(third.Notes, "field customers.custno; ") << "the one behind them is told";
    EXPECT_EQ(late->Notes, "") << "who came later is not told of this";
    third.OnNotice = [&] { late.reset(); };
    shop.Model.ClearStructure();
    EXPECT_EQ(third.Notes, "field customers.custno; replacing; replaced; ");
}

TEST(ModelListeners, MayChangeTheModelInANotice) {
    TShop shop;
    TVDBStructure& model = shop.Model;
    model.AddCondition(1, "one", "1=1");
    model.AddCondition(2, "two", "2=2");
    TActingListener acting(model), watching(model);
    acting.OnNotice = [&] { model.DelField(0); };
    model.DelField(0);
    EXPECT_EQ(watching.Notes, "field customers.company; field customers.custno; ");
    EXPECT_EQ(model.GetField(0)->GetFullName(), "customers.since");
    acting.OnNotice = [&] { model.DelCondition(0); };
    model.DelCondition(0);
    EXPECT_EQ(model.GetConditionCount(), 0);
    acting.OnNotice = [&] { model.ClearTables(); };
    model.DelTable(2);
    EXPECT_EQ(model.GetTableCount() + model.GetFieldCount() + model.GetLinkCount(), 0);
    acting.OnNotice = [&] { model.ClearOperators(); };
    watching.Notes.clear();
    model.DelOperator(0);
    EXPECT_EQ(model.GetOperatCount(), 0);
    EXPECT_TRUE(watching.Notes.ends_with("operator Equal; ")) << watching.Notes;
    model.AddDefOperators(false);
    acting.OnNotice = [&] { model.DelOperator(0); };
    model.AddOperator("Other", "", "", "", {});
    model.DeleteOperatorByName("Other");
    EXPECT_EQ(model.OperatorByName("Equal"), nullptr);
}

TEST(Provider, AsksForATableOnce) {
    TMemoryInfo info;
    info.Tables = {{"t", {{"Name", 3, ftString}}}};
    EXPECT_EQ(info.GetFieldList("t").FindByName("NAME")->Size, 3);
    info.GetFieldList("t");
    EXPECT_EQ(info.FieldRequests, 1);
    EXPECT_EQ(info.GetFieldList("T").Count(), 0);
    info.Update();
    TStringList names;
    info.GetFieldNamesByTable("t", names);
    EXPECT_EQ(names.GetCommaText(), "Name");
    EXPECT_EQ(info.FieldRequests, 3);
    TStringList settings("a=b\n");
    TVDBInfo().LoadInfo(settings);
    EXPECT_TRUE(settings.Empty());
}

TEST(Grid, EmptiesARow) {
    TStringGrid grid(2, 2);
    grid.Cell(0, 0) = "kept";
    grid.Cell(1, 1) = "gone";
    EmptyGridRow(grid, 1);
    EXPECT_EQ(grid.Cell(0, 0), "kept");
    EXPECT_EQ(grid.Cell(1, 1), "");
}
