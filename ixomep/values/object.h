// IxoMepObject: the payload of an object value: a shared, counted bag of named properties. A
// property that holds a lambda acts as a method (called in ../expr/object_calls.cpp); a host may
// add native methods.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>

#include "ixomep/export.h"
#include "ixomep/host/string.h"
#include "ixomep/values/value.h"

class IxoMepObject;

namespace ixomep {
struct ObjectAccess;
}

// (object, arguments, result slot, error text) -> error code.
using IxoMepNativeMethod =
    std::function<long(IxoMepObject*, const IxoMepValueList&, IxoMepValue*&, String&)>;

class IXOMEP_API IxoMepObject {
 public:
  static constexpr std::uint32_t kMaxReferences = 65535;

  IxoMepObject();
  // Links to base and raises its count; no link when base's count is at its cap.
  explicit IxoMepObject(IxoMepObject* base);
  IxoMepObject(const IxoMepObject& other);  // count and link as they stand, tables copied
  IxoMepObject& operator=(const IxoMepObject& other);
  ~IxoMepObject();  // the base link is not given back

  // Counted with the memory budget.
  static void* operator new(std::size_t size);
  static void* operator new(std::size_t, void* place) noexcept { return place; }
  static void operator delete(void* block) noexcept;
  static void operator delete(void*, void*) noexcept {}

  // The object with its count raised; null, and nothing changed, at the cap of 65535.
  IxoMepObject* NewReference() noexcept;
  // Lowers the count; without further references the object is destroyed.
  void DeleteReference() noexcept;
  // References beyond the first.
  std::uint32_t ReferenceCount() const noexcept { return references_; }

  // Replaces the property; takes over value.
  void MoveValue(const String& name, IxoMepValue* value);
  // 0 and a new copy of the property owned by the caller, or 42 with errorText left alone; 37
  // when the copy cannot be had.
  long GetObjectPropertyValue(const char* name, IxoMepValue*& result, String& errorText) const;
  // 0 and the stored value itself (borrowed), or 42 with errorText left alone.
  long GetObjectPropertyLValue(const char* name, IxoMepValue*& result, String& errorText);
  // Calls the lambda property or the native method of that name; the parameters of a lambda
  // refer to the arguments. 42 for an unknown name or a property that is no lambda.
  long EvaluateObjectMethodCall(const char* name, const IxoMepValueList& args, IxoMepValue*& result,
                                String& errorText);
  // "OBJECT{a: 1, b: 2}" in name order; empty when there is no memory for it.
  String GetText() const;

  // The extension point of hosts: adds or replaces a native method.
  void SetNativeMethod(const String& name, IxoMepNativeMethod method);
  // The stored property, or null. Borrowed.
  const IxoMepValue* FindProperty(const String& name) const;

 private:
  friend struct ixomep::ObjectAccess;
  class Properties {
   public:
    Properties() = default;
    Properties(const Properties& other);
    Properties& operator=(const Properties& other) = delete;
    virtual ~Properties();
    // The slot under the name, created empty when absent.
    IxoMepValue*& Slot(const String& name);
    std::map<String, IxoMepValue*> values;  // owned
  };

  std::uint32_t references_ = 0;
  mutable bool rendering_ = false;  // GetText of it has begun and not ended
  IxoMepObject* base_ = nullptr;
  Properties properties_;
  std::map<String, IxoMepNativeMethod> native_methods_;
};
