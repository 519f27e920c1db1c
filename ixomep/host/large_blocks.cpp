// Aligning blocks and announcing them, and keeping freed ones. See large_blocks.h.
#include "ixomep/host/large_blocks.h"

#include <cstdlib>

#include "ixomep/host/host.h"

namespace ixomep {
namespace {

constexpr std::size_t kPage = std::size_t{2} << 20;

struct Block {
  void* memory;
  std::size_t bytes;
};

// The blocks kept, the smallest one first. What outlives the library keeps nothing any more.
class Store {
 public:
  constexpr Store() = default;
  Store(const Store&) = delete;
  Store& operator=(const Store&) = delete;
  ~Store() {
    Clear();
    is_open_ = false;
  }

  void* Take(std::size_t& bytes) noexcept {
    std::size_t place = 0;
    while (place < count_ && blocks_[place].bytes < bytes) ++place;
    if (place == count_) return nullptr;
    bytes = blocks_[place].bytes;
    return Remove(place);
  }
  void Give(Block block) noexcept {
    if (!is_open_ || block.bytes < IdleBlocks::kLeast || block.bytes > IdleBlocks::kMostBytes) {
      return std::free(block.memory);
    }
    if (count_ == IdleBlocks::kMostBlocks) {
      if (block.bytes <= blocks_[0].bytes) return std::free(block.memory);
      FreeSmallest();
    }
    std::size_t place = count_++;
    for (; place > 0 && blocks_[place - 1].bytes > block.bytes; --place) {
      blocks_[place] = blocks_[place - 1];
    }
    blocks_[place] = block;
    bytes_ += block.bytes;
    while (bytes_ > IdleBlocks::kMostBytes) FreeSmallest();
  }
  void Clear() noexcept {
    for (; count_ > 0; --count_) std::free(blocks_[count_ - 1].memory);
    bytes_ = 0;
  }
  std::size_t Bytes() const noexcept { return bytes_; }

 private:
  void* Remove(std::size_t place) noexcept {
    const Block block = blocks_[place];
    --count_;
    for (; place < count_; ++place) blocks_[place] = blocks_[place + 1];
    bytes_ -= block.bytes;
    return block.memory;
  }
  void FreeSmallest() noexcept { std::free(Remove(0)); }

  Block blocks_[IdleBlocks::kMostBlocks]{};
  std::size_t count_ = 0;
  std::size_t bytes_ = 0;
  bool is_open_ = true;
};
constinit Store store;

}  // namespace

void* LargeBlocks::New(std::size_t bytes) noexcept {
  const std::size_t whole = (bytes + kPage - 1) / kPage * kPage;
  void* const memory = std::aligned_alloc(kPage, whole);
  if (memory != nullptr) IxoHost::Current().PrepareMemory(memory, whole);
  return memory;
}

void* IdleBlocks::Take(std::size_t& bytes) noexcept {
  return bytes >= kLeast ? store.Take(bytes) : nullptr;
}
void IdleBlocks::Give(void* block, std::size_t bytes) noexcept { store.Give({block, bytes}); }
void IdleBlocks::Clear() noexcept { store.Clear(); }
std::size_t IdleBlocks::Bytes() noexcept { return store.Bytes(); }

}  // namespace ixomep
