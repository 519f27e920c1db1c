// Internal: what an infix operator does with two values, as one table {operator, class of the
// left operand, class of the right one} -> action. Defined in binary_operators.cpp.
#pragma once

#include "ixomep/expr/evaluator.h"

namespace ixomep {

// Writes the result into out, which may be one of the operands. On failure out is as it was.
// 18, 21, 26, 27, 37 as the operators give.
IxoMepErrorEnum ApplyBinaryTo(IxoMepExprNodeType kind, const IxoMepValue& left,
                              const IxoMepValue& right, IxoMepValue& out, String& text);

}  // namespace ixomep
