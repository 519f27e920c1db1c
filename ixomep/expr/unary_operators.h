// Internal: what a prefix operator does with a value, as a table {operator, type of the operand}
// -> action. Defined in unary_operators.cpp.
#pragma once

#include "ixomep/expr/evaluator.h"

namespace ixomep {

// Writes the result into out, which may be the operand. On failure out is as it was: 21, and what
// the reader of literals gives for VAL.
IxoMepErrorEnum ApplyUnaryTo(IxoMepExprNodeType kind, const IxoMepValue& operand, IxoMepValue& out,
                             String& text);

}  // namespace ixomep
