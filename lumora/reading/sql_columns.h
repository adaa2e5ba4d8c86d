// The select list, GROUP BY and ORDER BY of a statement that is read into a strict query: its columns.
#pragma once

#include "lumora/query/query.h"
#include "lumora/query/result_fields.h"
#include "lumora/reading/sql_names.h"
#include "lumora/sqlparse/Vsqlpars.h"

#include <string>
#include <string_view>
#include <vector>

namespace lumora {

class TSQLColumns {
public:
    TSQLColumns(TVQuery& query, const TVParserResult& statement, const TSQLNames& names);

    // Adds the result fields: those that are shown, then hidden ones for what else groups and sorts.
    // EVQueryPanelError for what they cannot say.
    void Read();
    bool Distinct = false; // the groups say so
    // Whether a column shows any one record of a group: which one depends on how tables are joined.
    bool TakesAnyRecord() const;

private:
    // An expression with the model's columns in it.
    struct TExpression {
        std::string Text;
        std::vector<std::string> Unknown;
    };

    bool IsEverything() const;
    TExpression ExpressionOf(std::string_view text, const TTextPlace& place) const;
    bool CountsRecords(std::string_view text, const TTextPlace& place) const;
    // EVQueryPanelError for a name in it that is nobody's.
    TResultField& AddField(std::string_view text, const TTextPlace& place);
    TResultField& MergeLast(TResultField& last);
    void ReadSelectList();
    void AddShown(const TSQLResultField& parsed);
    TResultField* ByPosition(std::string_view text, const TTextPlace& place) const;
    TResultField* ByAlias(std::string_view text) const;
    void ReadOrderBy();
    bool IsOfVirtualField(std::string_view text) const;
    TResultField& ByGroupItem(const TVParserResult::TGroupItem& item);
    void ReadGroupBy();
    TColumnGrouping GroupingOf(const TResultField& field, const std::vector<std::string>& keys) const;
    TTextPlace PlaceOf(const TResultField& field) const;
    std::vector<std::string> CoveredKeys() const;
    void DropCovered();
    std::vector<std::string> GroupTexts(const TResultField& field) const;
    bool SaysDistinct() const;
    void MakeKeys(const std::vector<std::string>& keys);

    TVQuery& query_;
    const TVCustomDBStructure& model_;
    const TVParserResult& statement_;
    const TSQLNames& names_;
    TRFieldList& fields_;
    int shown_ = 0;
    std::vector<TResultField*> grouped_;
};

} // namespace lumora
