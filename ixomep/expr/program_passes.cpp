// Passes of loops on quick trees (program_passes.h).
#include "ixomep/expr/program_passes.h"

#include <exception>
#include <new>
#include <utility>

#include "ixomep/expr/program_numbers.h"

namespace ixomep {

namespace {

using Kind = IxoMepExprNodeType;
using Type = IxoMepValueType;

bool OwnsNothing(const IxoMepValue& value) noexcept {
  return IsScalar(value) || value.GetType() == Type::Undefined;
}

bool Store(Reg value, IxoMepValue& target) noexcept {
  if (!IsScalar(value.tag) || !OwnsNothing(target)) return false;
  ValueAccess::SetScalar(target, static_cast<Type>(value.tag), value.bits);
  return true;
}

bool AssignValue(const QuickStep& step) { return Store((*step.value)(), **step.target); }

Reg ReadAdded(const QuickOperand& added) noexcept {
  if (added.slot == nullptr) return {added.number.tag, added.number.bits};
  const IxoMepValue& value = **added.slot;
  return {static_cast<std::int64_t>(value.GetType()), ValueAccess::Bits(value)};
}

// `x := x + e` for texts: x grows in place.
[[gnu::noinline]] bool AddText(const QuickStep& step, IxoMepValue& target) {
  const IxoMepValue* const added = step.added.slot != nullptr ? *step.added.slot : nullptr;
  if (added == nullptr || added->GetType() != Type::String) return false;
  try {
    ValueAccess::Text(target) += ValueAccess::Text(*added);
    return true;
  } catch (const std::exception&) {  // too long, or no memory: the program says which
    return false;
  }
}

bool AppendValue(const QuickStep& step) {
  IxoMepValue& array = **step.target;
  if (array.GetType() != Type::Array) return false;
  const Reg made = (*step.value)();
  if (!IsScalar(made.tag) && made.tag != kTagString) return false;
  try {
    ValuePtr element = MakeValue(OwnedValue(made.tag == kTagString ? ShareText(made) : made));
    ValueAccess::AppendOwned(array, std::move(element));
    return true;
  } catch (const std::bad_alloc&) {
    return false;
  }
}

bool AddValue(const QuickStep& step) {
  IxoMepValue& target = **step.target;
  if (target.GetType() == Type::String) [[unlikely]]
    return AddText(step, target);
  const Reg added = ReadAdded(step.added);
  if (target.GetType() == Type::Real && IsNumber(added)) {
    ValueAccess::AddToReal(target, NumberOf(added));
    return true;
  }
  const Reg sum = Compute<Kind::Plus>(
      {static_cast<std::int64_t>(target.GetType()), ValueAccess::Bits(target)}, added);
  return Store(sum, target);
}

// The sum of many numbers, added one after the other as the assignments would.
template <class Number>
Number SumOf(Number sum, std::int64_t i, std::int64_t end) noexcept {
  for (; i < end; ++i) sum += static_cast<Number>(static_cast<std::int32_t>(i));
  return sum;
}

template <class Number>
Number SumOfEqual(Number sum, Number added, std::int64_t times) noexcept {
  for (std::int64_t n = 0; n < times; ++n) sum += added;
  return sum;
}

Reg IntegerSum(std::uint32_t sum) noexcept { return IntegerReg(static_cast<std::int32_t>(sum)); }

}  // namespace

Passes* MakePasses(const IxoMepExprNode* condition, const NameRef* variable, const Op& body,
                   Program& program) {
  auto& passes = program.New<Passes>();
  if (condition != nullptr) {
    passes.condition_ = MakeQuickOp(*condition, passes.names_, program);
    if (passes.condition_ == nullptr) return nullptr;
  }
  if (variable != nullptr) passes.variable_ = passes.names_.SlotOf(*variable);
  return passes.AddSteps(body, program) ? &passes : nullptr;
}

bool Passes::AddSteps(const Op& body, Program& program) {
  if (body.fn == &RunSequence) {
    const auto& sequence = As<SequenceOp>(body);
    return AddSteps(*sequence.first, program) && AddSteps(*sequence.second, program);
  }
  if (body.fn == &RunAppendOnly) return AddStep(As<AppendOp>(body), program);
  const bool is_assignment = body.node->GetType() == Kind::Assign && body.fn != &RunPlainly;
  return is_assignment && AddStep(As<AssignOp>(body), program);
}

bool Passes::AddStep(const AssignOp& assign, Program& program) {
  QuickStep step;
  step.operation = &assign;
  step.target = names_.SlotOf(assign.variable);
  step.value = MakeQuickOp(*assign.node->Right(), names_, program);
  if (step.target == nullptr || step.value == nullptr) return false;
  step.fn = &AssignValue;
  const QuickOp& value = *step.value;
  const bool is_sum = assign.node->Right()->GetType() == Kind::Plus &&
                      value.left.slot == step.target &&
                      (value.right.slot != nullptr || value.right.op->fn == &QuickNumber);
  if (is_sum) {
    step.fn = &AddValue;
    step.added = value.right;
  }
  steps_.push_back(step);
  return true;
}

bool Passes::AddStep(const AppendOp& append, Program& program) {
  QuickStep step;
  step.operation = &append;
  step.fn = &AppendValue;
  step.target = names_.SlotOf(append.variable);
  step.value = MakeQuickOp(*append.node->GetParam2(), names_, program);
  if (step.target == nullptr || step.value == nullptr) return false;
  steps_.push_back(step);
  return true;
}

std::size_t Passes::RunSteps() const {
  std::size_t done = 0;
  for (const QuickStep& step : steps_) {
    if (!step.fn(step)) break;
    ++done;
  }
  return done;
}

Passes::Stop Passes::RunFor(const IxoMepValueSet& scope, std::int64_t i, std::int64_t end) {
  Stop stop;
  if (!IsReady(scope) || !OwnsNothing(**variable_)) return stop;
  if (Accumulate(i, end)) {
    stop.passes = end - i;
    return stop;
  }
  IxoMepValue& variable = **variable_;
  for (; i < end; ++i, ++stop.passes) {
    ValueAccess::SetScalar(variable, Type::Integer, IntegerReg(static_cast<std::int32_t>(i)).bits);
    stop.steps_done = RunSteps();
    if (stop.steps_done == steps_.size()) continue;
    stop.is_within = true;
    return stop;
  }
  return stop;
}

// All passes at once when the only step adds the loop's variable or what stays the same to a
// number of another variable. Nothing is done otherwise.
bool Passes::Accumulate(std::int64_t i, std::int64_t end) const noexcept {
  const QuickStep& step = steps_.front();
  if (steps_.size() != 1 || step.fn != &AddValue || step.target == variable_ ||
      step.added.slot == step.target) {
    return false;
  }
  IxoMepValue& target = **step.target;
  const bool adds_variable = step.added.slot == variable_;
  const Reg added = adds_variable ? IntegerReg(0) : ReadAdded(step.added);
  Reg sum{};
  if (target.GetType() == Type::Real && IsNumber(added)) {
    const double before = ValueAccess::Number(target);
    sum = RealReg(adds_variable ? SumOf(before, i, end)
                                : SumOfEqual(before, NumberOf(added), end - i));
  } else if (target.GetType() == Type::Integer && added.tag == kTagInteger) {
    const auto before = static_cast<std::uint32_t>(ValueAccess::Integer(target));
    sum = IntegerSum(adds_variable
                         ? SumOf(before, i, end)
                         : SumOfEqual(before, static_cast<std::uint32_t>(added.bits), end - i));
  } else {
    return false;
  }
  ValueAccess::SetScalar(**variable_, Type::Integer,
                         IntegerReg(static_cast<std::int32_t>(end - 1)).bits);
  ValueAccess::SetScalar(target, static_cast<Type>(sum.tag), sum.bits);
  return true;
}

Passes::Stop Passes::RunWhile(const IxoMepValueSet& scope, std::int64_t most) {
  Stop stop;
  if (!IsReady(scope)) return stop;
  for (; stop.passes < most; ++stop.passes) {
    const Reg condition = (*condition_)();
    if (condition.tag != kTagInteger) return stop;
    if (IntegerOf(condition) == 0) {
      stop.is_ended = true;
      return stop;
    }
    stop.steps_done = RunSteps();
    if (stop.steps_done == steps_.size()) continue;
    stop.is_within = true;
    return stop;
  }
  return stop;
}

}  // namespace ixomep
