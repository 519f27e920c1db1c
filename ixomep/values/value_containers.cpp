// Changing arrays and maps through the public face. What hands out or takes in an address pins
// the storage, so that it is never shared behind the host's back.
#include <algorithm>

#include "ixomep/values/object.h"
#include "ixomep/values/value.h"
#include "ixomep/values/value_rep.h"

using ixomep::ValueAccess;
using ixomep::ValuePtr;
using Type = IxoMepValueType;

namespace {

// A null value empties the slot, whose old value is destroyed last.
void StoreInSlot(IxoMepValue*& slot, ValuePtr value) {
  if (slot != nullptr && value != nullptr) {
    *slot = std::move(*value);
  } else {
    delete std::exchange(slot, value.release());
  }
}

ValuePtr CopyOf(const IxoMepValue* value) {
  return value != nullptr ? ixomep::MakeValue(*value) : nullptr;
}

}  // namespace

void IxoMepValue::SetValue(long i, const IxoMepValue* value) {
  if (type_ != Type::Array || !ValueAccess::HasElement(*this, i)) return;
  ValuePtr copy = CopyOf(value);  // before the place is taken: it may be this array
  StoreInSlot(ValueAccess::OwnItems(*this)[static_cast<std::size_t>(i)], std::move(copy));
}

bool IxoMepValue::SetValue(const IxoMepValue* key, const IxoMepValue* value) {
  if (type_ == Type::Array) {
    const long index = key != nullptr ? key->GetInt() : 0;
    const bool has_slot = ValueAccess::HasElement(*this, index);
    SetValue(index, value);
    return has_slot;
  }
  if (type_ != Type::Map) return true;
  if (key == nullptr || key->type_ == Type::Undefined) return false;
  ValuePtr copy = CopyOf(value);
  StoreInSlot(ValueAccess::OwnEntrySlot(*this, *key), std::move(copy));
  return true;
}

void IxoMepValue::Append(IxoMepValue* value) {
  if (type_ != Type::Array) return;
  ValueAccess::AppendOwned(*this, ValuePtr(value));
  ValueAccess::Pin(*this);
}

void IxoMepValue::Insert(long i, IxoMepValue* value) {
  if (type_ != Type::Array) return;
  const auto place = static_cast<std::size_t>(std::max(i, 0L));
  ValueAccess::InsertOwned(*this, place, ValuePtr(value));
  ValueAccess::Pin(*this);
}

void IxoMepValue::Erase(long i) {
  if (type_ != Type::Array || !ValueAccess::HasElement(*this, i)) return;
  ValueAccess::EraseAt(*this, static_cast<std::size_t>(i));
}

void IxoMepValue::Erase(const IxoMepValue* key) {
  if (type_ == Type::Map && key != nullptr) ValueAccess::EraseKey(*this, *key);
}

void IxoMepValue::MoveValue(const String& name, IxoMepValue* value) {
  if (type_ == Type::Object) {
    if (payload_.object != nullptr) {
      payload_.object->MoveValue(name, value);
    } else {
      delete value;
    }
    return;
  }
  if (type_ != Type::Map) return;
  ValuePtr taken(value);
  ValuePtr key = ixomep::MakeValue(name);
  ValueAccess::EraseKey(*this, *key);
  ValueAccess::InsertEntry(*this, std::move(key), std::move(taken));
  ValueAccess::Pin(*this);
}
