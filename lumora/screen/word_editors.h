// The editors that drop down from words, and what becomes of what was chosen in them.
#pragma once

#include "lumora/platform/drop_down.h"
#include "lumora/query/row_ref.h"
#include "lumora/screen/screen_words.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace lumora {

// The editor of one word. It may live longer than the row: it then offers nothing and takes nothing. The
// screen must outlive it.
class TWordEditor {
public:
    TWordEditor(TQueryScreen& screen, TFilterRow& row, TWordRole role, int value = 0)
        : screen_(screen), row_(&row), role_(role), value_(value) {}

    // What drops down. ddDialog: call RunDialog instead. ddNone: nothing to be chosen.
    TDropDownContent GetContent() const;

    // Take what was typed, the item that was chosen, or all items with their check marks. Empty when it was
    // taken, otherwise the reason why not; nothing has changed then.
    std::string AcceptText(std::string_view text);
    std::string AcceptItem(const TDropDownItem& item);
    std::string AcceptChecked(const std::vector<TDropDownItem>& items);

    // Opens the window that edits the value: the sub-query dialog or the host's own editor (OnCustomEdit,
    // OnCustomValue). True when the value was confirmed, as far as that is known. What building a sub-query
    // raises passes through.
    bool RunDialog();

private:
    TDropDownContent ValueContent() const;
    TDropDownContent ListContent(const TFilterCond& condition) const;
    TDropDownContent LineContent(const TFilterCond& condition) const;
    std::string Refusal(std::string_view text) const;
    std::string RefusalOfTyped(std::string_view text) const;
    // What the condition keeps for a typed text; nothing when it is no value.
    std::optional<std::string> Understood(std::string_view text) const;
    std::vector<TDropDownItem> LoadItems() const;
    std::string AcceptValueText(TFilterCond& condition, std::string_view text);
    std::string AcceptValueItem(TFilterCond& condition, const TDropDownItem& item);

    TQueryScreen& screen_;
    TRowRef<TFilterRow> row_;
    TWordRole role_;
    int value_;
};

} // namespace lumora
