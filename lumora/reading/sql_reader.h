// Maps a parsed SELECT statement onto the data model and makes it a query.
#pragma once

#include "lumora/model/sql_pattern.h"
#include "lumora/query/filter_rows.h"
#include "lumora/query/query.h"
#include "lumora/reading/sql_operators.h"
#include "lumora/sqlparse/Vsqlpars.h"

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace lumora {

class TSQLNames;
class TTitles;
class TVCustomDBStructure;

class TSQLReader {
public:
    // `subQueryTitles`: what the texts of sub-queries begin with; none: they have no titles. `level`: how
    // many statements stand around this one.
    TSQLReader(TVQuery& query, const TTitles* subQueryTitles, int level = 0);

    // Fills the cleared query with the statement.
    void Read(TVParserResult& statement);
    void ReadBracket(TFilterBracket& bracket, const TSQLBracket& parsed);
    TDSOperator* FindOperator(const TSQLCondition& parsed, bool negated, std::string& value1,
                              std::string& value2, TStringList& subQuery);
    // The query text of a SELECT.
    void UnfoldSubQuery(std::string_view sql, TStringList& lines) const;

private:
    void ReadStrictly(TVParserResult& statement);
    void ReadFields(const TVParserResult& statement);
    void ReadNode(TFilterBracket& bracket, const TSQLConditionNode& node);
    void ReadCondition(TFilterBracket& bracket, const TSQLCondition& parsed);
    static TFilterBracket& Owner(TFilterBracket& bracket, bool opposite);
    bool ReadPredefined(TFilterBracket& bracket, const TSQLCondition& parsed);
    void SetValues(TFilterCond& condition, const TSQLCondition& parsed, const std::vector<TCapture>& values);
    void ReadSubQuery(TFilterCond& condition, const TSQLCondition& parsed, const std::string& sql);
    std::string ValueOf(const TFilterCond& condition, int value, const TSQLCondition& parsed,
                        const TCapture& capture);
    std::string ListValue(const TFilterCond& condition, const TSQLCondition& parsed, std::string_view items);
    std::string DisplayValue(const TFilterCond& condition, int value, const TSQLCondition& parsed,
                             const std::string& text, bool quoted);
    std::string CheckedValue(const TFilterCond& condition, int value, const TSQLCondition& parsed,
                             const std::string& text, bool quoted) const;
    TSQLCondition Resolved(const TSQLCondition& parsed) const;
    bool IsColumn(std::string_view text) const;
    [[noreturn]] void RefuseLeft(const TSQLCondition& parsed) const;
    bool ReadAsOne(TFilterBracket& bracket, const TSQLBracket& parsed);
    void AddCondition(TFilterBracket& bracket, const TSQLCondition& parsed, const TSQLFit& fit, bool negated);
    TSQLFit FindPlainFit(const TSQLCondition& parsed);
    TSQLFit FindStrictFit(const TSQLCondition& parsed) const;
    TSQLFit FindFit(const TSQLCondition& parsed, bool negated, std::string_view op);
    const std::vector<TDSOperator*>& Candidates(bool negated, std::string_view op);
    TSQLFit LikeFallback(const TSQLCondition& parsed);
    [[noreturn]] void Refuse(const TSQLCondition& parsed) const;

    TVQuery& query_;
    const TVCustomDBStructure& model_;
    const TTitles* subQueryTitles_;
    const int level_;
    const bool strict_;
    bool inNegation_ = false;          // a bracket around is negated
    const TSQLNames* names_ = nullptr; // of the statement that a strict reader reads
    std::unordered_map<std::string, std::vector<TDSOperator*>> candidates_;
    std::string text_;
};

} // namespace lumora
