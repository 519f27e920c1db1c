// Internal: what the evaluations of a quick reading gave, for the plain reading that follows when
// one of them failed: hosts see every evaluation once.
#pragma once

#include <cstddef>
#include <deque>

#include "ixomep/host/string.h"
#include "ixomep/values/error_code.h"
#include "ixomep/values/slot.h"

namespace ixomep {

struct FoldedLiteral {
  std::size_t at = 0;  // where the literal starts in the text
  ValuePtr value;      // an expression value for one that stays an expression
  IxoMepErrorEnum code = IMEPERR_NONE;
  String error_text;
};

// In the order of the text.
using FoldedLiterals = std::deque<FoldedLiteral>;

}  // namespace ixomep
