// Internal: the operators on numbers, as the operations of side programs apply them: in registers,
// nothing but numbers known of. And how such an operation has its operands, fetched by their shape.
#pragma once

#include <compare>
#include <cstdint>

#include "ixomep/expr/decimal_compare.h"
#include "ixomep/expr/program_ops.h"

namespace ixomep {

template <class T>
const T& As(const Op& op) noexcept {
  return static_cast<const T&>(op);
}

// --- Operands -----------------------------------------------------------------------------------

// What a name that is bound nowhere reads as.
[[gnu::noinline]] Reg ReadAbsent(const Op& op, Run& run);

inline const IxoMepValue* FindArgument(const Operand& operand, const Run& run) noexcept {
  const IxoMepValue* const argument = run.Argument(operand.argument);
  return argument != nullptr ? argument : run.Find(operand.name);
}

template <Shape kShape>
[[gnu::always_inline]] inline Reg Fetch(const Operand& operand, Run& run) {
  if constexpr (kShape == Shape::Number) {
    return {operand.number.tag, operand.number.bits};
  } else if constexpr (kShape == Shape::Variable) {
    const IxoMepValue* const value = run.Find(operand.name);
    return value != nullptr ? CopyOf(*value) : ReadAbsent(*operand.op, run);
  } else if constexpr (kShape == Shape::Argument) {
    const IxoMepValue* const value = FindArgument(operand, run);
    return value != nullptr ? CopyOf(*value) : ReadAbsent(*operand.op, run);
  } else {
    return (*operand.op)(run);
  }
}

inline Reg FetchAny(const Operand& operand, Run& run) {
  switch (operand.shape) {
    case Shape::Number:
      return Fetch<Shape::Number>(operand, run);
    case Shape::Variable:
      return Fetch<Shape::Variable>(operand, run);
    case Shape::Argument:
      return Fetch<Shape::Argument>(operand, run);
    default:
      return Fetch<Shape::General>(operand, run);
  }
}

// An operation that does not concern numbers, or not at once: the way without shortcuts has it.
inline constexpr Reg kNotMine{-3, 0};

// The operand's number where it takes no call to have it, else something that is no number. Nothing
// is owned. What an operation does with such operands needs no stack and saves no registers.
template <Shape kShape>
[[gnu::always_inline]] inline Reg NumberAtOnce(const Operand& operand, const Run& run) noexcept {
  static_assert(kShape != Shape::General);
  if constexpr (kShape == Shape::Number) {
    return {operand.number.tag, operand.number.bits};
  } else {
    const IxoMepValue* value = nullptr;
    if constexpr (kShape == Shape::Argument) value = run.Argument(operand.argument);
    if constexpr (kShape == Shape::Variable) value = run.FindAtOnce(operand.name);
    if (value == nullptr) [[unlikely]]
      return kNotMine;
    return {static_cast<std::int64_t>(value->GetType()), ValueAccess::Bits(*value)};
  }
}

// --- Numbers ------------------------------------------------------------------------------------

template <IxoMepExprNodeType kKind>
std::int32_t Wrapped(std::int32_t left, std::int32_t right) noexcept {
  const auto a = static_cast<std::uint32_t>(left);
  const auto b = static_cast<std::uint32_t>(right);
  if constexpr (kKind == IxoMepExprNodeType::Plus) return static_cast<std::int32_t>(a + b);
  if constexpr (kKind == IxoMepExprNodeType::Minus) return static_cast<std::int32_t>(a - b);
  return static_cast<std::int32_t>(a * b);
}

template <IxoMepExprNodeType kKind, class T>
bool Compared(T a, T b) noexcept {
  if constexpr (kKind == IxoMepExprNodeType::Equal) return a == b;
  if constexpr (kKind == IxoMepExprNodeType::NotEqual) return !(a == b);
  if constexpr (kKind == IxoMepExprNodeType::Less) return a < b;
  if constexpr (kKind == IxoMepExprNodeType::LessEqual) return a <= b;
  if constexpr (kKind == IxoMepExprNodeType::Greater) return a > b;
  return a >= b;
}

constexpr bool IsComparison(IxoMepExprNodeType kind) noexcept {
  return kind >= IxoMepExprNodeType::Equal && kind <= IxoMepExprNodeType::Greater;
}

// The operator on two integers; kNotMine for what is an error.
template <IxoMepExprNodeType kKind>
Reg ComputeIntegers(std::int32_t x, std::int32_t y) noexcept {
  if constexpr (kKind == IxoMepExprNodeType::Plus || kKind == IxoMepExprNodeType::Minus ||
                kKind == IxoMepExprNodeType::Times) {
    return IntegerReg(Wrapped<kKind>(x, y));
  } else if constexpr (kKind == IxoMepExprNodeType::Divide) {
    return y != 0 ? RealReg(static_cast<double>(x) / y) : kNotMine;
  } else if constexpr (kKind == IxoMepExprNodeType::Mod) {
    return y != 0 ? RealReg(static_cast<double>(std::int64_t{x} % y)) : kNotMine;
  } else if constexpr (IsComparison(kKind)) {
    return IntegerReg(Compared<kKind>(x, y));
  } else {
    return IntegerReg(kKind == IxoMepExprNodeType::And ? x != 0 && y != 0 : x != 0 || y != 0);
  }
}

template <IxoMepExprNodeType kKind>
Reg ComputeReals(double x, double y) noexcept {
  if constexpr (kKind == IxoMepExprNodeType::Plus) {
    return RealReg(x + y);
  } else if constexpr (kKind == IxoMepExprNodeType::Minus) {
    return RealReg(x - y);
  } else if constexpr (kKind == IxoMepExprNodeType::Times) {
    return RealReg(x * y);
  } else if constexpr (kKind == IxoMepExprNodeType::Divide) {
    return y != 0.0 ? RealReg(x / y) : kNotMine;
  } else if constexpr (IsComparison(kKind)) {
    if (NumbersDecide(x, y)) [[likely]]
      return IntegerReg(Compared<kKind>(x, y));
    const std::strong_ordering order = CompareDecimalTexts(x, y);
    return IntegerReg(Compared<kKind>((order > 0) - (order < 0), 0));
  } else {
    return IntegerReg(kKind == IxoMepExprNodeType::And ? x != 0.0 && y != 0.0
                                                       : x != 0.0 || y != 0.0);
  }
}

// The operator on two numbers; kNotMine for what is an error or no business of numbers.
template <IxoMepExprNodeType kKind>
[[gnu::always_inline]] inline Reg Compute(Reg a, Reg b) noexcept {
  if (a.tag == kTagInteger && b.tag == kTagInteger) {
    return ComputeIntegers<kKind>(IntegerOf(a), IntegerOf(b));
  }
  if constexpr (kKind == IxoMepExprNodeType::Mod) {
    return kNotMine;
  } else {
    if (!IsNumber(a) || !IsNumber(b)) return kNotMine;
    return ComputeReals<kKind>(NumberOf(a), NumberOf(b));
  }
}

// The operator on one number; kNotMine for what is an error or no business of numbers.
template <IxoMepExprNodeType kKind>
[[gnu::always_inline]] inline Reg Compute(Reg a) noexcept {
  if (!IsNumber(a)) return kNotMine;
  if constexpr (kKind == IxoMepExprNodeType::Minus) {
    return a.tag == kTagInteger ? IntegerReg(Wrapped<IxoMepExprNodeType::Minus>(0, IntegerOf(a)))
                                : RealReg(-RealOf(a));
  } else if constexpr (kKind == IxoMepExprNodeType::Not) {
    return IntegerReg(a.tag == kTagInteger ? IntegerOf(a) == 0 : RealOf(a) == 0.0);
  } else {
    static_assert(kKind == IxoMepExprNodeType::Real);
    return RealReg(NumberOf(a));
  }
}

}  // namespace ixomep
