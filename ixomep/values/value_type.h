// The type tags of a value. The numbers are part of the interface: hosts store and compare them.
#pragma once

#include <cstdint>

enum class IxoMepValueType : std::int32_t {
  Undefined = 0,
  String = 1,
  Integer = 2,
  Real = 3,
  Measure = 4,
  Time = 5,
  Expression = 6,
  Array = 7,
  Map = 8,
  Reference = 9,
  Lambda = 10,
  Object = 11,
};
