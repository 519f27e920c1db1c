// Allocations that fail on purpose. This program has its own operator new; while a FailingNew
// lives, the n-th allocation of the process, or that and every further one, throws std::bad_alloc.
#pragma once

#include "ixomep/host/sanitizer.h"

namespace ixomep::test {

enum class FailMode { Once, FromThenOn };

class FailingNew {
 public:
  // n counts from 1.
  FailingNew(int n, FailMode mode) noexcept;
  FailingNew(const FailingNew&) = delete;
  FailingNew& operator=(const FailingNew&) = delete;
  ~FailingNew();

  // Whether an allocation has failed.
  static bool HasFailed() noexcept;
};

// Empties the free lists of values, storages and nodes, so that the next ones are allocated.
void EmptyFreeLists() noexcept;

// How many failures a sweep must have caused to be one: what it takes where every block is an
// allocation of its own, a third of that where the library keeps blocks for the next use.
constexpr int AtLeast(int failures) { return kWatchedMemory ? failures : failures / 3; }

// Repeats work(n) with the n-th allocation failing, n = 1, 2, 3 and so on, until none fails; both
// modes. work returns when the library has; whatever it checks, it does with the memory back. Gives
// the number of allocations that failed.
template <class Work>
int SweepFailures(Work work) {
  int failures = 0;
  for (const FailMode mode : {FailMode::Once, FailMode::FromThenOn}) {
    for (int n = 1;; ++n) {
      EmptyFreeLists();
      if (!work(n, mode)) break;
      ++failures;
    }
  }
  return failures;
}

}  // namespace ixomep::test
