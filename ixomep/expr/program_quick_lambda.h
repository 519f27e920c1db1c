// Internal: quick lambdas, a second form that a lambda's program has when the body is quiet but for
// calls of the lambda itself. Its arguments have to be numbers. The body is a quick tree
// (program_quick.h), whose operations are told where the arguments of their call stand. Those of
// the next call stand behind them, so that a call is: put them there, jump to the body. There is no
// level (Run), no scope and nothing to release: 20 instructions instead of 90, and half as many
// frames on the native stack, whose returns the machine foresees only so many of.
//
// What is not numbers gives up. Nothing has happened then but steps, which are given back, and the
// program calls the lambda from the start; the calls inside that call are not tried, so that this
// at most doubles the work.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <new>

#include "ixomep/expr/program_quick.h"
#include "ixomep/host/limit_watch.h"

namespace ixomep {

// Where the arguments of quick lambdas stand, those of all calls one behind the other.
class QuickStack {
 public:
  // Behind those of calls that are running and may not be written over.
  static QuickArgument* Top() noexcept { return top_; }
  static void SetTop(QuickArgument* top) noexcept { top_ = top; }
  static QuickArgument* End() noexcept { return space_ + kSize; }
  // Where the arguments of a call from a program may stand.
  static QuickArgument* LastEntry() noexcept { return End() - Run::kMaxArguments; }

 private:
  static constexpr std::size_t kSize = 1 << 14;
  static QuickArgument space_[kSize];
  static QuickArgument* top_;
};

class QuickLambda {
 public:
  // A call from a program, with as many arguments as the lambda has parameters. The result is the
  // caller's; kGivenUp, and nothing has happened, when the program has to call.
  template <std::size_t kArguments>
  Reg CallFrom(const Run& run, const std::array<IxoMepValue, kArguments>& arguments) {
    if (!IsReady(run)) return kGivenUp;
    QuickArgument* const numbers = QuickStack::Top();
    for (std::size_t i = 0; i < kArguments; ++i) {
      if (!IsScalar(arguments[i])) return kGivenUp;
      numbers[i] = CopyOf(arguments[i]);
    }
    const std::uint64_t steps = LimitWatch::StepsTaken();
    try {
      const Reg result = Call<kArguments>(numbers);
      return IsScalar(result.tag) ? result : Finish(result, steps);
    } catch (const std::bad_alloc&) {  // the program finds out where
      return Finish(kGivenUp, steps);
    }
  }

  // A call by the body, the arguments being where they belong. The result is borrowed.
  template <std::size_t kArguments>
  [[gnu::always_inline]] Reg Call(QuickArgument* arguments) {
    if (arguments > last_ || !LimitWatch::StepAtOnce()) [[unlikely]]
      return CallSlowly(arguments);
    const QuickOp& body = *body_;
    return body(arguments);
  }

 private:
  friend class QuickCompiler;

  // Of the outermost call that is running.
  struct Entry {
    const IxoMepValueSet* scope = nullptr;  // where the names are bound
    QuickArgument* first = nullptr;         // its arguments
    std::int32_t depth = 0;                 // how many of the host's levels are open in it
  };

  // Sets the entry up. False when the program has to call.
  bool IsReady(const Run& run) noexcept {
    if (pause_.Holds() || (run.Waiting() != 0 && names_.MayBeAmong(run.Waiting()))) return false;
    entry_ = {&run.Scope(), QuickStack::Top(), LimitWatch::OpenLevels() + 1};
    last_ = entry_.first;
    if (!AreNamesBound() || entry_.first > QuickStack::LastEntry()) return false;
    return entry_.depth <= LimitWatch::DeepestLevel() && (self_ == nullptr || MakeRoom());
  }
  // For the calls that the body makes.
  bool MakeRoom() noexcept;
  bool AreNamesBound() noexcept {
    return (names_.IsBoundTo(entry_.scope) || names_.Bind(*entry_.scope)) && IsItself();
  }
  // Is the lambda what stands under the name by which the body calls it?
  bool IsItself() const noexcept {
    if (self_ == nullptr) return true;
    const IxoMepValue& callee = **self_;
    return callee.GetType() == IxoMepValueType::Lambda && ValueAccess::Lambda(callee) == lambda_;
  }
  // Where somebody has to be asked whether the body may run.
  [[gnu::noinline]] Reg CallSlowly(QuickArgument* arguments);
  // The caller's part of a result that is no number, or that there is none.
  Reg Finish(Reg result, std::uint64_t steps_before) noexcept;

  const QuickOp* body_ = nullptr;
  QuickArgument* last_ = nullptr;  // the highest place for arguments that there is room for
  Entry entry_;
  QuickNames names_;
  IxoMepValue* const* self_ = nullptr;      // null when the body calls nothing
  const IxoMepExprNode* lambda_ = nullptr;  // what it is the form of
  std::int32_t parameter_count_ = 0;
  std::size_t bytes_of_level_ = 0;  // at most, of the native stack
  QuickPause pause_;
};

// A call of the lambda by its own body.
struct QuickCallOp : QuickOp {
  QuickLambda* lambda = nullptr;
  std::array<const QuickOp*, Run::kMaxArguments> arguments{};
  std::int32_t step = 0;  // the only argument is the parameter and this
};
QuickOp::Fn QuickCallOf(std::size_t arguments) noexcept;
// The same with a step.
Reg QuickCallWithStep(const QuickOp& op, QuickArgument* arguments);

// The quick form of a lambda with parameters; null when there is none. It lives with the program.
QuickLambda* MakeQuickLambda(const IxoMepExprNode& lambda, Program& program);

}  // namespace ixomep
