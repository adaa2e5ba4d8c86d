// The titles merge: lays stored or loaded titles over a component's default titles.
#pragma once

#include "lumora/platform/string_list.h"
#include "lumora/support/section_reader.h"

namespace lumora {

// Fills `result` with the default titles, each with its value from the source where that is not empty,
// section by section. What the defaults do not hold is dropped. Sections of the source may bear their older
// names.
void LoadTitlesFromStrings(const TStringList& defaults, TStringList& result, const TStringList& source);
void LoadTitlesFromSections(const TStringList& defaults, TStringList& result, const TStringList& source,
                            const TSectionIndex& sourceSections);

} // namespace lumora
