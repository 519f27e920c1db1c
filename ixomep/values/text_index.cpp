// The hash of string keys: open addressing, linear probing.
#include "ixomep/values/text_index.h"

#include <bit>
#include <cstring>
#include <exception>

#include "ixomep/host/memory_budget.h"
#include "ixomep/values/value_rep.h"

namespace ixomep {

namespace {

template <class Word>
std::uint64_t WordAt(const char* bytes) noexcept {
  Word word;
  std::memcpy(&word, bytes, sizeof(word));
  return word;
}

// The text in words of eight bytes, the last one overlapping the one before. Whoever makes keys
// collide on purpose is sent to the order of the map.
[[gnu::always_inline]] inline std::uint64_t HashOf(std::string_view text) noexcept {
  constexpr std::uint64_t kFactor = 0x9E3779B97F4A7C15u;
  const std::size_t length = text.size();
  std::uint64_t hash = length * kFactor;
  const auto add = [&hash](std::uint64_t word) { hash = (std::rotl(hash, 23) ^ word) * kFactor; };
  if (length >= 8) {
    for (std::size_t i = 0; i + 8 < length; i += 8) add(WordAt<std::uint64_t>(text.data() + i));
    add(WordAt<std::uint64_t>(text.data() + length - 8));
  } else if (length >= 4) {
    add(WordAt<std::uint32_t>(text.data()) << 32 | WordAt<std::uint32_t>(text.data() + length - 4));
  } else {
    for (const char byte : text) add(static_cast<unsigned char>(byte));
  }
  return hash ^ (hash >> 32);
}

// Keys are short: comparing them here is faster than the call of the library's function.
bool AreSame(std::string_view a, std::string_view b) noexcept {
  const std::size_t length = a.size();
  if (length != b.size()) return false;
  if (length >= 8) {
    for (std::size_t i = 0; i + 8 < length; i += 8) {
      if (WordAt<std::uint64_t>(a.data() + i) != WordAt<std::uint64_t>(b.data() + i)) return false;
    }
    return WordAt<std::uint64_t>(a.data() + length - 8) ==
           WordAt<std::uint64_t>(b.data() + length - 8);
  }
  if (length >= 4) {
    return WordAt<std::uint32_t>(a.data()) == WordAt<std::uint32_t>(b.data()) &&
           WordAt<std::uint32_t>(a.data() + length - 4) ==
               WordAt<std::uint32_t>(b.data() + length - 4);
  }
  for (std::size_t i = 0; i < length; ++i) {
    if (a[i] != b[i]) return false;
  }
  return true;
}

const String& TextOf(const TextIndex::Entry& entry) noexcept {
  return ValueAccess::Text(*entry.first);
}

}  // namespace

const TextIndex::Entry* TextIndex::Find(std::string_view key) const noexcept {
  const std::uint64_t hash = HashOf(key);
  std::size_t i = hash & mask_;
  for (std::size_t chain = 0; chain < kLongestChain && slots_[i].entry != nullptr;
       ++chain, i = (i + 1) & mask_) {
    const Slot& slot = slots_[i];
    if (slot.hash == hash && AreSame(slot.text.view(), key)) return slot.entry;
  }
  return nullptr;
}

bool TextIndex::Insert(const Entry& entry) noexcept {
  const String& text = TextOf(entry);
  const std::uint64_t hash = HashOf(text.view());
  std::size_t i = hash & mask_;
  for (std::size_t chain = 0; slots_[i].entry != nullptr; i = (i + 1) & mask_) {
    if (++chain == kLongestChain) return false;
  }
  slots_[i] = {hash, &entry, text};
  return true;
}

bool TextIndex::Build(const IxoMepValueMap& entries) noexcept {
  if (is_unfit_ || entries.size() < kLeast) return false;
  is_unfit_ = true;
  try {
    const std::size_t size = std::bit_ceil(entries.size() * 2);
    MemoryBudget::Take(size * sizeof(Slot));
    try {
      slots_.resize(size);
      mask_ = size - 1;
    } catch (...) {
      MemoryBudget::Give(size * sizeof(Slot));
      throw;
    }
  } catch (const std::exception&) {
    return false;
  }
  for (const Entry& entry : entries) {
    const bool is_text =
        entry.first != nullptr && entry.first->GetType() == IxoMepValueType::String;
    if (is_text && !Insert(entry)) {
      Drop();
      is_unfit_ = true;
      return false;
    }
  }
  return true;
}

void TextIndex::Drop() noexcept {
  missed_ = 0;
  is_unfit_ = false;
  if (slots_.empty()) return;
  MemoryBudget::Give(slots_.size() * sizeof(Slot));
  std::vector<Slot>().swap(slots_);
}

}  // namespace ixomep
