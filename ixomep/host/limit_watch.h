// Internal: counts what evaluations use up and says when one has to end. The limits are the
// host's (limits.h); the text of an exceeded one is values/raise.h's.
//
// Counting a step is one subtraction. Steps are handed out in portions, and the host is asked
// whether to stop when a portion is used up. Once a limit is exceeded every further step is
// refused, so that nothing goes on behind the back of whoever ignores a failure, until the
// outermost evaluation has ended.
#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>
#include <new>

#include "ixomep/host/limits.h"

namespace ixomep {

enum class Limit : std::uint8_t { None, Steps, Memory, Depth, Interrupt };

// What is thrown where a limit is found exceeded amid other work. Memory that cannot be had is the
// nearest kin: what catches that gives back everything it has begun.
class LimitExceeded : public std::bad_alloc {
 public:
  explicit LimitExceeded(Limit which) noexcept : which_(which) {}
  Limit Which() const noexcept { return which_; }

 private:
  Limit which_;
};

class LimitWatch {
 public:
  // Counts one step; false when the evaluation has to end.
  static bool Step() noexcept { return --left_ >= 0 || BeginPortion(); }
  // Counts as many steps as there are at once, `most` at most, for passes that take no further ones
  // themselves; 0 when the evaluation has to end. What is not made use of is given back.
  static std::int64_t StepAhead(std::int64_t most) noexcept {
    if (!Step()) return 0;
    const std::int64_t more = std::min<std::int64_t>(most - 1, left_);
    left_ -= static_cast<std::int32_t>(more);
    return 1 + more;
  }
  static void GiveBack(std::int64_t steps) noexcept {
    if (exceeded_ == Limit::None) left_ += static_cast<std::int32_t>(steps);
  }
  // Where the count of steps stands, for work that may be for nothing: gives back what was taken
  // since then. The host was asked meanwhile and is asked again after as many further steps as
  // usual.
  static std::uint64_t StepsTaken() noexcept {
    return portioned_ - static_cast<std::uint64_t>(left_);
  }
  static void GiveBackSince(std::uint64_t steps_taken) noexcept;
  // One small piece of long work that takes no steps; throws LimitExceeded when the host asks for
  // the end.
  static void Work() {
    if (--work_left_ < 0) BeginWork();
  }
  // The same for work that hosts begin themselves too, where nobody awaits an end: nothing outside
  // evaluations.
  static void WorkOfEvaluation() {
    if (IsEvaluating()) Work();
  }
  // The same where nothing may be thrown: false when the host asks for the end, which the
  // evaluation finds out when it goes on.
  static bool MayWorkOn() noexcept {
    if (!IsEvaluating() || --work_left_ >= 0) return true;
    work_left_ = kPortion;
    if (!IsInterrupted()) return true;
    Exceed(Limit::Interrupt);
    return false;
  }
  static bool IsEvaluating() noexcept { return depth_ != 0; }
  // Throws LimitExceeded when the host asks for the end.
  static void Ask() {
    if (IsInterrupted()) throw LimitExceeded(Limit::Interrupt);
  }
  // Does the host ask for the end? Nobody is asked while it is being asked.
  static bool IsInterrupted() noexcept;

  // Can an evaluation that takes one step begin and end without anybody to ask or tell? It then
  // opens no level and takes its step when it is done.
  static bool IsStepUnnoticed() noexcept { return depth_ == 0 && !begins_afresh_ && left_ > 0; }
  static void TakeUnnoticedStep() noexcept { --left_; }

  // How many levels are open, for whoever opens one itself (a call of a lambda, inside an
  // evaluation) and closes it again.
  static std::int32_t OpenLevels() noexcept { return depth_; }
  static void SetOpenLevels(std::int32_t depth) noexcept { depth_ = depth; }
  // Takes the step of a call that has opened a level; false when the evaluation has to end.
  static bool MayCallAt(std::int32_t depth) noexcept {
    return depth <= deepest_ ? Step() : Exceed(Limit::Depth) == Limit::None;
  }
  // How many may be open.
  static std::int32_t DeepestLevel() noexcept { return deepest_; }
  // Takes a step where nobody has to be asked or told; else false, and none is taken.
  static bool StepAtOnce() noexcept { return --left_ >= 0; }

  // The limit that was exceeded, until the outermost evaluation has ended.
  static Limit Exceeded() noexcept { return exceeded_; }
  // How often a limit was exceeded since the process began.
  static std::uint64_t TimesExceeded() noexcept { return times_exceeded_; }
  // Notes that a limit is exceeded; gives the first that was during this evaluation.
  static Limit Exceed(Limit which) noexcept;

