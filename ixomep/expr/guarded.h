// Internal: the border that no exception passes: an allocation that cannot be had becomes code 38.
#pragma once

#include <new>
#include <stdexcept>

#include "ixomep/values/raise.h"

namespace ixomep {

// What work returns. Exceptions of a host's own kind pass.
template <class Work>
IxoMepErrorEnum Guarded(String& text, Work&& work) {
  try {
    return work();
  } catch (const std::bad_alloc& cause) {
    return RaiseNoMemory(text, IMEPERR_TOO_DEEP, cause);
  } catch (const std::length_error& cause) {
    return RaiseNoMemory(text, IMEPERR_TOO_DEEP, cause);
  }
}

}  // namespace ixomep
