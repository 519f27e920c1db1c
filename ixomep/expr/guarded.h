// Internal: the border that no exception passes: an allocation that cannot be had becomes code 38.
#pragma once

#include <exception>
#include <new>
#include <stdexcept>

#include "ixomep/values/raise.h"

namespace ixomep {

// Code 38 with its message; without a message when not even that can be had.
inline IxoMepErrorEnum FailAllocation(String& text) noexcept {
  try {
    return Raise(text, IMEPERR_TOO_DEEP);
  } catch (const std::exception&) {
    text.Clear();
    return IMEPERR_TOO_DEEP;
  }
}

// What work returns. Exceptions of a host's own kind pass.
template <class Work>
IxoMepErrorEnum Guarded(String& text, Work&& work) {
  try {
    return work();
  } catch (const std::bad_alloc&) {
    return FailAllocation(text);
  } catch (const std::length_error&) {
    return FailAllocation(text);
  }
}

}  // namespace ixomep
