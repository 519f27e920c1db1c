// Internal: an element or attribute to look at, whether it is an object or still a record. A walk
// over views makes no objects but the parsers of bodies, and one over the views of bodies not even
// those. What a view gives is borrowed and lasts as long as the parser's elements. Making a name's
// text or a body's parser may throw std::bad_alloc.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "ixomep/parser/cursor.h"
#include "ixomep/parser/document.h"
#include "ixomep/parser/element.h"
#include "ixomep/parser/parser.h"
#include "ixomep/parser/parser_state.h"
#include "ixomep/values/value.h"

namespace ixomep {

class ElementView;

// A stored value: an object, a literal that is read when it is asked for, or none.
class ValueView {
 public:
  ValueView() = default;
  explicit ValueView(const IxoMepValue* made) noexcept : made_(made) {}
  ValueView(const Document& document, const LiteralRecord& literal) noexcept;

  explicit operator bool() const noexcept { return made_ != nullptr || literal_ != nullptr; }
  // The value; `room` keeps one that is no object. Null when there is none.
  const IxoMepValue* Get(IxoMepValue& room) const {
    if (literal_ == nullptr) return made_;
    room = document_->ReadLiteral(*literal_);
    return &room;
  }
  // An expression that is compiled for every use: better done once, by the object.
  bool IsSource() const noexcept {
    return literal_ != nullptr && literal_->Kind() == LiteralKind::Source;
  }
  // The type of the value; false when it takes reading the literal to tell.
  bool GetType(IxoMepValueType& type) const noexcept;
  // Of a literal that is read when it is asked for: its kind, and its text, between its quotes or
  // brackets. None for other values.
  LiteralKind Kind() const noexcept {
    return literal_ != nullptr ? literal_->Kind() : LiteralKind::None;
  }
  std::string_view Source() const noexcept {
    return document_->Text().view().substr(literal_->at, literal_->size);
  }

  // The end of the definition text that Source is a part of.
  const char* TextEnd() const noexcept {
    return document_->Text().c_str() + document_->Text().Len();
  }

 private:
  const IxoMepValue* made_ = nullptr;
  const Document* document_ = nullptr;
  const LiteralRecord* literal_ = nullptr;
};

// A body, whether it has a parser or not.
class BodyView {
 public:
  BodyView() = default;
  explicit BodyView(IxoMepParser* made) noexcept : made_(made) {}
  BodyView(const Document& document, std::uint32_t index) noexcept
      : document_(&document), index_(index) {}

  explicit operator bool() const noexcept { return made_ != nullptr || document_ != nullptr; }
  // Null when there is none yet. The host may ask for it at any time, and give it another text.
  IxoMepParser* Parser() const noexcept {
    return document_ != nullptr ? document_->MadeParser(index_) : made_;
  }
  std::int32_t Count() const noexcept;
  // The element at an index, which becomes current where there is a parser; none when the index
  // is out of range.
  ElementView Enter(std::int32_t index) const;
  // The last element is current now, also for a parser that is made later.
  void LeaveAtLast() const;
  // What stands between the braces; `room` keeps a text that has to be put together.
  std::string_view Text(String& room) const;

 private:
  IxoMepParser* made_ = nullptr;
  const Document* document_ = nullptr;
  std::uint32_t index_ = 0;
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
  std::string_view NameBytes() const noexcept;
  std::string_view ModifierBytes() const noexcept;
  // Null, none, when there is none.
  IxoMepParser* Body() const;
  BodyView BodyPlace() const noexcept;
  bool HasValue() const noexcept;
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
  ElementView(const Document& document, const ElementRecord& record, bool is_loose) noexcept
      : document_(&document), record_(&record), is_loose_(is_loose) {}
  // The element of a parser; none when the index is out of range.
  static ElementView Of(const IxoMepParser& parser, std::int32_t index) noexcept;

  explicit operator bool() const noexcept { return made_ != nullptr || record_ != nullptr; }
  bool IsRecord() const noexcept { return record_ != nullptr; }
  const Document* Records() const noexcept { return record_ != nullptr ? document_ : nullptr; }
  const ElementRecord& Record() const noexcept { return *record_; }
  const String& Keyword() const;
  std::string_view KeywordBytes() const noexcept;
  std::int32_t StartOffset() const noexcept;
  // Null, none, when there is none.
  IxoMepParser* Body() const;
  BodyView BodyPlace() const noexcept;
  bool HasValue() const noexcept;
  ValueView Value() const noexcept;
  std::int32_t AttrCount() const noexcept;
  // None when the position is out of range; when there is no such attribute.
  AttributeView Attr(std::int32_t position) const noexcept;
  template <class Name>
  AttributeView FindAttr(const Name& name) const noexcept;

