// The counters of MemoryBudget and the one question to the host. See memory_budget.h.
#include "ixomep/host/memory_budget.h"

#include <new>

#include "ixomep/host/host.h"

namespace ixomep {

constinit std::size_t MemoryBudget::in_use_ = 0;
constinit std::size_t MemoryBudget::limit_ = MemoryBudget::kNotAsked;

std::size_t MemoryBudget::Limit() noexcept {
  if (limit_ == kNotAsked) {
    // While the host is asked nothing limits: its answer may itself need texts.
    limit_ = kNoLimit;
    const std::size_t answer = IxoHost::Current().DefaultMemoryLimit();
    if (answer != 0) limit_ = answer;
  }
  return limit_;
}

void MemoryBudget::SetLimit(std::size_t bytes) noexcept { limit_ = bytes == kNotAsked ? 1 : bytes; }

bool MemoryBudget::AskedAndFits(std::size_t bytes) noexcept {
  Limit();
  return Fits(bytes);
}

void MemoryBudget::ThrowBadAlloc() { throw std::bad_alloc(); }

}  // namespace ixomep
