// The growing of a table of names, and its question from outside. See name_table.h.
#include "ixomep/parser/name_table.h"

namespace ixomep {
namespace {

constexpr std::uint32_t kFirstSlots = 64;

}  // namespace

NameTable::NameTable(std::string_view text) : text_(text.data()), text_size_(text.size()) {
  slots_.AssignZero(kFirstSlots);
  mask_ = kFirstSlots - 1;
  entries_.Push({0, 0, 0});
}

std::uint32_t NameTable::Find(std::string_view name) const noexcept {
  if (name.empty()) return kNoName;
  if (name.size() > text_size_) return kUnknown;
  const Key key = KeyOf(name.data(), static_cast<std::uint32_t>(name.size()), name.size());
  std::uint32_t slot = SlotOf(key);
  while (slots_[slot] != kNoName) {
    if (Matches(entries_[slots_[slot]], key, name.data())) return slots_[slot];
    slot = (slot + 1) & mask_;
  }
  return kUnknown;
}

std::uint32_t NameTable::Insert(std::uint32_t slot, const Key& key, std::uint32_t at) {
  const std::uint32_t number = entries_.Size();
  entries_.Push({key.head, at, key.size});
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
    const char* const name = text_ + entry.at;
    std::uint32_t slot = SlotOf(KeyOf(name, entry.size, text_size_ - entry.at));
    while (slots_[slot] != kNoName) slot = (slot + 1) & mask_;
    slots_[slot] = number;
  }
}

}  // namespace ixomep
