// The query panel: the component that a host places. It owns one query (lumora/query/), shows it on a screen
// (lumora/screen/) and tells the host of it by events:
//
//     TVQueryPanel panel;
//     panel.SetDbStruct(&model);
//     panel.OnChange = [](TVQueryPanel& changed) { ... };
//     panel.Activate();
//
// A handler may do anything with the query, removing the row that it is told of included, but it must not
// free the panel. A panel belongs to one thread.
#pragma once

#include "lumora/platform/component.h"
#include "lumora/platform/event.h"
#include "lumora/platform/keys.h"
#include "lumora/platform/string_list.h"
#include "lumora/query/sql_options.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace lumora {

class TCustomCond;
class TDSCondition;
class TDSField;
class TDSFieldGroup;
class TDSOperator;
class TDSTable;
class TFilterBracket;
class TFilterCond;
class TFilterRow;
class TQPAppearance;
class TVQuery;
class TQueryPanelView;
class TQueryResult;
class TQueryScreen;
class TScreenKeyboard;
class TScreenMenus;
class TSimpleCond;
class TSQLBracket;
class TSQLCondition;
class TVCustomDBStructure;
class TVQueryBase;
class TVQueryPanelLink;
struct TMenuItem;
struct TPopupMenu;
enum TConditionChange : int;
enum TFieldType : std::uint8_t;
enum TVBuilderState : std::uint8_t;

class TVQueryPanel : public TComponent {
public:
    using TNotifyEvent = TEvent<TVQueryPanel&>;
    using TConditionEvent = TEvent<TVQueryPanel&, TFilterCond&>;
    using TValueEvent = TEvent<TVQueryPanel&, TFilterCond&, int>;

    explicit TVQueryPanel(TComponent* owner = nullptr);
    ~TVQueryPanel() override;

    std::string_view ClassName() const override { return "TVQueryPanel"; }
    std::span<const TPropertyInfo> PublishedProperties() const override;

    // What the panel is made of.
    TVQuery& GetQuery() const;
    TQueryScreen& GetScreen() const;

    // --- Data model and main table.
    TVCustomDBStructure* GetDbStruct() const { return dbStruct_; }
    void SetDbStruct(TVCustomDBStructure* structure);
    const std::string& GetMainTableName() const;
    void SetMainTableName(const std::string& name);
    TDSTable* GetMainTable() const;
    std::string GetMainTableAlias() const;
    void RefreshMainTable();
    // EVQueryPanelError "DBStructure is not specified" without a model.
    void CheckIfDBStructAssigned() const;

    // --- The query.
    TFilterBracket* GetRootBracket() const; // none without a model
    void RecreateRootBracket();
    TQueryResult& GetQResult();
    const TQueryResult& GetQResult() const;
    const std::string& GetQueryName() const;
    void SetQueryName(const std::string& name);
    const TStringList& GetDescription() const;
    void SetDescription(const TStringList& lines);
    const TStringList& GetUserData() const;
    void SetUserData(const TStringList& lines);
    TSQLOptions GetSQLOptions() const;
    void SetSQLOptions(TSQLOptions options);
    TSQLSyntax GetSQLSyntax() const;
    void SetSQLSyntax(TSQLSyntax syntax);
    // The engine that the statement is for; the standard: as the model and the syntax say.
    TSQLDialect GetDialect() const;
    void SetDialect(TSQLDialect dialect);
    // The statement keeps its shape and means what the rows say, or building it is refused.
    bool GetStrict() const;
    void SetStrict(bool strict);
    bool GetSaveSQLOptions() const;
    void SetSaveSQLOptions(bool on);

    // --- Rows. Those that add a row return none when a handler that was told of it has removed it.
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
    bool GetEmpty() const;

    TFilterRow* GetCurrentRow() const;
    void SetCurrentRow(TFilterRow* row);
    TFilterBracket* GetCurrentBracket() const;
    int GetCurrentRowNum() const;
    void SetCurrentRowNum(int number) { SetCurrentRow(GetRowByNum(number)); }
    TFilterRow* GetRowByNum(int number); // none when no row has the number
    TFilterRow* GetLastRow();
    // To the visible row after or before the current one; such moves come from the keyboard.
    void IncCurRow();
    void DecCurRow();
    bool GetMovedByKeyboard() const;
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
    unsigned GetRowsVersion() const;

    // --- Activity. An inactive panel shows no rows and builds no conditions.
    bool GetActive() const;
    void SetActive(bool active);
    void Activate() { SetActive(true); }
    void Deactivate() { SetActive(false); }
    // Shows the query anew.
    void RefreshPanel();

