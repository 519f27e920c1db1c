// The slow paths of LimitWatch: portions of steps, the question to the host, the first limit that
// is exceeded; and the members of IxoHost that set the limits.
#include "ixomep/host/limit_watch.h"

#include <algorithm>

#include "ixomep/host/host.h"
#include "ixomep/host/memory_budget.h"

namespace ixomep {

void LimitWatch::TakePortion() noexcept {
  left_ = static_cast<std::int32_t>(std::min<std::uint64_t>(not_portioned_, kPortion));
  not_portioned_ -= static_cast<std::uint64_t>(left_);
  portioned_ += static_cast<std::uint64_t>(left_);
}

// What a portion cannot hold goes back to where portions come from.
void LimitWatch::GiveBackSince(std::uint64_t steps_taken) noexcept {
  if (exceeded_ != Limit::None) return;
  const std::uint64_t left = portioned_ - steps_taken;
  left_ = static_cast<std::int32_t>(std::min<std::uint64_t>(left, kPortion));
  const std::uint64_t beyond = left - static_cast<std::uint64_t>(left_);
  not_portioned_ += beyond;
  portioned_ -= beyond;
}

// The step is taken before the host is asked, which may evaluate something to find its answer.
bool LimitWatch::BeginPortion() noexcept {
  left_ = 0;
  if (exceeded_ != Limit::None) return false;
  if (not_portioned_ == 0) {
    Exceed(Limit::Steps);
    return false;
  }
  TakePortion();
  --left_;
  if (IsInterrupted()) Exceed(Limit::Interrupt);
  return exceeded_ == Limit::None;
}

bool LimitWatch::BeginSlowly() noexcept {
  Enter();
  return MayGoDeeper();
}

void LimitWatch::BeginWork() {
  work_left_ = kPortion;
  Ask();
}

bool LimitWatch::IsInterrupted() noexcept {
  if (is_asking_) return false;
  is_asking_ = true;
  const bool is_interrupted = IxoHost::Current().IsInterruptRequested();
  is_asking_ = false;
  return is_interrupted;
}

Limit LimitWatch::Exceed(Limit which) noexcept {
  ++times_exceeded_;
  if (depth_ == 0) return which;
  if (exceeded_ == Limit::None) exceeded_ = which;
  left_ = 0;
  return exceeded_;
}

void LimitWatch::BeginAfresh() noexcept {
  if (limits_.steps != 0) Forget();
  if (has_host_ && IsInterrupted()) [[unlikely]]
    Exceed(Limit::Interrupt);
}

void LimitWatch::Forget() noexcept {
  exceeded_ = Limit::None;
  not_portioned_ = limits_.steps != 0 ? limits_.steps : std::numeric_limits<std::uint64_t>::max();
  TakePortion();
}

void LimitWatch::SetLimits(const IxoLimits& limits) noexcept {
  limits_ = limits;
  // The outermost evaluation is a level too.
  constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
  deepest_ = limits.depth > 0 && limits.depth < kMost ? limits.depth + 1 : kMost;
  begins_afresh_ = has_host_ || limits.steps != 0;
  if (depth_ == 0) Forget();
}

void LimitWatch::SetHasHost(bool has_host) noexcept {
  has_host_ = has_host;
  begins_afresh_ = has_host || limits_.steps != 0;
}

}  // namespace ixomep

void IxoHost::SetLimits(const IxoLimits& limits) noexcept {
  ixomep::LimitWatch::SetLimits(limits);
  ixomep::MemoryBudget::SetHostLimit(limits.memory);
}

IxoLimits IxoHost::GetLimits() noexcept {
  IxoLimits limits = ixomep::LimitWatch::Limits();
  if (!ixomep::MemoryBudget::IsHostLimit()) limits.memory = 0;
  return limits;
}
