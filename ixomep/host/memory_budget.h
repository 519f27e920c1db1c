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
  // Counts the bytes; throws as Refuse, and counts nothing, when they would pass the limit.
  static void Take(std::size_t bytes) {
    if (!MayTake(bytes)) Refuse();
    in_use_ += bytes;
  }
  // The same of a few bytes where nothing may be asked or thrown: false, and nothing is counted,
  // also when the limit is not known yet.
  static bool TakeKnown(std::size_t bytes) noexcept {
    const std::size_t in_use = in_use_ + bytes;  // all in use is memory: the sum does not wrap
    if (in_use > limit_) return false;
    in_use_ = in_use;
    return true;
  }
  static void Give(std::size_t bytes) noexcept { in_use_ -= bytes; }
  // Throws what says that bytes cannot be had: std::bad_alloc, or a kin of it that names the limit
  // when it is the host's.
  [[noreturn]] static void Refuse();

  static std::size_t InUse() noexcept { return in_use_; }
  // Half the machine's memory unless set; kNoLimit when the host cannot tell.
  static std::size_t Limit() noexcept;
  // A limit below what is in use lets nothing more be taken. 0 means 1: nothing at all.
  static void SetLimit(std::size_t bytes) noexcept;
  // For IxoHost::SetLimits: the same for a limit of the host, which is named when it is passed; 0
  // takes that back, to the limit of the start.
  static void SetHostLimit(std::size_t bytes) noexcept;
  static bool IsHostLimit() noexcept { return is_host_limit_; }
  // Lets the text that says what happened be made while nothing more can be taken. The limit counts
  // again at the end.
  class Reserve {
   public:
    Reserve() noexcept : limit_(MemoryBudget::limit_) { MemoryBudget::limit_ = kNoLimit; }
    Reserve(const Reserve&) = delete;
    Reserve& operator=(const Reserve&) = delete;
    ~Reserve() { MemoryBudget::limit_ = limit_; }

   private:
    std::size_t limit_;
  };

 private:
  static constexpr std::size_t kNotAsked = 0;

  static bool Fits(std::size_t bytes) noexcept {
    return bytes <= limit_ && in_use_ <= limit_ - bytes;
  }
  static bool AskedAndFits(std::size_t bytes) noexcept;

  static std::size_t in_use_;
  static std::size_t limit_;  // kNotAsked until the first question
  static bool is_host_limit_;
};

}  // namespace ixomep
