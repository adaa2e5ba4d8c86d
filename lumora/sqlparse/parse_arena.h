// The memory of a parse tree: handed out piece by piece, taken back at once.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <memory>
#include <new>
#include <string_view>
#include <type_traits>
#include <vector>

namespace lumora {

// What it hands out stays where it is until Clear, which keeps the memory for what comes next. The first
// two kilobytes are part of the object, so that a small tree allocates nothing.
class TParseArena {
public:
    TParseArena() = default;
    TParseArena(const TParseArena&) = delete;
    TParseArena& operator=(const TParseArena&) = delete;

    // The object is never destroyed.
    template <typename T>
    T* New() {
        static_assert(std::is_trivially_destructible_v<T> && alignof(T) <= Alignment);
        return new (Take(sizeof(T))) T();
    }
    template <typename T>
    T* NewArray(std::size_t count) {
        static_assert(std::is_trivially_destructible_v<T> && alignof(T) <= Alignment);
        return std::uninitialized_default_construct_n(reinterpret_cast<T*>(Take(count * sizeof(T))), count) -
               count;
    }
    char* NewText(std::size_t length) { return NewArray<char>(length); }
    // The pieces, one behind the other.
    std::string_view Join(std::initializer_list<std::string_view> pieces);
    void Clear();

private:
    static constexpr std::size_t Alignment = alignof(void*);
    static constexpr std::size_t FirstSize = 2048;

    struct TBlock {
        std::unique_ptr<std::byte[]> Memory;
        std::size_t Size;
    };

    std::byte* Take(std::size_t size) {
        size = (size + Alignment - 1) / Alignment * Alignment;
        if (size > left_)
            NextBlock(size);
        std::byte* const taken = next_;
        next_ += size;
        left_ -= size;
        return taken;
    }
    void NextBlock(std::size_t size);

    std::byte* next_ = first_;
    std::size_t left_ = FirstSize;
    std::vector<TBlock> blocks_;
    std::size_t used_ = 0; // of blocks_
    alignas(Alignment) std::byte first_[FirstSize];
};

} // namespace lumora
