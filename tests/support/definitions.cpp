// Reading and writing definition texts for tests. See definitions.h.
#include "tests/support/definitions.h"

#include "ixomep/host/res_id.h"
#include "ixomep/values/value.h"

namespace ixomep::test {
namespace {

std::string Text(const String& text) { return std::string(text.view()); }

std::string ShapeOfAttribute(const IxoMepAttribute& attribute) {
  std::string shape = " " + Text(attribute.GetName());
  if (!attribute.GetModifier().IsEmpty()) shape += "~" + Text(attribute.GetModifier());
  if (attribute.GetValue() != nullptr) shape += "=" + Text(attribute.GetValue()->GetText(false));
  if (attribute.GetBodyParser() != nullptr) {
    shape += "{" + Shape(*attribute.GetBodyParser()) + "}";
  }
  return shape;
}

std::string ShapeOfElement(const IxoMepElement& element) {
  std::string shape = Text(element.GetKeyword());
  if (element.GetValue() != nullptr) shape += "=" + Text(element.GetValue()->GetText(false));
  for (std::int32_t i = 0; i < element.GetAttrCount(); ++i) {
    shape += ShapeOfAttribute(*element.GetAttr(i));
  }
  if (element.GetBodyParser() != nullptr) shape += " {" + Shape(*element.GetBodyParser()) + "}";
  return shape;
}

}  // namespace

Literal ReadLiteralAt(std::string_view text, std::int32_t position) {
  Literal literal{nullptr, position, -1, {}};
  String error_text;
  literal.value.reset(
      IxoMepValue::Create(String(text), literal.position, literal.code, error_text, nullptr, 1));
  literal.error_text = Text(error_text);
  return literal;
}

std::string Described(const IxoMepValue* value) {
  if (value == nullptr) return "none";
  return Text(IxoMepValue::GetTypeName(value->GetType())) + " " + Text(value->GetText(false));
}

std::string LiteralOf(std::string_view text) {
  const Literal literal = ReadLiteralAt(text);
  if (literal.value == nullptr) return "error " + std::to_string(literal.code);
  std::string described = Described(literal.value.get());
  if (literal.position != static_cast<std::int32_t>(text.size())) {
    described += " @" + std::to_string(literal.position);
  }
  return described;
}

std::string Shape(const IxoMepParser& parser) {
  std::string shape;
  for (std::int32_t i = 0; i < parser.GetElemCount(); ++i) {
    if (i > 0) shape += "; ";
    shape += ShapeOfElement(*parser.GetElement(i));
  }
  return shape;
}

std::string ShapeOf(std::string_view text) {
  const Definition definition(text);
  const std::string shape = Shape(definition.parser);
  if (definition.code == IMEPERR_NONE) return shape;
  const std::string error = "error " + std::to_string(definition.code);
  return shape.empty() ? error : error + ": " + shape;
}

Definition::Definition(std::string_view text, std::string_view context)
    : parser(String(text), String(context)), code(parser.Parse()) {}

std::string ErrorTextOf(IxoMepErrorEnum code, std::initializer_list<Fill> fills, int line,
                        std::string_view context) {
  String text;
  Raise(text, code, fills);
  std::string block = Text(text) + "\n\n";
  if (line > 0) block += Text(String(ResId(33570582))) + " " + std::to_string(line) + " ";
  return block + Text(String(ResId(33570583))) + " " + std::string(context);
}

std::string Repeated(std::string_view part, std::size_t count) {
  if (part.size() == 1) return std::string(count, part[0]);
  std::string text;
  text.reserve(part.size() * count);
  for (std::size_t i = 0; i < count; ++i) text += part;
  return text;
}

}  // namespace ixomep::test
