// The names that a statement sorts by.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace lumora {

class TSQLResultFieldList;

// Finds result fields by their expressions; blanks and letter case do not count. Fast for many names of many
// fields, and cheap for few.
class TSortedNames {
public:
    // The index of the first field with the expression, -1 when there is none. The list is always the same.
    int Find(const TSQLResultFieldList& fields, std::string_view expression);

private:
    struct TEntry {
        std::uint64_t Hash;
        int Field;
    };

    void Fill(const TSQLResultFieldList& fields);

    std::vector<TEntry> entries_; // by hash, then by field
};

} // namespace lumora
