#include "lumora/platform/short_lock.h"

#include <cstdint>
#include <mutex>

namespace lumora {

namespace {

constexpr std::size_t LockCount = 61; // prime, since addresses are multiples
std::mutex locks[LockCount];

} // namespace

TShortLock::TShortLock(const void* of) : lock_(reinterpret_cast<std::uintptr_t>(of) / 16 % LockCount) {
    locks[lock_].lock();
}

TShortLock::~TShortLock() {
    locks[lock_].unlock();
}

} // namespace lumora
