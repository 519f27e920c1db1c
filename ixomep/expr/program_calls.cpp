// Operations of side programs that call: lambdas and functions of the host; and the levels (Run)
// that calls open.
#include <algorithm>
#include <array>
#include <iterator>
#include <new>
#include <stdexcept>
#include <typeinfo>
#include <utility>

#include "ixomep/expr/node_ptr.h"
#include "ixomep/expr/program_numbers.h"
#include "ixomep/expr/program_quick_lambda.h"
#include "ixomep/expr/stack_guard.h"
#include "ixomep/expr/value_set_pool.h"
#include "ixomep/values/error.h"

namespace ixomep {

namespace {

using Kind = IxoMepExprNodeType;
using Type = IxoMepValueType;

constexpr std::int32_t kLongestSpine = 251;

// --- Calls --------------------------------------------------------------------------------------

[[gnu::noinline]] Reg CallHost(const Op& op, Run& run) {
  const auto& call = As<CallOp>(op);
  Frame& frame = run.RealFrame();
  const String text_before = frame.text;
  if (!LimitWatch::Step()) return FailLimit(run);
  RestoreDepth(call.depth.Inside(), run);
  IxoMepValue* slot = nullptr;
  IxoMepErrorEnum code = frame.parser->EvaluateFunctionCall(call.node, frame.scope, call.name, slot,
                                                            frame.text, frame.strict);
  const ValuePtr result(slot);
  if (LimitWatch::Exceeded() != Limit::None) [[unlikely]]
    return run.Fail(WithinLimits(code, frame.text));
  if (code == IMEPERR_NONE) {
    return result != nullptr ? RegOf(std::move(*result)) : Reg{kTagUnset, 0};
  }
  if (code != IMEPERR_UNKNOWN_FUNCTION) return run.Fail(code);
  LimitWatch::GiveBack(1);  // no function of the host
  IxoMepValue out;
  code = CallVariable(*call.node, text_before, frame, out);
  if (code != IMEPERR_NONE) return run.Fail(code);
  return frame.no_result ? Reg{kTagUnset, 0} : RegOf(std::move(out));
}

// The arguments in their order; those behind a failed one are not evaluated.
template <std::size_t... kIndex>
[[gnu::always_inline]] inline std::array<IxoMepValue, sizeof...(kIndex)> MakeArguments(
    const CallOp& call, Run& run, bool& has_failed, std::index_sequence<kIndex...>) {
  [[maybe_unused]] const auto make = [&](const Op& argument) {
    const Reg r = has_failed ? Reg{kTagUndefined, 0} : argument(run);
    has_failed = has_failed || r.tag == kTagFailed;
    return OwnedValue(r);
  };
  return {make(*call.arguments[kIndex])...};
}

// How a call finds its only argument when that is a parameter of the caller, changed by a number:
// without an operation of its own, the commonest argument of a recursion.
[[gnu::always_inline]] inline IxoMepValue MakeStep(const CallOp& call, Run& run, bool& has_failed) {
  const IxoMepValue* const before = run.Argument(call.step_of);
  if (before != nullptr && before->GetType() == Type::Integer) [[likely]]
    return IxoMepValue(Wrapped<Kind::Plus>(ValueAccess::Integer(*before), call.step));
  const Reg r = (*call.arguments[0])(run);
  has_failed = r.tag == kTagFailed;
  return OwnedValue(r);
}

// Runs the body in a level of its own.
[[gnu::always_inline]] inline Reg RunBody(LambdaRun& level, Run& run) {
  if (!level.IsAllowed()) [[unlikely]]
    return FailLimit(run);
  const Reg result = (*level.Lambda().root)(level);
  if (result.tag == kTagFailed) [[unlikely]]
    run.code = level.code;
  return result;
}

template <std::size_t kArguments, bool kIsStep>
std::array<IxoMepValue, kArguments> ArgumentsOf(const CallOp& call, Run& run, bool& has_failed) {
  if constexpr (kIsStep) {
    return {MakeStep(call, run, has_failed)};
  } else {
    return MakeArguments(call, run, has_failed, std::make_index_sequence<kArguments>());
  }
}

// Any lambda, which is held meanwhile.
template <std::size_t kArguments>
[[gnu::noinline]] Reg CallLambda(const CallOp& call, const IxoMepExprNode& lambda, Run& run) {
  const Program* const program = ProgramFor(lambda);
  if (program == nullptr || program->parameter_count != kArguments || !StackGuard::HasRoom()) {
    return RunPlainly(call, run);
  }
  if constexpr (kArguments == 0) {
    RestoreDepth(call.depth.Inside(), run);
    if (IxoMepExprNode::m_nCallDepth + program->spine > kLongestSpine) return RunPlainly(call, run);
  }
  const NodePtr held = NodePtr::Share(&lambda);
  if (held.get() != &lambda) return RunPlainly(call, run);
  IxoMepValue none;  // stands for the arguments where there are none: their place is never null
  bool has_failed = false;
  auto arguments = ArgumentsOf<kArguments, false>(call, run, has_failed);
  if (has_failed) return kFailure;
  if constexpr (kArguments > 0) {
    QuickLambda* const quick = program->quick_lambda;
    const Reg result = quick != nullptr ? quick->CallFrom(run, arguments) : kGivenUp;
    if (result.tag != kGivenUp.tag) return result;
  }
  // Without arguments the counter stands where the call began.
  const std::int32_t entry_depth = kArguments == 0 ? IxoMepExprNode::m_nCallDepth : 0;
  LambdaRun level(run, *program, kArguments == 0 ? &none : arguments.data(), entry_depth);
  return RunBody(level, run);
}

// A lambda that calls itself is held by whoever called it, and its program is at hand.
template <std::size_t kArguments, bool kIsStep>
[[gnu::always_inline]] inline Reg CallItself(const CallOp& call, LambdaRun& run) {
  bool has_failed = false;
  auto arguments = ArgumentsOf<kArguments, kIsStep>(call, run, has_failed);
  if (has_failed) [[unlikely]]
    return kFailure;
  LambdaRun level(run, run.Lambda(), arguments.data());
  return RunBody(level, run);
}

template <std::size_t kArguments, bool kIsStep>
[[gnu::noinline]] Reg RunCallOfLambda(const Op& op, Run& run) {
  const auto& call = As<CallOp>(op);
  const IxoMepValue* const callee = run.FindAgain(call.callee);
  if (callee == nullptr || callee->GetType() != Type::Lambda) [[unlikely]]
    return RunPlainly(call, run);
  const IxoMepExprNode* const lambda = ValueAccess::Lambda(*callee);
  if constexpr (kArguments > 0) {
    const Program& own = run.Lambda();
    const bool is_own = own.lambda == lambda && own.parameter_count == kArguments;
    if (is_own && StackGuard::HasRoom()) [[likely]]
      return CallItself<kArguments, kIsStep>(call, static_cast<LambdaRun&>(run));
  }
  return CallLambda<kArguments>(call, *lambda, run);
}

// Several functions, so that none saves registers for the others.
template <std::size_t kArguments, bool kIsStep>
[[gnu::noinline]] Reg RunCallOfEither(const Op& op, Run& run) {
  return run.HasPlainParser() ? RunCallOfLambda<kArguments, kIsStep>(op, run) : CallHost(op, run);
}

template <std::size_t kArguments, bool kIsStep>
Reg RunCall(const Op& op, Run& run) {
  if (run.HasHadPlainParser()) return RunCallOfLambda<kArguments, kIsStep>(op, run);
  return run.HasKnownHost() ? CallHost(op, run) : RunCallOfEither<kArguments, kIsStep>(op, run);
}

}  // namespace

Op::Fn CallFunction(const CallOp& call) noexcept {
  static constexpr Op::Fn kCalls[] = {&RunCall<0, false>, &RunCall<1, false>, &RunCall<2, false>,
                                      &RunCall<3, false>, &RunCall<4, false>};
  static_assert(std::size(kCalls) == Run::kMaxArguments + 1);
  if (call.arguments.size() >= std::size(kCalls)) return &RunOtherCall;
  return call.step_of >= 0 ? &RunCall<1, true> : kCalls[call.arguments.size()];
}

Reg RunOtherCall(const Op& op, Run& run) {
  return run.HasPlainParser() ? RunPlainly(op, run) : CallHost(op, run);
}

Reg FailLimit(Run& run) noexcept { return run.Fail(RaiseLimit(run.Text())); }

// --- Levels -------------------------------------------------------------------------------------

// Before their construction they are as empty: no name is found, no lambda is called.
IxoMepValueSet Run::no_scope_;
const Program Run::no_lambda_;
const std::type_info* Run::other_parser_ = nullptr;

// Comparing types may compare their names: a class that is another one is remembered.
bool Run::IsPlain(const IxoMepExpressionParser& parser) noexcept {
  const std::type_info& type = typeid(parser);
  if (type == typeid(IxoMepExpressionParser)) return true;
  other_parser_ = &type;
  return false;
}

bool Run::LooksAtParser() noexcept {
  const IxoMepExpressionParser* const parser = Parser();
  const bool is_plain =
      parser == nullptr || (&typeid(*parser) != other_parser_ && IsPlain(*parser));
  calls_ = is_plain ? Calls::OfLambdas : Calls::OfTheHost;
  return is_plain;
}

const IxoMepValue* Run::FindArgument(const char* name) const noexcept {
  for (const Run* level = this; level != nullptr && level->arguments_ != nullptr;
       level = level->caller_) {
    for (std::int32_t i = 0; i < level->lambda_->parameter_count; ++i) {
      if (level->lambda_->parameters[i].name == name) return &level->arguments_[i];
    }
  }
  return nullptr;
}

const IxoMepValue* Run::FindFarther(const NameRef& ref) const noexcept {
  if (ref.MayBeAmong(waiting_)) {
    if (const IxoMepValue* const found = FindArgument(ref.name)) return found;
  }
  NameRef::Found& found = ref.found;
  if (found.scope != lookup_ || found.changes != IxoMepValueSet::Changes()) {
    found = {lookup_, IxoMepValueSet::Changes(), lookup_->FindInBucket(ref.bucket, ref.name)};
  }
  return found.value;
}

// The callers' scopes first, outermost to innermost; without recursion, for calls nest deeply.
void Run::MakeScope() {
  while (arguments_ != nullptr) {
    Run* level = this;
    while (level->caller_->arguments_ != nullptr) level = level->caller_;
    const Frame& outer = *level->caller_->frame_;
    PooledScope scope(outer.scope);
    // All places first, which may fail; then the arguments, which cannot.
    for (std::int32_t i = 0; i < level->lambda_->parameter_count; ++i) {
      scope->NewMoveValue(level->lambda_->parameters[i].name, MakeValue().release(), true);
    }
    for (std::int32_t i = 0; i < level->lambda_->parameter_count; ++i) {
      *scope->FindHere(level->lambda_->parameters[i].name) = std::move(level->arguments_[i]);
    }
    level->frame_ = new (&level->own_frame_)
        Frame{outer.parser, scope.Release(), outer.text, level->is_strict_};
    level->lookup_ = level->frame_->scope;
    level->waiting_ = 0;
    level->arguments_ = nullptr;
  }
}

void Run::GiveScopeBack() noexcept { IxoMepValueSetContainer::FreeValueSet(frame_->scope); }

Reg RunPlainly(const Op& op, Run& run) {
  Frame& frame = run.RealFrame();
  RestoreDepth(op.depth, run);
  IxoMepValue out;
  const IxoMepErrorEnum code = Evaluate(*op.node, frame, out);
  if (code != IMEPERR_NONE) return run.Fail(code);
  return frame.no_result ? Reg{kTagUnset, 0} : RegOf(std::move(out));
}

}  // namespace ixomep
