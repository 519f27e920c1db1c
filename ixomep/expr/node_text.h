// Internal: a tree as text for the engine itself, which must not take a text that could not be had
// for an empty one.
#pragma once

#include "ixomep/expr/node.h"
#include "ixomep/expr/value_set.h"
#include "ixomep/host/string.h"

namespace ixomep {

// IxoMepExprNode::GetPrettyText that throws std::bad_alloc or std::length_error instead of giving
// the empty text.
String PrettyTextOf(const IxoMepExprNode& node, const IxoMepValueSet* scope);

}  // namespace ixomep
