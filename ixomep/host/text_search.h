// Internal: finding one text in another, forwards and backwards, in time linear in both whatever
// the texts are: a plain search that looks for the pattern's first byte, and, once that has
// compared more than the text is worth, the two-way algorithm, which needs no memory.
#pragma once

#include <cstddef>
#include <string_view>

namespace ixomep {

// One pattern, looked for any number of times. The pattern must outlive it and is not empty.
class TextSearch {
 public:
  static constexpr std::size_t kNone = std::string_view::npos;

  explicit TextSearch(std::string_view pattern) noexcept : pattern_(pattern) {}

  // The lowest position at or behind `from`, else kNone.
  std::size_t Find(std::string_view text, std::size_t from) const noexcept;
  // The highest position at or before `from`, else kNone.
  std::size_t FindBackward(std::string_view text, std::size_t from) const noexcept;

 private:
  std::string_view pattern_;
};

}  // namespace ixomep
