// The query panel: the component that holds one query.
#pragma once

#include "lumora/model/Vdbstruc.h"
#include "lumora/panel/appearance.h"
#include "lumora/panel/panel_keyboard.h"
#include "lumora/panel/panel_links.h"
#include "lumora/panel/panel_menus.h"
#include "lumora/panel/panel_view.h"
#include "lumora/panel/row_moves.h"
#include "lumora/platform/component.h"
#include "lumora/query/errors.h"
#include "lumora/query/filter_rows.h"
#include "lumora/query/query_host.h"
#include "lumora/query/query_result.h"
#include "lumora/sqlparse/Vsqlpars.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace lumora {

enum TVBuilderState : std::uint8_t { stIdle, stBuilding, stLoading, stSaving };

inline constexpr double CurrentQueryVersion = 3.5;

class TVQueryPanel : public TComponent, private TQueryHost, private TModelListener {
public:
    using TNotifyEvent = std::function<void(TVQueryPanel& sender)>;
    using TConditionEvent = std::function<void(TVQueryPanel& sender, TFilterCond& condition)>;
    using TValueEvent = std::function<void(TVQueryPanel& sender, TFilterCond& condition, int value)>;

    explicit TVQueryPanel(TComponent* owner = nullptr);
    ~TVQueryPanel() override;

    std::string_view ClassName() const override { return "TVQueryPanel"; }
    std::span<const TPropertyInfo> PublishedProperties() const override;

    // --- Data model and main table.
    TVCustomDBStructure* GetDbStruct() const override { return dbStruct_; }
    void SetDbStruct(TVCustomDBStructure* structure);
    const std::string& GetMainTableName() const { return mainTableName_; }
    void SetMainTableName(const std::string& name);
    TDSTable* GetMainTable() const { return mainTable_; }
    std::string GetMainTableAlias() const { return mainTable_ ? mainTable_->GetAlias() : std::string(); }
    void RefreshMainTable();
    // EVQueryPanelError "DBStructure is not specified" without a model.
    void CheckIfDBStructAssigned() const;

    // --- The query.
    TFilterBracket* GetRootBracket() const { return root_.get(); } // none without a model
    void RecreateRootBracket();
    TQueryResult& GetQResult() override { return result_; }
    const TQueryResult& GetQResult() const { return result_; }
    const std::string& GetQueryName() const { return queryName_; }
    void SetQueryName(const std::string& name);
    const TStringList& GetDescription() const { return description_; }
    void SetDescription(const TStringList& lines);
    const TStringList& GetUserData() const { return userData_; }
    void SetUserData(const TStringList& lines) { userData_ = lines; }
    TSQLOptions GetSQLOptions() const override { return sqlOptions_; }
    void SetSQLOptions(TSQLOptions options);
    TSQLSyntax GetSQLSyntax() const override { return sqlSyntax_; }
    void SetSQLSyntax(TSQLSyntax syntax);
    // The engine that the statement is for; the standard: as the model and the syntax say.
    TSQLDialect GetDialect() const override { return dialect_; }
    void SetDialect(TSQLDialect dialect);
    // The statement keeps its shape and means what the rows say, or building it is refused.
    bool GetStrict() const override { return strict_; }
    void SetStrict(bool strict);
    bool GetSaveSQLOptions() const { return saveSQLOptions_; }
    void SetSaveSQLOptions(bool on) { saveSQLOptions_ = on; }

    // --- Rows.
    TSimpleCond* AddCondition(TFilterBracket& bracket);
    TSimpleCond* AddConditionNum(TFilterBracket& bracket, int number);
    TCustomCond* AddCustomCondition(TFilterBracket& bracket, TDSCondition& condition);
    TFilterBracket* AddBracket(TFilterBracket& bracket);
    TFilterBracket* AddBracketNum(TFilterBracket& bracket, int number);
    // Adds a condition with the given field, operator and first value.
    TSimpleCond* ManualAddCond(TFilterBracket& bracket, TDSField* field, TDSOperator* op,
                               const std::string& value);
    void ClearRows();
    // Result fields, parameters and rows.
    void ClearAll();
    bool GetEmpty() const { return !root_ || root_->GetRowCount() == 0; }

