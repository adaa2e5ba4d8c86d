#include "lumora/sqlparse/sql_words.h"

#include <algorithm>
#include <array>

namespace lumora {

namespace {

// In the order of TSQLWord.
constexpr std::array<std::string_view, SQLWordCount> Words = {
    "",         "and",       "as",     "asc",   "between", "by",    "case",  "cross",  "desc",
    "distinct", "end",       "except", "fetch", "from",    "full",  "group", "having", "in",
    "inner",    "intersect", "is",     "join",  "left",    "like",  "limit", "minus",  "natural",
    "not",      "null",      "offset", "on",    "or",      "order", "outer", "over",   "right",
    "select",   "union",     "using",  "where", "window",  "with"};

constexpr std::size_t LongestWord = 9;
constexpr std::size_t KeyLength = 8;

// The first characters as one number; of a letter, whatever its case, the small one. What is no letter may
// become another character, but no letter.
constexpr std::uint64_t KeyOf(const char* characters, std::size_t length) {
    std::uint64_t key = 0;
    for (std::size_t i = 0; i < KeyLength; ++i)
        key |= static_cast<std::uint64_t>(static_cast<unsigned char>(characters[i])) << 8 * i;
    key |= 0x2020202020202020;
    return length < KeyLength ? key & ((std::uint64_t{1} << 8 * length) - 1) : key;
}

// The character behind the key.
constexpr char TailOf(const char* characters, std::size_t length) {
    return length > KeyLength ? static_cast<char>(characters[KeyLength] | 0x20) : '\0';
}

template <typename T, typename TMake>
constexpr std::array<T, SQLWordCount> ForEachWord(TMake make) {
    std::array<T, SQLWordCount> made{};
    for (std::size_t word = 0; word < SQLWordCount; ++word) {
        char characters[LongestWord] = {};
        std::copy(Words[word].begin(), Words[word].end(), characters);
        made[word] = make(characters, Words[word].size());
    }
    return made;
}

constexpr auto Keys = ForEachWord<std::uint64_t>(KeyOf);
constexpr auto Tails = ForEachWord<char>(TailOf);

// Each word has a slot of its own: the factor is the first, of those that were tried, that makes it so.
struct TSlots {
    std::uint64_t Factor = 0x9E3779B97F4A7C15;
    std::array<std::uint8_t, 256> Words{};

    constexpr std::size_t SlotOf(std::uint64_t key) const {
        return static_cast<std::size_t>(key * Factor >> 56);
    }
    constexpr bool Fill() {
        Words = {};
        for (std::size_t word = 1; word < SQLWordCount; ++word) {
            std::uint8_t& slot = Words[SlotOf(Keys[word])];
            if (slot != swNone)
                return false;
            slot = static_cast<std::uint8_t>(word);
        }
        return true;
    }
};

constexpr TSlots MakeSlots() {
    TSlots slots;
    while (!slots.Fill())
        slots.Factor = slots.Factor * 6364136223846793005 + 1442695040888963407;
    return slots;
}

constexpr TSlots Slots = MakeSlots();

// At least KeyLength characters must be readable, whatever the length.
TSQLWord WordAt(const char* characters, std::size_t length) {
    const std::uint64_t key = KeyOf(characters, length);
    const std::uint8_t word = Slots.Words[Slots.SlotOf(key)];
    const char tail = TailOf(characters, length);
    const bool found = (Keys[word] == key) & (Tails[word] == tail) & (Words[word].size() == length);
    return static_cast<TSQLWord>(found * word); // without a branch, which nobody could foretell
}

} // namespace

TSQLWord SQLWordOf(std::string_view identifier) {
    if (identifier.size() > LongestWord)
        return swNone;
    char characters[LongestWord] = {};
    std::copy(identifier.begin(), identifier.end(), characters);
    return WordAt(characters, identifier.size());
}

TSQLWord SQLWordWithin(std::string_view identifier, const char* textEnd) {
    const bool isReadable = textEnd - identifier.data() >= static_cast<std::ptrdiff_t>(KeyLength);
    return isReadable ? WordAt(identifier.data(), identifier.size()) : SQLWordOf(identifier);
}

std::string_view SQLWordText(TSQLWord word) {
    return Words[word];
}

} // namespace lumora
