// The block of XmlBuffer and the escaping of ASCII. See xml_buffer.h.
#include "ixomep/parser/xml_buffer.h"

#include <algorithm>
#include <cstdint>

#include "ixomep/host/memory_budget.h"
#include "ixomep/parser/byte_block.h"
#include "ixomep/parser/xml_escapes.h"

namespace ixomep {

namespace {

// Text of that length has room in a block whatever it becomes.
constexpr std::size_t kPiece = 4096;
static_assert(kPiece * kLongestXmlEscape + ByteBlock::kSize <= XmlBuffer::kBlockSize);

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
  if (block_ != nullptr || Widen()) return;
  block_ = std::make_unique_for_overwrite<char[]>(kBlockSize);
  start_ = at_ = block_.get();
  end_ = at_ + kBlockSize;
}

// More room in the text itself, where there is plenty of memory: what it holds is copied once, what
// comes not at all.
bool XmlBuffer::Widen() {
  const auto length = static_cast<std::int64_t>(out_.Len());
  const std::int64_t wished = length + length / 2 + std::int64_t{kBlockSize};
  if (wished > String::kMaxLength) return false;
  if (!MemoryBudget::MayTake(static_cast<std::size_t>(2 * wished))) return false;
  out_.Reserve(static_cast<std::int32_t>(wished));
  UseTail();
  return true;
}

void XmlBuffer::AppendLong(std::string_view text) {
  if (static_cast<std::size_t>(end_ - at_) >= text.size()) {
    std::memcpy(at_, text.data(), text.size());
    at_ += text.size();
    return;
  }
  Flush();
  out_.Append(text);
  if (block_ == nullptr) UseTail();
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
  char* out = Room(ascii.size() * kLongestXmlEscape + ByteBlock::kSize);
  const char* in = ascii.data();
  const char* const end = in + ascii.size();
  while (in != end) {
    // A block at a time as it is, up to the first byte that may be replaced. What is written too
    // far is written over.
    while (readable_end - in >= std::ptrdiff_t{ByteBlock::kSize}) {
      const ByteBlock::Mask hits = MayBeXmlEscaped(ByteBlock(in));
      std::memcpy(out, in, ByteBlock::kSize);
      const std::size_t plain = hits != 0 ? ByteBlock::First(hits) : ByteBlock::kSize;
      const std::size_t taken = std::min(plain, static_cast<std::size_t>(end - in));
      in += taken;
      out += taken;
      if (in == end || hits != 0) break;
    }
    if (in == end) break;
    const XmlEscape& escape = XmlEscapeOfByte(*in++);
    if (!escape.IsAscii()) return false;
    out = escape.Write(out);
  }
  at_ = out;
  return true;
}

}  // namespace ixomep
