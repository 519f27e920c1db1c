// Values to test with: one of each type, arrays and maps from lists, and the readable form of a
// value in a failed comparison.
#pragma once

#include <array>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "ixomep/values/object.h"
#include "ixomep/values/slot.h"
#include "ixomep/values/value.h"
#include "ixomep/values/value_rep.h"

namespace ixomep::test {

using Type = IxoMepValueType;

inline constexpr std::array<Type, 12> kAllTypes = {
    Type::Undefined,  Type::String, Type::Integer, Type::Real,      Type::Measure, Type::Time,
    Type::Expression, Type::Array,  Type::Map,     Type::Reference, Type::Lambda,  Type::Object};

inline std::string Str(const String& text) { return std::string(text.view()); }
inline std::string TextOf(const IxoMepValue& value) { return Str(value.GetText()); }
inline std::string NameOf(Type type) { return Str(IxoMepValue::GetTypeName(type)); }

inline IxoMepValue Array(std::initializer_list<IxoMepValue> elements) {
  OwnedList list;
  for (const IxoMepValue& element : elements) list.Add(MakeValue(element));
  IxoMepValue array;
  ValueAccess::MakeArray(array, std::move(list));
  return array;
}

// From keys and values in turn.
inline IxoMepValue Map(std::initializer_list<IxoMepValue> pairs) {
  OwnedList list;
  for (const IxoMepValue& part : pairs) list.Add(MakeValue(part));
  IxoMepValue map;
  ValueAccess::MakeMap(map, std::move(list));
  return map;
}

inline IxoMepValue ObjectWith(const char* name, int number) {
  IxoMepValue value(Type::Object);
  value.GetObject()->MoveValue(name, new IxoMepValue(number));
  return value;
}

inline IxoMepValue& Target() {
  static IxoMepValue target(41);
  return target;
}

// A value of the type; `variant` 0 and 1 differ where the type has contents.
inline IxoMepValue Sample(Type type, int variant = 0) {
  switch (type) {
    case Type::String:
      return variant == 0 ? "abc" : "xyz";
    case Type::Integer:
      return 7 + variant;
    case Type::Real:
      return 2.5 + variant;
    case Type::Measure:
      return {Type::Measure, 125 + variant};
    case Type::Time:
      return {Type::Time, 90 + variant};
    case Type::Expression:
      return {static_cast<IxoMepExpressionParser*>(nullptr), true};
    case Type::Array:
      return Array({1 + variant, 2});
    case Type::Map:
      return Map({"k", 1 + variant});
    case Type::Reference:
      return &Target();
    case Type::Lambda:
      return static_cast<IxoMepExprNode*>(nullptr);
    case Type::Object:
      return ObjectWith("p", 1 + variant);
    default:
      return {};
  }
}

inline bool SameContent(const IxoMepValue& a, const IxoMepValue& b) {
  return a.GetType() == b.GetType() && TextOf(a) == TextOf(b);
}

// {{{...}}} around the innermost value.
inline IxoMepValue Nested(IxoMepValue innermost, int depth) {
  IxoMepValue value = std::move(innermost);
  for (int i = 0; i < depth; ++i) {
    IxoMepValue outer(Type::Array);
    ValueAccess::AppendOwned(outer, MakeValue(std::move(value)));
    value = std::move(outer);
  }
  return value;
}

}  // namespace ixomep::test