    TFilterRow* GetCurrentRow() const { return currentRow_; }
    void SetCurrentRow(TFilterRow* row);
    TFilterBracket* GetCurrentBracket() const;
    int GetCurrentRowNum() const { return currentRow_ ? currentRow_->GetRowNum() : -1; }
    void SetCurrentRowNum(int number) { SetCurrentRow(GetRowByNum(number)); }
    TFilterRow* GetRowByNum(int number); // none when no row has the number
    TFilterRow* GetLastRow() { return root_ ? root_->GetLastRow() : nullptr; }
    // To the visible row after or before the current one; such moves come from the keyboard.
    void IncCurRow();
    void DecCurRow();
    bool GetMovedByKeyboard() const { return movedByKeyboard_; }
    // Move the current row: before or behind its neighbour, out of its bracket, into the bracket before it.
    // Nothing happens when it cannot go there.
    void MoveCurRowUp();
    void MoveCurRowDown();
    void MoveCurRowLeft();
    void MoveCurRowRight();
    // Deletes the current row, but never the root bracket.
    void DeleteCurRow();
    // Whether the row is one of the panel's; the pointer may be one to a row that is gone.
    bool HasRow(const TFilterRow* row);
    // Another number than the last time when rows have come, gone, moved, been hidden or shown.
    unsigned GetRowsVersion() const { return rowsVersion_; }

    // --- Activity. An inactive panel shows no rows and builds no conditions.
    bool GetActive() const { return active_; }
    void SetActive(bool active);
    void Activate() { SetActive(true); }
    void Deactivate() { SetActive(false); }
    // Shows the query anew.
    void RefreshPanel();

    // --- SQL and words.
    // Builds the query; GetQResult().GetSQL() then gives the statement.
    void BuildQuery() override;
    // The query as the words on the screen.
    std::string GetQueryText();
    // The text with which value `value` of a condition stands in the statement.
    std::string ExtractValue(const TFilterCond& condition, int value) const;
    // A date or time between the user's format and the model's SQL format.
    std::string ProcessDateValue(TFieldType type, std::string_view text, bool toSQL) const;
    // Turns a SELECT statement into the panel's query. Fields and operators that the model does not know
    // become its placeholders; a strict panel refuses what would not mean the same. ESQLParserError,
    // EVQueryPanelError.
    void ParseSQL(const TStringList& lines);
    // The steps of that: a bracket with what a parsed one holds; the operator whose template a parsed
    // condition matches (none when none does), its values and the query text of its sub-query; that text of a
    // SELECT.
    void ProcessSQLBracket(TFilterBracket& bracket, const TSQLBracket& parsed);
    TDSOperator* OperatorBySQLCond(const TSQLCondition& parsed, std::string& value1, std::string& value2,
                                   TStringList& subQuery);
    void ProcessSubQuery(std::string_view sql, TStringList& lines);
    // Lines name=value of the simple conditions, from which lists from SQL take their parameters.
    const TStringList& GetSQLParams();

    // --- Keyboard, mouse and menus. Without a model they do nothing.
    // True when the key was handled. Needs an active panel and aoAllowKeyboard.
    bool KeyDown(int key, TShiftState shift) { return keyboard_.KeyDown(key, shift); }
    // The current row's current word, for drawing it and for stepping through its words.
    TPanelKeyboard& GetKeyboard() { return keyboard_; }
    // A click on a word, given by its index in ScreenWords of the row (-1: beside the words): the row becomes
    // current and the word does what it is there for. The screen shows the rest through the view.
    void ClickWord(TFilterRow& row, int word);
    void AddRowLabelMouseDown(); // a click on the line that adds a condition
    // A double click; tells the host of one on a value.
    void DblClickWord(TFilterRow& row, int word);
    // The menu that a right click on a word or the menu key asks for (-1: beside the words).
    void ContextMenu(TFilterRow& row, int word);
    void CreateMenus() { menus_.CreateMenus(); }
    void UpdateMenus();
    void VPopup(TPopupMenu& menu) { menus_.VPopup(menu); }
    void MenuItemClick(const TMenuItem& item) { menus_.MenuItemClick(item); }
    // The model's condition of that index, at the end of the current bracket.
    void AddCustomConditionClick(int condition) { menus_.AddCustomConditionClick(condition); }
    void ValueMenuItemClick(const TMenuItem& item, TFilterCond& condition, int value) {
        menus_.ValueMenuItemClick(item, condition, value);
    }
    TPanelMenus& GetMenus() { return menus_; }
    // Whether a value may be made a parameter: aoAllowParams is on, and it is no sub-query.
    bool AllowsParam(const TFilterCond& condition, int value) const;

    // --- Dialogs, which the view shows.
    void SetView(TQueryPanelView* view); // not owned; none: no screen
    TQueryPanelView& View() const { return *view_; }
    bool EditQResult() { return ShowResultFieldsDlg(rfeHelpContext_, 0); }
    bool ShowResultFieldsDlg(int helpContext, int options);
    bool EditTitles();
    // True when the sub-query was confirmed; the arguments are then its query text, SQL and options.
    bool EditSubQuery(TStringList& lines, std::string& sql, TSQLOptions& options);