 private:
  const IxoMepElement* made_ = nullptr;
  const Document* document_ = nullptr;
  const ElementRecord* record_ = nullptr;
  bool is_loose_ = false;
};

inline bool IsValue(const LiteralRecord& literal) noexcept {
  return literal.Kind() != LiteralKind::None && literal.Kind() != LiteralKind::Body;
}

// The types of the values of literals, by kind; kOpenType for one that has to be read, or
// evaluated, to tell.
inline constexpr auto kOpenType = static_cast<IxoMepValueType>(-1);
inline constexpr std::array<IxoMepValueType, 16> kLiteralTypes = [] {
  std::array<IxoMepValueType, 16> types{};
  types.fill(kOpenType);
  const auto set = [&types](LiteralKind kind, IxoMepValueType type) {
    types[static_cast<std::size_t>(kind)] = type;
  };
  set(LiteralKind::None, IxoMepValueType::Undefined);
  set(LiteralKind::Body, IxoMepValueType::Undefined);
  set(LiteralKind::String, IxoMepValueType::String);
  set(LiteralKind::Escaped, IxoMepValueType::String);
  set(LiteralKind::Integer, IxoMepValueType::Integer);
  set(LiteralKind::Real, IxoMepValueType::Real);
  set(LiteralKind::Measure, IxoMepValueType::Measure);
  set(LiteralKind::Time, IxoMepValueType::Time);
  set(LiteralKind::Source, IxoMepValueType::Expression);
  return types;
}();

// The same where an expression may have to be evaluated.
inline constexpr auto kSettledTypes = [] {
  auto types = kLiteralTypes;
  types[static_cast<std::size_t>(LiteralKind::Source)] = kOpenType;
  return types;
}();

// False when the literal alone does not tell.
inline bool GetLiteralType(const LiteralRecord& literal, IxoMepValueType& type) noexcept {
  const IxoMepValueType found = kLiteralTypes[literal.kind];
  if (found == kOpenType) return false;
  type = found;
  return true;
}

inline ValueView::ValueView(const Document& document, const LiteralRecord& literal) noexcept {
  if (!IsValue(literal)) return;
  if (literal.Kind() == LiteralKind::Made) {
    made_ = document.Made(literal);
    return;
  }
  document_ = &document;
  literal_ = &literal;
}

inline bool ValueView::GetType(IxoMepValueType& type) const noexcept {
  if (literal_ == nullptr) {
    type = made_ != nullptr ? made_->GetType() : IxoMepValueType::Undefined;
    return true;
  }
  return GetLiteralType(*literal_, type);
}

inline const String& AttributeView::Name() const {
  return made_ != nullptr ? made_->GetName() : document_->Names().Text(record_->name);
}

inline const String& AttributeView::Modifier() const {
  return made_ != nullptr ? made_->GetModifier() : document_->Names().Text(record_->modifier);
}

inline std::string_view AttributeView::NameBytes() const noexcept {
  return made_ != nullptr ? made_->GetName().view() : document_->Names().View(record_->name);
}

inline std::string_view AttributeView::ModifierBytes() const noexcept {
  return made_ != nullptr ? made_->GetModifier().view()
                          : document_->Names().View(record_->modifier);
}

inline BodyView AttributeView::BodyPlace() const noexcept {
  if (made_ != nullptr) return BodyView(made_->GetBodyParser());
  const bool has_body = record_->literal.Kind() == LiteralKind::Body;
  return has_body ? BodyView(*document_, record_->literal.at) : BodyView();
}

inline IxoMepParser* AttributeView::Body() const {
  if (made_ != nullptr) return made_->GetBodyParser();
  const bool has_body = record_->literal.Kind() == LiteralKind::Body;
  return has_body ? document_->BodyParser(record_->literal.at) : nullptr;
}

inline bool AttributeView::HasValue() const noexcept {
  return made_ != nullptr ? made_->GetValue() != nullptr : IsValue(record_->literal);
}

inline ValueView AttributeView::Value() const noexcept {
  return made_ != nullptr ? ValueView(made_->GetValue()) : ValueView(*document_, record_->literal);
}

inline std::int32_t BodyView::Count() const noexcept {
  const IxoMepParser* const parser = Parser();
  return parser != nullptr ? parser->GetElemCount()
                           : static_cast<std::int32_t>(document_->CountOf(index_));
}

inline ElementView BodyView::Enter(std::int32_t index) const {
  if (IxoMepParser* const parser = Parser()) {
    parser->SetCurElemIndex(index);
    return ElementView::Of(*parser, index);
  }
  const auto at = static_cast<std::uint32_t>(index);
  if (at >= document_->CountOf(index_)) return {};
  return {*document_, document_->Element(document_->Body(index_).first + at), /*is_loose=*/false};
}

inline void BodyView::LeaveAtLast() const {
  if (document_ != nullptr) document_->LeaveAtLast(index_);
}

inline ElementView ElementView::Of(const IxoMepParser& parser, std::int32_t index) noexcept {
  return parser.ViewAt(index);
}

inline const String& ElementView::Keyword() const {
  return made_ != nullptr ? made_->GetKeyword() : document_->Names().Text(record_->keyword);
}

inline std::string_view ElementView::KeywordBytes() const noexcept {
  return made_ != nullptr ? made_->GetKeyword().view() : document_->Names().View(record_->keyword);
}

inline BodyView ElementView::BodyPlace() const noexcept {
  if (made_ != nullptr) return BodyView(made_->GetBodyParser());
  return record_->body != kNoRecord ? BodyView(*document_, record_->body) : BodyView();
}

inline std::int32_t ElementView::StartOffset() const noexcept {
  if (made_ != nullptr) return made_->GetStartOffset();
  return is_loose_ ? -1 : static_cast<std::int32_t>(record_->start);
}

inline IxoMepParser* ElementView::Body() const {
  if (made_ != nullptr) return made_->GetBodyParser();
  return record_->body != kNoRecord ? document_->BodyParser(record_->body) : nullptr;
}

inline bool ElementView::HasValue() const noexcept {
  return made_ != nullptr ? made_->GetValue() != nullptr : IsValue(record_->literal);
}

inline ValueView ElementView::Value() const noexcept {
  return made_ != nullptr ? ValueView(made_->GetValue()) : ValueView(*document_, record_->literal);
}

inline std::int32_t ElementView::AttrCount() const noexcept {
  return made_ != nullptr ? made_->GetAttrCount()
                          : static_cast<std::int32_t>(record_->attribute_count);
}

inline AttributeView ElementView::Attr(std::int32_t position) const noexcept {
  if (made_ != nullptr) return AttributeView(made_->GetAttr(position));
  if (position < 0 || position >= AttrCount()) return {};
  return {*document_,
          document_->Attribute(record_->first_attribute + static_cast<std::uint32_t>(position))};
}

// A String or a view.
template <class Name>
AttributeView ElementView::FindAttr(const Name& name) const noexcept {
  if (made_ != nullptr) return AttributeView(made_->FindAttr(name));
  const std::uint32_t index = document_->FindAttribute(*record_, name);
  if (index == kNoRecord) return {};
  return {*document_, document_->Attribute(index)};
}

}  // namespace ixomep

