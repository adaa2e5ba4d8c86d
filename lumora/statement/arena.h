// Memory for nodes that are thrown away together.
#pragma once

#include <cstddef>
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

    TArena();
    TArena(TArena&& other) noexcept;
    TArena& operator=(TArena&& other) noexcept;
    ~TArena();

    // A node of default values, or several in a row. They are gone with Clear, Rewind or the arena; no
    // destructor is called.
    template <typename T>
    T* New(std::size_t count = 1) {
        static_assert(std::is_trivially_destructible_v<T> && alignof(T) <= Unit);
        T* const nodes = static_cast<T*>(Allocate(sizeof(T) * count));
        for (std::size_t i = 0; i < count; ++i)
            ::new (nodes + i) T();
        return nodes;
    }

    TMark Mark() const;
    // Forgets what was made since the mark, and keeps the memory.
    void Rewind(const TMark& mark);
    void Clear() { Rewind({}); }

private:
    static constexpr std::size_t Unit = alignof(std::max_align_t);
    struct TBlock;

    void* Allocate(std::size_t size) {
        size = (size + Unit - 1) / Unit * Unit;
        if (size > static_cast<std::size_t>(end_ - next_))
            NextBlock(size);
        void* const memory = next_;
        next_ += size;
        return memory;
    }
    // Goes on in a block with that much room, which is made when there is none.
    void NextBlock(std::size_t size);

    std::vector<TBlock> blocks_;
    std::size_t block_ = 0; // the one in use
    char* next_ = nullptr;  // its free part
    char* end_ = nullptr;
};

} // namespace lumora
