#include "lumora/sqlparse/parse_arena.h"

#include <algorithm>

namespace lumora {

std::string_view TParseArena::Join(std::initializer_list<std::string_view> pieces) {
    std::size_t length = 0;
    for (const std::string_view piece : pieces)
        length += piece.size();
    char* const text = NewText(length);
    char* at = text;
    for (const std::string_view piece : pieces)
        at = std::copy(piece.begin(), piece.end(), at);
    return {text, length};
}

void TParseArena::Clear() {
    next_ = first_;
    left_ = FirstSize;
    used_ = 0;
}

// To the next block that is large enough, a new one if need be. Each is larger than the one before, so there
// are few.
void TParseArena::NextBlock(std::size_t size) {
    while (used_ < blocks_.size() && blocks_[used_].Size < size)
        ++used_;
    if (used_ == blocks_.size()) {
        const std::size_t wanted = std::max(size, 2 * (blocks_.empty() ? FirstSize : blocks_.back().Size));
        blocks_.push_back({std::unique_ptr<std::byte[]>(new std::byte[wanted]), wanted});
    }
    next_ = blocks_[used_].Memory.get();
    left_ = blocks_[used_].Size;
    ++used_;
}

} // namespace lumora