// A parser stands in the row of its document behind the slot that names it.
inline const ixomep::Document& IxoMepParser::BodyDocument() const noexcept {
  const auto* const slot = reinterpret_cast<const ixomep::BodySlot*>(this);
  return *(slot - 1 - BodyNumber())->document;
}

inline const ixomep::BodyRecord& IxoMepParser::BodyOfNumber() const noexcept {
  return BodyDocument().Body(BodyNumber());
}

inline ixomep::RecordRange IxoMepParser::Records() const noexcept {
  if (IsBodyNumber()) {
    const ixomep::Document& document = BodyDocument();
    const ixomep::BodyRecord& body = document.Body(BodyNumber());
    return {&document, body.first, document.CountOf(BodyNumber()), body.has_loose != 0};
  }
  const ixomep::ParserState& state = State();
  return {state.records, state.first_record, state.record_count, state.has_loose_record};
}

inline const ixomep::Document& IxoMepParser::CurrentDocument() const noexcept {
  const ixomep::Cursor& cursor = ixomep::last_asked;
  if (cursor.IsAt(this)) return *cursor.document;
  return IsBodyNumber() ? BodyDocument() : *State().records;
}

inline ixomep::ElementView IxoMepParser::ViewAt(std::int32_t index) const noexcept {
  const auto at = static_cast<std::uint32_t>(index);
  const ixomep::RecordRange records = Records();
  if (records.document == nullptr) {
    const auto& elements = State().elements;
    return at < elements.size() ? ixomep::ElementView(elements[at].get()) : ixomep::ElementView();
  }
  if (at >= records.count) return {};
  if (IxoMepElement* const made = records.document->MadeElement(records.first + at)) {
    return ixomep::ElementView(made);
  }
  return {*records.document, records.document->Element(records.first + at), /*is_loose=*/false};
}

inline ixomep::ElementView IxoMepParser::CurrentView() const noexcept {
  const ixomep::Cursor& cursor = ixomep::last_asked;
  if (cursor.IsAt(this)) return {*cursor.document, *cursor.record, cursor.is_loose};
  if (const ixomep::ElementRecord* const record = FindRecord()) {
    return {CurrentDocument(), *record, /*is_loose=*/GetCurElemIndex() < 0};
  }
  return ixomep::ElementView(CurrentObject());
}

inline const ixomep::ElementRecord* IxoMepParser::CurrentRecord() const noexcept {
  const ixomep::Cursor& cursor = ixomep::last_asked;
  return cursor.IsAt(this) ? cursor.record : FindRecord();
}

inline const ixomep::ElementRecord* IxoMepParser::FindRecord() const noexcept {
  if (!IsBodyNumber()) return State().current_record;
  const std::uint32_t number = CurrentNumber();
  return (number & kIsObject) == 0 ? &BodyDocument().Element(number) : nullptr;
}

inline const ixomep::LiteralRecord* IxoMepParser::NamedLiteral(const String& name) const noexcept {
  const ixomep::ElementRecord* const element = CurrentRecord();
  if (element == nullptr) return nullptr;
  const ixomep::Document& document = CurrentDocument();
  const std::uint32_t index = document.FindAttribute(*element, name);
  return index != ixomep::kNoRecord ? &document.Attribute(index).literal : nullptr;
}
