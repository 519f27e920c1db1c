// Bounds: the limits that a host sets.
#include "fuzz/support/bounds.h"

#include "ixomep/host/host.h"
#include "ixomep/host/limit_watch.h"
#include "ixomep/host/memory_budget.h"

namespace ixomep::fuzz {

namespace {

constexpr std::int32_t kLevels = 40;  // which any stack has room for

}  // namespace

Bounds::Bounds(int steps, std::size_t bytes)
    : before_(IxoHost::GetLimits()), exceeded_before_(LimitWatch::TimesExceeded()) {
  IxoHost::SetLimits({static_cast<std::uint64_t>(steps), MemoryBudget::InUse() + bytes, kLevels});
}

Bounds::~Bounds() { IxoHost::SetLimits(before_); }

bool Bounds::Reached() const { return LimitWatch::TimesExceeded() != exceeded_before_; }

}  // namespace ixomep::fuzz
