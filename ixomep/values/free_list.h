// Internal: recycles blocks of one size for values and nodes. Keeps at most 30000 free blocks;
// one more trims the list to 15000. Process-wide and unguarded: one thread at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <new>

#include "ixomep/host/memory_budget.h"

namespace ixomep {

template <class Tag, std::size_t kBlockSize>
class FreeList {
 public:
  static constexpr std::int32_t kHighMark = 30000;
  static constexpr std::int32_t kLowMark = 15000;

  static void* Take() {
    if (head_ != nullptr) {
      Link* const block = head_;
      head_ = block->next;
      --count_;
      return block;
    }
    static const Emptier emptier;
    MemoryBudget::Take(kBlockSize);
    try {
      return ::operator new(kBlockSize);
    } catch (...) {
      MemoryBudget::Give(kBlockSize);
      throw;
    }
  }

  static void Give(void* block) noexcept {
    head_ = new (block) Link{head_};
    if (++count_ > kHighMark) TrimTo(kLowMark);
  }

  static std::int32_t Count() noexcept { return count_; }

  // Returns blocks to the heap until `keep` are left.
  static void TrimTo(std::int32_t keep) noexcept {
    while (count_ > keep) {
      Link* const block = head_;
      head_ = block->next;
      --count_;
      ::operator delete(block);
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

  inline static Link* head_ = nullptr;
  inline static std::int32_t count_ = 0;
};

}  // namespace ixomep
