// Small models and panels that several tests build on.
#pragma once

#include "lumora/lumora.h"
#include "tests/message_of.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace lumora::tests {

// A metadata provider in memory.
class TMemoryInfo : public TVDBInfo {
public:
    struct TTable {
        std::string Name;
        std::vector<TDBFieldInfo> Fields;
    };

    using TVDBInfo::TVDBInfo;

    void TablesByDatabase(TStringList& tables) override {
        for (const TTable& table : Tables)
            tables.Add(table.Name);
    }
    void LinksByDatabase(TStringList& links) override { links.AddStrings(Links); }
    void FieldsByTable(const std::string& name, TDBFieldList& fields) override {
        ++FieldRequests;
        for (const TTable& table : Tables)
            if (table.Name == name)
                for (const TDBFieldInfo& field : table.Fields)
                    fields.Add(field);
    }
    void GetSQLValues(std::string_view sql, TStringList& first, TStringList& second) override {
        LastSQL = sql;
        first.SetText("N\nS\n");
        second.SetText("Norway\nSweden\n");
    }
    void SaveInfo(TStringList& settings) override { settings.AddStrings(Settings); }
    void LoadInfo(TStringList& settings) override { Settings = settings; }

    std::vector<TTable> Tables;
    TStringList Links;
    TStringList Settings;
    std::string LastSQL;
    int FieldRequests = 0;
};

// customers -left- orders -inner- lines, with a field of every kind of value that matters.
class TShop {
public:
    TShop() {
        Info.Tables = {
            {"customers",
             {{"custno", 0, ftInteger},
              {"company", 40, ftString},
              {"since", 0, ftDate},
              {"active", 0, ftBoolean}}},
            {"orders", {{"custno", 0, ftInteger}, {"amount", 0, ftFloat}, {"placed", 0, ftDateTime}}},
            {"lines", {{"orderno", 0, ftInteger}, {"qty", 0, ftInteger}, {"at", 0, ftTime}}}};
        Model.SetDatabaseInfo(&Info);
        Model.RetriveDataModelInfo();
        Model.AddLinkByExpr("customers-orders:custno=custno");
        Model.GetLink(0)->LinkType = ltOuterLeft;
        Model.AddLinkByExpr("orders-lines:orderno=orderno");
        Panel.SetDbStruct(&Model);
        Panel.SetSQLOptions({});
        Panel.Activate();
    }

    TDSField* Field(std::string_view sql) { return Model.FieldByName(fnSQLExpr, sql); }
    TDSOperator* Operator(std::string_view name) { return Model.OperatorByName(name); }
    TFilterBracket& Root() { return *Panel.GetRootBracket(); }
    TResultField* Select(std::string_view sql, const std::string& caption) {
        return Panel.GetQResult().GetResultFields().Add("@1", {Field(sql)}, caption);
    }
    // Selects a column under its own name, that is without an alias.
    TResultField* Select(std::string_view sql) { return Select(sql, Field(sql)->GetFieldText()); }
    TSimpleCond* Where(std::string_view field, std::string_view op, const std::string& value1,
                       const std::string& value2 = {}, TFilterBracket* bracket = nullptr) {
        TSimpleCond* const condition =
            Panel.ManualAddCond(bracket ? *bracket : Root(), Field(field), Operator(op), value1);
        condition->SetValue(2, value2);
        return condition;
    }
    std::string SQL() {
        Panel.BuildQuery();
        return Panel.GetQResult().GetSQL().GetText();
    }
    // The condition lines without the root bracket's own.
    std::string Conditions() {
        Panel.BuildQuery();
        const TStringList& lines = Panel.GetQResult().Conditions();
        std::string text;
        for (int i = 1; i + 1 < lines.Count(); ++i)
            text.append(lines[i]) += '\n';
        return text;
    }

    TMemoryInfo Info;
    TVDBStructure Model;
    TVQueryPanel Panel;
};

} // namespace lumora::tests
