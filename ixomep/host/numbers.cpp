// Numbers to text and back. A real is first written as correctly rounded decimal digits with an
// exponent; the digits are then laid out in fixed notation. See numbers.h for the forms.
#include "ixomep/host/numbers.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>

#include "ixomep/host/host.h"

namespace {

constexpr int kDefaultPrecision = 12;
constexpr int kMaxPrecision = 17;
constexpr std::size_t kMaxIntegerDigits = 309;  // of the largest real

bool IsDigit(char byte) noexcept { return byte >= '0' && byte <= '9'; }

bool IsHexDigit(char byte) noexcept {
  return IsDigit(byte) || (byte >= 'a' && byte <= 'f') || (byte >= 'A' && byte <= 'F');
}

bool IsSpace(char byte) noexcept { return byte == ' ' || (byte >= '\t' && byte <= '\r'); }

// Decimal digits d1 d2 ... with the value d1.d2... * 10^exponent, zeros at the end removed.
struct Digits {
  char text[kMaxPrecision + 1];
  int count;
  int exponent;
};

Digits DigitsOf(double magnitude, int precision) noexcept {
  char written[kMaxPrecision + 16];
  const char* end = std::to_chars(written, written + sizeof written, magnitude,
                                  std::chars_format::scientific, precision - 1)
                        .ptr;
  Digits digits{};
  const char* read = written;
  for (; *read != 'e'; ++read) {
    if (*read != '.') digits.text[digits.count++] = *read;
  }
  const bool negative = read[1] == '-';
  std::from_chars(read + 2, end, digits.exponent);
  if (negative) digits.exponent = -digits.exponent;
  while (digits.count > 1 && digits.text[digits.count - 1] == '0') --digits.count;
  return digits;
}

// Writes the digits in fixed notation and returns the end. The point with its "0" behind a whole
// number is left to the caller.
char* LayOut(const Digits& digits, char* out) noexcept {
  if (digits.exponent < 0) {
    *out++ = '0';
    *out++ = '.';
    out = std::fill_n(out, -digits.exponent - 1, '0');
    return std::copy_n(digits.text, digits.count, out);
  }
  const int whole = std::min(digits.count, digits.exponent + 1);
  out = std::copy_n(digits.text, whole, out);
  out = std::fill_n(out, digits.exponent + 1 - whole, '0');
  if (whole < digits.count) {
    *out++ = '.';
    out = std::copy_n(digits.text + whole, digits.count - whole, out);
  }
  return out;
}

constexpr int kShortDecimals = 6;
constexpr double kShortScale = 1e6;
constexpr std::int64_t kShortLimit = 1'000'000'000'000;  // twelve digits

// The number as digits with six decimals; false when it is not the nearest real of such a decimal
// number of at most twelve digits. When it is, those are its correctly rounded twelve digits: the
// two are much nearer to each other than two numbers of twelve digits.
bool AsShortDecimal(double magnitude, std::int64_t& millionths) noexcept {
  if (!(magnitude < static_cast<double>(kShortLimit) / kShortScale)) return false;
  millionths = static_cast<std::int64_t>(magnitude * kShortScale + 0.5);
  return millionths < kShortLimit && static_cast<double>(millionths) / kShortScale == magnitude;
}

// Writes a number of millionths in fixed notation and returns the end; what LayOut leaves to the
// caller is left here too.
char* LayOutMillionths(std::int64_t millionths, char* out) noexcept {
  constexpr std::int64_t kScale = 1'000'000;
  out = std::to_chars(out, out + kMaxPrecision, millionths / kScale).ptr;
  auto fraction = static_cast<std::int32_t>(millionths % kScale);
  if (fraction == 0) return out;
  *out = '.';
  int decimals = kShortDecimals;
  for (; fraction % 10 == 0; fraction /= 10) --decimals;
  for (char* digit = out + decimals; digit != out; --digit, fraction /= 10) {
    *digit = static_cast<char>('0' + fraction % 10);
  }
  return out + decimals + 1;
}

std::string_view Words(const char* words, char* buffer) noexcept {
  const std::string_view view(words);
  std::copy(view.begin(), view.end(), buffer);
  return {buffer, view.size()};
}

String RealText(double number, bool period, int precision) {
  char buffer[ixomep::kFormatRealSize];
  return String(ixomep::FormatReal(number, period, buffer, precision));
}

// The end of the digits that begin at `at`.
std::size_t SkipDigits(std::string_view text, std::size_t at) noexcept {
  while (at < text.size() && IsDigit(text[at])) ++at;
  return at;
}

// What lies beyond the reals: whether a plain decimal number is too large (infinity) or too small
// (zero) shows in the exponent of its first digit that is not 0.
double BeyondRange(std::string_view number) noexcept {
  const std::size_t exponent_at = std::min(number.find_first_of("eE"), number.size());
  const std::string_view mantissa = number.substr(0, exponent_at);
  const std::size_t first = mantissa.find_first_not_of("0.");
  if (first == std::string_view::npos) return 0.0;
  const std::size_t point = std::min(mantissa.find('.'), mantissa.size());
  const bool whole = first < point;
  // Digits in front of the point count up, zeros behind it down; texts are below 2^31 bytes.
  const auto places =
      whole ? static_cast<std::int64_t>(point - first) : -static_cast<std::int64_t>(first - point);
  std::int64_t exponent = 0;
  bool down = false;
  if (exponent_at < number.size()) {
    std::size_t at = exponent_at + 1;
    down = number[at] == '-';
    if (number[at] == '-' || number[at] == '+') ++at;
    const auto read = std::from_chars(number.data() + at, number.data() + number.size(), exponent);
    if (read.ec == std::errc::result_out_of_range) exponent = std::int64_t{1} << 40;
    exponent = std::min(exponent, std::int64_t{1} << 40);
  }
  if (down) exponent = -exponent;
  return places + exponent > 0 ? std::numeric_limits<double>::infinity() : 0.0;
}

// The length of the longest unsigned decimal number at the start: digits, a point with a digit on
// one side at least, an exponent that has digits. 0 when there is none.
std::size_t NumberLength(std::string_view text) noexcept {
  std::size_t end = SkipDigits(text, 0);
  std::size_t digits = end;
  if (end < text.size() && text[end] == '.') {
    const std::size_t behind = SkipDigits(text, end + 1);
    digits += behind - (end + 1);
    if (digits != 0) end = behind;
  }
  if (digits == 0) return 0;
  if (end < text.size() && (text[end] == 'e' || text[end] == 'E')) {
    std::size_t at = end + 1;
    if (at < text.size() && (text[at] == '-' || text[at] == '+')) ++at;
    const std::size_t behind = SkipDigits(text, at);
    if (behind > at) end = behind;
  }
  return end;
}

double ReadDecimal(std::string_view text) noexcept {
  const std::string_view number = text.substr(0, NumberLength(text));
  double value = 0.0;
  const auto read = std::from_chars(number.data(), number.data() + number.size(), value);
  if (read.ec == std::errc::result_out_of_range) return BeyondRange(number);
  return read.ec == std::errc() ? value : 0.0;
}

double ReadHexadecimal(std::string_view text) noexcept {
  std::size_t end = 0;
  while (end < text.size() && IsHexDigit(text[end])) ++end;
  double value = 0.0;
  const auto read = std::from_chars(text.data(), text.data() + end, value, std::chars_format::hex);
  if (read.ec == std::errc::result_out_of_range) return std::numeric_limits<double>::infinity();
  return read.ec == std::errc() ? value : 0.0;
}

}  // namespace

