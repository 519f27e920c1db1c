// Scans for extents. One scan of an outermost pair of braces records every pair inside, by braces
// alone, and whether all brackets between are matched; the attribute scan then jumps over such
// pairs, and the grammar asks for inner pairs without scanning again. A scan starts where no
// string or comment is open, so whatever position it passes outside both is as good a start: what
// it records there holds for every later question.
#include "ixomep/parser/extent.h"

#include <algorithm>
#include <cstring>

#include "ixomep/parser/bytes.h"

namespace ixomep {
namespace {

constexpr std::int32_t Narrow(std::size_t position) noexcept {
  return static_cast<std::int32_t>(position);
}

constexpr char OpenerOf(char closer) noexcept {
  return closer == ')' ? '(' : closer == ']' ? '[' : '{';
}
constexpr char CloserOf(char opener) noexcept {
  return opener == '(' ? ')' : opener == '[' ? ']' : '}';
}

}  // namespace

BracketExtent FindBracketEnd(std::string_view text, std::size_t from, char opener,
                             char closer) noexcept {
  const std::size_t end = text.size();
  std::size_t depth = 1;
  std::size_t position = Find(text, from, end, kNestStop);
  while (position < end) {
    const char byte = text[position];
    const std::size_t skipped = byte == '\\' ? position + 2 : SkipUnit(text, position, end);
    if (skipped == position) {
      if (byte == opener) ++depth;
      if (byte == closer && --depth == 0) return {position, position + 1};
      ++position;
    } else {
      position = skipped;
    }
    position = Find(text, position, end, kNestStop);
  }
  return {end, end};
}

// Scans the pair that opens at the position, and all pairs inside it.
void Extents::Record(std::size_t open, std::size_t end) {
  // Entries of pairs_ whose braces are open; a pair is noted as dirty while it still is.
  braces_.clear();
  openers_.clear();
  const std::uint32_t first = static_cast<std::uint32_t>(pairs_.size());
  std::vector<Pair>& pairs = pairs_;
  std::uint32_t dirty_above = first;  // open pairs below this entry's index hold a loose bracket
  std::size_t position = open;
  while (position < end) {
    work_.Part();
    const char byte = text_[position];
    const std::size_t skipped = SkipUnit(text_, position, end);
    if (skipped != position) {
      position = Find(text_, skipped, end, kBracketStop);
      continue;
    }
    if (byte == '{') {
      braces_.push_back(static_cast<std::uint32_t>(pairs.size()));
      openers_.push_back(byte);
      pairs.push_back({Narrow(position), kUnclosed});
    } else if (byte == '(' || byte == '[') {
      openers_.push_back(byte);
    } else if (byte != '}') {
      // Never the outermost opener: that is a brace.
      if (openers_.back() == OpenerOf(byte)) {
        openers_.pop_back();
      } else {
        dirty_above = braces_.back() + 1;
      }
    } else {
      while (openers_.back() != '{') {
        openers_.pop_back();
        dirty_above = braces_.back() + 1;
      }
      openers_.pop_back();
      const std::uint32_t closed = braces_.back();
      braces_.pop_back();
      const bool dirty = closed < dirty_above;
      pairs[closed].close = dirty ? ~Narrow(position) : Narrow(position);
      if (braces_.empty()) break;
      // What is loose inside is loose for the pair around it as well, and for nobody else.
      if (dirty) dirty_above = braces_.back() + 1;
    }
    position = Find(text_, position + 1, end, kBracketStop);
  }
  recorded_to_ = std::min(position, end);
}

const Extents::Pair& Extents::PairAt(std::size_t open, std::size_t end, std::size_t floor) {
  if (pairs_.empty() || open > recorded_to_) {
    if (floor > recorded_to_) pairs_.clear();
    last_found_ = pairs_.size();
    Record(open, end);
    return pairs_[last_found_];
  }
  // Questions mostly come in order: try the last answer and its neighbour first.
  const auto at = Narrow(open);
  if (pairs_[last_found_].open == at) return pairs_[last_found_];
  if (last_found_ + 1 < pairs_.size() && pairs_[last_found_ + 1].open == at) {
    return pairs_[++last_found_];
  }
  const auto found =
      std::lower_bound(pairs_.begin(), pairs_.end(), at,
                       [](const Pair& pair, std::int32_t key) { return pair.open < key; });
  if (found != pairs_.end() && found->open == at) {
    last_found_ = static_cast<std::size_t>(found - pairs_.begin());
    return *found;
  }
  // A brace that the recorded scan did not see as one: it was read in another state.
  pairs_.clear();
  last_found_ = 0;
  Record(open, end);
  return pairs_.front();
}

std::size_t Extents::MatchingBrace(std::size_t open, std::size_t end, std::size_t floor) {
  const Pair& pair = PairAt(open, end, floor);
  if (pair.IsOpen() || pair.Close() >= end) return kNoMatch;
  return pair.Close();
}

AttributeExtent Extents::FindAttributeEnd(std::size_t start, std::size_t end) {
  std::vector<char> open;  // allocates nothing while it stays empty
  std::size_t position = start;
  while ((position = Find(text_, position, end, kAttrStop)) < end) {
    work_.Part();
    const char byte = text_[position];
    if (Is(byte, kWhite)) {
      if (open.empty()) return {position};
      ++position;
      continue;
    }
    if (byte == ':') {
      position = Skip(text_, position + 1, end, open.empty() ? unsigned{kWhite} : 0u);
      continue;
    }
    const std::size_t skipped = SkipUnit(text_, position, end);
    if (skipped != position) {
      position = skipped;
      continue;
    }
    if (byte == '{') {
      const Pair& pair = PairAt(position, end, start);
      if (pair.IsClean() && pair.Close() < end) {
        position = pair.Close() + 1;
        continue;
      }
    }
    if (byte == '(' || byte == '[' || byte == '{') {
      open.push_back(byte);
    } else if (open.empty()) {
      return {position, IMEPERR_NOTHING_OPEN, byte, OpenerOf(byte)};
    } else if (open.back() != OpenerOf(byte)) {
      return {position, IMEPERR_CLOSER_EXPECTED, CloserOf(open.back())};
    } else {
      open.pop_back();
    }
    ++position;
  }
  return {end};
}

bool Extents::HasSemicolon(std::size_t from, std::size_t end) {
  if (from < semicolon_from_ || from > next_semicolon_ || next_semicolon_ == 0) {
    const void* found = std::memchr(text_.data() + from, ';', text_.size() - from);
    semicolon_from_ = from;
    next_semicolon_ =
        found == nullptr ? text_.size()
                         : static_cast<std::size_t>(static_cast<const char*>(found) - text_.data());
  }
  return next_semicolon_ < end;
}

std::size_t Extents::FindStatementEnd(std::size_t start, std::size_t end) {
  // Most lines have none: one search for the next ";" answers for all lines before it.
  if (!HasSemicolon(start, end)) return kNoMatch;
  std::ptrdiff_t depth = 0;  // below 0 behind a loose "}"
  std::size_t position = start;
  while ((position = Find(text_, position, end, kLineStop)) < end) {
    work_.Part();
    const char byte = text_[position];
    const std::size_t skipped = SkipUnit(text_, position, end);
    if (skipped != position) {
      position = skipped;
      continue;
    }
    if (depth == 0 && byte == ';') return position;
    if (depth == 0 && byte == '\n') return kNoMatch;
    if (depth == 0 && byte == '{') {
      position = MatchingBrace(position, end, start);
      if (position == kNoMatch) return kNoMatch;
    } else if (byte == '{') {
      ++depth;
    } else if (byte == '}') {
      --depth;
    }
    ++position;
  }
  return kNoMatch;
}

}  // namespace ixomep
