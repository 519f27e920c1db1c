// Internal: the one way to fail, and the one placeholder filler.
#pragma once

#include <exception>
#include <initializer_list>
#include <new>
#include <stdexcept>
#include <string_view>

#include "ixomep/host/limit_watch.h"
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

// For a limit of the host: 38, and the text that names the limit that was exceeded first. Ends the
// evaluation: it fails whatever becomes of this code.
IxoMepErrorEnum RaiseLimit(String& text, Limit which) noexcept;
inline IxoMepErrorEnum RaiseLimit(String& text) noexcept {
  return RaiseLimit(text, LimitWatch::Exceeded());
}
// What an evaluation that came to that code gives: 38 once a limit is exceeded.
inline IxoMepErrorEnum WithinLimits(IxoMepErrorEnum code, String& text) noexcept {
  if (LimitWatch::Exceeded() == Limit::None) [[likely]]
    return code;
  return code == IMEPERR_TOO_DEEP ? code : RaiseLimit(text);
}

// For memory that cannot be had, or a text that becomes too long: as Raise, without a message when
// not even that can be had. A limit of the host gives RaiseLimit instead.
IxoMepErrorEnum RaiseNoMemory(String& text, IxoMepErrorEnum code,
                              const std::exception& cause) noexcept;

// Runs work, which returns a code; what it cannot allocate, or what grows beyond the maximum
// length, becomes code 37, or that of a limit of the host.
template <class Work>
long CatchTooLong(String& text, const Work& work) {
  try {
    return work();
  } catch (const std::bad_alloc& cause) {
    return RaiseNoMemory(text, IMEPERR_TOO_LONG, cause);
  } catch (const std::length_error& cause) {
    return RaiseNoMemory(text, IMEPERR_TOO_LONG, cause);
  }
}

}  // namespace ixomep
