// Internal: reading one literal from a view, for the grammar. IxoMepValue::Create is the public
// face of the same (literal_reader.cpp); brackets and braces are in literal_expression.cpp.
#pragma once

#include <cstddef>
#include <memory>
#include <string_view>

#include "ixomep/parser/folded.h"
#include "ixomep/parser/literal_number.h"

class IxoMepExpressionParser;
class IxoMepParser;

namespace ixomep {

// What a literal is read with and where its failure goes.
struct LiteralContext {
  LiteralContext(IxoMepParser* reader, std::int32_t reader_line) noexcept
      : parser(reader), line(reader_line) {}

  IxoMepParser* parser;  // makes the expression objects; null: plain ones
  std::int32_t line;     // handed to them
  IxoMepErrorEnum code = IMEPERR_NONE;
  String error_text;
  // Where in the text an expression's syntax error stands; kNoPlace for other failures.
  std::size_t error_place = kNoPlace;
  FoldedLiterals* folded = nullptr;  // evaluated already

  static constexpr std::size_t kNoPlace = static_cast<std::size_t>(-1);
};

// Made by the parser's factory; a plain one without a parser.
std::unique_ptr<IxoMepExpressionParser> NewExpression(IxoMepParser* parser);

// The byte that a backslash and a letter stand for.
constexpr char Unescaped(char letter) noexcept {
  switch (letter) {
    case 'a':
      return '\a';
    case 'b':
      return '\b';
    case 't':
      return '\t';
    case 'n':
      return '\n';
    case 'v':
      return '\v';
    case 'f':
      return '\f';
    case 'r':
      return '\r';
    default:
      return letter;
  }
}

// The text between the quotes of a string literal without its backslashes; the form with `out`
// writes it there, where as many bytes have room, and gives its end.
String Unescape(std::string_view content);
// The same of a stretch of a text, which may be read beyond that stretch, in the place of another
// text.
void UnescapePart(std::string_view text, std::size_t at, std::size_t size, String& out);
char* Unescape(std::string_view content, char* out) noexcept;

// Each reads at the position and moves behind the literal. Null on failure, with code and error
// text set and the position where reading stopped.
ValuePtr ReadLiteral(const LiteralText& text, std::size_t& position, LiteralContext& context);
ValuePtr ReadString(const LiteralText& text, std::size_t& position, LiteralContext& context);
ValuePtr ReadExpression(const LiteralText& text, std::size_t& position, LiteralContext& context);
ValuePtr ReadArray(const LiteralText& text, std::size_t& position, LiteralContext& context);

}  // namespace ixomep
