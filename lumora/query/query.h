// A query as a document: brackets of conditions, result columns, parameters and options over a data model,
// which it only reads. It knows nothing of panels, titles or screens. In a program without a screen:
//
//     TVQuery query(model);
//     ReadQueryText(query, lines);          // lumora/querytext/query_text.h; ReadSQL (lumora/reading/) takes
//     a SELECT query.SetStrict(true); query.BuildQuery(); std::string sql =
//     query.GetQResult().GetSQL().GetText();
//
// A query belongs to one thread at a time; its model may be shared by queries in many.
#pragma once

#include "lumora/model/model_listener.h"
#include "lumora/platform/string_list.h"
#include "lumora/query/row_ref.h"
#include "lumora/query/shown_tables.h"
#include "lumora/query/sql_options.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace lumora {

class TDSOperator;
class TFilterBracket;
class TFilterCond;
class TFilterRow;
class TQueryListener;
class TQueryResult;
class TSimpleCond;
class TVCustomDBStructure;
enum TConditionChange : int;
enum TFieldType : std::uint8_t;

// What a query is doing. It tells of changes only while it is idle.
enum TVBuilderState : std::uint8_t { stIdle, stBuilding, stLoading, stSaving };

inline constexpr double CurrentQueryVersion = 3.5;

class TVQuery : private TModelListener {
public:
    TVQuery();
    explicit TVQuery(const TVCustomDBStructure& model);
    TVQuery(const TVQuery&) = delete;
    TVQuery& operator=(const TVQuery&) = delete;
    ~TVQuery() override;

    // Who is told of changes; not owned. None: nobody.
    void SetListener(TQueryListener* listener);

    // --- Data model and main table.
    const TVCustomDBStructure* GetDbStruct() const { return model_; } // may be none
    // The conditions go; the result fields wait for the next model. `isComplete`: the model has its items by
    // now, or ModelKnown will tell when it has.
    void SetDbStruct(const TVCustomDBStructure* model, bool isComplete = true);
    void ModelKnown();
    // EVQueryPanelError "DBStructure is not specified" without a model.
    void CheckIfDBStructAssigned() const;
    // The query's own; else the one that the host names; else the model's default.
    const std::string& GetMainTableName() const;
    TDSTable* GetMainTable() const;
    // The host's. It takes the place of the query's own.
    void SetMainTableName(const std::string& name);
    // Finds the table of that name; without a name takes the model's default.
    void RefreshMainTable();
    // The query's own, by alias, which its text keeps; empty: it has none. One that the model does not have
    // is refused by building.
    const std::string& GetOwnMainTable() const { return ownMainTable_; }
    void SetOwnMainTable(const std::string& alias);
    // Tables that stand in the statement behind the main table, in this order, whether or not anything else
    // needs them: each record is one combination of their rows.
    const TShownTableList& GetShownTables() const { return shownTables_; }
    void SetShownTables(TShownTableList tables);

    // --- What it says.
    TFilterBracket* GetRootBracket() const { return root_.get(); } // none without a model
    void RecreateRootBracket();
    TQueryResult& GetQResult() { return *result_; }
    const TQueryResult& GetQResult() const { return *result_; }
    const std::string& GetQueryName() const { return queryName_; }
    void SetQueryName(const std::string& name);
    const TStringList& GetDescription() const { return description_; }
    void SetDescription(const TStringList& lines);
    const TStringList& GetUserData() const { return userData_; }
    void SetUserData(const TStringList& lines) { userData_ = lines; }
    // Of the text that was read last.
    double GetVersion() const { return version_; }
    void SetVersion(double version) { version_ = version; }
    // Result fields, as their text, that wait until the model is known.
    void SetPendingResultFields(const TStringList& lines);

    // --- How it becomes SQL.
    TSQLOptions GetSQLOptions() const { return sqlOptions_; }
    void SetSQLOptions(TSQLOptions options);
    TSQLSyntax GetSQLSyntax() const { return sqlSyntax_; }
    void SetSQLSyntax(TSQLSyntax syntax);
    // The engine that the statement is for; the standard: as the model and the syntax say.
    TSQLDialect GetDialect() const { return dialect_; }
    void SetDialect(TSQLDialect dialect);
    // The statement keeps its shape and means what the rows say, or building it is refused.
    bool GetStrict() const { return strict_; }
    void SetStrict(bool strict);
    // Whether its text keeps the SQL options.
    bool GetSaveSQLOptions() const { return saveSQLOptions_; }
    void SetSaveSQLOptions(bool on) { saveSQLOptions_ = on; }
    // Builds the statement; GetQResult().GetSQL() then gives it. Without conditions it takes the columns
    // alone. EVQueryPanelError, EVDBStructError, EConvertError.
    void BuildQuery(bool withConditions = true);
    // The same as the last time.
    void BuildAgain() { BuildQuery(builtConditions_); }
    // The text with which value `value` of a condition stands in the statement.
    std::string ExtractValue(const TFilterCond& condition, int value) const;
    // A date or time between the user's format and the model's SQL format.
    std::string ProcessDateValue(TFieldType type, std::string_view text, bool toSQL) const;

