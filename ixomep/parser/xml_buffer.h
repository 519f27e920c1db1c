// Internal: the growing text that XML is written into. Bytes go straight into the room that the
// text has, which grows while there is plenty of memory; then they are collected in a block and
// appended a block at a time. ASCII values are escaped on their way, without a text of their own.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <span>
#include <string_view>

#include "ixomep/host/limit_watch.h"
#include "ixomep/host/string.h"
#include "ixomep/host/string_tail.h"

namespace ixomep {

// What is written is in the text after Flush. Throws as String does.
class XmlBuffer {
 public:
  // The most that Room can give.
  static constexpr std::size_t kBlockSize = 32768;

  // Appends to a text that lives as long, and that nobody else uses until Flush.
  explicit XmlBuffer(String& out) : out_(out) { UseTail(); }

  // Place for that many bytes, kBlockSize at most; what has been written is told to Advance.
  char* Room(std::size_t size) {
    if (static_cast<std::size_t>(end_ - at_) < size) [[unlikely]]
      NextBlock();
    return at_;
  }
  void Advance(const char* end) noexcept { at_ += end - at_; }
  // For writers that keep the place in a register: the end of the room that is there without a
  // call. What they have written is told to Advance before anything else is called.
  char* At() const noexcept { return at_; }
  const char* End() const noexcept { return end_; }

  // A string literal.
  template <std::size_t kSize>
  void Literal(const char (&text)[kSize]) {
    std::memcpy(Room(kSize - 1), text, kSize - 1);
    at_ += kSize - 1;
  }
  void Append(char byte) {
    *Room(1) = byte;
    ++at_;
  }
  void Append(std::string_view text) {
    if (text.size() > kBlockSize) return AppendLong(text);
    Copy(Room(text.size()), text);
    at_ += text.size();
  }
  void Blanks(std::size_t count) {
    if (count > kFewBlanks) return ManyBlanks(count);
    Advance(WriteFewBlanks(count, Room(kFewBlanks)));
  }
  // So many at most, for which there is room; the end of what counts.
  static constexpr std::size_t kFewBlanks = 96;
  static char* WriteFewBlanks(std::size_t count, char* out) noexcept {
    constexpr std::size_t kUsual = 32;
    std::memset(out, ' ', kUsual);
    if (count > kUsual) std::memset(out + kUsual, ' ', kFewBlanks - kUsual);
    return out + count;
  }
  // Escaped for an attribute value. False, and nothing written, when a byte of the text is not
  // ASCII: what becomes of those is the host's to say. Bytes behind the text may be read up to
  // `readable_end`.
  bool AppendEscaped(std::string_view ascii, const char* readable_end);
  bool AppendEscaped(std::string_view ascii) {
    return AppendEscaped(ascii, ascii.data() + ascii.size());
  }

  void Flush();

 private:
  // Most names and values are short, and a call costs more than copying them: two moves of one
  // size that overlap.
  template <class Word>
  static void CopyEnds(char* to, std::string_view from) noexcept {
    Word front, back;
    const std::size_t rest = from.size() - sizeof(Word);
    std::memcpy(&front, from.data(), sizeof front);
    std::memcpy(&back, from.data() + rest, sizeof back);
    std::memcpy(to, &front, sizeof front);
    std::memcpy(to + rest, &back, sizeof back);
  }
  static void Copy(char* to, std::string_view from) noexcept {
    if (from.size() > 16) {
      std::memcpy(to, from.data(), from.size());
    } else if (from.size() >= 8) {
      CopyEnds<std::uint64_t>(to, from);
    } else if (from.size() >= 4) {
      CopyEnds<std::uint32_t>(to, from);
    } else {
      for (const char byte : from) *to++ = byte;
    }
  }
  void UseTail() noexcept {
    const std::span<char> tail = StringTail::Of(out_);
    start_ = at_ = tail.data();
    end_ = at_ + tail.size();
  }
  void AppendLong(std::string_view text);
  void NextBlock();
  bool Widen();
  void ManyBlanks(std::size_t count);
  bool AppendEscapedPiece(std::string_view ascii, const char* readable_end);

  String& out_;
  std::unique_ptr<char[]> block_;  // null while the text has room
  char* start_;                    // of the room that is being filled
  char* at_;
  char* end_;
  LongWork work_;
};

}  // namespace ixomep
