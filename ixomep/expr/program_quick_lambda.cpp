// Calls of quick lambdas (program_quick_lambda.h).
#include "ixomep/expr/program_quick_lambda.h"

#include <algorithm>
#include <iterator>

#include "ixomep/expr/program_numbers.h"
#include "ixomep/expr/stack_guard.h"

namespace ixomep {

namespace {

using Kind = IxoMepExprNodeType;

// All arguments are evaluated before the first is put where the calls in the others have theirs.
template <std::size_t kArguments>
Reg CallItself(const QuickOp& op, QuickArgument* arguments) {
  const auto& call = static_cast<const QuickCallOp&>(op);
  std::array<QuickArgument, kArguments> inner;
  for (std::size_t i = 0; i < kArguments; ++i) {
    inner[i] = (*call.arguments[i])(arguments);
    if (!IsScalar(inner[i].tag)) return kGivenUp;
  }
  QuickArgument* const place = arguments + kArguments;
  std::copy(inner.begin(), inner.end(), place);
  return call.lambda->Call<kArguments>(place);
}

[[gnu::noinline]] Reg CallWithoutStep(const QuickOp& op, QuickArgument* arguments) {
  return CallItself<1>(op, arguments);
}

}  // namespace

QuickArgument QuickStack::space_[kSize];
QuickArgument* QuickStack::top_ = space_;

QuickOp::Fn QuickCallOf(std::size_t arguments) noexcept {
  static constexpr QuickOp::Fn kCalls[] = {&CallItself<1>, &CallItself<2>, &CallItself<3>,
                                           &CallItself<4>};
  static_assert(std::size(kCalls) == Run::kMaxArguments);
  return kCalls[arguments - 1];
}

Reg QuickCallWithStep(const QuickOp& op, QuickArgument* arguments) {
  const auto& call = static_cast<const QuickCallOp&>(op);
  if (arguments->tag != kTagInteger) [[unlikely]]
    return CallWithoutStep(op, arguments);
  arguments[1] = IntegerReg(Wrapped<Kind::Plus>(IntegerOf(*arguments), call.step));
  return call.lambda->Call<1>(arguments + 1);
}

// As many levels as there is room for, and as the host allows.
bool QuickLambda::MakeRoom() noexcept {
  const std::int64_t levels =
      std::min({static_cast<std::int64_t>(StackGuard::Room() / bytes_of_level_),
                (QuickStack::End() - entry_.first) / parameter_count_,
                std::int64_t{LimitWatch::DeepestLevel()} - entry_.depth + 1});
  last_ += (levels - 1) * parameter_count_;
  return levels > 0;
}

// The host sees how many levels are open. What it evaluates when it is asked may bring variables,
// or be another call of this lambda.
Reg QuickLambda::CallSlowly(QuickArgument* arguments) {
  const auto levels = static_cast<std::int32_t>(arguments - entry_.first) / parameter_count_;
  const std::int32_t depth = entry_.depth + levels;
  if (arguments > last_ && depth <= LimitWatch::DeepestLevel()) return kGivenUp;  // no room
  const Entry entry = entry_;
  QuickArgument* const last = last_;
  QuickArgument* const top = QuickStack::Top();
  QuickStack::SetTop(arguments + parameter_count_);
  LimitWatch::SetOpenLevels(depth);
  const bool is_allowed = LimitWatch::MayCallAt(depth);
  LimitWatch::SetOpenLevels(entry.depth - 1);
  QuickStack::SetTop(top);
  last_ = last;
  entry_ = entry;
  return is_allowed && AreNamesBound() ? (*body_)(arguments) : kGivenUp;
}

Reg QuickLambda::Finish(Reg result, std::uint64_t steps_before) noexcept {
  if (result.tag == kTagUndefined) return kNothing;
  if (result.tag == kTagString) return ShareText(result);
  LimitWatch::GiveBackSince(steps_before);
  pause_.Begin();
  return kGivenUp;
}

}  // namespace ixomep
