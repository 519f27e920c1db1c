// Internal: the storage of short texts, which come and go with every query and evaluation. It is
// inline, so that what makes one of them needs no call.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string_view>
#include <utility>

#include "ixomep/host/large_blocks.h"
#include "ixomep/host/memory_budget.h"
#include "ixomep/host/sanitizer.h"
#include "ixomep/host/string.h"

namespace ixomep {

// Blocks that were given back are kept for the next texts, a few of each size, which costs a fifth
// of going to the heap.
class ShortBlocks {
 public:
  static constexpr std::size_t kStep = 32;
  static constexpr std::size_t kSizes = kWatchedMemory ? 0 : 3;
  // The most bytes that such a block has.
  static constexpr std::size_t kMostBytes = kSizes * kStep;

  // Of at most kMostBytes: whether a block was kept, and that block.
  static bool HasKept(std::size_t bytes) noexcept { return Of(bytes).first != nullptr; }
  static void* TakeKept(std::size_t bytes) noexcept {
    Kept& kept = Of(bytes);
    --kept.count;
    return std::exchange(kept.first, kept.first->next);
  }
  // Null when the memory cannot be had.
  static void* New(std::size_t bytes) noexcept {
    if (bytes >= LargeBlocks::kFrom) return LargeBlocks::New(bytes);
    if (bytes > kMostBytes) return ::operator new(bytes, std::nothrow);
    if (HasKept(bytes)) return TakeKept(bytes);
    return ::operator new((SizeClass(bytes) + 1) * kStep, std::nothrow);
  }
  static void Delete(void* block, std::size_t bytes) noexcept {
    if (bytes <= kMostBytes && Of(bytes).count != kMost) [[likely]] {
      Kept& kept = Of(bytes);
      ++kept.count;
      kept.first = new (block) Link{kept.first};
    } else if (bytes >= LargeBlocks::kFrom) {
      std::free(block);
    } else {
      ::operator delete(block);
    }
  }

 private:
  struct Link {
    Link* next;
  };
  struct Kept {
    Link* first;
    std::int64_t count;
  };
  static constexpr std::int64_t kMost = 1024;

  static std::size_t SizeClass(std::size_t bytes) noexcept { return (bytes - 1) / kStep; }
  static Kept& Of(std::size_t bytes) noexcept { return kept_[SizeClass(bytes)]; }

  static inline Kept kept_[kSizes + 1] = {};
};

class ShortText {
 public:
  // Storage with one owner for a text of two bytes and more that is short and finds a block that
  // was kept; null otherwise. No byte is set.
  static String::Rep* New(std::size_t length) noexcept {
    constexpr std::size_t kLeast = kHead + 2 + 1;
    constexpr std::size_t kSpan = std::max(ShortBlocks::kMostBytes, kLeast) - kLeast;
    const std::size_t bytes = kHead + length + 1;
    if (ShortBlocks::kSizes == 0 || bytes - kLeast > kSpan || !ShortBlocks::HasKept(bytes) ||
        !MemoryBudget::TakeKnown(bytes)) [[unlikely]] {
      return nullptr;
    }
    const auto size = static_cast<std::int32_t>(length);
    return new (ShortBlocks::TakeKept(bytes)) String::Rep{1, size, size};
  }

  // The stretch of a text from `at` on, of `size` bytes, into an empty one; false, and nothing is
  // done, where that takes more: for a long stretch, for one at the very end, without a kept block.
  static bool CopyPart(std::string_view text, std::size_t at, std::size_t size,
                       String& out) noexcept {
    if (text.size() - at < kMostRead) [[unlikely]]
      return false;
    String::Rep* const rep = New(size);
    if (rep == nullptr) [[unlikely]]
      return false;
    char* const to = String::TextOf(rep);
    FillBlock(to, text.data() + at, size);
    to[size] = '\0';
    out.rep_ = rep;
    return true;
  }

 private:
  static constexpr std::size_t kStep = ShortBlocks::kStep;
  static constexpr std::size_t kHead = sizeof(String::Rep);
  static_assert(kHead == 12);
  static constexpr std::size_t kMostRead = 3 * kStep - kHead;

  // All of the block that a text of that length has, which ends 20, 52 or 84 bytes behind its head:
  // how long a text is cannot be foretold, and a branch taken wrongly costs more than the copy.
  static void FillBlock(char* to, const char* from, std::size_t length) noexcept {
    Move<16>(to, from);
    if (length < kStep - kHead) return Move<4>(to + 16, from + 16);
    Move<16>(to + 16, from + 16);
    Move<16>(to + 32, from + 32);
    const std::size_t more = length < 2 * kStep - kHead ? 0 : kStep;
    to += more;
    from += more;
    Move<16>(to + 16, from + 16);
    Move<16>(to + 32, from + 32);
    Move<4>(to + 48, from + 48);
  }
  template <std::size_t kBytes>
  static void Move(char* to, const char* from) noexcept {
    std::memcpy(to, from, kBytes);
  }
};

}  // namespace ixomep
