// The words that a query panel shows, by key.
#pragma once

#include "lumora/platform/string_list.h"

#include <string>
#include <string_view>

namespace lumora {

class TSectionIndex;

// "[section]" lines and lines key=value, which begin as the default titles.
class TTitles {
public:
    TTitles();

    const TStringList& GetLines() const { return lines_; }
    std::string Get(std::string_view key) const { return std::string(lines_.Value(key)); }
    // Only a key that is there.
    void Set(std::string_view key, std::string_view value);
    // The defaults with the values that the given lines have.
    void Merge(const TStringList& lines);
    const TStringList& GetDefaults() const { return defaults_; }
    void LoadDefaults();
    // Takes the titles of a query text. `heldVersion`: of the text that was read before it.
    void ReadFromQueryText(const TStringList& lines, const TSectionIndex& sections, double heldVersion);
    // The forms of old: lines "Title0=...", or the titles one a line, in the order of the old keys.
    void LoadOld(const TStringList& lines);
    void MergePositional(const TStringList& lines);

private:
    TStringList lines_;
    TStringList defaults_;
    TStringList loadDefaults_; // those that a query text's titles are laid over
};

// Titles as a new panel has them.
const TTitles& DefaultPanelTitles();

} // namespace lumora
