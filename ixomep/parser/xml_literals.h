// Internal: literals written as XML straight from the definition text: strings block by block with
// their backslashes and replaced bytes in one pass, numbers as they stand, millimetres and seconds
// by moving digits. What is rare is left to XmlValues, which writes the same by way of the value.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "ixomep/host/string.h"
#include "ixomep/parser/byte_block.h"
#include "ixomep/parser/byte_kinds.h"
#include "ixomep/parser/document.h"
#include "ixomep/parser/literal_reader.h"
#include "ixomep/parser/xml_escapes.h"

namespace ixomep {

class XmlLiterals {
 public:
  XmlLiterals() = default;
  // The text that the literals stand in. None is written for a host whose characters are not ASCII.
  XmlLiterals(const String& text, bool is_ascii_itself) noexcept : text_(text.c_str()) {
    const auto size = static_cast<std::size_t>(text.Len());
    if (is_ascii_itself && size > kReach) end_ = size - kReach;
  }

  // Room for whatever becomes of a literal of that size; of a name.
  static std::size_t RoomOf(std::size_t size) noexcept { return size * kLongestXmlEscape + kReach; }
  static constexpr std::size_t kNameRoom = 32;

  // Whether Write may be asked for a literal of the text.
  bool MayWrite(const LiteralRecord& literal) const noexcept {
    return literal.at + literal.size < end_ && literal.size <= kLongest;
  }
  // What becomes of a literal that is not None: the end of it; null, and nothing that counts, when
  // it is left to others. A call for each literal would be a twentieth of all instructions.
  [[gnu::always_inline]] char* Write(const LiteralRecord& literal, char* out) const noexcept {
    const char* const source = text_ + literal.at;
    const std::size_t size = literal.size;
    if (literal.Kind() <= LiteralKind::Escaped) [[likely]]
      return WriteString(source, size, out);
    switch (literal.Kind()) {
      case LiteralKind::Integer:
        return WriteInteger(source, size, out);
      case LiteralKind::Real:
        return WriteReal(source, size, out);
      case LiteralKind::Measure:
        return WriteMeasure(source, size, out);
      case LiteralKind::Time:
        return WriteTime(source, size, out);
      default:
        return nullptr;
    }
  }
  // A short name of the text as it is, in the same way.
  char* WriteName(std::string_view name, char* out) const noexcept {
    if (name.size() > kReach || name.data() >= text_ + end_) return nullptr;
    std::memcpy(out, name.data(), kReach);
    return out + name.size();
  }

 private:
  // May be read behind every literal, and written behind what becomes of it.
  static constexpr std::size_t kReach = 32;
  static constexpr std::size_t kLongest = 4096;
  static constexpr std::size_t kMostDigits = 5;  // far from where a number becomes inexact

  static void CopyNumber(const char* in, char* out) noexcept { std::memcpy(out, in, 16); }

  // All but the bytes that are replaced or stand behind a backslash go a block at a time. The quote
  // at the end of the literal stops it like one of them.
  static char* WriteString(const char* in, std::size_t size, char* out) noexcept {
    const char* const end = in + size;
    for (;;) {
      const ByteBlock::Mask hits = MayBeXmlEscaped(ByteBlock(in));
      std::memcpy(out, in, ByteBlock::kSize);
      const std::size_t plain = hits != 0 ? ByteBlock::First(hits) : ByteBlock::kSize;
      in += plain;
      out += plain;
      if (hits == 0) continue;
      if (in == end) return out;
      char byte = *in++;
      if (byte == '\\') byte = Unescaped(*in++);
      const XmlEscape& escape = XmlEscapeOfByte(byte);
      if (!escape.IsAscii()) return nullptr;
      out = escape.Write(out);
    }
  }

  // Zeros in front, and a sign of zero, get lost.
  static char* WriteInteger(const char* source, std::size_t size, char* out) noexcept {
    CopyNumber(source, out);
    const char first = source[*source == '-'];
    return first != '0' || size == 1 ? out + size : nullptr;
  }

  // The digits at the front of a number without its sign, when they are few and none of them a zero
  // that does not count; else none.
  static std::size_t FewDigits(const char* number) noexcept {
    const ByteBlock::Mask others = ByteBlock(number).Between('0', '9') ^ ByteBlock::kAll;
    const std::size_t digits = others != 0 ? ByteBlock::First(others) : kMostDigits + 1;
    return digits <= kMostDigits && (*number != '0' || digits == 1) ? digits : 0;
  }
  // The end of a fraction without zeros at the end, and without a point that they leave behind.
  static const char* WithoutZeros(const char* end) noexcept {
    while (end[-1] == '0') --end;
    return end[-1] == '.' ? end - 1 : end;
  }

