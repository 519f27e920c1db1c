// Operations of side programs that steer, store and call: cond, loops, sequences, assignments to
// names, calls of lambdas and of the host's functions; and the levels (Run) that calls open.
#include <algorithm>
#include <array>
#include <iterator>
#include <new>
#include <stdexcept>
#include <typeinfo>
#include <utility>

#include "ixomep/expr/node_ptr.h"
#include "ixomep/expr/program_numbers.h"
#include "ixomep/expr/stack_guard.h"
#include "ixomep/expr/value_set_pool.h"
#include "ixomep/values/error.h"

namespace ixomep {

namespace {

using Type = IxoMepValueType;

constexpr Reg kFailure{kTagFailed, 0};
constexpr Reg kNothing{kTagUndefined, 0};
constexpr std::int32_t kLongestSpine = 251;

Reg FailTypes(Run& run, const char* shown, const IxoMepValue& a, const IxoMepValue* b = nullptr) {
  run.Text() = IxoMepError::MakeFunctionError(IMEPERR_WRONG_TYPE, shown, &a, b);
  return run.Fail(IMEPERR_WRONG_TYPE);
}

[[gnu::noinline]] Reg FailLimit(Run& run) noexcept { return run.Fail(RaiseLimit(run.Text())); }

enum class Truth : std::uint8_t { No, Yes, Failed };

Truth Decide(const Op& condition, Run& run, const char* function) {
  const Reg r = condition(run);
  if (r.tag == kTagInteger) return IntegerOf(r) != 0 ? Truth::Yes : Truth::No;
  if (r.tag == kTagReal) return RealOf(r) != 0.0 ? Truth::Yes : Truth::No;
  if (r.tag == kTagFailed) return Truth::Failed;
  const IxoMepValue value = OwnedValue(r);
  bool truth = false;
  if (ReadCondition(value, truth)) return truth ? Truth::Yes : Truth::No;
  FailTypes(run, function, value);
  return Truth::Failed;
}

// Runs an operation whose result nobody wants; false after a failure.
bool RunUnwanted(const Op& op, Run& run) {
  const Reg unwanted = op(run);
  if (unwanted.tag == kTagFailed) return false;
  Drop(unwanted);
  return true;
}

// --- Calls --------------------------------------------------------------------------------------

template <std::size_t kArguments>
Reg CallByProgram(const CallOp& call, const IxoMepExprNode& lambda, const Program& program,
                  Run& run) {
  const NodePtr held = NodePtr::Share(&lambda);
  if (held.get() != &lambda) return RunPlainly(call, run);
  std::array<IxoMepValue, std::max<std::size_t>(kArguments, 1)> arguments;  // never at null
  for (std::size_t i = 0; i < kArguments; ++i) {
    const Reg r = (*call.arguments[i])(run);
    if (r.tag == kTagFailed) return r;
    arguments[i] = OwnedValue(r);
  }
  // Without arguments the counter stands where the call began.
  const std::int32_t entry_depth = kArguments == 0 ? IxoMepExprNode::m_nCallDepth : 0;
  const CallLevel counted;
  if (!counted.IsAllowed()) return FailLimit(run);
  Frame frame{run.Parser(), nullptr, run.Text(), run.IsStrict()};
  Run level(run, frame, program, arguments.data(), entry_depth);
  const Reg result = (*program.root)(level);
  if (result.tag == kTagFailed) run.code = level.code;
  return result;
}

Reg CallLambdaNode(const CallOp& call, const IxoMepExprNode& lambda, Run& run) {
  const Program* const program = ProgramFor(lambda);
  if (program == nullptr || !StackGuard::HasRoom() ||
      static_cast<std::size_t>(program->parameter_count) != call.arguments.size()) {
    return RunPlainly(call, run);
  }
  if (call.arguments.empty()) {
    RestoreDepth(call.depth.Inside(), run);
    if (IxoMepExprNode::m_nCallDepth + program->spine > kLongestSpine) return RunPlainly(call, run);
  }
  static constexpr decltype(&CallByProgram<0>) kCallers[] = {&CallByProgram<0>, &CallByProgram<1>,
                                                             &CallByProgram<2>, &CallByProgram<3>,
                                                             &CallByProgram<4>};
  static_assert(std::size(kCallers) == Run::kMaxArguments + 1);
  return kCallers[call.arguments.size()](call, lambda, *program, run);
}

Reg CallHost(const CallOp& call, Run& run) {
  Frame& frame = run.RealFrame();
  const String text_before = frame.text;
  if (!LimitWatch::Step()) return FailLimit(run);
  RestoreDepth(call.depth.Inside(), run);
  IxoMepValue* slot = nullptr;
  IxoMepErrorEnum code = frame.parser->EvaluateFunctionCall(call.node, frame.scope, call.name, slot,
                                                            frame.text, frame.strict);
  const ValuePtr result(slot);
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

}  // namespace

// --- Levels -------------------------------------------------------------------------------------

// Before its construction it is as empty: no name is found in it.
IxoMepValueSet Run::no_scope_;

Run::Run(Run& caller, Frame& frame, const Program& lambda, IxoMepValue* arguments,
         std::int32_t entry_depth) noexcept
    : frame_(frame),
      lookup_(caller.lookup_),
      assignable_(&no_scope_),
      waiting_(caller.waiting_ | lambda.parameter_bits),
      caller_(&caller),
      lambda_(&lambda),
      arguments_(arguments),
      entry_depth_(entry_depth),
      calls_(caller.calls_) {}

// Comparing types may compare their names: a class that is another one is remembered.
bool Run::IsPlain(const IxoMepExpressionParser* parser) noexcept {
  if (parser == nullptr) return true;
  static const std::type_info* other = nullptr;
  const std::type_info& type = typeid(*parser);
  if (&type == other) return false;
  if (type == typeid(IxoMepExpressionParser)) return true;
  other = &type;
  return false;
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
  if ((waiting_ & ref.bit) != 0) {
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
    PooledScope scope(level->caller_->frame_.scope);
    // All places first, which may fail; then the arguments, which cannot.
    for (std::int32_t i = 0; i < level->lambda_->parameter_count; ++i) {
      scope->NewMoveValue(level->lambda_->parameters[i].name, MakeValue().release(), true);
    }
    for (std::int32_t i = 0; i < level->lambda_->parameter_count; ++i) {
      *scope->FindHere(level->lambda_->parameters[i].name) = std::move(level->arguments_[i]);
    }
    level->frame_.scope = scope.Release();
    level->owns_scope_ = true;
    level->lookup_ = level->frame_.scope;
    if (!level->IsStrict()) level->assignable_ = level->lookup_;
    level->waiting_ = 0;
    level->arguments_ = nullptr;
  }
}

void Run::GiveScopeBack() noexcept { IxoMepValueSetContainer::FreeValueSet(frame_.scope); }

Reg RunPlainly(const Op& op, Run& run) {
  Frame& frame = run.RealFrame();
  RestoreDepth(op.depth, run);
  IxoMepValue out;
  const IxoMepErrorEnum code = Evaluate(*op.node, frame, out);
  if (code != IMEPERR_NONE) return run.Fail(code);
  return frame.no_result ? Reg{kTagUnset, 0} : RegOf(std::move(out));
}

// --- Control ------------------------------------------------------------------------------------

Reg RunCond(const Op& op, Run& run) {
  const auto& cond = As<CondOp>(op);
  for (const CondOp::Branch& branch : cond.branches) {
    const Truth truth = Decide(*branch.condition, run, "cond");
    if (truth == Truth::Yes) return (*branch.value)(run);
    if (truth == Truth::Failed) return kFailure;
  }
  return (*cond.otherwise)(run);
}

Reg RunWhile(const Op& op, Run& run) {
  const auto& loop = As<WhileOp>(op);
  std::int64_t steps = 0;  // taken and not used
  while (true) {
    const Truth truth = Decide(*loop.condition, run, "while");
    if (truth != Truth::Yes) {
      LimitWatch::GiveBack(steps);
      if (truth == Truth::No) break;
      return kFailure;
    }
    if (steps == 0 && (steps = LimitWatch::StepAhead(loop.steps_ahead)) == 0) return FailLimit(run);
    --steps;
    if (!RunUnwanted(*loop.body, run)) {
      LimitWatch::GiveBack(steps);
      return kFailure;
    }
  }
  return loop.last != nullptr ? (*loop.last)(run) : Reg{kTagUnset, 0};
}

Reg RunFor(const Op& op, Run& run) {
  const auto& loop = As<ForOp>(op);
  IxoMepValueSet* const scope = run.RealFrame().scope;
  if (scope == nullptr || run.IsStrict()) return RunPlainly(op, run);
  FindOrCreate(*scope, loop.variable);
  const Reg from = (*loop.from)(run);
  if (from.tag == kTagFailed) return from;
  const IxoMepValue first = OwnedValue(from);
  const Reg to = (*loop.to)(run);
  if (to.tag == kTagFailed) return to;
  if (from.tag != kTagInteger || to.tag != kTagInteger) {
    const IxoMepValue last = OwnedValue(to);
    return FailTypes(run, "for(#2,#3)", first, &last);
  }
  // Wider than the language's integers, so that a last value of 2147483647 ends the loop.
  const std::int64_t last = IntegerOf(to);
  IxoMepValue* variable = nullptr;
  std::uint64_t changes = 0;
  for (std::int64_t i = IntegerOf(from); i <= last;) {
    const std::int64_t steps = LimitWatch::StepAhead(std::min(loop.steps_ahead, last - i + 1));
    if (steps == 0) return FailLimit(run);
    for (const std::int64_t end = i + steps; i < end; ++i) {
      if (variable == nullptr || changes != IxoMepValueSet::Changes()) {
        variable = &FindOrCreate(*scope, loop.variable);
        changes = IxoMepValueSet::Changes();
      }
      const Reg counter = IntegerReg(static_cast<std::int32_t>(i));
      StoreScalar(TargetOf(*variable), Type::Integer, counter.bits);
      if (!RunUnwanted(*loop.body, run)) {
        LimitWatch::GiveBack(end - i - 1);
        return kFailure;
      }
    }
  }
  return loop.last != nullptr ? (*loop.last)(run) : Reg{kTagUnset, 0};
}

Reg RunSequence(const Op& op, Run& run) {
  const auto& sequence = As<SequenceOp>(op);
  if (!RunUnwanted(*sequence.first, run)) return kFailure;
  const Reg result = (*sequence.second)(run);
  return result.tag == kTagUnset ? kNothing : result;
}

Reg RunCall(const Op& op, Run& run) {
  const auto& call = As<CallOp>(op);
  if (!run.HasPlainParser()) return CallHost(call, run);
  const IxoMepValue* const callee = run.Find(call.callee);
  if (callee == nullptr || callee->GetType() != Type::Lambda || call.is_line_number) {
    return RunPlainly(op, run);
  }
  return CallLambdaNode(call, *ValueAccess::Lambda(*callee), run);
}

}  // namespace ixomep
