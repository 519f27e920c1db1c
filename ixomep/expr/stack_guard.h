// Internal: how much native stack is left. Recursion asks before each level and gives up with a
// code instead of overflowing.
#pragma once

#include <cstddef>
#include <cstdint>

namespace ixomep {

class StackGuard {
 public:
  // False when less than the reserve is left below the caller on this thread's stack. When the
  // host cannot tell the stack's end, a fixed depth below the first call on the thread counts.
  static bool HasRoom() noexcept { return Here() >= floor_ || AskHost(); }
  // The bytes that are left above the reserve, once HasRoom was true here.
  static std::size_t Room() noexcept { return Here() > floor_ ? Here() - floor_ : 0; }

 private:
  // The frame's own address, not that of a local variable: sanitizers keep those elsewhere.
  static std::uintptr_t Here() noexcept {
#if defined(__GNUC__)
    return reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
#else
    volatile char local = 0;
    return reinterpret_cast<std::uintptr_t>(&local);
#endif
  }
  static bool AskHost() noexcept;

  // The lowest address at which there is still room on this thread; the highest of all before the
  // host was asked. Few bytes, hence in the storage that is reached without a call.
#if defined(__GNUC__)
  [[gnu::tls_model("initial-exec")]]
#endif
  static thread_local constinit std::uintptr_t floor_;
};

}  // namespace ixomep
