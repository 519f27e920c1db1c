// Walking the elements of a parsed text: indices, names, modifiers, stored values, bodies and
// copies of expression objects. Nothing here evaluates; typed values are in query_values.cpp.
#include <algorithm>

#include "ixomep/expr/expression_parser.h"
#include "ixomep/parser/parser.h"
#include "ixomep/parser/query_support.h"

namespace {

String NameOf(const IxoMepAttribute* attribute) noexcept {
  return attribute != nullptr ? attribute->GetName() : String();
}

String ModifierOf(const IxoMepAttribute* attribute) noexcept {
  return attribute != nullptr ? attribute->GetModifier() : String();
}

IxoMepValue* ValueOf(const IxoMepAttribute* attribute) noexcept {
  return attribute != nullptr ? attribute->GetValue() : nullptr;
}

IxoMepParser* BodyOf(const IxoMepAttribute* attribute) noexcept {
  return attribute != nullptr ? attribute->GetBodyParser() : nullptr;
}

IxoMepExpressionParser* CopyOf(const IxoMepExpressionParser* expression) noexcept {
  if (expression == nullptr) return nullptr;
  return ixomep::OrNeutral<IxoMepExpressionParser*>(nullptr,
                                                    [&] { return expression->CreateCopy(); });
}

IxoMepExpressionParser* CopyOfExpression(const IxoMepValue* value) noexcept {
  return CopyOf(value != nullptr ? value->GetExpr() : nullptr);
}

}  // namespace

// --- Elements ---------------------------------------------------------------------------------

std::int32_t IxoMepParser::GetElemCount() const noexcept {
  return static_cast<std::int32_t>(elements_.size());
}

std::int32_t IxoMepParser::GetCurElemIndex() const noexcept { return current_index_; }

bool IxoMepParser::SetCurElemIndex(std::int32_t index) {
  if (index < 0 || index >= GetElemCount()) return false;
  SetCurrent(elements_[static_cast<std::size_t>(index)].get(), index);
  return true;
}

const IxoMepElement* IxoMepParser::GetElement(std::int32_t index) const noexcept {
  if (index < 0 || index >= GetElemCount()) return nullptr;
  return elements_[static_cast<std::size_t>(index)].get();
}

String IxoMepParser::GetKeyword(std::int32_t index) const {
  const IxoMepElement* const element = GetElement(index);
  return element != nullptr ? element->GetKeyword() : String();
}

String IxoMepParser::GetElemText(std::int32_t index) const {
  const IxoMepElement* const element = GetElement(index);
  if (element == nullptr) return String();
  const std::int32_t start = element->GetStartOffset();
  const IxoMepElement* const next = GetElement(index + 1);
  // The elements of a second Parse start again from the front of the text.
  const bool ends_at_next = next != nullptr && next->GetStartOffset() > start;
  const std::int32_t end = ends_at_next ? next->GetStartOffset() : start_ + length_;
  return CopyText(start, std::max(end - start, 0));
}

// --- Attributes -------------------------------------------------------------------------------

std::int32_t IxoMepParser::GetAttrCount() const { return current_->GetAttrCount(); }

std::int32_t IxoMepParser::GetAttrCount(std::int32_t index) const {
  const IxoMepElement* const element = GetElement(index);
  return element != nullptr ? element->GetAttrCount() : 0;
}

String IxoMepParser::GetAttrNameOfPos(std::int32_t pos) const {
  return NameOf(current_->GetAttr(pos));
}

String IxoMepParser::GetAttrNameOfPos(std::int32_t index, std::int32_t pos) const {
  const IxoMepElement* const element = GetElement(index);
  return element != nullptr ? NameOf(element->GetAttr(pos)) : String();
}

String IxoMepParser::GetModifierOfPos(std::int32_t pos) const {
  return ModifierOf(current_->GetAttr(pos));
}

String IxoMepParser::GetModifierOfPos(std::int32_t index, std::int32_t pos) const {
  const IxoMepElement* const element = GetElement(index);
  return element != nullptr ? ModifierOf(element->GetAttr(pos)) : String();
}

bool IxoMepParser::IsContained(const String& name) const {
  return current_->FindAttr(name) != nullptr;
}

bool IxoMepParser::IsContained(std::int32_t index, const String& name) const {
  const IxoMepElement* const element = GetElement(index);
  return element != nullptr && element->FindAttr(name) != nullptr;
}

String IxoMepParser::GetModifier(const String& name) const {
  return ModifierOf(current_->FindAttr(name));
}

bool IxoMepParser::GetModifier(const String& name, String& modifier) const {
  const IxoMepAttribute* const attribute = current_->FindAttr(name);
  if (attribute == nullptr) return false;
  modifier = attribute->GetModifier();
  return true;
}

// --- Stored values, bodies, expression objects --------------------------------------------------

IxoMepValue* IxoMepParser::GetValue() const { return current_->GetValue(); }

IxoMepValue* IxoMepParser::GetValue(const String& name) const {
  return ValueOf(current_->FindAttr(name));
}

IxoMepValue* IxoMepParser::GetValueOfPos(std::int32_t pos) const {
  return ValueOf(current_->GetAttr(pos));
}

IxoMepParser* IxoMepParser::GetBodyParser() const { return current_->GetBodyParser(); }

IxoMepParser* IxoMepParser::GetBodyParser(const String& name) const {
  return BodyOf(current_->FindAttr(name));
}

IxoMepParser* IxoMepParser::GetBodyParser(std::int32_t index) const {
  const IxoMepElement* const element = GetElement(index);
  return element != nullptr ? element->GetBodyParser() : nullptr;
}

IxoMepParser* IxoMepParser::GetBodyParserOfPos(std::int32_t pos) const {
  return BodyOf(current_->GetAttr(pos));
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
  const IxoMepAttribute* const attribute = current_->GetAttr(pos);
  return CopyOf(attribute != nullptr ? attribute->GetArrayLValue() : nullptr);
}
