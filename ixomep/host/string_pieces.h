// Internal: a text that grows by a few bytes at a time, as conversions do byte for byte: they are
// collected here and appended many at a time, which halves the time of an XML text that is not
// ASCII.
#pragma once

#include <array>
#include <cstddef>
#include <string_view>

#include "ixomep/host/string.h"

namespace ixomep {

class StringPieces {
 public:
  // Appends to a text that lives as long; all is there after Flush. Throws as String does.
  explicit StringPieces(String& out) noexcept : out_(out) {}

  void Add(char byte) {
    if (size_ == kSize) Flush();
    bytes_[size_++] = byte;
  }
  // kMost bytes at most.
  static constexpr std::size_t kMost = 16;
  void Add(std::string_view few) {
    if (kSize - size_ < kMost) Flush();
    size_ += few.copy(bytes_.data() + size_, kMost);
  }
  void Flush() {
    out_.Append({bytes_.data(), size_});
    size_ = 0;
  }

 private:
  static constexpr std::size_t kSize = 512;

  String& out_;
  std::size_t size_ = 0;
  std::array<char, kSize> bytes_;
};

}  // namespace ixomep
