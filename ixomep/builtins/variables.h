// Internal: the variable that an editing function (the array editors, merase) names by its first
// parameter. It is looked up, never evaluated and never created.
#pragma once

#include <string_view>

#include "ixomep/builtins/call.h"
#include "ixomep/host/string.h"

namespace ixomep {

// The call as the texts of the editing functions show it: "aappend(list, ...)".
String EditingCallText(std::string_view function, const IxoMepExprNode& variable);

// The checks before anything is evaluated: 31 when the node is no bare name, 20 when assignments
// are forbidden, 39 (naming the call of `function`) when there is no such variable.
IxoMepErrorEnum CheckVariable(Call& call, const IxoMepExprNode& variable,
                              std::string_view function);

// The variable's value now; for a node that CheckVariable has let pass. Borrowed until anything
// is evaluated.
IxoMepValue* FindVariable(const Call& call, const IxoMepExprNode& variable) noexcept;

}  // namespace ixomep
