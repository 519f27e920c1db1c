// String: storage, copying on write, search and edit. See string.h for the contracts.
#include "ixomep/host/string.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <new>
#include <stdexcept>
#include <utility>

#include "ixomep/host/host.h"
#include "ixomep/host/large_blocks.h"
#include "ixomep/host/memory_budget.h"
#include "ixomep/host/res_id.h"
#include "ixomep/host/sanitizer.h"
#include "ixomep/host/short_text.h"
#include "ixomep/host/text_search.h"

// The 256 texts of one byte. Like the empty text they are constant-initialised, never written and
// never destroyed, so that texts may be used before main and after static destruction. They are
// not const only because a Rep* points to them.
struct String::OneByteTexts {
  struct Entry {
    Rep rep;
    char text[4];
  };
  static_assert(sizeof(Entry) == sizeof(Rep) + 4 && sizeof(EmptyText) == sizeof(Rep) + 4);

  static constexpr std::array<Entry, 256> Make() {
    std::array<Entry, 256> made{};
    for (std::size_t i = 0; i < 256; ++i) {
      made[i] = {{kForever, 1, 1}, {static_cast<char>(static_cast<unsigned char>(i))}};
    }
    return made;
  }
  static std::array<Entry, 256> entries;

  static Rep* Of(char byte) noexcept { return &entries[static_cast<unsigned char>(byte)].rep; }
};

constinit std::array<String::OneByteTexts::Entry, 256> String::OneByteTexts::entries =
    String::OneByteTexts::Make();

constinit String::EmptyText String::empty_text_ = {{kForever, 0, 0}, {}};

namespace {

constexpr std::int64_t kMaxCapacity = String::kMaxLength;

// The first and the last bytes of a text that is no longer than both together.
template <std::size_t kBytes>
void CopyEnds(char* to, std::string_view from) noexcept {
  char first[kBytes], last[kBytes];
  std::memcpy(first, from.data(), kBytes);
  std::memcpy(last, from.data() + from.size() - kBytes, kBytes);
  std::memcpy(to, first, kBytes);
  std::memcpy(to + from.size() - kBytes, last, kBytes);
}

// For the few bytes that most texts have a call costs more than the copy.
inline void CopyBytes(char* to, std::string_view from) noexcept {
  const std::size_t size = from.size();
  if (size >= 32 && size <= 64) {
    CopyEnds<32>(to, from);
  } else if (size >= 16 && size < 32) {
    CopyEnds<16>(to, from);
  } else if (size >= 8 && size < 16) {
    CopyEnds<8>(to, from);
  } else if (size >= 4 && size < 8) {
    CopyEnds<4>(to, from);
  } else if (size > 64) {
    std::memcpy(to, from.data(), size);
  } else if (size != 0) {  // up to three: the first, the middle and the last
    to[0] = from[0];
    to[size / 2] = from[size / 2];
    to[size - 1] = from[size - 1];
  }
}

// A position or size of this library: at most kMaxLength + 1.
std::int32_t Narrow(std::size_t position) noexcept { return static_cast<std::int32_t>(position); }

}  // namespace

// Storage ---------------------------------------------------------------------------------------

// New storage with one owner; the bytes are not set, the terminating zero is.
String::Rep* String::NewRep(std::int64_t length, std::int64_t capacity) {
  if (length > kMaxCapacity) throw std::length_error("text too long");
  const auto bytes = sizeof(Rep) + static_cast<std::size_t>(capacity) + 1;
  ixomep::MemoryBudget::Take(bytes);
  void* memory = ixomep::ShortBlocks::New(bytes);
  if (memory == nullptr) {
    ixomep::MemoryBudget::Give(bytes);
    throw std::bad_alloc();
  }
  Rep* rep =
      new (memory) Rep{1, static_cast<std::int32_t>(length), static_cast<std::int32_t>(capacity)};
  TextOf(rep)[length] = '\0';
  return rep;
}

String::Rep* String::AnyRepOf(std::string_view text) {
  if (text.empty()) return EmptyRep();
  if (text.size() == 1) return OneByteTexts::Of(text.front());
  if (text.size() > static_cast<std::size_t>(kMaxLength)) throw std::length_error("text too long");
  const auto length = static_cast<std::int64_t>(text.size());
  Rep* rep = NewRep(length, length);
  CopyBytes(TextOf(rep), text);
  return rep;
}

// Most texts are short.
inline String::Rep* String::RepOf(std::string_view text) {
  Rep* const rep = ixomep::ShortText::New(text.size());
  if (rep == nullptr) [[unlikely]]
    return AnyRepOf(text);
  TextOf(rep)[text.size()] = '\0';
  CopyBytes(TextOf(rep), text);
  return rep;
}

void String::Free(Rep* rep) noexcept {
  const auto bytes = sizeof(Rep) + static_cast<std::size_t>(rep->capacity) + 1;
  ixomep::MemoryBudget::Give(bytes);
  ixomep::ShortBlocks::Delete(rep, bytes);
}

