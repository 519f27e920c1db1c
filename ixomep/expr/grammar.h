// Internal: tokens -> tree. The ten levels are private members of IxoMepExpressionParser
// (grammar.cpp, param_list.cpp); this is the door to them and what they share.
#pragma once

#include <cstdint>
#include <initializer_list>

#include "ixomep/expr/operator_table.h"
#include "ixomep/expr/token_list.h"
#include "ixomep/host/string.h"
#include "ixomep/values/error_code.h"
#include "ixomep/values/raise.h"

namespace ixomep {

struct ExprGrammar {
  // The tree of the whole list, or null with error and text set and the offending token at the
  // front.
  static NodePtr Parse(TokenList& tokens, std::int32_t& error, String& text);

  // The left-associative levels from Or to Mult, and the comparisons between them: operands of
  // UnaryExpr joined by operators of `lowest` and higher levels.
  static NodePtr Binary(TokenList& tokens, Level lowest, std::int32_t& error, String& text);

  static NodePtr RightOperand(TokenList& tokens, Level level, std::int32_t& error, String& text);

  // Sets error and text and gives the null node.
  static NodePtr Fail(IxoMepErrorEnum code, std::int32_t& error, String& text,
                      std::initializer_list<Fill> fills = {});
  // Code 14 for that closer.
  static NodePtr FailCloser(IxoMepExprNodeType closer, std::int32_t& error, String& text);
};

}  // namespace ixomep
