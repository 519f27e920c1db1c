// Internal: the comparison of numbers that are not both integers: by their texts of twelve
// significant digits, so that 0.1 + 0.2 equals 0.3. Defined in decimal_compare.cpp.
#pragma once

#include <compare>

namespace ixomep {

// The order of the two numbers' texts: a total order in which the infinities and NaN, whose texts
// have no point, stand at the ends of their sign. Decides by number where that gives the same.
std::strong_ordering CompareDecimals(double a, double b) noexcept;

// The same, always by the texts.
std::strong_ordering CompareDecimalTexts(double a, double b) noexcept;

}  // namespace ixomep