  static void SetLimits(const IxoLimits& limits) noexcept;
  static const IxoLimits& Limits() noexcept { return limits_; }
  // Is there a host to ask at the beginning of each outermost evaluation?
  static void SetHasHost(bool has_host) noexcept;

 private:
  friend class OuterEntry;
  friend class EvaluationLevel;
  friend class CallLevel;

  static constexpr std::int32_t kPortion = 1024;

  static bool BeginPortion() noexcept;
  static bool MayGoDeeper() noexcept { return MayCallAt(depth_); }
  // Enters a level and takes its step; at once where nothing is limited.
  static bool Begin() noexcept {
    if (depth_ != 0 || begins_afresh_) [[unlikely]]
      return BeginSlowly();
    depth_ = 1;
    return Step();
  }
  static bool BeginSlowly() noexcept;
  static void BeginWork();
  static void BeginAfresh() noexcept;
  static void Enter() noexcept {
    if (++depth_ == 1 && begins_afresh_) BeginAfresh();
  }
  static void Leave() noexcept {
    if (--depth_ == 0 && exceeded_ != Limit::None) [[unlikely]]
      Forget();
  }
  static void TakePortion() noexcept;
  static void Forget() noexcept;

  inline static std::int32_t left_ = kPortion;  // of the portion
  inline static std::int32_t depth_ = 0;        // levels that are open
  inline static std::int32_t deepest_ = std::numeric_limits<std::int32_t>::max();
  inline static std::int32_t work_left_ = kPortion;
  inline static Limit exceeded_ = Limit::None;
  inline static std::uint64_t times_exceeded_ = 0;
  inline static bool begins_afresh_ = false;  // has the beginning of an evaluation anything to do?
  inline static bool has_host_ = false;
  inline static bool is_asking_ = false;
  inline static std::uint64_t not_portioned_ = std::numeric_limits<std::uint64_t>::max();
  inline static std::uint64_t portioned_ = kPortion;  // in all portions so far
  inline static IxoLimits limits_;
};

// One evaluation of an expression object, which may be the outermost: a step and a level.
class EvaluationLevel {
 public:
  EvaluationLevel() noexcept : is_allowed_(LimitWatch::Begin()) {}
  EvaluationLevel(const EvaluationLevel&) = delete;
  EvaluationLevel& operator=(const EvaluationLevel&) = delete;
  ~EvaluationLevel() { LimitWatch::Leave(); }
  // False: RaiseLimit says why.
  bool IsAllowed() const noexcept { return is_allowed_; }

 private:
  bool is_allowed_;
};

// One call of a lambda inside an evaluation: a step and a level.
class CallLevel {
 public:
  CallLevel() noexcept { ++LimitWatch::depth_; }
  CallLevel(const CallLevel&) = delete;
  CallLevel& operator=(const CallLevel&) = delete;
  ~CallLevel() { --LimitWatch::depth_; }
  // Once: takes the step. False: RaiseLimit says why.
  bool IsAllowed() const noexcept { return LimitWatch::MayGoDeeper(); }
};

// Any other way in: the outermost evaluation when there is none, else nothing.
class OuterEntry {
 public:
  OuterEntry() noexcept : is_outermost_(LimitWatch::depth_ == 0) {
    if (is_outermost_) LimitWatch::Enter();
  }
  OuterEntry(const OuterEntry&) = delete;
  OuterEntry& operator=(const OuterEntry&) = delete;
  ~OuterEntry() {
    if (is_outermost_) LimitWatch::Leave();
  }
  // Once: takes the step that the beginning of an outermost evaluation is.
  bool IsAllowed() const noexcept { return !is_outermost_ || LimitWatch::Step(); }

 private:
  bool is_outermost_;
};

// One piece of work that may be long, inside an evaluation or not, such as the reading of a text:
// asks the host now and then, never when the work turns out to be short.
class LongWork {
 public:
  // One small part of it; throws LimitExceeded when the host asks for the end.
  void Part() {
    if (--left_ < 0) Ask();
  }
  // So many of them at once.
  void Parts(std::int32_t count) {
    left_ -= count;
    if (left_ < 0) Ask();
  }

 private:
  static constexpr std::int32_t kParts = 1024;

  void Ask() {
    left_ = kParts;
    LimitWatch::Ask();
  }

  std::int32_t left_ = kParts;
};

}  // namespace ixomep
