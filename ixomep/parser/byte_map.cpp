// Filling a map of bytes: the same for all bytes, so that a processor never has to guess. See
// byte_map.h.
#include "ixomep/parser/byte_map.h"

#include <algorithm>

namespace ixomep {

void ByteMap::Fill(const char* from, const char* text_end) noexcept {
  char* bits = bits_.data();
  from_ = from;
  size_ = std::min(text_end - from, kMost) / kStep * kStep;
  for (const char* const end = from + size_; from != end; from += kStep) {
    const ByteRun run(from);
    const std::uint32_t white = run.White();
    StorePair(bits, white);
    StorePair(bits + kKind, white | run.ClosersAndColons());
    StorePair(bits + 2 * kKind, run.Quotes());
    bits += kStep / 8;
  }
}

}  // namespace ixomep
