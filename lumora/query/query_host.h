// What a query needs of the panel that owns it.
#pragma once

#include "lumora/query/sql_options.h"

#include <string>

namespace lumora {

class TFilterCond;
class TFilterRow;
class TQueryResult;
class TVCustomDBStructure;

// What changed in a condition.
enum TConditionChange : int { ccField = 1, ccOperator = 2, ccValue1 = 3, ccValue2 = 4 };

class TQueryHost {
public:
    virtual ~TQueryHost() = default;

    virtual TVCustomDBStructure* GetDbStruct() const = 0; // may be none
    virtual TQueryResult& GetQResult() = 0;
    virtual TSQLOptions GetSQLOptions() const = 0;
    virtual TSQLSyntax GetSQLSyntax() const = 0;
    virtual TSQLDialect GetDialect() const = 0;
    virtual bool GetStrict() const = 0;
    // An empty bracket is removed with its last row.
    virtual bool RemovesEmptyBrackets() const = 0;
    // A query text is being read: rows stay as the text has them.
    virtual bool IsLoadingQuery() const = 0;

    // Builds the query; the result then holds what the statement is made of.
    virtual void BuildQuery() = 0;
    // The query is another one now. Tells the result so, whoever else is not to hear of it.
    virtual void QueryChanged() = 0;
    virtual void ParametersListChanged() = 0;
    virtual void BeginUpdate() = 0;
    virtual void EndUpdate() = 0;
    // Rows came, went or moved and are to be numbered and placed again.
    virtual void RowsChanged() = 0;
    // Row numbers are about to be read.
    virtual void EnsureRowNumbers() = 0;
    // A row looks different now.
    virtual void RowChanged(TFilterRow& row) = 0;
    // A row is hidden or shown now: the others are to be placed again.
    virtual void RowHidden(TFilterRow& row) = 0;
    // A row is about to be deleted; it still stands in the tree.
    virtual void RowDeleting(TFilterRow& row) = 0;
    // A row is being freed: nothing may refer to it any longer.
    virtual void RowDestroyed(TFilterRow& row) = 0;
    virtual void ValueChanged(TFilterCond& condition, int value) = 0;
    virtual void ConditionChanged(TFilterCond& condition, TConditionChange change) = 0;
    // The host program may change a condition's text before it is added; false when it does not want to see
    // any.
    virtual bool WantsConditionText() const = 0;
    virtual void ConditionText(TFilterCond& condition, std::string& text) = 0;
};

} // namespace lumora