    // --- SQL and words.
    // Builds the query; GetQResult().GetSQL() then gives the statement.
    void BuildQuery();
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
    bool KeyDown(int key, TShiftState shift);
    // The current row's current word, for drawing it and for stepping through its words.
    TScreenKeyboard& GetKeyboard();
    // A click on a word, given by its index in ScreenWords of the row (-1: beside the words): the row becomes
    // current and the word does what it is there for. The screen shows the rest through the view.
    void ClickWord(TFilterRow& row, int word);
    void AddRowLabelMouseDown(); // a click on the line that adds a condition
    // A double click; tells the host of one on a value.
    void DblClickWord(TFilterRow& row, int word);
    // The menu that a right click on a word or the menu key asks for (-1: beside the words).
    void ContextMenu(TFilterRow& row, int word);
    void CreateMenus();
    void UpdateMenus();
    void VPopup(TPopupMenu& menu);
    void MenuItemClick(const TMenuItem& item);
    // The model's condition of that index, at the end of the current bracket.
    void AddCustomConditionClick(int condition);
    void ValueMenuItemClick(const TMenuItem& item, TFilterCond& condition, int value);
    TScreenMenus& GetMenus();
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
    double GetVersion() const; // of the text read last

    // --- Titles.
    const TStringList& GetTitles() const;
    void SetTitles(const TStringList& titles);
    std::string GetTitle(std::string_view key) const;
    void SetTitle(std::string_view key, std::string_view value); // only a key that is there
    void LoadDefTitles();
    const TStringList& GetDefTitles() const;
    void LoadOldTitlesFromStrings(const TStringList& lines);
    void MergeDFMTitles(const TStringList& lines);
    bool GetSaveTitles() const { return saveTitles_; }
    void SetSaveTitles(bool on) { saveTitles_ = on; }

    // --- Notices. The query calls the first two for each change, unless it is loading or an update is under
    // way; so may the host.
    virtual void QueryChanged();
    void ParametersListChanged();
    void BeginUpdate();
    void EndUpdate();
    TVBuilderState GetState() const;
    bool GetModified() const;
    void SetModified(bool modified);
    void AddLink(TVQueryPanelLink* link);
    void DeleteLink(TVQueryPanelLink* link);

    // --- Query base.
    TVQueryBase* GetQueryBase() const;
    void SetQueryBase(TVQueryBase* base);
    void LoadCurBaseQuery();

    // --- Looks; pixels.
    TQPAppearance& GetAppearance();
    const TQPAppearance& GetAppearance() const;
    int GetRowSpace() const;
    void SetRowSpace(int space);
    int GetTabSpace() const;
    void SetTabSpace(int space);
    int GetElemSpace() const;
    void SetElemSpace(int space);
    int GetHeaderLeft() const;
    void SetHeaderLeft(int left);
    int GetHeaderTop() const;
    void SetHeaderTop(int top);
    int GetMaxPopupItemCount() const;
    void SetMaxPopupItemCount(int count);
    const std::string& GetHelpFileName() const { return helpFileName_; }
    void SetHelpFileName(const std::string& name) { helpFileName_ = name; }
    int GetRFEHelpContext() const { return rfeHelpContext_; }
    void SetRFEHelpContext(int context) { rfeHelpContext_ = context; }
    TComponent* GetImages() const { return images_; } // the host's image list
    void SetImages(TComponent* images);

    // --- Events. Each takes the host's handler; the second argument is the condition, the third its value.
    TNotifyEvent OnActive;
    TNotifyEvent OnChange;
    TNotifyEvent OnParamListChange;
    TConditionEvent OnCustomEdit;
    TValueEvent OnChangeValue;
    TValueEvent OnSetValue;
    TValueEvent OnCustomValue;
    TValueEvent OnValueDblClick;
    TEvent<TVQueryPanel&, TFilterCond&, TConditionChange> OnConditionChange;
    // May change a condition's text before it becomes part of the statement.
    TEvent<TVQueryPanel&, TFilterCond&, std::string&> OnBuildSQL;
    // Set the index of an image in Images.
    TEvent<TVQueryPanel&, const TDSFieldGroup&, int&> OnGetGroupImageIndex;
    TEvent<TVQueryPanel&, const TDSField&, int&> OnGetItemImageIndex;
    TNotifyEvent OnRFEHelpClick;

protected:
    void Notification(TComponent* component, TOperation operation) override;
    void Loaded() override;
    void DefineProperties(TFiler& filer) override;

private:
    struct TParts;

    template <typename TRead>
    void ReadWhileInactive(TRead read);
    void ReadOldOptions(const TFormValue& value);

    TVCustomDBStructure* dbStruct_ = nullptr;
    std::unique_ptr<TParts> parts_;
    TQueryPanelView* view_;
    TStringList oldTitles_; // a positional titles list from an old form, until it is loaded
    bool saveTitles_ = true;
    std::string helpFileName_;
    int rfeHelpContext_ = 0;
    TComponent* images_ = nullptr;
};

} // namespace lumora
