// String: the counted 8-bit text of every interface here. One pointer wide; copies share the
// storage and only raise a count, the first write to a shared text makes a private copy. A text
// may hold zero bytes and always has one more behind its end. Empty and one-byte texts live in
// static tables and never allocate. The count is plain: one thread at a time uses the library.
#pragma once

#include <compare>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "ixomep/export.h"

class ResId;

namespace ixomep {
class ShortText;
class StringTail;
}  // namespace ixomep

// Positions count bytes from 0. Functions that lengthen a text throw std::length_error past
// kMaxLength and std::bad_alloc when the memory cannot be had or passes the memory budget; the
// text is then unchanged. Both stay inside the library.
class IXOMEP_API String {
 public:
  static constexpr std::int32_t kMaxLength = 2147483635;
  static constexpr std::int32_t kNotFound = 2147483647;

  // The empty text; allocates nothing.
  String() noexcept : rep_(EmptyRep()) {}
  // Up to the first zero byte; a null pointer gives the empty text.
  String(const char* text);
  // Exactly `length` bytes, zero bytes included; a null pointer or a length below 1: empty.
  String(const char* bytes, int length);
  String(std::string_view text);
  String(const std::string& text);
  // One byte. Constrained, so that no number is taken for a character.
  template <std::same_as<char> Char>
  explicit String(Char byte) : String(std::string_view(&byte, 1)) {}
  // The host's text of that number, empty when it has none.
  explicit String(const ResId& id);
  // `count` times the byte; empty for a count below 1.
  static String Filled(std::int32_t count, char byte);
  // The parts one behind the other.
  static String Joined(std::span<const std::string_view> parts);

  String(const String& other) noexcept : rep_(other.rep_) { Keep(rep_); }
  String(String&& other) noexcept : rep_(other.rep_) { other.rep_ = EmptyRep(); }
  String& operator=(const String& other) noexcept {
    String copy(other);
    std::swap(rep_, copy.rep_);
    return *this;
  }
  String& operator=(String&& other) noexcept;
  ~String() { Drop(rep_); }

  const char* c_str() const noexcept { return TextOf(rep_); }
  std::int32_t Len() const noexcept { return rep_->length; }
  bool IsEmpty() const noexcept { return rep_->length == 0; }
  std::string_view view() const noexcept {
    return {c_str(), static_cast<std::size_t>(rep_->length)};
  }
  operator std::string_view() const noexcept { return view(); }
  // The byte at a position from 0 to Len(); Len() gives the terminating zero byte. Unchecked.
  char operator[](std::int32_t index) const { return c_str()[index]; }
  // True when both use the same storage (two empty texts always do).
  bool SharesTextWith(const String& other) const noexcept { return rep_ == other.rep_; }

  // The stretch from `start` with `count` bytes, clipped at the end. A start that is negative or
  // at or beyond the end, or a count below 1, gives the empty text.
  String Copy(std::int32_t start, std::int32_t count = kMaxLength) const;

  // The position of the first occurrence at or behind `from` (a negative `from` means 0), else
  // kNotFound. An empty pattern is found at `from` while that is not beyond the end.
  std::int32_t Search(std::string_view pattern, std::int32_t from = 0) const noexcept;
  std::int32_t Search(char byte, std::int32_t from = 0) const noexcept;
  // The position of the last occurrence that starts at or before `from`, else kNotFound. A `from`
  // that is negative or too large means the last possible position.
  std::int32_t SearchBackward(std::string_view pattern,
                              std::int32_t from = kNotFound) const noexcept;
  std::int32_t SearchBackward(char byte, std::int32_t from = kNotFound) const noexcept;

  // Removes the stretch, clipped as in Copy; nothing happens where Copy would give nothing.
  String& Erase(std::int32_t start, std::int32_t count = kMaxLength);
  // Inserts before a position, which is clipped to 0 .. Len(). The text may be a part of *this.
  String& Insert(std::string_view text, std::int32_t position);
  // Erase, then Insert at `start`, in one step. A stretch beyond the end is empty.
  String& Replace(std::int32_t start, std::int32_t count, std::string_view text);
  // Replaces the first occurrence of `pattern`; false, and no change, when there is none or the
  // pattern is empty.
  bool ReplaceFirst(std::string_view pattern, std::string_view text);

  // Appending grows in place, by half the size at least, while nobody shares the storage. The
  // text may be a part of *this.
  String& Append(std::string_view text);
  String& operator+=(const String& text);
  String& operator+=(std::string_view text) { return Append(text); }
  String& operator+=(const std::string& text) { return Append(text); }
  String& operator+=(const char* text);
  template <std::same_as<char> Char>
  String& operator+=(Char byte) {
    return Append(std::string_view(&byte, 1));
  }

