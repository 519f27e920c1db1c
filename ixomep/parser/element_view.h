// Internal: an element or attribute to look at, whether it is an object or still a record. A walk
// over views makes no objects but the parsers of bodies. What a view gives is borrowed and lasts
// as long as the parser's elements. Making a name's text or a body may throw std::bad_alloc.
#pragma once

#include <cstdint>
#include <string_view>

#include "ixomep/parser/document.h"
#include "ixomep/parser/element.h"
#include "ixomep/values/value.h"

namespace ixomep {

// The current element of a parser that has none.
IxoMepElement* EmptyElement() noexcept;

// A stored value: an object, a literal that is read when it is asked for, or none.
class ValueView {
 public:
  ValueView() = default;
  explicit ValueView(const IxoMepValue* made) noexcept : made_(made) {}
  ValueView(const Document& document, const LiteralRecord& literal) noexcept
      : document_(&document), literal_(&literal) {}

  explicit operator bool() const noexcept { return made_ != nullptr || literal_ != nullptr; }
  // The value; `room` keeps one that is no object. Null when there is none.
  const IxoMepValue* Get(IxoMepValue& room) const {
    if (literal_ == nullptr) return made_;
    room = document_->ReadLiteral(*literal_);
    return &room;
  }
  // The text of a string literal without escapes, as it stands; false for any other value.
  bool GetPlainText(std::string_view& text) const noexcept {
    if (literal_ == nullptr || literal_->Kind() != LiteralKind::String) return false;
    text = document_->Text().view().substr(literal_->at, literal_->size);
    return true;
  }

 private:
  const IxoMepValue* made_ = nullptr;
  const Document* document_ = nullptr;
  const LiteralRecord* literal_ = nullptr;
};

class AttributeView {
 public:
  AttributeView() = default;
  explicit AttributeView(const IxoMepAttribute* made) noexcept : made_(made) {}
  AttributeView(const Document& document, const AttributeRecord& record) noexcept
      : document_(&document), record_(&record) {}

  explicit operator bool() const noexcept { return made_ != nullptr || record_ != nullptr; }
  const String& Name() const;
  const String& Modifier() const;
  // Null when there is none.
  IxoMepParser* Body() const;
  bool HasValue() const noexcept;
  // Whether Value gives the value; else the element must become an object first.
  bool IsValueReadable() const noexcept;
  ValueView Value() const noexcept;

 private:
  const IxoMepAttribute* made_ = nullptr;
  const Document* document_ = nullptr;
  const AttributeRecord* record_ = nullptr;
};

class ElementView {
 public:
  ElementView() = default;
  explicit ElementView(const IxoMepElement* made) noexcept : made_(made) {}
  ElementView(const Document& document, std::uint32_t index, bool is_loose) noexcept
      : document_(&document), record_(&document.Element(index)), is_loose_(is_loose) {}
  // The element of a parser; none when the index is out of range.
  static ElementView Of(const IxoMepParser& parser, std::int32_t index) noexcept;

  explicit operator bool() const noexcept { return made_ != nullptr || record_ != nullptr; }
  bool IsRecord() const noexcept { return record_ != nullptr; }
  const String& Keyword() const;
  std::int32_t StartOffset() const noexcept;
  // Null when there is none.
  IxoMepParser* Body() const;
  bool HasValue() const noexcept;
  bool IsValueReadable() const noexcept;
  ValueView Value() const noexcept;
  std::int32_t AttrCount() const noexcept;
  // None when the position is out of range; when there is no such attribute.
  AttributeView Attr(std::int32_t position) const noexcept;
  AttributeView FindAttr(std::string_view name) const noexcept;

 private:
  const IxoMepElement* made_ = nullptr;
  const Document* document_ = nullptr;
  const ElementRecord* record_ = nullptr;
  bool is_loose_ = false;
};

}  // namespace ixomep
