// Who is told of something, by reference. Whoever is told may take anybody off the list, or put somebody on
// it.
#pragma once

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
        std::size_t at = 0;
        while (at < items_.size() && items_[at] != &item)
            ++at;
        if (at == items_.size())
            return false;
        items_.erase(items_.begin() + static_cast<std::ptrdiff_t>(at));
        for (TRound& round : rounds_) {
            round.Next -= at < round.Next ? 1 : 0;
            round.End -= at < round.End ? 1 : 0;
        }
        return true;
    }
    // Tells those that are in the list now, in order, but for those that are taken off before their turn.
    template <typename TTell>
    void ForEach(TTell tell) {
        const TTelling telling(rounds_);
        rounds_.back().End = items_.size();
        const std::size_t round = rounds_.size() - 1; // others may begin within it
        while (rounds_[round].Next < rounds_[round].End)
            tell(*items_[rounds_[round].Next++]);
    }

private:
    // Where a call of ForEach is; Remove keeps it right.
    struct TRound {
        std::size_t Next = 0;
        std::size_t End = 0;
    };
    struct TTelling {
        explicit TTelling(std::vector<TRound>& rounds) : Rounds(rounds) { Rounds.emplace_back(); }
        ~TTelling() { Rounds.pop_back(); }
        TTelling(const TTelling&) = delete;
        TTelling& operator=(const TTelling&) = delete;

        std::vector<TRound>& Rounds;
    };

    std::vector<T*> items_;
    std::vector<TRound> rounds_;
};

} // namespace lumora
