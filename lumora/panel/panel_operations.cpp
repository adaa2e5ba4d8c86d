// What the panel passes on to its query and its screen.
#include "lumora/model/tables.h"
#include "lumora/panel/panel_parts.h"
#include "lumora/querytext/query_text.h"

namespace lumora {

// --- Data model and main table.

const std::string& TVQueryPanel::GetMainTableName() const {
    return parts_->Query.GetMainTableName();
}

void TVQueryPanel::SetMainTableName(const std::string& name) {
    parts_->Query.SetMainTableName(name);
}

TDSTable* TVQueryPanel::GetMainTable() const {
    return parts_->Query.GetMainTable();
}

std::string TVQueryPanel::GetMainTableAlias() const {
    return GetMainTable() ? GetMainTable()->GetAlias() : std::string();
}

void TVQueryPanel::RefreshMainTable() {
    parts_->Query.RefreshMainTable();
}

void TVQueryPanel::CheckIfDBStructAssigned() const {
    parts_->Query.CheckIfDBStructAssigned();
}

// --- The query.

TFilterBracket* TVQueryPanel::GetRootBracket() const {
    return parts_->Query.GetRootBracket();
}

void TVQueryPanel::RecreateRootBracket() {
    parts_->Query.RecreateRootBracket();
}

TQueryResult& TVQueryPanel::GetQResult() {
    return parts_->Query.GetQResult();
}

const TQueryResult& TVQueryPanel::GetQResult() const {
    return parts_->Query.GetQResult();
}

const std::string& TVQueryPanel::GetQueryName() const {
    return parts_->Query.GetQueryName();
}

void TVQueryPanel::SetQueryName(const std::string& name) {
    parts_->Query.SetQueryName(name);
}

const TStringList& TVQueryPanel::GetDescription() const {
    return parts_->Query.GetDescription();
}

void TVQueryPanel::SetDescription(const TStringList& lines) {
    parts_->Query.SetDescription(lines);
}

const TStringList& TVQueryPanel::GetUserData() const {
    return parts_->Query.GetUserData();
}

void TVQueryPanel::SetUserData(const TStringList& lines) {
    parts_->Query.SetUserData(lines);
}

TSQLOptions TVQueryPanel::GetSQLOptions() const {
    return parts_->Query.GetSQLOptions();
}

void TVQueryPanel::SetSQLOptions(TSQLOptions options) {
    parts_->Query.SetSQLOptions(options);
}

TSQLSyntax TVQueryPanel::GetSQLSyntax() const {
    return parts_->Query.GetSQLSyntax();
}

void TVQueryPanel::SetSQLSyntax(TSQLSyntax syntax) {
    parts_->Query.SetSQLSyntax(syntax);
}

TSQLDialect TVQueryPanel::GetDialect() const {
    return parts_->Query.GetDialect();
}

void TVQueryPanel::SetDialect(TSQLDialect dialect) {
    parts_->Query.SetDialect(dialect);
}

bool TVQueryPanel::GetStrict() const {
    return parts_->Query.GetStrict();
}

void TVQueryPanel::SetStrict(bool strict) {
    parts_->Query.SetStrict(strict);
}

bool TVQueryPanel::GetSaveSQLOptions() const {
    return parts_->Query.GetSaveSQLOptions();
}

void TVQueryPanel::SetSaveSQLOptions(bool on) {
    parts_->Query.SetSaveSQLOptions(on);
}

void TVQueryPanel::BuildQuery() {
    parts_->Query.BuildQuery(GetActive());
}

std::string TVQueryPanel::ExtractValue(const TFilterCond& condition, int value) const {
    return parts_->Query.ExtractValue(condition, value);
}

std::string TVQueryPanel::ProcessDateValue(TFieldType type, std::string_view text, bool toSQL) const {
    return parts_->Query.ProcessDateValue(type, text, toSQL);
}

const TStringList& TVQueryPanel::GetSQLParams() {
    return parts_->Query.GetSQLParams();
}

double TVQueryPanel::GetVersion() const {
    return parts_->Query.GetVersion();
}

void TVQueryPanel::SaveValues(const TFilterCond& condition, std::string& value1, std::string& value2) const {
    lumora::SaveValues(condition, value1, value2);
}

void TVQueryPanel::LoadValues(std::string_view value1, std::string_view value2,
                              TFilterCond& condition) const {
    lumora::LoadValues(value1, value2, condition);
}

int TVQueryPanel::SQLOptionsToInt(TSQLOptions options) {
    return lumora::SQLOptionsToInt(options);
}

TSQLOptions TVQueryPanel::IntToSQLOptions(int bits) {
    return lumora::IntToSQLOptions(bits);
}

void TVQueryPanel::BeginUpdate() {
    parts_->Query.BeginUpdate();
}

void TVQueryPanel::EndUpdate() {
    parts_->Query.EndUpdate();
}

TVBuilderState TVQueryPanel::GetState() const {
    return parts_->Query.GetState();
}

bool TVQueryPanel::GetModified() const {
    return parts_->Query.GetModified();
}

void TVQueryPanel::SetModified(bool modified) {
    parts_->Query.SetModified(modified);
}

void TVQueryPanel::AddLink(TVQueryPanelLink* link) {
    parts_->Links.Add(link);
}

void TVQueryPanel::DeleteLink(TVQueryPanelLink* link) {
    parts_->Links.Remove(link);
}

TVQueryBase* TVQueryPanel::GetQueryBase() const {
    return parts_->BaseLink.GetQueryBase();
}

// --- Rows.

TSimpleCond* TVQueryPanel::AddCondition(TFilterBracket& bracket) {
    return parts_->Screen.AddCondition(bracket);
}

TSimpleCond* TVQueryPanel::AddConditionNum(TFilterBracket& bracket, int number) {
    return parts_->Screen.AddConditionNum(bracket, number);
}

TCustomCond* TVQueryPanel::AddCustomCondition(TFilterBracket& bracket, TDSCondition& condition) {
    return parts_->Screen.AddCustomCondition(bracket, condition);
}

TFilterBracket* TVQueryPanel::AddBracket(TFilterBracket& bracket) {
    return parts_->Screen.AddBracket(bracket);
}

TFilterBracket* TVQueryPanel::AddBracketNum(TFilterBracket& bracket, int number) {
    return parts_->Screen.AddBracketNum(bracket, number);
}

TSimpleCond* TVQueryPanel::ManualAddCond(TFilterBracket& bracket, TDSField* field, TDSOperator* op,
                                         const std::string& value) {
    return parts_->Query.ManualAddCond(bracket, field, op, value);
}

void TVQueryPanel::ClearRows() {
    parts_->Query.ClearRows();
}

void TVQueryPanel::ClearAll() {
    parts_->Query.ClearAll();
}

bool TVQueryPanel::GetEmpty() const {
    return parts_->Query.GetEmpty();
}

TFilterRow* TVQueryPanel::GetRowByNum(int number) {
    return parts_->Query.GetRowByNum(number);
}

TFilterRow* TVQueryPanel::GetLastRow() {
    return parts_->Query.GetLastRow();
}

bool TVQueryPanel::HasRow(const TFilterRow* row) {
    return parts_->Query.HasRow(row);
}

unsigned TVQueryPanel::GetRowsVersion() const {
    return parts_->Query.GetRowsVersion();
}

TFilterRow* TVQueryPanel::GetCurrentRow() const {
    return parts_->Screen.GetCurrentRow();
}

void TVQueryPanel::SetCurrentRow(TFilterRow* row) {
    parts_->Screen.SetCurrentRow(row);
}

TFilterBracket* TVQueryPanel::GetCurrentBracket() const {
    return parts_->Screen.GetCurrentBracket();
}

int TVQueryPanel::GetCurrentRowNum() const {
    return parts_->Screen.GetCurrentRowNum();
}

void TVQueryPanel::IncCurRow() {
    parts_->Screen.IncCurRow();
}

void TVQueryPanel::DecCurRow() {
    parts_->Screen.DecCurRow();
}

bool TVQueryPanel::GetMovedByKeyboard() const {
    return parts_->Screen.GetMovedByKeyboard();
}

void TVQueryPanel::MoveCurRowUp() {
    parts_->Screen.MoveCurRowUp();
}

void TVQueryPanel::MoveCurRowDown() {
    parts_->Screen.MoveCurRowDown();
}

void TVQueryPanel::MoveCurRowLeft() {
    parts_->Screen.MoveCurRowLeft();
}

void TVQueryPanel::MoveCurRowRight() {
    parts_->Screen.MoveCurRowRight();
}

void TVQueryPanel::DeleteCurRow() {
    parts_->Screen.DeleteCurRow();
}

// --- The screen.

bool TVQueryPanel::GetActive() const {
    return parts_->Screen.GetActive();
}

void TVQueryPanel::SetActive(bool active) {
    parts_->Screen.SetActive(active);
}

std::string TVQueryPanel::GetQueryText() {
    return parts_->Screen.GetQueryText();
}

bool TVQueryPanel::KeyDown(int key, TShiftState shift) {
    return parts_->Screen.GetKeyboard().KeyDown(key, shift);
}

TScreenKeyboard& TVQueryPanel::GetKeyboard() {
    return parts_->Screen.GetKeyboard();
}

void TVQueryPanel::ClickWord(TFilterRow& row, int word) {
    parts_->Screen.ClickWord(row, word);
}

void TVQueryPanel::AddRowLabelMouseDown() {
    parts_->Screen.AddRowLabelMouseDown();
}

void TVQueryPanel::DblClickWord(TFilterRow& row, int word) {
    parts_->Screen.DblClickWord(row, word);
}

void TVQueryPanel::ContextMenu(TFilterRow& row, int word) {
    parts_->Screen.ContextMenu(row, word);
}

void TVQueryPanel::CreateMenus() {
    GetMenus().CreateMenus();
}

void TVQueryPanel::UpdateMenus() {
    parts_->Screen.UpdateMenus();
}

void TVQueryPanel::VPopup(TPopupMenu& menu) {
    GetMenus().VPopup(menu);
}

void TVQueryPanel::MenuItemClick(const TMenuItem& item) {
    GetMenus().MenuItemClick(item);
}

void TVQueryPanel::AddCustomConditionClick(int condition) {
    GetMenus().AddCustomConditionClick(condition);
}

void TVQueryPanel::ValueMenuItemClick(const TMenuItem& item, TFilterCond& condition, int value) {
    GetMenus().ValueMenuItemClick(item, condition, value);
}

TScreenMenus& TVQueryPanel::GetMenus() {
    return parts_->Screen.GetMenus();
}

bool TVQueryPanel::AllowsParam(const TFilterCond& condition, int value) const {
    return parts_->Screen.AllowsParam(condition, value);
}

const TStringList& TVQueryPanel::GetTitles() const {
    return parts_->Screen.GetTitles().GetLines();
}

std::string TVQueryPanel::GetTitle(std::string_view key) const {
    return parts_->Screen.GetTitle(key);
}

void TVQueryPanel::SetTitle(std::string_view key, std::string_view value) {
    parts_->Screen.GetTitles().Set(key, value);
}

void TVQueryPanel::LoadDefTitles() {
    parts_->Screen.GetTitles().LoadDefaults();
}

const TStringList& TVQueryPanel::GetDefTitles() const {
    return parts_->Screen.GetTitles().GetDefaults();
}

void TVQueryPanel::LoadOldTitlesFromStrings(const TStringList& lines) {
    parts_->Screen.GetTitles().LoadOld(lines);
}

void TVQueryPanel::MergeDFMTitles(const TStringList& lines) {
    parts_->Screen.GetTitles().MergePositional(lines);
}

TQPAppearance& TVQueryPanel::GetAppearance() {
    return parts_->Screen.GetAppearance();
}

const TQPAppearance& TVQueryPanel::GetAppearance() const {
    return parts_->Screen.GetAppearance();
}

int TVQueryPanel::GetRowSpace() const {
    return parts_->Screen.GetRowSpace();
}

void TVQueryPanel::SetRowSpace(int space) {
    parts_->Screen.SetRowSpace(space);
}

int TVQueryPanel::GetTabSpace() const {
    return parts_->Screen.GetTabSpace();
}

void TVQueryPanel::SetTabSpace(int space) {
    parts_->Screen.SetTabSpace(space);
}

int TVQueryPanel::GetElemSpace() const {
    return parts_->Screen.GetElemSpace();
}

void TVQueryPanel::SetElemSpace(int space) {
    parts_->Screen.SetElemSpace(space);
}

int TVQueryPanel::GetHeaderLeft() const {
    return parts_->Screen.GetHeaderLeft();
}

void TVQueryPanel::SetHeaderLeft(int left) {
    parts_->Screen.SetHeaderLeft(left);
}

int TVQueryPanel::GetHeaderTop() const {
    return parts_->Screen.GetHeaderTop();
}

void TVQueryPanel::SetHeaderTop(int top) {
    parts_->Screen.SetHeaderTop(top);
}

int TVQueryPanel::GetMaxPopupItemCount() const {
    return parts_->Screen.GetMaxPopupItemCount();
}

void TVQueryPanel::SetMaxPopupItemCount(int count) {
    parts_->Screen.SetMaxPopupItemCount(count);
}

} // namespace lumora
