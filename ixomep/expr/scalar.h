// Internal: values without heap payload, stored without the care that the others need: a number
// over a number is one tag and one payload, where a general assignment costs 5 ns more.
#pragma once

#include <cstdint>

#include "ixomep/values/value_rep.h"

namespace ixomep {

// Integer, Real, Measure, Time: nothing to own.
inline bool IsScalar(std::int64_t tag) noexcept {
  return tag >= static_cast<std::int64_t>(IxoMepValueType::Integer) &&
         tag <= static_cast<std::int64_t>(IxoMepValueType::Time);
}
inline bool IsScalar(const IxoMepValue& value) noexcept {
  return IsScalar(static_cast<std::int64_t>(value.GetType()));
}

// The type is that of a scalar. What the target held before is released last, because that may run
// code of the host.
inline void StoreScalar(IxoMepValue& target, IxoMepValueType type, std::int64_t bits) noexcept {
  if (IsScalar(target) || target.GetType() == IxoMepValueType::Undefined) {
    ValueAccess::SetScalar(target, type, bits);
  } else {
    target = ValueAccess::FromBits(type, bits);
  }
}

}  // namespace ixomep