bool String::IsWritable(std::int64_t length) const noexcept {
  return rep_->owners == 1 && rep_->capacity >= length;
}

// Room for repeated appending: half as much again, near the budget's limit less. Below a thirty-
// second it is the limit that has been reached: appending piece after piece would copy the whole
// text each time.
std::int64_t String::GrownCapacity(const Rep* rep, std::int64_t length) noexcept {
  std::int64_t roomy = length;
  for (const std::int32_t part : {2, 8, 32}) {
    const std::int64_t grown =
        std::int64_t{rep->length} + rep->length / part + (part == 2 ? 16 : 0);
    roomy = std::min(kMaxCapacity, std::max(length, grown));
    if (ixomep::MemoryBudget::MayTake(sizeof(Rep) + static_cast<std::size_t>(roomy) + 1)) break;
  }
  return roomy;
}

// Construction ----------------------------------------------------------------------------------

String::String(const char* text) : rep_(RepOf(ViewOf(text))) {}
String::String(const char* bytes, int length)
    : rep_(RepOf(bytes == nullptr || length < 1
                     ? std::string_view()
                     : std::string_view(bytes, static_cast<std::size_t>(length)))) {}
String::String(std::string_view text) : rep_(RepOf(text)) {}
String::String(const std::string& text) : rep_(RepOf(text)) {}
String::String(const ResId& id) : String(IxoHost::Current().ResourceText(id.GetNumber())) {}

String String::Filled(std::int32_t count, char byte) {
  String filled;
  if (count < 1) return filled;
  filled.rep_ = NewRep(count, count);
  std::memset(TextOf(filled.rep_), byte, static_cast<std::size_t>(count));
  return filled;
}

String& String::operator=(String&& other) noexcept {
  std::swap(rep_, other.rep_);
  if (this != &other) other.Clear();
  return *this;
}

namespace {

std::int32_t LengthOf(std::span<const std::string_view> parts) {
  std::size_t length = 0;
  for (const std::string_view part : parts) {
    if (part.size() > static_cast<std::size_t>(String::kMaxLength) - length) {
      throw std::length_error("text too long");
    }
    length += part.size();
  }
  return static_cast<std::int32_t>(length);
}

inline void CopyParts(char* end, std::span<const std::string_view> parts) noexcept {
  for (const std::string_view part : parts) {
    CopyBytes(end, part);
    end += part.size();
  }
}

}  // namespace

String String::Joined(std::span<const std::string_view> parts) {
  const std::int32_t length = LengthOf(parts);
  String joined;
  if (length == 0) return joined;
  joined.rep_ = NewRep(length, length);
  CopyParts(TextOf(joined.rep_), parts);
  return joined;
}

String& String::Join(std::span<const std::string_view> parts) {
  constexpr std::int64_t kSpare = 64;
  const std::int32_t length = LengthOf(parts);
  if (length != 0 && IsWritable(length) && rep_->capacity <= 2 * std::int64_t{length} + kSpare) {
    rep_->length = length;
    TextOf(rep_)[length] = '\0';
  } else {
    Take(length == 0 ? EmptyRep() : NewRep(length, length));
  }
  CopyParts(TextOf(rep_), parts);
  return *this;
}

String String::Joined(std::string_view a, std::string_view b) {
  String joined;
  // Both sizes fit in 31 bits or fail in NewRep; compared first, so that the sum cannot wrap.
  if (a.size() > static_cast<std::size_t>(kMaxLength) ||
      b.size() > static_cast<std::size_t>(kMaxLength) - a.size()) {
    throw std::length_error("text too long");
  }
  const auto length = static_cast<std::int64_t>(a.size() + b.size());
  if (length == 0) return joined;
  joined.rep_ = NewRep(length, length);
  CopyBytes(TextOf(joined.rep_), a);
  CopyBytes(TextOf(joined.rep_) + a.size(), b);
  return joined;
}

// Parts and search ------------------------------------------------------------------------------

String String::Copy(std::int32_t start, std::int32_t count) const {
  if (start < 0 || start >= Len() || count < 1) return String();
  const std::int32_t length = std::min(count, Len() - start);
  if (length == Len()) return *this;
  return String(view().substr(static_cast<std::size_t>(start), static_cast<std::size_t>(length)));
}

std::int32_t String::Search(std::string_view pattern, std::int32_t from) const noexcept {
  const auto start = static_cast<std::size_t>(std::max(from, 0));
  const std::size_t found = pattern.empty() ? view().find(pattern, start)
                                            : ixomep::TextSearch(pattern).Find(view(), start);
  return found == std::string_view::npos ? kNotFound : Narrow(found);
}

std::int32_t String::Search(char byte, std::int32_t from) const noexcept {
  return Search(std::string_view(&byte, 1), from);
}

