// Operations of side programs that steer: cond, loops, sequences.
#include <algorithm>
#include <utility>

#include "ixomep/expr/program_numbers.h"
#include "ixomep/expr/program_passes.h"
#include "ixomep/values/error.h"

namespace ixomep {

namespace {

using Kind = IxoMepExprNodeType;
using Type = IxoMepValueType;

Reg FailTypes(Run& run, const char* shown, const IxoMepValue& a, const IxoMepValue* b = nullptr) {
  run.Text() = IxoMepError::MakeFunctionError(IMEPERR_WRONG_TYPE, shown, &a, b);
  return run.Fail(IMEPERR_WRONG_TYPE);
}

enum class Truth : std::uint8_t { No, Yes, Failed };

[[gnu::noinline]] Truth DecideSlowly(Reg r, Run& run, const char* function) {
  if (r.tag == kTagReal) return RealOf(r) != 0.0 ? Truth::Yes : Truth::No;
  if (r.tag == kTagFailed) return Truth::Failed;
  const IxoMepValue value = OwnedValue(r);
  bool truth = false;
  if (ReadCondition(value, truth)) return truth ? Truth::Yes : Truth::No;
  FailTypes(run, function, value);
  return Truth::Failed;
}

Truth Decide(const Op& condition, Run& run, const char* function) {
  const Reg r = condition(run);
  if (r.tag == kTagInteger) [[likely]]
    return IntegerOf(r) != 0 ? Truth::Yes : Truth::No;
  return DecideSlowly(r, run, function);
}

// Runs an operation whose result nobody wants; false after a failure.
bool RunUnwanted(const Op& op, Run& run) {
  const Reg unwanted = op(run);
  if (unwanted.tag == kTagFailed) return false;
  Drop(unwanted);
  return true;
}

// A choice by a comparison of two numbers at hand: no truth value is made, and what is chosen is
// jumped to.
template <Kind kKind, Shape kLeft, Shape kRight>
Reg RunChoiceOf(const Op& op, Run& run) {
  const auto& choice = As<ChoiceOp>(op);
  const Reg left = NumberAtOnce<kLeft>(choice.compared->left, run);
  const Reg right = NumberAtOnce<kRight>(choice.compared->right, run);
  if (left.tag != kTagInteger || right.tag != kTagInteger) [[unlikely]]
    return RunChoice(op, run);
  const bool truth = Compared<kKind>(IntegerOf(left), IntegerOf(right));
  const Op* const chosen = truth ? choice.value : choice.otherwise;
  return (*chosen)(run);
}

template <Kind kKind, Shape kLeft>
constexpr Op::Fn ChoiceOf(Shape right) noexcept {
  switch (right) {
    case Shape::Variable:
      return &RunChoiceOf<kKind, kLeft, Shape::Variable>;
    case Shape::Argument:
      return &RunChoiceOf<kKind, kLeft, Shape::Argument>;
    case Shape::Number:
      return &RunChoiceOf<kKind, kLeft, Shape::Number>;
    default:
      return &RunChoice;
  }
}

template <Kind kKind>
constexpr Op::Fn ChoiceOf(Shape left, Shape right) noexcept {
  switch (left) {
    case Shape::Variable:
      return ChoiceOf<kKind, Shape::Variable>(right);
    case Shape::Argument:
      return ChoiceOf<kKind, Shape::Argument>(right);
    default:
      return &RunChoice;
  }
}

}  // namespace

Op::Fn ChoiceFunction(Kind kind, Shape left, Shape right) noexcept {
  switch (kind) {
    case Kind::Equal:
      return ChoiceOf<Kind::Equal>(left, right);
    case Kind::NotEqual:
      return ChoiceOf<Kind::NotEqual>(left, right);
    case Kind::Less:
      return ChoiceOf<Kind::Less>(left, right);
    case Kind::LessEqual:
      return ChoiceOf<Kind::LessEqual>(left, right);
    case Kind::Greater:
      return ChoiceOf<Kind::Greater>(left, right);
    case Kind::GreaterEqual:
      return ChoiceOf<Kind::GreaterEqual>(left, right);
    default:
      return &RunChoice;
  }
}

Reg RunChoice(const Op& op, Run& run) {
  const auto& choice = As<ChoiceOp>(op);
  const Truth truth = Decide(*choice.condition, run, "cond");
  if (truth == Truth::Failed) [[unlikely]]
    return kFailure;
  return truth == Truth::Yes ? (*choice.value)(run) : (*choice.otherwise)(run);
}

Reg RunCond(const Op& op, Run& run) {
  const auto& cond = As<CondOp>(op);
  for (const CondOp::Branch& branch : cond.branches) {
    const Truth truth = Decide(*branch.condition, run, "cond");
    if (truth == Truth::Yes) return (*branch.value)(run);
    if (truth == Truth::Failed) return kFailure;
  }
  return (*cond.otherwise)(run);
}

namespace {

// A loop's passes on quick trees, as long as they get somewhere.
class QuickPasses {
 public:
  explicit QuickPasses(Passes* passes) noexcept : passes_(passes) {}

