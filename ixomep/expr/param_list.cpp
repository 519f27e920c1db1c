// Parameter lists: the arguments of a call with its trailing blocks, the indices of a
// subscription, the elements of array and map literals. The rest of the grammar is in grammar.cpp.
#include <utility>

#include "ixomep/expr/expression_parser.h"
#include "ixomep/expr/grammar.h"
#include "ixomep/expr/stack_guard.h"

using ixomep::ExprGrammar;
using ixomep::NodeAccess;
using ixomep::NodePtr;
using ixomep::TokenList;
using Kind = IxoMepExprNodeType;

namespace {

constexpr Kind CloserOf(Kind opener) {
  switch (opener) {
    case Kind::OpenBrace:
      return Kind::CloseBrace;
    case Kind::OpenBracket:
      return Kind::CloseBracket;
    default:
      return Kind::CloseParen;
  }
}

// The chain of parameter cells under construction.
class Cells {
 public:
  void Add(NodePtr parameter) {
    NodePtr cell = NodePtr::Make(Kind::ParamItem);
    IxoMepExprNode* const added = cell.get();
    NodeAccess::SetLeft(*cell, std::move(parameter));
    if (last_ == nullptr) {
      first_ = std::move(cell);
    } else {
      NodeAccess::SetRight(*last_, std::move(cell));
    }
    last_ = added;
    ++count_;
  }
  std::uint32_t Count() const { return count_; }
  NodePtr Take() { return std::move(first_); }

 private:
  NodePtr first_;
  IxoMepExprNode* last_ = nullptr;
  std::uint32_t count_ = 0;
};

// Looks at the token behind the parameter number `count`: consumes a separator and gives true;
// gives false at the closer, which stays; fails otherwise. The first separator in braces decides
// whether they are a map literal.
bool Separator(TokenList& tokens, Kind closer, std::uint32_t count, bool& is_map,
               std::int32_t& error, String& text) {
  const bool braces = closer == Kind::CloseBrace;
  const bool comma = tokens.FrontIs(Kind::Comma);
  const bool colon = tokens.FrontIs(Kind::Colon);
  if (braces && count == 1) is_map = colon;
  const bool behind_key = is_map && count % 2 == 1;

  if (tokens.FrontIs(closer) || comma) {
    if (!behind_key) {
      if (comma) tokens.DropFront();
      return comma;
    }
    ExprGrammar::Fail(IMEPERR_BAD_SEPARATOR, error, text, {{"%c", comma ? "," : "}"}});
    return false;
  }
  if (colon && behind_key) {
    tokens.DropFront();
    return true;
  }
  ExprGrammar::FailCloser(closer, error, text);
  return false;
}

}  // namespace

NodePtr IxoMepExpressionParser::ParamList(Tokens& tokens, std::int32_t& error, String& text,
                                          std::uint32_t& count, bool& is_map) {
  const Kind opener = tokens.FrontKind();
  const Kind closer = CloserOf(opener);
  is_map = false;
  if (!ixomep::StackGuard::HasRoom()) return ExprGrammar::Fail(IMEPERR_TOO_DEEP, error, text);
  tokens.DropFront();
  Cells cells;

  if (!tokens.FrontIs(closer)) {
    do {
      NodePtr parameter = OrExpr(tokens, error, text);
      if (!parameter) return {};
      cells.Add(std::move(parameter));
    } while (Separator(tokens, closer, cells.Count(), is_map, error, text));
    if (error != IMEPERR_NONE) return {};
  }
  tokens.DropFront();

  // Trailing blocks of a call: the first one in braces, the others in braces or parentheses.
  const bool blocks = opener == Kind::OpenParen && tokens.FrontIs(Kind::OpenBrace);
  while (blocks && (tokens.FrontIs(Kind::OpenBrace) || tokens.FrontIs(Kind::OpenParen))) {
    const Kind block_closer = CloserOf(tokens.FrontKind());
    tokens.DropFront();
    NodePtr block = CommaExpr(tokens, error, text);
    if (!block) return {};
    cells.Add(std::move(block));
    if (!tokens.Accept(block_closer)) return ExprGrammar::FailCloser(block_closer, error, text);
  }
  count = cells.Count();
  return cells.Take();
}
