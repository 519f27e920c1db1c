// Internal: how much native stack is left. Recursion asks before each level and gives up with a
// code instead of overflowing.
#pragma once

namespace ixomep {

class StackGuard {
 public:
  // False when less than the reserve is left below the caller on this thread's stack. When the
  // host cannot tell the stack's end, a fixed depth below the first call on the thread counts.
  static bool HasRoom() noexcept;
};

}  // namespace ixomep
