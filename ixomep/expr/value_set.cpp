// Variable scopes: a hash table of 31 buckets by the address of the name. A bucket holds one
// variable inline and becomes an ordered map when it receives a second one; it stays a map until
// the scope is emptied. Values are detached from the scope before they are destroyed, because
// destroying one may run code of the host that uses the scope.
#include "ixomep/expr/value_set.h"

#include <bit>
#include <memory>
#include <utility>

#include "ixomep/values/slot.h"
#include "ixomep/values/string_address_map.h"

using ixomep::ValuePtr;

namespace {

const char* AddressOf(const String& name) { return IxoMepStringAddressMap::GetAddress(name); }

}  // namespace

const char IxoMepValueSet::no_name_ = '\0';
std::uint64_t IxoMepValueSet::changes_ = 0;

IxoMepValueSet::IxoMepValueSet(IxoMepValueSet* parent) noexcept : parent_(parent) {
  names_.fill(NoName());
  ++changes_;
}

IxoMepValueSet::~IxoMepValueSet() { Clear(); }

IxoMepValue* IxoMepValueSet::_find(const char* name) const noexcept {
  return FindInBucket(IndexOf(name), name);
}

IxoMepValue* IxoMepValueSet::_findCreate(const char* name) {
  if (IxoMepValue* const found = _find(name)) return found;
  auto* const created = new IxoMepValue();
  _add(name, created);
  return created;
}

void IxoMepValueSet::_add(const char* name, IxoMepValue* value) {
  ValuePtr owned(value);
  const std::uint32_t bucket = IndexOf(name);
  ValuePtr replaced;  // only when the name was here already, against the contract
  if (!_isUsed(bucket)) {
    names_[bucket] = name;
    values_[bucket].single = value;
    used_ |= 1u << bucket;
  } else if (_isMulti(bucket)) {
    if (!values_[bucket].several->emplace(name, value).second) return;
  } else {
    auto several = std::make_unique<IxoMepValueSetMap>();
    several->emplace(name, value);
    IxoMepValue* const inline_value = values_[bucket].single;
    if (!several->emplace(names_[bucket], inline_value).second) replaced.reset(inline_value);
    values_[bucket].several = several.release();
    names_[bucket] = NoName();
    multi_ |= 1u << bucket;
  }
  static_cast<void>(owned.release());
  ++changes_;
  if (count_++ == 0) first_value_ = value;
}

void IxoMepValueSet::_deleteVals() noexcept {
  const auto values = values_;
  const std::uint32_t used = std::exchange(used_, 0);
  const std::uint32_t multi = std::exchange(multi_, 0);
  count_ = 0;
  ++changes_;
  first_value_ = nullptr;
  names_.fill(NoName());
  for (std::uint32_t bucket = 0; bucket < kBuckets; ++bucket) {
    if ((used >> bucket & 1u) == 0) continue;
    if ((multi >> bucket & 1u) == 0) {
      delete values[bucket].single;
      continue;
    }
    const std::unique_ptr<IxoMepValueSetMap> several(values[bucket].several);
    for (const auto& [name, value] : *several) delete value;
  }
}

void IxoMepValueSet::Clear() noexcept {
  if (count_ > 1) return _deleteVals();
  if (count_ == 0) return;
  count_ = 0;
  ++changes_;
  names_[static_cast<std::size_t>(std::countr_zero(used_))] = NoName();
  used_ = 0;
  delete std::exchange(first_value_, nullptr);
}

bool IxoMepValueSet::NewIsContained(const char* name) const noexcept {
  return _find(name) != nullptr;
}

bool IxoMepValueSet::OldIsContained(const String& name) const {
  return NewIsContained(AddressOf(name));
}

IxoMepValue* IxoMepValueSet::NewGetValue(const char* name) const noexcept {
  IxoMepValue* const found = _find(name);
  return found != nullptr ? found : IxoMepValue::GetNull();
}

IxoMepValue* IxoMepValueSet::OldGetValue(const String& name) const {
  return NewGetValue(AddressOf(name));
}

IxoMepValue* IxoMepValueSet::NewGetLValue(const char* name) { return _findCreate(name); }

IxoMepValue* IxoMepValueSet::OldGetLValue(const String& name) {
  return NewGetLValue(AddressOf(name));
}

void IxoMepValueSet::SetElsewhere(const char* name, const IxoMepValue& value, bool local) {
  IxoMepValue* const found = local ? FindHere(name) : _find(name);
  if (found == nullptr) {
    _add(name, new IxoMepValue(value));
  } else {
    *found = value;
  }
}

void IxoMepValueSet::OldSetValue(const String& name, const IxoMepValue& value, bool local) {
  NewSetValue(AddressOf(name), value, local);
}

void IxoMepValueSet::NewMoveValue(const char* name, IxoMepValue* value, bool local) {
  ValuePtr owned(value != nullptr ? value : new IxoMepValue());
  IxoMepValue* const found = local ? FindHere(name) : _find(name);
  if (found == nullptr) {
    _add(name, owned.release());
  } else if (found == owned.get()) {
    static_cast<void>(owned.release());  // the variable itself: it is stored already
  } else {
    *found = std::move(*owned);
  }
}

void IxoMepValueSet::OldMoveValue(const String& name, IxoMepValue* value, bool local) {
  ValuePtr owned(value);
  const char* const address = AddressOf(name);
  NewMoveValue(address, owned.release(), local);
}

void IxoMepValueSet::GetAllVars(IxoMepValueSetMap& vars, bool withParents) const {
  const auto add = [&vars](const char* name, const IxoMepValue& value) {
    if (vars.contains(name)) return;
    ValuePtr copy = ixomep::MakeValue(value);
    vars.emplace(name, copy.get());
    static_cast<void>(copy.release());
  };
  for (const IxoMepValueSet* scope = this; scope != nullptr;
       scope = withParents ? scope->parent_ : nullptr) {
    scope->ForEach(add);
  }
}

void IxoMepValueSet::Assign(const IxoMepValueSet& other) {
  if (this == &other) return;
  Clear();
  other.ForEach(
      [this](const char* name, const IxoMepValue& value) { _add(name, new IxoMepValue(value)); });
}
