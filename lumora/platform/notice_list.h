// Who is told of something, by reference. Whoever is told may take anybody off the list, or put somebody on
// it.
#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

namespace lumora {

template <typename T>
class TNoticeList {
public:
    TNoticeList() = default;
    TNoticeList(const TNoticeList&) = delete;
    TNoticeList& operator=(const TNoticeList&) = delete;

    std::size_t Count() const { return items_.size(); }
    T* operator[](std::size_t i) const { return items_[i]; }
    const std::vector<T*>& Items() const { return items_; }
    void Add(T& item) { items_.push_back(&item); }
    // False when the item is not in the list.
    bool Remove(const T& item) {
        const auto found = std::find(items_.begin(), items_.end(), &item);
        if (found == items_.end())
            return false;
        const auto at = static_cast<std::size_t>(found - items_.begin());
        items_.erase(found);
        for (TRound* round = round_; round; round = round->Outer) {
            round->Next -= at < round->Next ? 1 : 0;
            round->End -= at < round->End ? 1 : 0;
        }
        return true;
    }
    // Tells those that are in the list now, in order, but for those that are taken off before their turn.
    template <typename TTell>
    void ForEach(TTell tell) {
        TRound round(*this);
        while (round.Next < round.End)
            tell(*items_[round.Next++]);
    }

private:
    // One call of ForEach; Remove keeps its places right.
    struct TRound {
        explicit TRound(TNoticeList& owner) : List(owner), End(owner.items_.size()), Outer(owner.round_) {
            List.round_ = this;
        }
        ~TRound() { List.round_ = Outer; }
        TRound(const TRound&) = delete;
        TRound& operator=(const TRound&) = delete;

        TNoticeList& List;
        std::size_t Next = 0;
        std::size_t End;
        TRound* Outer;
    };

    std::vector<T*> items_;
    TRound* round_ = nullptr;
};

} // namespace lumora
