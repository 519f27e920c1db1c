// Internal: the distinct names of one text, each with a number, so that a record of a name is four
// bytes and names are compared as numbers. The bytes stay where they are in the text; a String of
// a name is made when it is first asked for, once for all uses.
#pragma once

#include <array>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <vector>

#include "ixomep/host/string.h"
#include "ixomep/parser/byte_block.h"
#include "ixomep/parser/record_array.h"

namespace ixomep {

class NameTable {
 public:
  static constexpr std::uint32_t kNoName = 0;                                // the empty name
  static constexpr std::uint32_t kUnknown = static_cast<std::uint32_t>(-1);  // not in the table

  explicit NameTable(std::string_view text);

  // What most names are told apart by. Says all of a name of at most sixteen bytes.
  struct Key {
    std::uint64_t head;  // the first eight bytes
    std::uint64_t tail;  // the bytes behind them; the last eight of a longer name
    std::uint32_t size;
  };
  static constexpr std::uint32_t kShort = 16;
  // Of a name of at most that many bytes; all of them may be read, whatever its length.
  static Key ShortKey(const char* name, std::uint32_t size) noexcept {
    const HeadMask& mask = kHeadMasks[size];
    return {LoadWord(name) & mask.head, LoadWord(name + 8) & mask.tail, size};
  }
  // The bytes of a word that belong to a stretch of up to eight.
  static std::uint64_t HeadOf(std::uint32_t size) noexcept { return kHeadMasks[size].head; }
  // The number of a short name; kNoName when it has none, or one that is not quickly found.
  std::uint32_t FindShort(const Key& key) const noexcept {
    std::uint32_t slot = SlotOf(key);
    for (std::uint32_t probes = 0; probes < kQuickProbes; ++probes) {
      const std::uint32_t number = slots_[slot];
      if (number == kNoName || IsLike(entries_[number], key)) return number;
      slot = (slot + 1) & mask_;
    }
    return kNoName;
  }

  // The number of a name that stands in the text and is not empty. kUnknown when too many names
  // fall together, which only happens to texts that are made for it. Throws std::bad_alloc.
  std::uint32_t Add(std::uint32_t at, std::uint32_t size);
  // The number of a name; kUnknown when the text has no such name.
  std::uint32_t Find(std::string_view name) const noexcept;
  // The same; a text that Text or KnownText gave last is known by its storage.
  std::uint32_t Find(const String& name) const noexcept {
    const std::uint32_t last = FindLast(name);
    return last != kUnknown ? last : Find(name.view());
  }
  // The same of that text only; kUnknown for others.
  std::uint32_t FindLast(const String& name) const noexcept {
    const bool is_last = last_asked_ < texts_.size() && texts_[last_asked_].SharesTextWith(name);
    return is_last ? last_asked_ : kUnknown;
  }

  std::uint32_t Count() const noexcept { return entries_.Size(); }
  // Whether a name of at most sixteen bytes has any of 128 and more.
  bool HasBytesAbove(std::uint32_t number) const noexcept {
    return ((entries_[number].head | entries_[number].tail) & Eightfold(0x80)) != 0;
  }
  std::string_view View(std::uint32_t number) const noexcept {
    return {text_ + entries_[number].at, entries_[number].size};
  }
  // Throws std::bad_alloc.
  const String& Text(std::uint32_t number) const {
    const String* const text = KnownText(number);
    return text != nullptr ? *text : MakeText(number);
  }
  // Null when the text has not been made yet.
  const String* KnownText(std::uint32_t number) const noexcept {
    if (number >= texts_.size() || texts_[number].IsEmpty()) return nullptr;
    last_asked_ = number;
    return &texts_[number];
  }

 private:
  static constexpr std::uint32_t kMostProbes = 64;
  static constexpr std::uint32_t kQuickProbes = 4;

  struct Entry {
    std::uint64_t head;
    std::uint64_t tail;
    std::uint32_t at;
    std::uint32_t size;
  };
  // The bytes that belong to a name of a length.
  struct HeadMask {
    std::uint64_t head;
    std::uint64_t tail;
  };
  static constexpr std::array<HeadMask, kShort + 1> kHeadMasks = [] {
    std::array<HeadMask, kShort + 1> masks{};
    for (std::size_t size = 1; size <= kShort; ++size) {
      masks[size] = masks[size - 1];
      std::uint64_t& word = size <= 8 ? masks[size].head : masks[size].tail;
      word = word << 8 | 0xFF;
    }
    return masks;
  }();

  static Key KeyOf(std::string_view name) noexcept;
  std::uint32_t SlotOf(const Key& key) const noexcept {
    // Names often differ in their last byte only, and a product carries upwards: fold first.
    std::uint64_t hash = ((key.head ^ key.size) * 0x9E3779B97F4A7C15u) ^ key.tail;
    hash = (hash ^ (hash >> 32)) * 0xD6E8FEB86659FD93u;
    return static_cast<std::uint32_t>(hash >> 40) & mask_;
  }
  static bool IsLike(const Entry& entry, const Key& key) noexcept {
    return ((entry.head ^ key.head) | (entry.tail ^ key.tail) | (entry.size ^ key.size)) == 0;
  }
  bool Matches(const Entry& entry, const Key& key, const char* name) const noexcept {
    if (!IsLike(entry, key)) return false;
    return key.size <= kShort || std::memcmp(text_ + entry.at + 8, name + 8, key.size - 16) == 0;
  }
  const String& MakeText(std::uint32_t number) const;
  std::uint32_t Insert(std::uint32_t slot, const Key& key, std::uint32_t at);
  void Widen();

  const char* text_;
  std::uint32_t mask_ = 0;
  RecordArray<std::uint32_t> slots_;  // numbers; kNoName: free
  RecordArray<Entry> entries_;        // by number; the first is the empty name
  mutable std::vector<String> texts_;
  mutable std::uint32_t last_asked_ = kNoName;
};

}  // namespace ixomep
