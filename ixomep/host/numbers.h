// Numbers to text and back, without the process locale: the one formatter and the one reader of
// reals, and the two user-interface conversions that use the host's decimal separator.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "ixomep/export.h"
#include "ixomep/host/string.h"

// Fixed notation, never an exponent, correctly rounded to `precision` significant digits (1 to
// 17; outside that range it is clamped), zeros at the end of the fraction removed, always a point
// with a digit on both sides: "2.0", "-0.25". Negative zero is "0.0"; "inf", "-inf", "nan".
IXOMEP_API String ixo_ftoa_period(double number, int precision);
// The same without a final ".0": "2", "-0.25", "0".
IXOMEP_API String ixo_ftoa_no_locale(double number, int precision);

// The longest beginning that is a number, after white space: sign, digits, point, exponent; or a
// sign, "$" and hexadecimal digits. 0.0 when there is none; too large gives an infinity.
IXOMEP_API double ixo_atof(std::string_view text) noexcept;

// The user-interface text: six decimals after the host's decimal separator, as "%f" writes them.
IXOMEP_API String StringFromDouble(double number);
// Its inverse: skips blanks, takes the host's separator as well as the point, reads the longest
// beginning that is a number; 0.0 when there is none.
IXOMEP_API double DoubleFromString(std::string_view text);

// Decimal digits with "-" in front of negative numbers.
IXOMEP_API String StringFromInteger(std::int32_t number);

namespace ixomep {

// Room that every result of FormatReal fits in.
inline constexpr std::size_t kFormatRealSize = 352;

// ixo_ftoa_period (period) or ixo_ftoa_no_locale (not period) with 12 digits, written into the
// caller's buffer of kFormatRealSize bytes. The view is the text; there is no terminating zero.
IXOMEP_API std::string_view FormatReal(double number, bool period, char* buffer) noexcept;
IXOMEP_API std::string_view FormatReal(double number, bool period, char* buffer,
                                       int precision) noexcept;

// A whole number from 0 to 32767, evenly distributed, from the host's generator.
IXOMEP_API std::int32_t RandomFifteenBits();

}  // namespace ixomep
