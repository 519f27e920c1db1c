// Internal: a hash of a map's string keys beside its order: a lookup among a hundred keys takes
// 10 ns instead of 60. Built when it has been missed often enough to pay for itself, dropped when
// the keys change.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "ixomep/values/value.h"

namespace ixomep {

class TextIndex {
 public:
  using Entry = IxoMepValueMap::value_type;

  TextIndex() = default;
  TextIndex(const TextIndex&) = delete;
  TextIndex& operator=(const TextIndex&) = delete;
  ~TextIndex() { Drop(); }

  // Ready to be asked about these entries? Builds itself when that is worth it by now.
  bool IsReady(const IxoMepValueMap& entries) noexcept {
    return !slots_.empty() || (++missed_ * kLookupsForEach >= entries.size() && Build(entries));
  }
  // The entry under that string key, null when there is none.
  const Entry* Find(std::string_view key) const noexcept;
  // Called before entries are added or removed.
  void Drop() noexcept;

 private:
  // The key's text is kept beside the entry: that is two steps less than through the entry.
  struct Slot {
    std::uint64_t hash = 0;
    const Entry* entry = nullptr;
    String text;
  };
  static constexpr std::size_t kLeast = 8;           // entries; fewer are found faster in order
  static constexpr std::size_t kLookupsForEach = 2;  // building costs about half a lookup an entry
  // Longer chains are bad luck or meant: such keys are found by their order.
  static constexpr std::size_t kLongestChain = 16;

  // False, and not tried again until the keys change, for unfit keys or without memory.
  bool Build(const IxoMepValueMap& entries) noexcept;
  bool Insert(const Entry& entry) noexcept;

  std::vector<Slot> slots_;  // a power of two, at most half of them used
  std::size_t mask_ = 0;     // their number less one
  std::size_t missed_ = 0;   // lookups since the keys changed
  bool is_unfit_ = false;
};

}  // namespace ixomep
