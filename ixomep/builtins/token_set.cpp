// The set of tokens.
#include "ixomep/builtins/token_set.h"

#include <cstring>
#include <utility>

namespace ixomep {

namespace {

constexpr std::size_t kFirstSize = 64;  // a power of two, as all sizes
constexpr std::size_t kBlock = sizeof(std::uint64_t);

// The start differs from run to run where the system places memory at random, so that no list can
// be made in advance whose tokens all meet in one slot.
std::uint64_t Seed() noexcept {
  static const char place = 0;
  return reinterpret_cast<std::uintptr_t>(&place);
}

std::uint64_t Mixed(std::uint64_t bits) noexcept {
  bits = (bits ^ Seed()) * 0x9E3779B97F4A7C15u;
  bits = (bits ^ (bits >> 29)) * 0xBF58476D1CE4E5B9u;
  return bits ^ (bits >> 32);
}

std::uint64_t KeyOf(std::string_view token) noexcept {
  std::uint64_t key = 0;
  if (token.size() <= kBlock) {
    if (!token.empty()) std::memcpy(&key, token.data(), token.size());
    return key;
  }
  while (!token.empty()) {
    std::uint64_t block = 0;
    const std::size_t taken = token.size() < kBlock ? token.size() : kBlock;
    std::memcpy(&block, token.data(), taken);
    key = Mixed(key * 31 + block);
    token.remove_prefix(taken);
  }
  return key;
}

}  // namespace

TokenSet::TokenSet(std::string_view text) : text_(text.data()), slots_(kFirstSize) {}

std::size_t TokenSet::SlotFor(std::string_view token, std::uint64_t key) const noexcept {
  const std::size_t mask = slots_.size() - 1;
  const auto size = static_cast<std::uint32_t>(token.size());
  std::size_t at = Mixed(key + token.size()) & mask;
  for (; slots_[at].size != kFree; at = (at + 1) & mask) {
    const Slot& slot = slots_[at];
    if (slot.key != key || slot.size != size) continue;
    if (size <= kBlock || std::memcmp(text_ + slot.position, token.data(), size) == 0) break;
  }
  return at;
}

void TokenSet::Add(std::string_view token) {
  const std::uint64_t key = KeyOf(token);
  Slot& slot = slots_[SlotFor(token, key)];
  if (slot.size != kFree) return;
  const std::size_t position = token.empty() ? 0 : static_cast<std::size_t>(token.data() - text_);
  slot = Slot{key, static_cast<std::uint32_t>(token.size()), static_cast<std::uint32_t>(position)};
  if (++used_ * 2 > slots_.size()) Grow();
}

bool TokenSet::Contains(std::string_view token) const noexcept {
  return slots_[SlotFor(token, KeyOf(token))].size != kFree;
}

void TokenSet::Grow() {
  const std::vector<Slot> old = std::exchange(slots_, std::vector<Slot>(slots_.size() * 2));
  const std::size_t mask = slots_.size() - 1;
  for (const Slot& slot : old) {
    if (slot.size == kFree) continue;
    std::size_t at = Mixed(slot.key + slot.size) & mask;
    while (slots_[at].size != kFree) at = (at + 1) & mask;
    slots_[at] = slot;
  }
}

}  // namespace ixomep
