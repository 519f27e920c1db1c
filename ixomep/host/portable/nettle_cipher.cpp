// DES in electronic codebook mode for the default host: the key is set up for each call, which
// costs little beside the blocks of a text.
#include <nettle/des.h>

#include "ixomep/host/portable/default_host.h"

namespace ixomep::portable {
namespace {

des_ctx Prepared(const unsigned char key[8]) noexcept {
  des_ctx context;
  // The result tells only whether the key is one of the weak ones, which work like any other.
  static_cast<void>(des_set_key(&context, key));
  return context;
}

}  // namespace

void DecipherDes(const unsigned char key[8], unsigned char* bytes, std::size_t blocks) noexcept {
  const des_ctx context = Prepared(key);
  des_decrypt(&context, blocks * DES_BLOCK_SIZE, bytes, bytes);
}

void EncipherDes(const unsigned char key[8], unsigned char* bytes, std::size_t blocks) noexcept {
  const des_ctx context = Prepared(key);
  des_encrypt(&context, blocks * DES_BLOCK_SIZE, bytes, bytes);
}

}  // namespace ixomep::portable