  // Null when they are not to be tried.
  Passes* Get() const noexcept { return passes_; }
  // Runs what is left of the pass in which they stopped; false after a failure.
  bool Finish(const Passes::Stop& stop, Run& run) {
    const auto& steps = passes_->Steps();
    HaveStopped();
    for (std::size_t i = stop.steps_done; i < steps.size(); ++i) {
      if (!RunUnwanted(*steps[i].operation, run)) return false;
    }
    return true;
  }
  void HaveStopped() noexcept {
    if (--tries_ == 0) passes_ = nullptr;
  }

 private:
  Passes* passes_;
  std::int32_t tries_ = 8;
};

// Decides and takes a step; `steps` are taken and not used.
Truth Begin(const WhileOp& loop, Run& run, std::int64_t& steps) {
  const Truth truth = Decide(*loop.condition, run, "while");
  if (truth != Truth::Yes) return truth;
  if (steps == 0 && (steps = LimitWatch::StepAhead(loop.steps_ahead)) == 0) {
    FailLimit(run);
    return Truth::Failed;
  }
  --steps;
  return truth;
}

}  // namespace

Reg RunWhile(const Op& op, Run& run) {
  const auto& loop = As<WhileOp>(op);
  QuickPasses quick(loop.passes);
  std::int64_t steps = 0;
  Truth truth = Truth::Yes;
  while (true) {
    const IxoMepValueSet* const scope = run.ScopeToAssign();
    if (steps > 0 && quick.Get() != nullptr && scope != nullptr) {
      const Passes::Stop stop = quick.Get()->RunWhile(*scope, steps);
      steps -= stop.passes;
      if (stop.is_ended) break;
      if (stop.is_within) {
        --steps;
        if (quick.Finish(stop, run)) continue;
        truth = Truth::Failed;
        break;
      }
      if (steps > 0) quick.HaveStopped();
    }
    truth = Begin(loop, run, steps);
    if (truth != Truth::Yes) break;
    if (!RunUnwanted(*loop.body, run)) {
      truth = Truth::Failed;
      break;
    }
  }
  LimitWatch::GiveBack(steps);
  if (truth == Truth::Failed) return kFailure;
  return loop.last != nullptr ? (*loop.last)(run) : Reg{kTagUnset, 0};
}

namespace {

// The passes from i to the one before end, whose steps are taken; what is left of these after a
// failure.
std::int64_t RunPasses(const ForOp& loop, IxoMepValueSet& scope, QuickPasses& quick, std::int64_t i,
                       std::int64_t end, Run& run) {
  IxoMepValue* variable = nullptr;
  std::uint64_t changes = 0;
  for (; i < end; ++i) {
    if (quick.Get() != nullptr) {
      const Passes::Stop stop = quick.Get()->RunFor(scope, i, end);
      i += stop.passes;
      if (i == end) break;
      if (stop.is_within) {
        if (!quick.Finish(stop, run)) return end - i;
        continue;
      }
      quick.HaveStopped();
    }
    if (variable == nullptr || changes != IxoMepValueSet::Changes()) {
      variable = &FindOrCreate(scope, loop.variable);
      changes = IxoMepValueSet::Changes();
    }
    const Reg counter = IntegerReg(static_cast<std::int32_t>(i));
    StoreScalar(TargetOf(*variable), Type::Integer, counter.bits);
    if (!RunUnwanted(*loop.body, run)) return end - i;
  }
  return 0;
}

}  // namespace

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
  QuickPasses quick(loop.passes);
  for (std::int64_t i = IntegerOf(from); i <= last;) {
    const std::int64_t steps = LimitWatch::StepAhead(std::min(loop.steps_ahead, last - i + 1));
    if (steps == 0) return FailLimit(run);
    const std::int64_t left = RunPasses(loop, *scope, quick, i, i + steps, run);
    if (left != 0) {
      LimitWatch::GiveBack(left - 1);
      return kFailure;
    }
    i += steps;
  }
  return loop.last != nullptr ? (*loop.last)(run) : Reg{kTagUnset, 0};
}

Reg RunSequence(const Op& op, Run& run) {
  const auto& sequence = As<SequenceOp>(op);
  if (!RunUnwanted(*sequence.first, run)) return kFailure;
  const Reg result = (*sequence.second)(run);
  return result.tag == kTagUnset ? kNothing : result;
}

}  // namespace ixomep
