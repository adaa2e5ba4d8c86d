// Memory for nodes that are thrown away together.
#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <new>
#include <type_traits>
#include <vector>

namespace lumora {

class TArena {
public:
    // A place to come back to.
    struct TMark {
        std::size_t Block = 0;
        std::size_t Used = 0;
    };

    // A node of default values, or several in a row. They are gone with Clear, Rewind or the arena; no
    // destructor is called.
    template <typename T>
    T* New(std::size_t count = 1) {
        static_assert(std::is_trivially_destructible_v<T> && alignof(T) <= alignof(std::max_align_t));
        T* const nodes = static_cast<T*>(Allocate(sizeof(T) * count));
        for (std::size_t i = 0; i < count; ++i)
            ::new (nodes + i) T();
        return nodes;
    }

    TMark Mark() const { return at_; }
    // Forgets what was made since the mark, and keeps the memory.
    void Rewind(const TMark& mark) { at_ = mark; }
    void Clear() { at_ = {}; }

private:
    static constexpr std::size_t BlockSize = 16 * 1024;

    struct TBlock {
        std::unique_ptr<std::max_align_t[]> Memory;
        std::size_t Size = 0;
    };

    void* Allocate(std::size_t size) {
        constexpr std::size_t unit = alignof(std::max_align_t);
        size = (size + unit - 1) / unit * unit;
        while (at_.Block < blocks_.size() && blocks_[at_.Block].Size - at_.Used < size)
            at_ = {at_.Block + 1, 0};
        if (at_.Block == blocks_.size())
            AddBlock(std::max(size, BlockSize));
        void* const memory = reinterpret_cast<char*>(blocks_[at_.Block].Memory.get()) + at_.Used;
        at_.Used += size;
        return memory;
    }
    void AddBlock(std::size_t size) {
        blocks_.push_back({std::make_unique<std::max_align_t[]>(size / sizeof(std::max_align_t) + 1), size});
    }

    std::vector<TBlock> blocks_;
    TMark at_;
};

} // namespace lumora
