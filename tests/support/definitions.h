// Definition texts for tests: reading a literal or a text, and writing what was read in a form
// that shows every part of it.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>

#include "ixomep/host/string.h"
#include "ixomep/parser/parser.h"
#include "ixomep/values/error_code.h"
#include "ixomep/values/raise.h"
#include "ixomep/values/slot.h"

namespace ixomep::test {

struct Literal {
  ValuePtr value;
  std::int32_t position;
  std::int32_t code;
  std::string error_text;
};

// Reads the literal at the position of the text, without a parser.
Literal ReadLiteralAt(std::string_view text, std::int32_t position = 0);
// The literal at the start of the text as "integer 3", "string \"a\"", or "error 5"; behind it
// " @" and the position when text is left over.
std::string LiteralOf(std::string_view text);

// A value as its type's name and its text: "integer 3".
std::string Described(const IxoMepValue* value);

// The elements of a parser, separated by "; ". An element is its keyword, "=" and its value, its
// attributes and its body in braces; an attribute is its name, "~" and its modifier, "=" and its
// value, or its body in braces. Values are written as literals of the language.
std::string Shape(const IxoMepParser& parser);
// Reads the text, with the context "test", and gives its shape, or "error N" and, when something
// was read before the error, ": " and the shape.
std::string ShapeOf(std::string_view text);

// A text that has been read, with the context "test".
struct Definition {
  explicit Definition(std::string_view text, std::string_view context = "test");
  IxoMepParser parser;
  IxoMepErrorEnum code;
  const IxoMepElement& Element(std::int32_t index) const { return *parser.GetElement(index); }
};

// The error text of a place: the code's text with the placeholders filled and the context block.
// A line of 0 is left out.
std::string ErrorTextOf(IxoMepErrorEnum code, std::initializer_list<Fill> fills, int line,
                        std::string_view context = "test");

// `count` times the part.
std::string Repeated(std::string_view part, std::size_t count);

}  // namespace ixomep::test
