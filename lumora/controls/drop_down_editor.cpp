#include "lumora/controls/drop_down_editor.h"

#include "lumora/platform/ascii.h"
#include "lumora/platform/convert.h"
#include "lumora/platform/formats.h"

#include <algorithm>
#include <array>
#include <exception>
#include <unordered_map>

namespace lumora {

namespace {

enum TMatch { maWhole, maPrefix, maWord, maInside, maNone };

bool IsWordCharacter(char c) {
    return IsDigit(c) || (LowerAscii(c) >= 'a' && LowerAscii(c) <= 'z') ||
           static_cast<unsigned char>(c) >= 0x80;
}

TMatch Match(std::string_view caption, std::string_view search) {
    std::size_t at = FindNoCase(caption, search);
    if (at == std::string_view::npos)
        return maNone;
    if (at == 0)
        return caption.size() == search.size() ? maWhole : maPrefix;
    for (; at != std::string_view::npos; at = FindNoCase(caption, search, at + 1))
        if (!IsWordCharacter(caption[at - 1]))
            return maWord;
    return maInside;
}

// Whether a caption goes on where another ends, as "is not" does: typed letters don't tell them apart then.
bool BeginAlike(const std::vector<TDropDownItem>& items) {
    for (const TDropDownItem& item : items)
        for (const TDropDownItem& longer : items)
            if (longer.Caption.size() > item.Caption.size() && longer.Caption[item.Caption.size()] == ' ' &&
                Match(longer.Caption, item.Caption) == maPrefix && !item.Caption.empty())
                return true;
    return false;
}

// A text as it stands in a message; a long one is cut between two characters.
std::string Quoted(std::string_view text) {
    constexpr std::size_t longest = 60;
    std::size_t end = text.size();
    if (end > longest)
        for (end = longest; end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80;)
            --end;
    return '"' + std::string(text.substr(0, end)) + (end < text.size() ? "...\"" : "\"");
}

// Why the text is none of the kind's values; empty when it is one. No text is no value, which will do.
std::string RefusalOfKind(TDropDownKind kind, std::string_view text) {
    if (Trim(text).empty())
        return {};
    if (kind == ddNumber && !TryStrToFloat(text))
        return Quoted(text) + " is not a number";
    if (kind == ddDate && !TryStrToDate(text))
        return Quoted(text) + " is not a date";
    if (kind == ddTime && !TryStrToTime(text))
        return Quoted(text) + " is not a time";
    if (kind == ddDateTime && !TryStrToDateTime(text))
        return Quoted(text) + " is not a date and time";
    return {};
}

} // namespace

TDropDownEditor::TDropDownEditor(TDropDownContent content)
    : content_(std::move(content)), text_(content_.Text), current_(content_.CurrentItem) {
    ItemsChanged();
}

bool TDropDownEditor::HasItems() const {
    return content_.Kind == ddList || content_.Kind == ddTree || content_.Kind == ddCheckList ||
           content_.Kind == ddMenu;
}

bool TDropDownEditor::NeedsLoading() const {
    return HasItems() && content_.LoadItems && !loaded_;
}

bool TDropDownEditor::Load() {
    if (!NeedsLoading())
        return true;
    try {
        content_.Items = content_.LoadItems();
    } catch (const std::exception& e) {
        error_ = *e.what() ? e.what() : "The values cannot be read";
        return false;
    }
    loaded_ = true;
    error_.clear();
    ItemsChanged();
    return true;
}

bool TDropDownEditor::ShowsSearchBox() const {
    if (!HasItems() || content_.Kind == ddMenu)
        return false;
    return TypedTextCounts() || content_.Items.size() >= SearchBoxFrom || BeginAlike(content_.Items);
}

void TDropDownEditor::SetSearch(std::string_view text) {
    error_.clear();
    search_ = text;
    searched_ = true;
    Filter();
}

bool TDropDownEditor::HasMatch(std::string_view text) const {
    return std::any_of(content_.Items.begin(), content_.Items.end(),
                       [&](const TDropDownItem& item) { return Match(item.Caption, text) != maNone; });
}

void TDropDownEditor::Filter() {
    const std::string_view text = search_;
    shown_.clear();
    const bool inOrder = content_.Kind == ddTree || text.empty();
    std::array<std::vector<int>, maNone> matches;
    for (int i = 0; i < static_cast<int>(content_.Items.size()); ++i) {
        const TMatch match =
            text.empty() ? maPrefix : Match(content_.Items[static_cast<std::size_t>(i)].Caption, text);
        if (match == maNone)
            continue;
        matches[match].push_back(i);
        if (inOrder)
            shown_.push_back(i);
    }
    if (text.empty())
        return;
    int best = -1;
    for (const std::vector<int>& items : matches) {
        if (best < 0 && !items.empty())
            best = items.front();
        if (!inOrder)
            shown_.insert(shown_.end(), items.begin(), items.end());
    }
    // Where typed text counts it stands for itself, unless it is an item's.
    if (TypedTextCounts()) {
        const auto same = std::find_if(shown_.begin(), shown_.end(), [&](int item) {
            return SameText(content_.Items[static_cast<std::size_t>(item)].Caption, text);
        });
        best = same == shown_.end() ? -1 : *same;
    }
    current_ = best;
}

std::vector<TDropDownRow> TDropDownEditor::GetRows() const {
    std::vector<TDropDownRow> rows;
    std::unordered_map<std::string_view, std::size_t> groups;
    for (const int i : shown_) {
        const TDropDownItem& item = content_.Items[static_cast<std::size_t>(i)];
        if (content_.Kind != ddTree || item.Group.empty()) {
            rows.push_back({item.Caption, i, {}});
            continue;
        }
        const auto [group, isNew] = groups.try_emplace(item.Group, rows.size());
        if (isNew)
            rows.push_back({item.Group, -1, {}});
        rows[group->second].Items.push_back(i);
    }
    return rows;
}

void TDropDownEditor::SetCurrentItem(int item) {
    current_ = std::find(shown_.begin(), shown_.end(), item) == shown_.end() ? -1 : item;
}

void TDropDownEditor::MoveCurrent(int by) {
    if (shown_.empty())
        return;
    const auto at = std::find(shown_.begin(), shown_.end(), current_);
    const int last = static_cast<int>(shown_.size()) - 1;
    const std::int64_t from = at != shown_.end() ? at - shown_.begin() : by > 0 ? -1 : last + 1;
    current_ = shown_[static_cast<std::size_t>(std::clamp<std::int64_t>(from + by, 0, last))];
}

int TDropDownEditor::GetItemsInColumn() const {
    const int count = static_cast<int>(shown_.size());
    return content_.MaxMenuItems > 0 ? std::min(content_.MaxMenuItems, count) : count;
}

int TDropDownEditor::GetColumnCount() const {
    const int inColumn = GetItemsInColumn();
    return inColumn == 0 ? 0 : (static_cast<int>(shown_.size()) + inColumn - 1) / inColumn;
}

bool TDropDownEditor::IsChecked(int item) const {
    return item >= 0 && static_cast<std::size_t>(item) < checked_.size() &&
           checked_[static_cast<std::size_t>(item)];
}

void TDropDownEditor::SetChecked(int item, bool checked) {
    if (item >= 0 && static_cast<std::size_t>(item) < checked_.size())
        checked_[static_cast<std::size_t>(item)] = checked;
}

void TDropDownEditor::CheckShown(bool checked) {
    for (const int item : shown_)
        SetChecked(item, checked);
}

std::vector<int> TDropDownEditor::GetChecks() const {
    std::vector<int> checks;
    for (std::size_t i = 0; i < checked_.size(); ++i)
        if (checked_[i])
            checks.push_back(static_cast<int>(i));
    return checks;
}

void TDropDownEditor::SetText(std::string_view text) {
    text_ = text;
    error_.clear();
}

std::string TDropDownEditor::Refusal() const {
    const std::string& text = TypedText();
    std::string refusal;
    if (!content_.DateSettings) // otherwise Check knows how the person writes
        refusal = RefusalOfKind(content_.Kind, text);
    if (refusal.empty() && content_.Check) {
        try {
            refusal = content_.Check(text);
        } catch (const std::exception& e) {
            refusal = *e.what() ? e.what() : Quoted(text) + " will not do";
        }
    }
    return refusal;
}

bool TDropDownEditor::IsChanged() const {
    if (content_.Kind == ddCheckList)
        return checked_ != wasChecked_;
    if (HasItems())
        return current_ != content_.CurrentItem ||
               (TypedTextCounts() && searched_ && search_ != content_.Text);
    return text_ != content_.Text;
}

std::optional<TDropDownResult> TDropDownEditor::Accept() {
    if (NeedsLoading() && !TypedTextCounts())
        return std::nullopt;
    if (content_.Kind == ddCheckList) {
        TDropDownResult result{daChecks, {}, -1, GetChecks()};
        for (const int item : result.Checks)
            result.Text.append(result.Text.empty() ? "" : ", ")
                .append(content_.Items[static_cast<std::size_t>(item)].Caption);
        return result;
    }
    if (!HasItems())
        return AcceptText(text_);
    if (current_ >= 0 && std::find(shown_.begin(), shown_.end(), current_) != shown_.end())
        return TDropDownResult{
            daItem, content_.Items[static_cast<std::size_t>(current_)].Caption, current_, {}};
    if (TypedTextCounts())
        return AcceptText(TypedText());
    return std::nullopt;
}

void TDropDownEditor::ItemsChanged() {
    const std::vector<TDropDownItem>& items = content_.Items;
    checked_.resize(items.size());
    for (std::size_t i = 0; i < items.size(); ++i)
        checked_[i] = items[i].Checked;
    wasChecked_ = checked_;
    const auto isPresent = [this](const TDropDownItem& item) {
        return item.Caption == content_.Text || item.Value == content_.Text;
    };
    if (current_ < 0 && !content_.Text.empty()) {
        const auto present = std::find_if(items.begin(), items.end(), isPresent);
        if (present != items.end())
            current_ = static_cast<int>(present - items.begin());
    }
    if (current_ < 0 || static_cast<std::size_t>(current_) >= items.size())
        current_ = -1;
    content_.CurrentItem = current_;
    Filter();
}

// In an open list what was typed will do, whether or not it is an item's.
bool TDropDownEditor::TypedTextCounts() const {
    return content_.IsOpenList && (content_.Kind == ddList || content_.Kind == ddTree);
}

// What was there when the list opened stands until something is typed.
const std::string& TDropDownEditor::TypedText() const {
    return HasItems() && searched_ ? search_ : text_;
}

std::optional<TDropDownResult> TDropDownEditor::AcceptText(const std::string& text) {
    error_ = Refusal();
    if (!error_.empty())
        return std::nullopt;
    return TDropDownResult{daText, text, -1, {}};
}

} // namespace lumora
