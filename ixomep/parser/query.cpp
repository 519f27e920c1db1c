// Walking the elements of a parsed text: indices, names, modifiers, stored values, bodies and
// copies of expression objects. Nothing here evaluates; typed values are in query_values.cpp.
#include <algorithm>

#include "ixomep/expr/expression_parser.h"
#include "ixomep/parser/element_view.h"
#include "ixomep/parser/parser.h"
#include "ixomep/parser/query_support.h"

using ixomep::AttributeRecord;
using ixomep::AttributeView;
using ixomep::Cursor;
using ixomep::ElementView;
using ixomep::last_asked;
using ixomep::OrNeutral;

namespace {

String NameOf(const AttributeView& attribute) noexcept {
  return OrNeutral(String(), [&] { return attribute ? attribute.Name() : String(); });
}

String ModifierOf(const AttributeView& attribute) noexcept {
  return OrNeutral(String(), [&] { return attribute ? attribute.Modifier() : String(); });
}

[[gnu::noinline]] String MadeText(const ixomep::NameTable& names, std::uint32_t number) noexcept {
  return OrNeutral(String(), [&] { return names.Text(number); });
}

// The text of a name in records, mostly made before.
inline String TextOf(const ixomep::NameTable& names, std::uint32_t number) noexcept {
  if (const String* const text = names.KnownText(number)) [[likely]]
    return *text;
  return MadeText(names, number);
}

IxoMepParser* MadeBody(const ixomep::Document& document, std::uint32_t body) noexcept {
  return OrNeutral<IxoMepParser*>(nullptr, [&] { return document.BodyParser(body); });
}

template <class View>
IxoMepParser* BodyOf(const View& view) noexcept {
  return OrNeutral<IxoMepParser*>(nullptr, [&] { return view ? view.Body() : nullptr; });
}

IxoMepValue* ValueOf(const IxoMepAttribute* attribute) noexcept {
  return attribute != nullptr ? attribute->GetValue() : nullptr;
}

IxoMepExpressionParser* CopyOf(const IxoMepExpressionParser* expression) noexcept {
  if (expression == nullptr) return nullptr;
  return OrNeutral<IxoMepExpressionParser*>(nullptr, [&] { return expression->CreateCopy(); });
}

IxoMepExpressionParser* CopyOfExpression(const IxoMepValue* value) noexcept {
  return CopyOf(value != nullptr ? value->GetExpr() : nullptr);
}

}  // namespace

// --- Elements ---------------------------------------------------------------------------------

std::int32_t IxoMepParser::GetElemCount() const noexcept {
  if (IsBodyNumber()) return static_cast<std::int32_t>(BodyDocument().CountOf(BodyNumber()));
  const ixomep::ParserState& state = State();
  return static_cast<std::int32_t>(state.records != nullptr ? state.record_count
                                                            : state.elements.size());
}

std::int32_t IxoMepParser::GetCurElemIndex() const noexcept {
  if (!IsBodyNumber()) return State().current_index;
  if (CurrentNumber() == ixomep::kNoRecord) return -1;
  // -1 also for the loose attributes, which stand before the first element.
  return static_cast<std::int32_t>((CurrentNumber() & ~kIsObject) - BodyOfNumber().first);
}

bool IxoMepParser::SetCurElemIndex(std::int32_t index) {
  const auto at = static_cast<std::uint32_t>(index);
  Cursor& cursor = last_asked;
  if (!cursor.IsAt(this)) return GoTo(at);
  if (at >= cursor.count) return false;
  const std::uint32_t number = cursor.first + at;
  if (cursor.document->MadeElement(number) != nullptr) [[unlikely]]
    return GoTo(at);
  cursor.StandAt(cursor.document->Element(number), /*is_without_element=*/false);
  if (IsBodyNumber()) {
    PlaceAt(BodyNumber(), number);
  } else {
    State().current_record = cursor.record;
    State().current_index = index;
  }
  return true;
}

[[gnu::noinline]] bool IxoMepParser::GoTo(std::uint32_t at) noexcept {
  const ixomep::RecordRange records = Records();
  if (records.document == nullptr) {
    ixomep::ParserState& state = State();
    if (at >= state.elements.size()) return false;
    state.current = state.elements[at].get();
    state.current_index = static_cast<std::int32_t>(at);
    return true;
  }
  if (at >= records.count) return false;
  const std::uint32_t number = records.first + at;
  const bool is_record = records.document->MadeElement(number) == nullptr;
  const ixomep::ElementRecord& record = records.document->Element(number);
  if (IsBodyNumber()) {
    PlaceAt(BodyNumber(), is_record ? number : number | kIsObject);
  } else {
    State().current_record = is_record ? &record : nullptr;
    State().current_index = static_cast<std::int32_t>(at);
  }
  last_asked.Forget(this);
  if (is_record) last_asked = Cursor(this, records, record, /*is_without_element=*/false);
  return true;
}

[[gnu::noinline]] void IxoMepParser::Aim() const noexcept {
  const ixomep::ElementRecord* const record = FindRecord();
  if (record == nullptr || last_asked.IsAt(this)) return;
  last_asked = Cursor(this, Records(), *record, GetCurElemIndex() < 0);
}

const IxoMepElement* IxoMepParser::GetElement(std::int32_t index) const noexcept {
  return ElementAt(index);
}

const IxoMepElement* IxoMepParser::GetCurElement() const noexcept { return &Current(); }

const IxoMepElement* IxoMepParser::GetLooseAttributes() const noexcept { return Loose(); }

String IxoMepParser::GetKeyword(std::int32_t index) const {
  const ElementView element = ViewAt(index);
  return OrNeutral(String(), [&] { return element ? element.Keyword() : String(); });
}

