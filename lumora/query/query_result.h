// A query's output: result fields, the tables that take part, parameters, and the text of the SELECT
// statement.
#pragma once

#include "lumora/platform/properties.h"
#include "lumora/query/query.h"
#include "lumora/query/result_fields.h"
#include "lumora/query/result_tables.h"
#include "lumora/query/sql_options.h"
#include "lumora/query/sql_params.h"

#include <string>
#include <string_view>

namespace lumora {

class TQueryResult : public TPersistent {
public:
    explicit TQueryResult(TVQuery& panel);

    std::string_view ClassName() const override { return "TQueryResult"; }
    std::span<const TPropertyInfo> PublishedProperties() const override;

    TRFieldList& GetResultFields() { return resultFields_; }
    const TRFieldList& GetResultFields() const { return resultFields_; }
    void SetResultFields(const TRFieldList& fields) { resultFields_.Assign(fields); }
    TRTableList& GetResultTables() { return resultTables_; }
    const TRTableList& GetResultTables() const { return resultTables_; }
    void GetResFieldCaptions(TStringList& captions) const;

    TSQLOptions GetSQLOptions() const { return sqlOptions_; }
    void SetSQLOptions(TSQLOptions options);
    TSQLSyntax GetSQLSyntax() const { return sqlSyntax_; }
    void SetSQLSyntax(TSQLSyntax syntax) { sqlSyntax_ = syntax; }
    // The panel has another model now.
    void DbStructChanged(const TVCustomDBStructure* structure);

    // --- The statement, from what the build step has put together.
    // The whole statement, one clause part a line. EVQueryPanelError when no query was built.
    const TStringList& GetSQL();
    std::string GetSelectClause();
    const TStringList& GetFromClause();
    // Adds the link conditions of all tables but the first as WHERE lines; true when there were any.
    bool AddSQL1Joins(TStringList& lines) const;
    // The same conditions as one text, lines separated by carriage return and line feed.
    std::string GetJoinConditions() const;
    std::string AdjustCondition(std::string_view text) const;
    void AddCondition(std::string_view text) { conditions_.Add(AdjustCondition(text)); }
    TStringList& Conditions() { return conditions_; }
    bool GetUsesSQL1Joins() const { return usesSQL1Joins_; }

    std::string OrderBy; // the items of the clause; empty: none
    std::string GroupBy;
    // Forgets what an earlier build has put together.
    void ClearBuild();

    // --- Parameters. Each change tells the panel.
    int GetParamCount() const { return params_.Count(); }
    TSQLParam* GetParam(int index) const { return params_.GetItem(index); }
    TSQLParam* AddParameter(TFilterCond& condition, int valueIndex);
    TSQLParam* FindParameter(std::string_view name) const;
    TSQLParam* FindParameterByCondition(const TFilterCond* condition, int valueIndex) const;
    void DeleteParameter(const TSQLParam* param);
    void DeleteParameters(const TFilterCond* condition);
    void ClearParams();
    int ParamNumberBase = 0; // new parameters are numbered on from here

private:
    bool Strict() const { return panel_.GetStrict(); }
    TNameQuoting Quoting() const { return Strict() ? nqStrict : nqPlain; }
    void ReplaceForeignAliases();

    TVQuery& panel_;
    TRFieldList resultFields_;
    TRTableList resultTables_;
    TStringList from_;
    TStringList conditions_;
    TStringList sql_;
    TSQLParamList params_;
    TSQLOptions sqlOptions_ = DefaultSQLOptions;
    TSQLSyntax sqlSyntax_ = ssSQL2;
    bool usesSQL1Joins_ = false;
};

} // namespace lumora
