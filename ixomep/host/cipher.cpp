// The process-wide key and the block calls over the host's cipher. See cipher.h.
#include "ixomep/host/cipher.h"

#include <algorithm>
#include <cstddef>

#include "ixomep/host/host.h"

namespace {

constexpr std::size_t kKeySize = 8;

unsigned char current_key[kKeySize] = {};

}  // namespace

void ades_key(const unsigned char* key) { std::copy_n(key, kKeySize, current_key); }

void ades_dec(unsigned char* bytes, std::int32_t blocks) {
  if (blocks < 1) return;
  IxoHost::Current().DecipherBlocks(current_key, bytes, static_cast<std::size_t>(blocks));
}

void ades_enc(unsigned char* bytes, std::int32_t blocks) {
  if (blocks < 1) return;
  IxoHost::Current().EncipherBlocks(current_key, bytes, static_cast<std::size_t>(blocks));
}
