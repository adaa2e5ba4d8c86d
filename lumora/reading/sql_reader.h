// Maps a parsed SELECT statement onto the data model and makes it a query.
#pragma once

#include "lumora/model/sql_pattern.h"
#include "lumora/query/filter_rows.h"
#include "lumora/query/query.h"
#include "lumora/sqlparse/Vsqlpars.h"

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace lumora {

class TTitles;
class TVCustomDBStructure;

class TSQLReader {
public:
    // `subQueryTitles`: what the texts of sub-queries begin with; none: they have no titles. `level`: how
    // many statements stand around this one.
    TSQLReader(TVQuery& query, const TTitles* subQueryTitles, int level = 0);

    // Fills the cleared query with the statement.
    void Read(const TVParserResult& statement);
    void ReadBracket(TFilterBracket& bracket, const TSQLBracket& parsed);
    TDSOperator* FindOperator(const TSQLCondition& parsed, bool negated, std::string& value1,
                              std::string& value2, TStringList& subQuery);
    // The query text of a SELECT.
    void UnfoldSubQuery(std::string_view sql, TStringList& lines) const;

private:
    // An operator that fits a condition, and the values that stood in its places.
    struct TFit {
        TDSOperator* Operator = nullptr;
        TDSField* Field = nullptr;
        bool Opposite = false; // the condition holds where the operator's does not
        std::vector<TCapture> Values;
    };

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
    TFit FindPlainFit(const TSQLCondition& parsed);
    TFit FindStrictFit(const TSQLCondition& parsed);
    TFit FindFit(const TSQLCondition& parsed, bool negated, std::string_view op);
    const std::vector<TDSOperator*>& Candidates(bool negated, std::string_view op);
    TFit FindFitAroundField(const TSQLCondition& parsed);
    TFit LikeFallback(const TSQLCondition& parsed);
    [[noreturn]] void Refuse(const TSQLCondition& parsed) const;

    TVQuery& query_;
    const TVCustomDBStructure& model_;
    const TTitles* subQueryTitles_;
    const int level_;
    const bool strict_;
    std::unordered_map<std::string, std::vector<TDSOperator*>> candidates_;
    std::string text_;
};

} // namespace lumora
