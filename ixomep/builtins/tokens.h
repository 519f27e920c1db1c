// Internal: token lists: texts whose tokens stand between separator characters. The one reader
// that the token functions and "fortok" share.
#pragma once

#include <cstdint>
#include <string_view>

#include "ixomep/builtins/call.h"
#include "ixomep/host/string.h"

namespace ixomep {

// The character between tokens. The first character of an empty text is its terminator, which no
// list holds: such a separator separates nothing and is not written either.
class Separator {
 public:
  static constexpr Separator Space() noexcept { return Separator(" "); }
  explicit constexpr Separator(std::string_view text) noexcept
      : byte_(text.empty() ? '\0' : text.front()), exists_(!text.empty()) {}

  // Position of the next one in text at or behind `from`; the text's length when there is none.
  std::size_t Find(std::string_view text, std::size_t from) const noexcept {
    const std::size_t at = exists_ ? text.find(byte_, from) : std::string_view::npos;
    return at == std::string_view::npos ? text.size() : at;
  }
  std::int64_t CountIn(std::string_view text) const noexcept;
  // Empty, or the one character.
  std::string_view view() const noexcept { return {&byte_, exists_ ? std::size_t{1} : 0}; }

 private:
  char byte_;
  bool exists_;
};

// Argument `i` as a separator; a space when it is not there.
Separator SeparatorArg(const Call& call, std::int32_t i);

// Walks the tokens of a list from the first to the last, once over the text in all.
class TokenWalker {
 public:
  // list must outlive the walker.
  TokenWalker(std::string_view list, Separator separator) noexcept
      : list_(list), separator_(separator), done_(list.empty()) {}

  // The next token; false when there is none left.
  bool Next(std::string_view& token) noexcept;

 private:
  std::string_view list_;
  Separator separator_;
  std::size_t at_ = 0;
  bool done_;
};

// 0 for the empty list, else one more than it has separators. Saturates at 2147483647.
std::int32_t CountTokens(std::string_view list, Separator separator) noexcept;

// The token of that number, from 0; empty outside the list.
std::string_view TokenAt(std::string_view list, std::int32_t index, Separator separator);

}  // namespace ixomep
