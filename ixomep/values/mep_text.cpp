// Values written as literals, and the display form of a measure.
#include "ixomep/values/mep_text.h"

#include <charconv>
#include <stdexcept>
#include <string>

#include "ixomep/host/international.h"
#include "ixomep/host/numbers.h"

namespace ixomep {

namespace {

// The letter behind the backslash for the bytes 7 to 13.
constexpr std::string_view kControlLetters = "abtnvfr";

// 0 for a byte that is written as it is.
char EscapeLetter(char byte) noexcept {
  if (byte == '"' || byte == '\\') return byte;
  return byte >= 7 && byte <= 13 ? kControlLetters[static_cast<std::size_t>(byte - 7)] : '\0';
}

std::size_t LiteralLength(std::string_view text) noexcept {
  std::size_t length = text.size() + 2;
  for (const char byte : text) length += EscapeLetter(byte) != '\0' ? 1 : 0;
  return length;
}

void WriteLiteral(char* out, std::string_view text) noexcept {
  *out++ = '"';
  for (const char byte : text) {
    const char letter = EscapeLetter(byte);
    if (letter != '\0') *out++ = '\\';
    *out++ = letter != '\0' ? letter : byte;
  }
  *out = '"';
}

// The digits of |number|, zeros in front to at least `width`.
std::string PaddedDigits(std::int32_t number, std::size_t width) {
  const std::int64_t wide = number;
  std::string digits = std::to_string(wide < 0 ? -wide : wide);
  if (digits.size() < width) digits.insert(0, width - digits.size(), '0');
  return digits;
}

std::string_view SignOf(std::int32_t number) noexcept { return number < 0 ? "-" : ""; }

}  // namespace

void AppendMepTextOfString(String& out, std::string_view text) {
  const auto start = static_cast<std::size_t>(out.Len());
  const std::size_t length = LiteralLength(text);
  if (length > static_cast<std::size_t>(String::kMaxLength) - start) {
    throw std::length_error("a string literal beyond the maximum length");
  }
  out.Resize(static_cast<std::int32_t>(start + length));
  WriteLiteral(out.MutableText() + start, text);
}

String MepTextOfString(std::string_view text) {
  String literal;
  AppendMepTextOfString(literal, text);
  return literal;
}

String MepTextOfNumber(double number, bool period) {
  constexpr int kDigits = 12;
  return period ? ixo_ftoa_period(number, kDigits) : ixo_ftoa_no_locale(number, kDigits);
}

String MepTextOfTenths(std::int32_t tenths) {
  char buffer[kTenthsTextSize];
  return String(WriteTenths(tenths, buffer));
}

std::string_view WriteTenths(std::int32_t tenths, char* buffer) noexcept {
  if (tenths == 0) return "0cm";
  const std::int32_t whole = tenths / 100;
  const std::int32_t rest = tenths < 0 ? -(tenths % 100) : tenths % 100;
  char* out = buffer;
  // Meant: no zero before the point.
  if (whole != 0) {
    out = std::to_chars(out, buffer + kTenthsTextSize, whole).ptr;
  } else if (tenths < 0) {
    *out++ = '-';
  }
  if (rest != 0) {
    *out++ = '.';
    *out++ = static_cast<char>('0' + rest / 10);
    if (rest % 10 != 0) *out++ = static_cast<char>('0' + rest % 10);
  }
  *out++ = 'c';
  *out++ = 'm';
  return {buffer, static_cast<std::size_t>(out - buffer)};
}

String MepTextOfPoints(std::int32_t tenths) {
  std::string digits = PaddedDigits(tenths, 2);
  digits.insert(digits.size() - 1, 1, '.');  // Meant: also before a final zero.
  return std::string(SignOf(tenths)) + digits + "pt";
}

String UITextOfTenths(std::int32_t tenths) {
  std::string digits = PaddedDigits(tenths, 3);
  digits.insert(digits.size() - 2, 1, International::DecimalSeparator());
  return std::string(SignOf(tenths)) + digits + " cm";
}

}  // namespace ixomep