  static char* WriteReal(const char* source, std::size_t size, char* out) noexcept {
    constexpr std::size_t kMostPlaces = 6;
    const std::size_t sign = *source == '-';
    CopyNumber(source, out);
    const std::size_t digits = FewDigits(source + sign);
    if (digits == 0 || size - sign - digits - 1 > kMostPlaces) return nullptr;
    if (source[size - 1] != '0') [[likely]]
      return out + size;
    const char* const end = WithoutZeros(source + size);
    const bool may_be_zero = *source == '-' && end[-1] == '0';
    return may_be_zero ? nullptr : out + (end - source);
  }

  // Centimetres as they stand, and millimetres with their point moved.
  static char* WriteMeasure(const char* source, std::size_t size, char* out) noexcept {
    constexpr std::size_t kMostPlaces = 2;
    const std::size_t sign = *source == '-';
    const char* const number = source + sign;
    const std::size_t digits = FewDigits(number);
    if (digits == 0) return nullptr;
    CopyNumber(source, out);
    const char* const unit = source + size - 2;
    const auto places = static_cast<std::size_t>(unit - number) - digits;  // with the point
    if (*unit == 'c') {
      if (places > kMostPlaces + 1 || (places != 0 && unit[-1] == '0')) return nullptr;
      if (*number != '0') return out + size;
      // Meant: no zero before the point.
      CopyNumber(number + 1, out + sign);
      return places != 0 ? out + size - 1 : nullptr;
    }
    if (*unit != 'm' || places > 2) return nullptr;
    return WriteMillimetres(number, digits, places != 0 ? unit[-1] : '0', out + sign);
  }

  // The digits stand at `out` already.
  static char* WriteMillimetres(const char* number, std::size_t digits, char place,
                                char* out) noexcept {
    out += digits - 1;
    const char last = number[digits - 1];
    if (place != '0') {
      const char text[8] = {'.', last, place, 'c', 'm'};
      std::memcpy(out, text, sizeof text);
      return out + 5;
    }
    if (last != '0') {
      const char text[4] = {'.', last, 'c', 'm'};
      std::memcpy(out, text, sizeof text);
      return out + 4;
    }
    if (digits == 1) return nullptr;
    std::memcpy(out, "cm", 3);
    return out + 2;
  }

  // Whole seconds as YY:DDD:HH:MM:SS; few places cannot round up to a whole one.
  static char* WriteTime(const char* source, std::size_t size, char* out) noexcept {
    constexpr std::size_t kMostPlaces = 6;
    std::uint32_t seconds = 0;
    std::size_t digits = 0;
    for (; IsQuick(source[digits], kQuickDigit); ++digits) {
      seconds = seconds * 10 + static_cast<std::uint32_t>(source[digits] - '0');
    }
    const std::size_t places = size - digits - 1;
    if (digits == 0 || places > kMostPlaces + 1) return nullptr;
    constexpr std::uint32_t kDay = 24 * 60 * 60;
    const std::uint32_t days = seconds / kDay;
    const std::uint32_t in_day = seconds % kDay;
    const std::uint32_t minutes = in_day / 60;
    const std::uint32_t year = days / 365;
    const std::uint32_t day = days % 365;
    WritePair(year, out);
    out[2] = ':';
    out[3] = static_cast<char>('0' + day / 100);
    WritePair(day % 100, out + 4);
    out[6] = ':';
    WritePair(minutes / 60, out + 7);
    out[9] = ':';
    WritePair(minutes % 60, out + 10);
    out[12] = ':';
    WritePair(in_day % 60, out + 13);
    return out + 15;
  }

  static void WritePair(std::uint32_t number, char* out) noexcept {
    std::memcpy(out, kPairs.data() + std::size_t{2} * number, 2);
  }
  // 00 to 99.
  static constexpr std::array<char, 200> kPairs = [] {
    std::array<char, 200> pairs{};
    for (std::size_t i = 0; i < 100; ++i) {
      pairs[2 * i] = static_cast<char>('0' + i / 10);
      pairs[2 * i + 1] = static_cast<char>('0' + i % 10);
    }
    return pairs;
  }();

  const char* text_ = nullptr;
  std::size_t end_ = 0;  // behind the last place where a literal of Write may end
};

}  // namespace ixomep
