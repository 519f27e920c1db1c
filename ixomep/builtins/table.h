// Internal: the table of built-in functions as data: what fills IxoMepExprNode::aFunctionCallMap
// and what tests and the manual read.
#pragma once

#include <cstdint>
#include <span>

#include "ixomep/builtins/call.h"

namespace ixomep {

// The 68 named functions in the order in which they are entered.
std::span<const BuiltinRow> BuiltinRows() noexcept;

// The hash of the table, over the text: from 0, times 5 plus the byte as a signed number, in 32
// bits. A null text counts as the empty one.
std::uint32_t ixo_hash(const char* text) noexcept;

}  // namespace ixomep
