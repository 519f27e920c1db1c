// Internal: recycles blocks of one size for values and nodes. Keeps at most 30000 free blocks;
// one more trims the list to 15000. Process-wide and unguarded: one thread at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <new>
#include <type_traits>

#include "ixomep/host/memory_budget.h"
#include "ixomep/host/sanitizer.h"
#include "ixomep/values/block_heap.h"

namespace ixomep {

// Where free lists get their blocks and give them back to. A sanitizer is to see every block that
// is lost, so that under one each is an allocation of its own.
class SingleBlocks {
 public:
  explicit constexpr SingleBlocks(std::size_t block_bytes) noexcept : block_bytes_(block_bytes) {}
  void* Take() { return ::operator new(block_bytes_); }
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
    if (head_ == nullptr) return TakeNew();
    Link* const block = head_;
    head_ = block->next;
    --count_;
    return block;
  }

  static void Give(void* block) noexcept {
    head_ = new (block) Link{head_};
    if (++count_ > kHighMark) TrimTo(kLowMark);
  }

  static std::int32_t Count() noexcept { return count_; }

  // Returns blocks to where they came from until `keep` are left.
  static void TrimTo(std::int32_t keep) noexcept {
    while (count_ > keep) {
      Link* const block = head_;
      head_ = block->next;
      --count_;
      source_.Give(block);
      MemoryBudget::Give(kBlockSize);
    }
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

  static void* TakeNew() {
    static const Emptier emptier;
    MemoryBudget::Take(kBlockSize);
    try {
      return source_.Take();
    } catch (...) {
      MemoryBudget::Give(kBlockSize);
      throw;
    }
  }

  constinit inline static BlockSource source_{kBlockSize};
  inline static Link* head_ = nullptr;
  inline static std::int32_t count_ = 0;
};

}  // namespace ixomep
