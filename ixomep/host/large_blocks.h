// Internal: blocks of many megabytes, for long texts and what is noted of them. Getting them page
// by page from the system costs more than filling them, so they are aligned and announced to the
// host, whose machine may have larger pages.
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

}  // namespace ixomep
