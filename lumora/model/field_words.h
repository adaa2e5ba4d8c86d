// Finds the fields that a text could name, without looking at every field of the model.
#pragma once

#include "lumora/model/structure.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace lumora {

// A field's name as formulas are searched for it: lower-cased, `fnSQLExpr` or `fnFullName`.
std::string NameInFormulas(const TDSField& field, TFieldNameMode mode, bool strict);

// Each field stands under a hash of one word of its name. A field whose name stands in a text as a whole has
// that word there too; equal hashes of other words only give a few fields too many.
class TFieldWords {
public:
    TFieldWords(const TVCustomDBStructure& model, TFieldNameMode mode, bool strict);

    // Indexes of the fields whose names may stand in the text, or come about in it when names are replaced by
    // placeholders ("@1"); ascending.
    std::vector<int> FieldsIn(std::string_view text) const;

private:
    struct TEntry {
        std::uint32_t Word;
        int Field;
    };

    void AppendFieldsOf(std::uint32_t word, std::vector<int>& fields) const;

    std::vector<TEntry> entries_; // ascending
};

} // namespace lumora