namespace ixomep {

std::string_view FormatReal(double number, bool period, char* buffer, int precision) noexcept {
  if (std::isnan(number)) return Words("nan", buffer);
  if (std::isinf(number)) return Words(number < 0.0 ? "-inf" : "inf", buffer);
  char* out = buffer;
  if (number < 0.0) *out++ = '-';
  std::int64_t millionths = 0;
  bool is_whole = false;
  if (precision == kDefaultPrecision && AsShortDecimal(std::fabs(number), millionths)) {
    out = LayOutMillionths(millionths, out);
    is_whole = std::trunc(number) == number;
  } else {
    const Digits digits = DigitsOf(std::fabs(number), std::clamp(precision, 1, kMaxPrecision));
    out = LayOut(digits, out);
    is_whole = digits.exponent >= 0 && digits.count <= digits.exponent + 1;
  }
  if (period && is_whole) {
    *out++ = '.';
    *out++ = '0';
  }
  return {buffer, static_cast<std::size_t>(out - buffer)};
}

std::string_view FormatReal(double number, bool period, char* buffer) noexcept {
  return FormatReal(number, period, buffer, kDefaultPrecision);
}

std::int32_t RandomFifteenBits() { return IxoHost::Current().RandomFifteenBits() & 0x7fff; }

}  // namespace ixomep

String ixo_ftoa_period(double number, int precision) { return RealText(number, true, precision); }

String ixo_ftoa_no_locale(double number, int precision) {
  return RealText(number, false, precision);
}

double ixo_atof(std::string_view text) noexcept {
  while (!text.empty() && IsSpace(text.front())) text.remove_prefix(1);
  const bool negative = !text.empty() && text.front() == '-';
  if (negative || (!text.empty() && text.front() == '+')) text.remove_prefix(1);
  const bool hexadecimal = !text.empty() && text.front() == '$';
  const double value = hexadecimal ? ReadHexadecimal(text.substr(1)) : ReadDecimal(text);
  return negative ? -value : value;
}

String StringFromDouble(double number) {
  constexpr int kDecimals = 6;
  char buffer[kMaxIntegerDigits + kDecimals + 8];
  const char* end =
      std::to_chars(buffer, buffer + sizeof buffer, number, std::chars_format::fixed, kDecimals)
          .ptr;
  // A NaN with its sign set would otherwise be written as "-nan".
  if (std::isnan(number)) return String("nan");
  std::replace(buffer, buffer + (end - buffer), '.', International::DecimalSeparator());
  return String(std::string_view(buffer, static_cast<std::size_t>(end - buffer)));
}

double DoubleFromString(std::string_view text) {
  const char separator = International::DecimalSeparator();
  if (separator == '.') return ixo_atof(text);
  const std::size_t blanks = std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size());
  const std::size_t end = text.find_first_not_of("0123456789+-", blanks);
  if (end == std::string_view::npos || text[end] != separator) return ixo_atof(text);
  String pointed(text);
  pointed.MutableText()[end] = '.';
  return ixo_atof(pointed.view());
}

String StringFromInteger(std::int32_t number) {
  char buffer[12];
  const char* end = std::to_chars(buffer, buffer + sizeof buffer, number).ptr;
  return String(std::string_view(buffer, static_cast<std::size_t>(end - buffer)));
}
