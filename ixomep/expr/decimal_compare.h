// Internal: the comparison of numbers that are not both integers: by their texts of twelve
// significant digits, so that 0.1 + 0.2 equals 0.3. Defined in decimal_compare.cpp.
#pragma once

#include <algorithm>
#include <cmath>
#include <compare>
#include <limits>

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

// A number that many others are compared with, and how near to it they have to be for NumbersDecide
// to matter: beyond that two comparisons tell the order.
class Landmark {
 public:
  Landmark() noexcept = default;
  explicit Landmark(double number) noexcept {
    if (!(std::fabs(number) <= kLargest)) return;
    const double margin = std::max(kClose * std::fabs(number), kSmallest);
    low_ = number - margin;
    high_ = number + margin;
  }

  // 1 or -1 for a number whose order is sure to be that of the texts: above or below. Else 0.
  int SideOf(double number) const noexcept {
    if (number > high_) return number <= kLargest ? 1 : 0;
    return number < low_ && number >= -kLargest ? -1 : 0;
  }

 private:
  // Twice and more what NumbersDecide asks for, so that the size of the other number, which may be
  // the larger one, and the rounding of the bounds do not count.
  static constexpr double kClose = 2.4e-11;
  static constexpr double kSmallest = 4e-280;
  static constexpr double kLargest = 1e279;

  double low_ = -std::numeric_limits<double>::infinity();  // then nothing is sure
  double high_ = std::numeric_limits<double>::infinity();
};

}  // namespace ixomep