    // --- Text.
    virtual void SaveToStrings(TStringList& lines);
    virtual void LoadFromStrings(const TStringList& lines);
    void SaveToFile(const std::string& fileName);
    void LoadFromFile(const std::string& fileName);
    // A condition's value texts as a query text keeps them, and the way back.
    void SaveValues(const TFilterCond& condition, std::string& value1, std::string& value2) const;
    void LoadValues(std::string_view value1, std::string_view value2, TFilterCond& condition) const;
    static int SQLOptionsToInt(TSQLOptions options);
    static TSQLOptions IntToSQLOptions(int bits);
    double GetVersion() const { return version_; } // of the text read last

    // --- Titles.
    const TStringList& GetTitles() const { return titles_; }
    void SetTitles(const TStringList& titles);
    std::string GetTitle(std::string_view key) const { return std::string(titles_.Value(key)); }
    void SetTitle(std::string_view key, std::string_view value); // only a key that is there
    void LoadDefTitles();
    const TStringList& GetDefTitles() const { return defTitles_; }
    void LoadOldTitlesFromStrings(const TStringList& lines);
    void MergeDFMTitles(const TStringList& lines);
    bool GetSaveTitles() const { return saveTitles_; }
    void SetSaveTitles(bool on) { saveTitles_ = on; }

    // --- Notices.
    void QueryChanged() override;
    void ParametersListChanged() override;
    void BeginUpdate() override;
    void EndUpdate() override;
    TVBuilderState GetState() const { return state_; }
    bool GetModified() const { return modified_; }
    void SetModified(bool modified) { modified_ = modified; }
    void AddLink(TVQueryPanelLink* link) { links_.Add(link); }
    void DeleteLink(TVQueryPanelLink* link) { links_.Remove(link); }

    // --- Query base.
    TVQueryBase* GetQueryBase() const { return baseLink_.GetQueryBase(); }
    void SetQueryBase(TVQueryBase* base);
    void LoadCurBaseQuery();

    // --- Looks.
    TQPAppearance& GetAppearance() { return appearance_; }
    const TQPAppearance& GetAppearance() const { return appearance_; }
    int GetRowSpace() const { return rowSpace_; } // pixels, as those below
    void SetRowSpace(int space) { SetLayout(rowSpace_, space); }
    int GetTabSpace() const { return tabSpace_; }
    void SetTabSpace(int space) { SetLayout(tabSpace_, space); }
    int GetElemSpace() const { return elemSpace_; }
    void SetElemSpace(int space) { SetLayout(elemSpace_, space); }
    int GetHeaderLeft() const { return headerLeft_; }
    void SetHeaderLeft(int left) { SetLayout(headerLeft_, left); }
    int GetHeaderTop() const { return headerTop_; }
    void SetHeaderTop(int top) { SetLayout(headerTop_, top); }
    int GetMaxPopupItemCount() const { return maxPopupItemCount_; }
    void SetMaxPopupItemCount(int count) { maxPopupItemCount_ = count; }
    const std::string& GetHelpFileName() const { return helpFileName_; }
    void SetHelpFileName(const std::string& name) { helpFileName_ = name; }
    int GetRFEHelpContext() const { return rfeHelpContext_; }
    void SetRFEHelpContext(int context) { rfeHelpContext_ = context; }
    TComponent* GetImages() const { return images_; } // the host's image list
    void SetImages(TComponent* images);

    // --- Events.
    TNotifyEvent OnActive;
    TNotifyEvent OnChange;
    TNotifyEvent OnParamListChange;
    TConditionEvent OnCustomEdit;
    TValueEvent OnChangeValue;
    TValueEvent OnSetValue;
    TValueEvent OnCustomValue;
    TValueEvent OnValueDblClick;
    std::function<void(TVQueryPanel& sender, TFilterCond& condition, TConditionChange change)>
        OnConditionChange;
    // May change a condition's text before it becomes part of the statement.
    std::function<void(TVQueryPanel& sender, TFilterCond& condition, std::string& text)> OnBuildSQL;
    std::function<void(TVQueryPanel& sender, const TDSFieldGroup& group, int& imageIndex)>
        OnGetGroupImageIndex;
    std::function<void(TVQueryPanel& sender, const TDSField& field, int& imageIndex)> OnGetItemImageIndex;
    TNotifyEvent OnRFEHelpClick;

protected:
    void Notification(TComponent* component, TOperation operation) override;
    void Loaded() override;
    void DefineProperties(TFiler& filer) override;

private:
    friend class TQueryTextReader;
    friend class TSQLJoins;
    friend class TSQLReader;
    friend class TRowMover;

