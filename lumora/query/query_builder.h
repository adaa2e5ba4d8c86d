// The build step: collects the tables, clauses and condition lines that a query's statement is made of.
#pragma once

#include "lumora/query/filter_rows.h"
#include "lumora/query/query_result.h"
#include "lumora/query/value_text.h"

#include <string>
#include <string_view>
#include <vector>

namespace lumora {

class TDSPath;

struct TPatternPlace;

class TQueryBuilder {
public:
    TQueryBuilder(TVQuery& panel, const TVCustomDBStructure& structure);

    // Fills the panel's query result. `mainTable` comes first in FROM; without a `root` (an inactive panel)
    // there are no conditions, and a query without tables is not refused here.
    void Build(TDSTable* mainTable, const TFilterBracket* root);

private:
    void Collect(TDSTable* mainTable, const TFilterBracket* root);
    void AddShownTables();
    void AddTable(TDSTable* table);
    void AddTables(const TDSTableList& tables);
    bool HasTable(TDSTable* table) const;
    void FindPath(const TDSTable& from, const TDSTable& to, TDSPath& path) const;
    void AddResultFields();
    void CheckResultField(const TResultField& field) const;
    void CheckSorting(const TResultField& field) const;
    void CheckLink(const TDSLink& link) const;
    void CheckRecognized(const TSimpleCond& condition) const;
    void AddSortItems(std::vector<const TResultField*>& sorted);
    void AppendSortItem(std::string& out, const TResultField& field, bool constant) const;
    void AddGroupBy();
    void AddGroupItem(std::string_view text);
    TPredicate* MakeBracket(const TFilterBracket& bracket);
    TPredicate* MakeLeaf(TFilterCond& condition);
    void LetHostChange(TPredicate& leaf, TFilterCond& condition);
    void FillTemplate(TPredicate& leaf, TFilterCond& condition);
    bool FillMomentComparison(TPredicate& leaf, TFilterCond& condition);
    void AppendPieces(std::string& out, const std::vector<TTemplatePiece>& pieces, TFilterCond& condition,
                      TPredicate* leaf);
    std::size_t AppendValue(std::string& out, const std::vector<TTemplatePiece>& pieces, std::size_t i,
                            const TFilterCond& condition, TPredicate* leaf);
    void AppendPattern(std::string& out, const TPatternPlace& place, std::string_view behind,
                       std::string_view text) const;
    void AddLeafValue(TPredicate& leaf, std::size_t start, TFieldType type, const TTemplatePiece& piece);
    void RefreshPatterns(const TTemplatePlan& plan, TFilterCond& condition);
    void TakeQuotes(std::string& out, const TTemplatePiece* next, const TValueWriter::TValue& value) const;
    void AppendParamName(std::string& out, const TSQLParam& param) const;

    TVQuery& panel_;
    TQueryResult& result_;
    const TVCustomDBStructure& structure_;
    const bool strict_;
    const TDialect& dialect_;
    const TNameQuoting quoting_;
    const bool exact_; // placeholders outside quotes are replaced alone
    TValueWriter values_;
    const bool bracketConditions_;
    std::vector<const TDSTable*> added_; // tables that were asked for before, ascending
    const TDSTable* recent_[16] = {};    // some of them, each at the place that its address gives
    bool hostWantsText_ = false;
    TStatement statement_;
};

} // namespace lumora
