// Asks the host once a thread where the stack ends and compares addresses from then on.
#include "ixomep/expr/stack_guard.h"

#include <limits>

#include "ixomep/host/host.h"
#include "ixomep/host/sanitizer.h"

namespace ixomep {
namespace {

constexpr std::uintptr_t kFrameFactor = kWatchedMemory ? 8 : 1;

// Kept free for the work of one level and for the host functions that it calls.
constexpr std::uintptr_t kReserveBytes = 128 * 1024 * kFrameFactor;
// The depth allowed below the first call when the host does not know the stack's end.
constexpr std::uintptr_t kAssumedBytes = 256 * 1024 * kFrameFactor;
constexpr std::uintptr_t kNotAsked = std::numeric_limits<std::uintptr_t>::max();

// The lowest address with room, 0 when the host does not know.
std::uintptr_t ToldFloor() noexcept {
  try {
    const auto end = reinterpret_cast<std::uintptr_t>(IxoHost::Current().StackLimit());
    return end != 0 ? end + kReserveBytes : 0;
  } catch (...) {
    return 0;
  }
}

}  // namespace

thread_local constinit std::uintptr_t StackGuard::floor_ = kNotAsked;

// A program may run several stacks on one thread: before giving up the host is asked again.
bool StackGuard::AskHost() noexcept {
  const std::uintptr_t here = Here();
  const std::uintptr_t told = ToldFloor();
  if (told != 0) {
    floor_ = told;
  } else if (floor_ == kNotAsked) {
    floor_ = here > kAssumedBytes ? here - kAssumedBytes : 1;
  }
  return here >= floor_;
}

}  // namespace ixomep
