#include "counting_new.h"

#include <cstdlib>
#include <malloc.h>
#include <new>

namespace {

bool counting = false;
std::int64_t liveBytes = 0;

// A block takes what can be used of it and the allocator's word before it.
void Count(void* block, std::int64_t sign) {
    if (counting && block)
        liveBytes += sign * static_cast<std::int64_t>(malloc_usable_size(block) + sizeof(std::size_t));
}

void Release(void* block) {
    Count(block, -1);
    std::free(block);
}

} // namespace

// The other forms of new and delete that the program uses go through these.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    void* const block = std::malloc(size == 0 ? 1 : size);
    Count(block, 1);
    return block;
}
void* operator new(std::size_t size) {
    void* const block = operator new(size, std::nothrow);
    if (!block)
        throw std::bad_alloc();
    return block;
}
void operator delete(void* block) noexcept {
    Release(block);
}
void operator delete(void* block, std::size_t) noexcept {
    Release(block);
}

namespace lumora::bench {

TMemoryCounter::TMemoryCounter() {
    liveBytes = 0;
    counting = true;
}

TMemoryCounter::~TMemoryCounter() {
    counting = false;
}

std::int64_t TMemoryCounter::LiveBytes() const {
    return liveBytes;
}

} // namespace lumora::bench
