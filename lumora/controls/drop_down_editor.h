// An open drop-down editor, without its screen: what is shown of its items, what is chosen, typed and
// checked, and what comes out in the end.
#pragma once

#include "lumora/platform/drop_down.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace lumora {

enum TDropDownAnswer : std::uint8_t {
    daText,  // a text was typed
    daItem,  // an item was chosen
    daChecks // items were checked
};

struct TDropDownResult {
    TDropDownAnswer Answer = daText;
    std::string Text; // what was typed; the item's caption; the checked items' captions, ", " between them
    int Item = -1;    // -1 for a text
    std::vector<int> Checks;
};

// One row at the top level: an item, or a group with its items.
struct TDropDownRow {
    std::string_view Caption;
    int Item = -1; // -1: a group
    std::vector<int> Items;
};

class TDropDownEditor {
public:
    // From this many items on a list has a search box.
    static constexpr int SearchBoxFrom = 10;

    explicit TDropDownEditor(TDropDownContent content);

    const TDropDownContent& GetContent() const { return content_; }
    TDropDownKind GetKind() const { return content_.Kind; }
    bool HasItems() const; // the editor is of a kind that offers items

    // Reading the items, which may take time: false when they cannot be read; GetError then says why.
    bool NeedsLoading() const;
    bool Load();
    // Why the items could not be read, or the last text was refused; empty when nothing is wrong.
    const std::string& GetError() const { return error_; }

    // Items.
    bool ShowsSearchBox() const;
    // Shows the items that match: those that begin with the text, then those with a word that does, then
    // those that hold it anywhere (a tree keeps its order); the best becomes current. Letter case does not
    // matter.
    void SetSearch(std::string_view text);
    const std::string& GetSearch() const { return search_; }
    bool HasMatch(std::string_view text) const; // some item would be shown
    const std::vector<int>& GetShown() const { return shown_; }
    // The shown items as they stand: in their groups in a tree, one below the other elsewhere.
    std::vector<TDropDownRow> GetRows() const;
    int GetCurrentItem() const { return current_; }
    void SetCurrentItem(int item); // one that is not shown: none
    void MoveCurrent(int by);      // over the shown items, stopping at both ends
    // The number of columns of a menu, and of items in each but the last.
    int GetColumnCount() const;
    int GetItemsInColumn() const;

    bool IsChecked(int item) const;
    void SetChecked(int item, bool checked);
    void CheckShown(bool checked); // all of the shown items
    std::vector<int> GetChecks() const;

    // A line of text.
    const std::string& GetText() const { return text_; }
    void SetText(std::string_view text);
    // Why the text will not do; empty when it will.
    std::string Refusal() const;

    // Something is other than when the editor was opened.
    bool IsChanged() const;
    // What comes out. Nothing when no item is chosen or the text will not do; GetError says why.
    std::optional<TDropDownResult> Accept();

private:
    void ItemsChanged();
    void Filter();
    const std::string& TypedText() const;
    bool TypedTextCounts() const;
    std::optional<TDropDownResult> AcceptText(const std::string& text);

    TDropDownContent content_;
    std::string error_;
    std::string search_;
    std::string text_;
    std::vector<int> shown_;
    std::vector<bool> checked_;
    std::vector<bool> wasChecked_;
    int current_ = -1;
    bool loaded_ = false;
    bool searched_ = false; // something was typed, if only to be taken away again
};

} // namespace lumora
