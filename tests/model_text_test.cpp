#include "lumora/platform/text_file.h"
#include "lumora/support/Vstrings.h"
#include "tests/fixtures.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <random>

using namespace lumora;
using namespace lumora::tests;

namespace {

std::string SampleModel() {
    return ReadTextFile(LUMORA_SAMPLES "/orders.model");
}

// What becomes of a text that is read and written again.
std::string Rewritten(std::string_view text) {
    TVDBStructure model;
    model.SetStructString(text);
    return model.GetStructString();
}

} // namespace

TEST(ModelText, OfAnEmptyModel) {
    TVDBStructure model;
    model.LoadFromStrings(TStringList());
    EXPECT_EQ(model.GetOperatCount(), 0);
    EXPECT_EQ(model.GetVersion(), 1.1);
    EXPECT_EQ(model.GetStructString(),
              "[Main]\nVersion=3.5\nOperatCount=0\nTableCount=0\nFieldCount=0\nCondCount=0\n"
              "FieldGroups=0\nDefaultMainTable=\nRootFieldsFirst=0\n \n[RootGroup]\nFields=\n");
    EXPECT_EQ(model.GetVersion(), 3.5);
}

TEST(ModelText, ReadsBackByteForByte) {
    const std::string sample = SampleModel();
    EXPECT_EQ(Rewritten(sample), sample);
    EXPECT_EQ(Rewritten(ReplaceText(sample, "\n", "\r\n")), sample);

    // Everything that a text could trip over: several links between two tables in one direction, one to
    // itself, a comma in an alias, blanks and quotes in list items, a blank last line in SQL text.
    TShop shop;
    shop.Model.AddLinkByExpr("customers-orders:custno<>custno");
    shop.Model.AddLinkByExpr("orders-orders:custno=custno");
    shop.Model.AddLinkByExpr("orders-customers:a!=b");
    shop.Model.GetTable(2)->SetAlias("li,nes");
    shop.Model.GetTable(0)->SetHints("a=b [x]");
    shop.Model.SetDefaultMainTable(shop.Model.GetTable(1));
    shop.Model.RootFieldsFirst = true;
    shop.Field("orders.placed")->Storage = dsEpochSeconds;
    TDSField& company = *shop.Field("customers.company");
    company.SetEditType(etList);
    dynamic_cast<TDSListEditor&>(*company.GetValueEditor()).Items.SetText("a b\nc,\"d\"\n\n");
    dynamic_cast<TDSListEditor&>(*company.GetValueEditor()).Values.SetText("1\n2\n\n");
    TDSField& since = *shop.Field("customers.since");
    since.SetEditType(etSQL);
    dynamic_cast<TDSSQLEditor&>(*since.GetValueEditor()).SQL.SetText("select a\n\n  from b\n\n");
    TDSField& amount = *shop.Field("orders.amount");
    amount.SetEditType(etEdit);
    auto& edit = dynamic_cast<TDSTextEditor&>(*amount.GetValueEditor());
    edit.DefValue = "7";
    edit.EditKind = tekMask;
    edit.EditMask = "0.00";
    edit.FmtVal = true;
    edit.SetOptions(12);
    shop.Field("orders.placed")->SetEditType(etCustom);
    dynamic_cast<TDSCustomEditor&>(*shop.Field("orders.placed")->GetValueEditor())
        .CustomData.SetText("a,b\nc\n");
    shop.Model.GetFieldGroups().AddGroup("G", &since);
    TDSCondition* const condition = shop.Model.AddCondition(3, "Between @ and @", "orders.amount > '@1'");
    condition->Values[1].SetDataType(ftFloat);
    condition->Values[1].ValueKind = vkList;
    shop.Info.Settings.SetText("DatabaseName=x\n[odd\n");
    const std::string text = shop.Model.GetStructString();
    EXPECT_EQ(Rewritten(text), text);
    EXPECT_NE(text.find("\nDefValue=7\nEditKind=1\nEditMask=0.00\nFmtVal=1\nOptions=12\n"),
              std::string::npos);
    EXPECT_NE(text.find("\nCustomData=\"a,b\",c\n"), std::string::npos);

    TVDBStructure copy;
    copy.SetStructString(text);
    EXPECT_EQ(copy.GetLink(3)->GetDisplayName(), "orders.custno->orders.custno");
    EXPECT_EQ(copy.GetLink(1)->Operators[0], "<>");
    EXPECT_EQ(copy.GetTable(1)->GetLinks().size(), 5u);
    EXPECT_EQ(copy.ConditionByID(3)->Values[1].Text, " and ");
    EXPECT_EQ(copy.ConditionByID(3)->Values[1].GetDataType(), ftFloat);
    EXPECT_EQ(copy.GetDBSpecInfo().GetText(), "DatabaseName=x\n[odd\n");
    // A line break in a caption would cut the text; it becomes a blank.
    copy.GetField(0)->SetDisplayName("two\r\nlines");
    EXPECT_NE(copy.GetStructString().find("DisplayName=two lines\n"), std::string::npos);
}

