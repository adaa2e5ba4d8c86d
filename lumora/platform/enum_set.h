// A typed bit set over an enumeration of at most 64 values; bit i is the value of ordinal i.
#pragma once

#include <cstdint>
#include <initializer_list>

namespace lumora {

template <typename E>
class TEnumSet {
public:
    using TElement = E;

    constexpr TEnumSet() = default;
    constexpr TEnumSet(std::initializer_list<E> values) {
        for (const E value : values)
            bits_ |= Bit(value);
    }
    static constexpr TEnumSet FromBits(std::uint64_t bits) {
        TEnumSet set;
        set.bits_ = bits;
        return set;
    }

    constexpr std::uint64_t Bits() const { return bits_; }
    constexpr bool Empty() const { return bits_ == 0; }
    constexpr bool Contains(E value) const { return (bits_ & Bit(value)) != 0; }
    constexpr void Include(E value) { bits_ |= Bit(value); }
    constexpr void Exclude(E value) { bits_ &= ~Bit(value); }

    constexpr TEnumSet operator+(TEnumSet other) const { return FromBits(bits_ | other.bits_); }
    constexpr TEnumSet operator-(TEnumSet other) const { return FromBits(bits_ & ~other.bits_); }
    constexpr bool operator==(const TEnumSet& other) const { return bits_ == other.bits_; }

private:
    static constexpr std::uint64_t Bit(E value) {
        return static_cast<unsigned>(value) < 64 ? std::uint64_t{1} << static_cast<unsigned>(value) : 0;
    }

    std::uint64_t bits_ = 0;
};

} // namespace lumora
