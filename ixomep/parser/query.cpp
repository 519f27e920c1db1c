// Walking the elements of a parsed text: indices, names, modifiers, stored values, bodies and
// copies of expression objects. Nothing here evaluates; typed values are in query_values.cpp.
#include <algorithm>

#include "ixomep/expr/expression_parser.h"
#include "ixomep/parser/element_view.h"
#include "ixomep/parser/parser.h"
#include "ixomep/parser/query_support.h"

using ixomep::AttributeRecord;
using ixomep::AttributeView;
using ixomep::ElementView;
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
  if (IsBodyNumber()) {
    const ixomep::Document& document = BodyDocument();
    if (at >= document.CountOf(BodyNumber())) return false;
    const std::uint32_t record = document.Body(BodyNumber()).first + at;
    const bool is_object = document.MadeElement(record) != nullptr;
    PlaceAt(BodyNumber(), is_object ? record | kIsObject : record);
    return true;
  }
  ixomep::ParserState& state = State();
  if (state.records == nullptr) {
    if (at >= state.elements.size()) return false;
    state.current = state.elements[at].get();
  } else {
    if (at >= state.record_count) return false;
    const std::uint32_t record = state.first_record + at;
    const bool is_record = state.records->MadeElement(record) == nullptr;
    state.current_record = is_record ? &state.records->Element(record) : nullptr;
  }
  state.current_index = index;
  return true;
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

std::int32_t IxoMepParser::GetAttrCount() const { return CurrentView().AttrCount(); }

std::int32_t IxoMepParser::GetAttrCount(std::int32_t index) const {
  const ElementView element = ViewAt(index);
  return element ? element.AttrCount() : 0;
}

String IxoMepParser::GetAttrNameOfPos(std::int32_t pos) const {
  if (const AttributeRecord* const record = CurrentAttribute(pos)) {
    return TextOf(CurrentDocument().Names(), record->name);
  }
  return NameAt(pos);
}

[[gnu::noinline]] String IxoMepParser::NameAt(std::int32_t pos) const noexcept {
  return NameOf(CurrentView().Attr(pos));
}

String IxoMepParser::GetAttrNameOfPos(std::int32_t index, std::int32_t pos) const {
  const ElementView element = ViewAt(index);
  return element ? NameOf(element.Attr(pos)) : String();
}

String IxoMepParser::GetModifierOfPos(std::int32_t pos) const {
  if (const AttributeRecord* const record = CurrentAttribute(pos)) {
    if (record->modifier == ixomep::NameTable::kNoName) return String();
    return TextOf(CurrentDocument().Names(), record->modifier);
  }
  return ModifierAt(pos);
}

[[gnu::noinline]] String IxoMepParser::ModifierAt(std::int32_t pos) const noexcept {
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

IxoMepParser* IxoMepParser::GetBodyParser() const { return BodyOf(CurrentView()); }

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
