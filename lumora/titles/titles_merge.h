// The titles merge: lays stored or loaded titles over a component's default titles.
#pragma once

#include "lumora/platform/string_list.h"
#include "lumora/support/section_reader.h"

namespace lumora {

// Fills `result` with the default titles, each with its value from the source where that is not empty,
// section by section. What the defaults do not hold is dropped. Sections of the source may bear their older
// names. An empty line stands behind each section.
void LoadTitlesFromStrings(const TStringList& defaults, TStringList& result, const TStringList& source);
void LoadTitlesFromSections(const TStringList& defaults, TStringList& result, const TStringList& source,
                            const TSectionIndex& sourceSections);

// The same for titles that take the place of the defaults: they end as the defaults do, without the empty
// line that stands behind each section otherwise, so a text that is read and written again has no line more.
void LayTitlesOver(const TStringList& defaults, TStringList& titles, const TStringList& source);
void LayTitlesOver(const TStringList& defaults, TStringList& titles, const TStringList& source,
                   const TSectionIndex& sourceSections);

} // namespace lumora
