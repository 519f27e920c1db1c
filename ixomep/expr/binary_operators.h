// Internal: what an infix operator does with two values, as one table {operator, class of the
// left operand, class of the right one} -> action. Defined in binary_operators.cpp.
#pragma once

#include <cstdint>

#include "ixomep/expr/evaluator.h"

namespace ixomep {

// What the table tells operands apart by. A reference to a number is a Number, any other
// reference is of no use to an operator.
enum class OperandClass : std::uint8_t { Integer, Number, String, Measure, Time, Array, Other };

OperandClass ClassOf(const IxoMepValue& value) noexcept;

// Does the table have a row for that operator and these classes? Everything else fails with 21.
bool HasBinaryRow(IxoMepExprNodeType kind, OperandClass left, OperandClass right) noexcept;

// Writes the result into out, which may be one of the operands. On failure out is as it was.
// 18, 21, 26, 27, 37 as the operators give.
IxoMepErrorEnum ApplyBinaryTo(IxoMepExprNodeType kind, const IxoMepValue& left,
                              const IxoMepValue& right, IxoMepValue& out, String& text);

}  // namespace ixomep
