#include "lumora/titles/titles_merge.h"

#include <algorithm>

namespace lumora {

namespace {

// The first section of that name or, for two of them, of its older name.
TSectionLines SourceSection(const TSectionIndex& source, std::string_view name) {
    int found = source.Find(name);
    const std::string_view older = SameText(name, "Query Panel")            ? "PanelTitles"
                                   : SameText(name, "Result Fields Editor") ? "RFETitles"
                                                                            : "";
    if (const int other = older.empty() ? -1 : source.Find(older); other >= 0)
        found = found < 0 ? other : std::min(found, other);
    return found < 0 ? TSectionLines() : source.Lines(found);
}

template <typename TSource>
void MergeLines(const TStringList& defaults, const TSource& source, TStringList& result) {
    for (int i = 0; i < defaults.Count(); ++i) {
        const std::string_view key = defaults.Name(i);
        const std::string_view value = key.empty() ? std::string_view() : source.Value(key);
        if (value.empty())
            result.Add(defaults[i]);
        else
            result.AddPair(key, value);
    }
}

} // namespace

void LoadTitlesFromSections(const TStringList& defaults, TStringList& result, const TStringList& source,
                            const TSectionIndex& sourceSections) {
    TStringList merged;
    const TSectionIndex sections(defaults);
    if (sections.Count() == 0)
        MergeLines(defaults, source, merged);
    TStringList lines;
    for (int i = 0; i < sections.Count(); ++i) {
        sections.Lines(i).CopyTo(lines);
        merged.Add("[" + std::string(sections.Name(i)) + "]");
        MergeLines(lines, SourceSection(sourceSections, sections.Name(i)), merged);
        merged.Add("");
    }
    result = std::move(merged);
}

void LoadTitlesFromStrings(const TStringList& defaults, TStringList& result, const TStringList& source) {
    LoadTitlesFromSections(defaults, result, source, TSectionIndex(source));
}

void LayTitlesOver(const TStringList& defaults, TStringList& titles, const TStringList& source,
                   const TSectionIndex& sourceSections) {
    LoadTitlesFromSections(defaults, titles, source, sourceSections);
    if (titles.Count() > 0 && titles.Last().empty() && !defaults.Last().empty())
        titles.Delete(titles.Count() - 1);
}

void LayTitlesOver(const TStringList& defaults, TStringList& titles, const TStringList& source) {
    LayTitlesOver(defaults, titles, source, TSectionIndex(source));
}

} // namespace lumora
