// For tests of what ends evaluations: limits for a scope, a host that interrupts, and the choice
// between side programs and the plain walk.
#pragma once

#include <limits>

#include "ixomep/expr/program.h"
#include "ixomep/host/host.h"
#include "tests/support/test_host.h"

namespace ixomep::test {

class ScopedLimits {
 public:
  explicit ScopedLimits(const IxoLimits& limits) : previous_(IxoHost::GetLimits()) {
    IxoHost::SetLimits(limits);
  }
  ScopedLimits(const ScopedLimits&) = delete;
  ScopedLimits& operator=(const ScopedLimits&) = delete;
  ~ScopedLimits() { IxoHost::SetLimits(previous_); }

 private:
  IxoLimits previous_;
};

// Asks for the end once it has been asked that many times.
class InterruptingHost : public TestHost {
 public:
  static constexpr int kNever = std::numeric_limits<int>::max();

  explicit InterruptingHost(int answers_no) : answers_yes_after(answers_no) {}

  bool IsInterruptRequested() noexcept override { return asked++ >= answers_yes_after; }

  int answers_yes_after;
  int asked = 0;
};

class UseOfPrograms {
 public:
  explicit UseOfPrograms(bool use) : before_(UsePrograms(use)) {}
  UseOfPrograms(const UseOfPrograms&) = delete;
  UseOfPrograms& operator=(const UseOfPrograms&) = delete;
  ~UseOfPrograms() { UsePrograms(before_); }

 private:
  bool before_;
};

}  // namespace ixomep::test
