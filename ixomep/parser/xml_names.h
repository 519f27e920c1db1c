// Internal: the names in an XML document: which of one element's attributes were written already,
// and what becomes of names that XML does not have.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "ixomep/host/string.h"
#include "ixomep/parser/name_table.h"

namespace ixomep {

// The names of one element's attributes.
class XmlNameSet {
 public:
  // False when the name is there already.
  bool Insert(const String& name);
  void Clear() noexcept {
    marks_ = 0;
    few_.clear();
    if (!many_.empty()) many_.clear();
  }

 private:
  static constexpr std::size_t kFew = 16;  // found faster by looking at them all

  bool Contains(const String& name) const;
  void InsertLines(std::string_view name);

  std::uint64_t marks_ = 0;  // of all names: one bit each, mostly another one
  std::vector<String> few_;
  std::unordered_set<String> many_;
};

// Names as XML can have them: UTF-8, "_" for every character that XML does not allow. Those met
// lately are kept.
class XmlNames {
 public:
  // Borrowed until the next call.
  const String& Of(const String& name);

 private:
  struct Known {
    String name, xml_name;
  };
  std::array<Known, 64> known_;
};

// What is written around a name that is not long, in blocks that are copied whole: a copy of one
// size costs a fraction of one of the size that counts. Of a name that is a keyword and an
// attribute's only the first use is kept.
class alignas(64) XmlNameText {
 public:
  // The sizes of the copies: all that counts of a short name, and of any that is kept.
  static constexpr std::size_t kShort = 32;
  static constexpr std::size_t kAny = 48;
  // May be written by each of these.
  static constexpr std::size_t kRoom = kAny + 16;

  bool IsTag() const noexcept { return tag_size_ != 0; }
  bool IsAttribute() const noexcept { return value_size_ != 0; }
  bool IsShortAttribute() const noexcept { return value_size_ - 1u < kShort; }

  // Each gives the end of what counts. `<name`; without the "<".
  char* WriteTag(char* out) const noexcept { return Copy<kAny>(out, 0, tag_size_); }
  char* WriteEndTag(char* out) const noexcept { return Copy<kAny>(out, 1, tag_size_); }
  // ` val-name="`; ` opt-name="true"`; ` modifier-name="`.
  template <std::size_t kCopy>
  char* WriteValue(char* out) const noexcept {
    return Copy<kCopy>(out, 0, value_size_);
  }
  template <std::size_t kCopy>
  char* WriteOption(char* out) const noexcept {
    std::memcpy(out, " opt-\0\0", 8);
    out = Copy<kCopy>(out + 5, kBeforeName, value_size_);
    std::memcpy(out, "true\"\0\0", 8);
    return out + 5;
  }
  template <std::size_t kCopy>
  char* WriteModifier(char* out) const noexcept {
    std::memcpy(out, " modifier-\0\0\0\0\0", 16);
    return Copy<kCopy>(out + 10, kBeforeName, value_size_);
  }

  // Nothing is kept of a text that is too long.
  void KeepTag(std::string_view text) noexcept { Keep(text, tag_size_); }
  void KeepValue(std::string_view text) noexcept { Keep(text, value_size_); }

  std::uint32_t written = 0;  // the last element with the name

 private:
  static constexpr std::size_t kBeforeName = 5;

  template <std::size_t kCopy>
  char* Copy(char* out, std::size_t from, std::size_t size) const noexcept {
    std::memcpy(out, text_ + from, kCopy);
    return out + (size - from);
  }
  void Keep(std::string_view text, std::uint8_t& size) noexcept {
    if (text.size() > kAny || IsTag() || IsAttribute()) return;
    std::memcpy(text_, text.data(), text.size());
    size = static_cast<std::uint8_t>(text.size());
  }

  std::uint8_t value_size_ = 0;
  std::uint8_t tag_size_ = 0;
  char text_[kAny + kBeforeName] = {};
};
static_assert(sizeof(XmlNameText) == 64);

// The names of a table: what was written is marked at each, each is converted once, and what is
// written around it is put together once.
class XmlNumberedNames {
 public:
  XmlNumberedNames(const NameTable& names, bool xml_names);

  // Another element begins: none of its names has been written.
  std::uint32_t Begin() noexcept { return ++element_; }
  // So many of the names met first have a text that is kept, or may be.
  std::uint32_t TextCount() const noexcept { return static_cast<std::uint32_t>(texts_.size()); }
  // A name that is written like one with a lower number never has a text for attributes.
  XmlNameText& TextAt(std::uint32_t number) noexcept { return texts_[number]; }
  const XmlNameText* TextOf(std::uint32_t number) const noexcept {
    return number < TextCount() ? &texts_[number] : nullptr;
  }
  void KeepTag(std::uint32_t number);
  void KeepAttribute(std::uint32_t number);

  // Notes that a name is written; false when it, or another one that is written like it, is there
  // already. The number becomes that of the first name that is written like this one.
  bool Insert(std::uint32_t& number);
  // What is written of a name; borrowed.
  std::string_view Of(std::uint32_t number) {
    return xml_names_ ? Convert(number).xml_name.view() : names_.View(number);
  }
  void AppendTagOf(std::uint32_t number, std::string& out) const;

 private:
  static constexpr std::uint32_t kKept = 4096;

  struct Known {
    String xml_name;
    std::uint32_t number = NameTable::kNoName;  // the first one with that XML name
  };

  const Known& Convert(std::uint32_t number);

  const NameTable& names_;
  bool xml_names_;
  std::uint32_t element_ = 0;
  std::vector<XmlNameText> texts_;
  std::vector<std::uint32_t> written_;  // of the other names: the last element with the name
  std::vector<Known> known_;
  std::unordered_map<String, std::uint32_t> numbers_;
};

// An element's keyword as a tag: in small letters, with "-" for "_".
void AppendTag(std::string_view keyword, bool xml_names, std::string& out);

}  // namespace ixomep
