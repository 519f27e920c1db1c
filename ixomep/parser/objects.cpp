// The elements of a parser as objects: made of the records when somebody asks for one, and then
// kept at their address. See document.h.
#include <exception>

#include "ixomep/host/memory_budget.h"
#include "ixomep/parser/document.h"
#include "ixomep/parser/element_view.h"
#include "ixomep/parser/parser.h"
#include "ixomep/parser/query_support.h"

using ixomep::AttributeView;
using ixomep::ValueView;

IxoMepElement* IxoMepParser::ElementAt(std::int32_t index) const noexcept {
  if (index < 0 || index >= GetElemCount()) return nullptr;
  const auto at = static_cast<std::uint32_t>(index);
  const ixomep::RecordRange records = Records();
  if (records.document == nullptr) return State().elements[at].get();
  return ObjectOf(records.first + at, /*is_loose=*/false);
}

IxoMepElement* IxoMepParser::Loose() const noexcept {
  const ixomep::RecordRange records = Records();
  if (records.document == nullptr) return State().loose.get();
  return records.has_loose ? ObjectOf(records.first - 1, /*is_loose=*/true) : nullptr;
}

IxoMepElement* IxoMepParser::ObjectOf(std::uint32_t record, bool is_loose) const noexcept {
  const ixomep::Document& document = *Records().document;
  try {
    IxoMepElement* const object =
        document.ElementObject(record, is_loose, const_cast<IxoMepParser*>(this));
    if (CurrentRecord() == &document.Element(record)) {
      ixomep::last_asked.Forget(this);
      if (IsBodyNumber()) {
        PlaceAt(BodyNumber(), record | kIsObject);
      } else {
        State().current_record = nullptr;
      }
    }
    return object;
  } catch (const std::exception&) {
    return nullptr;
  }
}

const IxoMepElement* IxoMepParser::CurrentObject() const noexcept {
  const ixomep::RecordRange records = Records();
  if (records.document == nullptr) return State().current;
  const std::int32_t index = GetCurElemIndex();
  if (index < 0 && !records.has_loose) return ixomep::EmptyElement();
  return records.document->MadeElement(records.first + static_cast<std::uint32_t>(index));
}

IxoMepElement& IxoMepParser::Current() const noexcept {
  if (Records().document == nullptr) return *State().current;
  const std::int32_t index = GetCurElemIndex();
  IxoMepElement* const made = index >= 0 ? ElementAt(index) : Loose();
  return made != nullptr ? *made : *ixomep::EmptyElement();
}

void IxoMepParser::MakeAll() {
  ixomep::ParserState& state = OwnState();
  if (state.records == nullptr) return;
  for (std::int32_t i = 0; i < GetElemCount(); ++i) {
    if (ElementAt(i) == nullptr) ixomep::MemoryBudget::Refuse();
  }
  if (state.has_loose_record && Loose() == nullptr) ixomep::MemoryBudget::Refuse();
  state.current = &Current();
  state.elements.resize(state.record_count);
  for (std::uint32_t i = 0; i < state.record_count; ++i) {
    state.elements[i] = state.records->TakeObject(state.first_record + i);
  }
  if (state.has_loose_record) state.loose = state.records->TakeObject(state.first_record - 1);
  ForgetRecords();
}

void IxoMepParser::ForgetRecords() noexcept {
  ixomep::last_asked.Forget(this);
  ixomep::ParserState& state = State();
  if (state.records == nullptr) return;
  if (state.is_body) {
    state.first_line = ixomep::OrNeutral(
        0, [&state] { return state.records->LineAt(static_cast<std::uint32_t>(state.start)); });
  }
  const std::uint32_t end = state.first_record + state.record_count;
  for (std::uint32_t i = state.first_record - (state.has_loose_record ? 1 : 0); i < end; ++i) {
    state.records->TakeObject(i).reset();
  }
  state.records = nullptr;
  state.record_count = 0;
  state.has_loose_record = false;
  state.current_record = nullptr;
}

// What is to be evaluated becomes an object first, so that it is compiled once.

ValueView IxoMepParser::OwnValue() const noexcept {
  const ixomep::ElementRecord* const record = CurrentRecord();
  const ValueView value = record != nullptr ? ValueView(CurrentDocument(), record->literal)
                                            : ValueView(CurrentObject()->GetValue());
  return value.IsSource() && GetVars() != nullptr ? ValueView(Current().GetValue()) : value;
}

ValueView IxoMepParser::NamedValue(const String& name) const noexcept {
  if (const ixomep::LiteralRecord* const literal = NamedLiteral(name)) {
    const ValueView value(CurrentDocument(), *literal);
    if (!value.IsSource() || GetVars() == nullptr) return value;
  } else if (CurrentRecord() != nullptr) {
    return {};
  }
  const IxoMepAttribute* const made = Current().FindAttr(name);
  return made != nullptr ? ValueView(made->GetValue()) : ValueView();
}

ValueView IxoMepParser::ValueAt(std::int32_t pos) const noexcept {
  const AttributeView attribute = CurrentView().Attr(pos);
  if (!attribute) return {};
  const ValueView value = attribute.Value();
  if (!value.IsSource() || GetVars() == nullptr) return value;
  const IxoMepAttribute* const made = Current().GetAttr(pos);
  return made != nullptr ? ValueView(made->GetValue()) : ValueView();
}
