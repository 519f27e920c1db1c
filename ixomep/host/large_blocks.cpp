// Aligning blocks and announcing them. See large_blocks.h.
#include "ixomep/host/large_blocks.h"

#include <cstdlib>

#include "ixomep/host/host.h"

namespace ixomep {
namespace {

constexpr std::size_t kPage = std::size_t{2} << 20;

}  // namespace

void* LargeBlocks::New(std::size_t bytes) noexcept {
  const std::size_t whole = (bytes + kPage - 1) / kPage * kPage;
  void* const memory = std::aligned_alloc(kPage, whole);
  if (memory != nullptr) IxoHost::Current().PrepareMemory(memory, whole);
  return memory;
}

}  // namespace ixomep
