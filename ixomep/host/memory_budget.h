// The process-wide count of the bytes that texts and values hold, and the limit they may not
// pass. Without it a short definition text could ask for all memory of the machine (a text that
// doubles itself in a loop); with it the allocation fails cleanly as std::bad_alloc.
#pragma once

#include <cstddef>

#include "ixomep/export.h"

namespace ixomep {

// Whoever takes bytes gives the same number back. Not locked: one thread at a time.
class IXOMEP_API MemoryBudget {
 public:
  static constexpr std::size_t kNoLimit = static_cast<std::size_t>(-1);

  // Whether that many bytes could be taken now.
  static bool MayTake(std::size_t bytes) noexcept {
    return Fits(bytes) || (limit_ == kNotAsked && AskedAndFits(bytes));
  }
  // Counts the bytes; throws std::bad_alloc, and counts nothing, when they would pass the limit.
  static void Take(std::size_t bytes) {
    if (!MayTake(bytes)) ThrowBadAlloc();
    in_use_ += bytes;
  }
  static void Give(std::size_t bytes) noexcept { in_use_ -= bytes; }

  static std::size_t InUse() noexcept { return in_use_; }
  // Half the machine's memory unless set; kNoLimit when the host cannot tell.
  static std::size_t Limit() noexcept;
  // A limit below what is in use lets nothing more be taken. 0 means 1: nothing at all.
  static void SetLimit(std::size_t bytes) noexcept;

 private:
  static constexpr std::size_t kNotAsked = 0;

  static bool Fits(std::size_t bytes) noexcept {
    return bytes <= limit_ && in_use_ <= limit_ - bytes;
  }
  static bool AskedAndFits(std::size_t bytes) noexcept;
  [[noreturn]] static void ThrowBadAlloc();

  static std::size_t in_use_;
  static std::size_t limit_;  // kNotAsked until the first question
};

}  // namespace ixomep