std::int32_t String::SearchBackward(std::string_view pattern, std::int32_t from) const noexcept {
  const std::size_t start = from < 0 ? std::string_view::npos : static_cast<std::size_t>(from);
  const std::size_t found = pattern.empty()
                                ? view().rfind(pattern, start)
                                : ixomep::TextSearch(pattern).FindBackward(view(), start);
  return found == std::string_view::npos ? kNotFound : Narrow(found);
}

std::int32_t String::SearchBackward(char byte, std::int32_t from) const noexcept {
  return SearchBackward(std::string_view(&byte, 1), from);
}

// Editing ---------------------------------------------------------------------------------------

String& String::Erase(std::int32_t start, std::int32_t count) {
  if (start < 0 || start >= Len() || count < 1) return *this;
  return Replace(start, count, {});
}

String& String::Insert(std::string_view text, std::int32_t position) {
  return Replace(std::clamp(position, 0, Len()), 0, text);
}

String& String::Replace(std::int32_t start, std::int32_t count, std::string_view text) {
  start = std::clamp(start, 0, Len());
  count = std::clamp(count, 0, Len() - start);
  if (text.size() > static_cast<std::size_t>(kMaxLength)) throw std::length_error("text too long");
  const std::int64_t length = std::int64_t{Len()} - count + static_cast<std::int64_t>(text.size());
  if (length == 0) {
    Clear();
    return *this;
  }
  const auto behind = static_cast<std::size_t>(start) + static_cast<std::size_t>(count);
  const std::string_view tail = view().substr(behind);
  // New storage unless the bytes can stay where they are; `text` may lie in the old one, so that
  // one is dropped last. Removal in place is the frequent case (placeholders, file-name stack).
  if (text.empty() && IsWritable(length)) {
    std::memmove(TextOf(rep_) + start, tail.data(), tail.size());
    rep_->length = static_cast<std::int32_t>(length);
    TextOf(rep_)[length] = '\0';
    return *this;
  }
  Rep* rep = NewRep(length, length);
  CopyBytes(TextOf(rep), view().substr(0, static_cast<std::size_t>(start)));
  CopyBytes(TextOf(rep) + start, text);
  CopyBytes(TextOf(rep) + start + text.size(), tail);
  Take(rep);
  return *this;
}

bool String::ReplaceFirst(std::string_view pattern, std::string_view text) {
  const std::int32_t found = pattern.empty() ? kNotFound : Search(pattern);
  if (found == kNotFound) return false;
  Replace(found, static_cast<std::int32_t>(pattern.size()), text);
  return true;
}

String& String::Append(std::string_view text) {
  if (text.empty()) return *this;
  if (text.size() > static_cast<std::size_t>(kMaxLength)) throw std::length_error("text too long");
  const std::int64_t length = std::int64_t{Len()} + static_cast<std::int64_t>(text.size());
  if (IsWritable(length)) {
    // A part of *this lies before the end, where the bytes go: no overlap.
    CopyBytes(TextOf(rep_) + rep_->length, text);
    rep_->length = static_cast<std::int32_t>(length);
    TextOf(rep_)[length] = '\0';
    return *this;
  }
  if (length == 1) {
    Take(RepOf(text));
    return *this;
  }
  Rep* rep = NewRep(length, IsEmpty() ? length : GrownCapacity(rep_, length));
  CopyBytes(TextOf(rep), view());
  CopyBytes(TextOf(rep) + rep_->length, text);
  Take(rep);
  return *this;
}

String& String::operator+=(const String& text) {
  if (IsEmpty() && rep_->capacity == 0) return *this = text;
  return Append(text.view());
}

String& String::operator+=(const char* text) { return Append(ViewOf(text)); }

void String::Reserve(std::int32_t length) {
  if (length <= Len() || IsWritable(length)) return;
  if (length > kMaxLength) throw std::length_error("text too long");
  Rep* rep = NewRep(Len(), length);
  CopyBytes(TextOf(rep), view());
  Take(rep);
}

void String::Resize(std::int32_t length) {
  if (length < Len()) {
    Erase(std::max(length, 0));
    return;
  }
  const auto missing = static_cast<std::size_t>(length - Len());
  if (missing == 0) return;
  if (!IsWritable(length)) {
    Rep* rep = NewRep(length, GrownCapacity(rep_, length));
    CopyBytes(TextOf(rep), view());
    rep->length = Len();
    Take(rep);
  }
  std::memset(TextOf(rep_) + rep_->length, 0, missing + 1);
  rep_->length = length;
}

void String::Clear() noexcept { Take(EmptyRep()); }

char* String::MutableText() {
  if (IsEmpty()) return nullptr;
  if (!IsWritable(Len())) {
    Rep* rep = NewRep(Len(), Len());
    CopyBytes(TextOf(rep), view());
    Take(rep);
  }
  return TextOf(rep_);
}
