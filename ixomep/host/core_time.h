// IxoCoreTime: a span of time and its text YY:DDD:HH:MM:SS, 15 characters: years of 365 days,
// days 0 to 364, hours 0 to 23, minutes and seconds 0 to 59.
#pragma once

#include <cstddef>
#include <string_view>

#include "ixomep/export.h"
#include "ixomep/host/string.h"

class IXOMEP_API IxoCoreTime {
 public:
  // Whether the whole text has the layout, with every field in its range.
  static bool isTime(std::string_view text) noexcept;
  // The text of a number of seconds. Fractions are dropped, "-" stands in front of a negative
  // time, years that need more than two digits are written in full. NaN is written as zero, an
  // infinity as the largest finite number.
  static String _d2s(double seconds);

  // From text; zero seconds when isTime says no.
  explicit IxoCoreTime(const String& text) noexcept;
  explicit IxoCoreTime(double seconds) noexcept : seconds_(seconds) {}

  // Seconds.
  double asDouble() const noexcept { return seconds_; }
  String asString() const { return _d2s(seconds_); }

 private:
  double seconds_;
};

namespace ixomep {

// Room that every result of FormatTime fits in.
inline constexpr std::size_t kFormatTimeSize = 352;

// The text of IxoCoreTime::_d2s, written into the caller's buffer of kFormatTimeSize bytes. The
// view is the text; there is no terminating zero.
std::string_view FormatTime(double seconds, char* buffer) noexcept;

}  // namespace ixomep
