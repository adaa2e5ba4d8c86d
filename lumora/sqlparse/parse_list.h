// A list in the memory of a parse tree.
#pragma once

#include "lumora/sqlparse/parse_arena.h"

#include <algorithm>
#include <cstddef>

namespace lumora {

// Items of a kind that need not be destroyed; their memory is the arena's, which must outlive the list. When
// it grows its items move.
template <typename T>
class TParseList {
public:
    explicit TParseList(TParseArena& arena) : arena_(arena) {}
    TParseList(const TParseList&) = delete;
    TParseList& operator=(const TParseList&) = delete;

    std::size_t size() const { return size_; }
    bool empty() const { return size_ == 0; }
    T* begin() { return items_; }
    T* end() { return items_ + size_; }
    const T* begin() const { return items_; }
    const T* end() const { return items_ + size_; }
    T& operator[](std::size_t index) { return items_[index]; }
    const T& operator[](std::size_t index) const { return items_[index]; }
    const T& front() const { return items_[0]; }
    T& push_back(const T& item) {
        const T copy = item; // which may be one of its own
        if (size_ == capacity_)
            Grow();
        return items_[size_++] = copy;
    }
    // Before the arena is cleared.
    void clear() {
        items_ = nullptr;
        size_ = capacity_ = 0;
    }

private:
    void Grow() {
        const std::size_t capacity = std::max<std::size_t>(4, 2 * capacity_);
        T* const items = arena_.NewArray<T>(capacity);
        std::copy(items_, items_ + size_, items);
        items_ = items;
        capacity_ = capacity;
    }

    TParseArena& arena_;
    T* items_ = nullptr;
    std::size_t size_ = 0;
    std::size_t capacity_ = 0;
};

} // namespace lumora
