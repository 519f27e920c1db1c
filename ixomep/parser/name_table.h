// Internal: the distinct names of one text, each with a number, so that a record of a name is four
// bytes and names are compared as numbers. The bytes stay where they are in the text; a String of
// a name is made when it is first asked for, once for all uses.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <vector>

#include "ixomep/host/string.h"
#include "ixomep/parser/record_array.h"

namespace ixomep {

class NameTable {
 public:
  static constexpr std::uint32_t kNoName = 0;                                // the empty name
  static constexpr std::uint32_t kUnknown = static_cast<std::uint32_t>(-1);  // not in the table

  explicit NameTable(std::string_view text);

  // The number of a name that stands in the text and is not empty. kUnknown when too many names
  // fall together, which only happens to texts that are made for it. Throws std::bad_alloc.
  std::uint32_t Add(std::uint32_t at, std::uint32_t size) {
    const Key key = KeyOf(text_ + at, size, text_size_ - at);
    std::uint32_t slot = SlotOf(key);
    for (std::uint32_t probes = 0; probes < kMostProbes; ++probes) {
      const std::uint32_t number = slots_[slot];
      if (number == kNoName) return Insert(slot, key, at);
      if (Matches(entries_[number], key, text_ + at)) return number;
      slot = (slot + 1) & mask_;
    }
    return kUnknown;
  }
  // The number of a name; kUnknown when the text has no such name.
  std::uint32_t Find(std::string_view name) const noexcept;

  std::uint32_t Count() const noexcept { return entries_.Size(); }
  std::string_view View(std::uint32_t number) const noexcept {
    return {text_ + entries_[number].at, entries_[number].size};
  }
  // Throws std::bad_alloc.
  const String& Text(std::uint32_t number) const {
    if (number >= texts_.size()) texts_.resize(entries_.Size());
    String& text = texts_[number];
    if (text.IsEmpty() && number != kNoName) text = String(View(number));
    return text;
  }

 private:
  static constexpr std::uint32_t kMostProbes = 64;

  // What most names are told apart by: their length and first eight bytes.
  struct Key {
    std::uint64_t head;
    std::uint64_t tail;  // the last eight bytes of a longer name
    std::uint32_t size;
  };
  struct Entry {
    std::uint64_t head;
    std::uint32_t at;
    std::uint32_t size;
  };

  static std::uint64_t Load(const char* bytes) noexcept {
    std::uint64_t word;
    std::memcpy(&word, bytes, sizeof word);
    return word;
  }
  // `room` bytes may be read.
  static Key KeyOf(const char* name, std::uint32_t size, std::size_t room) noexcept {
    if (size > 8) return {Load(name), Load(name + size - 8), size};
    if (size == 8) return {Load(name), 0, size};
    if (room >= 8 && std::endian::native == std::endian::little) {
      return {Load(name) & ((std::uint64_t{1} << (8 * size)) - 1), 0, size};
    }
    std::uint64_t head = 0;
    for (std::uint32_t i = 0; i < size; ++i) {
      head |= std::uint64_t{static_cast<unsigned char>(name[i])} << (8 * i);
    }
    return {head, 0, size};
  }
  std::uint32_t SlotOf(const Key& key) const noexcept {
    // Names often differ in their last byte only, and a product carries upwards: fold first.
    std::uint64_t hash = ((key.head ^ key.size) * 0x9E3779B97F4A7C15u) ^ key.tail;
    hash = (hash ^ (hash >> 32)) * 0xD6E8FEB86659FD93u;
    return static_cast<std::uint32_t>(hash >> 40) & mask_;
  }
  bool Matches(const Entry& entry, const Key& key, const char* name) const noexcept {
    if (entry.head != key.head || entry.size != key.size) return false;
    return key.size <= 8 || std::memcmp(text_ + entry.at + 8, name + 8, key.size - 8) == 0;
  }
  std::uint32_t Insert(std::uint32_t slot, const Key& key, std::uint32_t at);
  void Widen();

  const char* text_;
  std::size_t text_size_;
  std::uint32_t mask_ = 0;
  RecordArray<std::uint32_t> slots_;  // numbers; kNoName: free
  RecordArray<Entry> entries_;        // by number; the first is the empty name
  mutable std::vector<String> texts_;
};

}  // namespace ixomep
