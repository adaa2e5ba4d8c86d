// Counts the memory that is allocated, so that the size of objects with all that they own can be measured.
#pragma once

#include <cstdint>

namespace lumora::bench {

// While one of these lives, every allocation and release is counted. Only one may live at a time.
class TMemoryCounter {
public:
    TMemoryCounter();
    ~TMemoryCounter();
    TMemoryCounter(const TMemoryCounter&) = delete;
    TMemoryCounter& operator=(const TMemoryCounter&) = delete;

    // What was allocated since and has not been released, with the allocator's own overhead.
    std::int64_t LiveBytes() const;
};

} // namespace lumora::bench
