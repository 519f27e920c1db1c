// Reports of broken contracts (a wrong type handed to a constructor, an unknown message port).
// They go to the host with source name and line; execution continues.
#pragma once

#include <string_view>

#include "ixomep/export.h"
#include "ixomep/host/string.h"

namespace ixomep {

// Reports the place of the call itself, by the name of its source without folders. Never throws,
// also when the host's reporter does.
IXOMEP_API void ReportAssertion(std::string_view message, const char* source = __builtin_FILE(),
                                int line = __builtin_LINE()) noexcept;
// The same for a place given by hand. A null source counts as the empty name.
IXOMEP_API void ReportAssertion(const char* source, int line, std::string_view message) noexcept;

}  // namespace ixomep

// Reports a fault inside the library that no input should be able to cause.
IXOMEP_API void displayErrorMessage(const String& message) noexcept;
