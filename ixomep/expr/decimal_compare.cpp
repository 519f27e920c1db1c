// Two numbers -> their order by twelve significant digits. Writing the digits is slow, so the
// numbers decide wherever they must agree with the texts; decimal_compare_test.cpp compares both
// ways.
#include "ixomep/expr/decimal_compare.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

#include "ixomep/host/numbers.h"

namespace ixomep {

namespace {

// The digits in front of the point. Meant: a text without a point counts as endless, which puts
// infinities and NaN beyond all numbers of their sign.
std::size_t IntegerLength(std::string_view text) noexcept {
  return std::min<std::size_t>(text.find('.'), 2147483647);
}

}  // namespace

std::strong_ordering CompareDecimalTexts(double a, double b) noexcept {
  char a_room[kFormatRealSize];
  char b_room[kFormatRealSize];
  const std::string_view a_text = FormatReal(a, true, a_room);
  const std::string_view b_text = FormatReal(b, true, b_room);
  const bool a_negative = a_text.starts_with('-');
  const bool b_negative = b_text.starts_with('-');
  if (a_negative != b_negative) {
    return a_negative ? std::strong_ordering::less : std::strong_ordering::greater;
  }
  const std::size_t a_length = IntegerLength(a_text);
  const std::size_t b_length = IntegerLength(b_text);
  const std::strong_ordering magnitude =
      a_length != b_length ? a_length <=> b_length : a_text <=> b_text;
  return a_negative ? 0 <=> magnitude : magnitude;
}

std::strong_ordering CompareDecimals(double a, double b) noexcept {
  if (!NumbersDecide(a, b)) return CompareDecimalTexts(a, b);
  if (a == b) return std::strong_ordering::equal;
  return a < b ? std::strong_ordering::less : std::strong_ordering::greater;
}

}  // namespace ixomep
