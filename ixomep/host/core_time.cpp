// The time text: its check, reading and writing. See core_time.h for the layout.
#include "ixomep/host/core_time.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>

namespace {

constexpr std::string_view kLayout = "YY:DDD:HH:MM:SS";

// A field of the layout: where it stands, its digits, its number of values, seconds of one unit.
struct Field {
  std::size_t position;
  std::size_t digits;
  int values;
  int seconds;
};

constexpr std::array<Field, 5> kFields = {{
    {0, 2, 100, 365 * 24 * 60 * 60},
    {3, 3, 365, 24 * 60 * 60},
    {7, 2, 24, 60 * 60},
    {10, 2, 60, 60},
    {13, 2, 60, 1},
}};
constexpr const Field& kYears = kFields[0];

// The number in the field, -1 when a byte of it is no digit.
int Read(const Field& field, std::string_view text) noexcept {
  int number = 0;
  for (const char byte : text.substr(field.position, field.digits)) {
    if (byte < '0' || byte > '9') return -1;
    number = number * 10 + (byte - '0');
  }
  return number;
}

// Zeros in front of the digits up to the field's width, then the digits.
char* WritePadded(std::string_view digits, std::size_t width, char* out) noexcept {
  if (digits.size() < width) out = std::fill_n(out, width - digits.size(), '0');
  return std::copy(digits.begin(), digits.end(), out);
}

char* WriteField(int number, std::size_t width, char* out) noexcept {
  char digits[12];
  const char* const end = std::to_chars(digits, digits + sizeof digits, number).ptr;
  return WritePadded({digits, static_cast<std::size_t>(end - digits)}, width, out);
}

// A whole number of years that an int may not hold.
char* WriteYears(double years, char* out) noexcept {
  char digits[320];
  const char* const end =
      std::to_chars(digits, digits + sizeof digits, years, std::chars_format::fixed, 0).ptr;
  return WritePadded({digits, static_cast<std::size_t>(end - digits)}, kYears.digits, out);
}

}  // namespace

bool IxoCoreTime::isTime(std::string_view text) noexcept {
  if (text.size() != kLayout.size()) return false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (kLayout[i] == ':' && text[i] != ':') return false;
  }
  return std::all_of(kFields.begin(), kFields.end(), [text](const Field& field) {
    const int number = Read(field, text);
    return number >= 0 && number < field.values;
  });
}

IxoCoreTime::IxoCoreTime(const String& text) noexcept : seconds_(0.0) {
  if (!isTime(text.view())) return;
  for (const Field& field : kFields) {
    seconds_ += static_cast<double>(Read(field, text.view())) * field.seconds;
  }
}

std::string_view ixomep::FormatTime(double seconds, char* buffer) noexcept {
  if (std::isnan(seconds)) seconds = 0.0;
  const double largest = std::numeric_limits<double>::max();
  const double whole = std::trunc(std::min(std::fabs(seconds), largest));
  char* out = buffer;
  if (seconds < 0.0 && whole > 0.0) *out++ = '-';

  // Exact: the remainder is, and what is left over is a multiple of the divisor.
  const double in_year = whole < kYears.seconds ? whole : std::fmod(whole, kYears.seconds);
  const double years = (whole - in_year) / kYears.seconds;
  out = years < kYears.values ? WriteField(static_cast<int>(years), kYears.digits, out)
                              : WriteYears(years, out);

  int left = static_cast<int>(in_year);
  for (const Field& field : kFields) {
    if (&field == &kYears) continue;
    *out++ = ':';
    out = WriteField(left / field.seconds, field.digits, out);
    left %= field.seconds;
  }
  return {buffer, static_cast<std::size_t>(out - buffer)};
}

String IxoCoreTime::_d2s(double seconds) {
  char buffer[ixomep::kFormatTimeSize];
  return String(ixomep::FormatTime(seconds, buffer));
}
