// The operators of quick trees (program_quick.h), and the life of their names.
#include "ixomep/expr/program_quick.h"

#include <algorithm>
#include <exception>
#include <new>

#include "ixomep/expr/program_numbers.h"

namespace ixomep {

namespace {

using Kind = IxoMepExprNodeType;
using Type = IxoMepValueType;

inline Reg RegAt(const IxoMepValue& value) noexcept {
  return {static_cast<std::int64_t>(value.GetType()), ValueAccess::Bits(value)};
}

// Variable: a slot.
template <Shape kShape>
[[gnu::always_inline]] inline Reg Read(const QuickOperand& operand, QuickArgument* arguments) {
  if constexpr (kShape == Shape::Number) return {operand.number.tag, operand.number.bits};
  if constexpr (kShape == Shape::Variable) return RegAt(**operand.slot);
  if constexpr (kShape == Shape::Argument) return arguments[operand.argument];
  return (*operand.op)(arguments);
}

Shape ShapeOf(const QuickOperand& operand) noexcept {
  if (operand.slot != nullptr) return Shape::Variable;
  if (operand.op->fn == &QuickNumber) return Shape::Number;
  return operand.op->fn == &QuickParameter ? Shape::Argument : Shape::General;
}

template <Kind kKind, Shape kLeft, Shape kRight>
Reg RunOn(const QuickOp& op, QuickArgument* arguments) {
  const Reg left = Read<kLeft>(op.left, arguments);
  if constexpr (kLeft == Shape::General && kRight == Shape::General) {
    if (!IsScalar(left.tag)) return kGivenUp;  // at once: the rest may be many calls
  }
  if constexpr (IsComparison(kKind) && kRight == Shape::Number) {
    const int side = left.tag == kTagReal ? op.right.landmark.SideOf(RealOf(left)) : 0;
    if (side != 0) return IntegerReg(Compared<kKind>(side, 0));
  }
  return Compute<kKind>(left, Read<kRight>(op.right, arguments));
}

// The same for two operations outside lambdas: nothing is kept for the second while the first runs.
template <Kind kKind>
Reg RunOnBoth(const QuickOp& op, QuickArgument*) {
  const Reg left = (*op.left.op)();
  return Compute<kKind>(left, (*op.right.op)());
}

template <Kind kKind, Shape kLeft>
QuickOp::Fn RunFor(Shape right) noexcept {
  switch (right) {
    case Shape::Variable:
      return &RunOn<kKind, kLeft, Shape::Variable>;
    case Shape::Argument:
      return &RunOn<kKind, kLeft, Shape::Argument>;
    case Shape::Number:
      return &RunOn<kKind, kLeft, Shape::Number>;
    default:
      return &RunOn<kKind, kLeft, Shape::General>;
  }
}

template <Kind kKind>
QuickOp::Fn RunFor(const QuickOp& op, bool in_lambda) noexcept {
  const Shape right = ShapeOf(op.right);
  switch (ShapeOf(op.left)) {
    case Shape::Variable:
      return RunFor<kKind, Shape::Variable>(right);
    case Shape::Argument:
      return RunFor<kKind, Shape::Argument>(right);
    case Shape::Number:
      return RunFor<kKind, Shape::Number>(right);
    default:
      if (right == Shape::General && !in_lambda) return &RunOnBoth<kKind>;
      return RunFor<kKind, Shape::General>(right);
  }
}

template <Kind kKind, Shape kShape>
Reg RunPrefixOn(const QuickOp& op, QuickArgument* arguments) {
  return Compute<kKind>(Read<kShape>(op.right, arguments));
}

template <Kind kKind>
QuickOp::Fn RunPrefix(const QuickOp& op) noexcept {
  return op.right.slot != nullptr ? &RunPrefixOn<kKind, Shape::Variable>
                                  : &RunPrefixOn<kKind, Shape::General>;
}

// What an index selects; null for everything else. Keys are numbers and texts, whose comparison
// is short work.
[[gnu::always_inline]] inline const IxoMepValue* SelectAt(const IxoMepValue& base,
                                                          const IxoMepValue& index) {
  if (base.GetType() == Type::Array) {
    const bool is_element = index.GetType() == Type::Integer &&
                            ValueAccess::HasElement(base, ValueAccess::Integer(index));
    if (!is_element) return nullptr;
    return &ValueAccess::Element(base, static_cast<std::size_t>(ValueAccess::Integer(index)));
  }
  const bool is_entry =
      base.GetType() == Type::Map && (index.GetType() == Type::String || IsScalar(index));
  if (!is_entry) return nullptr;
  const IxoMepValue* const entry = ValueAccess::FindEntry(base, index);
  return entry != nullptr ? entry : IxoMepValue::GetNull();
}

bool IsElement(const QuickOp& op) noexcept {
  return op.fn == &QuickElement || op.fn == &QuickElementOfName;
}

const IxoMepValue* FindElement(const QuickOp& op, QuickArgument* arguments);

const IxoMepValue* FindBase(const QuickOp& op, QuickArgument* arguments) {
  const QuickOperand& of = op.left;
  if (of.slot != nullptr) return *of.slot;
  return IsElement(*of.op) ? FindElement(*of.op, arguments) : nullptr;
}

// An index that has to be computed comes first: calls may be in it.
const IxoMepValue* FindElement(const QuickOp& op, QuickArgument* arguments) {
  if (op.right.slot != nullptr) {
    const IxoMepValue* const base = FindBase(op, arguments);
    return base != nullptr ? SelectAt(*base, **op.right.slot) : nullptr;
  }
  const Reg index = (*op.right.op)(arguments);
  if (!IsScalar(index.tag)) return nullptr;
  const IxoMepValue* const base = FindBase(op, arguments);
  if (base == nullptr) return nullptr;
  return SelectAt(*base, ValueAccess::FromBits(static_cast<Type>(index.tag), index.bits));
}

// Out of line, because the compiler makes a jump only of the last call in a function.
[[gnu::noinline]] Reg JumpTo(const QuickOp& op, QuickArgument* arguments) { return op(arguments); }

[[gnu::noinline]] Reg ChooseSlowly(const QuickOp& op, QuickArgument* arguments) {
  return QuickChoice(op, arguments);
}

// A choice by a comparison of two integers at hand: no truth value is made, and a branch, which the
// machine foresees well, decides where the jump comes from.
template <Kind kKind, Shape kLeft, Shape kRight>
Reg ChooseOn(const QuickOp& op, QuickArgument* arguments) {
  const auto& choice = static_cast<const QuickChoiceOp&>(op);
  const Reg left = Read<kLeft>(op.left, arguments);
  const Reg right = Read<kRight>(op.right, arguments);
  if (left.tag != kTagInteger || right.tag != kTagInteger) [[unlikely]]
    return ChooseSlowly(op, arguments);
  const bool truth = Compared<kKind>(IntegerOf(left), IntegerOf(right));
  return truth ? JumpTo(*choice.chosen, arguments) : JumpTo(*choice.otherwise, arguments);
}

template <Kind kKind, Shape kLeft>
QuickOp::Fn ChooseOn(Shape right) noexcept {
  switch (right) {
    case Shape::Variable:
      return &ChooseOn<kKind, kLeft, Shape::Variable>;
    case Shape::Argument:
      return &ChooseOn<kKind, kLeft, Shape::Argument>;
    case Shape::Number:
      return &ChooseOn<kKind, kLeft, Shape::Number>;
    default:
      return &QuickChoice;
  }
}

template <Kind kKind>
QuickOp::Fn ChooseOn(const QuickOp& compared) noexcept {
  switch (ShapeOf(compared.left)) {
    case Shape::Variable:
      return ChooseOn<kKind, Shape::Variable>(ShapeOf(compared.right));
    case Shape::Argument:
      return ChooseOn<kKind, Shape::Argument>(ShapeOf(compared.right));
    default:
      return &QuickChoice;
  }
}

}  // namespace

QuickOp::Fn QuickBinary(Kind kind, const QuickOp& op, bool in_lambda) noexcept {
  switch (kind) {
    case Kind::Plus:
      return RunFor<Kind::Plus>(op, in_lambda);
    case Kind::Minus:
      return RunFor<Kind::Minus>(op, in_lambda);
    case Kind::Times:
      return RunFor<Kind::Times>(op, in_lambda);
    case Kind::Divide:
      return RunFor<Kind::Divide>(op, in_lambda);
    case Kind::Mod:
      return RunFor<Kind::Mod>(op, in_lambda);
    case Kind::Equal:
      return RunFor<Kind::Equal>(op, in_lambda);
    case Kind::NotEqual:
      return RunFor<Kind::NotEqual>(op, in_lambda);
    case Kind::Less:
      return RunFor<Kind::Less>(op, in_lambda);
    case Kind::LessEqual:
      return RunFor<Kind::LessEqual>(op, in_lambda);
    case Kind::Greater:
      return RunFor<Kind::Greater>(op, in_lambda);
    case Kind::GreaterEqual:
      return RunFor<Kind::GreaterEqual>(op, in_lambda);
    case Kind::And:
      return RunFor<Kind::And>(op, in_lambda);
    case Kind::Or:
      return RunFor<Kind::Or>(op, in_lambda);
    default:
      return nullptr;
  }
}

QuickOp::Fn QuickPrefix(Kind kind, const QuickOp& op) noexcept {
  switch (kind) {
    case Kind::Minus:
      return RunPrefix<Kind::Minus>(op);
    case Kind::Not:
      return RunPrefix<Kind::Not>(op);
    case Kind::Real:
      return RunPrefix<Kind::Real>(op);
    default:
      return nullptr;
  }
}

Reg QuickRead(const QuickOp& op, QuickArgument*) { return RegAt(**op.left.slot); }

Reg QuickNumber(const QuickOp& op, QuickArgument*) {
  return {op.left.number.tag, op.left.number.bits};
}

Reg QuickParameter(const QuickOp& op, QuickArgument* arguments) {
  return arguments[op.left.argument];
}

Reg QuickNoValue(const QuickOp&, QuickArgument*) { return kGivenUp; }

Reg QuickElement(const QuickOp& op, QuickArgument* arguments) {
  const IxoMepValue* const element = FindElement(op, arguments);
  return element != nullptr ? RegAt(*element) : kGivenUp;
}

Reg QuickElementOfName(const QuickOp& op, QuickArgument*) {
  const IxoMepValue* const element = SelectAt(**op.left.slot, **op.right.slot);
  return element != nullptr ? RegAt(*element) : kGivenUp;
}

Reg QuickChoice(const QuickOp& op, QuickArgument* arguments) {
  const auto& choice = static_cast<const QuickChoiceOp&>(op);
  const Reg condition = (*choice.condition)(arguments);
  bool truth = IntegerOf(condition) != 0;
  if (condition.tag != kTagInteger) {
    if (condition.tag != kTagReal) return kGivenUp;
    truth = RealOf(condition) != 0.0;
  }
  const QuickOp* const chosen = truth ? choice.chosen : choice.otherwise;
  return (*chosen)(arguments);
}

QuickOp::Fn QuickChoiceBy(Kind kind, const QuickChoiceOp& choice) noexcept {
  switch (kind) {
    case Kind::Equal:
      return ChooseOn<Kind::Equal>(choice);
    case Kind::NotEqual:
      return ChooseOn<Kind::NotEqual>(choice);
    case Kind::Less:
      return ChooseOn<Kind::Less>(choice);
    case Kind::LessEqual:
      return ChooseOn<Kind::LessEqual>(choice);
    case Kind::Greater:
      return ChooseOn<Kind::Greater>(choice);
    case Kind::GreaterEqual:
      return ChooseOn<Kind::GreaterEqual>(choice);
    default:
      return &QuickChoice;
  }
}

// --- Names --------------------------------------------------------------------------------------

IxoMepValue* const* QuickNames::SlotOf(const NameRef& name) noexcept {
  for (std::size_t i = 0; i < count_; ++i) {
    if (names_[i].name == name.name) return &values_[i];
  }
  if (count_ == kMost) return nullptr;
  names_[count_] = name;
  return &values_[count_++];
}

bool QuickNames::Bind(const IxoMepValueSet& scope) noexcept {
  Unbind();
  for (std::size_t i = 0; i < count_; ++i) {
    values_[i] = scope.FindInBucket(names_[i].bucket, names_[i].name);
    if (values_[i] == nullptr) return false;
  }
  scope_ = &scope;
  changes_ = IxoMepValueSet::Changes();
  return true;
}

bool QuickNames::MayBeAmong(std::uint64_t mask) const noexcept {
  return std::any_of(names_, names_ + count_,
                     [mask](const NameRef& name) { return name.MayBeAmong(mask); });
}

// --- Evaluations --------------------------------------------------------------------------------

void QuickTree::Expect(const IxoMepValueSet* scope) noexcept {
  if (scope == nullptr || names.IsBoundTo(scope)) return;
  if (pause_.Holds()) return;
  if (scope == expected_ && expected_changes_ == IxoMepValueSet::Changes()) {
    names.Bind(*scope);
    return;
  }
  expected_ = scope;
  expected_changes_ = IxoMepValueSet::Changes();
}

IxoMepErrorEnum EvaluateQuickly(QuickTree& quick, const IxoMepExpressionParser* parser,
                                IxoMepValueSet* scope, IxoMepValue*& result, String& text,
                                bool strict) {
  if (result != nullptr && LimitWatch::IsStepUnnoticed() && StackGuard::HasRoom()) [[likely]] {
    try {
      if (quick.Run(*result)) {
        LimitWatch::TakeUnnoticedStep();
        return IMEPERR_NONE;
      }
    } catch (const std::bad_alloc&) {  // the program finds out where
    }
  }
  return EvaluateToSlot(*quick.node, parser, scope, result, text, strict);
}

// What the slot holds is released only where that runs no code of the host.
bool QuickTree::StoreOther(Reg made, IxoMepValue& result) {
  if (text_sum != nullptr) {
    if (text_sum->StoreIn(result)) return true;
  } else if (OwnsNothing(result) || result.GetType() == Type::String) {
    const auto type = static_cast<Type>(made.tag);
    if (IsScalar(made.tag)) {
      result = ValueAccess::FromBits(type, made.bits);
      return true;
    }
    if (made.tag == kTagString) {
      IxoMepValue borrowed = ValueAccess::FromBits(type, made.bits);
      bool is_stored = true;
      try {
        result = borrowed;
      } catch (const std::exception&) {
        is_stored = false;
      }
      ValueAccess::TakeBits(borrowed);
      if (is_stored) return true;
    }
  }
  names.Unbind();
  pause_.Begin();
  return false;
}

}  // namespace ixomep
