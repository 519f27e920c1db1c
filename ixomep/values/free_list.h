// Internal: recycles blocks of one size for values and nodes. Keeps at most 30000 free blocks;
// one more trims the list to 15000. Process-wide and unguarded: one thread at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <new>
#include <type_traits>
#include <utility>

#include "ixomep/host/memory_budget.h"
#include "ixomep/host/sanitizer.h"
#include "ixomep/values/block_heap.h"

namespace ixomep {

// Where free lists get their blocks and give them back to. A sanitizer is to see every block that
// is lost, so that under one each is an allocation of its own.
class SingleBlocks {
 public:
  explicit constexpr SingleBlocks(std::size_t block_bytes) noexcept : block_bytes_(block_bytes) {}
  BlockHeap::Run TakeRun(std::uint32_t) {
    return {static_cast<unsigned char*>(::operator new(block_bytes_)), 1};
  }
  void Give(void* block) noexcept { ::operator delete(block); }

 private:
  std::size_t block_bytes_;
};
using BlockSource = std::conditional_t<kWatchedMemory, SingleBlocks, BlockHeap>;

template <class Tag, std::size_t kBlockSize>
class FreeList {
 public:
  static constexpr std::int32_t kHighMark = 30000;
  static constexpr std::int32_t kLowMark = 15000;

  static void* Take() {
    if (Link* const block = head_) {
      head_ = block->next;
      --count_;
      return block;
    }
    if (fresh_ == fresh_end_) return TakeNew();
    return std::exchange(fresh_, fresh_ + kStride);
  }

  static void Give(void* block) noexcept {
    head_ = new (block) Link{head_};
    if (++count_ > kHighMark) TrimTo(kLowMark);
  }

  static std::int32_t Count() noexcept { return count_; }

  // Returns blocks to where they came from until `keep` are left; with 0 also those that were got
  // ahead of need.
  static void TrimTo(std::int32_t keep) noexcept {
    while (count_ > keep) {
      Link* const block = head_;
      head_ = block->next;
      --count_;
      Return(block);
    }
    if (keep != 0) return;
    while (fresh_ != fresh_end_) Return(std::exchange(fresh_, fresh_ + kStride));
  }

 private:
  struct Link {
    Link* next;
  };
  // Returns the free blocks when the library is unloaded.
  struct Emptier {
    ~Emptier() { TrimTo(0); }
  };
  static_assert(kBlockSize >= sizeof(Link));

  static constexpr std::size_t kStride = (kBlockSize + 7) / 8 * 8;
  // How many blocks are got at a time, as long as the memory for so many may be taken.
  static constexpr std::uint32_t kRun = kStride < 512 ? 1024 / kStride : 1;

  static void* TakeNew() {
    static const Emptier emptier;
    const std::uint32_t most = MemoryBudget::MayTake(kRun * kBlockSize) ? kRun : 1;
    MemoryBudget::Take(most * kBlockSize);
    BlockHeap::Run run{nullptr, 0};
    try {
      run = source_.TakeRun(most);
    } catch (...) {
      MemoryBudget::Give(most * kBlockSize);
      throw;
    }
    MemoryBudget::Give((most - run.count) * kBlockSize);
    fresh_ = run.first + kStride;
    fresh_end_ = run.first + run.count * kStride;
    return run.first;
  }
  static void Return(void* block) noexcept {
    source_.Give(block);
    MemoryBudget::Give(kBlockSize);
  }

  constinit inline static BlockSource source_{kBlockSize};
  inline static Link* head_ = nullptr;
  inline static std::int32_t count_ = 0;
  inline static unsigned char* fresh_ = nullptr;  // blocks that were got and never used
  inline static unsigned char* fresh_end_ = nullptr;
};

}  // namespace ixomep
