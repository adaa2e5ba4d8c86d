#include "lumora/statement/arena.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace lumora {

namespace {

constexpr std::size_t BlockSize = 16 * 1024;

} // namespace

struct TArena::TBlock {
    explicit TBlock(std::size_t size)
        : Memory(std::make_unique<std::max_align_t[]>(size / sizeof(std::max_align_t) + 1)), Size(size) {}
    char* Begin() const { return reinterpret_cast<char*>(Memory.get()); }

    std::unique_ptr<std::max_align_t[]> Memory;
    std::size_t Size;
};

TArena::TArena() = default;

TArena::TArena(TArena&& other) noexcept
    : blocks_(std::move(other.blocks_)),
      block_(std::exchange(other.block_, 0)),
      next_(std::exchange(other.next_, nullptr)),
      end_(std::exchange(other.end_, nullptr)) {
    other.blocks_.clear();
}

TArena& TArena::operator=(TArena&& other) noexcept {
    std::swap(blocks_, other.blocks_);
    std::swap(block_, other.block_);
    std::swap(next_, other.next_);
    std::swap(end_, other.end_);
    return *this;
}

TArena::~TArena() = default;

TArena::TMark TArena::Mark() const {
    return {block_, blocks_.empty() ? 0 : static_cast<std::size_t>(next_ - blocks_[block_].Begin())};
}

void TArena::Rewind(const TMark& mark) {
    if (blocks_.empty())
        return;
    block_ = mark.Block;
    next_ = blocks_[block_].Begin() + mark.Used;
    end_ = blocks_[block_].Begin() + blocks_[block_].Size;
}

void TArena::NextBlock(std::size_t size) {
    block_ += blocks_.empty() ? 0 : 1;
    while (block_ < blocks_.size() && blocks_[block_].Size < size)
        ++block_;
    if (block_ == blocks_.size())
        blocks_.emplace_back(std::max(size, BlockSize));
    next_ = blocks_[block_].Begin();
    end_ = next_ + blocks_[block_].Size;
}

} // namespace lumora
