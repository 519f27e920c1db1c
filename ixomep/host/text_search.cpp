// The searches. The two-way algorithm (Crochemore and Perrin) works on a forward view of the
// text; a backward search reads both texts from their ends.
#include "ixomep/host/text_search.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace ixomep {

namespace {

using Index = std::int64_t;

// A text read from its beginning or from its end.
template <bool kBackward>
class View {
 public:
  explicit View(std::string_view text) noexcept
      : base_(kBackward ? text.data() + text.size() - 1 : text.data()),
        size_(static_cast<Index>(text.size())) {}
  char operator[](Index i) const noexcept { return kBackward ? base_[-i] : base_[i]; }
  Index size() const noexcept { return size_; }

 private:
  const char* base_;
  Index size_;
};

struct Suffix {
  Index before;  // the last position in front of it
  Index period;
};

// The largest suffix of x, or the largest in the reversed order of bytes, and its period.
template <bool kBackward>
Suffix MaximalSuffix(View<kBackward> x, bool reversed) noexcept {
  Index before = -1, j = 0, k = 1, period = 1;
  while (j + k < x.size()) {
    const char a = x[j + k];
    const char b = x[before + k];
    if (a == b) {
      if (k != period) {
        ++k;
      } else {
        j += period;
        k = 1;
      }
    } else if (reversed ? a > b : a < b) {
      j += k;
      k = 1;
      period = j - before;
    } else {
      before = j;
      j = before + 1;
      k = period = 1;
    }
  }
  return {before, period};
}

template <bool kBackward>
bool HasPeriod(View<kBackward> x, Suffix suffix) noexcept {
  for (Index i = 0; i <= suffix.before; ++i) {
    if (x[i] != x[i + suffix.period]) return false;
  }
  return true;
}

// The first position of x in y, else -1.
template <bool kBackward>
Index TwoWay(View<kBackward> x, View<kBackward> y) noexcept {
  const Suffix a = MaximalSuffix(x, false);
  const Suffix b = MaximalSuffix(x, true);
  const Suffix split = a.before > b.before ? a : b;
  const Index m = x.size();
  const bool periodic = HasPeriod(x, split);
  const Index period =
      periodic ? split.period : std::max(split.before + 1, m - split.before - 1) + 1;
  Index known = -1;  // of a periodic pattern: the last position known to match already
  for (Index at = 0; at <= y.size() - m;) {
    Index i = std::max(split.before, known) + 1;
    while (i < m && x[i] == y[at + i]) ++i;
    if (i < m) {
      at += i - split.before;
      known = -1;
      continue;
    }
    i = split.before;
    while (i > known && x[i] == y[at + i]) --i;
    if (i <= known) return at;
    at += period;
    known = periodic ? m - period - 1 : -1;
  }
  return -1;
}

// May a plain search that has come so far and compared so much go on? What it may spend depends on
// the way it has come and not on the text, so that a loop over many occurrences stays linear too.
bool IsCheap(std::size_t spent, std::size_t way, std::size_t pattern) noexcept {
  return spent <= 16 * (way + pattern);
}

}  // namespace

std::size_t TextSearch::Find(std::string_view text, std::size_t from) const noexcept {
  const std::size_t m = pattern_.size();
  if (from > text.size() || text.size() - from < m) return kNone;
  if (m == 1) return text.find(pattern_.front(), from);
  const std::size_t last = text.size() - m;
  std::size_t at = from;
  for (std::size_t spent = 0; IsCheap(spent, at - from, m); spent += m) {
    at = text.find(pattern_.front(), at);
    if (at > last) return kNone;
    if (std::memcmp(text.data() + at, pattern_.data(), m) == 0) return at;
    ++at;
  }
  const Index found = TwoWay(View<false>(pattern_), View<false>(text.substr(at)));
  return found < 0 ? kNone : at + static_cast<std::size_t>(found);
}

std::size_t TextSearch::FindBackward(std::string_view text, std::size_t from) const noexcept {
  const std::size_t m = pattern_.size();
  if (text.size() < m) return kNone;
  const std::size_t highest = std::min(from, text.size() - m);
  std::size_t at = highest;
  if (m == 1) return text.rfind(pattern_.front(), at);
  for (std::size_t spent = 0; IsCheap(spent, highest - at, m); spent += m) {
    at = text.rfind(pattern_.front(), at);
    if (at == kNone) return kNone;
    if (std::memcmp(text.data() + at, pattern_.data(), m) == 0) return at;
    if (at == 0) return kNone;
    --at;
  }
  const std::size_t end = at + m;
  const Index found = TwoWay(View<true>(pattern_), View<true>(text.substr(0, end)));
  return found < 0 ? kNone : end - m - static_cast<std::size_t>(found);
}

}  // namespace ixomep