String IxoMepParser::GetElemText(std::int32_t index) const {
  const ElementView element = ViewAt(index);
  if (!element) return String();
  const std::int32_t start = element.StartOffset();
  const ElementView next = ViewAt(index + 1);
  // The elements of a second Parse start again from the front of the text.
  const bool ends_at_next = next && next.StartOffset() > start;
  const std::int32_t end = ends_at_next ? next.StartOffset() : StartOffset() + GetTextLen();
  return CopyText(start, std::max(end - start, 0));
}

// --- Attributes -------------------------------------------------------------------------------

std::int32_t IxoMepParser::GetAttrCount() const {
  if (!last_asked.IsAt(this)) [[unlikely]]
    return CountAttributes();
  return static_cast<std::int32_t>(last_asked.attribute_count);
}

[[gnu::noinline]] std::int32_t IxoMepParser::CountAttributes() const noexcept {
  Aim();
  return CurrentView().AttrCount();
}

std::int32_t IxoMepParser::GetAttrCount(std::int32_t index) const {
  const ElementView element = ViewAt(index);
  return element ? element.AttrCount() : 0;
}

String IxoMepParser::GetAttrNameOfPos(std::int32_t pos) const {
  if (!last_asked.HasAttribute(this, pos)) [[unlikely]]
    return NameAt(pos);
  return TextOf(last_asked.document->Names(), last_asked.attributes[pos].name);
}

[[gnu::noinline]] String IxoMepParser::NameAt(std::int32_t pos) const noexcept {
  Aim();
  return NameOf(CurrentView().Attr(pos));
}

String IxoMepParser::GetAttrNameOfPos(std::int32_t index, std::int32_t pos) const {
  const ElementView element = ViewAt(index);
  return element ? NameOf(element.Attr(pos)) : String();
}

String IxoMepParser::GetModifierOfPos(std::int32_t pos) const {
  if (!last_asked.HasAttribute(this, pos)) [[unlikely]]
    return ModifierAt(pos);
  const std::uint32_t modifier = last_asked.attributes[pos].modifier;
  if (modifier == ixomep::NameTable::kNoName) return String();
  return TextOf(last_asked.document->Names(), modifier);
}

[[gnu::noinline]] String IxoMepParser::ModifierAt(std::int32_t pos) const noexcept {
  Aim();
  return ModifierOf(CurrentView().Attr(pos));
}

String IxoMepParser::GetModifierOfPos(std::int32_t index, std::int32_t pos) const {
  const ElementView element = ViewAt(index);
  return element ? ModifierOf(element.Attr(pos)) : String();
}

bool IxoMepParser::IsContained(const String& name) const {
  return static_cast<bool>(CurrentView().FindAttr(name));
}

bool IxoMepParser::IsContained(std::int32_t index, const String& name) const {
  const ElementView element = ViewAt(index);
  return element && element.FindAttr(name);
}

String IxoMepParser::GetModifier(const String& name) const {
  return ModifierOf(CurrentView().FindAttr(name));
}

bool IxoMepParser::GetModifier(const String& name, String& modifier) const {
  const AttributeView attribute = CurrentView().FindAttr(name);
  if (!attribute) return false;
  modifier = ModifierOf(attribute);
  return true;
}

// --- Stored values, bodies, expression objects --------------------------------------------------

IxoMepValue* IxoMepParser::GetValue() const {
  return CurrentView().HasValue() ? Current().GetValue() : nullptr;
}

IxoMepValue* IxoMepParser::GetValue(const String& name) const {
  const AttributeView attribute = CurrentView().FindAttr(name);
  return attribute && attribute.HasValue() ? ValueOf(Current().FindAttr(name)) : nullptr;
}

IxoMepValue* IxoMepParser::GetValueOfPos(std::int32_t pos) const {
  const AttributeView attribute = CurrentView().Attr(pos);
  return attribute && attribute.HasValue() ? ValueOf(Current().GetAttr(pos)) : nullptr;
}

IxoMepParser* IxoMepParser::GetBodyParser() const {
  if (!last_asked.IsAt(this)) [[unlikely]]
    return Body();
  const std::uint32_t body = last_asked.record->body;
  return body != ixomep::kNoRecord ? MadeBody(*last_asked.document, body) : nullptr;
}

[[gnu::noinline]] IxoMepParser* IxoMepParser::Body() const noexcept {
  Aim();
  return BodyOf(CurrentView());
}

IxoMepParser* IxoMepParser::GetBodyParser(const String& name) const {
  return BodyOf(CurrentView().FindAttr(name));
}

IxoMepParser* IxoMepParser::GetBodyParser(std::int32_t index) const {
  return BodyOf(ViewAt(index));
}

IxoMepParser* IxoMepParser::GetBodyParserOfPos(std::int32_t pos) const {
  return BodyOf(CurrentView().Attr(pos));
}

IxoMepExpressionParser* IxoMepParser::CreateExprParserCopy() const {
  return CopyOfExpression(GetValue());
}

IxoMepExpressionParser* IxoMepParser::CreateExprParserCopy(const String& name) const {
  return CopyOfExpression(GetValue(name));
}

IxoMepExpressionParser* IxoMepParser::CreateExprParserCopyOfPos(std::int32_t pos) const {
  return CopyOfExpression(GetValueOfPos(pos));
}

IxoMepExpressionParser* IxoMepParser::GetArrayLValueCopyOfPos(std::int32_t pos) const {
  const IxoMepAttribute* const attribute = Current().GetAttr(pos);
  return CopyOf(attribute != nullptr ? attribute->GetArrayLValue() : nullptr);
}
