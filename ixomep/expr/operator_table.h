// Internal: the operators and tokens of the expression language in one table: kind, spelling, is
// it a word, how many operands, which grammar level. Scanner, grammar, printer and error texts
// read it; a new operator is a new row here.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "ixomep/expr/node_type.h"

namespace ixomep {

// The levels of the grammar, loosest binding first.
enum class Level : std::uint8_t {
  None = 0,
  Comma = 1,
  Assignment = 2,
  Or = 3,
  And = 4,
  Equality = 5,
  Add = 6,
  Mult = 7,
  Unary = 8,
  Postfix = 9,
  Primary = 10,
};

enum class Arity : std::uint8_t { TokenOnly, Prefix, Infix, PrefixAndInfix };

struct OperatorRow {
  IxoMepExprNodeType kind;
  std::string_view spelling;
  bool is_word;  // upper-case letters, scanned as a keyword
  Arity arity;
  Level level;  // of the infix form when there are both; prefix forms are always Level::Unary

  constexpr bool IsPrefix() const {
    return arity == Arity::Prefix || arity == Arity::PrefixAndInfix;
  }
  constexpr bool IsInfix() const { return arity == Arity::Infix || arity == Arity::PrefixAndInfix; }
};

inline constexpr std::array<OperatorRow, 40> kOperators = {{
    {IxoMepExprNodeType::Assign, ":=", false, Arity::Infix, Level::Assignment},
    {IxoMepExprNodeType::Comma, ",", false, Arity::Infix, Level::Comma},
    {IxoMepExprNodeType::Colon, ":", false, Arity::TokenOnly, Level::None},
    {IxoMepExprNodeType::Dot, ".", false, Arity::TokenOnly, Level::Postfix},
    {IxoMepExprNodeType::OpenParen, "(", false, Arity::TokenOnly, Level::Postfix},
    {IxoMepExprNodeType::CloseParen, ")", false, Arity::TokenOnly, Level::None},
    {IxoMepExprNodeType::Plus, "+", false, Arity::Infix, Level::Add},
    {IxoMepExprNodeType::Minus, "-", false, Arity::PrefixAndInfix, Level::Add},
    {IxoMepExprNodeType::Times, "*", false, Arity::Infix, Level::Mult},
    {IxoMepExprNodeType::Divide, "/", false, Arity::Infix, Level::Mult},
    {IxoMepExprNodeType::Mod, "MOD", true, Arity::Infix, Level::Mult},
    {IxoMepExprNodeType::Equal, "=", false, Arity::Infix, Level::Equality},
    {IxoMepExprNodeType::LessEqual, "<=", false, Arity::Infix, Level::Equality},
    {IxoMepExprNodeType::NotEqual, "!=", false, Arity::Infix, Level::Equality},
    {IxoMepExprNodeType::Less, "<", false, Arity::Infix, Level::Equality},
    {IxoMepExprNodeType::GreaterEqual, ">=", false, Arity::Infix, Level::Equality},
    {IxoMepExprNodeType::Greater, ">", false, Arity::Infix, Level::Equality},
    {IxoMepExprNodeType::OpenBrace, "{", false, Arity::TokenOnly, Level::Primary},
    {IxoMepExprNodeType::CloseBrace, "}", false, Arity::TokenOnly, Level::None},
    {IxoMepExprNodeType::OpenBracket, "[", false, Arity::TokenOnly, Level::Postfix},
    {IxoMepExprNodeType::CloseBracket, "]", false, Arity::TokenOnly, Level::None},
    {IxoMepExprNodeType::Val, "VAL", true, Arity::Prefix, Level::Unary},
    {IxoMepExprNodeType::Str, "STR", true, Arity::Prefix, Level::Unary},
    {IxoMepExprNodeType::And, "AND", true, Arity::Infix, Level::And},
    {IxoMepExprNodeType::Or, "OR", true, Arity::Infix, Level::Or},
    {IxoMepExprNodeType::Len, "LEN", true, Arity::Prefix, Level::Unary},
    {IxoMepExprNodeType::Not, "NOT", true, Arity::Prefix, Level::Unary},
    {IxoMepExprNodeType::Sub, "SUB", true, Arity::Infix, Level::Mult},
    {IxoMepExprNodeType::In, "IN", true, Arity::Infix, Level::Mult},
    {IxoMepExprNodeType::Round, "ROUND", true, Arity::Prefix, Level::Unary},
    {IxoMepExprNodeType::Floor, "FLOOR", true, Arity::Prefix, Level::Unary},
    {IxoMepExprNodeType::Ceil, "CEIL", true, Arity::Prefix, Level::Unary},
    {IxoMepExprNodeType::Cm, "CM", true, Arity::Prefix, Level::Unary},
    {IxoMepExprNodeType::Cms, "CMS", true, Arity::Prefix, Level::Unary},
    {IxoMepExprNodeType::Pt, "PT", true, Arity::Prefix, Level::Unary},
    {IxoMepExprNodeType::Pts, "PTS", true, Arity::Prefix, Level::Unary},
    {IxoMepExprNodeType::Asc, "ASC", true, Arity::Prefix, Level::Unary},
    {IxoMepExprNodeType::Chr, "CHR", true, Arity::Prefix, Level::Unary},
    {IxoMepExprNodeType::Int, "INT", true, Arity::Prefix, Level::Unary},
    {IxoMepExprNodeType::Real, "REAL", true, Arity::Prefix, Level::Unary},
}};

inline constexpr std::int32_t kFirstOperator = 7;

static_assert(
    [] {
      for (std::size_t i = 0; i < kOperators.size(); ++i) {
        if (static_cast<std::int32_t>(kOperators[i].kind) != kFirstOperator + std::int32_t(i)) {
          return false;
        }
      }
      return true;
    }(),
    "the rows stand in the order of their kinds");

// The row of a kind; null for the structural kinds and for unknown numbers.
constexpr const OperatorRow* FindOperator(IxoMepExprNodeType kind) noexcept {
  const auto number = static_cast<std::uint32_t>(kind) - std::uint32_t{kFirstOperator};
  return number < kOperators.size() ? &kOperators[number] : nullptr;
}

// The printed name of a kind; "???" for the structural kinds and for unknown numbers.
constexpr std::string_view OperatorText(IxoMepExprNodeType kind) noexcept {
  const OperatorRow* const row = FindOperator(kind);
  return row != nullptr ? row->spelling : std::string_view("???");
}

}  // namespace ixomep
