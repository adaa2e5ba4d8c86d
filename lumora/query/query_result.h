// A query's output: result fields, the tables that take part, parameters, and the text of the SELECT
// statement.
#pragma once

#include "lumora/platform/persistent.h"
#include "lumora/query/query.h"
#include "lumora/query/result_fields.h"
#include "lumora/query/result_tables.h"
#include "lumora/query/sql_options.h"
#include "lumora/query/sql_params.h"
#include "lumora/statement/select.h"

#include <string>
#include <string_view>

namespace lumora {

class TSQLPrinter;

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

    // --- The statement, from what the build step has put together or the host has put into the lists.
    // The whole statement, one clause part a line. A query that has changed since it was built is built
    // again, and what building raises comes through. EVQueryPanelError when no query was built.
    const TStringList& GetSQL();
    // The same as a tree, which holds until the next call of these operations.
    const TStatement& GetStatement();
    std::string GetSelectClause();
    const TStringList& GetFromClause();
    // Adds the link conditions of all tables but the first as WHERE lines; true when there were any.
    bool AddSQL1Joins(TStringList& lines) const;
    // The same conditions as one text, lines separated by carriage return and line feed.
    std::string GetJoinConditions() const;
    std::string AdjustCondition(std::string_view text) const;
    void AddCondition(std::string_view text) { Conditions().Add(AdjustCondition(text)); }
    // The WHERE lines without the joins. They may be changed; the tree has none of its own from then on.
    TStringList& Conditions();
    bool GetUsesSQL1Joins() const { return usesSQL1Joins_; }

    std::string OrderBy; // the items of the clause; empty: none
    std::string GroupBy;
    // Forgets what an earlier build has put together. What is then put into the lists by hand stays.
    void ClearBuild();
    // What was built is no longer what the query says.
    void QueryChanged() { stale_ = true; }
    // Whether the tables and clauses are those of the query as it is now.
    bool IsCurrent() const;
    // The build step makes conditions, group and sort items in the statement that BeginBuild hands out;
    // EndBuild takes it back and makes the texts of the two clauses.
    // FinishBuild says whether it came so far.
    TStatement BeginBuild();
    void EndBuild(TStatement statement);
    void FinishBuild(bool succeeded);

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
    TSQLPrinter Printer() const;
    void BuildAgainWhenStale();
    void BeginClauses();
    bool SaysDistinct() const;
    bool ShowsEachGroupOnce() const;
    void AddColumns();
    void AddTables();
    void AddGroupsAndSorting();

    TVQuery& panel_;
    TRFieldList resultFields_;
    TRTableList resultTables_;
    TStatement statement_;
    // What the build step has made.
    struct TBuilt {
        TSelect Select;
        TStatement::TMark End;
        TTextSpan GroupBy; // the items with what stands between them
        TTextSpan OrderBy;
    };
    TBuilt built_;
    TStringList from_;
    TStringList conditions_; // in the place of the tree's conditions
    TStringList sql_;
    TSQLParamList params_;
    TSQLOptions sqlOptions_ = DefaultSQLOptions;
    TSQLSyntax sqlSyntax_ = ssSQL2;
    bool usesSQL1Joins_ = false;
    bool wasBuilt_ = false; // by the build step, whether or not it failed
    bool building_ = false;
    bool stale_ = false;
    unsigned builtVersion_ = 0; // of the result fields
    bool builtJustSorting_ = false;
};

} // namespace lumora
