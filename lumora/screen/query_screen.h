// A query as it is shown and worked with: its current row, its words, its menus and keys, without a window.
// It draws nothing; a view does that.
#pragma once

#include "lumora/screen/appearance.h"
#include "lumora/screen/keyboard.h"
#include "lumora/screen/menus.h"
#include "lumora/screen/screen_host.h"
#include "lumora/screen/user_formats.h"
#include "lumora/screen/view.h"
#include "lumora/titles/titles.h"

#include <string>
#include <string_view>

namespace lumora {

class TCustomCond;
class TDSCondition;
class TFilterBracket;
class TVQuery;
class TSimpleCond;
struct TRowTarget;

class TQueryScreen {
public:
    // The query outlives its screen.
    explicit TQueryScreen(TVQuery& query);
    TQueryScreen(const TQueryScreen&) = delete;
    TQueryScreen& operator=(const TQueryScreen&) = delete;

    TVQuery& GetQuery() const { return query_; }
    // Neither is owned; none: one that does nothing.
    void SetHost(TScreenHost* host);
    TScreenHost& Host() const { return *host_; }
    void SetView(TScreenView* view);
    TScreenView& View() const { return *view_; }

    // --- Activity. An inactive screen shows no rows.
    bool GetActive() const { return active_; }
    // EVQueryPanelError without a model, or when the header's title has no place for the link word.
    void SetActive(bool active);

    // --- Rows. Those that add a row return none when whoever was told of it has removed it. One that is
    // added becomes current; a condition begins with the model's first field and that field's first operator.
    TSimpleCond* AddCondition(TFilterBracket& bracket);
    TSimpleCond* AddConditionNum(TFilterBracket& bracket, int number);
    TCustomCond* AddCustomCondition(TFilterBracket& bracket, TDSCondition& condition);
    TFilterBracket* AddBracket(TFilterBracket& bracket);
    TFilterBracket* AddBracketNum(TFilterBracket& bracket, int number);

    TFilterRow* GetCurrentRow() const { return currentRow_; }
    void SetCurrentRow(TFilterRow* row);
    TFilterBracket* GetCurrentBracket() const;
    int GetCurrentRowNum() const;
    // To the visible row after or before the current one; such moves come from the keyboard.
    void IncCurRow() { StepCurRow(1); }
    void DecCurRow() { StepCurRow(-1); }
    bool GetMovedByKeyboard() const { return movedByKeyboard_; }
    // Move the current row: before or behind its neighbour, out of its bracket, into the bracket before it.
    // Nothing happens when it cannot go there.
    void MoveCurRowUp();
    void MoveCurRowDown();
    void MoveCurRowLeft();
    void MoveCurRowRight();
    // Deletes the current row, but never the root bracket.
    void DeleteCurRow();

    // --- Words.
    TTitles& GetTitles() { return titles_; }
    std::string GetTitle(std::string_view key) const { return titles_.Get(key); }
    void SetTitles(const TStringList& lines);
    // The query as the words on the screen.
    std::string GetQueryText() const;

    // How dates and numbers are typed and shown; none, as from the start: as conditions keep them.
    const TUserFormats* GetUserFormats() const { return userFormats_ ? &*userFormats_ : nullptr; }
    void SetUserFormats(std::optional<TUserFormats> formats);

    // --- Mouse, keyboard and menus. A click on a word, given by its index in ScreenWords of the row (-1:
    // beside the words): the row becomes current and the word does what it is there for.
    void ClickWord(TFilterRow& row, int word);
    void AddRowLabelMouseDown(); // a click on the line that adds a condition
    void DblClickWord(TFilterRow& row, int word);
    // The menu that a right click on a word or the menu key asks for (-1: beside the words).
    void ContextMenu(TFilterRow& row, int word);
    // The current row's current word, for drawing it and for stepping through its words.
    TScreenKeyboard& GetKeyboard() { return keyboard_; }
    TScreenMenus& GetMenus() { return menus_; }
    void UpdateMenus();
    // Whether a value may be made a parameter: aoAllowParams is on, and it is no sub-query.
    bool AllowsParam(const TFilterCond& condition, int value) const;

    // --- Looks; pixels.
    TQPAppearance& GetAppearance() { return appearance_; }
    const TQPAppearance& GetAppearance() const { return appearance_; }
    int GetRowSpace() const { return rowSpace_; }
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

    // --- Told by the query, whose listener passes it on.
    void RowsChanged() { view_->PlaceAllRows(); }
    void RowChanged(TFilterRow& row) { view_->RepaintRow(row); }
    void RowDeleting(TFilterRow& row);
    void RowDestroyed(TFilterRow& row);
    void ModelReplaced();

private:
    template <typename TInsert>
    auto AddNew(TInsert insert) -> decltype(insert());
    void TakeFirstField(TFilterRow& row);
    void MoveCurRow(TRowTarget target);
    void StepCurRow(int by);
    bool ShowsHeader() const { return appearance_.GetStyle() != psAndOr; }
    void CheckHeaderTitle() const;
    void AppearanceChanged();
    void AppendQueryText(TStringList& lines, const TFilterRow& row, const std::string& indent) const;
    void SetLayout(int& member, int value);

    TVQuery& query_;
    TScreenHost* host_;
    TScreenView* view_;
    bool active_ = false;
    TFilterRow* currentRow_ = nullptr;
    bool movedByKeyboard_ = false;
    TTitles titles_;
    TQPAppearance appearance_;
    std::optional<TUserFormats> userFormats_;
    TScreenKeyboard keyboard_{*this};
    TScreenMenus menus_{*this};
    int rowSpace_ = 3;
    int tabSpace_ = 20;
    int elemSpace_ = 5;
    int headerLeft_ = 5;
    int headerTop_ = 5;
    int maxPopupItemCount_ = 0;
};

} // namespace lumora
