// What the default host asks the machine: clock, generator, memory, stack.
#include <pthread.h>
#include <sys/mman.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>

#include "ixomep/host/portable/default_host.h"

namespace ixomep::portable {
namespace {

constexpr std::int32_t kFifteenBits = 32767;

constexpr int ShiftToFifteenBits() {
  int shift = 0;
  while ((RAND_MAX >> shift) > kFifteenBits) ++shift;
  return shift;
}

// The guard area may be counted as a part of the stack, so it is left out.
const void* AskLowestStackAddress() noexcept {
  pthread_attr_t attributes;
  if (pthread_getattr_np(pthread_self(), &attributes) != 0) return nullptr;
  void* lowest = nullptr;
  std::size_t size = 0;
  std::size_t guard = 0;
  const bool known = pthread_attr_getstack(&attributes, &lowest, &size) == 0 &&
                     pthread_attr_getguardsize(&attributes, &guard) == 0;
  pthread_attr_destroy(&attributes);
  return known ? static_cast<const char*>(lowest) + guard : nullptr;
}

}  // namespace

std::uint32_t Milliseconds() noexcept {
  const auto now = std::chrono::steady_clock::now().time_since_epoch();
  return static_cast<std::uint32_t>(
      std::chrono::duration_cast<std::chrono::milliseconds>(now).count());
}

std::int32_t TopFifteenBitsOfRand() noexcept {
  constexpr int kShift = ShiftToFifteenBits();
  return static_cast<std::int32_t>(std::rand() >> kShift);
}

std::size_t HalfOfMemory() noexcept {
  const long pages = ::sysconf(_SC_PHYS_PAGES);
  const long page_size = ::sysconf(_SC_PAGESIZE);
  if (pages <= 0 || page_size <= 0) return 0;
  return static_cast<std::size_t>(pages) * static_cast<std::size_t>(page_size) / 2;
}

const void* LowestStackAddress() noexcept {
  // The question reads a file for the first thread, so each thread asks once.
  thread_local const void* const lowest = AskLowestStackAddress();
  return lowest;
}

// A wish only: a machine that has no large pages goes on with small ones.
void AskForLargePages(void* memory, std::size_t bytes) noexcept {
#if defined(MADV_HUGEPAGE)
  ::madvise(memory, bytes, MADV_HUGEPAGE);
#else
  static_cast<void>(memory);
  static_cast<void>(bytes);
#endif
}

}  // namespace ixomep::portable
