// Character tables and conversions of the default host. See windows_1252.h.
#include "ixomep/host/portable/windows_1252.h"

#include <algorithm>
#include <cstdint>

#include "ixomep/host/string_pieces.h"

namespace ixomep::portable {
namespace {

// Bytes 0x80 to 0x9F of Windows-1252; the others stand for their own number. The five bytes that
// the set leaves open stand for the control characters of their number.
constexpr std::array<char16_t, 32> kUpper1252 = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,  //
    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,  //
    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,  //
    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};

// Bytes 0x80 to 0xFF of code page 850; those below stand for their own number.
constexpr std::array<char16_t, 128> kUpper850 = {
    0x00C7, 0x00FC, 0x00E9, 0x00E2, 0x00E4, 0x00E0, 0x00E5, 0x00E7,  //
    0x00EA, 0x00EB, 0x00E8, 0x00EF, 0x00EE, 0x00EC, 0x00C4, 0x00C5,  //
    0x00C9, 0x00E6, 0x00C6, 0x00F4, 0x00F6, 0x00F2, 0x00FB, 0x00F9,  //
    0x00FF, 0x00D6, 0x00DC, 0x00F8, 0x00A3, 0x00D8, 0x00D7, 0x0192,  //
    0x00E1, 0x00ED, 0x00F3, 0x00FA, 0x00F1, 0x00D1, 0x00AA, 0x00BA,  //
    0x00BF, 0x00AE, 0x00AC, 0x00BD, 0x00BC, 0x00A1, 0x00AB, 0x00BB,  //
    0x2591, 0x2592, 0x2593, 0x2502, 0x2524, 0x00C1, 0x00C2, 0x00C0,  //
    0x00A9, 0x2563, 0x2551, 0x2557, 0x255D, 0x00A2, 0x00A5, 0x2510,  //
    0x2514, 0x2534, 0x252C, 0x251C, 0x2500, 0x253C, 0x00E3, 0x00C3,  //
    0x255A, 0x2554, 0x2569, 0x2566, 0x2560, 0x2550, 0x256C, 0x00A4,  //
    0x00F0, 0x00D0, 0x00CA, 0x00CB, 0x00C8, 0x0131, 0x00CD, 0x00CE,  //
    0x00CF, 0x2518, 0x250C, 0x2588, 0x2584, 0x00A6, 0x00CC, 0x2580,  //
    0x00D3, 0x00DF, 0x00D4, 0x00D2, 0x00F5, 0x00D5, 0x00B5, 0x00FE,  //
    0x00DE, 0x00DA, 0x00DB, 0x00D9, 0x00FD, 0x00DD, 0x00AF, 0x00B4,  //
    0x00AD, 0x00B1, 0x2017, 0x00BE, 0x00B6, 0x00A7, 0x00F7, 0x00B8,  //
    0x00B0, 0x00A8, 0x00B7, 0x00B9, 0x00B3, 0x00B2, 0x25A0, 0x00A0,
};

using UnicodeOfByte = std::array<char16_t, 256>;

template <std::size_t kCount>
constexpr UnicodeOfByte MakeUnicode(const std::array<char16_t, kCount>& from_128) {
  UnicodeOfByte numbers{};
  for (std::size_t byte = 0; byte < 256; ++byte) {
    const bool listed = byte >= 128 && byte < 128 + kCount;
    numbers[byte] = listed ? from_128[byte - 128] : static_cast<char16_t>(byte);
  }
  return numbers;
}

constexpr UnicodeOfByte kUnicode1252 = MakeUnicode(kUpper1252);
constexpr UnicodeOfByte kUnicode850 = MakeUnicode(kUpper850);

constexpr unsigned char ByteOf(const UnicodeOfByte& set, std::uint32_t code_point) {
  const auto found = std::find(set.begin(), set.end(), code_point);
  return found == set.end() ? static_cast<unsigned char>('?')
                            : static_cast<unsigned char>(found - set.begin());
}

constexpr ByteMap MakeMap(const UnicodeOfByte& from, const UnicodeOfByte& to) {
  ByteMap map{};
  for (std::size_t byte = 0; byte < 256; ++byte) map[byte] = ByteOf(to, from[byte]);
  return map;
}

constexpr ByteMap kOemOf1252 = MakeMap(kUnicode1252, kUnicode850);
constexpr ByteMap k1252OfOem = MakeMap(kUnicode850, kUnicode1252);

// The lower-case partner of an upper-case letter, by byte; 0 for all others.
constexpr unsigned char LowerPartner(unsigned byte) {
  if (byte >= 'A' && byte <= 'Z') return static_cast<unsigned char>(byte + 32);
  if (byte >= 0xC0 && byte <= 0xDE && byte != 0xD7) return static_cast<unsigned char>(byte + 32);
  if (byte == 0x8A || byte == 0x8C || byte == 0x8E) return static_cast<unsigned char>(byte + 16);
  return byte == 0x9F ? 0xFF : 0;
}

constexpr ByteMap MakeCaseMap(bool to_lower) {
  ByteMap map{};
  for (unsigned byte = 0; byte < 256; ++byte) map[byte] = static_cast<unsigned char>(byte);
  for (unsigned upper = 0; upper < 256; ++upper) {
    const unsigned char lower = LowerPartner(upper);
    if (lower == 0) continue;
    if (to_lower) {
      map[upper] = lower;
    } else {
      map[lower] = static_cast<unsigned char>(upper);
    }
  }
  return map;
}

constexpr ByteMap kLower = MakeCaseMap(true);
constexpr ByteMap kUpper = MakeCaseMap(false);

// The byte of a code point; almost all are their own byte, the rest is looked for.
char ByteOfCodePoint(std::uint32_t code_point) noexcept {
  const bool own = code_point < 256 && kUnicode1252[code_point] == code_point;
  return static_cast<char>(own ? static_cast<unsigned char>(code_point)
                               : ByteOf(kUnicode1252, code_point));
}

// The ranges of well-formed UTF-8: by lead byte, the range of the second byte and the length.
struct Lead {
  unsigned char first, last, second_low, second_high;
  std::size_t length;
};
constexpr Lead kLeads[] = {
    {0xC2, 0xDF, 0x80, 0xBF, 2}, {0xE0, 0xE0, 0xA0, 0xBF, 3}, {0xE1, 0xEC, 0x80, 0xBF, 3},
    {0xED, 0xED, 0x80, 0x9F, 3}, {0xEE, 0xEF, 0x80, 0xBF, 3}, {0xF0, 0xF0, 0x90, 0xBF, 4},
    {0xF1, 0xF3, 0x80, 0xBF, 4}, {0xF4, 0xF4, 0x80, 0x8F, 4},
};

// Reads one sequence at `at` and moves behind it or behind its well-formed beginning; the byte of
// the set, or "?".
char NextByte(std::string_view text, std::size_t& at) noexcept {
  const auto lead = static_cast<unsigned char>(text[at++]);
  if (lead < 0x80) return static_cast<char>(lead);
  const auto* form = std::find_if(std::begin(kLeads), std::end(kLeads), [lead](const Lead& row) {
    return lead >= row.first && lead <= row.last;
  });
  if (form == std::end(kLeads)) return '?';
  std::uint32_t code_point = lead & (0x7FU >> form->length);
  for (std::size_t i = 1; i < form->length; ++i) {
    if (at == text.size()) return '?';
    const auto byte = static_cast<unsigned char>(text[at]);
    const unsigned char low = i == 1 ? form->second_low : 0x80;
    const unsigned char high = i == 1 ? form->second_high : 0xBF;
    if (byte < low || byte > high) return '?';
    code_point = code_point << 6 | (byte & 0x3FU);
    ++at;
  }
  return ByteOfCodePoint(code_point);
}

bool IsAscii(std::string_view text) noexcept {
  return std::all_of(text.begin(), text.end(),
                     [](char byte) { return static_cast<unsigned char>(byte) < 0x80; });
}

}  // namespace