TEST(ModelText, IsReadTolerantlyInDetails) {
    TVDBStructure model;
    model.SetStructString(
        "[main]\nVersion=3.5\nTableCount=2000000000\nFieldCount=2\nOperatCount=1\nCondCount=1\nFieldGroups="
        "1\n"
        "[Operator:0]\nName=no\n[Table:0]\nName=no\n[Field:0]\nID=9\n[FieldGroup0]\nFields=9\n[Cond:0]\nID="
        "9\n"
        "[OPERATOR:1]\nName=EqualTo\nName=Other\nSQLName=@f = @1\nExprType=sameasfield\n"
        "AppliedTypes=ftString,ftNothing,\nValueKind=vkList\n"
        "[Table:1]\nDsgnPos=1,2,3,4\nHints=5,6\nQuoted=1\nAlias=My Table\nName=T\nAlias=again\n"
        "[Field:2]\nEditKind=2\nTableAlias=my_table\nEditType=1\nKind=vfkData\nID=7\nFieldExpr=x\n");
    ASSERT_EQ(model.GetOperatCount(), 1);
    EXPECT_EQ(model.GetOperator(0)->GetName(), "Equal");
    EXPECT_EQ(model.GetOperator(0)->ValueKind, vkList);
    ASSERT_EQ(model.GetTableCount(), 1);
    EXPECT_EQ(model.GetTable(0)->GetAlias(), "My_Table"); // the first of two
    EXPECT_EQ(model.GetTable(0)->GetName(), "T");
    EXPECT_EQ(model.GetTable(0)->GetDesignPositions() + "|" + model.GetTable(0)->GetHints(), "1,2,3,4|5,6");
    EXPECT_TRUE(model.GetTable(0)->GetQuoted());
    EXPECT_EQ(model.GetFieldGroups().Count() + model.GetConditionCount(), 0) << "numbers begin with 1";
    ASSERT_EQ(model.GetFieldCount(), 1);
    EXPECT_EQ(model.FieldByID(7)->GetSQLExpr(), "My_Table.x");
    EXPECT_EQ(dynamic_cast<TDSTextEditor&>(*model.FieldByID(7)->GetValueEditor()).EditKind, tekDate);
    EXPECT_TRUE(model.FieldByID(7)->UIR);
    EXPECT_EQ(model.GetRootGroup().Fields.size(), 1u);
}

TEST(ModelText, GivesEachFieldItsOwnID) {
    TVDBStructure model;
    model.SetStructString("[Main]\nVersion=3.5\nFieldCount=4\n[Field:1]\nID=2147483647\n[Field:2]\nID=1\n"
                          "[Field:3]\nID=1\n[Field:4]\nID=1\n[RootGroup]\nFields=1,1,2147483647\n");
    const std::string once = model.GetStructString();
    EXPECT_NE(once.find("[RootGroup]\nFields=1,2147483647,2,3\n"), std::string::npos) << once;
    EXPECT_EQ(Rewritten(once), once);
}

