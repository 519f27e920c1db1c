// Internal: the one way to fail, and the one placeholder filler.
#pragma once

#include <initializer_list>
#include <new>
#include <stdexcept>
#include <string_view>

#include "ixomep/host/string.h"
#include "ixomep/values/error_code.h"

namespace ixomep {

struct Fill {
  std::string_view placeholder;  // for example "%type"
  std::string_view replacement;
};

// Replaces the first occurrence of the placeholder; a text without it stays as it is.
void FillPlaceholder(String& text, std::string_view placeholder, std::string_view replacement);

// Sets text to the code's text with the placeholders filled in the given order, and returns the
// code.
IxoMepErrorEnum Raise(String& text, IxoMepErrorEnum code, std::initializer_list<Fill> fills = {});

// For memory that cannot be had: as Raise, without a message when not even that can be had.
IxoMepErrorEnum RaiseNoMemory(String& text, IxoMepErrorEnum code) noexcept;

// Runs work, which returns a code; what it cannot allocate, or what grows beyond the maximum
// length, becomes code 37.
template <class Work>
long CatchTooLong(String& text, const Work& work) {
  try {
    return work();
  } catch (const std::bad_alloc&) {
    return RaiseNoMemory(text, IMEPERR_TOO_LONG);
  } catch (const std::length_error&) {
    return RaiseNoMemory(text, IMEPERR_TOO_LONG);
  }
}

}  // namespace ixomep
