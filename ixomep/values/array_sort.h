// Internal: array.sort. The order that the language defines is that of exchanging neighbours
// until a pass exchanges none; it is stable.
#pragma once

#include "ixomep/host/string.h"
#include "ixomep/values/value.h"

namespace ixomep {

// Sorts by operator<, or by a lambda of two parameters that tells whether its first argument goes
// before its second. Makes at most as many passes as there are elements, so that a lambda that
// never settles ends, with code 0. An error of the lambda ends the sort and is returned; the
// array stays as far as it got. The lambda's evaluation may change the array.
IxoMepErrorEnum SortArray(IxoMepValue& array, IxoMepExprNode* lambda, String& error_text);

}  // namespace ixomep
