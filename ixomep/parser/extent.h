// Internal: how far things reach in a definition text: brackets, attributes, statements, bodies.
// The ends of braces are found once for each outermost pair and remembered with all pairs inside
// it, so that reading costs the same for a byte at every depth of nesting.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "ixomep/host/limit_watch.h"
#include "ixomep/values/error_code.h"

namespace ixomep {

inline constexpr std::size_t kNoMatch = static_cast<std::size_t>(-1);

// Where a bracketed literal ends.
struct BracketExtent {
  std::size_t closer;  // the closing bracket; the end of the text when there is none
  std::size_t end;     // behind it
};

// Scans from behind an opening bracket. Only this kind of bracket counts; strings and comments
// are skipped, and a backslash makes the next byte ordinary, outside strings as well.
BracketExtent FindBracketEnd(std::string_view text, std::size_t from, char opener,
                             char closer) noexcept;

// The text of an attribute, or why it has none.
struct AttributeExtent {
  std::size_t end;  // or the place of the offending bracket
  IxoMepErrorEnum code = IMEPERR_NONE;
  char closer = '\0';  // 14: the closer that is needed. 16: the one that stands there
  char needed = '\0';  // 16: the opener that it would need
};

// The pairs of braces of one text.
class Extents {
 public:
  explicit Extents(std::string_view text) noexcept : text_(text) {}

  // The "}" of the "{" at the position, before `end`; strings and comments are skipped, other
  // brackets do not count. kNoMatch when there is none. Nobody will ask for positions before
  // `floor` any more.
  std::size_t MatchingBrace(std::size_t open, std::size_t end, std::size_t floor);

  // From the first byte of an attribute up to the first white space outside strings, comments
  // and brackets that does not follow the ":" directly, or to `end`.
  AttributeExtent FindAttributeEnd(std::size_t start, std::size_t end);

  // The ";" that ends the statement at the position, outside braces and before any line feed
  // outside braces; kNoMatch when there is none before `end`.
  std::size_t FindStatementEnd(std::size_t start, std::size_t end);

 private:
  // A pair; what is needed later is whether every bracket between is matched.
  struct Pair {
    std::int32_t open;
    std::int32_t close;  // kUnclosed when it has none
    bool IsOpen() const noexcept { return close == kUnclosed; }
    std::size_t Close() const noexcept {
      return static_cast<std::size_t>(close < 0 ? ~close : close);
    }
    bool IsClean() const noexcept { return close >= 0; }
  };
  static constexpr std::int32_t kUnclosed = INT32_MIN;

  const Pair& PairAt(std::size_t open, std::size_t end, std::size_t floor);
  void Record(std::size_t open, std::size_t end);
  bool HasSemicolon(std::size_t from, std::size_t end);

  std::string_view text_;
  std::vector<Pair> pairs_;         // in order of their openers
  std::size_t recorded_to_ = 0;     // every "{" of the recorded stretches before this is known
  std::size_t last_found_ = 0;      // where the last question was answered
  std::size_t next_semicolon_ = 0;  // no ";" from semicolon_from_ up to here
  std::size_t semicolon_from_ = 0;
  LongWork work_;
  std::vector<char> openers_;  // room for Record
  std::vector<std::uint32_t> braces_;
};

}  // namespace ixomep
