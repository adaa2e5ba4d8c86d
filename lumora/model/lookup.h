// Finds the first item of a list that has a key, in constant time and in many threads at once.
#pragma once

#include "lumora/platform/ascii.h"
#include "lumora/platform/short_lock.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace lumora {

// Folded keys are compared without regard to case; those without blanks, without regard to blanks too.
enum TKeyFolding : std::uint8_t { kfCase, kfCaseAndBlanks };
std::uint32_t HashFolded(std::string_view key, TKeyFolding folding);
bool SameFolded(std::string_view a, std::string_view b, TKeyFolding folding);
// An empty text, of this thread, for a key that is put together. The next call empties it.
std::string& KeyInTheMaking();

template <typename T>
class TTextKeys {
public:
    using TKey = std::string_view;
    using TKeyOf = std::string_view (*)(const T& item); // its own text or KeyInTheMaking

    explicit TTextKeys(TKeyOf keyOf, TKeyFolding folding = kfCase) : keyOf_(keyOf), folding_(folding) {}
    std::uint32_t Hash(TKey key) const { return HashFolded(key, folding_); }
    std::uint32_t HashOf(const T& item) const { return Hash(keyOf_(item)); }
    bool Bears(const T& item, TKey key) const { return SameFolded(keyOf_(item), key, folding_); }
    bool Same(const T& a, const T& b) const { return Bears(a, std::string(keyOf_(b))); }

private:
    TKeyOf keyOf_;
    TKeyFolding folding_;
};

template <typename T>
class TNumberKeys {
public:
    using TKey = int;
    using TKeyOf = int (*)(const T& item);

    explicit TNumberKeys(TKeyOf keyOf) : keyOf_(keyOf) {}
    std::uint32_t Hash(TKey key) const {
        const std::uint32_t hash = static_cast<std::uint32_t>(key) * 0x9E3779B9u;
        return hash ^ (hash >> 16);
    }
    std::uint32_t HashOf(const T& item) const { return Hash(keyOf_(item)); }
    bool Bears(const T& item, TKey key) const { return keyOf_(item) == key; }
    bool Same(const T& a, const T& b) const { return keyOf_(a) == keyOf_(b); }

private:
    TKeyOf keyOf_;
};

// The index over a list of owned items by one key. Items added at the end are entered at the next look-up;
// any other change of the list or of a key must be told by Invalidate. Look-ups may run in many threads at
// once, nothing else may.
template <typename T, typename TKeys>
class TLookup {
public:
    using TItems = std::vector<std::unique_ptr<T>>;

    explicit TLookup(TKeys keys) : keys_(keys) {}

    void Invalidate() {
        entered_.store(0, std::memory_order_relaxed);
        slots_.clear();
    }

    T* Find(const TItems& items, typename TKeys::TKey key) const {
        if (entered_.load(std::memory_order_acquire) != items.size())
            EnterNewItems(items);
        if (slots_.empty())
            return nullptr;
        const std::uint32_t hash = keys_.Hash(key);
        const TSlot& slot =
            slots_[SlotOf(items, hash, [&](const T& item) { return keys_.Bears(item, key); })];
        return slot.Item < 0 ? nullptr : items[static_cast<std::size_t>(slot.Item)].get();
    }

private:
    struct TSlot {
        std::uint32_t Hash = 0;
        std::int32_t Item = -1;
    };

    // Until the number of entered items is told, whoever looks something up comes here too and waits.
    void EnterNewItems(const TItems& items) const {
        const TShortLock lock(this);
        std::size_t entered = entered_.load(std::memory_order_relaxed);
        if (entered == items.size())
            return;
        if (items.size() * 3 > slots_.size() * 2) {
            std::size_t size = 16;
            while (size * 2 < items.size() * 3)
                size *= 2;
            slots_.assign(size, {});
            entered = 0;
        }
        for (; entered < items.size(); ++entered) {
            const T& item = *items[entered];
            const std::uint32_t hash = keys_.HashOf(item);
            TSlot& slot =
                slots_[SlotOf(items, hash, [&](const T& other) { return keys_.Same(other, item); })];
            if (slot.Item < 0) // the first of equal keys stays
                slot = {hash, static_cast<std::int32_t>(entered)};
        }
        entered_.store(entered, std::memory_order_release);
    }

    // The slot whose item has the key, or the free one where it would be entered.
    template <typename THasKey>
    std::size_t SlotOf(const TItems& items, std::uint32_t hash, THasKey hasKey) const {
        for (std::size_t at = hash & (slots_.size() - 1);; at = (at + 1) & (slots_.size() - 1)) {
            const TSlot& slot = slots_[at];
            if (slot.Item < 0 || (slot.Hash == hash && hasKey(*items[static_cast<std::size_t>(slot.Item)])))
                return at;
        }
    }

    const TKeys keys_;
    mutable std::vector<TSlot> slots_;
    mutable std::atomic<std::size_t> entered_{0};
};

} // namespace lumora
