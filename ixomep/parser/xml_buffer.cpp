// The block of XmlBuffer and the escaping of ASCII. See xml_buffer.h.
#include "ixomep/parser/xml_buffer.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "ixomep/parser/byte_block.h"

namespace ixomep {

namespace {

constexpr std::size_t kLongestEscape = 6;
// Text of that length has room in a block whatever it becomes.
constexpr std::size_t kPiece = 4096;
static_assert(kPiece * kLongestEscape + ByteBlock::kSize <= XmlBuffer::kBlockSize);

// What becomes of one byte.
struct Escape {
  static constexpr unsigned char kItself = 255;
  static constexpr unsigned char kNotAscii = 254;

  char text[kLongestEscape + 1];
  unsigned char length;
};
static_assert(sizeof(Escape) == 8);

constexpr Escape EscapeOf(std::string_view text) {
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
  for (const auto& row : kReplaced) escapes[row.byte] = EscapeOf(row.text);
  return escapes;
}

constexpr auto kEscapes = MakeEscapes();

// The bytes of a block that do not stay as they are.
ByteBlock::Mask Replaced(const ByteBlock& block) noexcept {
  return (block.Between(' ', '\x7F') ^ ByteBlock::kAll) | block.IsAny<'&', '<', '>', '"', '\''>();
}

bool IsAscii(std::string_view text) noexcept {
  unsigned char bits = 0;
  for (const char byte : text) bits = static_cast<unsigned char>(bits | byte);
  return bits < 0x80;
}

}  // namespace

void XmlBuffer::Flush() {
  const auto written = static_cast<std::size_t>(at_ - start_);
  if (block_ == nullptr) {
    StringTail::Take(out_, written);
    start_ = at_;
    return;
  }
  at_ = start_;
  if (written != 0) out_.Append({start_, written});
}

void XmlBuffer::NextBlock() {
  Flush();
  if (block_ != nullptr) return;
  block_ = std::make_unique_for_overwrite<char[]>(kBlockSize);
  start_ = at_ = block_.get();
  end_ = at_ + kBlockSize;
}

void XmlBuffer::AppendLong(std::string_view text) {
  if (static_cast<std::size_t>(end_ - at_) >= text.size()) {
    std::memcpy(at_, text.data(), text.size());
    at_ += text.size();
    return;
  }
  NextBlock();
  out_.Append(text);
}

void XmlBuffer::ManyBlanks(std::size_t count) {
  while (count > 0) {
    const std::size_t step = std::min(count, kBlockSize);
    std::memset(Room(step), ' ', step);
    at_ += step;
    count -= step;
  }
}

bool XmlBuffer::AppendEscaped(std::string_view ascii, const char* readable_end) {
  if (ascii.size() <= kPiece) return AppendEscapedPiece(ascii, readable_end);
  if (!IsAscii(ascii)) return false;
  for (; !ascii.empty(); ascii.remove_prefix(std::min(ascii.size(), kPiece))) {
    work_.Part();
    AppendEscapedPiece(ascii.substr(0, kPiece), readable_end);
  }
  return true;
}

bool XmlBuffer::AppendEscapedPiece(std::string_view ascii, const char* readable_end) {
  char* out = Room(ascii.size() * kLongestEscape + ByteBlock::kSize);
  const char* in = ascii.data();
  const char* const end = in + ascii.size();
  while (in != end) {
    // A block at a time as it is, up to the first byte that is replaced. What is written too far is
    // written over.
    while (readable_end - in >= std::ptrdiff_t{ByteBlock::kSize}) {
      const ByteBlock::Mask hits = Replaced(ByteBlock(in));
      std::memcpy(out, in, ByteBlock::kSize);
      const std::size_t plain = hits != 0 ? ByteBlock::First(hits) : ByteBlock::kSize;
      const std::size_t taken = std::min(plain, static_cast<std::size_t>(end - in));
      in += taken;
      out += taken;
      if (in == end || hits != 0) break;
    }
    if (in == end) break;
    const Escape& escape = kEscapes[static_cast<unsigned char>(*in)];
    if (escape.length == Escape::kItself) {
      *out++ = *in++;
      continue;
    }
    if (escape.length == Escape::kNotAscii) return false;
    std::memcpy(out, &escape, sizeof escape);
    out += escape.length;
    ++in;
  }
  at_ = out;
  return true;
}

}  // namespace ixomep
