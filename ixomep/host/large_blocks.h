// Internal: blocks of many megabytes, for long texts and what is noted of them. Getting them page
// by page from the system costs more than filling them, so they are aligned and announced to the
// host, whose machine may have larger pages, and smaller ones of them are kept when they are freed,
// for the next text.
#pragma once

#include <cstddef>

namespace ixomep {

class LargeBlocks {
 public:
  // Smaller blocks the general heap mostly has at hand, from others that were freed.
  static constexpr std::size_t kFrom = std::size_t{24} << 20;

  // Null when the memory cannot be had. Freed by std::free.
  static void* New(std::size_t bytes) noexcept;
};

// Freed blocks that are kept for the next one who asks: a few, and so many bytes in all at most,
// which nobody's budget counts. They are freed when the library is unloaded. Not locked.
class IdleBlocks {
 public:
  // The general heap does better with smaller ones.
  static constexpr std::size_t kLeast = std::size_t{64} << 10;
  static constexpr std::size_t kMostBytes = std::size_t{16} << 20;
  static constexpr std::size_t kMostBlocks = 6;

  // The smallest block kept that has so many bytes; `bytes` becomes its size. Null when there is
  // none. It belongs to the caller: given back here or freed by std::free.
  static void* Take(std::size_t& bytes) noexcept;
  // Keeps a block that std::malloc or its kin gave, or frees it, or a smaller one instead.
  static void Give(void* block, std::size_t bytes) noexcept;
  // Frees all.
  static void Clear() noexcept;
  // Of the blocks kept.
  static std::size_t Bytes() noexcept;
};

}  // namespace ixomep
