// Finds the first item of a list that has a key, in constant time.
#pragma once

#include "lumora/platform/ascii.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace lumora {

// The index over a list of owned items by one key. Items added at the end are entered at the next look-up;
// any other change of the list or of a key must be told by Invalidate.
template <typename T>
class TLookup {
public:
    // Appends the item's key, in the form in which keys are compared.
    using TKeyOf = void (*)(const T& item, std::string& key);

    explicit TLookup(TKeyOf keyOf) : keyOf_(keyOf) {}

    void Invalidate() {
        entered_ = 0;
        slots_.clear();
    }

    T* Find(const std::vector<std::unique_ptr<T>>& items, std::string_view key) {
        EnterNewItems(items);
        if (slots_.empty())
            return nullptr;
        const TSlot& slot = slots_[SlotOf(items, HashOf(key), key)];
        return slot.Item < 0 ? nullptr : items[static_cast<std::size_t>(slot.Item)].get();
    }

private:
    struct TSlot {
        std::uint32_t Hash = 0;
        std::int32_t Item = -1;
    };

    static std::uint32_t HashOf(std::string_view key) {
        const std::uint64_t hash = std::hash<std::string_view>()(key);
        return static_cast<std::uint32_t>(hash ^ (hash >> 32));
    }

    void EnterNewItems(const std::vector<std::unique_ptr<T>>& items) {
        if (entered_ == items.size())
            return;
        if (items.size() * 3 > slots_.size() * 2) {
            std::size_t size = 16;
            while (size * 2 < items.size() * 3)
                size *= 2;
            slots_.assign(size, {});
            entered_ = 0;
        }
        std::string key;
        for (; entered_ < items.size(); ++entered_) {
            key.clear();
            keyOf_(*items[entered_], key);
            const std::uint32_t hash = HashOf(key);
            TSlot& slot = slots_[SlotOf(items, hash, key)];
            if (slot.Item < 0) // the first of equal keys stays
                slot = {hash, static_cast<std::int32_t>(entered_)};
        }
    }

    // The slot that holds the key, or the free one where it would be entered.
    std::size_t SlotOf(const std::vector<std::unique_ptr<T>>& items, std::uint32_t hash,
                       std::string_view key) {
        for (std::size_t at = hash & (slots_.size() - 1);; at = (at + 1) & (slots_.size() - 1)) {
            const TSlot& slot = slots_[at];
            if (slot.Item < 0)
                return at;
            if (slot.Hash != hash)
                continue;
            otherKey_.clear();
            keyOf_(*items[static_cast<std::size_t>(slot.Item)], otherKey_);
            if (otherKey_ == key)
                return at;
        }
    }

    TKeyOf keyOf_;
    std::vector<TSlot> slots_;
    std::size_t entered_ = 0;
    std::string otherKey_; // kept for its memory
};

// Keys that are compared without regard to case are entered folded.
inline void AppendFolded(std::string& key, std::string_view text) {
    for (const char c : text)
        key += LowerAscii(c);
}

} // namespace lumora
