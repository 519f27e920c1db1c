// Tokens -> tree, by recursive descent over the levels of operator_table.h. Chains of one level
// are loops; only brackets recurse, and every way into a bracket passes UnaryExpr, which asks for
// native stack. On failure the offending token stays at the front of the list. Parameter lists
// are in param_list.cpp.
#include "ixomep/expr/grammar.h"

#include <utility>

#include "ixomep/expr/expression_parser.h"
#include "ixomep/expr/stack_guard.h"
#include "ixomep/values/string_address_map.h"

using ixomep::ExprGrammar;
using ixomep::Level;
using ixomep::NodeAccess;
using ixomep::NodePtr;
using ixomep::OperatorRow;
using Kind = IxoMepExprNodeType;

namespace {

// The row of the front token when it is an infix operator of a level from lowest to highest.
const OperatorRow* InfixAt(const ixomep::TokenList& tokens, Level lowest, Level highest) {
  if (tokens.IsEmpty()) return nullptr;
  const OperatorRow* const row = ixomep::FindOperator(tokens.FrontKind());
  const bool taken =
      row != nullptr && row->IsInfix() && row->level >= lowest && row->level <= highest;
  return taken ? row : nullptr;
}

bool PrefixAt(const ixomep::TokenList& tokens) {
  if (tokens.IsEmpty()) return false;
  const OperatorRow* const row = ixomep::FindOperator(tokens.FrontKind());
  return row != nullptr && row->IsPrefix();
}

NodePtr Join(NodePtr left, NodePtr operator_token, NodePtr right) {
  NodeAccess::SetLeft(*operator_token, std::move(left));
  NodeAccess::SetRight(*operator_token, std::move(right));
  return operator_token;
}

// A tree that grows downwards to the right: every node is hung below the one before it.
class RightChain {
 public:
  void Add(NodePtr node) {
    IxoMepExprNode* const added = node.get();
    if (last_ == nullptr) {
      root_ = std::move(node);
    } else {
      NodeAccess::SetRight(*last_, std::move(node));
    }
    last_ = added;
  }
  NodePtr Take() { return std::move(root_); }

 private:
  NodePtr root_;
  IxoMepExprNode* last_ = nullptr;
};

}  // namespace

NodePtr ExprGrammar::Fail(IxoMepErrorEnum code, std::int32_t& error, String& text,
                          std::initializer_list<Fill> fills) {
  error = Raise(text, code, fills);
  return {};
}

NodePtr ExprGrammar::FailCloser(Kind closer, std::int32_t& error, String& text) {
  return Fail(IMEPERR_CLOSER_EXPECTED, error, text, {{"%1", OperatorText(closer)}});
}

NodePtr ExprGrammar::Parse(TokenList& tokens, std::int32_t& error, String& text) {
  if (tokens.IsEmpty()) return Fail(IMEPERR_OPERAND_EXPECTED, error, text);
  NodePtr tree = IxoMepExpressionParser::CommaExpr(tokens, error, text);
  if (!tree || tokens.IsEmpty()) return tree;
  if (!tokens.FrontIs(Kind::CloseParen)) return Fail(IMEPERR_TEXT_LEFT_OVER, error, text);
  return Fail(IMEPERR_NOTHING_OPEN, error, text,
              {{"%1", OperatorText(Kind::CloseParen)}, {"%2", OperatorText(Kind::OpenParen)}});
}

NodePtr ExprGrammar::Binary(TokenList& tokens, Level lowest, std::int32_t& error, String& text) {
  using Function = NodePtr (*)(TokenList&, std::int32_t&, String&);
  // What stands on the right of an operator of Or, And, Equality, Add, Mult.
  static constexpr Function kRightOperand[] = {
      &IxoMepExpressionParser::AndExpr, &IxoMepExpressionParser::EqualityExpr,
      &IxoMepExpressionParser::AddExpr, &IxoMepExpressionParser::MultExpr,
      &IxoMepExpressionParser::UnaryExpr};

  NodePtr left = IxoMepExpressionParser::UnaryExpr(tokens, error, text);
  if (!left) return {};
  Level highest = Level::Mult;
  while (const OperatorRow* const row = InfixAt(tokens, lowest, highest)) {
    NodePtr operator_token = tokens.TakeFront();
    const auto level = static_cast<std::size_t>(row->level);
    NodePtr right = kRightOperand[level - static_cast<std::size_t>(Level::Or)](tokens, error, text);
    if (!right) return {};
    left = Join(std::move(left), std::move(operator_token), std::move(right));
    // A comparison is no operand of another one: only looser operators may follow it.
    highest = row->level == Level::Equality ? Level::And : row->level;
  }
  return left;
}

