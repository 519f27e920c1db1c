// Internal: what the evaluator asks of the function library. Defined in ../builtins/table.cpp and
// ../builtins/numbers.cpp.
#pragma once

#include "ixomep/expr/evaluator.h"

namespace ixomep {

// A built-in function: gets the call node with its unevaluated parameters. Contract as Evaluate;
// a function without a result sets frame.no_result.
using BuiltinBody = IxoMepErrorEnum (*)(const IxoMepExprNode& call, Frame& frame, IxoMepValue& out);

// The function of that interned name, or null. Sixteen mathematical names included: they come
// before the table.
BuiltinBody FindBuiltin(const char* name) noexcept;

// Is it the name of a built-in or mathematical function?
inline bool IsBuiltinName(const char* name) noexcept { return FindBuiltin(name) != nullptr; }

}  // namespace ixomep