const ByteMap& LowerCase1252() noexcept { return kLower; }
const ByteMap& UpperCase1252() noexcept { return kUpper; }
const ByteMap& OemOf1252() noexcept { return kOemOf1252; }
const ByteMap& Windows1252OfOem() noexcept { return k1252OfOem; }

void Map(const ByteMap& map, char* bytes, std::size_t count) noexcept {
  std::transform(bytes, bytes + count, bytes, [&map](char byte) {
    return static_cast<char>(map[static_cast<unsigned char>(byte)]);
  });
}

String Utf8Of1252(std::string_view text) {
  if (IsAscii(text)) return String(text);
  String utf8;
  StringPieces pieces(utf8);
  for (const char byte : text) {
    const std::uint32_t code_point = kUnicode1252[static_cast<unsigned char>(byte)];
    if (code_point < 0x80) {
      pieces.Add(byte);
      continue;
    }
    if (code_point < 0x800) {
      pieces.Add(static_cast<char>(0xC0U | code_point >> 6));
    } else {
      pieces.Add(static_cast<char>(0xE0U | code_point >> 12));
      pieces.Add(static_cast<char>(0x80U | (code_point >> 6 & 0x3FU)));
    }
    pieces.Add(static_cast<char>(0x80U | (code_point & 0x3FU)));
  }
  pieces.Flush();
  return utf8;
}

String Windows1252OfUtf8(std::string_view text) {
  if (IsAscii(text)) return String(text);
  String bytes;
  for (std::size_t at = 0; at < text.size();) bytes += NextByte(text, at);
  return bytes;
}

}  // namespace ixomep::portable
