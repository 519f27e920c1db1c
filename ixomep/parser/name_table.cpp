// The growing of a table of names, and its question from outside. See name_table.h.
#include "ixomep/parser/name_table.h"

#include <algorithm>

namespace ixomep {
namespace {

constexpr std::uint32_t kFirstSlots = 64;

}  // namespace

NameTable::NameTable(std::string_view text) : text_(text.data()) {
  slots_.AssignZero(kFirstSlots);
  mask_ = kFirstSlots - 1;
  entries_.Push({0, 0, 0, 0});
}

// Loads that overlap, so that short names are not read byte by byte.
NameTable::Key NameTable::KeyOf(std::string_view name) noexcept {
  const auto size = static_cast<std::uint32_t>(name.size());
  const char* const first = name.data();
  const char* const end = first + size;
  if (size > 8)
    return {LoadWord(first), LoadWord(end - 8) >> (size < 16 ? 8 * (16 - size) : 0), size};
  if (size == 8) return {LoadWord(first), 0, size};
  if (size >= 4) {
    const std::uint64_t back = LoadHalf(end - 4);
    return {LoadHalf(first) | back << (8 * (size - 4)), 0, size};
  }
  std::uint64_t head = 0;
  for (std::uint32_t i = 0; i < size; ++i) {
    head |= std::uint64_t{static_cast<unsigned char>(first[i])} << (8 * i);
  }
  return {head, 0, size};
}

std::uint32_t NameTable::Add(std::uint32_t at, std::uint32_t size) {
  const Key key = KeyOf({text_ + at, size});
  std::uint32_t slot = SlotOf(key);
  for (std::uint32_t probes = 0; probes < kMostProbes; ++probes) {
    const std::uint32_t number = slots_[slot];
    if (number == kNoName) return Insert(slot, key, at);
    if (Matches(entries_[number], key, text_ + at)) return number;
    slot = (slot + 1) & mask_;
  }
  return kUnknown;
}

std::uint32_t NameTable::Find(std::string_view name) const noexcept {
  if (name.empty()) return kNoName;
  const Key key = KeyOf(name);
  std::uint32_t slot = SlotOf(key);
  while (slots_[slot] != kNoName) {
    if (Matches(entries_[slots_[slot]], key, name.data())) return slots_[slot];
    slot = (slot + 1) & mask_;
  }
  return kUnknown;
}

const String& NameTable::MakeText(std::uint32_t number) const {
  if (number >= texts_.size()) texts_.resize(entries_.Size());
  if (number != kNoName) {
    texts_[number] = String(View(number));
    last_asked_ = number;
  }
  return texts_[number];
}

std::uint32_t NameTable::Insert(std::uint32_t slot, const Key& key, std::uint32_t at) {
  const std::uint32_t number = entries_.Size();
  entries_.Push({key.head, key.tail, at, key.size});
  slots_[slot] = number;
  if (number * 2 > mask_) Widen();
  return number;
}

void NameTable::Widen() {
  const std::uint32_t count = (mask_ + 1) * 2;
  slots_.AssignZero(count);
  mask_ = count - 1;
  for (std::uint32_t number = 1; number < entries_.Size(); ++number) {
    const Entry& entry = entries_[number];
    std::uint32_t slot = SlotOf({entry.head, entry.tail, entry.size});
    while (slots_[slot] != kNoName) slot = (slot + 1) & mask_;
    slots_[slot] = number;
  }
}

}  // namespace ixomep
