// IxoLimits: what evaluations may use up before they are ended. An application that evaluates
// expressions of strangers sets them with IxoHost::SetLimits. The limit of memory holds, and is
// named, while texts are read and converted as well.
#pragma once

#include <cstddef>
#include <cstdint>

// In every field 0 means: nothing beyond what always holds. An evaluation that exceeds a limit ends
// with code 38 (IMEPERR_TOO_DEEP) and a text that names the limit; "try" does not catch it.
struct IxoLimits {
  // Steps of an outermost evaluation and of all that it leads to, evaluations that a host's
  // function begins included. A step is: the beginning of an evaluation of an expression object,
  // one pass of the body of a loop, one call of a lambda (in a sort, one comparison, or one element
  // where the lambda compares one key), one call of a function of the host or of an object's native
  // method.
  std::uint64_t steps = 0;
  // Bytes that all texts and values of the process may hold together. 0: half the machine's memory,
  // or what MemoryBudget::SetLimit set, and codes 37 and 38 without a text of their own.
  std::size_t memory = 0;
  // Calls of lambdas and evaluations of expression objects inside each other; the outermost
  // evaluation does not count. What the native stack and chains of evaluations allow holds besides.
  std::int32_t depth = 0;
};
