// Attributes: their text is cut out first, then name, modifier and value or body are read from
// it. See reader.h.
#include <memory>
#include <utility>

#include "ixomep/expr/expression_parser.h"
#include "ixomep/parser/bytes.h"
#include "ixomep/parser/parser.h"
#include "ixomep/parser/reader.h"

namespace ixomep {
namespace {

// Room made at once for the attributes of an element: most have no more.
constexpr std::size_t kUsualAttributes = 4;

constexpr bool IsModifierByte(char byte) noexcept {
  return Is(byte, kNameByte) && static_cast<unsigned char>(byte) < 128;
}

constexpr bool IsNumber(IxoMepValueType type) noexcept {
  return type >= IxoMepValueType::Integer && type <= IxoMepValueType::Time;
}

}  // namespace

IxoMepErrorEnum Grammar::ReadAttribute() {
  ReadingFrame& frame = Top();
  const std::size_t start = frame.position;
  IxoMepElement* const element = AttributeOwner();
  if (element == nullptr) {
    return Fail(IMEPERR_OUTSIDE_ELEMENT, start, {{"%s", WordAt(start)}});
  }
  const AttributeExtent extent = frame.extents->FindAttributeEnd(start, frame.end);
  if (extent.code != IMEPERR_NONE) {
    const std::size_t has_opener = extent.needed != '\0' ? 1 : 0;
    return Fail(extent.code, extent.end,
                {{"%1", {&extent.closer, 1}}, {"%2", {&extent.needed, has_opener}}});
  }
  std::size_t colon = extent.end;
  IxoMepAttribute* attribute = nullptr;
  const auto code = ReadAttributeName(*element, start, extent.end, colon, attribute);
  if (code != IMEPERR_NONE) return code;

  std::size_t position = colon;
  bool has_value = colon < extent.end;
  if (has_value) {
    position = Skip(frame.bytes, colon + 1, extent.end, kWhite);
    if (position < extent.end && Is(frame.bytes[position], kLower)) {
      const auto failed = ReadModifier(*attribute, position, extent.end, has_value);
      if (failed != IMEPERR_NONE) return failed;
    }
  }
  PassLines(start, position);
  if (has_value) return ReadAttributeValue(*attribute, start, position, extent.end);
  frame.position = position;
  frame.at_statement_start = false;
  return IMEPERR_NONE;
}

// Finds the first ":" (or the end of the attribute), checks the name before it and appends the
// attribute to the element.
IxoMepErrorEnum Grammar::ReadAttributeName(IxoMepElement& element, std::size_t start,
                                           std::size_t end, std::size_t& colon,
                                           IxoMepAttribute*& attribute) {
  ReadingFrame& frame = Top();
  const std::string_view bytes = frame.bytes;
  bool has_dash = false;
  bool has_index = false;
  std::size_t position = start;
  for (; position < end && bytes[position] != ':'; ++position) {
    if (has_index) continue;
    const char byte = bytes[position];
    if (byte == '[' && !has_dash) {
      has_index = true;
    } else if (!Is(byte, kNameByte)) {
      return Fail(IMEPERR_BAD_ATTRIBUTE_NAME, position);
    }
    has_dash = has_dash || byte == '-';
  }
  colon = position;

  std::unique_ptr<IxoMepExpressionParser> place;
  if (has_index) {
    if (const auto code = ReadExpressionText(start, colon, frame.line, place)) return code;
  }
  auto made = std::make_unique<IxoMepAttribute>(Shared(bytes.substr(start, colon - start)));
  made->array_lvalue_ = std::move(place);
  attribute = made.get();
  if (element.attributes_.empty()) element.attributes_.reserve(kUsualAttributes);
  element.attributes_.push_back(std::move(made));
  return IMEPERR_NONE;
}

// Reads the modifier at the position and moves behind it. When a ":" follows, a value must be
// there, and the position moves to it.
IxoMepErrorEnum Grammar::ReadModifier(IxoMepAttribute& attribute, std::size_t& position,
                                      std::size_t end, bool& has_value) {
  const ReadingFrame& frame = Top();
  const std::size_t start = position;
  while (position < end && IsModifierByte(frame.bytes[position])) ++position;
  attribute.SetModifier(Shared(frame.bytes.substr(start, position - start)));
  has_value = position < end;
  if (!has_value) return IMEPERR_NONE;
  if (frame.bytes[position] != ':') {
    return Fail(IMEPERR_BAD_SEPARATOR, position, {{"%c", frame.bytes.substr(position, 1)}});
  }
  position = Skip(frame.bytes, position + 1, end, kWhite);
  return IMEPERR_NONE;
}

IxoMepErrorEnum Grammar::ReadAttributeValue(IxoMepAttribute& attribute, std::size_t start,
                                            std::size_t position, std::size_t end) {
  ReadingFrame& frame = Top();
  if (position >= end) return Fail(IMEPERR_VALUE_EXPECTED, position);
  if (frame.bytes[position] == '{' && !OpensArray(position)) {
    const std::size_t close = frame.extents->MatchingBrace(position, frame.end, start);
    if (close == kNoMatch) return Fail(IMEPERR_CLOSER_EXPECTED, position, {{"%1", "}"}});
    return ReadBody(position, close, ReadingFrame::Kind::AttributeBody, &attribute.body_);
  }
  IxoMepErrorEnum code = IMEPERR_NONE;
  attribute.value_ = ReadValue(position, code);
  if (attribute.value_ == nullptr) return code;
  frame.position = position;
  frame.at_statement_start = false;
  if (position >= end || Is(frame.bytes[position], kWhite)) return IMEPERR_NONE;
  const IxoMepValue& value = *attribute.value_;
  const IxoMepValueType type = value.GetType();
  const bool must_end = type == IxoMepValueType::String || type == IxoMepValueType::Expression ||
                        IsNumber(type) || (type == IxoMepValueType::Reference && value.IsNum());
  return must_end ? FailAfterValue(value, position) : IMEPERR_NONE;
}

}  // namespace ixomep