    // TQueryHost.
    bool RemovesEmptyBrackets() const override {
        return !keepsEmptyBrackets_ && appearance_.GetOptions().Contains(aoNonEmptyBrackets);
    }
    bool IsLoadingQuery() const override { return state_ == stLoading; }
    void RowsChanged() override;
    void EnsureRowNumbers() override;
    void RowChanged(TFilterRow& row) override;
    void RowHidden(TFilterRow& row) override;
    void RowDeleting(TFilterRow& row) override;
    void RowDestroyed(TFilterRow& row) override;
    void ValueChanged(TFilterCond& condition, int value) override;
    void ConditionChanged(TFilterCond& condition, TConditionChange change) override;
    bool WantsConditionText() const override { return static_cast<bool>(OnBuildSQL); }
    void ConditionText(TFilterCond& condition, std::string& text) override {
        OnBuildSQL(*this, condition, text);
    }

    // TModelListener.
    void FieldRemoved(TDSField& field) override;
    void OperatorRemoved(TDSOperator& op) override;
    void TableRemoved(TDSTable& table) override;
    void ConditionRemoved(TDSCondition& condition) override;
    void ModelReplacing() override;
    void ModelReplaced() override;

    template <typename TRead>
    void ReadWhileInactive(TRead read);
    void InitStructureRelatedProperties();
    void InitializeNewRow(TFilterRow& row);
    void SQLOptionsChanged();
    void AppearanceChanged();
    void ReadOldOptions(const TFormValue& value);
    void CheckHeaderTitle() const;
    void MoveCurRow(TRowTarget target);
    void StepCurRow(int by);
    void PlaceRowsAnew();
    void NumberRows(TFilterRow& row);
    template <typename TVisit>
    void ForEachCondition(TVisit visit);
    void AppendQueryText(const TFilterRow& row, const std::string& indent);
    void SetLayout(int& member, int value);

    // What a condition or a result field refers to, kept by ID and name while the model is replaced.
    struct TFieldTarget {
        int ID;
        std::string FullName;
    };
    static TFieldTarget TargetOf(const TDSField& field) { return {field.GetID(), field.GetFullName()}; }
    TDSField* FindTarget(const TFieldTarget& target) const;
    struct TConditionTarget {
        TFilterCond* Condition;
        TFieldTarget Field; // of a predefined condition the ID alone
        std::string OperatorName;
    };
    std::vector<TConditionTarget> conditionTargets_;
    std::vector<std::vector<TFieldTarget>> resultFieldTargets_;

    TVCustomDBStructure* dbStruct_ = nullptr;
    std::string mainTableName_;
    TDSTable* mainTable_ = nullptr;
    TQueryResult result_;
    std::unique_ptr<TFilterBracket> root_;
    std::string queryName_;
    TStringList description_;
    TStringList userData_;
    TStringList titles_;
    TStringList defTitles_;
    TStringList loadDefTitles_; // the defaults that a query text's titles are laid over
    TStringList oldTitles_;     // a positional titles list from an old form, until it is loaded
    bool saveTitles_ = true;
    TStringList pendingRFields_; // result fields that wait for a model
    TStringList queryText_;
    TStringList sqlParams_;
    TSQLOptions sqlOptions_ = DefaultSQLOptions;
    TSQLSyntax sqlSyntax_ = ssSQL2;
    bool saveSQLOptions_ = false;
    TSQLDialect dialect_ = sdStandard;
    bool strict_ = false;
    double version_ = CurrentQueryVersion;
    int subQueryLevel_ = 0; // how many panels around this one read the same statement

    TVBuilderState state_ = stIdle;
    bool active_ = false;
    bool modified_ = false;
    bool updating_ = false;
    int updateCount_ = 0;
    TFilterRow* currentRow_ = nullptr;
    bool movedByKeyboard_ = false;
    std::vector<TFilterRow*> rowOrder_; // all rows by number, while the numbers are right
    bool rowNumbersStale_ = true;
    unsigned rowsVersion_ = 1;
    bool keepsEmptyBrackets_ = false; // while a row moves
    TPanelKeyboard keyboard_{*this};
    TPanelMenus menus_{*this};

    int rowSpace_ = 3;
    int tabSpace_ = 20;
    int elemSpace_ = 5;
    int headerLeft_ = 5;
    int headerTop_ = 5;
    int maxPopupItemCount_ = 0;
    std::string helpFileName_;
    int rfeHelpContext_ = 0;
    TComponent* images_ = nullptr;
    TQPAppearance appearance_;
    TVQPBaseLink baseLink_;
    TVQueryPanelLinkList links_;
    TQueryPanelView* view_;
};

} // namespace lumora
