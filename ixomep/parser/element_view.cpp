// Views of elements and attributes. See element_view.h.
#include "ixomep/parser/element_view.h"

#include "ixomep/parser/parser.h"

namespace ixomep {
namespace {

bool IsReadable(const LiteralRecord& literal) noexcept {
  return literal.Kind() != LiteralKind::Made;
}

bool IsValue(const LiteralRecord& literal) noexcept {
  return literal.Kind() != LiteralKind::None && literal.Kind() != LiteralKind::Body;
}

ValueView ViewOf(const Document& document, const LiteralRecord& literal) noexcept {
  if (!IsValue(literal) || !IsReadable(literal)) return {};
  return ValueView(document, literal);
}

}  // namespace

IxoMepElement* EmptyElement() noexcept {
  static IxoMepElement empty;
  return &empty;
}

const String& AttributeView::Name() const {
  return made_ != nullptr ? made_->GetName() : document_->Names().Text(record_->name);
}

const String& AttributeView::Modifier() const {
  return made_ != nullptr ? made_->GetModifier() : document_->Names().Text(record_->modifier);
}

IxoMepParser* AttributeView::Body() const {
  if (made_ != nullptr) return made_->GetBodyParser();
  const bool has_body = record_->literal.Kind() == LiteralKind::Body;
  return has_body ? document_->BodyParser(record_->literal.at) : nullptr;
}

bool AttributeView::HasValue() const noexcept {
  return made_ != nullptr ? made_->GetValue() != nullptr : IsValue(record_->literal);
}

bool AttributeView::IsValueReadable() const noexcept {
  return made_ != nullptr || IsReadable(record_->literal);
}

ValueView AttributeView::Value() const noexcept {
  return made_ != nullptr ? ValueView(made_->GetValue()) : ViewOf(*document_, record_->literal);
}

ElementView ElementView::Of(const IxoMepParser& parser, std::int32_t index) noexcept {
  return parser.ViewAt(index);
}

const String& ElementView::Keyword() const {
  return made_ != nullptr ? made_->GetKeyword() : document_->Names().Text(record_->keyword);
}

std::int32_t ElementView::StartOffset() const noexcept {
  if (made_ != nullptr) return made_->GetStartOffset();
  return is_loose_ ? -1 : static_cast<std::int32_t>(record_->start);
}

IxoMepParser* ElementView::Body() const {
  if (made_ != nullptr) return made_->GetBodyParser();
  return record_->body != kNoRecord ? document_->BodyParser(record_->body) : nullptr;
}

bool ElementView::HasValue() const noexcept {
  return made_ != nullptr ? made_->GetValue() != nullptr : IsValue(record_->literal);
}

bool ElementView::IsValueReadable() const noexcept {
  return made_ != nullptr || IsReadable(record_->literal);
}

ValueView ElementView::Value() const noexcept {
  return made_ != nullptr ? ValueView(made_->GetValue()) : ViewOf(*document_, record_->literal);
}

std::int32_t ElementView::AttrCount() const noexcept {
  return made_ != nullptr ? made_->GetAttrCount()
                          : static_cast<std::int32_t>(record_->attribute_count);
}

AttributeView ElementView::Attr(std::int32_t position) const noexcept {
  if (made_ != nullptr) return AttributeView(made_->GetAttr(position));
  if (position < 0 || position >= AttrCount()) return {};
  return {*document_,
          document_->Attribute(record_->first_attribute + static_cast<std::uint32_t>(position))};
}

AttributeView ElementView::FindAttr(std::string_view name) const noexcept {
  if (made_ != nullptr) return AttributeView(made_->FindAttr(name));
  const std::uint32_t index = document_->FindAttribute(*record_, name);
  if (index == kNoRecord) return {};
  return {*document_, document_->Attribute(index)};
}

}  // namespace ixomep
