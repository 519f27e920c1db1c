// Tokens -> tree, by recursive descent over the levels of operator_table.h. Chains of one level
// are loops; only brackets recurse, and every way into one, here and in ParamList, asks for native
// stack. On failure the offending token stays at the front of the list. Parameter lists
// are in param_list.cpp.
#include "ixomep/expr/grammar.h"

#include <array>
#include <cstddef>
#include <utility>

#include "ixomep/expr/expression_parser.h"
#include "ixomep/expr/stack_guard.h"
#include "ixomep/values/string_address_map.h"

// Every bracket of a text goes down from CommaExpr to PrimaryExpr and back. As one function that is
// two returns a bracket instead of eight, and returns from deep down are what processors foresee
// worst: nested brackets are read three times as fast.
#if defined(__GNUC__)
#define IXOMEP_FUSED [[gnu::always_inline]] inline
#else
#define IXOMEP_FUSED inline
#endif

using ixomep::ExprGrammar;
using ixomep::Level;
using ixomep::NodeAccess;
using ixomep::NodePtr;
using Kind = IxoMepExprNodeType;

namespace {

// What the grammar asks of every token, by kind.
struct Role {
  Level infix = Level::None;  // None: joins nothing
  bool prefix = false;
  bool postfix = false;  // "(", "[" or "." behind an operand
};

constexpr std::size_t kKinds = ixomep::kOperators.size() + ixomep::kFirstOperator;

constexpr std::array<Role, kKinds> MakeRoles() {
  std::array<Role, kKinds> roles{};
  for (const ixomep::OperatorRow& row : ixomep::kOperators) {
    Role& role = roles[static_cast<std::size_t>(row.kind)];
    if (row.IsInfix()) role.infix = row.level;
    role.prefix = row.IsPrefix();
  }
  for (const Kind kind : {Kind::OpenParen, Kind::OpenBracket, Kind::Dot}) {
    roles[static_cast<std::size_t>(kind)].postfix = true;
  }
  return roles;
}

// Of the front token; nothing when there is none.
Role RoleOfFront(const ixomep::TokenList& tokens) noexcept {
  static constexpr std::array<Role, kKinds> kRoles = MakeRoles();
  const auto kind = static_cast<std::uint32_t>(tokens.FrontKind());
  return kind < kKinds ? kRoles[kind] : Role{};
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

IXOMEP_FUSED NodePtr IxoMepExpressionParser::PrimaryExpr(Tokens& tokens, std::int32_t& error,
                                                         String& text) {
  if (tokens.FrontIs(Kind::Constant) || tokens.FrontIs(Kind::Variable)) return tokens.TakeFront();
  if (tokens.FrontIs(Kind::OpenParen)) {
    if (!ixomep::StackGuard::HasRoom()) return ExprGrammar::Fail(IMEPERR_TOO_DEEP, error, text);
    tokens.DropFront();
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
    static const char* const array_name = ixomep::Intern("{");
    static const char* const map_name = ixomep::Intern("{:");
    return Join(NodePtr::Make(Kind::Variable, is_map ? map_name : array_name),
                NodePtr::Make(Kind::FunctionCall), std::move(list));
  }
  return ExprGrammar::Fail(IMEPERR_OPERAND_EXPECTED, error, text);
}

IXOMEP_FUSED NodePtr IxoMepExpressionParser::PostfixExpr(Tokens& tokens, std::int32_t& error,
                                                         String& text) {
  NodePtr left = PrimaryExpr(tokens, error, text);
  while (left && RoleOfFront(tokens).postfix) {
    if (tokens.FrontIs(Kind::Dot)) {
      NodePtr member = tokens.TakeFront();
      NodePtr name = PrimaryExpr(tokens, error, text);
      if (!name) return {};
      NodeAccess::SetKind(*member, Kind::ObjectSubscription);
      left = Join(std::move(left), std::move(member), std::move(name));
      continue;
    }
    const bool call = tokens.FrontIs(Kind::OpenParen);
    std::uint32_t count = 0;
    bool is_map = false;
    NodePtr list = ParamList(tokens, error, text, count, is_map);
    if (error != IMEPERR_NONE) return {};
    left = Join(std::move(left), NodePtr::Make(call ? Kind::FunctionCall : Kind::ArraySubscription),
                std::move(list));
  }
  return left;
}

IXOMEP_FUSED NodePtr IxoMepExpressionParser::UnaryExpr(Tokens& tokens, std::int32_t& error,
                                                       String& text) {
  if (!RoleOfFront(tokens).prefix) return PostfixExpr(tokens, error, text);
  RightChain operators;
  while (RoleOfFront(tokens).prefix) operators.Add(tokens.TakeFront());
  NodePtr operand = PostfixExpr(tokens, error, text);
  if (!operand) return {};
  operators.Add(std::move(operand));
  return operators.Take();
}

// What stands on the right of an operator of that level: an operand of the next one.
IXOMEP_FUSED NodePtr ExprGrammar::RightOperand(TokenList& tokens, Level level, std::int32_t& error,
                                               String& text) {
  using Parser = IxoMepExpressionParser;
  switch (level) {
    case Level::Or:
      return Parser::AndExpr(tokens, error, text);
    case Level::And:
      return Parser::EqualityExpr(tokens, error, text);
    case Level::Equality:
      return Parser::AddExpr(tokens, error, text);
    case Level::Add:
      return Parser::MultExpr(tokens, error, text);
    default:
      return Parser::UnaryExpr(tokens, error, text);
  }
}

NodePtr ExprGrammar::Binary(TokenList& tokens, Level lowest, std::int32_t& error, String& text) {
  NodePtr left = IxoMepExpressionParser::UnaryExpr(tokens, error, text);
  Level highest = Level::Mult;
  while (left) {
    const Level level = RoleOfFront(tokens).infix;
    if (level < lowest || level > highest) break;
    NodePtr operator_token = tokens.TakeFront();
    NodePtr right = RightOperand(tokens, level, error, text);
    if (!right) return {};
    left = Join(std::move(left), std::move(operator_token), std::move(right));
    // A comparison is no operand of another one: only looser operators may follow it.
    highest = level == Level::Equality ? Level::And : level;
  }
  return left;
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

IXOMEP_FUSED NodePtr IxoMepExpressionParser::AssignmentExpr(Tokens& tokens, std::int32_t& error,
                                                            String& text) {
  RightChain targets;
  for (;;) {
    NodePtr operand = OrExpr(tokens, error, text);
    if (!operand) return {};
    if (!tokens.FrontIs(Kind::Assign)) {
      targets.Add(std::move(operand));
      return targets.Take();
    }
    NodePtr assignment = tokens.TakeFront();
    NodeAccess::SetLeft(*assignment, std::move(operand));
    targets.Add(std::move(assignment));
  }
}

NodePtr IxoMepExpressionParser::CommaExpr(Tokens& tokens, std::int32_t& error, String& text) {
  NodePtr left;
  NodePtr comma;
  do {
    NodePtr right = AssignmentExpr(tokens, error, text);
    if (!right) return {};
    left = comma ? Join(std::move(left), std::move(comma), std::move(right)) : std::move(right);
    if (tokens.FrontIs(Kind::Comma)) comma = tokens.TakeFront();
  } while (comma);
  return left;
}