TEST(ModelText, OfOlderVersions) {
    TVDBStructure model;
    // Lists of operators, tables and fields by name, each with a section of its own.
    model.SetStructString(
        "[Main]\nVersion=1.2\nFieldGroups=1\n"
        "[Operations]\nEqualTo=is\nLike=sounds like\n"
        "[Operation:EqualTo]\nSQLName=@f = '@1'\nAppliedTypes=1,3,\n"
        "[Operation:Like]\nSQLName=@f like '@1'\nValFormat=or\nAppliedTypes=1,\n"
        "[Tables]\nOrders=All orders\nCustomers\n"
        "[Table:Orders]\nName=Orders\nLinks=Customers\n[Table:Customers]\nName=Customers\n"
        "[Link:Orders-Customers]\nFldName1=CustNo\nFldName2=CustNo\nLinkType=left\n"
        "[Fields]\nOrders No=Number\n"
        "[Field:Orders No]\nTableName=Orders\nEditType=1\nFieldType=3\nFieldSize=0\nItems=a,b\n"
        "Values=1,2\nOperats=EqualTo,Like\n"
        "[FieldGroup1]\nGroupName=All\nFields=\"Orders No\"\n");
    EXPECT_EQ(model.OperatorByName("Like")->ValFormat, "or");
    EXPECT_EQ(model.OperatorByName("Like")->GetSQLName(), "@f like '@1'");
    EXPECT_EQ(model.OperatorByName("Equal")->AppliedTypes, (TAppliedTypes{ftString, ftInteger}));
    EXPECT_EQ(model.GetTable(0)->GetDisplayName(), "All orders");
    EXPECT_EQ(model.GetLink(0)->LinkType, ltOuterLeft);
    EXPECT_EQ(model.GetLink(0)->Operators.GetCommaText(), "=");
    const TDSField& field = *model.GetField(0);
    EXPECT_EQ(field.GetFullName(), "Orders.Orders No");
    EXPECT_EQ(field.GetDisplayName(), "Number");
    EXPECT_EQ(field.GetEditType(), etList); // counted from 0 before 3.0
    EXPECT_EQ(field.GetOperatCount(), 2);
    EXPECT_EQ(field.GetCompoundName(), "All.Number");

    model.SetStructString("[Main]\n[Operations]\nIs=is equal to,@f = '@1'\n");
    EXPECT_EQ(model.GetOperator(0)->DisplayName, "is equal to");
    EXPECT_EQ(model.GetOperator(0)->GetSQLName(), "@f = '@1'");

    model.SetStructString(
        "[Main]\nVersion=3.0\nOperatCount=2\nFieldCount=1\nRootFieldsFirst=1\n"
        "[Operator:1]\nName=a\nValueType=vkList\n[Operator:2]\nName=b\nValueType=vtsubquery\n"
        "[Field:1]\nID=4\nKind=vfkVirtual\nFieldExpr=1\nEditType=4\nCondField=0\n"
        "[Field:1.SQL]\nselect 1\n \n[RootGroup]\nFields=4\n");
    EXPECT_EQ(model.GetOperator(0)->ValueKind, vkScalar);
    EXPECT_EQ(model.GetOperator(1)->ValueKind, vkSubQuery);
    EXPECT_TRUE(model.RootFieldsFirst);
    EXPECT_EQ(dynamic_cast<TDSSQLEditor&>(*model.GetField(0)->GetValueEditor()).SQL.GetText(), "select 1\n");
    EXPECT_TRUE(model.GetField(0)->UIR); // no boolean before 3.2
    for (const char* const key : {"UIR", "CondField"})
        for (const char* const value : {"0", "1", "false", "True"}) {
            model.SetStructString(
                std::string("[Main]\nVersion=3.2\nFieldCount=1\n[Field:1]\nID=4\nUIC=300\n") + key + "=" +
                value + "\n");
            EXPECT_EQ(model.GetField(0)->UIR, SameText(value, "true") || SameText(value, "1"))
                << key << value;
            EXPECT_EQ(model.GetField(0)->UIC, 255);
        }
    model.SetStructString("[Main]\nVersion=1.4\nTableCount=1\n[Table:1]\nName=t\n");
    EXPECT_EQ(model.GetTableCount(), 1);
    model.SetStructString("[Main]\nVersion=2.8\nOperatCount=1\n[Operator:1]\nName=a\nValueIsList=1\n");
    EXPECT_EQ(model.GetOperator(0)->ValueKind, vkList);
}

