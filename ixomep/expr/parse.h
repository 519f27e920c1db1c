// Internal: text -> tree, the whole way: scanner, grammar, and the check that nothing is left
// over. IxoMepExpressionParser::SetExpression is thin over this.
#pragma once

#include "ixomep/expr/node_ptr.h"
#include "ixomep/host/string.h"
#include "ixomep/values/error_code.h"

namespace ixomep {

// The tree of the expression, code 0 and error_text unchanged; or null, with code and error_text
// set and ErrorPlace pointing at the offending token. Never throws: memory that cannot be had
// gives 38.
NodePtr ParseExpression(const String& text, IxoMepErrorEnum& code, String& error_text) noexcept;

}  // namespace ixomep
