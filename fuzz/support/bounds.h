// What keeps one input from running away while it is tried: a number of evaluation steps and of
// bytes, through the limits that any host can set.
#pragma once

#include <cstddef>
#include <cstdint>

#include "ixomep/host/limits.h"

namespace ixomep::fuzz {

// The bounds hold while one of these lives; they do not nest. What passes them fails with 38
// (steps, memory) or 37 (memory).
class Bounds {
 public:
  static constexpr int kSteps = 20000;
  static constexpr std::size_t kBytes = std::size_t{32} << 20;

  explicit Bounds(int steps = kSteps, std::size_t bytes = kBytes);
  Bounds(const Bounds&) = delete;
  Bounds& operator=(const Bounds&) = delete;
  ~Bounds();

  // Has something ended because of them? Then two ways of doing the same may differ.
  bool Reached() const;

 private:
  IxoLimits before_;
  std::uint64_t exceeded_before_;
};

}  // namespace ixomep::fuzz