    // --- Rows.
    // Adds a condition with the given field, operator and first value; none when a handler has removed it at
    // once.
    TSimpleCond* ManualAddCond(TFilterBracket& bracket, TDSField* field, TDSOperator* op,
                               const std::string& value);
    void ClearRows();
    // Result fields, parameters and rows.
    void ClearAll();
    bool GetEmpty() const;
    TFilterRow* GetRowByNum(int number); // none when no row has the number
    TFilterRow* GetLastRow();
    // Whether the row is one of the query's; the pointer may be one to a row that is gone.
    bool HasRow(const TFilterRow* row);
    // Another number than the last time when rows have come, gone, moved, been hidden or shown.
    unsigned GetRowsVersion() const { return rowsVersion_; }
    // An empty bracket is removed with its last row.
    bool GetRemovesEmptyBrackets() const { return removesEmptyBrackets_; }
    void SetRemovesEmptyBrackets(bool on) { removesEmptyBrackets_ = on; }
    // Lines name=value of the simple conditions, from which lists from SQL take their parameters.
    const TStringList& GetSQLParams();

    // --- Notices.
    TVBuilderState GetState() const { return state_; }
    bool GetModified() const { return modified_; }
    void SetModified(bool modified) { modified_ = modified; }
    // False while it is loading or an update is under way: nobody is told of changes then.
    bool TellsChanges() const { return state_ == stIdle && !updating_ && !destroying_; }
    // The query is another one now: tells so, unless it is loading or an update is under way.
    void QueryChanged();
    void ParametersListChanged();
    void BeginUpdate();
    void EndUpdate();

private:
    friend class TFilterBracket;
    friend class TFilterCond;
    friend class TFilterRow;
    friend class TQueryBuilder;
    friend class TQueryStateGuard;
    friend class TRowMover;
    friend class TRowRefBase;
    friend class TSimpleCond;

    // What a condition or a result field refers to, kept by ID and name while the model is replaced.
    struct TFieldTarget {
        int ID;
        std::string FullName;
    };
    struct TConditionTarget {
        TFilterCond* Condition;
        TFieldTarget Field; // of a predefined condition the ID alone
        std::string OperatorName;
    };

    // Told by the rows.
    bool KeepsEmptyBrackets() const { return keepsEmptyBrackets_ || !removesEmptyBrackets_; }
    void EnsureRowNumbers(); // they are about to be read
    void RowsChanged();      // they are to be numbered and placed anew; the caller tells of the change
    void RowChanged(TFilterRow& row);
    void RowDeleting(TFilterRow& row);
    void RowDestroyed(TFilterRow& row);
    // Frees rows that stand in no bracket any more; the caller tells of the change.
    void FreeRows(std::vector<std::unique_ptr<TFilterRow>> rows);
    void FreeRoot();
    // Whoever is told of parameters is told once the query is whole again.
    void HoldParamNotices() { ++paramNoticesHeld_; }
    void ReleaseParamNotices();
    void ValueChanged(TFilterCond& condition, int value);
    void ConditionChanged(TFilterCond& condition, TConditionChange change);
    bool WantsConditionText() const;
    void ConditionText(TFilterCond& condition, std::string& text);
    TRowRefs& RowRefs() { return rowRefs_; }

    // TModelListener.
    void FieldRemoved(TDSField& field) override;
    void OperatorRemoved(TDSOperator& op) override;
    void TableRemoved(TDSTable& table) override;
    void ConditionRemoved(TDSCondition& condition) override;
    void ModelReplacing() override;
    void ModelReplaced() override;
    void ModelDestroyed() override { SetDbStruct(nullptr); }

    void SetState(TVBuilderState state) { state_ = state; }
    void NumberRows(TFilterRow& row);
    template <typename TVisit>
    void ForEachCondition(TVisit visit);
    template <typename TRefers>
    void DeleteConditions(TRefers refers);
    void TellChanged(const std::vector<TFilterCond*>& conditions, TConditionChange change);
    static TFieldTarget TargetOf(const TDSField& field);
    TDSField* FindTarget(const TFieldTarget& target) const;

    const TVCustomDBStructure* model_ = nullptr;
    std::string mainTableName_;
    TDSTable* mainTable_ = nullptr;
    std::string ownMainTable_;
    TShownTableList shownTables_;
    TRowRefs rowRefs_;
    TQueryListener* listener_;
    std::unique_ptr<TQueryResult> result_;
    std::unique_ptr<TFilterBracket> root_;
    std::string queryName_;
    TStringList description_;
    TStringList userData_;
    TStringList pendingRFields_; // result fields that wait for a model
    TStringList sqlParams_;
    TSQLOptions sqlOptions_ = DefaultSQLOptions;
    TSQLSyntax sqlSyntax_ = ssSQL2;
    bool saveSQLOptions_ = false;
    bool builtConditions_ = true;
    TSQLDialect dialect_ = sdStandard;
    bool strict_ = false;
    double version_ = CurrentQueryVersion;
    std::vector<TConditionTarget> conditionTargets_;
    std::vector<std::vector<TFieldTarget>> resultFieldTargets_;

    TVBuilderState state_ = stIdle;
    bool destroying_ = false;
    bool modified_ = false;
    bool updating_ = false;
    int updateCount_ = 0;
    int paramNoticesHeld_ = 0;
    bool paramsChangedMeanwhile_ = false;
    std::vector<TFilterRow*> rowOrder_; // all rows by number, while the numbers are right
    bool rowNumbersStale_ = true;
    unsigned rowsVersion_ = 1;
    bool keepsEmptyBrackets_ = false; // while a row moves
    bool removesEmptyBrackets_ = false;
};

} // namespace lumora
