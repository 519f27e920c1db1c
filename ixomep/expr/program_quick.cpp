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

// Variable: a slot. An argument of a lambda is none here.
template <Shape kShape>
[[gnu::always_inline]] inline Reg Read(const QuickOperand& operand) {
  if constexpr (kShape == Shape::Number) return {operand.number.tag, operand.number.bits};
  if constexpr (kShape == Shape::Variable) return RegAt(**operand.slot);
  return (*operand.op)();
}

Shape ShapeOf(const QuickOperand& operand) noexcept {
  if (operand.slot != nullptr) return Shape::Variable;
  return operand.op->fn == &QuickNumber ? Shape::Number : Shape::General;
}

template <Kind kKind, Shape kLeft, Shape kRight>
Reg RunOn(const QuickOp& op) {
  const Reg left = Read<kLeft>(op.left);
  if constexpr (IsComparison(kKind) && kRight == Shape::Number) {
    const int side = left.tag == kTagReal ? op.right.landmark.SideOf(RealOf(left)) : 0;
    if (side != 0) return IntegerReg(Compared<kKind>(side, 0));
  }
  return Compute<kKind>(left, Read<kRight>(op.right));
}

template <Kind kKind, Shape kLeft>
QuickOp::Fn RunFor(Shape right) noexcept {
  switch (right) {
    case Shape::Variable:
      return &RunOn<kKind, kLeft, Shape::Variable>;
    case Shape::Number:
      return &RunOn<kKind, kLeft, Shape::Number>;
    default:
      return &RunOn<kKind, kLeft, Shape::General>;
  }
}

template <Kind kKind>
QuickOp::Fn RunFor(const QuickOp& op) noexcept {
  const Shape right = ShapeOf(op.right);
  switch (ShapeOf(op.left)) {
    case Shape::Variable:
      return RunFor<kKind, Shape::Variable>(right);
    case Shape::Number:
      return RunFor<kKind, Shape::Number>(right);
    default:
      return RunFor<kKind, Shape::General>(right);
  }
}

template <Kind kKind, Shape kShape>
Reg RunPrefixOn(const QuickOp& op) {
  return Compute<kKind>(Read<kShape>(op.right));
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

const IxoMepValue* FindElement(const QuickOp& op) {
  const QuickOperand& of = op.left;
  const IxoMepValue* const base = of.slot != nullptr  ? *of.slot
                                  : IsElement(*of.op) ? FindElement(*of.op)
                                                      : nullptr;
  if (base == nullptr) return nullptr;
  if (op.right.slot != nullptr) return SelectAt(*base, **op.right.slot);
  const Reg index = (*op.right.op)();
  if (!IsScalar(index.tag)) return nullptr;
  return SelectAt(*base, ValueAccess::FromBits(static_cast<Type>(index.tag), index.bits));
}

}  // namespace

QuickOp::Fn QuickBinary(Kind kind, const QuickOp& op) noexcept {
  switch (kind) {
    case Kind::Plus:
      return RunFor<Kind::Plus>(op);
    case Kind::Minus:
      return RunFor<Kind::Minus>(op);
    case Kind::Times:
      return RunFor<Kind::Times>(op);
    case Kind::Divide:
      return RunFor<Kind::Divide>(op);
    case Kind::Mod:
      return RunFor<Kind::Mod>(op);
    case Kind::Equal:
      return RunFor<Kind::Equal>(op);
    case Kind::NotEqual:
      return RunFor<Kind::NotEqual>(op);
    case Kind::Less:
      return RunFor<Kind::Less>(op);
    case Kind::LessEqual:
      return RunFor<Kind::LessEqual>(op);
    case Kind::Greater:
      return RunFor<Kind::Greater>(op);
    case Kind::GreaterEqual:
      return RunFor<Kind::GreaterEqual>(op);
    case Kind::And:
      return RunFor<Kind::And>(op);
    case Kind::Or:
      return RunFor<Kind::Or>(op);
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

Reg QuickRead(const QuickOp& op) { return RegAt(**op.left.slot); }

Reg QuickNumber(const QuickOp& op) { return {op.left.number.tag, op.left.number.bits}; }

Reg QuickElement(const QuickOp& op) {
  const IxoMepValue* const element = FindElement(op);
  return element != nullptr ? RegAt(*element) : kGivenUp;
}

Reg QuickElementOfName(const QuickOp& op) {
  const IxoMepValue* const element = SelectAt(**op.left.slot, **op.right.slot);
  return element != nullptr ? RegAt(*element) : kGivenUp;
}

Reg QuickChoice(const QuickOp& op) {
  const Reg condition = (*op.left.op)();
  bool truth = IntegerOf(condition) != 0;
  if (condition.tag != kTagInteger) {
    if (condition.tag != kTagReal) return kGivenUp;
    truth = RealOf(condition) != 0.0;
  }
  return truth ? (*op.right.op)() : (*op.otherwise)();
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

// --- Evaluations --------------------------------------------------------------------------------

void QuickTree::Expect(const IxoMepValueSet* scope) noexcept {
  if (scope == nullptr || names.IsBoundTo(scope)) return;
  if (pause_ > 0) {
    --pause_;
    return;
  }
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

// What the slot holds is released only where that runs no code of the host. A tree that gives up
// again and again is tried more and more seldom.
bool QuickTree::StoreOther(Reg made, IxoMepValue& result) {
  constexpr std::int32_t kLongestPause = 1 << 12;
  if (OwnsNothing(result) || result.GetType() == Type::String) {
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
  pause_ = next_pause_;
  next_pause_ = std::min(2 * next_pause_, kLongestPause);
  return false;
}

}  // namespace ixomep
