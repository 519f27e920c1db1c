// Reading a value: typed accessors, which give neutral answers to the wrong type, references, and
// the addresses of slots that hosts may write through.
#include <array>
#include <exception>

#include "ixomep/values/units.h"
#include "ixomep/values/value.h"
#include "ixomep/values/value_rep.h"

using ixomep::ValueAccess;
using Type = IxoMepValueType;

namespace {

// By the number of the type.
constexpr std::array<const char*, 12> kTypeNames = {
    "undefined",  "string", "integer", "real",      "measure", "time",
    "expression", "array",  "map",     "reference", "lambda",  "object",
};

// The slot that stands in for one that does not exist. Writing to it reaches nothing.
IxoMepValue** ScratchSlot(IxoMepValue* content) noexcept {
  static IxoMepValue* slot = nullptr;
  slot = content;
  return &slot;
}

}  // namespace

String IxoMepValue::GetTypeName(IxoMepValueType type) {
  const auto number = static_cast<std::size_t>(type);
  return kTypeNames[number < kTypeNames.size() ? number : 0];
}

std::int32_t IxoMepValue::ReadInt() const noexcept {
  const IxoMepValue& value = ValueAccess::Follow(*this);
  if (value.type_ == Type::Integer) return value.payload_.integer;
  return value.type_ == Type::Real ? ixomep::ToInt32OrZero(value.payload_.real) : 0;
}

double IxoMepValue::ReadReal() const noexcept {
  const IxoMepValue& value = ValueAccess::Follow(*this);
  if (value.type_ == Type::Integer) return value.payload_.integer;
  return value.type_ == Type::Real ? value.payload_.real : 0.0;
}

double IxoMepValue::GetSec() const noexcept {
  const IxoMepValue& value = ValueAccess::Follow(*this);
  return value.type_ == Type::Time ? value.payload_.real : 0.0;
}

std::int32_t IxoMepValue::GetTMM() const noexcept {
  const IxoMepValue& value = ValueAccess::Follow(*this);
  return value.type_ == Type::Measure ? ixomep::WholeTenthsOf(value.payload_.real) : 0;
}

std::int32_t IxoMepValue::GetTPt() const noexcept {
  const IxoMepValue& value = ValueAccess::Follow(*this);
  return value.type_ == Type::Measure ? ixomep::PointTenthsOf(value.payload_.real) : 0;
}

bool IxoMepValue::IsNum() const noexcept {
  const Type type = ValueAccess::Follow(*this).type_;
  return type == Type::Integer || type == Type::Real;
}

IxoMepExpressionParser* IxoMepValue::GetExpr() noexcept {
  const IxoMepValue& value = ValueAccess::Follow(*this);
  return value.type_ == Type::Expression ? value.payload_.expression : nullptr;
}

const IxoMepExpressionParser* IxoMepValue::GetExpr() const noexcept {
  return const_cast<IxoMepValue*>(this)->GetExpr();
}

IxoMepExprNode* IxoMepValue::GetLambda() noexcept {
  const IxoMepValue& value = ValueAccess::Follow(*this);
  return value.type_ == Type::Lambda ? value.payload_.lambda : nullptr;
}

const IxoMepExprNode* IxoMepValue::GetLambda() const noexcept {
  return const_cast<IxoMepValue*>(this)->GetLambda();
}

IxoMepObject* IxoMepValue::GetObject() noexcept {
  const IxoMepValue& value = ValueAccess::Follow(*this);
  return value.type_ == Type::Object ? value.payload_.object : nullptr;
}

const IxoMepObject* IxoMepValue::GetObject() const noexcept {
  return const_cast<IxoMepValue*>(this)->GetObject();
}

String ValueAccess::StrOf(const IxoMepValue& v) {
  const IxoMepValue& value = Follow(v);
  switch (value.type_) {
    case Type::String:
      return ValueAccess::Text(value);
    case Type::Undefined:
    case Type::Reference:  // a chain without an end has no text
      return {};
    default:
      return TextOf(value);
  }
}

String IxoMepValue::GetStr() const {
  try {
    return ValueAccess::StrOf(*this);
  } catch (const std::exception&) {  // too long, or no memory
    return {};
  }
}

std::int32_t IxoMepValue::GetSize() const noexcept {
  if (type_ != Type::Array && type_ != Type::Map) return 0;
  return static_cast<std::int32_t>(ValueAccess::Count(*this));
}

IxoMepValue* IxoMepValue::GetReferencedValue() const noexcept {
  return type_ == Type::Reference ? payload_.target : const_cast<IxoMepValue*>(this);
}

IxoMepValue* IxoMepValue::GetValue(long i) const {
  if (type_ != Type::Array) return const_cast<IxoMepValue*>(this);
  if (!ValueAccess::HasElement(*this, i)) return GetpNullValue();
  ValueAccess::Pin(*this);
  IxoMepValue* const element = ValueAccess::List(*this)->items[static_cast<std::size_t>(i)];
  return element != nullptr ? element : GetpNullValue();
}

IxoMepValue** IxoMepValue::GetpValue(long i) {
  if (type_ != Type::Array || !ValueAccess::HasElement(*this, i)) return ScratchSlot(this);
  ValueAccess::Pin(*this);
  return &ValueAccess::OwnItems(*this)[static_cast<std::size_t>(i)];
}

IxoMepValue** IxoMepValue::GetpValue() {
  return type_ == Type::Reference ? &payload_.target : ScratchSlot(this);
}

IxoMepValue* IxoMepValue::GetValueOfMap(const IxoMepValue* key) const {
  if (type_ != Type::Map || key == nullptr) return GetpNullValue();
  if (ValueAccess::FindEntry(*this, *key) == nullptr) return GetpNullValue();
  ValueAccess::Pin(*this);
  return const_cast<IxoMepValue*>(ValueAccess::FindEntry(*this, *key));
}

IxoMepValue** IxoMepValue::GetpValueOfMap(const IxoMepValue* key) {
  if (type_ != Type::Map || key == nullptr) return ScratchSlot(this);
  ValueAccess::Pin(*this);
  return &ValueAccess::OwnEntrySlot(*this, *key);
}

IxoMepValue* IxoMepValue::GetKeysOfMap() const {
  if (type_ != Type::Map) return const_cast<IxoMepValue*>(this);
  ixomep::OwnedList keys;
  for (const auto& [key, value] : ValueAccess::Entries(*this)) keys.Add(ixomep::MakeValue(*key));
  ixomep::ValuePtr array = ixomep::MakeValue();
  ValueAccess::MakeArray(*array, std::move(keys));
  return array.release();
}

IxoMepValue* IxoMepValue::GetNull() noexcept { return GetpNullValue(); }

IxoMepValue* IxoMepValue::GetpNullValue() noexcept {
  static IxoMepValue null_value;
  return &null_value;
}
