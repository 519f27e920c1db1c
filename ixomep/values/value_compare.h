// Internal: the order of values that operator< and operator> show, and of types in it.
#pragma once

#include <cstdint>

#include "ixomep/values/value.h"

namespace ixomep {

// Undefined, integer, real, string, then the types from measure on by their numbers.
std::int32_t TypeRank(IxoMepValueType type) noexcept;

// Two numbers (also behind references) by number, measures by whole tenths, times by seconds,
// strings by bytes, different types by rank. Two values of any other type are reported as an
// assertion and neither is less.
bool IsLess(const IxoMepValue& a, const IxoMepValue& b);

}  // namespace ixomep
