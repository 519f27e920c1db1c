// Reads a definition text as a host does that asks everything there is to ask.
#pragma once

#include <string>

#include "ixomep/host/string.h"

namespace ixomep::fuzz {

// All answers as one text. Fails the target when the contract of the parser is broken.
std::string ReadAndAsk(const String& text, bool use_include_cache = false);

}  // namespace ixomep::fuzz
