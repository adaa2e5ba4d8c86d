// The build step: collects the tables, clauses and condition lines that a query's statement is made of.
#pragma once

#include "lumora/query/filter_rows.h"
#include "lumora/query/query_result.h"
#include "lumora/query/value_text.h"

#include <string>
#include <string_view>
#include <vector>

namespace lumora {

class TQueryBuilder {
public:
    TQueryBuilder(TVQuery& panel, const TVCustomDBStructure& structure);

    // Fills the panel's query result. `mainTable` comes first in FROM; without a `root` (an inactive panel)
    // there are no conditions, and a query without tables is not refused here.
    void Build(TDSTable* mainTable, const TFilterBracket* root);

private:
    // A bracket whose rows are being written. Its opening line is written with its first condition, so that a
    // bracket without conditions leaves no trace.
    struct TOpenBracket {
        TFilterLinkType LinkType;
        bool Opened = false;
        bool HasRows = false;
    };

    void AddTable(TDSTable* table);
    void AddTables(const TDSTableList& tables);
    bool HasTable(TDSTable* table) const;
    void AddResultFields();
    void CheckResultField(const TResultField& field) const;
    void CheckSorting(const TResultField& field) const;
    void CheckRecognized(const TSimpleCond& condition) const;
    std::string SortItem(TResultField& field) const;
    void AddGroupBy();
    void WriteBracket(const TFilterBracket& bracket);
    void WriteCondition(TFilterCond& condition);
    void BeginRow();
    void StartRowIn(TOpenBracket& bracket);
    void FillTemplate(std::string& out, TFilterCond& condition);
    void AppendPieces(std::string& out, const std::vector<TTemplatePiece>& pieces, TFilterCond& condition);
    void RefreshPatterns(const TTemplatePlan& plan, TFilterCond& condition);
    void AppendParamName(std::string& out, const TSQLParam& param) const;

    TVQuery& panel_;
    TQueryResult& result_;
    TValueWriter values_;
    const TVCustomDBStructure& structure_;
    const bool strict_;
    const bool bracketConditions_;
    std::vector<TOpenBracket> open_;
    std::vector<const TDSTable*> added_; // tables that were asked for before, ascending
    const TDSTable* lastAdded_ = nullptr;
    std::string text_;
};

} // namespace lumora
