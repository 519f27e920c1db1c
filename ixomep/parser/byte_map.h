// Internal: where bytes of a few kinds stand in a stretch of a text: a bit for each byte and kind,
// found for many bytes ahead. A reader that asks for the next byte of a kind then waits for one
// look into the map instead of for loading and comparing bytes, which each time come after what it
// found before.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "ixomep/parser/byte_block.h"

namespace ixomep {

class ByteMap {
 public:
  // A question is answered for so many bytes at least, and for so many at most. What it tells of
  // bytes behind the map means nothing.
  static constexpr std::uint32_t kWindow = 57;
  static constexpr std::uint32_t kMostWindow = 64;
  // A stretch shorter than that is not worth a map.
  static constexpr std::ptrdiff_t kLeast = 512;

  // Maps the text from a position on, up to its end at most: kLeast bytes stand before that.
  void Fill(const char* from, const char* text_end) noexcept;
  // Whether a position is in the map, and so many bytes behind it are too.
  bool Covers(const char* at, std::ptrdiff_t bytes) const noexcept {
    return at >= from_ && size_ - (at - from_) >= bytes;
  }
  const char* End() const noexcept { return from_ + size_; }

  // What is asked of a position in the map: the first bit is for the byte there.
  class Place {
   public:
    Place(const ByteMap& map, const char* at) noexcept
        : bits_(map.bits_.data() + static_cast<std::size_t>(at - map.from_) / 8),
          shift_(static_cast<std::size_t>(at - map.from_) % 8) {}
    // White space.
    std::uint64_t White() const noexcept { return LoadWord(bits_) >> shift_; }
    // What ends a name or number: white space, a closing brace, a colon.
    std::uint64_t Ends() const noexcept { return LoadWord(bits_ + kKind) >> shift_; }
    // What ends a string or makes the next byte ordinary.
    std::uint64_t Quotes() const noexcept { return LoadWord(bits_ + 2 * kKind) >> shift_; }

   private:
    const char* bits_;
    std::size_t shift_;
  };

 private:
  static constexpr auto kStep = std::ptrdiff_t{ByteRun::kSize};
  static constexpr std::ptrdiff_t kMost = 4096;
  // The bits of a kind, and room for a question about the last byte.
  static constexpr std::size_t kKind = std::size_t{kMost} / 8 + 8;

  const char* from_ = nullptr;
  std::ptrdiff_t size_ = 0;
  std::array<char, 3 * kKind> bits_{};
};

}  // namespace ixomep
