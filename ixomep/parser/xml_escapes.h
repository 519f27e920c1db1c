// Internal: what becomes of each ASCII byte in an XML attribute value, as one move of eight bytes.
// The one table of the buffer (xml_buffer.h) and of literals that are written straight from the
// text (xml_literals.h).
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <string_view>

#include "ixomep/parser/byte_block.h"

namespace ixomep {

inline constexpr std::size_t kLongestXmlEscape = 6;

// The text of one byte: an entity, a reference, the byte itself, or nothing.
struct XmlEscape {
  static constexpr unsigned char kNotAscii = 255;

  char text[kLongestXmlEscape + 1];
  unsigned char size;

  bool IsAscii() const noexcept { return size != kNotAscii; }
  // Eight bytes may be written; the end of those that count.
  char* Write(char* out) const noexcept {
    std::memcpy(out, this, sizeof *this);
    return out + size;
  }
};
static_assert(sizeof(XmlEscape) == 8);

constexpr XmlEscape XmlEscapeOf(std::string_view text) {
  XmlEscape escape{{}, static_cast<unsigned char>(text.size())};
  std::copy(text.begin(), text.end(), escape.text);
  return escape;
}

inline constexpr std::array<XmlEscape, 256> kXmlEscapes = [] {
  std::array<XmlEscape, 256> escapes{};
  for (std::size_t byte = 32; byte < 128; ++byte) {
    const char itself = static_cast<char>(byte);
    escapes[byte] = XmlEscapeOf({&itself, 1});
  }
  for (std::size_t byte = 128; byte < 256; ++byte) escapes[byte].size = XmlEscape::kNotAscii;
  constexpr struct {
    unsigned char byte;
    std::string_view text;
  } kReplaced[] = {{'&', "&amp;"},   {'<', "&lt;"},  {'>', "&gt;"},   {'"', "&quot;"},
                   {'\'', "&apos;"}, {'\t', "&#9;"}, {'\n', "&#10;"}, {'\r', "&#13;"}};
  for (const auto& row : kReplaced) escapes[row.byte] = XmlEscapeOf(row.text);
  return escapes;
}();

inline const XmlEscape& XmlEscapeOfByte(char byte) noexcept {
  return kXmlEscapes[static_cast<unsigned char>(byte)];
}

// The bytes of a block that may not stay as they are, backslashes too: " # & ' by one question, < >
// by another.
inline ByteBlock::Mask MayBeXmlEscaped(const ByteBlock& block) noexcept {
  return block.IsControlOrForeignOrLike<LikeByte{5, '\''}, LikeByte{2, '>'}, LikeByte{0, '\\'}>();
}

}  // namespace ixomep
