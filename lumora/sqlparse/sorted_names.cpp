#include "lumora/sqlparse/sorted_names.h"

#include "lumora/platform/ascii.h"
#include "lumora/sqlparse/parse_tree.h"

#include <algorithm>

namespace lumora {

namespace {

std::uint64_t FoldedHash(std::string_view text) {
    std::uint64_t hash = 14695981039346656037u;
    for (const char c : text)
        if (!IsBlank(c))
            hash = (hash ^ static_cast<unsigned char>(LowerAscii(c))) * 1099511628211u;
    return hash;
}

bool SameFolded(std::string_view a, std::string_view b) {
    const auto skip = [](std::string_view& text) {
        while (!text.empty() && IsBlank(text.front()))
            text.remove_prefix(1);
    };
    for (;; a.remove_prefix(1), b.remove_prefix(1)) {
        skip(a);
        skip(b);
        if (a.empty() || b.empty())
            return a.empty() && b.empty();
        if (LowerAscii(a.front()) != LowerAscii(b.front()))
            return false;
    }
}

} // namespace

int TSortedNames::Find(const TSQLResultFieldList& fields, std::string_view expression) {
    if (entries_.empty())
        Fill(fields);
    const std::uint64_t hash = FoldedHash(expression);
    const auto before = [](const TEntry& entry, std::uint64_t wanted) { return entry.Hash < wanted; };
    auto entry = std::lower_bound(entries_.begin(), entries_.end(), hash, before);
    for (; entry != entries_.end() && entry->Hash == hash; ++entry)
        if (SameFolded(fields.GetItem(entry->Field).SQLExpr, expression))
            return entry->Field;
    return -1;
}

void TSortedNames::Fill(const TSQLResultFieldList& fields) {
    for (int i = 0; i < fields.Count(); ++i)
        entries_.push_back({FoldedHash(fields.GetItem(i).SQLExpr), i});
    std::sort(entries_.begin(), entries_.end(), [](const TEntry& a, const TEntry& b) {
        return a.Hash != b.Hash ? a.Hash < b.Hash : a.Field < b.Field;
    });
}

} // namespace lumora
