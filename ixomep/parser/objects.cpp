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
  const auto at = static_cast<std::size_t>(index);
  if (records_ == nullptr) return elements_[at].get();
  try {
    if (elements_.empty()) elements_.resize(record_count_);
    auto& element = elements_[at];
    if (element == nullptr) {
      element = records_->MakeElement(first_record_ + static_cast<std::uint32_t>(index),
                                      const_cast<IxoMepParser*>(this));
      if (index == current_index_) current_ = element.get();
    }
    return element.get();
  } catch (const std::exception&) {
    return nullptr;
  }
}

IxoMepElement* IxoMepParser::Loose() const noexcept {
  if (loose_ != nullptr || !has_loose_record_) return loose_.get();
  try {
    loose_ = records_->MakeLoose(first_record_ - 1, const_cast<IxoMepParser*>(this));
    if (current_ == nullptr && current_index_ < 0) current_ = loose_.get();
    return loose_.get();
  } catch (const std::exception&) {
    return nullptr;
  }
}

IxoMepElement& IxoMepParser::Current() const noexcept {
  if (current_ != nullptr) return *current_;
  IxoMepElement* const made = current_index_ >= 0 ? ElementAt(current_index_) : Loose();
  return made != nullptr ? *made : *ixomep::EmptyElement();
}

void IxoMepParser::MakeAll() {
  if (records_ == nullptr) return;
  for (std::int32_t i = 0; i < GetElemCount(); ++i) {
    if (ElementAt(i) == nullptr) ixomep::MemoryBudget::Refuse();
  }
  if (has_loose_record_ && Loose() == nullptr) ixomep::MemoryBudget::Refuse();
  ForgetRecords();
}

void IxoMepParser::ForgetRecords() noexcept {
  if (records_ == nullptr) return;
  if (is_body_) {
    first_line_ = ixomep::OrNeutral(
        0, [this] { return records_->LineAt(static_cast<std::uint32_t>(start_)); });
  }
  records_ = nullptr;
  record_count_ = 0;
  has_loose_record_ = false;
}

// What is to be evaluated becomes an object first, so that it is compiled once.

ValueView IxoMepParser::OwnValue() const noexcept {
  const ValueView value = CurrentView().Value();
  return value.IsSource() && vars_ != nullptr ? ValueView(Current().GetValue()) : value;
}

ValueView IxoMepParser::NamedValue(const String& name) const noexcept {
  const AttributeView attribute = CurrentView().FindAttr(name);
  if (!attribute) return {};
  const ValueView value = attribute.Value();
  if (!value.IsSource() || vars_ == nullptr) return value;
  const IxoMepAttribute* const made = Current().FindAttr(name);
  return made != nullptr ? ValueView(made->GetValue()) : ValueView();
}

ValueView IxoMepParser::ValueAt(std::int32_t pos) const noexcept {
  const AttributeView attribute = CurrentView().Attr(pos);
  if (!attribute) return {};
  const ValueView value = attribute.Value();
  if (!value.IsSource() || vars_ == nullptr) return value;
  const IxoMepAttribute* const made = Current().GetAttr(pos);
  return made != nullptr ? ValueView(made->GetValue()) : ValueView();
}
