// Internal: the comparison of numbers that are not both integers: by their texts of twelve
// significant digits, so that 0.1 + 0.2 equals 0.3. Defined in decimal_compare.cpp.
#pragma once

#include <cmath>
#include <compare>

namespace ixomep {

// The order of the two numbers' texts: a total order in which the infinities and NaN, whose texts
// have no point, stand at the ends of their sign. Decides by number where that gives the same.
std::strong_ordering CompareDecimals(double a, double b) noexcept;

// The same, always by the texts.
std::strong_ordering CompareDecimalTexts(double a, double b) noexcept;

// Must the numbers' own order be that of their texts? Rounding keeps order, hence different texts
// stand in the order of the numbers, and texts can be equal only of numbers that are within one
// unit of the twelfth digit.
inline bool NumbersDecide(double a, double b) noexcept {
  // One unit of the twelfth digit is at most 1e-11 of the larger number; the rest is a margin.
  constexpr double kClose = 1.1e-11;
  // Inside these bounds neither the difference nor its relation to the sizes leaves the range of
  // normal doubles. NaN is never inside.
  constexpr double kSmallest = 2e-280;
  constexpr double kLargest = 1e280;
  const double size = std::fabs(a) + std::fabs(b);
  return (std::fabs(a - b) > kClose * size && size >= kSmallest && size <= kLargest) || a == b;
}

}  // namespace ixomep
