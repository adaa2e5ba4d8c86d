#include "lumora/support/section_reader.h"

#include <algorithm>

namespace lumora {

std::string_view SectionName(std::string_view line) {
    if (line.empty() || (line.front() != '[' && !IsBlank(line.front())))
        return {}; // most lines
    line = Trim(line);
    return line.size() > 2 && line.front() == '[' && line.back() == ']' ? line.substr(1, line.size() - 2)
                                                                        : std::string_view();
}

int XReadSLSectionValues(int start, const TStringList& lines, std::string_view section, TStringList& dest) {
    dest.Clear();
    int at = std::max(start, 0);
    while (at < lines.Count() && !SameText(SectionName(lines[at]), section))
        ++at;
    if (at == lines.Count())
        return start;
    int end = at + 1;
    while (end < lines.Count() && SectionName(lines[end]).empty())
        ++end;
    TSectionLines(lines, at + 1, end).CopyTo(dest);
    return end;
}

int TSectionLines::FindKey(std::string_view key) const {
    for (int i = 0; i < Count(); ++i) {
        const std::string_view line = (*this)[i];
        if (line.size() > key.size() && line[key.size()] == '=' && SameText(line.substr(0, key.size()), key))
            return i;
    }
    return -1;
}

std::string_view TSectionLines::Value(std::string_view key) const {
    const int i = FindKey(key);
    return i < 0 ? std::string_view() : (*this)[i].substr(key.size() + 1);
}

bool TSectionLines::Has(std::string_view key) const {
    return FindKey(key) >= 0;
}

void TSectionLines::CopyTo(TStringList& dest) const {
    dest.Clear();
    const int count = Count() - (!Empty() && Trim((*this)[Count() - 1]).empty() ? 1 : 0);
    for (int i = 0; i < count; ++i)
        dest.Add((*this)[i]);
}

TSectionIndex::TSectionIndex(const TStringList& lines) : lines_(lines) {
    for (int i = 0; i < lines.Count(); ++i) {
        const std::string_view name = SectionName(lines[i]);
        if (name.empty())
            continue;
        if (!sections_.empty())
            sections_.back().End = i;
        sections_.push_back({name, i + 1, lines.Count()});
    }
}

TSectionLines TSectionIndex::Lines(int section) const {
    const TSection& found = sections_[static_cast<std::size_t>(section)];
    return {lines_, found.First, found.End};
}

int TSectionIndex::Find(std::string_view name, int from) const {
    if (from < Count() && SameText(Name(from), name))
        return from;
    if (byName_.empty())
        SortByName();
    const TNameEntry first{TNoCaseHash()(name), from};
    for (auto at = std::lower_bound(byName_.begin(), byName_.end(), first);
         at != byName_.end() && at->first == first.first; ++at)
        if (SameText(Name(at->second), name))
            return at->second;
    return -1;
}

void TSectionIndex::SortByName() const {
    byName_.reserve(sections_.size());
    for (int i = 0; i < Count(); ++i)
        byName_.emplace_back(TNoCaseHash()(Name(i)), i);
    std::sort(byName_.begin(), byName_.end());
}

TSectionLines TSectionIndex::Read(std::string_view name, int& position) const {
    const int found = Find(name, position);
    if (found < 0)
        return {};
    position = found + 1;
    return Lines(found);
}

TSectionLines TSectionIndex::Read(std::string_view name) const {
    int position = 0;
    return Read(name, position);
}

} // namespace lumora