NodePtr IxoMepExpressionParser::CommaExpr(Tokens& tokens, std::int32_t& error, String& text) {
  NodePtr left = AssignmentExpr(tokens, error, text);
  while (left && tokens.FrontIs(Kind::Comma)) {
    NodePtr comma = tokens.TakeFront();
    NodePtr right = AssignmentExpr(tokens, error, text);
    if (!right) return {};
    left = Join(std::move(left), std::move(comma), std::move(right));
  }
  return left;
}

NodePtr IxoMepExpressionParser::AssignmentExpr(Tokens& tokens, std::int32_t& error, String& text) {
  NodePtr operand = OrExpr(tokens, error, text);
  RightChain targets;
  while (operand && tokens.FrontIs(Kind::Assign)) {
    NodePtr assignment = tokens.TakeFront();
    NodeAccess::SetLeft(*assignment, std::move(operand));
    targets.Add(std::move(assignment));
    operand = OrExpr(tokens, error, text);
  }
  if (!operand) return {};
  targets.Add(std::move(operand));
  return targets.Take();
}

NodePtr IxoMepExpressionParser::OrExpr(Tokens& tokens, std::int32_t& error, String& text) {
  return ExprGrammar::Binary(tokens, Level::Or, error, text);
}

NodePtr IxoMepExpressionParser::AndExpr(Tokens& tokens, std::int32_t& error, String& text) {
  return ExprGrammar::Binary(tokens, Level::And, error, text);
}

NodePtr IxoMepExpressionParser::EqualityExpr(Tokens& tokens, std::int32_t& error, String& text) {
  return ExprGrammar::Binary(tokens, Level::Equality, error, text);
}

NodePtr IxoMepExpressionParser::AddExpr(Tokens& tokens, std::int32_t& error, String& text) {
  return ExprGrammar::Binary(tokens, Level::Add, error, text);
}

NodePtr IxoMepExpressionParser::MultExpr(Tokens& tokens, std::int32_t& error, String& text) {
  return ExprGrammar::Binary(tokens, Level::Mult, error, text);
}

NodePtr IxoMepExpressionParser::UnaryExpr(Tokens& tokens, std::int32_t& error, String& text) {
  if (!ixomep::StackGuard::HasRoom()) return ExprGrammar::Fail(IMEPERR_TOO_DEEP, error, text);
  if (!PrefixAt(tokens)) return PostfixExpr(tokens, error, text);
  RightChain operators;
  while (PrefixAt(tokens)) operators.Add(tokens.TakeFront());
  NodePtr operand = PostfixExpr(tokens, error, text);
  if (!operand) return {};
  operators.Add(std::move(operand));
  return operators.Take();
}

NodePtr IxoMepExpressionParser::PostfixExpr(Tokens& tokens, std::int32_t& error, String& text) {
  NodePtr left = PrimaryExpr(tokens, error, text);
  while (left) {
    if (tokens.FrontIs(Kind::Dot)) {
      NodePtr member = tokens.TakeFront();
      NodePtr name = PrimaryExpr(tokens, error, text);
      if (!name) return {};
      NodeAccess::SetKind(*member, Kind::ObjectSubscription);
      left = Join(std::move(left), std::move(member), std::move(name));
      continue;
    }
    const bool call = tokens.FrontIs(Kind::OpenParen);
    if (!call && !tokens.FrontIs(Kind::OpenBracket)) break;
    std::uint32_t count = 0;
    bool is_map = false;
    NodePtr list = ParamList(tokens, error, text, count, is_map);
    if (error != IMEPERR_NONE) return {};
    left = Join(std::move(left), NodePtr::Make(call ? Kind::FunctionCall : Kind::ArraySubscription),
                std::move(list));
  }
  return left;
}

NodePtr IxoMepExpressionParser::PrimaryExpr(Tokens& tokens, std::int32_t& error, String& text) {
  if (tokens.FrontIs(Kind::Constant) || tokens.FrontIs(Kind::Variable)) return tokens.TakeFront();
  if (tokens.Accept(Kind::OpenParen)) {
    NodePtr inner = CommaExpr(tokens, error, text);
    if (inner && !tokens.Accept(Kind::CloseParen)) {
      return ExprGrammar::FailCloser(Kind::CloseParen, error, text);
    }
    return inner;
  }
  if (tokens.FrontIs(Kind::OpenBrace)) {
    std::uint32_t count = 0;
    bool is_map = false;
    NodePtr list = ParamList(tokens, error, text, count, is_map);
    if (error != IMEPERR_NONE) return {};
    return Join(NodePtr::Make(Kind::Variable, ixomep::Intern(is_map ? "{:" : "{")),
                NodePtr::Make(Kind::FunctionCall), std::move(list));
  }
  return ExprGrammar::Fail(IMEPERR_OPERAND_EXPECTED, error, text);
}
