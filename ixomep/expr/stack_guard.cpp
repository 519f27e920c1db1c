// Asks the host once a thread where the stack ends and compares addresses from then on.
#include "ixomep/expr/stack_guard.h"

#include <cstddef>
#include <cstdint>

#include "ixomep/host/host.h"
#include "ixomep/host/sanitizer.h"

namespace ixomep {
namespace {

constexpr std::uintptr_t kFrameFactor = kWatchedMemory ? 8 : 1;

// Kept free for the work of one level and for the host functions that it calls.
constexpr std::uintptr_t kReserveBytes = 128 * 1024 * kFrameFactor;
// The depth allowed below the first call when the host does not know the stack's end.
constexpr std::uintptr_t kAssumedBytes = 256 * 1024 * kFrameFactor;

// The lowest address at which there is still room on this thread; 0 before the first call.
thread_local std::uintptr_t floor_address = 0;

// The frame's own address, not that of a local variable: sanitizers keep those elsewhere.
std::uintptr_t Here() noexcept {
#if defined(__GNUC__)
  return reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
#else
  volatile char local = 0;
  return reinterpret_cast<std::uintptr_t>(&local);
#endif
}

std::uintptr_t AskHost() noexcept {
  try {
    const auto end = reinterpret_cast<std::uintptr_t>(IxoHost::Current().StackLimit());
    return end != 0 ? end + kReserveBytes : 0;
  } catch (...) {
    return 0;
  }
}

// Out of line, so that the fast path stays short. A program may run several stacks on one thread:
// before giving up the host is asked again.
bool AskAgain(std::uintptr_t here) noexcept {
  const std::uintptr_t told = AskHost();
  if (told != 0) {
    floor_address = told;
  } else if (floor_address == 0) {
    floor_address = here > kAssumedBytes ? here - kAssumedBytes : 1;
  }
  return here >= floor_address;
}

}  // namespace

bool StackGuard::HasRoom() noexcept {
  const std::uintptr_t here = Here();
  return floor_address != 0 && here >= floor_address ? true : AskAgain(here);
}

}  // namespace ixomep
