// How an identifier is known to be a word: one look-up, for it is done for every name of a statement.
// Included where that is done and nowhere else.
#pragma once

#include "lumora/sqlparse/sql_words.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace lumora::detail {

// In the order of TSQLWord.
inline constexpr std::array<std::string_view, SQLWordCount> Words = {
    "",       "and",   "as",   "asc",   "between", "by",      "case",  "cross", "desc",   "distinct",  "end",
    "except", "fetch", "from", "full",  "group",   "having",  "ilike", "in",    "inner",  "intersect", "is",
    "join",   "left",  "like", "limit", "minus",   "natural", "not",   "null",  "offset", "on",        "or",
    "order",  "outer", "over", "right", "select",  "union",   "using", "where", "window", "with"};

inline constexpr std::size_t LongestWord = 9;
inline constexpr std::size_t KeyLength = 8;

using TKeyBytes = std::array<char, KeyLength>;

constexpr std::uint64_t KeyOfBytes(const TKeyBytes& bytes) {
    return std::bit_cast<std::uint64_t>(bytes);
}

// What a key keeps of the characters of an identifier of that length; nothing of one too long for a word.
struct TKeyMask {
    std::uint64_t First = 0;
    std::uint8_t Last = 0;
};

inline constexpr auto KeyMasks = [] {
    std::array<TKeyMask, LongestWord + 2> masks{};
    TKeyBytes bytes{};
    for (std::size_t length = 1; length <= LongestWord; ++length) {
        if (length <= KeyLength)
            bytes[length - 1] = '\xFF';
        masks[length].First = KeyOfBytes(bytes);
        masks[length].Last = length > KeyLength ? 0xFF : 0;
    }
    return masks;
}();

// What makes an identifier a certain word: its length and its characters, letters as small ones. What is no
// letter may become another character, but no letter.
struct TWordKey {
    std::uint64_t First = 0;
    std::uint8_t Last = 0; // the ninth character
    std::uint8_t Length = 0;

    constexpr TWordKey() = default;
    // Reads LongestWord characters, whatever the length.
    constexpr TWordKey(const char* characters, std::size_t length) {
        const std::size_t size = std::min(length, LongestWord + 1);
        TKeyBytes bytes{};
        std::copy(characters, characters + KeyLength, bytes.begin());
        First = (KeyOfBytes(bytes) | 0x2020202020202020) & KeyMasks[size].First;
        Last = static_cast<std::uint8_t>((static_cast<unsigned char>(characters[KeyLength]) | 0x20u) &
                                         KeyMasks[size].Last);
        Length = static_cast<std::uint8_t>(size);
    }
};

inline constexpr auto Keys = [] {
    std::array<TWordKey, SQLWordCount> keys{};
    for (std::size_t word = 1; word < SQLWordCount; ++word) {
        char characters[LongestWord] = {};
        std::copy(Words[word].begin(), Words[word].end(), characters);
        keys[word] = TWordKey(characters, Words[word].size());
    }
    return keys;
}();

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
            std::uint8_t& slot = Words[SlotOf(Keys[word].First)];
            if (slot != swNone)
                return false;
            slot = static_cast<std::uint8_t>(word);
        }
        return true;
    }
};

inline constexpr TSlots Slots = [] {
    TSlots slots;
    while (!slots.Fill())
        slots.Factor = slots.Factor * 6364136223846793005 + 1442695040888963407;
    return slots;
}();

// LongestWord characters must be readable, whatever the length. There is no branch, for nobody could foretell
// it.
inline TSQLWord WordAt(const char* characters, std::size_t length) {
    const TWordKey key(characters, length);
    const std::uint8_t word = Slots.Words[Slots.SlotOf(key.First)];
    const TWordKey& known = Keys[word];
    const bool found = (known.First == key.First) & (known.Last == key.Last) & (known.Length == key.Length);
    return static_cast<TSQLWord>(found * word);
}

} // namespace lumora::detail
