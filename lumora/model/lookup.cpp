#include "lumora/model/lookup.h"

#include <cstring>

namespace lumora {

namespace {

class TMixer {
public:
    void Mix(std::uint64_t word) {
        state_ = (state_ ^ word) * 0x9E3779B97F4A7C15u;
        state_ ^= state_ >> 32;
    }
    std::uint32_t Result() const { return static_cast<std::uint32_t>(state_ ^ (state_ >> 29)); }

private:
    std::uint64_t state_ = 0x2545F4914F6CDD1Du;
};

// The letters A to Z of eight characters in lower case.
std::uint64_t LowerEight(std::uint64_t word) {
    constexpr std::uint64_t ones = 0x0101010101010101u;
    const std::uint64_t low = word & (0x7F * ones);
    const std::uint64_t fromA = low + (0x80 - 'A') * ones; // the high bit of each: at least "A"
    const std::uint64_t aboveZ = low + (0x7F - 'Z') * ones;
    return word | ((fromA & ~aboveZ & ~word & (0x80 * ones)) >> 2);
}

std::uint32_t HashWithoutBlanks(std::string_view key) {
    TMixer mixer;
    std::uint64_t word = 0;
    int bits = 0;
    for (const char c : key) {
        if (IsBlank(c))
            continue;
        word |= std::uint64_t{static_cast<unsigned char>(LowerAscii(c))} << bits;
        bits = (bits + 8) % 64;
        if (bits == 0) {
            mixer.Mix(word);
            word = 0;
        }
    }
    mixer.Mix(word);
    return mixer.Result();
}

} // namespace

std::uint32_t HashFolded(std::string_view key, TKeyFolding folding) {
    if (folding == kfCaseAndBlanks)
        return HashWithoutBlanks(key);
    TMixer mixer;
    std::uint64_t word = 0;
    for (; key.size() >= sizeof word; key.remove_prefix(sizeof word)) {
        std::memcpy(&word, key.data(), sizeof word);
        mixer.Mix(LowerEight(word));
    }
    word = 0;
    if (!key.empty())
        std::memcpy(&word, key.data(), key.size());
    mixer.Mix(LowerEight(word));
    return mixer.Result();
}

bool SameFolded(std::string_view a, std::string_view b, TKeyFolding folding) {
    if (folding == kfCase)
        return SameText(a, b);
    std::size_t i = 0;
    std::size_t j = 0;
    for (;;) {
        while (i < a.size() && IsBlank(a[i]))
            ++i;
        while (j < b.size() && IsBlank(b[j]))
            ++j;
        if (i == a.size() || j == b.size())
            return i == a.size() && j == b.size();
        if (LowerAscii(a[i++]) != LowerAscii(b[j++]))
            return false;
    }
}

std::string& KeyInTheMaking() {
    thread_local std::string key;
    key.clear();
    return key;
}

} // namespace lumora
