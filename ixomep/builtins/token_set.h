// Internal: a set of tokens for membership tests over lists of millions of tokens. A token of up
// to eight bytes stands in its slot itself, so that a test touches one line of memory and not the
// list as well; of a longer one, the slot has the hash and the position.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace ixomep {

// Open addressing, at most half full.
class TokenSet {
 public:
  // Of tokens that are parts of this text, which must outlive the set.
  explicit TokenSet(std::string_view text);
  void Add(std::string_view token);
  bool Contains(std::string_view token) const noexcept;

 private:
  struct Slot {
    std::uint64_t key = 0;  // the bytes of a short token, the hash of a long one
    std::uint32_t size = kFree;
    std::uint32_t position = 0;  // in the text
  };
  static constexpr std::uint32_t kFree = 0xFFFFFFFFu;

  // The slot that holds the token, or the free one where it belongs.
  std::size_t SlotFor(std::string_view token, std::uint64_t key) const noexcept;
  void Grow();

  const char* text_;
  std::vector<Slot> slots_;
  std::size_t used_ = 0;
};

}  // namespace ixomep
