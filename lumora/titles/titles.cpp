#include "lumora/titles/titles.h"

#include "lumora/titles/default_titles.h"
#include "lumora/titles/titles_merge.h"

#include <algorithm>

namespace lumora {

TTitles::TTitles() {
    LoadDefaults();
    lines_ = defaults_;
}

const TTitles& DefaultPanelTitles() {
    static const TTitles titles;
    return titles;
}

void TTitles::LoadDefaults() {
    defaults_ = DefaultTitles();
    loadDefaults_ = defaults_;
}

void TTitles::Merge(const TStringList& lines) {
    LayTitlesOver(defaults_, lines_, lines);
}

void TTitles::Set(std::string_view key, std::string_view value) {
    const int line = lines_.IndexOfName(key);
    if (line >= 0)
        lines_.Put(line, std::string(key) + "=" + std::string(value));
}

void TTitles::ReadFromQueryText(const TStringList& lines, const TSectionIndex& sections, double heldVersion) {
    if (heldVersion >= 2.2) {
        LayTitlesOver(loadDefaults_, lines_, lines, sections);
        return;
    }
    TStringList old;
    sections.Read("Titles").CopyTo(old);
    if (!old.Empty())
        LoadOld(old);
}

void TTitles::LoadOld(const TStringList& lines) {
    const int count = std::min(lines.Count() + 1, static_cast<int>(OldTitleKeys().size()));
    for (int i = 0; i < count; ++i)
        if (const std::string_view value = Trim(lines.Value("Title" + std::to_string(i))); !value.empty())
            Set(OldTitleKeys()[static_cast<std::size_t>(i)], value);
}

void TTitles::MergePositional(const TStringList& lines) {
    const int count = std::min(lines.Count(), static_cast<int>(OldTitleKeys().size()));
    for (int i = 0; i < count; ++i)
        if (const std::string_view value = Trim(lines[i]); !value.empty())
            Set(OldTitleKeys()[static_cast<std::size_t>(i)], value);
}

} // namespace lumora
