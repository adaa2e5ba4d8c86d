#include "lumora/model/field_words.h"

#include "lumora/model/lookup.h"
#include "lumora/support/string_helpers.h"

#include <algorithm>

namespace lumora {

namespace {

// Of a name without a word that could be looked for. A word that begins with a digit is none: the number of a
// placeholder may be one, or have become the beginning of one.
constexpr std::uint32_t NoWord = 0;

// Hands each word of the text, as long as it goes, to `take`.
template <typename TTake>
void ForEachWord(std::string_view text, TTake take) {
    for (std::size_t at = 0; at < text.size(); ++at) {
        const std::size_t start = at;
        while (at < text.size() && IsWordChar(text[at]))
            ++at;
        if (at > start && !IsDigit(text[start]))
            take(HashFolded(text.substr(start, at - start), kfCase));
    }
}

} // namespace

std::string NameInFormulas(const TDSField& field, TFieldNameMode mode, bool strict) {
    return LowerAscii(mode == fnSQLExpr ? field.GetSQLExpr(strict ? nqStrict : nqPlain)
                                        : field.GetFullName());
}

TFieldWords::TFieldWords(const TVCustomDBStructure& model, TFieldNameMode mode, bool strict) {
    const int count = model.GetFieldCount();
    entries_.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        std::uint32_t last = NoWord; // the column rather than its table, which has many
        ForEachWord(NameInFormulas(*model.GetField(i), mode, strict),
                    [&last](std::uint32_t word) { last = word; });
        entries_.push_back({last, i});
    }
    std::stable_sort(entries_.begin(), entries_.end(),
                     [](const TEntry& a, const TEntry& b) { return a.Word < b.Word; });
}

std::vector<int> TFieldWords::FieldsIn(std::string_view text) const {
    std::vector<std::uint32_t> words = {NoWord};
    ForEachWord(text, [&words](std::uint32_t word) { words.push_back(word); });
    std::sort(words.begin(), words.end());
    words.erase(std::unique(words.begin(), words.end()), words.end());
    std::vector<int> fields;
    for (const std::uint32_t word : words)
        AppendFieldsOf(word, fields);
    std::sort(fields.begin(), fields.end());
    return fields;
}

void TFieldWords::AppendFieldsOf(std::uint32_t word, std::vector<int>& fields) const {
    auto entry = std::lower_bound(entries_.begin(), entries_.end(), word,
                                  [](const TEntry& a, std::uint32_t b) { return a.Word < b; });
    for (; entry != entries_.end() && entry->Word == word; ++entry)
        fields.push_back(entry->Field);
}

} // namespace lumora