TEST(ModelText, RefusedTextsLeaveTheModel) {
    TVDBStructure model;
    model.SetStructString(SampleModel());
    const std::string before = model.GetStructString();
    const auto refusal = [&](const std::string& text) {
        return MessageOf<Exception>([&] { model.SetStructString("[Main]\nVersion=3.5\n" + text); });
    };
    EXPECT_EQ(refusal("TableCount=1\n[Table:1]\nName=a\nLinks=b\n"), "Can not find section Link:a-b");
    EXPECT_EQ(refusal("TableCount=1\n[Table:1]\nName=a\nLinks=b\n[Link:a-b]\nFldName1=x\n"),
              "No such table b");
    EXPECT_EQ(refusal("FieldCount=1\n[Field:1]\nFieldType=many\n"), "\"many\" is not a valid integer value");
    EXPECT_EQ(refusal("FieldCount=1\n[Field:1]\nOperators=Near\n"), "Operator not found: Near");
    EXPECT_EQ(refusal("Needs=Storage,Ends\n"), "The text needs \"Ends\", which this version does not know");
    EXPECT_EQ(refusal("Needs=Storage\nFieldCount=1\n[Field:1]\nStorage=dsMayan\n"),
              "The text needs \"Storage dsMayan\", which this version does not know");
    EXPECT_EQ(model.GetStructString(), before);
    EXPECT_EQ(MessageOf<EFileError>([&] { model.LoadFromFile("/nowhere/x.model"); }),
              "Cannot open file \"/nowhere/x.model\": No such file or directory");
    EXPECT_EQ(model.GetStructString(), before);
}

TEST(ModelText, DamagedTextsGiveAResultOrAnError) {
    const std::string sample = SampleModel();
    std::mt19937 random(99);
    for (int round = 0; round < 150; ++round) {
        std::string text = sample.substr(0, round % 3 == 0 ? random() % sample.size() : sample.size());
        for (auto changes = random() % 20; changes > 0 && !text.empty(); --changes) {
            const std::size_t at = random() % text.size();
            if (random() % 2)
                text[at] = static_cast<char>(random());
            else
                text.erase(at, random() % 40);
        }
        TVDBStructure model;
        const std::string error = MessageOf<Exception>([&] { model.SetStructString(text); });
        if (error.empty()) {
            const std::string once = model.GetStructString();
            EXPECT_EQ(Rewritten(once), once) << "round " << round;
        }
    }
    TVDBStructure model;
    model.SetStructString(std::string(1'000'000, '[') +
                          "\n[Main]\nFieldCount=2000000000\nCondCount=2000000000\n");
    EXPECT_EQ(model.GetFieldCount(), 0);
    model.SetStructString("[Main]\nVersion=3.5\nTableCount=1\n[Table:1]\nName=\xff\xfe\x80\n");
    EXPECT_EQ(model.GetTable(0)->GetName(), "\xff\xfe\x80");
}

TEST(ModelText, SavesToFilesWhole) {
    const std::string path = testing::TempDir() + "lumora_model_test.model";
    TVDBStructure model;
    model.SaveToFile(path);
    model.LoadFromFile(path);
    EXPECT_EQ(ReadTextFile(path), model.GetStructString());
    std::filesystem::remove(path);
    EXPECT_THROW(model.SaveToFile("/nowhere/x.model"), EFileError);
}
