// The host's millisecond counter.
#pragma once

#include <cstdint>

#include "ixomep/export.h"

// Milliseconds since some start of the host's choosing; wraps after 2^32.
IXOMEP_API std::uint32_t GetTickCount();
