// Tokens -> tree, by recursive descent over the levels of operator_table.h. Chains of one level
// are loops; only brackets recurse, and every way into one asks for native stack. The tree grows
// from its root (tree_slot.h). On failure the offending token stays at the front of the list.
#include "ixomep/expr/grammar.h"

#include <array>
#include <cstddef>

#include "ixomep/expr/expression_parser.h"
#include "ixomep/expr/stack_guard.h"
#include "ixomep/values/string_address_map.h"

// Every bracket of a text goes down from Infix to PlainPrimary or Parameters and back. As one
// function that is one return a bracket instead of five, and returns from deep down are what
// processors foresee worst.
#if defined(__GNUC__)
#define IXOMEP_FUSED [[gnu::always_inline]] inline
#else
#define IXOMEP_FUSED inline
#endif

using ixomep::ExprGrammar;
using ixomep::Level;
using ixomep::NodePtr;
using ixomep::TokenList;
using ixomep::TreeSlot;
using Kind = IxoMepExprNodeType;

namespace {

// What a token may be, by kind.
struct Role {
  Level infix = Level::None;  // None: joins nothing
  bool prefix = false;
  bool postfix = false;  // "(", "[" or "." behind an operand
};

// One more than there are kinds: the end of the tokens, which is nothing.
constexpr std::size_t kRoleCount = static_cast<std::size_t>(TokenList::kNoToken) + 1;
static_assert(kRoleCount == ixomep::kOperators.size() + ixomep::kFirstOperator + 1);

constexpr std::array<Role, kRoleCount> MakeRoles() {
  std::array<Role, kRoleCount> roles{};
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

constexpr std::array<Role, kRoleCount> kRoles = MakeRoles();

constexpr const Role& RoleOf(Kind kind) { return kRoles[static_cast<std::size_t>(kind)]; }

constexpr Kind CloserOf(Kind opener) {
  if (opener == Kind::OpenParen) return Kind::CloseParen;
  return opener == Kind::OpenBrace ? Kind::CloseBrace : Kind::CloseBracket;
}

// The callee of the call that an array or map literal is.
const char* LiteralName(bool is_map) {
  static const char* const array_name = ixomep::Intern("{");
  static const char* const map_name = ixomep::Intern("{:");
  return is_map ? map_name : array_name;
}

// Moves the place from the root of a tree of operands and infix operators to where an operator of
// that level belongs: what hangs there becomes its left operand. `last` is the operator that was
// read last, null when there is none; it ends the tree's right edge, along which the operators bind
// the tighter the further down they are. False when the operator cannot stand behind this tree: a
// comparison is no operand of another one.
bool FindPlace(TreeSlot& place, Level level, const IxoMepExprNode* last) noexcept {
  if (last == nullptr) return true;
  for (;;) {
    IxoMepExprNode& node = *place.Node();
    const Level met = RoleOf(node.GetType()).infix;
    if (met >= level) return met != Level::Equality || level != Level::Equality;
    place = TreeSlot::RightOf(node);
    if (&node == last) return true;
  }
}

}  // namespace

bool ExprGrammar::Fail(IxoMepErrorEnum code, std::initializer_list<Fill> fills) {
  error_ = Raise(text_, code, fills);
  return false;
}

bool ExprGrammar::FailCloser(Kind closer) {
  return Fail(IMEPERR_CLOSER_EXPECTED, {{"%1", OperatorText(closer)}});
}

NodePtr ExprGrammar::Parse(TokenList& tokens, std::int32_t& error, String& text) {
  ExprGrammar grammar(tokens, error, text);
  NodePtr tree;
  if (tokens.IsEmpty()) {
    grammar.Fail(IMEPERR_OPERAND_EXPECTED);
  } else if (!grammar.Sequence(TreeSlot::Root(tree)) || tokens.IsEmpty()) {
  } else if (tokens.FrontIs(Kind::CloseParen)) {
    grammar.Fail(IMEPERR_NOTHING_OPEN,
                 {{"%1", OperatorText(Kind::CloseParen)}, {"%2", OperatorText(Kind::OpenParen)}});
  } else {
    grammar.Fail(IMEPERR_TEXT_LEFT_OVER);
  }
  if (error != IMEPERR_NONE) tree.Reset();
  return tree;
}

IXOMEP_FUSED bool ExprGrammar::Parameters(TreeSlot slot, std::uint32_t& count, bool& is_map) {
  const Kind opener = tokens_.FrontKind();
  const Kind closer = CloserOf(opener);
  if (!StackGuard::HasRoom()) return Fail(IMEPERR_TOO_DEEP);
  tokens_.DropSymbol();
  if (!tokens_.FrontIs(closer)) {
    bool goes_on = false;
    do {
      IxoMepExprNode& cell = slot.Wrap(Kind::ParamItem);
      if (!Infix(TreeSlot::LeftOf(cell), Level::Or)) return false;
      slot = TreeSlot::RightOf(cell);
      ++count;
      goes_on = opener == Kind::OpenBrace ? SeparatorInBraces(count, is_map)
                                          : tokens_.Accept(Kind::Comma);
    } while (goes_on);
    if (error_ != IMEPERR_NONE) return false;
    if (!tokens_.FrontIs(closer)) return FailCloser(closer);
  }
  tokens_.DropSymbol();
  return opener != Kind::OpenParen || !tokens_.FrontIs(Kind::OpenBrace) || Blocks(slot, count);
}

// Looks at the token behind the parameter number `count` of a list in braces: consumes a separator
// and gives true; gives false at the closer, which stays, and after a failure. The first separator
// decides whether the list is a map literal.
bool ExprGrammar::SeparatorInBraces(std::uint32_t count, bool& is_map) {
  const bool comma = tokens_.FrontIs(Kind::Comma);
  const bool colon = tokens_.FrontIs(Kind::Colon);
  if (count == 1) is_map = colon;
  const bool behind_key = is_map && count % 2 == 1;
  if (behind_key && (comma || tokens_.FrontIs(Kind::CloseBrace))) {
    return Fail(IMEPERR_BAD_SEPARATOR, {{"%c", comma ? "," : "}"}});
  }
  return tokens_.Accept(behind_key ? Kind::Colon : Kind::Comma);
}

// The trailing blocks of a call: the first one in braces, the others in braces or parentheses.
bool ExprGrammar::Blocks(TreeSlot slot, std::uint32_t& count) {
  while (tokens_.FrontIs(Kind::OpenBrace) || tokens_.FrontIs(Kind::OpenParen)) {
    const Kind closer = CloserOf(tokens_.FrontKind());
    tokens_.DropSymbol();
    IxoMepExprNode& cell = slot.Wrap(Kind::ParamItem);
    if (!Sequence(TreeSlot::LeftOf(cell))) return false;
    slot = TreeSlot::RightOf(cell);
    ++count;
    if (!tokens_.Accept(closer)) return FailCloser(closer);
  }
  return true;
}

// A primary that is no list in braces.
IXOMEP_FUSED bool ExprGrammar::PlainPrimary(TreeSlot slot) {
  if (tokens_.FrontIs(Kind::Variable)) {
    tokens_.PutName(slot);
    return true;
  }
  if (tokens_.FrontIs(Kind::Constant)) {
    tokens_.PutConstant(slot);
    return true;
  }
  if (!tokens_.FrontIs(Kind::OpenParen)) return Fail(IMEPERR_OPERAND_EXPECTED);
  if (!StackGuard::HasRoom()) return Fail(IMEPERR_TOO_DEEP);
  tokens_.DropSymbol();
  if (!Infix(slot, Level::Or)) return false;
  if (tokens_.Accept(Kind::CloseParen)) return true;
  if (!SequenceBehind(slot)) return false;
  return tokens_.Accept(Kind::CloseParen) || FailCloser(Kind::CloseParen);
}

IXOMEP_FUSED bool ExprGrammar::PrimaryAndPostfix(TreeSlot slot) {
  bool is_literal = tokens_.FrontIs(Kind::OpenBrace);
  if (!is_literal && !PlainPrimary(slot)) return false;
  while (is_literal || RoleOf(tokens_.FrontKind()).postfix) {
    if (tokens_.FrontIs(Kind::Dot)) {
      tokens_.DropSymbol();
      const TreeSlot member = TreeSlot::RightOf(slot.Wrap(Kind::ObjectSubscription));
      if (!Primary(member)) return false;
      continue;
    }
    const bool is_index = tokens_.FrontIs(Kind::OpenBracket);
    IxoMepExprNode& node = slot.Wrap(is_index ? Kind::ArraySubscription : Kind::FunctionCall);
    std::uint32_t count = 0;
    bool is_map = false;
    if (!Parameters(TreeSlot::RightOf(node), count, is_map)) return false;
    if (is_literal) TreeSlot::LeftOf(node).PutName(LiteralName(is_map));
    is_literal = false;
  }
  return true;
}

IXOMEP_FUSED bool ExprGrammar::Unary(TreeSlot slot) {
  while (RoleOf(tokens_.FrontKind()).prefix) slot = TreeSlot::RightOf(tokens_.PutSymbol(slot));
  return PrimaryAndPostfix(slot);
}

bool ExprGrammar::Infix(TreeSlot slot, Level lowest) {
  IxoMepExprNode* last = nullptr;
  for (TreeSlot operand = slot;; operand = TreeSlot::RightOf(*last)) {
    if (!Unary(operand)) return false;
    const Level level = RoleOf(tokens_.FrontKind()).infix;
    if (level < lowest) return true;
    TreeSlot place = slot;
    if (!FindPlace(place, level, last)) return true;
    last = &tokens_.PutSymbol(place);
  }
}

bool ExprGrammar::AssignmentBehind(TreeSlot slot) {
  while (tokens_.FrontIs(Kind::Assign)) {
    slot = TreeSlot::RightOf(tokens_.PutSymbol(slot));
    if (!Infix(slot, Level::Or)) return false;
  }
  return true;
}

bool ExprGrammar::SequenceBehind(TreeSlot slot) {
  if (!AssignmentBehind(slot)) return false;
  while (tokens_.FrontIs(Kind::Comma)) {
    if (!Assignment(TreeSlot::RightOf(tokens_.PutSymbol(slot)))) return false;
  }
  return true;
}

bool ExprGrammar::Postfix(TreeSlot slot) { return PrimaryAndPostfix(slot); }

bool ExprGrammar::Primary(TreeSlot slot) {
  if (!tokens_.FrontIs(Kind::OpenBrace)) return PlainPrimary(slot);
  IxoMepExprNode& call = slot.Wrap(Kind::FunctionCall);
  std::uint32_t count = 0;
  bool is_map = false;
  if (!List(TreeSlot::RightOf(call), count, is_map)) return false;
  TreeSlot::LeftOf(call).PutName(LiteralName(is_map));
  return true;
}

bool ExprGrammar::List(TreeSlot slot, std::uint32_t& count, bool& is_map) {
  return Parameters(slot, count, is_map);
}

// --- The levels by name --------------------------------------------------------------------------

namespace {

// The tree that `read` reads, or null.
template <class Read>
NodePtr TreeOf(const Read& read) {
  NodePtr tree;
  if (!read(TreeSlot::Root(tree))) tree.Reset();
  return tree;
}

NodePtr InfixTree(TokenList& tokens, Level lowest, std::int32_t& error, String& text) {
  ExprGrammar grammar(tokens, error, text);
  return TreeOf([&](TreeSlot slot) { return grammar.Infix(slot, lowest); });
}

}  // namespace

NodePtr IxoMepExpressionParser::CommaExpr(Tokens& tokens, std::int32_t& error, String& text) {
  ExprGrammar grammar(tokens, error, text);
  return TreeOf([&](TreeSlot slot) { return grammar.Sequence(slot); });
}

NodePtr IxoMepExpressionParser::AssignmentExpr(Tokens& tokens, std::int32_t& error, String& text) {
  ExprGrammar grammar(tokens, error, text);
  return TreeOf([&](TreeSlot slot) { return grammar.Assignment(slot); });
}

NodePtr IxoMepExpressionParser::OrExpr(Tokens& tokens, std::int32_t& error, String& text) {
  return InfixTree(tokens, Level::Or, error, text);
}

NodePtr IxoMepExpressionParser::AndExpr(Tokens& tokens, std::int32_t& error, String& text) {
  return InfixTree(tokens, Level::And, error, text);
}

NodePtr IxoMepExpressionParser::EqualityExpr(Tokens& tokens, std::int32_t& error, String& text) {
  return InfixTree(tokens, Level::Equality, error, text);
}

NodePtr IxoMepExpressionParser::AddExpr(Tokens& tokens, std::int32_t& error, String& text) {
  return InfixTree(tokens, Level::Add, error, text);
}

NodePtr IxoMepExpressionParser::MultExpr(Tokens& tokens, std::int32_t& error, String& text) {
  return InfixTree(tokens, Level::Mult, error, text);
}

// No infix operator binds so tightly: one operand.
NodePtr IxoMepExpressionParser::UnaryExpr(Tokens& tokens, std::int32_t& error, String& text) {
  return InfixTree(tokens, Level::Unary, error, text);
}

NodePtr IxoMepExpressionParser::PostfixExpr(Tokens& tokens, std::int32_t& error, String& text) {
  ExprGrammar grammar(tokens, error, text);
  return TreeOf([&](TreeSlot slot) { return grammar.Postfix(slot); });
}

NodePtr IxoMepExpressionParser::PrimaryExpr(Tokens& tokens, std::int32_t& error, String& text) {
  ExprGrammar grammar(tokens, error, text);
  return TreeOf([&](TreeSlot slot) { return grammar.Primary(slot); });
}

NodePtr IxoMepExpressionParser::ParamList(Tokens& tokens, std::int32_t& error, String& text,
                                          std::uint32_t& count, bool& is_map) {
  ExprGrammar grammar(tokens, error, text);
  count = 0;
  is_map = false;
  return TreeOf([&](TreeSlot slot) { return grammar.List(slot, count, is_map); });
}
