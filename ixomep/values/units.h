// Internal: every rule about units and the turn from doubles to whole numbers, once. A measure is
// a double in tenths of a millimetre, a time a double in seconds.
#pragma once

#include <array>
#include <cstdint>
#include <limits>
#include <string_view>

#include "ixomep/values/value_type.h"

namespace ixomep {

inline constexpr double kTenthsPerCentimetre = 100.0;
// Tenths of a millimetre in a point, as the operators PT and PTS have it.
inline constexpr double kTenthsPerPoint = 3.527777778;
// Tenths of a point in a tenth of a millimetre.
inline constexpr double kPointTenthsPerTenth = 2.83464567;
// Absorbs the error of decimal literals before tenths are truncated.
inline constexpr double kTenthsNudge = 0.00001;

struct Unit {
  std::string_view suffix;
  IxoMepValueType type;
  double factor;  // to tenths of a millimetre or seconds
};

// The suffixes of number literals. Meant: the literal's point has one digit more than PT's.
inline constexpr std::array<Unit, 5> kUnits = {{
    {"m", IxoMepValueType::Measure, 10000.0},
    {"cm", IxoMepValueType::Measure, 100.0},
    {"mm", IxoMepValueType::Measure, 10.0},
    {"pt", IxoMepValueType::Measure, 3.5277777778},
    {"s", IxoMepValueType::Time, 1.0},
}};

// Null for a text that is no suffix; letter case counts.
constexpr const Unit* FindUnit(std::string_view suffix) noexcept {
  for (const Unit& unit : kUnits) {
    if (unit.suffix == suffix) return &unit;
  }
  return nullptr;
}

// Truncation is possible: the number is not below -2^31 and what is left of it fits.
constexpr bool FitsInt32(double number) noexcept {
  return number >= -2147483648.0 && number < 2147483648.0;
}

// Truncated toward zero; 0 outside the 32-bit range and for NaN.
constexpr std::int32_t ToInt32OrZero(double number) noexcept {
  return FitsInt32(number) ? static_cast<std::int32_t>(number) : 0;
}

// Truncated toward zero; the nearest end outside the 32-bit range, 0 for NaN.
constexpr std::int32_t ToInt32Saturating(double number) noexcept {
  if (FitsInt32(number)) return static_cast<std::int32_t>(number);
  if (number > 0) return std::numeric_limits<std::int32_t>::max();
  return number < 0 ? std::numeric_limits<std::int32_t>::min() : 0;
}

// The whole tenths of a millimetre of a measure: nudged away from zero, then truncated.
// Meant: no rounding, unlike PointTenthsOf.
constexpr std::int32_t WholeTenthsOf(double tenths) noexcept {
  return ToInt32Saturating(tenths > 0 ? tenths + kTenthsNudge : tenths - kTenthsNudge);
}

// A measure in tenths of a point, rounded half away from zero.
constexpr std::int32_t PointTenthsOf(double tenths) noexcept {
  const double points = tenths * kPointTenthsPerTenth;
  return ToInt32Saturating(tenths < 0 ? points - 0.5 : points + 0.5);
}

}  // namespace ixomep
