// The block of XmlBuffer and the escaping of ASCII. See xml_buffer.h.
#include "ixomep/parser/xml_buffer.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace ixomep {

namespace {

constexpr std::size_t kLongestEscape = 6;
// Text of that length has room in a block whatever it becomes.
constexpr std::size_t kPiece = 4096;
static_assert(kPiece * kLongestEscape <= XmlBuffer::kBlockSize);

// What becomes of one byte.
struct Escape {
  static constexpr unsigned char kItself = 255;
  static constexpr unsigned char kNotAscii = 254;

  char text[kLongestEscape + 1];
  unsigned char length;
};
static_assert(sizeof(Escape) == 8);

constexpr Escape Replaced(std::string_view text) {
  Escape escape{{}, static_cast<unsigned char>(text.size())};
  std::copy(text.begin(), text.end(), escape.text);
  return escape;
}

constexpr std::array<Escape, 256> MakeEscapes() {
  std::array<Escape, 256> escapes{};
  for (std::size_t byte = 32; byte < 256; ++byte) {
    escapes[byte].length = byte < 128 ? Escape::kItself : Escape::kNotAscii;
  }
  constexpr struct {
    unsigned char byte;
    std::string_view text;
  } kReplaced[] = {{'&', "&amp;"},   {'<', "&lt;"},  {'>', "&gt;"},   {'"', "&quot;"},
                   {'\'', "&apos;"}, {'\t', "&#9;"}, {'\n', "&#10;"}, {'\r', "&#13;"}};
  for (const auto& row : kReplaced) escapes[row.byte] = Replaced(row.text);
  return escapes;
}

constexpr auto kEscapes = MakeEscapes();

constexpr std::uint64_t Eight(unsigned char byte) noexcept { return byte * 0x0101010101010101U; }

// Whether all of eight bytes stay as they are. May say no where yes were right (a borrow passes
// from one byte to the next), which costs time only.
bool IsPlain(std::uint64_t bytes) noexcept {
  const std::uint64_t control = bytes - Eight(0x20);
  const std::uint64_t quote = (bytes ^ Eight('"')) - Eight(1);
  const std::uint64_t ampersand = ((bytes & Eight(0xFE)) ^ Eight('&')) - Eight(1);  // apostrophe
  const std::uint64_t angle = ((bytes & Eight(0xFD)) ^ Eight('<')) - Eight(1);      // both
  return ((bytes | control | quote | ampersand | angle) & Eight(0x80)) == 0;
}

bool IsAscii(std::string_view text) noexcept {
  unsigned char bits = 0;
  for (const char byte : text) bits = static_cast<unsigned char>(bits | byte);
  return bits < 0x80;
}

}  // namespace

void XmlBuffer::Flush() {
  const auto written = static_cast<std::size_t>(at_ - block_.get());
  at_ = block_.get();
  if (written != 0) out_.Append({block_.get(), written});
}

void XmlBuffer::AppendLong(std::string_view text) {
  Flush();
  out_.Append(text);
}

void XmlBuffer::Blanks(std::size_t count) {
  while (count > 0) {
    const std::size_t step = std::min(count, kBlockSize);
    std::memset(Room(step), ' ', step);
    at_ += step;
    count -= step;
  }
}

bool XmlBuffer::AppendEscaped(std::string_view ascii) {
  if (ascii.size() <= kPiece) return AppendEscapedPiece(ascii);
  if (!IsAscii(ascii)) return false;
  for (; !ascii.empty(); ascii.remove_prefix(std::min(ascii.size(), kPiece))) {
    AppendEscapedPiece(ascii.substr(0, kPiece));
  }
  return true;
}

bool XmlBuffer::AppendEscapedPiece(std::string_view ascii) {
  char* out = Room(ascii.size() * kLongestEscape + sizeof(Escape));
  const char* in = ascii.data();
  const char* const end = in + ascii.size();
  while (in != end) {
    std::uint64_t eight = 0;
    if (end - in >= std::ptrdiff_t{sizeof eight}) {
      std::memcpy(&eight, in, sizeof eight);
      if (IsPlain(eight)) {
        std::memcpy(out, &eight, sizeof eight);
        out += sizeof eight;
        in += sizeof eight;
        continue;
      }
    }
    const Escape& escape = kEscapes[static_cast<unsigned char>(*in)];
    if (escape.length == Escape::kItself) {
      *out++ = *in++;
      continue;
    }
    if (escape.length == Escape::kNotAscii) return false;
    std::memcpy(out, &escape, sizeof escape);  // the bytes behind the text are written over
    out += escape.length;
    ++in;
  }
  at_ = out;
  return true;
}

}  // namespace ixomep
