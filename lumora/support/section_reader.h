// Texts in sections: a line that is "[NAME]" once trimmed begins a section, which ends before the next such
// line.
#pragma once

#include "lumora/platform/ascii.h"
#include "lumora/platform/string_list.h"

#include <string_view>
#include <utility>
#include <vector>

namespace lumora {

// Copies the lines of the first section of that name (letter case ignored) at or after line `start` into
// `dest`, which is emptied first, without a last line that is blank: that one separates sections. Returns the
// index of the line at which the section ends, or `start` when there is no such section. Linear in the lines
// from `start` on.
int XReadSLSectionValues(int start, const TStringList& lines, std::string_view section, TStringList& dest);

// The name between the brackets when the line is a section's head; empty otherwise.
std::string_view SectionName(std::string_view line);

// A view of a section's lines.
class TSectionLines {
public:
    TSectionLines() = default;
    TSectionLines(const TStringList& lines, int first, int end) : lines_(&lines), first_(first), end_(end) {}

    // A section that is missing has no lines.
    bool Empty() const { return first_ == end_; }
    int Count() const { return end_ - first_; }
    std::string_view operator[](int i) const { return (*lines_)[first_ + i]; }
    // The value of the first "key=value" line of that key, letter case ignored; empty when there is none.
    std::string_view Value(std::string_view key) const;
    bool Has(std::string_view key) const;
    // All lines as they stand but a last one that is blank.
    void CopyTo(TStringList& dest) const;

private:
    int FindKey(std::string_view key) const;

    const TStringList* lines_ = nullptr;
    int first_ = 0;
    int end_ = 0;
};

// All sections of a text, found in one pass over its lines. The lines must outlive it and stay as they are.
class TSectionIndex {
public:
    explicit TSectionIndex(const TStringList& lines);

    int Count() const { return static_cast<int>(sections_.size()); }
    std::string_view Name(int section) const { return sections_[static_cast<std::size_t>(section)].Name; }
    TSectionLines Lines(int section) const;
    // The number of the first section of that name, letter case ignored, at or after section `from`; -1 when
    // absent.
    int Find(std::string_view name, int from = 0) const;
    // The lines of the first such section at or after `position`, which moves behind it; a missing section
    // leaves the position where it was.
    TSectionLines Read(std::string_view name, int& position) const;
    TSectionLines Read(std::string_view name) const;

private:
    struct TSection {
        std::string_view Name;
        int First;
        int End;
    };

    using TNameEntry = std::pair<std::size_t, int>; // the hash of a section's name, and its number

    void SortByName() const;

    const TStringList& lines_;
    std::vector<TSection> sections_;
    mutable std::vector<TNameEntry> byName_; // ascending; made when a section is not the next one
};

} // namespace lumora