  // Becomes the parts one behind the other, which are none of this text: where it has its bytes now
  // when nobody shares them and they are room enough, but not much more than that.
  String& Join(std::span<const std::string_view> parts);

  // Makes room for a text of that many bytes without changing it; below the present room it does
  // nothing.
  void Reserve(std::int32_t length);
  // Cuts or lengthens (by zero bytes) to the length; below 0 counts as 0.
  void Resize(std::int32_t length);
  void Clear() noexcept;
  // Len() bytes that may be written until the next other use of this text; never shared. Null
  // for the empty text.
  char* MutableText();

  std::size_t Hash() const noexcept { return std::hash<std::string_view>()(view()); }

  friend String operator+(const String& a, const String& b) { return Joined(a.view(), b.view()); }
  friend String operator+(const String& a, std::string_view b) { return Joined(a.view(), b); }
  friend String operator+(std::string_view a, const String& b) { return Joined(a, b.view()); }
  friend String operator+(const String& a, const std::string& b) { return Joined(a.view(), b); }
  friend String operator+(const std::string& a, const String& b) { return Joined(a, b.view()); }
  friend String operator+(const String& a, const char* b) { return Joined(a.view(), ViewOf(b)); }
  friend String operator+(const char* a, const String& b) { return Joined(ViewOf(a), b.view()); }
  template <std::same_as<char> Char>
  friend String operator+(const String& a, Char b) {
    return Joined(a.view(), std::string_view(&b, 1));
  }

  // Byte-wise, bytes as unsigned numbers; the shorter of two texts with equal beginning is less.
  friend bool operator==(const String& a, const String& b) noexcept {
    return a.rep_ == b.rep_ || a.view() == b.view();
  }
  friend bool operator==(const String& a, std::string_view b) noexcept { return a.view() == b; }
  friend bool operator==(const String& a, const std::string& b) noexcept { return a.view() == b; }
  friend bool operator==(const String& a, const char* b) noexcept { return a.view() == ViewOf(b); }
  friend std::strong_ordering operator<=>(const String& a, const String& b) noexcept {
    return a.view() <=> b.view();
  }
  friend std::strong_ordering operator<=>(const String& a, std::string_view b) noexcept {
    return a.view() <=> b;
  }
  friend std::strong_ordering operator<=>(const String& a, const std::string& b) noexcept {
    return a.view() <=> std::string_view(b);
  }
  friend std::strong_ordering operator<=>(const String& a, const char* b) noexcept {
    return a.view() <=> ViewOf(b);
  }

 private:
  friend class ixomep::ShortText;
  friend class ixomep::StringTail;

  // The head of a text's storage; the bytes and their terminating zero follow it directly.
  struct Rep {
    std::int32_t owners;  // kForever: static, or shared too often to count; never freed
    std::int32_t length;
    std::int32_t capacity;
  };
  struct EmptyText {
    Rep rep;
    char text[4];
  };
  struct OneByteTexts;
  static constexpr std::int32_t kForever = 2147483647;

  static const char* TextOf(const Rep* rep) noexcept {
    return reinterpret_cast<const char*>(rep) + sizeof(Rep);
  }
  static char* TextOf(Rep* rep) noexcept { return reinterpret_cast<char*>(rep) + sizeof(Rep); }
  static std::string_view ViewOf(const char* text) noexcept {
    return text == nullptr ? std::string_view() : std::string_view(text);
  }
  static Rep* EmptyRep() noexcept { return &empty_text_.rep; }
  static Rep* NewRep(std::int64_t length, std::int64_t capacity);
  static Rep* RepOf(std::string_view text);
  [[gnu::noinline]] static Rep* AnyRepOf(std::string_view text);
  static void Free(Rep* rep) noexcept;
  static void Keep(Rep* rep) noexcept {
    if (rep->owners != kForever) ++rep->owners;
  }
  static void Drop(Rep* rep) noexcept {
    if (rep->owners != kForever && --rep->owners == 0) Free(rep);
  }
  static String Joined(std::string_view a, std::string_view b);

  bool IsWritable(std::int64_t length) const noexcept;
  static std::int64_t GrownCapacity(const Rep* rep, std::int64_t length) noexcept;
  // Replaces the storage by one that this text already owns.
  void Take(Rep* rep) noexcept {
    Drop(rep_);
    rep_ = rep;
  }

  static EmptyText empty_text_;  // never written

  Rep* rep_;  // never null
};

static_assert(sizeof(String) == sizeof(void*));

template <>
struct std::hash<String> {
  std::size_t operator()(const String& text) const noexcept { return text.Hash(); }
};
