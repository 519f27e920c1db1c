// Objects: counted references, the table of properties, native methods. Calling a method is
// ../expr/object_calls.cpp's.
#include "ixomep/values/object.h"

#include <utility>

#include "ixomep/host/memory_budget.h"
#include "ixomep/values/object_access.h"
#include "ixomep/values/raise.h"
#include "ixomep/values/slot.h"
#include "ixomep/values/teardown.h"

using ixomep::MemoryBudget;

namespace {

// A tree node with its name and value, and the heap's own head.
constexpr std::size_t kPropertyBytes = 80;

}  // namespace

// The budget counts every object as one of this class: a derived one is deleted through it.
void* IxoMepObject::operator new(std::size_t size) {
  MemoryBudget::Take(sizeof(IxoMepObject));
  try {
    return ::operator new(size);
  } catch (...) {
    MemoryBudget::Give(sizeof(IxoMepObject));
    throw;
  }
}

void IxoMepObject::operator delete(void* block) noexcept {
  if (block == nullptr) return;
  ::operator delete(block);
  MemoryBudget::Give(sizeof(IxoMepObject));
}

IxoMepObject::Properties::Properties(const Properties& other) : Properties() {
  for (const auto& [name, value] : other.values) {
    IxoMepValue*& slot = Slot(name);
    if (value != nullptr) slot = new IxoMepValue(*value);
  }
}

IxoMepObject::Properties::~Properties() {
  for (const auto& [name, value] : values) delete value;
  MemoryBudget::Give(values.size() * kPropertyBytes);
}

IxoMepValue*& IxoMepObject::Properties::Slot(const String& name) {
  const auto property = values.find(name);
  if (property != values.end()) return property->second;
  MemoryBudget::Take(kPropertyBytes);
  try {
    return values.emplace(name, nullptr).first->second;
  } catch (...) {
    MemoryBudget::Give(kPropertyBytes);
    throw;
  }
}

IxoMepObject::IxoMepObject() = default;

IxoMepObject::IxoMepObject(IxoMepObject* base)
    : base_(base != nullptr ? base->NewReference() : nullptr) {}

// Meant: the count is the other's, and the base's count is not raised for the second link to it.
IxoMepObject::IxoMepObject(const IxoMepObject& other)
    : references_(other.references_),
      base_(other.base_),
      properties_(other.properties_),
      native_methods_(other.native_methods_) {}

IxoMepObject& IxoMepObject::operator=(const IxoMepObject& other) {
  if (this == &other) return *this;
  Properties properties(other.properties_);
  auto native_methods = other.native_methods_;
  references_ = other.references_;
  base_ = other.base_;
  properties_.values.swap(properties.values);
  native_methods_.swap(native_methods);
  return *this;
}

IxoMepObject::~IxoMepObject() = default;

IxoMepObject* IxoMepObject::NewReference() noexcept {
  if (references_ >= kMaxReferences) return nullptr;
  ++references_;
  return this;
}

void IxoMepObject::DeleteReference() noexcept {
  if (references_ > 0) {
    --references_;
  } else {
    ixomep::Teardown::OfObject(this);
  }
}

void IxoMepObject::MoveValue(const String& name, IxoMepValue* value) {
  ixomep::ValuePtr taken(value);
  IxoMepValue*& slot = properties_.Slot(name);
  if (slot == value) {
    static_cast<void>(taken.release());
  } else {
    delete std::exchange(slot, taken.release());
  }
}

long IxoMepObject::GetObjectPropertyValue(const char* name, IxoMepValue*& result,
                                          String& errorText) const {
  const IxoMepValue* const value = FindProperty(name);
  if (value == nullptr) return IMEPERR_UNKNOWN_MEMBER;
  return ixomep::CatchTooLong(errorText, [&]() -> long {
    ixomep::StoreResult(result, IxoMepValue(*value));
    return IMEPERR_NONE;
  });
}

long IxoMepObject::GetObjectPropertyLValue(const char* name, IxoMepValue*& result, String&) {
  const IxoMepValue* const value = FindProperty(name);
  if (value == nullptr) return IMEPERR_UNKNOWN_MEMBER;
  result = const_cast<IxoMepValue*>(value);
  return IMEPERR_NONE;
}

void IxoMepObject::SetNativeMethod(const String& name, IxoMepNativeMethod method) {
  native_methods_[name] = std::move(method);
}

const IxoMepValue* IxoMepObject::FindProperty(const String& name) const {
  const auto property = properties_.values.find(name);
  return property != properties_.values.end() ? property->second : nullptr;
}

bool ixomep::ObjectAccess::HasMethod(const IxoMepObject& object, const String& name) {
  const IxoMepValue* const property = object.FindProperty(name);
  if (property != nullptr) return property->GetType() == IxoMepValueType::Lambda;
  const auto method = object.native_methods_.find(name);
  return method != object.native_methods_.end() && method->second != nullptr;
}
