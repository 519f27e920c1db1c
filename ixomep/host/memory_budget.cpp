// The counters of MemoryBudget and the one question to the host. See memory_budget.h.
#include "ixomep/host/memory_budget.h"

#include <new>

#include "ixomep/host/host.h"
#include "ixomep/host/limit_watch.h"

namespace ixomep {

constinit std::size_t MemoryBudget::in_use_ = 0;
constinit std::size_t MemoryBudget::limit_ = MemoryBudget::kNotAsked;
constinit bool MemoryBudget::is_host_limit_ = false;

std::size_t MemoryBudget::Limit() noexcept {
  if (limit_ == kNotAsked) {
    // While the host is asked nothing limits: its answer may itself need texts.
    limit_ = kNoLimit;
    const std::size_t answer = IxoHost::Current().DefaultMemoryLimit();
    if (answer != 0) limit_ = answer;
  }
  return limit_;
}

void MemoryBudget::SetLimit(std::size_t bytes) noexcept {
  limit_ = bytes == kNotAsked ? 1 : bytes;
  is_host_limit_ = false;
}

void MemoryBudget::SetHostLimit(std::size_t bytes) noexcept {
  if (bytes != 0 || is_host_limit_) limit_ = bytes != 0 ? bytes : kNotAsked;
  is_host_limit_ = bytes != 0;
}

bool MemoryBudget::AskedAndFits(std::size_t bytes) noexcept {
  Limit();
  return Fits(bytes);
}

void MemoryBudget::Refuse() {
  if (is_host_limit_) throw LimitExceeded(Limit::Memory);
  throw std::bad_alloc();
}

}  // namespace ixomep
