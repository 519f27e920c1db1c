// DES over whole 8-byte blocks, each on its own (electronic codebook), under the host's names.
// The key is process-wide: set it directly before use.
#pragma once

#include <cstdint>

#include "ixomep/export.h"

// Copies the 8 bytes.
IXOMEP_API void ades_key(const unsigned char* key);
// Deciphers, or enciphers, `blocks` blocks of 8 bytes in place; nothing for a count below 1.
IXOMEP_API void ades_dec(unsigned char* bytes, std::int32_t blocks);
IXOMEP_API void ades_enc(unsigned char* bytes, std::int32_t blocks);
