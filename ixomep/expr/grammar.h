// Internal: tokens -> tree. The levels by name are private members of IxoMepExpressionParser; this
// is the door to them and what they are made of (grammar.cpp).
#pragma once

#include <cstdint>
#include <initializer_list>

#include "ixomep/expr/operator_table.h"
#include "ixomep/expr/token_list.h"
#include "ixomep/expr/tree_slot.h"
#include "ixomep/host/string.h"
#include "ixomep/values/error_code.h"
#include "ixomep/values/raise.h"

namespace ixomep {

class ExprGrammar {
 public:
  ExprGrammar(TokenList& tokens, std::int32_t& error, String& text) noexcept
      : tokens_(tokens), error_(error), text_(text) {}

  // The tree of the whole list, or null with error and text set and the offending token at the
  // front.
  static NodePtr Parse(TokenList& tokens, std::int32_t& error, String& text);

  // Each reads a tree into the slot, where nothing hangs. False with error and text set and the
  // offending token at the front; what has been read hangs in the slot, incomplete.
  bool Sequence(TreeSlot slot) { return Infix(slot, Level::Or) && SequenceBehind(slot); }
  bool Assignment(TreeSlot slot) { return Infix(slot, Level::Or) && AssignmentBehind(slot); }
  // The levels from Or to Mult, and the comparisons between them: operands of the unary level
  // joined by operators of `lowest` and higher levels.
  bool Infix(TreeSlot slot, Level lowest);
  bool Postfix(TreeSlot slot);
  bool Primary(TreeSlot slot);
  // A parameter list with its brackets; the slot stays empty when there is nothing in them.
  bool List(TreeSlot slot, std::uint32_t& count, bool& is_map);

 private:
  // What may follow a read operand of the level Or, and becomes the node above it.
  bool SequenceBehind(TreeSlot slot);
  bool AssignmentBehind(TreeSlot slot);
  bool SeparatorInBraces(std::uint32_t count, bool& is_map);
  bool Blocks(TreeSlot slot, std::uint32_t& count);

  // The fused parts of Infix.
  bool PlainPrimary(TreeSlot slot);
  bool PrimaryAndPostfix(TreeSlot slot);
  bool Unary(TreeSlot slot);
  bool Parameters(TreeSlot slot, std::uint32_t& count, bool& is_map);

  // Sets error and text; false.
  bool Fail(IxoMepErrorEnum code, std::initializer_list<Fill> fills = {});
  // Code 14 for that closer.
  bool FailCloser(IxoMepExprNodeType closer);

  TokenList& tokens_;
  std::int32_t& error_;
  String& text_;
};

}  // namespace ixomep
