// A lock for the few moments in which something that threads share is entered in a list or made once.
#pragma once

#include <cstddef>

namespace lumora {

// Held until its end. What is locked is known by its address. Nobody may lock a second thing while holding
// one: the two may stand behind one lock.
class TShortLock {
public:
    explicit TShortLock(const void* of);
    ~TShortLock();
    TShortLock(const TShortLock&) = delete;
    TShortLock& operator=(const TShortLock&) = delete;

private:
    std::size_t lock_;
};

} // namespace lumora
