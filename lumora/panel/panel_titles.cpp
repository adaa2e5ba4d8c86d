// The panel's titles, and the old forms in which titles were kept.
#include "lumora/panel/Vquerpnl.h"
#include "lumora/panel/default_titles.h"
#include "lumora/titles/titles_merge.h"

#include <algorithm>

namespace lumora {

void TVQueryPanel::LoadDefTitles() {
    defTitles_ = DefaultTitles();
    loadDefTitles_ = defTitles_;
}

void TVQueryPanel::SetTitles(const TStringList& titles) {
    bool hasKeys = false;
    for (const std::string_view line : titles)
        hasKeys = hasKeys || line.find('=') != std::string_view::npos;
    if (IsLoading() && !titles.Empty() && !hasKeys)
        oldTitles_ = titles; // an old form keeps its titles by position
    else
        LayTitlesOver(defTitles_, titles_, titles);
    view_->PlaceAllRows();
}

void TVQueryPanel::SetTitle(std::string_view key, std::string_view value) {
    const int line = titles_.IndexOfName(key);
    if (line >= 0)
        titles_.Put(line, std::string(key) + "=" + std::string(value));
}

void TVQueryPanel::LoadOldTitlesFromStrings(const TStringList& lines) {
    const int count = std::min(lines.Count() + 1, static_cast<int>(OldTitleKeys().size()));
    for (int i = 0; i < count; ++i)
        if (const std::string_view value = Trim(lines.Value("Title" + std::to_string(i))); !value.empty())
            SetTitle(OldTitleKeys()[static_cast<std::size_t>(i)], value);
}

void TVQueryPanel::MergeDFMTitles(const TStringList& lines) {
    const int count = std::min(lines.Count(), static_cast<int>(OldTitleKeys().size()));
    for (int i = 0; i < count; ++i)
        if (const std::string_view value = Trim(lines[i]); !value.empty())
            SetTitle(OldTitleKeys()[static_cast<std::size_t>(i)], value);
}

} // namespace lumora
