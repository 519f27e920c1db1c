// Operations of side programs that read and combine: constants, variables, elements, operators.
// Each is a function chosen when the program is compiled, so that an operator on two integers costs
// two look-ups and one addition. Whatever is not numbers goes through the operator tables.
#include <cmath>
#include <limits>
#include <new>
#include <stdexcept>
#include <utility>

#include "ixomep/expr/binary_operators.h"
#include "ixomep/expr/program_numbers.h"
#include "ixomep/expr/unary_operators.h"
#include "ixomep/host/numbers.h"

namespace ixomep {

namespace {

using Kind = IxoMepExprNodeType;
using Type = IxoMepValueType;

// --- Everything else ----------------------------------------------------------------------------

Reg Applied(IxoMepErrorEnum code, IxoMepValue&& out, Run& run) {
  code = WithinLimits(code, run.Text());
  return code == IMEPERR_NONE ? RegOf(std::move(out)) : run.Fail(code);
}

Reg Apply(Kind kind, const IxoMepValue& left, const IxoMepValue& right, Run& run) {
  IxoMepValue out;
  const IxoMepErrorEnum code = ApplyBinaryTo(kind, left, right, out, run.Text());
  return Applied(code, std::move(out), run);
}

// left is nobody else's any more: a text grows in place, which makes a chain of "+" linear.
Reg ApplyOwned(Kind kind, IxoMepValue&& left, const IxoMepValue& right, Run& run) {
  if (kind != Kind::Plus || left.GetType() != Type::String || right.GetType() != Type::String) {
    return Apply(kind, left, right, run);
  }
  String& text = ValueAccess::Text(left);
  const String& more = ValueAccess::Text(right);
  try {
    if (std::int64_t{text.Len()} + more.Len() <= String::kMaxLength) {
      text += more;
      return RegOf(std::move(left));
    }
  } catch (const std::bad_alloc& cause) {
    return run.Fail(RaiseNoMemory(run.Text(), IMEPERR_TOO_LONG, cause));
  }
  return run.Fail(Raise(run.Text(), IMEPERR_TOO_LONG));
}

// The left operand is a text, an array or the like.
[[gnu::noinline]] Reg CombineOwned(const BinaryOp& op, Reg left, Run& run) {
  IxoMepValue value = OwnedValue(left);
  IxoMepValue storage;
  const IxoMepValue* const right = ReadOperand(op.right, run, storage);
  if (right == nullptr) return kFailure;
  return ApplyOwned(op.node->GetType(), std::move(value), *right, run);
}

[[gnu::noinline]] Reg Combine(const BinaryOp& op, Reg left, Reg right, Run& run) {
  const IxoMepValue b = OwnedValue(right);
  return Apply(op.node->GetType(), OwnedValue(left), b, run);
}

// The operator, once its left operand is there.
template <Kind kKind>
[[gnu::noinline]] Reg FinishBinary(const BinaryOp& op, Run& run, Reg left) {
  if (!IsScalar(left.tag)) {
    return left.tag == kTagFailed ? left : CombineOwned(op, left, run);
  }
  const Reg right = FetchAny(op.right, run);
  const Reg result = Compute<kKind>(left, right);
  if (result.tag != kNotMine.tag) return result;
  return right.tag == kTagFailed ? right : Combine(op, left, right, run);
}

template <Kind kKind>
[[gnu::noinline]] Reg RunBinarySlowly(const BinaryOp& op, Run& run) {
  return FinishBinary<kKind>(op, run, FetchAny(op.left, run));
}

// On numbers at hand this is all that happens; nothing has happened when they are not.
template <Kind kKind, Shape kLeft, Shape kRight>
Reg RunBinary(const Op& op, Run& run) {
  const auto& binary = As<BinaryOp>(op);
  if constexpr (kLeft == Shape::General) {
    const Reg left = (*binary.left.op)(run);
    if constexpr (kRight == Shape::General) {
      if (!IsScalar(left.tag)) return FinishBinary<kKind>(binary, run, left);
      const Reg right = (*binary.right.op)(run);
      const Reg result = Compute<kKind>(left, right);
      if (result.tag != kNotMine.tag) [[likely]]
        return result;
      return right.tag == kTagFailed ? right : Combine(binary, left, right, run);
    } else {
      const Reg result = Compute<kKind>(left, NumberAtOnce<kRight>(binary.right, run));
      return result.tag != kNotMine.tag ? result : FinishBinary<kKind>(binary, run, left);
    }
  } else if constexpr (kRight == Shape::General) {
    return RunBinarySlowly<kKind>(binary, run);
  } else {
    const Reg left = NumberAtOnce<kLeft>(binary.left, run);
    if constexpr (IsComparison(kKind) && kRight == Shape::Number) {
      const int side = left.tag == kTagReal ? binary.right.landmark.SideOf(RealOf(left)) : 0;
      if (side != 0) return IntegerReg(Compared<kKind>(side, 0));
    }
    const Reg result = Compute<kKind>(left, NumberAtOnce<kRight>(binary.right, run));
    return result.tag != kNotMine.tag ? result : RunBinarySlowly<kKind>(binary, run);
  }
}

template <Kind kKind, Shape kLeft>
constexpr Op::Fn BinaryOf(Shape right) noexcept {
  switch (right) {
    case Shape::Variable:
      return &RunBinary<kKind, kLeft, Shape::Variable>;
    case Shape::Argument:
      return &RunBinary<kKind, kLeft, Shape::Argument>;
    case Shape::Number:
      return &RunBinary<kKind, kLeft, Shape::Number>;
    default:
      return &RunBinary<kKind, kLeft, Shape::General>;
  }
}

template <Kind kKind>
constexpr Op::Fn BinaryOf(Shape left, Shape right) noexcept {
  switch (left) {
    case Shape::Variable:
      return BinaryOf<kKind, Shape::Variable>(right);
    case Shape::Argument:
      return BinaryOf<kKind, Shape::Argument>(right);
    case Shape::Number:
      return BinaryOf<kKind, Shape::Number>(right);
    default:
      return BinaryOf<kKind, Shape::General>(right);
  }
}

// --- Prefix operators ---------------------------------------------------------------------------

Reg ApplyPrefix(const Op& op, const IxoMepValue& operand, Run& run) {
  IxoMepValue out;
  const IxoMepErrorEnum code = ApplyUnaryTo(op.node->GetType(), operand, out, run.Text());
  return Applied(code, std::move(out), run);
}

[[gnu::noinline]] Reg ApplyPrefix(const Op& op, Reg operand, Run& run) {
  return ApplyPrefix(op, OwnedValue(operand), run);
}

template <Kind kKind>
[[gnu::noinline]] Reg FinishPrefix(const UnaryOp& op, Run& run, Reg operand) {
  const Reg result = Compute<kKind>(operand);
  if (result.tag != kNotMine.tag) return result;
  return operand.tag == kTagFailed ? operand : ApplyPrefix(op, operand, run);
}

template <Kind kKind>
[[gnu::noinline]] Reg RunPrefixSlowly(const UnaryOp& op, Run& run) {
  return FinishPrefix<kKind>(op, run, FetchAny(op.operand, run));
}

template <Kind kKind, Shape kShape>
Reg RunNumberPrefix(const Op& op, Run& run) {
  const auto& prefix = As<UnaryOp>(op);
  if constexpr (kShape == Shape::General) {
    return RunPrefixSlowly<kKind>(prefix, run);
  } else {
    const Reg result = Compute<kKind>(NumberAtOnce<kShape>(prefix.operand, run));
    return result.tag != kNotMine.tag ? result : RunPrefixSlowly<kKind>(prefix, run);
  }
}

template <Kind kKind>
constexpr Op::Fn NumberPrefixOf(Shape operand) noexcept {
  switch (operand) {
    case Shape::Variable:
      return &RunNumberPrefix<kKind, Shape::Variable>;
    case Shape::Argument:
      return &RunNumberPrefix<kKind, Shape::Argument>;
    default:
      return &RunNumberPrefix<kKind, Shape::General>;
  }
}

Reg RunPrefix(const Op& op, Run& run) {
  IxoMepValue storage;
  const IxoMepValue* const operand = ReadOperand(As<UnaryOp>(op).operand, run, storage);
  return operand != nullptr ? ApplyPrefix(op, *operand, run) : kFailure;
}

// --- Elements ------------------------------------------------------------------------------------

const IxoMepValue* BorrowElement(const ElementOp& element, Run& run);

// Is the operand a value that stands somewhere: of a name, a constant, an element of such a one?
bool IsBorrowed(const Operand& operand) noexcept {
  return operand.shape == Shape::Variable || operand.shape == Shape::Argument ||
         operand.op->fn == &RunConstant || operand.op->fn == &RunElement;
}

// That value; null when it is none, or cannot be had at once.
const IxoMepValue* Borrow(const Operand& operand, Run& run) {
  if (operand.shape == Shape::Variable) return run.Find(operand.name);
  if (operand.shape == Shape::Argument) return FindArgument(operand, run);
  if (operand.op->fn == &RunConstant) return As<ConstantOp>(*operand.op).value;
  return operand.op->fn == &RunElement ? BorrowElement(As<ElementOp>(*operand.op), run) : nullptr;
}

// What the index selects; null for everything that fails. An absent entry is undefined.
[[gnu::always_inline]] inline const IxoMepValue* Select(const IxoMepValue& base,
                                                        const IxoMepValue& index) {
  if (base.GetType() == Type::Map) {
    const IxoMepValue* const entry = ValueAccess::FindEntry(base, ValueAccess::Follow(index));
    return entry != nullptr ? entry : IxoMepValue::GetNull();
  }
  const bool is_element = base.GetType() == Type::Array && index.GetType() == Type::Integer &&
                          ValueAccess::HasElement(base, ValueAccess::Integer(index));
  return is_element
             ? &ValueAccess::Element(base, static_cast<std::size_t>(ValueAccess::Integer(index)))
             : nullptr;
}

// Null when the element cannot be had this way, and nothing has changed. An index that has to be
// evaluated comes before the base is looked at, because evaluating it may move arguments; so do
// those of the bases further in.
const IxoMepValue* BorrowElement(const ElementOp& element, Run& run) {
  IxoMepValue made;
  const Operand& index = element.index;
  const bool is_made = index.shape == Shape::General && !IsBorrowed(index);
  if (is_made) {
    const Reg r = (*index.op)(run);
    if (r.tag == kTagFailed) return nullptr;
    made = OwnedValue(r);
  } else if (index.shape == Shape::Number) {
    made = OwnedValue(index.number);
  } else if (index.shape == Shape::General) {
    const IxoMepValue* const found = Borrow(index, run);
    if (found == nullptr) return nullptr;
    made = *found;
  }
  const IxoMepValue* const base = Borrow(element.base, run);
  if (base == nullptr) return nullptr;
  if (index.shape == Shape::General || index.shape == Shape::Number) return Select(*base, made);
  const IxoMepValue* const named = Borrow(index, run);
  return named != nullptr ? Select(*base, *named) : nullptr;
}

// The same for a name subscripted by a name, where one comparison finds each; else null.
const IxoMepValue* SelectAtOnce(const ElementOp& element, const Run& run) {
  const auto find = [&run](const Operand& operand) noexcept -> const IxoMepValue* {
    if (operand.shape == Shape::Variable) return run.FindAtOnce(operand.name);
    return operand.shape == Shape::Argument ? run.Argument(operand.argument) : nullptr;
  };
  const IxoMepValue* const base = find(element.base);
  const IxoMepValue* const index = find(element.index);
  return base != nullptr && index != nullptr ? Select(*base, *index) : nullptr;
}

}  // namespace

Reg ReadAbsent(const Op& op, Run& run) {
  return run.IsStrict() ? RunPlainly(op, run) : Reg{kTagUndefined, 0};
}

Reg CopyOfOwner(const IxoMepValue& value) {
  if (value.GetType() == Type::String) return {kTagString, ValueAccess::ShareText(value)};
  return RegOf(IxoMepValue(value));
}

const IxoMepValue* ReadOperand(const Operand& operand, Run& run, IxoMepValue& storage) {
  if (const IxoMepValue* const found = Borrow(operand, run)) return found;
  const Reg result = (*operand.op)(run);
  if (result.tag == kTagFailed) return nullptr;
  storage = OwnedValue(result);
  return &storage;
}

Reg RunConstant(const Op& op, Run&) { return CopyOf(*As<ConstantOp>(op).value); }

Reg RunNumber(const Op& op, Run&) { return As<NumberOp>(op).number; }

Reg RunVariable(const Op& op, Run& run) {
  const IxoMepValue* const value = run.Find(As<VariableOp>(op).name);
  return value != nullptr ? CopyOf(*value) : ReadAbsent(op, run);
}

Reg RunArgument(const Op& op, Run& run) {
  const auto& argument = As<ArgumentOp>(op);
  const IxoMepValue* value = run.Argument(argument.index);
  if (value == nullptr) value = run.Find(argument.name);
  return value != nullptr ? CopyOf(*value) : ReadAbsent(op, run);
}

namespace {

[[gnu::noinline]] Reg RunElementSlowly(const Op& op, Run& run) {
  const auto& element = As<ElementOp>(op);
  if (const IxoMepValue* const value = BorrowElement(element, run)) return CopyOf(*value);
  if (IsBorrowed(element.base)) return RunPlainly(op, run);
  // A base that is made comes first: evaluated the plain way, it may move arguments into a scope.
  const Reg made = (*element.base.op)(run);
  if (made.tag == kTagFailed) return made;
  const IxoMepValue base = OwnedValue(made);
  IxoMepValue storage;
  const IxoMepValue* const index = ReadOperand(element.index, run, storage);
  const IxoMepValue* const value = index != nullptr ? Select(base, *index) : nullptr;
  return value != nullptr ? CopyOf(*value) : RunPlainly(op, run);
}

}  // namespace

// An element is found from a base that is looked at where it stands, never copied on the way. Base
// and index are quiet, so that everything but a hit may be evaluated again the plain way.
Reg RunElement(const Op& op, Run& run) {
  const IxoMepValue* const value = SelectAtOnce(As<ElementOp>(op), run);
  return value != nullptr ? CopyOf(*value) : RunElementSlowly(op, run);
}

Op::Fn BinaryFunction(Kind kind, Shape left, Shape right) noexcept {
  switch (kind) {
    case Kind::Plus:
      return BinaryOf<Kind::Plus>(left, right);
    case Kind::Minus:
      return BinaryOf<Kind::Minus>(left, right);
    case Kind::Times:
      return BinaryOf<Kind::Times>(left, right);
    case Kind::Divide:
      return BinaryOf<Kind::Divide>(left, right);
    case Kind::Mod:
      return BinaryOf<Kind::Mod>(left, right);
    case Kind::Equal:
      return BinaryOf<Kind::Equal>(left, right);
    case Kind::NotEqual:
      return BinaryOf<Kind::NotEqual>(left, right);
    case Kind::Less:
      return BinaryOf<Kind::Less>(left, right);
    case Kind::LessEqual:
      return BinaryOf<Kind::LessEqual>(left, right);
    case Kind::Greater:
      return BinaryOf<Kind::Greater>(left, right);
    case Kind::GreaterEqual:
      return BinaryOf<Kind::GreaterEqual>(left, right);
    case Kind::And:
      return BinaryOf<Kind::And>(left, right);
    case Kind::Or:
      return BinaryOf<Kind::Or>(left, right);
    default:
      return nullptr;
  }
}

Op::Fn UnaryFunction(Kind kind, Shape operand) noexcept {
  switch (kind) {
    case Kind::Minus:
      return NumberPrefixOf<Kind::Minus>(operand);
    case Kind::Not:
      return NumberPrefixOf<Kind::Not>(operand);
    case Kind::Real:
      return NumberPrefixOf<Kind::Real>(operand);
    default:
      return &RunPrefix;
  }
}

}  // namespace ixomep
